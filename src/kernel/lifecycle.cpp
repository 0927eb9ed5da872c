// Start and end of the kernel, each a table of steps in their order.
#include "kernel/state.h"
#include "lang/kernel_language.h"
#include "system/high_color.h"
#include "text/tokens.h"
#include "time/timer.h"
#include "vx/capability.h"
#include "vx/errors.h"
#include "vx/internationals.h"
#include "vx/kernel.h"
#include "vx/osversion.h"
#include "vx/platform/errormode.h"
#include "vx/platform/lasterror.h"
#include "vx/timer.h"

#include <algorithm>

namespace vx {

constinit KernelState kernelState;
constinit KernelSteps kernelSteps;

namespace {

constexpr uint32_t kFirstApplicationCursor = 100;

void Run(void (*step)())
{
    if (step)
        step();
}

// No boxes of the system's about drives that are not ready or files that are not there. Setting is the only way to
// ask what the host had set.
void RaiseErrorMode()
{
    constexpr uint32_t kNoBoxes = SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX;
    SetErrorMode(SetErrorMode(kNoBoxes) | kNoBoxes);
}

uint32_t ColorModeOf(uint32_t flags)
{
    if (flags & VXKERNEL_OWN_COLORS)
        return kOwnColors;
    return flags & VXKERNEL_DELEGATE_COLORS ? kDelegatedColors : 0;
}

struct StartArguments
{
    HMODULE appKernel;
    uint32_t flags;
};

// After a failure only the steps that need no text are taken.
struct StartStep
{
    enum class After
    {
        Success,
        Anything,
    };
    After after;
    bool (*run)(const StartArguments& start);
};

template <auto step>
bool Always(const StartArguments&)
{
    step();
    return true;
}

constexpr StartStep kStart[] = {
    {StartStep::After::Anything, Always<RaiseErrorMode>},
    {StartStep::After::Anything, Always<[] { TimerEarlyInitialize(4); }>},
    {StartStep::After::Anything, Always<VxIsWin95>},
    {StartStep::After::Anything,
     [](const StartArguments& start) {
         kernelState.appKernel = start.appKernel;
         kernelState.flags = start.flags;
         return true;
     }},
    {StartStep::After::Anything, Always<[] { VxGetCPUSupport(0); }>}, // probes, where nobody has asked yet
    {StartStep::After::Anything,
     [](const StartArguments& start) {
         kernelState.colorMode = ColorModeOf(start.flags);
         return true;
     }},
    {StartStep::After::Anything,
     Always<[] { kernelState.firstApplicationCursor = kFirstApplicationCursor; }>},
    {StartStep::After::Anything, Always<[] { kernelState.hostExecutable = GetModuleHandleW(nullptr); }>},
    {StartStep::After::Anything, Always<[] { kernelState.splash = 0; }>},
    {StartStep::After::Anything, Always<[] { Run(kernelSteps.resetColors); }>},
    {StartStep::After::Success, [](const StartArguments&) { return CreatePrintTokens(); }},
    {StartStep::After::Success,
     [](const StartArguments& start) { return SUCCEEDED(OpenKernelLanguage(start.appKernel)); }},
    {StartStep::After::Success, Always<[] { VxLang_GetInternationals(nullptr, 0); }>},
    {StartStep::After::Anything, Always<VxTimer_LateInitialize>},
    {StartStep::After::Anything, Always<[] { Run(kernelSteps.startNumerics); }>},
};

using EndStep = void (*)();

constexpr EndStep kEnd[] = {
    CloseKernelLanguage,
    DestroyPrintTokens,
    [] { Run(kernelSteps.releaseColors); },
    [] { Run(kernelSteps.releaseUiObjects); },
    [] { Run(kernelSteps.releaseCursors); },
    [] { kernelState.appKernel = nullptr; },
};

} // namespace
} // namespace vx

using namespace vx;

int32_t VxKernel_EarlyInitialize(HMODULE appKernel, uint32_t flags)
{
    bool succeeded = true;
    for (const StartStep& step : kStart)
        if (succeeded || step.after == StartStep::After::Anything)
            succeeded &= step.run({appKernel, flags});
    return succeeded;
}

int32_t VxKernel_LateTerminate(void)
{
    for (const EndStep step : kEnd)
        step();
    return 1;
}

HMODULE VxKernel_GetAppKernel(void)
{
    return kernelState.appKernel;
}

HRESULT VxKernel_GetAppKernelPathName(char16_t* path, int32_t pathChars)
{
    if (GetModuleFileNameW(kernelState.appKernel, path, uint32_t(std::max(pathChars, 0))) == 0)
        return VxErrorHandler_TranslateWin32Error(GetLastError());
    return 0;
}

void VxKernel_UserPrefChanges(intptr_t, uint32_t message)
{
    if (message != WM_SYSCOLORCHANGE && message != WM_DISPLAYCHANGE)
        return;
    RefreshHighColor();
    if (message == WM_SYSCOLORCHANGE) {
        Run(kernelSteps.releaseColors);
        Run(kernelSteps.resetColors);
    }
}

void VxKernel_SetSplash(intptr_t window)
{
    kernelState.splash = window;
}

void VxDib_Initialize(void) {}

int32_t VxVideoDSP_ForceExternRef(void)
{
    return 0;
}
