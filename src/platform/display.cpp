#include "vx/platform/display.h"

#include "vx/platform/lasterror.h"
#include "vx/platform/rect.h"
#include "vx/platform/strings.h"

#include <cstring>

namespace {

constexpr RECT kScreen = {0, 0, 1920, 1080};
constexpr WCHAR kMonitorName[] = u"\\\\.\\DISPLAY1";
constexpr DWORD kInfoWithoutName = offsetof(MONITORINFOEXW, szDevice);

// Their addresses are the handles: there is one monitor, and all contexts of it are the same.
char g_monitor, g_context;

const HMONITOR kMonitor = &g_monitor;
const HDC kContext = &g_context;

template <class Result>
Result Fail(DWORD error)
{
    SetLastError(error);
    return Result();
}

bool IsContext(HDC dc)
{
    return dc == kContext || Fail<bool>(ERROR_INVALID_HANDLE);
}

} // namespace

HDC GetDC(HWND window)
{
    return window ? Fail<HDC>(ERROR_INVALID_HANDLE) : kContext;
}

int ReleaseDC(HWND, HDC dc)
{
    return IsContext(dc);
}

HDC CreateDCW(const WCHAR* driver, const WCHAR* device, const WCHAR*, const void*)
{
    const bool byDriver = driver && lstrcmpiW(driver, u"DISPLAY") == 0;
    const bool byName = !driver || byDriver || lstrcmpiW(driver, kMonitorName) == 0;
    const bool isThere = device ? lstrcmpiW(device, kMonitorName) == 0 : driver != nullptr;
    return byName && isThere ? kContext : Fail<HDC>(ERROR_INVALID_PARAMETER);
}

BOOL DeleteDC(HDC dc)
{
    return IsContext(dc);
}

int GetDeviceCaps(HDC dc, int index)
{
    if (!IsContext(dc))
        return 0;
    switch (index) {
    case HORZRES:
        return kScreen.right;
    case VERTRES:
        return kScreen.bottom;
    case BITSPIXEL:
        return 32;
    case PLANES:
        return 1;
    default:
        return 0;
    }
}

BOOL EnumDisplayMonitors(HDC dc, const RECT* area, MONITORENUMPROC callback, LPARAM data)
{
    if (dc)
        return Fail<BOOL>(ERROR_CALL_NOT_IMPLEMENTED);
    RECT touched, screen = kScreen;
    if (area && !IntersectRect(&touched, area, &kScreen))
        return TRUE;
    return callback(kMonitor, nullptr, &screen, data);
}

BOOL GetMonitorInfoW(HMONITOR monitor, MONITORINFOEXW* info)
{
    if (monitor != kMonitor)
        return Fail<BOOL>(ERROR_INVALID_HANDLE);
    if (info->cbSize != sizeof(*info) && info->cbSize != kInfoWithoutName)
        return Fail<BOOL>(ERROR_INVALID_PARAMETER);
    info->rcMonitor = info->rcWork = kScreen;
    info->dwFlags = MONITORINFOF_PRIMARY;
    if (info->cbSize == sizeof(*info))
        std::memcpy(info->szDevice, kMonitorName, sizeof(kMonitorName));
    return TRUE;
}
