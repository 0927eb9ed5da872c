#include "vx/platform/layout.h"

#include "vx/platform/lasterror.h"

#include <atomic>

namespace {

std::atomic<DWORD> g_layout;

BOOL RefuseParameter()
{
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
}

} // namespace

BOOL SetProcessDefaultLayout(DWORD layout)
{
    if (layout & ~LAYOUT_RTL)
        return RefuseParameter();
    g_layout = layout;
    return TRUE;
}

BOOL GetProcessDefaultLayout(DWORD* layout)
{
    if (!layout)
        return RefuseParameter();
    *layout = g_layout;
    return TRUE;
}
