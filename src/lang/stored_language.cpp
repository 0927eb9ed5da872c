// What is kept in the registry: the language that a user chose for an application, and the machine's locale.
#include "kernel/application_key.h"
#include "vx/lang.h"
#include "vx/platform/registry.h"

namespace vx {
namespace {

constexpr const char16_t* kLanguageValue = u"ULangID";

PathText LanguageKey(const char16_t* vendor, const char16_t* app, uint32_t version)
{
    return ApplicationKey(vendor, app, version).Add(u"\\Lang");
}

bool OpenToRead(const PathText& key, HKEY& opened)
{
    return RegOpenKeyExW(HKEY_CURRENT_USER, key.Text(), 0, KEY_READ, &opened) == ERROR_SUCCESS ||
           RegOpenKeyExW(HKEY_LOCAL_MACHINE, key.Text(), 0, KEY_READ, &opened) == ERROR_SUCCESS;
}

int32_t Load(const PathText& key, uint32_t* lcid)
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
    return SaveNumber(HKEY_CURRENT_USER, LanguageKey(vendor, app, version).Text(), kLanguageValue, lcid);
}

HRESULT VxSetLocale(uint32_t lcid)
{
    return SaveNumber(HKEY_LOCAL_MACHINE, kSharedInformationKey, u"Locale", lcid) ? S_OK : E_FAIL;
}

uint32_t VxGetLocale()
{
    return 0;
}
