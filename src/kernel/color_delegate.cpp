#include "kernel/color_delegate.h"

#include "kernel/state.h"

#include <atomic>

namespace vx {
namespace {

using ColorFn = uint32_t (*)(int32_t id);
using AppKernelFn = HMODULE (*)();

struct Slot
{
    const char* exportName;
    std::atomic<ColorFn> function;
};

// Indexed by ColorLookup. Like the module they outlive the end of a run: who owns the colours does not
// change while the process lives.
constinit Slot slots[] = {{"VxGetUIColorAbsolute", nullptr}, {"VxGetUIColor", nullptr}};
constinit std::atomic<HMODULE> colorModule = nullptr;

template <class Function>
Function ExportOf(HMODULE module, const char* name)
{
    using AnyFn = void (*)(); // casts to and from which no compiler doubts
    return reinterpret_cast<Function>(reinterpret_cast<AnyFn>(GetProcAddress(module, name)));
}

void Resolve()
{
    if (!colorModule)
        if (const auto appKernel = ExportOf<AppKernelFn>(GetModuleHandleW(nullptr), "VxApp_GetAppKernel"))
            colorModule = appKernel();
    if (!colorModule)
        return;
    for (Slot& slot : slots)
        slot.function = ExportOf<ColorFn>(colorModule, slot.exportName);
}

} // namespace

std::optional<uint32_t> DelegatedColor(ColorLookup lookup, int32_t id)
{
    if (!(kernelState.colorMode & kDelegatedColors))
        return std::nullopt;
    Slot& slot = slots[int(lookup)];
    if (!slot.function)
        Resolve();
    if (const ColorFn function = slot.function)
        return function(id);
    kernelState.colorMode &= ~kDelegatedColors;
    return std::nullopt;
}

} // namespace vx
