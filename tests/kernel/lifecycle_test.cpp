// The kernel's start and end, in a process of their own.
#include "vx/kernel.h"

#include "kernel/color_delegate.h"
#include "kernel/state.h"
#include "lang/kernel_language.h"
#include "vx/errors.h"
#include "vx/platform/errormode.h"
#include "vx/platform/testing.h"
#include "vx/print.h"
#include "vx/timer.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

static HMODULE g_colorOwner = nullptr; // what this host names

extern "C" VX_EXPORT HMODULE VxApp_GetAppKernel()
{
    return g_colorOwner;
}

namespace {

using namespace vx;

std::string calls; // a letter for each step of the families above

class Kernel : public testing::Test
{
protected:
    Kernel()
    {
        kernelSteps = {[] { calls += 'r'; }, [] { calls += 'c'; }, [] { calls += 'u'; }, [] { calls += 'k'; },
                       [] { calls += 'n'; }};
        calls.clear();
    }
    ~Kernel() override
    {
        VxPlatform_FailAllocationAt(0);
        VxKernel_LateTerminate();
        kernelSteps = {};
    }
};

std::u16string Printed(const char16_t* format)
{
    char16_t text[100];
    VxPrintF(text, format);
    return text;
}

std::u16string AppKernelPath()
{
    char16_t path[260];
    EXPECT_EQ(VxKernel_GetAppKernelPathName(path, 260), S_OK);
    return path;
}

HMODULE ColorModule()
{
    std::u16string path = u"C:" + std::filesystem::path(VX_TEST_COLORS).u16string();
    return LoadLibraryW(path.c_str());
}

TEST_F(Kernel, ColorModesOfTheFlags)
{
    const std::pair<uint32_t, uint32_t> cases[] = {
        {0, 0}, {0x01, kOwnColors}, {0x20, kDelegatedColors}, {0x21, kOwnColors}, {~0x21u, 0}};
    for (const auto& [flags, mode] : cases) {
        EXPECT_EQ(VxKernel_EarlyInitialize(nullptr, flags), 1);
        EXPECT_EQ(kernelState.colorMode, mode) << flags;
        EXPECT_EQ(kernelState.flags, flags);
    }
}

TEST_F(Kernel, ARunFromStartToEnd)
{
    const HMODULE module = ColorModule();
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(VxKernel_GetAppKernel(), nullptr);
    const std::u16string executable = AppKernelPath();
    SetErrorMode(SEM_NOGPFAULTERRORBOX);
    VxKernel_SetSplash(1);

    EXPECT_EQ(VxKernel_EarlyInitialize(module, 0), 1);
    EXPECT_EQ(calls, "rn");
    EXPECT_EQ(VxKernel_GetAppKernel(), module);
    EXPECT_TRUE(AppKernelPath().ends_with(u"vx_test_colors.so"));
    char16_t path[] = u"####";
    EXPECT_EQ(VxKernel_GetAppKernelPathName(path, 0), E_FAIL) << "a code without a status of its own";
    EXPECT_EQ(path, std::u16string(u"####"));
    EXPECT_EQ(VxKernel_GetAppKernelPathName(path, 4), S_OK);
    EXPECT_EQ(path, AppKernelPath().substr(0, 3));
    EXPECT_EQ(GetErrorMode(), SEM_NOGPFAULTERRORBOX | SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
    EXPECT_EQ(kernelState.splash, 0) << "named too early";
    EXPECT_EQ(kernelState.firstApplicationCursor, 100u);
    EXPECT_EQ(kernelState.hostExecutable, GetModuleHandleW(nullptr));
    EXPECT_EQ(Printed(u"$(SMPTE.Whole)"), u":") << "the locale's tokens stand";
    VxPrintF_AddToken(u"own", u"mine");
    VxKernel_SetSplash(7);
    EXPECT_EQ(kernelState.splash, 7);

    const HVXLANG language = g_kernelLanguage;
    EXPECT_EQ(VxKernel_EarlyInitialize(nullptr, VXKERNEL_OWN_COLORS), 1) << "again";
    EXPECT_EQ(g_kernelLanguage, language);
    EXPECT_EQ(Printed(u"$(own)"), u"mine");
    EXPECT_EQ(kernelState.splash, 0);
    EXPECT_EQ(AppKernelPath(), executable);
    EXPECT_EQ(calls, "rnrn");

    for (int i = 0; i < 2; ++i) {
        calls.clear();
        EXPECT_EQ(VxKernel_LateTerminate(), 1);
        EXPECT_EQ(calls, "cuk");
        EXPECT_EQ(g_kernelLanguage, nullptr);
    }
    EXPECT_EQ(VxKernel_EarlyInitialize(module, 0), 1);
    EXPECT_NE(Printed(u"$(own)"), u"mine");
    VxKernel_LateTerminate();
    EXPECT_EQ(VxKernel_GetAppKernel(), nullptr);
    FreeLibrary(module);
}

// The first starts of a process also fill caches; here each allocation of a later one fails in turn.
TEST_F(Kernel, AStartWithoutMemoryFailsAndCanBeRepeated)
{
    VxKernel_EarlyInitialize(nullptr, 0);
    VxKernel_LateTerminate();
    VxPlatform_FailAllocationAt(1);
    EXPECT_EQ(VxKernel_EarlyInitialize(nullptr, 0), 0);
    EXPECT_EQ(g_kernelLanguage, nullptr) << "not without tokens";
    int failures = 0;
    for (int nth = 1; nth <= 6; ++nth) {
        calls.clear();
        VxPlatform_FailAllocationsFrom(nth);
        const int32_t started = VxKernel_EarlyInitialize(nullptr, 0);
        VxPlatform_FailAllocationAt(0);
        failures += !started;
        EXPECT_EQ(started, g_kernelLanguage != nullptr) << nth;
        EXPECT_EQ(calls, "rn") << "the others go on";
        EXPECT_GE(VxGetMicrosec(), 0);
        VxKernel_LateTerminate();
        EXPECT_EQ(VxKernel_EarlyInitialize(nullptr, 0), 1) << nth;
        VxKernel_LateTerminate();
    }
    EXPECT_GE(failures, 4);
}

TEST(Errors, SystemCodesAsStatuses)
{
    const uint32_t cases[][3] = {// of the system, of its dialogs
                                 {0, 0, 0},
                                 {2, 0x8004E00A, 0x8007000E},
                                 {5, 0x80070005, 0x8007000E},
                                 {6, 0x80070006, 0x8004E00E},
                                 {127, 0x8004E00A, 0x80004005},
                                 {0x3002, 0x80004005, 0x8004E00D},
                                 {0xFFFF, 0x80004005, 0x80070057},
                                 {0xFFFFFFFF, 0x80004005, 0x80004005}};
    for (const auto& [error, system, dialog] : cases) {
        EXPECT_EQ(uint32_t(VxErrorHandler_TranslateWin32Error(error)), system) << error;
        EXPECT_EQ(uint32_t(VxErrorHandler_TranslateCommDlgError(error)), dialog) << error;
    }
}

// One test, as what is resolved stays for the process.
TEST_F(Kernel, ColorsOfAnotherModule)
{
    EXPECT_EQ(DelegatedColor(ColorLookup::Nearest, 5), std::nullopt) << "before any start";
    VxKernel_EarlyInitialize(nullptr, VXKERNEL_OWN_COLORS);
    EXPECT_EQ(DelegatedColor(ColorLookup::Nearest, 5), std::nullopt);

    VxKernel_EarlyInitialize(nullptr, VXKERNEL_DELEGATE_COLORS);
    EXPECT_EQ(DelegatedColor(ColorLookup::Nearest, 5), std::nullopt) << "the host names no module";
    EXPECT_EQ(kernelState.colorMode, 0u);
    g_colorOwner = ColorModule();
    EXPECT_EQ(DelegatedColor(ColorLookup::Nearest, 5), std::nullopt) << "given up until the next start";

    VxKernel_EarlyInitialize(nullptr, VXKERNEL_DELEGATE_COLORS);
    EXPECT_EQ(DelegatedColor(ColorLookup::Nearest, 5), 0x105u);
    EXPECT_EQ(DelegatedColor(ColorLookup::Absolute, 7), 0x207u);
    g_colorOwner = nullptr;
    EXPECT_EQ(DelegatedColor(ColorLookup::Nearest, 6), 0x106u) << "resolved once";
}

} // namespace
