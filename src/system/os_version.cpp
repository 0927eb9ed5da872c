#include "system/os_version.h"

#include "vx/osversion.h"
#include "vx/platform/system.h"
#include "vx/print.h"

#include <compare>

namespace vx {
namespace {

struct Level
{
    DWORD platform, major, minor;
    std::strong_ordering operator<=>(const Level&) const = default;
};

Level LevelOf(int32_t level)
{
    switch (level) {
    case VXOS_95:
        return {VER_PLATFORM_WIN32_WINDOWS, 4, 0};
    case VXOS_98:
    case VXOS_98_SP1:
        return {VER_PLATFORM_WIN32_WINDOWS, 4, 1};
    case VXOS_NT4:
        return {VER_PLATFORM_WIN32_NT, 4, 0};
    case VXOS_2000:
        return {VER_PLATFORM_WIN32_NT, 5, 0};
    case VXOS_XP:
        return {VER_PLATFORM_WIN32_NT, 5, 1};
    case VXOS_VISTA:
        return {VER_PLATFORM_WIN32_NT, 6, 0};
    case VXOS_7:
        return {VER_PLATFORM_WIN32_NT, 6, 1};
    case VXOS_8:
        return {VER_PLATFORM_WIN32_NT, 6, 2};
    default:
        return {VER_PLATFORM_WIN32_WINDOWS, 0, 0};
    }
}

OSVERSIONINFOEXW ThisSystem()
{
    OSVERSIONINFOEXW info = {};
    info.dwOSVersionInfoSize = sizeof(info);
    GetVersionExW(&info);
    return info;
}

const char16_t* NameOfOldLine(const OSVERSIONINFOEXW& system)
{
    if (system.dwMajorVersion < 4)
        return u"Windows 95";
    if (system.dwMinorVersion >= 90)
        return u"Windows Me";
    if (system.dwMinorVersion >= 1)
        return system.szCSDVersion[1] == u'A' ? u"Windows 98 SE" : u"Windows 98";
    return system.dwMajorVersion == 4 ? u"Windows 95" : nullptr;
}

const char16_t* NameOfNT(const OSVERSIONINFOEXW& system)
{
    switch (system.dwMajorVersion) {
    case 4:
        return u"Windows NT";
    case 5:
        return system.dwMinorVersion == 0 ? u"Windows 2000" : u"Windows XP";
    case 6: {
        constexpr const char16_t* kNames[] = {u"Windows Vista", u"Windows 7", u"Windows 8"};
        return system.dwMinorVersion < 3 ? kNames[system.dwMinorVersion] : nullptr;
    }
    default:
        return nullptr;
    }
}

// Of the systems that come in both.
const char16_t* AddressWidth(const OSVERSIONINFOEXW& system)
{
    if (system.dwMajorVersion < 5)
        return u"";
    SYSTEM_INFO machine;
    GetNativeSystemInfo(&machine);
    switch (machine.wProcessorArchitecture) {
    case PROCESSOR_ARCHITECTURE_INTEL:
        return u" (32-bit)";
    case PROCESSOR_ARCHITECTURE_AMD64:
        return u" (64-bit)";
    default:
        return u"";
    }
}

} // namespace

bool IsAtLeast(const OSVERSIONINFOEXW& system, int32_t level, uint16_t servicePack)
{
    const Level wanted = LevelOf(level);
    const Level has = {system.dwPlatformId, system.dwMajorVersion, system.dwMinorVersion};
    if (has.platform != wanted.platform)
        return false;
    if (has != wanted)
        return has > wanted;
    return system.wServicePackMajor >= (level == VXOS_98_SP1 ? 1 : servicePack);
}

const char16_t* NameOf(const OSVERSIONINFOEXW& system)
{
    switch (system.dwPlatformId) {
    case VER_PLATFORM_WIN32_WINDOWS:
        return NameOfOldLine(system);
    case VER_PLATFORM_WIN32_NT:
        return NameOfNT(system);
    default:
        return nullptr;
    }
}

} // namespace vx

using namespace vx;

int32_t VxOSVersionOK(int32_t level, uint16_t servicePack)
{
    return IsAtLeast(ThisSystem(), level, servicePack);
}

int32_t VxGetOS(char16_t* text, int32_t capacity)
{
    const OSVERSIONINFOEXW system = ThisSystem();
    const char16_t* name = NameOf(system);
    if (text && capacity >= 1) {
        if (name)
            VxCchPrintF(text, uint32_t(capacity), nullptr, u"%s%s", name, AddressWidth(system));
        else
            VxCchPrintF(text, uint32_t(capacity), nullptr, u"Unknown %d-%d.%d", system.dwPlatformId,
                        system.dwMajorVersion, system.dwMinorVersion);
    }
    return name != nullptr;
}

int32_t VxIsWin95()
{
    static const bool is = ThisSystem().dwPlatformId == VER_PLATFORM_WIN32_WINDOWS;
    return is;
}

int32_t VxIsOS64Bit()
{
    return 1;
}
