// Runs a primitive in every form against a slow account of what it does to one pixel.
#pragma once

#include "support/frames.h"
#include "support/vector_levels.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace vxtest {

inline std::vector<VectorLevel> AllForms()
{
    std::vector<VectorLevel> forms = VectorLevels();
    forms.push_back(kPlain);
    return forms;
}

template <class PixelFn>
void ForEachPixel(Frame& frame, PixelFn pixel)
{
    for (int32_t y = 0; y < frame.Height(); ++y)
        for (int32_t x = 0; x < frame.Width(); ++x)
            pixel(frame.Pixel(x, y));
}

// prepare(frame, random) fills the frame further, operation(frame) calls the primitive in place, and
// pixel(bytes) does the same to one pixel.
template <class Prepare, class Operation, class PixelFn>
void ExpectInEveryForm(int32_t bytesPerPixel, Prepare prepare, Operation operation, PixelFn pixel)
{
    Random random;
    for (const VectorLevel& form : AllForms())
        for (const Rows rows : kAllRows)
            for (int32_t width = 1; width <= 71; ++width) {
                const int32_t wide = width == 71 ? 133 : width; // beyond two of the longest steps
                Frame want(wide, 3, bytesPerPixel, rows, random);
                prepare(want, random);
                Frame got = want;
                ForEachPixel(want, pixel);
                const OnlyLevel only(form);
                EXPECT_TRUE(operation(got));
                ASSERT_EQ(want, got) << form.name << ", width " << wide << ", " << rows;
            }
}

inline void LeaveRandom(Frame&, Random&) {}

// Every third float is one that arithmetic treats in a way of its own.
inline void FillSpecialFloats(Frame& frame, Random& random, float first, float last)
{
    using Limits = std::numeric_limits<float>;
    const float special[] = {Limits::quiet_NaN(),
                             -Limits::quiet_NaN(),
                             Limits::signaling_NaN(),
                             Limits::infinity(),
                             -Limits::infinity(),
                             Limits::denorm_min(),
                             -Limits::denorm_min(),
                             0.0f,
                             -0.0f,
                             Limits::max(),
                             Limits::lowest(),
                             1.0f,
                             std::nextafter(1.0f, 2.0f),
                             0.5f};
    frame.FillFloats(random, first, last);
    for (int32_t y = 0; y < frame.Height(); ++y)
        for (int32_t i = random.Int(0, 2); i < 4 * frame.Width(); i += random.Int(1, 5))
            frame.Set(i, y, special[random.Int(0, int32_t(std::size(special)) - 1)]);
}

// A pixel's float, wherever it stands.
inline float GetFloat(const uint8_t* pixel, int channel)
{
    float value;
    std::memcpy(&value, pixel + 4 * channel, sizeof(value));
    return value;
}
inline void SetFloat(uint8_t* pixel, int channel, float value)
{
    std::memcpy(pixel + 4 * channel, &value, sizeof(value));
}

} // namespace vxtest
