// Doubles to integers, as the time formulas need them: what does not fit, and a NaN, is the smallest
// integer, which is what the processor's own conversion gives.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace vx {

constexpr double kNanoUnitsPerSecond = 1e7;
constexpr double kSecondsPerNanoUnit = 0.0000001;

inline int64_t Truncated(double value)
{
    const bool fits = value >= -0x1p63 && value < 0x1p63;
    return fits ? int64_t(value) : std::numeric_limits<int64_t>::min();
}

// Half up for positive values.
inline int64_t Rounded(double value)
{
    return Truncated(value + 0.5);
}

// The largest integer not above the value, which may lie a little below the integer that is meant.
inline int64_t FlooredWithSlack(double value)
{
    return Truncated(std::floor(value + 0.000000015));
}

} // namespace vx
