// Sub-pixel coordinates, in 1/16384 of a pixel, and the blend of bytes.
#pragma once

#include <algorithm>
#include <cstdint>

namespace vx {

constexpr int32_t kSubpixelBits = 14;
constexpr int32_t kSubpixelOne = 1 << kSubpixelBits;

constexpr int32_t SubpixelFraction(int32_t coordinate)
{
    return coordinate & (kSubpixelOne - 1);
}

// The whole pixel at or below a coordinate, still in sub-pixel units.
constexpr int32_t SubpixelFloor(int32_t coordinate)
{
    return coordinate - SubpixelFraction(coordinate);
}

// The whole pixel at or above it; wraps at the top of 32 bits.
constexpr int32_t SubpixelCeiling(int32_t coordinate)
{
    return int32_t(((uint32_t(coordinate) - 1) | (kSubpixelOne - 1)) + 1);
}

// v moved towards c by a / 255, a from 0 to 255, without a division: rounded upwards, and downwards
// within 1 / 256 of that.
constexpr uint8_t BlendByte(uint8_t v, uint8_t c, int32_t a)
{
    const int32_t x = (c - v) * a + 128;
    return uint8_t(std::clamp(((x + (x >> 8)) >> 8) + v, 0, 255));
}

// The integer part; its low bits are what is stored. What does not fit 32 bits counts as 0, as its low
// bits are where the processor converts it.
constexpr uint32_t CutTo32(float x)
{
    return x >= -2147483648.0f && x < 2147483648.0f ? uint32_t(int32_t(x)) : 0;
}

} // namespace vx
