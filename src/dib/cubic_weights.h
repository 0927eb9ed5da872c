// Weights of cubic convolution with a = -0.5 (R. G. Keys, "Cubic convolution interpolation for digital
// image processing", IEEE Trans. ASSP 29, 1981), for every fourth sub-pixel fraction.
#pragma once

#include "dib/fixed.h"

#include <array>
#include <cstdint>

namespace vx {

constexpr int32_t kCubicRows = kSubpixelOne / 4;

template <class Weight>
using CubicWeights = std::array<std::array<Weight, 4>, kCubicRows>;

// In single precision throughout. The kernel is one polynomial up to a distance of 1 from the sample,
// and another from there to 2.
constexpr float CubicNear(float t)
{
    return (t * 1.5f - 2.5f) * t * t + 1.0f;
}

constexpr float CubicFar(float s)
{
    return ((s * -0.5f + 2.5f) * s - 4.0f) * s + 2.0f;
}

constexpr CubicWeights<float> MakeCubicFloats()
{
    CubicWeights<float> rows{};
    for (int32_t i = 0; i < kCubicRows; ++i) {
        const float t = float(i) / kCubicRows;
        rows[size_t(i)] = {CubicFar(1.0f + t), CubicNear(t), CubicNear(1.0f - t), CubicFar(2.0f - t)};
    }
    return rows;
}

// Truncated: the four of a row sum to one, or to up to three units less or more.
constexpr CubicWeights<int16_t> MakeCubicIntegers()
{
    CubicWeights<int16_t> rows{};
    const CubicWeights<float> floats = MakeCubicFloats();
    for (size_t i = 0; i < rows.size(); ++i)
        for (size_t tap = 0; tap < 4; ++tap)
            rows[i][tap] = int16_t(floats[i][tap] * kSubpixelOne);
    return rows;
}

inline constexpr CubicWeights<float> kCubicFloats = MakeCubicFloats();
inline constexpr CubicWeights<int16_t> kCubicIntegers = MakeCubicIntegers();

} // namespace vx
