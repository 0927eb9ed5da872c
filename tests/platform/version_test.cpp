#include "vx/platform/version.h"

#include "support/pe_image.h"
#include "support/temp_folder.h"
#include "vx/platform/lasterror.h"

#include <gtest/gtest.h>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

using namespace vxtest;

namespace {

constexpr char16_t kProductVersion[] = u"\\StringFileInfo\\040904B0\\ProductVersion";

Bytes SmallImage(bool wide = true)
{
    return PeImage(
        VersionResource({{u"ProductName", u"A product"}, {u"ProductVersion", u"1.2.3"}, {u"Empty", u""}}),
        wide);
}

// The image is a file in memory: there are thousands of them.
class VersionFiles : public testing::Test
{
protected:
    VersionFiles() : path_(u"C:\\proc\\self\\fd\\")
    {
        for (const char digit : std::to_string(file_))
            path_ += char16_t(digit);
    }
    ~VersionFiles() override { close(file_); }

    DWORD SizeOf(const Bytes& image)
    {
        EXPECT_EQ(ftruncate(file_, 0), 0);
        EXPECT_EQ(pwrite(file_, image.data(), image.size(), 0), ssize_t(image.size()));
        SetLastError(ERROR_SUCCESS);
        return GetFileVersionInfoSizeW(path_.c_str(), nullptr);
    }

    // The resource in a block of exactly its size; empty where there is none.
    Bytes Read(const Bytes& image)
    {
        Bytes block(SizeOf(image));
        if (!block.empty() && !GetFileVersionInfoW(path_.c_str(), 0, DWORD(block.size()), block.data()))
            block.clear();
        return block;
    }

    const int file_ = memfd_create("image", 0);
    std::u16string path_;
};

// A text, "-" where it is not found. Each of its characters is read.
std::u16string Query(const Bytes& block, const char16_t* path)
{
    void* value = nullptr;
    UINT length = 0;
    if (block.empty() || !VerQueryValueW(block.data(), path, &value, &length))
        return u"-";
    std::u16string text(length, u'\0');
    std::memcpy(text.data(), value, length * sizeof(char16_t));
    return text.substr(0, text.find(u'\0'));
}

void ReadBytes(const Bytes& block, const char16_t* path)
{
    void* value = nullptr;
    UINT length = 0;
    if (!block.empty() && VerQueryValueW(block.data(), path, &value, &length))
        Bytes(static_cast<uint8_t*>(value), static_cast<uint8_t*>(value) + length);
}

} // namespace

TEST_F(VersionFiles, ValuesAreFoundByTheirPaths)
{
    for (const bool wide : {false, true}) {
        const Bytes block = Read(SmallImage(wide));
        EXPECT_EQ(Query(block, kProductVersion), u"1.2.3");
        EXPECT_EQ(Query(block, u"\\stringfileinfo\\040904b0\\PRODUCTNAME"), u"A product");
        EXPECT_EQ(Query(block, u"\\StringFileInfo\\040904B0\\Empty"), u"");
        for (const char16_t* missing :
             {u"\\StringFileInfo\\040904B0\\Product", u"\\StringFileInfo\\00000000\\ProductVersion",
              u"\\ProductVersion", u"\\StringFileInfo\\040904B0\\ProductVersion\\More"})
            EXPECT_EQ(Query(block, missing), u"-");
        void* value = nullptr;
        UINT length = 0;
        ASSERT_TRUE(VerQueryValueW(block.data(), u"\\", &value, &length));
        EXPECT_EQ(length, 52u);
        ASSERT_TRUE(VerQueryValueW(block.data(), u"\\VarFileInfo\\Translation", &value, &length));
        EXPECT_EQ(length, 4u);
        EXPECT_EQ(std::memcmp(value, "\x09\x04\xB0\x04", 4), 0);
    }
}

// A damaged file never makes anything read outside the block; the sanitizers watch.
TEST_F(VersionFiles, DamageHarmsNothing)
{
    const Bytes image = SmallImage();
    int found = 0;
    const auto look = [&](const Bytes& damaged) {
        const Bytes block = Read(damaged);
        found += Query(block, kProductVersion) == u"1.2.3";
        Query(block, u"\\StringFileInfo\\040904B0\\Empty");
        Query(block, u"\\StringFileInfo\\040904B0");
        for (const char16_t* path : {u"\\", u"\\VarFileInfo\\Translation"})
            ReadBytes(block, path);
    };
    for (size_t length = 0; length < image.size(); length += 7)
        look(Bytes(image.begin(), image.begin() + ptrdiff_t(length)));
    EXPECT_EQ(found, 0) << "a file without its end is damaged";
    // Every word of the resource, with values that overflow sums; the file around it is read by the
    // resources' own reader.
    for (size_t offset = kResourceOffset; offset + 4 <= image.size(); offset += 4)
        for (const uint32_t value : {0u, 0xFFFFu, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFF0u}) {
            Bytes damaged = image;
            Store(damaged, offset, value);
            look(damaged);
        }
}

// The drive map and the look-up of names, through the first function that takes a path.
TEST(HostPaths, AreFound)
{
    const TempFolder folder;
    const Bytes image = SmallImage();
    folder.Write("Folder/Image.dll", image);
    folder.Write("Folder/image.DLL", {});
    folder.Write("folder/other", image);
    folder.Write("\xC3\x84/\xF0\x9F\x98\x80.bin", image);
    const auto isImage = [](const std::u16string& path) {
        return GetFileVersionInfoSizeW(path.c_str(), nullptr) != 0;
    };
    const auto inFolder = [&](const std::u16string& name) { return isImage(folder.DrivePath(name)); };
    EXPECT_TRUE(inFolder(u"Folder\\Image.dll"));
    EXPECT_FALSE(inFolder(u"Folder\\image.DLL")) << "the exact case comes first";
    EXPECT_TRUE(inFolder(u"Folder\\IMAGE.DLL")) << "then the first by its bytes";
    EXPECT_TRUE(inFolder(u"folder\\Other"));
    EXPECT_FALSE(inFolder(u"Folder\\other")) << "no folder but the exact one is looked into";
    EXPECT_TRUE(inFolder(u"\x00E4\\\xD83D\xDE00.BIN"));
    EXPECT_TRUE(inFolder(u"Folder/.\\\\..\\Folder\\Image.dll"));
    EXPECT_TRUE(isImage(u"\\\\?\\" + folder.DrivePath(u"Folder\\Image.dll")));
    const std::u16string plain = (folder.Path() / "Folder/Image.dll").u16string();
    EXPECT_TRUE(isImage(plain) && isImage(u"c:" + plain));
    EXPECT_TRUE(isImage(std::filesystem::relative(folder.Path() / "Folder/Image.dll").u16string()));
    for (const std::u16string& none :
         {u"Z:" + plain, u"1:" + plain, u"\\\\server" + plain, std::u16string()}) {
        SetLastError(ERROR_SUCCESS);
        EXPECT_FALSE(isImage(none));
        EXPECT_EQ(GetLastError(), ERROR_PATH_NOT_FOUND);
    }
}
