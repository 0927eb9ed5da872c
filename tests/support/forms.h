// Running a primitive in every form on equal frames, against the frame that an oracle made.
#pragma once

#include "support/frames.h"
#include "support/random.h"
#include "support/vector_levels.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>

namespace vxtest {

// The plain form first: where it fails too, the vector form is not to blame.
inline std::vector<VectorLevel> AllForms()
{
    std::vector<VectorLevel> forms = VectorLevels();
    forms.insert(forms.begin(), kPlain);
    return forms;
}

// call(dst) runs the primitive on a copy of `before`; every form must make `want` of it.
template <class Call>
void ExpectInEveryForm(const Frame& before, const Frame& want, const Call& call)
{
    for (const VectorLevel& form : AllForms()) {
        const OnlyLevel only(form);
        Frame got = before;
        ASSERT_TRUE(call(got));
        ASSERT_EQ(got, want) << "in the form " << form.name;
    }
}

// check(width, rows) for every width that fills vectors and leaves a rest, in every arrangement.
template <class Check>
void ForEveryShape(const Check& check)
{
    for (const Rows rows : kAllRows)
        for (int32_t width = 1; width <= 70; ++width) {
            SCOPED_TRACE(testing::Message() << "width " << width << ", " << rows << " rows");
            check(width, rows);
            if (testing::Test::HasFatalFailure())
                return;
        }
}

// Ordinary values, and one in four from those that go wrong first. The NaN is the one that the
// processor itself makes, as which of two different ones comes out is open.
inline void FillHardFloats(Frame& frame, Random& random)
{
    const volatile float infinity = std::numeric_limits<float>::infinity();
    const float hard[] = {0.0f, -0.0f, 1.0f, infinity, -infinity, infinity * 0.0f, 1e-41f, 3e38f, -3e38f};
    frame.FillFloats(random, -0.5f, 1.5f);
    for (int32_t y = 0; y < frame.Height(); ++y)
        for (int32_t i = 0; i < int32_t(frame.RowBytes() / sizeof(float)); ++i)
            if (random.Int(0, 3) == 0)
                frame.Set(i, y, hard[random.Int(0, int32_t(std::size(hard)) - 1)]);
}

// A 256x256 frame that holds every pair of bytes with that of another one: channel c of pixel (x, y) is
// x + 64 c here and y there.
inline Frame FrameOfColumns(Random& random)
{
    Frame frame(256, 256, 4, Rows::Tight, random);
    for (int32_t y = 0; y < 256; ++y)
        for (int32_t i = 0; i < 1024; ++i)
            frame.Row(y)[i] = uint8_t(i / 4 + 64 * (i % 4));
    return frame;
}

inline Frame FrameOfRows(Random& random)
{
    Frame frame(256, 256, 4, Rows::Tight, random);
    for (int32_t y = 0; y < 256; ++y)
        std::memset(frame.Row(y), y, 1024);
    return frame;
}

// What an oracle computes exactly, cut to the 32 bits that the library works in.
inline int64_t Wrap(__int128 exact)
{
    return int32_t(uint32_t(exact));
}

// The integer part, or the processor's mark for what does not fit 32 bits.
inline int64_t IntegerPart(double value)
{
    const double whole = std::trunc(value);
    return whole >= -0x1p31 && whole < 0x1p31 ? int64_t(whole) : -0x80000000ll;
}

} // namespace vxtest
