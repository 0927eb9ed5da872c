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

// A mask byte w weighs (w scale + offset) / (255 * 1024).
struct ScaleOffset
{
    uint32_t scale;
    uint32_t offset;
};

inline ScaleOffset ScaleOffsetOf(double scale, double offset)
{
    return {TruncatedWeight(scale * 1024.0), TruncatedWeight(offset * 1024.0)};
}

// So near to scale 1 and offset 0 that a mask byte weighs w / 255.
inline bool IsUnscaled(double scale, double offset)
{
    return scale >= 0.9999 && scale <= 1.0001 && offset >= -0.0001 && offset <= 0.0001;
}

// The same for float frames, whose scale takes a byte to 0.0 to 1.0.
struct FloatScaleOffset
{
    float scale;
    float offset;
};

inline FloatScaleOffset FloatScaleOffsetOf(double scale, double offset)
{
    return {float(scale / 255.0), float(offset)};
}

} // namespace vx
