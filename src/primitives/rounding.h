// From floating point to integers.
//
// The biased rounding of the primitives is value + 1.5e-8 in double, then the nearest integer.
//
// The bias turns the processor's "halves to even" into "halves up" wherever frames have halves, and
// decides nothing else for a 32-bit float: the float next to a half is at least 2^-25 (3.0e-8) away from
// it, and the first half whose double swallows the bias lies far above 2^23, where floats have no halves.
// So for a float it is exactly floor(double(value) + 0.5), which a vector form may use; for a double
// computed on the way it is not, since a value that falls short of a half by less than the bias goes up.
//
// Where the result is clamped afterwards, the value saturates first: what is far above must not come out
// at the bottom. Only where the low bits are what is asked for, the low bits of the true integer are.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace vx {

// The integer part, truncated toward zero; what lies beyond 32 bits, and a NaN, is taken as the
// processor's conversion does: the smallest integer.
inline uint32_t Truncated32(double value)
{
    const bool fits = value > -2147483649.0 && value < 2147483648.0;
    return uint32_t(fits ? int32_t(value) : std::numeric_limits<int32_t>::min());
}

constexpr double kRoundingBias = 1.5e-8;

// The rounded value, still a double; infinities and NaNs stay.
inline double BiasedRound(double value)
{
    constexpr double kNoFraction = 0x1p52; // doubles from here on are integers; adding it rounds lesser ones
    const double biased = value + kRoundingBias;
    const double shift = std::copysign(kNoFraction, biased);
    return std::fabs(biased) < kNoFraction ? (biased + shift) - shift : biased;
}

// Held to first..last; a NaN gives first.
inline int32_t BiasedRoundClamped(double value, int32_t first, int32_t last)
{
    const double rounded = BiasedRound(value);
    if (!(rounded > first))
        return first;
    return rounded < last ? int32_t(rounded) : last;
}

// The low 32 bits of the integer, as a signed number. They are 0 from 2^63 on for any float, and taken
// as 0 for doubles, infinities and NaNs there, as the processor's 64-bit conversion leaves them.
inline int32_t BiasedRoundLow32(double value)
{
    const double rounded = BiasedRound(value);
    return std::fabs(rounded) < 0x1p63 ? int32_t(uint32_t(int64_t(rounded))) : 0;
}

} // namespace vx
