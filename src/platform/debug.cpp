#include "vx/platform/debug.h"

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

void AppendUtf8(std::string& out, char32_t c)
{
    if (c < 0x80) {
        out += char(c);
        return;
    }
    const int trailing = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    constexpr unsigned kLead[] = {0, 0xC0, 0xE0, 0xF0};
    out += char(kLead[trailing] | c >> (6 * trailing));
    for (int i = trailing - 1; i >= 0; --i)
        out += char(0x80 | (c >> (6 * i) & 0x3F));
}

std::string ToUtf8(const WCHAR* text)
{
    std::string out;
    while (*text != 0) {
        char32_t c = *text++;
        const bool high = c >= 0xD800 && c < 0xDC00;
        if (high && *text >= 0xDC00 && *text < 0xE000)
            c = 0x10000 + ((c - 0xD800) << 10) + (*text++ - 0xDC00u);
        else if (c >= 0xD800 && c < 0xE000)
            c = 0xFFFD;
        AppendUtf8(out, c);
    }
    return out;
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
        OutputDebugStringA(ToUtf8(text).c_str());
}

void VxPlatform_SetDebugOutput(VxPlatform_DebugOutput output, void* context)
{
    DebugState& state = State();
    const std::lock_guard guard(state.lock);
    state.output = output;
    state.context = context;
}
