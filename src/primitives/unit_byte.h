// Colours on the 0.0 to 1.0 scale as bytes.
#pragma once

#include "primitives/rounding.h"

#include <cstdint>

namespace vx {

// The low 8 bits of trunc(value 255 + 0.5): wraps outside 0.0 to 1.0. From 2^31 on the integers that a
// float can hold are multiples of 256, and so 0 here, as is what Truncated32 makes of them.
inline uint8_t UnitByte(float value)
{
    return uint8_t(Truncated32(value * 255.0f + 0.5f));
}

} // namespace vx
