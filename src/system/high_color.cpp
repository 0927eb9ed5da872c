#include "system/high_color.h"

#include "vx/osversion.h"
#include "vx/platform/display.h"

#include <atomic>

namespace vx {
namespace {

constexpr int kHighColorBits = 16;
constexpr int kUnknown = -1;

std::atomic<int> g_screen{kUnknown}, g_allMonitors{kUnknown};

int AskScreen()
{
    const HDC dc = GetDC(nullptr);
    const int bits = GetDeviceCaps(dc, BITSPIXEL);
    ReleaseDC(nullptr, dc);
    return bits >= kHighColorBits;
}

// A monitor that does not answer counts as one of high colour.
BOOL CheckMonitor(HMONITOR monitor, HDC, RECT*, LPARAM allHigh)
{
    MONITORINFOEXW info = {};
    info.cbSize = sizeof(info);
    const HDC dc =
        GetMonitorInfoW(monitor, &info) ? CreateDCW(u"DISPLAY", info.szDevice, nullptr, nullptr) : nullptr;
    if (!dc)
        return TRUE;
    if (GetDeviceCaps(dc, BITSPIXEL) < kHighColorBits)
        *reinterpret_cast<int*>(allHigh) = 0;
    DeleteDC(dc);
    return TRUE;
}

int AskMonitors()
{
    int allHigh = 1;
    EnumDisplayMonitors(nullptr, nullptr, CheckMonitor, reinterpret_cast<LPARAM>(&allHigh));
    return allHigh;
}

} // namespace

void RefreshHighColor()
{
    g_screen = AskScreen();
    g_allMonitors = AskMonitors();
}

} // namespace vx

int32_t VxIsHighColor()
{
    if (vx::g_screen == vx::kUnknown)
        vx::g_screen = vx::AskScreen();
    return vx::g_screen;
}

int32_t VxIsAllMonitorsHighColor()
{
    if (vx::g_allMonitors == vx::kUnknown)
        vx::g_allMonitors = vx::AskMonitors();
    return vx::g_allMonitors;
}
