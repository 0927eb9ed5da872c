#include "support/scale_model.h"
#include "support/vector_levels.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

using namespace vxtest;

constexpr int32_t kOne = 16384;

// Source and destination of a call, filled with random pixels.
struct Frames
{
    Frame source, dest;

    Frames(const SIZE& from, const SIZE& to, const ScaleCall& call, Rows rows, Random& random)
        : source(from.cx, from.cy, call.bytesPerPixel, rows, random),
          dest(to.cx, to.cy, call.bytesPerPixel, rows, random)
    {
        if (call.bytesPerPixel == 16) {
            source.FillFloats(random, -0.5f, 1.5f);
            dest.FillFloats(random, -0.5f, 1.5f);
        }
    }
};

SIZE RandomSize(Random& random, int32_t most)
{
    const int32_t limit = random.Int(0, 3) == 0 ? 3 : most; // small frames have corners of their own
    return {random.Int(1, limit), random.Int(1, limit)};
}

// An extent of an axis in 1/16384: on whole pixels or between them, inside or across the frame's sides.
void RandomExtent(Random& random, int32_t size, LONG& first, LONG& last)
{
    const auto place = [&](int32_t from, int32_t to) { return random.Int(from * kOne, to * kOne); };
    switch (random.Int(0, 4)) {
    case 0: // whole pixels
        first = random.Int(-2, size) * kOne;
        last = first + random.Int(0, size + 4) * kOne;
        break;
    case 1: // around the least size that does anything
        first = place(0, size);
        last = first + random.Int(1020, 1030);
        break;
    case 2: // within a pixel or two
        first = place(0, size);
        last = first + random.Int(1, 2 * kOne);
        break;
    default:
        first = place(-size / 2 - 1, size);
        last = first + random.Int(1, size + size / 2) * kOne + random.Int(-kOne, kOne);
        break;
    }
}

std::optional<RECT> RandomRect(Random& random, const Frame& frame, bool subPixel)
{
    if (random.Int(0, 3) == 0)
        return std::nullopt;
    RECT r;
    RandomExtent(random, frame.Width(), r.left, r.right);
    RandomExtent(random, frame.Height(), r.top, r.bottom);
    if (!subPixel)
        for (LONG* side : {&r.left, &r.top, &r.right, &r.bottom})
            *side /= kOne;
    return r;
}

ScaleCall RandomCall(Random& random, int32_t bytesPerPixel)
{
    ScaleCall call;
    call.cubic = random.Int(0, 1);
    call.subPixel = random.Int(0, 2);
    call.area = random.Int(0, 1);
    call.noEdgeBlend = random.Int(0, 3) == 0;
    call.bytesPerPixel = bytesPerPixel;
    return call;
}

template <class Channel>
testing::AssertionResult SameChannels(const Frame& want, const Frame& got, double tolerance)
{
    for (int32_t y = 0; y < want.Height(); ++y)
        for (int32_t i = 0; i < 4 * want.Width(); ++i) {
            const double a = want.Get<Channel>(i, y), b = got.Get<Channel>(i, y);
            if (!(std::abs(a - b) <= tolerance))
                return testing::AssertionFailure() << "column " << i / 4 << ", row " << y << ", channel "
                                                   << i % 4 << ": want " << a << ", got " << b;
        }
    return testing::AssertionSuccess();
}

// Box sums of floats may be taken in another order: then a result differs in its last bits.
testing::AssertionResult Same(const ScaleCall& call, const Frame& want, const Frame& got)
{
    const bool inBits = call.bytesPerPixel == 4 || !call.area;
    const auto same = call.bytesPerPixel == 4 ? SameChannels<uint8_t>(want, got, 0.0)
                                              : SameChannels<float>(want, got, inBits ? 0.0 : 4e-7);
    if (!same || !inBits || want == got)
        return same;
    return testing::AssertionFailure() << "bytes outside the rows, or bits of a zero";
}

void ExpectModel(const ScaleCall& call, const Frames& frames, const std::vector<VectorLevel>& levels)
{
    Frame want = frames.dest;
    ModelScale(call, want, frames.source);
    for (const VectorLevel& level : levels) {
        const OnlyLevel only(level);
        Frame got = frames.dest;
        Scale(call, got, frames.source);
        ASSERT_TRUE(Same(call, want, got))
            << call << ", source " << frames.source << ", dest " << want << ", " << level.name;
    }
}

std::vector<VectorLevel> AllLevels()
{
    std::vector<VectorLevel> levels = VectorLevels();
    levels.push_back(kPlain);
    return levels;
}

TEST(Scale, GivesTheModelForAnyRectangles)
{
    Random random;
    const std::vector<VectorLevel> levels = AllLevels();
    for (int32_t i = 0; i < 6000; ++i) {
        ScaleCall call = RandomCall(random, i % 3 == 0 ? 16 : 4);
        const Frames frames(RandomSize(random, 30), RandomSize(random, 30), call, kAllRows[i % 3], random);
        call.destRect = RandomRect(random, frames.dest, call.subPixel);
        call.sourceRect = RandomRect(random, frames.source, call.subPixel);
        ExpectModel(call, frames, {levels[size_t(i) % levels.size()]});
        if (HasFatalFailure())
            return;
    }
}

// Each kernel over frames of wide ranges of ratios, whose inner pixels run the row workers.
TEST(Scale, GivesTheModelForAnyRatio)
{
    Random random(2);
    const std::vector<VectorLevel> levels = AllLevels();
    // Boxes of 2 and 4 pixels have many halves; those of more than 11 by 11 sum in two parts.
    constexpr SIZE kFrom[] = {{96, 5}, {61, 40}, {7, 9}, {300, 130}, {64, 64}, {128, 66}};
    constexpr SIZE kTo[] = {{70, 6}, {128, 7}, {16, 7}, {33, 33}, {1, 2}, {32, 33}};
    for (const SIZE& from : kFrom)
        for (const SIZE& to : kTo)
            for (int32_t i = 0; i < 8; ++i) {
                ScaleCall call;
                call.cubic = i & 1;
                call.area = i & 2;
                call.bytesPerPixel = i & 4 ? 16 : 4;
                const Frames frames(from, to, call, kAllRows[i % 3], random);
                ExpectModel(call, frames, levels);
                if (HasFatalFailure())
                    return;
            }
}

// Boxes of few halves or quarters of pixels have a way of their own; the last pairs are just beyond it.
TEST(Scale, EvenBoxesGiveTheModel)
{
    Random random(5);
    const std::vector<VectorLevel> levels = AllLevels();
    constexpr struct
    {
        SIZE from, to;
    } kPairs[] = {{{57, 21}, {38, 14}}, {{84, 36}, {21, 9}},    {{4200, 6}, {1400, 4}}, {{128, 10}, {2, 5}},
                  {{6, 128}, {3, 2}},   {{110, 30}, {44, 24}},  {{70, 77}, {20, 7}},    {{33, 22}, {3, 2}},
                  {{130, 4}, {2, 2}},   {{168, 15}, {149, 10}}, {{96, 24}, {8, 2}}};
    for (const auto& pair : kPairs)
        for (int32_t i = 0; i < 6; ++i) {
            ScaleCall call;
            call.area = true;
            call.subPixel = i > 2; // from halves of pixels on
            Frames frames(pair.from, pair.to, call, kAllRows[i % 3], random);
            if (i % 2 == 0) // many halves, or the largest sums
                for (int32_t y = 0; y < pair.from.cy; ++y)
                    for (int32_t k = 0; k < 4 * pair.from.cx; ++k)
                        frames.source.Set(k, y, uint8_t(random.Int(0, 1) * (i == 0 ? 1 : 255)));
            if (call.subPixel) { // a column less, from a half on
                const int32_t right = pair.from.cx - pair.from.cx / pair.to.cx, bottom = pair.from.cy;
                call.sourceRect = RECT{kOne / 2, 0, right * kOne + kOne / 2, bottom * kOne};
                call.destRect = RECT{0, 0, (pair.to.cx - 1) * kOne, pair.to.cy * kOne};
            }
            ExpectModel(call, frames, levels);
            if (HasFatalFailure())
                return;
        }
}

// Pictures of few values, mixed at halves and quarters, stand on roundings: there the estimates of
// vector forms must give way.
TEST(Scale, LinearTiesGiveTheModel)
{
    Random random(3);
    const std::vector<VectorLevel> levels = AllLevels();
    for (const SIZE to : {SIZE{127, 31}, SIZE{64, 31}, SIZE{253, 16}, SIZE{127, 16}, SIZE{190, 23}}) {
        ScaleCall call;
        Frames frames({64, 16}, to, call, Rows::Wide, random);
        for (int32_t y = 0; y < 16; ++y)
            for (int32_t i = 0; i < 4 * 64; ++i)
                frames.source.Set(i, y, uint8_t(random.Int(0, 3)));
        ExpectModel(call, frames, levels);
        if (HasFatalFailure())
            return;
    }
}

// Wider than a run of columns that is prepared at once; the linear kernel shares its rows among threads.
TEST(Scale, WideFramesGiveTheModel)
{
    Random random(4);
    for (int32_t i = 0; i < 8; ++i) {
        ScaleCall call;
        call.cubic = i & 1;
        call.area = i & 2;
        call.bytesPerPixel = i & 4 ? 16 : 4;
        call.subPixel = true;
        const SIZE small{2200, 40}, large{4200, 75};
        const Frames frames(call.area ? large : small, call.area ? small : large, call, kAllRows[i % 3],
                            random);
        call.destRect =
            RECT{5000, 7000, frames.dest.Width() * kOne - 3000, frames.dest.Height() * kOne - 9000};
        ExpectModel(call, frames, AllLevels());
        if (HasFatalFailure())
            return;
    }
}

// Infinities and NaNs spread as far as in the plain form. The bits of a NaN are nobody's promise.
TEST(Scale, SpecialFloatsGiveThePlainValues)
{
    Random random(6);
    const float kSpecial[] = {INFINITY, -INFINITY, NAN, 0.0f, -0.0f, 1e-40f, 3e38f};
    for (int32_t i = 0; i < 4; ++i) {
        ScaleCall call;
        call.cubic = i & 1;
        call.area = i & 2;
        call.bytesPerPixel = 16;
        Frames frames({60, 20}, call.area ? SIZE{31, 17} : SIZE{100, 40}, call, Rows::Wide, random);
        for (int32_t n = 0; n < 60; ++n)
            frames.source.Set(random.Int(0, 239), random.Int(0, 19), kSpecial[n % 7]);
        Frame plain = frames.dest;
        {
            const OnlyLevel only(kPlain);
            Scale(call, plain, frames.source);
        }
        for (const VectorLevel& level : VectorLevels()) {
            const OnlyLevel only(level);
            Frame vector = frames.dest;
            Scale(call, vector, frames.source);
            for (int32_t y = 0; y < plain.Height(); ++y)
                for (int32_t x = 0; x < 4 * plain.Width(); ++x) {
                    const float want = plain.Get<float>(x, y), got = vector.Get<float>(x, y);
                    ASSERT_TRUE(std::isnan(want) ? std::isnan(got) : want == got)
                        << call << ", " << level.name << ", float " << x << ", row " << y << ": " << want
                        << ", " << got;
                }
        }
    }
}

// One channel of small byte pictures, worked by hand.
struct RowCase
{
    const char* name;
    ScaleCall call;
    std::vector<uint8_t> source, dest, want;
};

Frame GrayRow(const std::vector<uint8_t>& values, Random& random)
{
    Frame frame(int32_t(values.size()), 1, 4, Rows::Tight, random);
    for (size_t x = 0; x < values.size(); ++x)
        for (int32_t c = 0; c < 4; ++c)
            frame.Set(int32_t(x) * 4 + c, 0, values[x]);
    return frame;
}

TEST(Scale, RowsWorkedByHand)
{
    const ScaleCall linear, cubic{.cubic = true}, area{.area = true};
    const RECT halves{kOne / 2, 0, 3 * kOne / 2, kOne};
    const RowCase cases[] = {
        {"ends stay, the mean lies between", linear, {10, 20}, {0, 0, 0}, {10, 15, 20}},
        {"one pixel repeats", linear, {77}, {0, 0, 0, 0}, {77, 77, 77, 77}},
        {"samples skip", linear, {1, 50, 9, 50, 17}, {0, 0, 0}, {1, 9, 17}},
        {"areas average", area, {10, 20, 30, 40}, {0, 0}, {15, 35}},
        {"halves blend", {.subPixel = true, .destRect = halves}, {200}, {100, 0, 50}, {150, 100, 50}},
        // Weights at a quarter pixel: -9/128, 111/128, 29/128, -3/128; 255 * -9/128 and 255 * 137/128 are limited.
        {"cubic overshoots are limited",
         cubic,
         {0, 0, 255, 255},
         {0, 0, 0, 0, 0, 0, 0, 0},
         {0, 0, 0, 52, 203, 255, 255, 255}},
    };
    Random random;
    for (const RowCase& c : cases) {
        const Frame source = GrayRow(c.source, random);
        Frame dest = GrayRow(c.dest, random);
        Scale(c.call, dest, source);
        std::vector<uint8_t> got;
        for (int32_t x = 0; x < dest.Width(); ++x)
            got.push_back(dest.Get<uint8_t>(4 * x, 0));
        EXPECT_EQ(got, c.want) << c.name;
    }
}

} // namespace
