#include "support/state_folder.h"
#include "vx/lang.h"
#include "vx/platform/registry.h"

#include <gtest/gtest.h>

namespace {

// What is stored under a name, with its type; ~0 where there is none.
uint64_t Stored(HKEY root, const char16_t* path, const char16_t* name)
{
    HKEY key = nullptr;
    DWORD number = 0, type = 0, bytes = sizeof(number);
    if (RegOpenKeyExW(root, path, 0, KEY_READ, &key) != ERROR_SUCCESS)
        return ~uint64_t(0);
    const LSTATUS status =
        RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<BYTE*>(&number), &bytes);
    RegCloseKey(key);
    return status == ERROR_SUCCESS && type == REG_DWORD && bytes == 4 ? number : ~uint64_t(0);
}

} // namespace

TEST(StoredLanguage, IsKeptByVendorApplicationAndVersion)
{
    constexpr uint32_t kVersion = 12u << 24 | 3u << 16 | 0xFFFF, kMinorOnly = 3u << 16;
    const struct
    {
        uint32_t version;
        int32_t ignoreVersion;
        const char16_t* vendor; // null: the form without one
        uint16_t lcid;
        const char16_t* key;
    } cases[] = {
        {kVersion, 0, nullptr, 0x0407, u"Software\\Vexmere Studio Works\\Demo\\12.3\\Lang"},
        {kVersion, 1, nullptr, 0x0C0A, u"Software\\Vexmere Studio Works\\Demo\\Lang"},
        {kMinorOnly, 0, nullptr, 0xFFFF, u"Software\\Vexmere Studio Works\\Demo\\Lang"},
        {kVersion, 0, u"Other", 0x0411, u"Software\\Other\\Demo\\12.3\\Lang"},
        {0, 0, u"Other", 0x0412, u"Software\\Other\\Demo\\Lang"},
    };
    for (const auto& c : cases) {
        const auto save = [&] {
            return c.vendor ? VxLang_SaveUserLCIDMetricAppReg(u"Demo", c.version, c.lcid, c.vendor)
                            : VxLang_SaveUserLCIDMetric(u"Demo", c.version, c.lcid, c.ignoreVersion);
        };
        uint32_t lcid = 0;
        EXPECT_EQ(save(), 1);
        EXPECT_EQ(Stored(HKEY_CURRENT_USER, c.key, u"ULangID"), c.lcid);
        EXPECT_EQ(Stored(HKEY_LOCAL_MACHINE, c.key, u"ULangID"), ~uint64_t(0));
        EXPECT_EQ(c.vendor ? VxLang_LoadUserLCIDMetricAppReg(u"Demo", c.version, &lcid, c.vendor)
                           : VxLang_LoadUserLCIDMetric(u"Demo", c.version, &lcid, c.ignoreVersion),
                  1);
        EXPECT_EQ(lcid, c.lcid);
    }
}

TEST(StoredLanguage, TheMachinesServesWhereTheUserHasNoKey)
{
    const char16_t* const key = u"Software\\Vexmere Studio Works\\Shared\\Lang";
    uint32_t lcid = 77;
    EXPECT_EQ(VxLang_LoadUserLCIDMetric(u"Shared", 0, &lcid, 0), 0);
    EXPECT_EQ(lcid, 77u);
    const DWORD polish = 0x0415;
    HKEY opened = nullptr;
    ASSERT_EQ(RegCreateKeyW(HKEY_LOCAL_MACHINE, key, &opened), ERROR_SUCCESS);
    EXPECT_EQ(RegSetValueExW(opened, u"ULangID", 0, REG_DWORD, reinterpret_cast<const BYTE*>(&polish), 4),
              0u);
    RegCloseKey(opened);
    EXPECT_EQ(VxLang_LoadUserLCIDMetric(u"Shared", 0, &lcid, 0), 1);
    EXPECT_EQ(lcid, polish);
    // A user's key without the value hides the machine's.
    ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, key, &opened), ERROR_SUCCESS);
    EXPECT_EQ(VxLang_LoadUserLCIDMetric(u"Shared", 0, &lcid, 0), 0);
    RegCloseKey(opened);
}

TEST(StoredLanguage, TheMachinesLocaleIsStoredForOthers)
{
    EXPECT_EQ(VxSetLocale(0x0407), S_OK);
    EXPECT_EQ(Stored(HKEY_LOCAL_MACHINE, u"Software\\Vexmere Studio Works\\Shared Information", u"Locale"),
              0x0407u);
    EXPECT_EQ(VxGetLocale(), 0u);
}
