#include "support/random.h"
#include "support/resource_image.h"
#include "support/temp_folder.h"
#include "vx/platform/lasterror.h"
#include "vx/platform/locale.h"
#include "vx/platform/module.h"

#include "platform/elf_section.h"
#include "platform/resource_image.h"

#include <algorithm>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <memory>

using namespace vxtest;

namespace {

// A file of resources that is loaded as long as the object lives.
class LoadedFile
{
public:
    explicit LoadedFile(const Bytes& file)
    {
        folder_.Write("file.LNG", file);
        module = LoadLibraryW(folder_.DrivePath(u"file.LNG").c_str());
    }
    ~LoadedFile() { EXPECT_EQ(FreeLibrary(module), module != nullptr); }

    Bytes Read(HRSRC resource) const
    {
        const auto* data = static_cast<const uint8_t*>(LockResource(LoadResource(module, resource)));
        return data ? Bytes(data, data + SizeofResource(module, resource)) : Bytes();
    }
    std::u16string String(UINT id, int room = 64) const
    {
        std::u16string text(size_t(room), u'#');
        text.resize(size_t(LoadStringW(module, id, text.data(), room)));
        EXPECT_LT(text.size(), size_t(room));
        return text;
    }

    HMODULE module;

private:
    TempFolder folder_;
};

const WCHAR* Form(const ResourceKey& key)
{
    return key.text.empty() ? MAKEINTRESOURCEW(key.number) : key.text.c_str();
}

using Build = Bytes (*)(const std::vector<TestResource>&);
constexpr Build kForms[] = {ResImage, [](const std::vector<TestResource>& all) { return PeImage(all, true); },
                            [](const std::vector<TestResource>& all) { return PeImage(all, false); }};

} // namespace

// Random images in all forms against a plain map.
TEST(Resources, AreFoundExactlyWhereTheyAre)
{
    Random random;
    const ResourceKey keys[] = {1, 6, 16, 0xFFFF, u"AN ICON", u"\x0416"};
    std::vector<TestResource> places;
    for (const ResourceKey& type : keys)
        for (const ResourceKey& name : keys)
            for (const WORD language : {0, 0x0007, 0x0407, 0x0411, 0xFFFF})
                places.push_back({type, name, language, {}});
    for (int round = 0; round < 10; ++round)
        for (const Build build : kForms) {
            std::vector<TestResource> all;
            std::vector<const Bytes*> wanted(places.size());
            all.reserve(places.size());
            for (size_t i = 0; i < places.size(); ++i)
                if (random.Int(0, 3) == 0) {
                    all.push_back(places[i]);
                    all.back().data.assign(size_t(random.Int(0, 9)), random.Byte());
                    wanted[i] = &all.back().data;
                }
            const LoadedFile file(build(all));
            for (size_t i = 0; i < places.size(); ++i) {
                const auto& [type, name, language, unused] = places[i];
                const HRSRC found = FindResourceExW(file.module, Form(type), Form(name), language);
                ASSERT_EQ(found != nullptr, wanted[i] != nullptr);
                if (found) {
                    ASSERT_EQ(file.Read(found), *wanted[i]);
                }
            }
        }
}

// Removes the language that is chosen, one after the other.
TEST(Resources, LanguagesFallBackInOrder)
{
    ASSERT_TRUE(VxPlatform_SetUserLocale("de-AT"));
    std::vector<WORD> order = {0, 0x0C07, 0x0007, 0x0409, 0x0009, 0x0407, 0x0411};
    while (!order.empty()) {
        std::vector<TestResource> all;
        for (const WORD language : order)
            all.insert(all.begin(), {5, 1, language, {uint8_t(language), uint8_t(language >> 8)}});
        for (const Build build : kForms) {
            const LoadedFile file(build(all));
            EXPECT_EQ(file.Read(FindResourceW(file.module, MAKEINTRESOURCEW(1), RT_DIALOG)), all.back().data);
        }
        order.erase(order.begin());
    }
    VxPlatform_SetUserLocale(nullptr);
}

TEST(Resources, StringsComeFromBlocks)
{
    TestResource cut = Strings(48, 0, {u"whole", u"cut"});
    cut.data.resize(2 + 10 + 2 + 4);
    const LoadedFile file(ResImage({Strings(16, 0x0409, {u"sixteen", u"", std::u16string(u"a\0b", 3)}),
                                    Strings(0xFFF0, 0, {u"last"}), Strings(16, 0x0407, {u"sechzehn"}), cut}));
    EXPECT_EQ(file.String(16), u"sixteen");
    EXPECT_EQ(file.String(17), u"");
    EXPECT_EQ(file.String(18), std::u16string(u"a\0b", 3));
    EXPECT_EQ(file.String(0x50010), u"sixteen");
    EXPECT_EQ(file.String(0xFFF0), u"last");
    EXPECT_EQ(file.String(48), u"whole");
    EXPECT_EQ(file.String(49), u"") << "its block ends before it does";
    EXPECT_EQ(file.String(63), u"");
    EXPECT_EQ(file.String(15), u"");
    for (int room = 1; room <= 8; ++room)
        EXPECT_EQ(file.String(16, room), std::u16string(u"sixteen").substr(0, size_t(room) - 1));
    EXPECT_EQ(LoadStringW(file.module, 16, nullptr, 0), 0);
}

// Languages and names as texts of numbers; the receiver ends it when the text is full.
TEST(Resources, AreEnumeratedOnce)
{
    constexpr size_t kFull = 6;
    const auto onLanguage = [](HMODULE, const WCHAR*, const WCHAR*, WORD language, LONG_PTR told) -> BOOL {
        return (*reinterpret_cast<std::u16string*>(told) += char16_t(language)).size() < kFull;
    };
    const auto onName = [](HMODULE, const WCHAR*, const WCHAR* name, LONG_PTR told) -> BOOL {
        const bool isNumber = IS_INTRESOURCE(name);
        reinterpret_cast<std::u16string*>(told)->append(isNumber ? u"#" : name);
        return isNumber || *name == u'B';
    };
    const std::vector<TestResource> all = {
        {16, 1, 0x0411, {}}, {16, 1, 0x0407, {}}, {16, 1, 0x0409, {}}, {16, 3, 0, {}}, {16, u"B", 0, {}}};
    std::vector<TestResource> twice = all;
    twice.insert(twice.end(), all.begin(), all.end());
    for (const LoadedFile& file : {LoadedFile(ResImage(twice)), LoadedFile(PeImage(all))}) {
        const auto languages = [&](std::u16string& told) {
            return EnumResourceLanguagesW(file.module, RT_VERSION, MAKEINTRESOURCEW(1), onLanguage,
                                          LONG_PTR(&told));
        };
        std::u16string told, names;
        EXPECT_TRUE(languages(told));
        EXPECT_FALSE(languages(told));
        EXPECT_EQ(GetLastError(), ERROR_RESOURCE_ENUM_USER_STOP);
        EXPECT_EQ(told, u"\x0407\x0409\x0411\x0407\x0409\x0411");
        EXPECT_TRUE(EnumResourceNamesW(file.module, RT_VERSION, onName, LONG_PTR(&names)));
        EXPECT_EQ(names, u"B##");
        EXPECT_FALSE(EnumResourceNamesW(file.module, RT_MENU, onName, LONG_PTR(&names)));
        EXPECT_EQ(GetLastError(), ERROR_RESOURCE_TYPE_NOT_FOUND);
    }
}
