#include "support/vector_levels.h"

#include "kernel/vector_targets.h"
#include "vx/capability.h"

#include <hwy/targets.h>

namespace vxtest {

std::vector<VectorLevel> VectorLevels()
{
    std::vector<VectorLevel> levels;
    const int64_t allowed = vx::AllowedVectorTargets();
    for (const int64_t target : {HWY_SSSE3, HWY_SSE4, HWY_AVX2, HWY_AVX3, HWY_AVX3_DL})
        if (allowed & target)
            levels.push_back({target, hwy::TargetName(target)});
    return levels;
}

OnlyLevel::OnlyLevel(const VectorLevel& level)
{
    if (level.target == 0)
        VxOnlyAllowCPUSupport(0);
    else
        vx::LimitVectorTargetsForTest(level.target);
}

OnlyLevel::~OnlyLevel()
{
    VxOnlyAllowCPUSupport(VX_CPU_VECTOR);
    vx::LimitVectorTargetsForTest(0);
}

} // namespace vxtest
