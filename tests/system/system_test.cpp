#include "vx/osversion.h"

#include "support/pe_image.h"
#include "support/temp_folder.h"
#include "system/high_color.h"
#include "system/os_version.h"

#include <gtest/gtest.h>
#include <string>

using namespace vxtest;

namespace {

OSVERSIONINFOEXW System(DWORD platform, DWORD major, DWORD minor, WORD servicePack = 0,
                        const char16_t* text = u"")
{
    OSVERSIONINFOEXW info = {};
    info.dwPlatformId = platform;
    info.dwMajorVersion = major;
    info.dwMinorVersion = minor;
    info.wServicePackMajor = servicePack;
    std::u16string(text).copy(info.szCSDVersion, 127);
    return info;
}

std::string NameOf(const OSVERSIONINFOEXW& system)
{
    const char16_t* name = vx::NameOf(system);
    return name ? std::string(name, name + std::char_traits<char16_t>::length(name)) : "unknown";
}

} // namespace

TEST(OsVersion, Names)
{
    const struct
    {
        DWORD platform, major, minor;
        const char16_t* servicePack;
        const char* want;
    } cases[] = {
        {1, 3, 95, u"", "Windows 95"},      {1, 4, 0, u"", "Windows 95"},    {1, 4, 10, u" B", "Windows 98"},
        {1, 4, 89, u" A", "Windows 98 SE"}, {1, 4, 90, u"", "Windows Me"},   {1, 5, 0, u"", "unknown"},
        {2, 3, 51, u"", "unknown"},         {2, 4, 7, u"", "Windows NT"},    {2, 5, 0, u"", "Windows 2000"},
        {2, 5, 2, u"", "Windows XP"},       {2, 6, 0, u"", "Windows Vista"}, {2, 6, 1, u"", "Windows 7"},
        {2, 6, 2, u"", "Windows 8"},        {2, 6, 3, u"", "unknown"},       {2, 10, 0, u"", "unknown"},
        {3, 6, 2, u"", "unknown"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(NameOf(System(c.platform, c.major, c.minor, 0, c.servicePack)), c.want)
            << c.platform << "-" << c.major << "." << c.minor;
}

TEST(VersionText, IsReadAndCut)
{
    const TempFolder folder;
    folder.Write("image.dll", PeImage(VersionResource({{u"ProductVersion", u"1.2.3"}}), true));
    const std::u16string path = folder.DrivePath(u"image.dll");
    for (int32_t capacity = 0; capacity <= 7; ++capacity) {
        std::u16string text(8, u'#'), want = text;
        if (capacity > 0)
            want.replace(0, size_t(std::min(capacity, 6)),
                         std::u16string(u"1.2.3").substr(0, size_t(capacity) - 1) + u'\0');
        EXPECT_EQ(VxVersion_GetString(path.c_str(), u"ProductVersion", text.data(), capacity), S_OK);
        EXPECT_EQ(text, want) << capacity;
    }
    char16_t text[] = u"#";
    const std::u16string longKey = u"ProductVersion" + std::u16string(200, u'x');
    EXPECT_EQ(VxVersion_GetString(path.c_str(), u"Missing", text, 1), VX_E_ITEM_NOT_FOUND);
    EXPECT_EQ(VxVersion_GetString(path.c_str(), longKey.c_str(), text, 1), VX_E_ITEM_NOT_FOUND);
    EXPECT_EQ(VxVersion_GetString(u"C:\\missing", u"ProductVersion", text, 1), VX_E_ITEM_NOT_FOUND);
    EXPECT_EQ(text[0], u'#');
}
