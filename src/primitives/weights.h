// Integer weights from the double arguments of the primitives, and the roundings that they share.
#pragma once

#include <cstdint>
#include <limits>

namespace vx {

// The integer part, truncated toward zero; what lies beyond 32 bits, and a NaN, is taken as the
// processor's conversion does: the smallest integer.
inline uint32_t TruncatedWeight(double value)
{
    const bool fits = value > -2147483649.0 && value < 2147483648.0;
    return uint32_t(fits ? int32_t(value) : std::numeric_limits<int32_t>::min());
}

} // namespace vx
