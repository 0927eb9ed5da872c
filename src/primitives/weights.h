// Weights from the double arguments of the primitives.
#pragma once

#include "primitives/rounding.h"

#include <cstdint>

namespace vx {

// A mask byte w weighs (w scale + offset) / (255 * 1024).
struct ScaleOffset
{
    uint32_t scale;
    uint32_t offset;
};

inline ScaleOffset ScaleOffsetOf(double scale, double offset)
{
    return {Truncated32(scale * 1024.0), Truncated32(offset * 1024.0)};
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
