#include "vx/capability.h"

#include "kernel/capability.h"
#include "kernel/vector_targets.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <hwy/targets.h>
#include <string>
#include <xmmintrin.h>

namespace {

// The block is one for the process: each test leaves the mask as it found it.
class Capability : public testing::Test
{
protected:
    void TearDown() override { VxAllowCPUSupport(0xFFFFFFFFu); }
};

TEST_F(Capability, WordHoldsWhatTheProcessorHasAndNoMore)
{
    const uint32_t word = VxGetCPUSupport(0);
    EXPECT_EQ(word & VX_CPU_CLASS_MASK, 3u);
    for (const uint32_t bit : {VX_CPU_SSE, VX_CPU_SSE2, VX_CPU_CMOV, VX_CPU_FPU, VX_CPU_TSC, VX_CPU_FTZ})
        EXPECT_TRUE(word & bit) << std::hex << bit << ": every x86-64 processor has it";
    EXPECT_EQ(word & (VX_CPU_MMX | VX_CPU_AVX), 0u) << "never shown in the CPU word";
    EXPECT_EQ(bool(word & VX_CPU_SSSE3), bool(__builtin_cpu_supports("ssse3")));
    EXPECT_EQ(bool(word & VX_CPU_SSE42), bool(__builtin_cpu_supports("sse4.2")));
    EXPECT_EQ(VxGetCPUSupport(VX_CPU_SSE2), VX_CPU_SSE2);
    EXPECT_GE(VxGetProcessorCount(), 1u);
}

TEST_F(Capability, ClassFollowsTheAllowMask)
{
    const std::pair<uint32_t, uint32_t> cases[] = {
        {VX_CPU_VECTOR, 6}, {VX_CPU_SSE | VX_CPU_MMX, 5}, {VX_CPU_MMX, 4}, {0, 0}};
    for (const auto& [allowed, wantClass] : cases) {
        VxOnlyAllowCPUSupport(allowed);
        EXPECT_EQ(VxSetCPUClassBySupport(), 1);
        EXPECT_EQ(VxGetCPUSupport(0) & VX_CPU_CLASS_MASK, wantClass);
    }
    VxOnlyAllowCPUSupport(VX_CPU_VECTOR);
    VxSetCPUClassBySupport();
    EXPECT_EQ(VxGetCPUSupport(VX_CPU_SSE2), VX_CPU_SSE2 | 6u) << "the override shows whatever the mask";
    VxOnlyAllowCPUSupport(0);
    VxSetCPUClassBySupport();
}

TEST_F(Capability, NarrowingTheMaskNarrowsTheVectorTargets)
{
    const std::pair<uint32_t, int64_t> cases[] = {
        // with these bits at most these targets
        {0, 0},
        {VX_CPU_SSE | VX_CPU_SSE2, 0},
        {VX_CPU_SSE | VX_CPU_SSE2 | VX_CPU_SSE3 | VX_CPU_SSSE3, HWY_SSSE3},
        {VX_CPU_VECTOR & ~VX_CPU_AVX, HWY_SSSE3 | HWY_SSE4},
        {VX_CPU_VECTOR & ~VX_CPU_SSE2, 0},
        {VX_CPU_VECTOR, HWY_SSSE3 | HWY_SSE4 | HWY_AVX2 | HWY_AVX3 | HWY_AVX3_DL},
    };
    for (const auto& [allowed, targets] : cases) {
        VxOnlyAllowCPUSupport(allowed);
        EXPECT_EQ(vx::AllowedVectorTargets(), targets & hwy::SupportedTargets()) << std::hex << allowed;
    }
}

// A process of its own, so that no other test has run the probe: it runs once.
TEST_F(Capability, OnlyTheProbeChangesTheFloatMode)
{
    EXPECT_EXIT(
        {
            const unsigned before = _mm_getcsr();
            vx::AllowedCpuFeatures();
            vx::AllowedVectorTargets();
            const bool untouched = _mm_getcsr() == before;
            VxGetProcessorCount();
            std::_Exit(untouched && _mm_getcsr() == (before | 0x8040) ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(FourCC, UnprintableByteEndsTheText)
{
    const std::pair<uint32_t, std::u16string> cases[] = {{0x756E6547, u"Genu"},
                                                         {0x41421F41, std::u16string(u"A\0BA", 4)},
                                                         {0x7F7E2080, std::u16string(u"\0 ~\0", 4)}};
    for (const auto& [fourCC, want] : cases) {
        std::u16string text = u"xxxxxx";
        VxFourCCToStringCPU(int32_t(fourCC), text.data());
        EXPECT_EQ(text, want + u'\0' + u'x');
    }
}

} // namespace
