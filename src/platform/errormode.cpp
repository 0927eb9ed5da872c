#include "vx/platform/errormode.h"

#include <atomic>

namespace {
std::atomic<UINT> g_errorMode{0};
}

UINT SetErrorMode(UINT mode)
{
    return g_errorMode.exchange(mode);
}

UINT GetErrorMode()
{
    return g_errorMode;
}
