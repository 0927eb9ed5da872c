#include "support/state_folder.h"
#include "vx/lang.h"
#include "vx/platform/registry.h"

#include <gtest/gtest.h>

namespace {

// What is stored as 32 bits; ~0 where there is no such value.
uint64_t Stored(HKEY root, const std::u16string& path, const char16_t* name)
{
    HKEY key = nullptr;
    DWORD number = 0, type = 0, bytes = sizeof(number);
    RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &key);
    const LSTATUS status =
        RegQueryValueExW(key, name, nullptr, &type, reinterpret_cast<BYTE*>(&number), &bytes);
    RegCloseKey(key);
    return status == ERROR_SUCCESS && type == REG_DWORD && bytes == 4 ? number : ~uint64_t(0);
}

} // namespace

TEST(StoredLanguage, IsKeptByVendorApplicationAndVersion)
{
    constexpr uint32_t kVersion = 200u << 24 | 131u << 16 | 0xFFFF, kMinorOnly = 3u << 16;
    constexpr const char16_t* kOwn = u"Vexmere Studio Works";
    const struct
    {
        uint32_t version;
        int32_t ignoreVersion;
        const char16_t* vendor;
        uint16_t lcid;
        const char16_t* key;
    } cases[] = {
        {kVersion, 0, kOwn, 0x0407, u"\\Demo\\200.131\\Lang"},
        {kVersion, 1, kOwn, 0x0C0A, u"\\Demo\\Lang"},
        {kMinorOnly, 0, kOwn, 0xFFFF, u"\\Demo\\Lang"},
        {0, 0, u"Other", 0x0412, u"\\Demo\\Lang"},
        {kVersion, 0, u"Other", 0x0411, u"\\Demo\\200.131\\Lang"},
    };
    for (const auto& c : cases) {
        const bool own = c.vendor == kOwn;
        const std::u16string key = std::u16string(u"Software\\") + c.vendor + c.key;
        uint32_t lcid = 0;
        EXPECT_TRUE(own ? VxLang_SaveUserLCIDMetric(u"Demo", c.version, c.lcid, c.ignoreVersion)
                        : VxLang_SaveUserLCIDMetricAppReg(u"Demo", c.version, c.lcid, c.vendor));
        EXPECT_EQ(Stored(HKEY_CURRENT_USER, key, u"ULangID"), c.lcid);
        EXPECT_EQ(Stored(HKEY_LOCAL_MACHINE, key, u"ULangID"), ~uint64_t(0));
        EXPECT_TRUE(own ? VxLang_LoadUserLCIDMetric(u"Demo", c.version, &lcid, c.ignoreVersion)
                        : VxLang_LoadUserLCIDMetricAppReg(u"Demo", c.version, &lcid, c.vendor));
        EXPECT_EQ(lcid, c.lcid);
    }
}
