// What is kept in the registry: the language that a user chose for an application, and the machine's locale.
#include "vx/lang.h"
#include "vx/platform/registry.h"
#include "vx/print.h"

namespace vx {
namespace {

constexpr const char16_t* kVendor = u"Vexmere Studio Works";
constexpr const char16_t* kLanguageValue = u"ULangID";
constexpr uint32_t kKeyChars = 260;

// The key of an application's language; it is one for all versions where the major number is 0.
struct LanguageKey
{
    LanguageKey(const char16_t* vendor, const char16_t* app, uint32_t version)
    {
        const uint32_t major = version >> 24, minor = version >> 16 & 0xFF;
        if (major)
            VxCchPrintF(text, kKeyChars, nullptr, u"Software\\%s\\%s\\%d.%d\\Lang", vendor, app, major,
                        minor);
        else
            VxCchPrintF(text, kKeyChars, nullptr, u"Software\\%s\\%s\\Lang", vendor, app);
    }

    char16_t text[kKeyChars];
};

bool OpenToRead(const LanguageKey& key, HKEY& opened)
{
    return RegOpenKeyExW(HKEY_CURRENT_USER, key.text, 0, KEY_READ, &opened) == ERROR_SUCCESS ||
           RegOpenKeyExW(HKEY_LOCAL_MACHINE, key.text, 0, KEY_READ, &opened) == ERROR_SUCCESS;
}

int32_t Load(const LanguageKey& key, uint32_t* lcid)
{
    HKEY opened;
    if (!OpenToRead(key, opened))
        return 0;
    DWORD value = 0, bytes = sizeof(value);
    const LSTATUS status =
        RegQueryValueExW(opened, kLanguageValue, nullptr, nullptr, reinterpret_cast<BYTE*>(&value), &bytes);
    RegCloseKey(opened);
    if (status != ERROR_SUCCESS)
        return 0;
    *lcid = value;
    return 1;
}

bool SaveNumber(HKEY root, const char16_t* key, const char16_t* name, DWORD number)
{
    HKEY opened;
    if (RegCreateKeyExW(root, key, 0, nullptr, 0, KEY_WRITE, nullptr, &opened, nullptr) != ERROR_SUCCESS)
        return false;
    const LSTATUS status =
        RegSetValueExW(opened, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof(number));
    RegCloseKey(opened);
    return status == ERROR_SUCCESS;
}

} // namespace
} // namespace vx

using namespace vx;

int32_t VxLang_LoadUserLCIDMetric(const char16_t* app, uint32_t version, uint32_t* lcid,
                                  int32_t ignoreVersion)
{
    return VxLang_LoadUserLCIDMetricAppReg(app, ignoreVersion ? 0 : version, lcid, kVendor);
}

int32_t VxLang_LoadUserLCIDMetricAppReg(const char16_t* app, uint32_t version, uint32_t* lcid,
                                        const char16_t* vendor)
{
    return Load(LanguageKey(vendor, app, version), lcid);
}

int32_t VxLang_SaveUserLCIDMetric(const char16_t* app, uint32_t version, uint16_t lcid, int32_t ignoreVersion)
{
    return VxLang_SaveUserLCIDMetricAppReg(app, ignoreVersion ? 0 : version, lcid, kVendor);
}

int32_t VxLang_SaveUserLCIDMetricAppReg(const char16_t* app, uint32_t version, uint16_t lcid,
                                        const char16_t* vendor)
{
    return SaveNumber(HKEY_CURRENT_USER, LanguageKey(vendor, app, version).text, kLanguageValue, lcid);
}

HRESULT VxSetLocale(uint32_t lcid)
{
    const bool saved = SaveNumber(HKEY_LOCAL_MACHINE, u"Software\\Vexmere Studio Works\\Shared Information",
                                  u"Locale", lcid);
    return saved ? S_OK : E_FAIL;
}

uint32_t VxGetLocale()
{
    return 0;
}
