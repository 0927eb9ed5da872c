// Arithmetic on the bytes of a frame that several primitives share, as their plain forms do it. The
// compiler turns each division by a constant into an exact multiplication.
#pragma once

#include "primitives/weights.h"

#include <algorithm>
#include <cstdint>

namespace vx {

// d moved toward s by w / 255, truncated: 0 gives d and 255 gives s.
inline uint8_t MixBytes(uint32_t d, uint32_t s, uint32_t w)
{
    return uint8_t((s * w + d * (255 - w)) / 255);
}

// d times w / 255. The term is 127, not 128: a remainder of 127 rounds down and one of 128 up.
inline uint8_t MultiplyBytes(uint32_t d, uint32_t w)
{
    return uint8_t((d * w + 127) / 255);
}

// d times the scaled weight of w, rounded and clamped. Beyond 32 bits it wraps.
inline uint8_t MultiplyScaled(uint32_t d, uint32_t w, ScaleOffset weight)
{
    const int32_t product = int32_t((w * weight.scale + weight.offset) * d + 130560);
    return uint8_t(std::clamp(product / 261120, 0, 255));
}

} // namespace vx
