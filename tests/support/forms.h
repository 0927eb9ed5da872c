// Running a primitive in every form on equal frames, against the frame that an oracle made.
#pragma once

#include "support/frames.h"
#include "support/random.h"
#include "support/vector_levels.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <xmmintrin.h>

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

// While it lives, the calling thread flushes denormals, as it does once the processor was probed on it.
class FlushedDenormals
{
public:
    FlushedDenormals() : saved_(_mm_getcsr()) { _mm_setcsr(saved_ | 0x8040); }
    ~FlushedDenormals() { _mm_setcsr(saved_); }
    FlushedDenormals(const FlushedDenormals&) = delete;
    FlushedDenormals& operator=(const FlushedDenormals&) = delete;

private:
    unsigned saved_;
};

// The vector forms against the plain one where denormals are flushed: call(dst) as above.
template <class Call>
void ExpectSameFlushed(const Frame& before, const Call& call)
{
    const FlushedDenormals flushed;
    Frame want = before;
    {
        const OnlyLevel only(kPlain);
        call(want);
    }
    ExpectInEveryForm(before, want, call);
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

template <class PixelFn>
void ForEachPixel(Frame& frame, const PixelFn& pixel)
{
    for (int32_t y = 0; y < frame.Height(); ++y)
        for (int32_t x = 0; x < frame.Width(); ++x)
            pixel(frame.Pixel(x, y));
}

inline void LeaveRandom(Frame&, Random&) {}

// For work in place on single pixels: prepare(frame, random) fills random frames further, operation(frame)
// calls the primitive, and pixel(bytes) is a slow account of what it does to one pixel.
template <class Prepare, class Operation, class PixelFn>
void ExpectPixelByPixel(int32_t bytesPerPixel, const Prepare& prepare, const Operation& operation,
                        const PixelFn& pixel)
{
    Random random;
    const auto check = [&](int32_t width, Rows rows) {
        Frame before(width, 3, bytesPerPixel, rows, random);
        prepare(before, random);
        Frame want = before;
        ForEachPixel(want, pixel);
        ExpectInEveryForm(before, want, operation);
    };
    ForEveryShape(check);
    check(133, Rows::Wide); // beyond two of the longest steps
}

enum class Nans
{
    OfProcessor, // the one that the processor itself makes: which of two different ones comes out is open
    Any,
};

// Ordinary values, and one in four from those that go wrong first.
inline void FillHardFloats(Frame& frame, Random& random, float first = -0.5f, float last = 1.5f,
                           Nans nans = Nans::OfProcessor)
{
    const volatile float infinity = std::numeric_limits<float>::infinity();
    const float hard[] = {0.0f,           -0.0f,
                          1.0f,           std::nextafter(1.0f, 2.0f),
                          0.5f,           std::nextafter(0.5f, 0.0f),
                          infinity,       -infinity,
                          1e-41f,         -1e-41f,
                          3e38f,          -3e38f,
                          infinity * 0.0f};
    frame.FillFloats(random, first, last);
    for (int32_t y = 0; y < frame.Height(); ++y)
        for (int32_t i = 0; i < int32_t(frame.RowBytes() / sizeof(float)); ++i) {
            if (random.Int(0, 3) == 0)
                frame.Set(i, y, hard[random.Int(0, int32_t(std::size(hard)) - 1)]);
            if (nans == Nans::Any && random.Int(0, 15) == 0)
                frame.Set(i, y, uint32_t(random.Next()) | 0x7F800001u);
        }
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
