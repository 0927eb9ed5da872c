#include "vx/platform/debug.h"

#include "platform/utf8.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>

namespace {

// One lock for both ways out keeps texts whole and an output alive while it runs. It is recursive, so
// that an output may send texts, and never destroyed, so that static destructors may.
struct DebugState
{
    std::recursive_mutex lock;
    VxPlatform_DebugOutput output = nullptr;
    void* context = nullptr;
    const bool toStandardError = std::getenv("VX_DEBUG") != nullptr;
};

DebugState& State()
{
    static DebugState& state = *new DebugState;
    return state;
}

} // namespace

void OutputDebugStringA(const char* text)
{
    if (text == nullptr)
        return;
    DebugState& state = State();
    const std::lock_guard guard(state.lock);
    if (state.toStandardError)
        std::fputs(text, stderr);
    if (state.output != nullptr)
        state.output(state.context, text);
}

void OutputDebugStringW(const WCHAR* text)
{
    if (text != nullptr)
        OutputDebugStringA(vxplatform::ToUtf8(text).c_str());
}

void VxPlatform_SetDebugOutput(VxPlatform_DebugOutput output, void* context)
{
    DebugState& state = State();
    const std::lock_guard guard(state.lock);
    state.output = output;
    state.context = context;
}
