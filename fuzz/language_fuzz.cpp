// Any bytes as a language file, beside a module whose strings are whole. Whatever the file says, texts are terminated,
// within their room, and the same when asked for again; what it does not have comes from the module.
#include "require.h"
#include "vx/kernel.h"
#include "vx/lang.h"

#include "support/resource_image.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <span>
#include <stdlib.h>
#include <string>
#include <string_view>

using vxfuzz::Require;

namespace {

constexpr int kIds = 40;
constexpr uint32_t kGerman = 0x0407;

std::u16string EnglishText(uint32_t id)
{
    return std::u16string(u"English ") + char16_t(u'0' + id % 10);
}

class HostFolder
{
public:
    HostFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "vxfuzz-XXXXXX").string();
        Require(mkdtemp(name.data()) != nullptr);
        path_ = name;
        std::vector<vxtest::TestResource> blocks;
        for (int first = 0; first < kIds; first += 16) {
            std::vector<std::u16string> texts;
            for (int id = first; id < first + 16; ++id)
                texts.push_back(EnglishText(uint32_t(id)));
            blocks.push_back(vxtest::Strings(first, 0x0409, texts));
        }
        Write("host.bin", vxtest::ResImage(blocks));
        module_ = LoadLibraryW((u"C:" + (path_ / "host.bin").u16string()).c_str());
        Require(module_ && VxKernel_EarlyInitialize(module_, 0));
    }
    ~HostFolder() { std::filesystem::remove_all(path_); }

    // In the place of the file before, which may still be mapped.
    void Write(const char* name, std::span<const uint8_t> bytes) const
    {
        std::ofstream(path_ / "new", std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
        std::filesystem::rename(path_ / "new", path_ / name);
    }
    HMODULE Module() const { return module_; }

private:
    std::filesystem::path path_;
    HMODULE module_ = nullptr;
};

void ReadStrings(HVXLANG handle)
{
    char16_t text[1024];
    for (uint32_t id = 0; id < kIds; ++id) {
        const char16_t* const cached = VxGetString(handle, id);
        Require(cached && cached == VxGetString(handle, id));
        const std::u16string_view whole(cached);
        Require(whole.size() < std::size(text));
        for (const int32_t room : {1, 3, int32_t(std::size(text))}) {
            const int32_t length = VxLoadString(handle, id, text, room);
            Require(length >= 0 && length < room && text[length] == u'\0');
            if (room > int32_t(whole.size()) + 2) // with room for a mark that is taken off
                Require(whole == text);           // up to a zero, which a file's string may hold
        }
    }
}

// Texts of a table that stand for string resources: in place, or the English one.
void ReadTables(HVXLANG handle)
{
    for (uintptr_t id = 1; id < kIds; ++id) {
        vxlang_t table{VXLANG_MARK, VXLANG_SLOTS, 0, {u"first"}, 0};
        std::fill(table.text + 1, table.text + VXLANG_SLOTS, reinterpret_cast<const char16_t*>(id));
        const char16_t* const text = VxGetString(handle, &table);
        Require(text && VxGetString(handle, &table) == text);
        static volatile char16_t sum;
        for (const char16_t c : std::u16string_view(text))
            sum = sum + c;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const HostFolder folder;
    folder.Write("host.LNG", {data, size});
    HVXLANG handle = nullptr;
    Require(VxLang_Open(&handle, folder.Module(), 0, 0) == S_OK);
    ReadStrings(handle); // from the module, so far
    for (uint32_t id = 0; id < kIds; ++id)
        Require(EnglishText(id) == VxGetString(handle, id));
    Require(VxLang_UpdateKernelLCID(handle, kGerman) == 1);
    ReadStrings(handle);
    ReadTables(handle);
    char16_t languages[64];
    const int32_t length = VxEnumResourceLanguages(handle, 1, languages, int32_t(std::size(languages)));
    Require(length >= 0 && length < int32_t(std::size(languages)) && languages[length] == u'\0');
    Require(VxLang_InstFromLang(handle) != nullptr);
    VxLang_Close(handle);
    return 0;
}
