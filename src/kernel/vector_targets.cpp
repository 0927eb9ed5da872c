#include "kernel/vector_targets.h"

#include "kernel/capability.h"
#include "vx/capability.h"

#include <atomic>
#include <bit>
#include <hwy/targets.h>

namespace vx {
namespace {

// Highway has no target below SSSE3: on a lesser processor, and for a host that narrows the word to
// SSE2, the plain forms run, which the compiler vectorises for SSE2 where that pays.
struct TargetNeed
{
    int64_t targets;
    uint32_t bits; // of the capability word, all of them
};

constexpr int64_t kAllTargets = -1;
std::atomic<int64_t> g_testedTargets{kAllTargets}; // written by tests only

constexpr uint32_t kSsse3Bits = VX_CPU_SSE | VX_CPU_SSE2 | VX_CPU_SSE3 | VX_CPU_SSSE3;
constexpr uint32_t kSse4Bits = kSsse3Bits | VX_CPU_SSE41 | VX_CPU_SSE42;
constexpr TargetNeed kNeeds[] = {
    {HWY_SSSE3, kSsse3Bits},
    {HWY_SSE4, kSse4Bits},
    {HWY_AVX2 | HWY_AVX3 | HWY_AVX3_DL, kSse4Bits | VX_CPU_AVX},
};

// Highway asks the processor anew on each call, which takes microseconds in a virtual machine.
int64_t SupportedTargets()
{
    static const int64_t targets = hwy::SupportedTargets();
    return targets;
}

} // namespace

int64_t AllowedVectorTargets()
{
    const uint32_t features = AllowedCpuFeatures();
    int64_t allowed = 0;
    for (const TargetNeed& need : kNeeds)
        if ((features & need.bits) == need.bits)
            allowed |= need.targets;
    return allowed & SupportedTargets() & g_testedTargets;
}

void LimitVectorTargetsForTest(int64_t targets)
{
    g_testedTargets = targets == 0 ? kAllTargets : targets;
}

size_t BestVectorTarget(int64_t compiled)
{
    const uint64_t usable = uint64_t(HWY_CHOSEN_TARGET_SHIFT(AllowedVectorTargets() & compiled));
    return usable == 0 ? 0 : size_t(std::countr_zero(usable));
}

} // namespace vx
