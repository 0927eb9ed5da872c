// The choice between a row worker's plain form and its vector forms, made once a call.
//
// A source that has a vector form includes itself through <hwy/foreach_target.h>, exports the
// function with HWY_EXPORT and asks VX_VECTOR_FORM(Function, PlainFunction) for the form to call.
// Highway's own dispatch is not used: it would ask the processor, and a host may have narrowed the
// capability word below that.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vx {

// The set of Highway's targets (HWY_AVX2 and its like) that this processor has and the host allows.
int64_t AllowedVectorTargets();

// Tests pick single targets with it, which the capability word cannot name; 0 lifts the limit.
void LimitVectorTargetsForTest(int64_t targets);

// Position in a HWY_EXPORT table of the best allowed target among `compiled`; 0 where there is none.
size_t BestVectorTarget(int64_t compiled);

} // namespace vx

#define VX_VECTOR_FORM(function, plain)                                     \
    [] {                                                                    \
        const size_t target = ::vx::BestVectorTarget(HWY_TARGETS);          \
        return target == 0 ? &plain : HWY_DISPATCH_TABLE(function)[target]; \
    }()
