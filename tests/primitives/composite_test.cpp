#include "vx/composite.h"

#include "kernel/parallel.h"
#include "support/forms.h"

#include <array>

namespace {

using namespace vxtest;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = -std::numeric_limits<double>::quiet_NaN(); // the processor's own

// The slow oracle: one channel of a pixel and the pixel's alphas, in plain integers and floats. Where c is
// the alpha itself, most modes take over.
template <class T>
struct Channel
{
    T d, s, da, sa;
    bool isAlpha;
};

int64_t Over8(int64_t below, int64_t top, int64_t topAlpha)
{
    return ((255 - topAlpha) * below + top * 255 + 127) / 255;
}

int64_t Mixed8(int32_t mode, const Channel<int64_t>& c)
{
    switch (c.isAlpha && mode != 2 && mode != 4 && mode != 7 ? 1 : mode) {
    case 1:
        return Over8(c.d, c.s, c.sa);
    case 2:
        return Over8(c.s, c.d, c.da);
    case 3:
        return c.d + c.s > 255 ? 255 : c.d + c.s;
    case 4:
        return c.d * c.s / 255;
    case 5:
        return c.d < 128 ? (2 * c.d * c.s) / 255 : 255 - (2 * (255 - c.d) * (255 - c.s)) / 255;
    case 6:
        return 255 - ((255 - c.s) * (255 - c.d)) / 255;
    default:
        return (c.d + c.s) >> 1;
    }
}

uint8_t Oracle8(int32_t mode, const Channel<int64_t>& c, int64_t opacity)
{
    const int64_t mixed = Mixed8(mode, c), base = mode == 2 ? c.s : c.d;
    return uint8_t(opacity == 255 ? mixed : (mixed * opacity + base * (255 - opacity)) / 255);
}

float MixedFloat(int32_t mode, const Channel<float>& c)
{
    switch (c.isAlpha && mode != 2 && mode != 4 && mode != 7 ? 1 : mode) {
    case 1:
        return (1.0f - c.sa) * c.d + c.s;
    case 2:
        return (1.0f - c.da) * c.s + c.d;
    case 3:
        return c.d + c.s;
    case 4:
        return c.d * c.s;
    case 5:
        return 0.5f > c.d ? c.d * c.s * 2.0f : 1.0f - (1.0f - c.d) * 2.0f * (1.0f - c.s);
    case 6:
        return 1.0f - (1.0f - c.s) * (1.0f - c.d);
    default:
        return (c.d + c.s) * 0.5f;
    }
}

float OracleFloat(int32_t mode, const Channel<float>& c, float opacity)
{
    const float mixed = MixedFloat(mode, c), base = mode == 2 ? c.s : c.d;
    const float limit = mode == 3 || mode == 5 ? 0.9999f : 0.999f;
    return opacity > limit ? mixed : mixed * opacity + (1.0f - opacity) * base;
}

template <class Wide, class T, class Oracle>
Frame WithOracle(const Frame& dst, const Frame& src, Oracle oracle)
{
    Frame want = dst;
    for (int32_t y = 0; y < dst.Height(); ++y)
        for (int32_t i = 0; i < 4 * dst.Width(); ++i) {
            const Channel<Wide> channel{dst.Get<T>(i, y), src.Get<T>(i, y), dst.Get<T>(i | 3, y),
                                        src.Get<T>(i | 3, y), (i & 3) == 3};
            want.Set<T>(i, y, oracle(channel));
        }
    return want;
}

// Opacity as it is given to the call: no number is 0 in 8 bits.
Frame WithOracle(const Frame& dst, const Frame& src, int32_t bytesPerPixel, int32_t mode, double opacity)
{
    if (bytesPerPixel == 16)
        return WithOracle<float, float>(
            dst, src, [=](const Channel<float>& c) { return OracleFloat(mode, c, float(opacity)); });
    const double scaled = std::isnan(opacity) ? 0.0 : std::clamp(opacity * 255.0 + 0.5, 0.0, 255.0);
    return WithOracle<int64_t, uint8_t>(
        dst, src, [=](const Channel<int64_t>& c) { return Oracle8(mode, c, int64_t(scaled)); });
}

// On every form.
void CheckComposite(const Frame& before, const Frame& src, int32_t bytesPerPixel, int32_t mode,
                    double opacity)
{
    SCOPED_TRACE(testing::Message() << bytesPerPixel << " bytes, mode " << mode << ", opacity " << opacity);
    const Frame want = WithOracle(before, src, bytesPerPixel, mode, opacity);
    ExpectInEveryForm(before, want, [&](Frame& dst) {
        return Composite(dst.Data(), dst.Stride(), src.Data(), src.Stride(), bytesPerPixel, dst.Width(),
                         dst.Height(), mode, opacity);
    });
}

struct CaseFloat
{
    const char* name;
    int32_t mode;
    std::array<float, 4> dst, src;
    double opacity;
    std::array<float, 4> want;
};

constexpr CaseFloat kCasesFloat[] = {
    {"source over", 1, {0.5f, 1, 0, 1}, {0.25f, 0, 2, 0.5f}, 1.0, {0.5f, 0.5f, 2, 1}},
    {"half of it", 1, {0.5f, 1, 0, 1}, {0.25f, 0, 2, 0.5f}, 0.5, {0.5f, 0.75f, 1, 1}},
    {"a negative opacity extrapolates", 1, {1, 1, 1, 1}, {0, 0, 0, 1}, -1.0, {2, 2, 2, 1}},
    {"an opacity of 2 is full", 1, {1, 1, 1, 1}, {0, 0, 0, 1}, 2.0, {0, 0, 0, 1}},
    {"destination over", 2, {0.25f, 0, 2, 0.5f}, {0.5f, 1, 0, 1}, 1.0, {0.5f, 0.5f, 2, 1}},
    {"destination over at opacity 0 is the source", 2, {1, 2, 3, 4}, {5, 6, 7, 8}, 0.0, {5, 6, 7, 8}},
    {"add is not capped, its alpha is over",
     3,
     {0.75f, 1, -1, 0.5f},
     {0.5f, 4, 0, 0.5f},
     1.0,
     {1.25f, 5, -1, 0.75f}},
    {"multiply, alpha too", 4, {0.5f, 2, -1, 0.5f}, {0.5f, 2, 3, 0.5f}, 1.0, {0.25f, 4, -3, 0.25f}},
    {"overlay on both sides of 0.5",
     5,
     {0.25f, 0.5f, 0.75f, 0.5f},
     {0.5f, 0.5f, 0, 0.5f},
     1.0,
     {0.25f, 0.5f, 0.5f, 0.75f}},
    {"screen, its alpha is over", 6, {0.5f, 0, 1, 0.5f}, {0.5f, 0, 0, 0.5f}, 1.0, {0.75f, 0, 1, 0.75f}},
    {"average, alpha too", 7, {1, 2, 3, 0.5f}, {2, 2, -3, 1}, 1.0, {1.5f, 2, 0, 0.75f}},
};

TEST(Composite, TableFloat)
{
    for (const CaseFloat& c : kCasesFloat) {
        std::array<float, 4> dst = c.dst;
        EXPECT_TRUE(Composite(dst.data(), 16, c.src.data(), 16, 16, 1, 1, c.mode, c.opacity));
        EXPECT_EQ(dst, c.want) << c.name;
    }
}

TEST(Composite, FloatOpacityIsFullAboveALimitOfTheMode)
{
    const std::array<float, 4> dst{0.25f, 0.25f, 0.25f, 0.5f}, src{3.0f, 3.0f, 3.0f, 1.0f};
    const Channel<float> channel{0.25f, 3.0f, 0.5f, 1.0f, false};
    for (int32_t mode = 1; mode <= 7; ++mode) {
        const float limit = mode == VX_COMPOSITE_ADD || mode == VX_COMPOSITE_OVERLAY ? 0.9999f : 0.999f;
        const float above = std::nextafter(limit, 1.0f), mixed = MixedFloat(mode, channel);
        const float part = mixed * limit + (1.0f - limit) * (mode == 2 ? 3.0f : 0.25f);
        ASSERT_NE(mixed, part);
        std::array<float, 4> atLimit = dst, aboveLimit = dst;
        Composite(atLimit.data(), 16, src.data(), 16, 16, 1, 1, mode, double(limit));
        Composite(aboveLimit.data(), 16, src.data(), 16, 16, 1, 1, mode, double(above));
        EXPECT_EQ(atLimit[0], part) << "mode " << mode;
        EXPECT_EQ(aboveLimit[0], mixed) << "mode " << mode;
    }
}

TEST(Composite, RefusesOtherModesAndTouchesNothing)
{
    uint32_t dst[4] = {1, 1, 1, 1};
    const uint32_t src[4] = {2, 2, 2, 2};
    for (const int32_t mode :
         {0, 8, -1, std::numeric_limits<int32_t>::max(), std::numeric_limits<int32_t>::min()})
        for (const int32_t bytesPerPixel : {4, 16})
            for (const int32_t height : {1, 0})
                EXPECT_FALSE(Composite(dst, 16, src, 16, bytesPerPixel, 1, height, mode, 1.0));
    for (const int32_t size : {0, -1}) {
        EXPECT_TRUE(Composite(dst, 16, src, 16, 4, size, 1, 1, 1.0));
        EXPECT_TRUE(Composite(dst, 16, src, 16, 4, 1, size, 1, 1.0));
    }
    EXPECT_THAT(dst, testing::Each(1u));
}

TEST(Composite, AnyOtherPixelSizeIsFloat)
{
    for (const int32_t bytesPerPixel : {0, -4, 3, 8, 16}) {
        std::array<float, 4> dst{1, 1, 1, 1};
        const std::array<float, 4> src{3, 3, 3, 3};
        EXPECT_TRUE(
            Composite(dst.data(), 16, src.data(), 16, bytesPerPixel, 1, 1, VX_COMPOSITE_AVERAGE, 1.0));
        EXPECT_THAT(dst, testing::Each(2.0f));
    }
}

// Every pair stands in each channel, beside other pairs.
TEST(Composite, EveryPairOfBytesGivesTheFormula)
{
    Random random;
    Frame dst(256, 256, 4, Rows::Wide, random), src(256, 256, 4, Rows::Wide, random);
    for (int32_t y = 0; y < 256; ++y)
        for (int32_t x = 0; x < 256; ++x)
            for (int32_t i = 0; i < 4; ++i) {
                dst.Pixel(x, y)[i] = uint8_t(y + 64 * i);
                src.Pixel(x, y)[i] = uint8_t(x ^ (y * i));
            }
    for (int32_t mode = 1; mode <= 7; ++mode)
        for (const int32_t opacity : {0, 1, 77, 126, 127, 254, 255})
            CheckComposite(dst, src, 4, mode, opacity / 255.0);
}

// Every pair of bytes, three of them a pixel, under every opacity: as alpha is 0 or 255 the changes
// have every length from -255 to 255, and the sums of the formula reach 17 bits.
TEST(Composite, EveryOpacityGivesTheFormula)
{
    Random random;
    Frame dst(86, 256, 4, Rows::Tight, random), src(86, 256, 4, Rows::Tight, random);
    for (const uint8_t alpha : {uint8_t(0), uint8_t(255)}) {
        for (int32_t pixel = 0; pixel < 86 * 256; ++pixel) {
            uint8_t* d = dst.Pixel(pixel % 86, pixel / 86);
            uint8_t* s = src.Pixel(pixel % 86, pixel / 86);
            for (int32_t i = 0; i < 3; ++i) {
                d[i] = uint8_t((3 * pixel + i) >> 8);
                s[i] = uint8_t(3 * pixel + i);
            }
            d[3] = s[3] = alpha;
        }
        for (int32_t opacity = 0; opacity <= 255 && !HasFatalFailure(); ++opacity) {
            CheckComposite(dst, src, 4, VX_COMPOSITE_SOURCE_OVER, opacity / 255.0);
            CheckComposite(dst, src, 4, VX_COMPOSITE_DESTINATION_OVER, opacity / 255.0);
        }
    }
}

constexpr double kOpacities[] = {-0.75, 0.0, 0.3, 0.7, 0.9995, 1.0, 1.5, kNan, kInfinity};

TEST(Composite, EveryShapeInBytesAndFloats)
{
    Random random;
    ForEveryShape([&](int32_t width, Rows rows) {
        for (int32_t mode = 1; mode <= 7; ++mode) {
            const double opacity = kOpacities[random.Int(0, int32_t(std::size(kOpacities)) - 1)];
            CheckComposite(Frame(width, 2, 4, rows, random), Frame(width, 2, 4, rows, random), 4, mode,
                           opacity);
            Frame dst(width, 2, 16, rows, random), src(width, 2, 16, rows, random);
            FillHardFloats(dst, random);
            FillHardFloats(src, random);
            CheckComposite(dst, src, 16, mode, opacity);
        }
    });
}

TEST(Composite, AFrameOnItself)
{
    Random random;
    for (const int32_t bytesPerPixel : {4, 16})
        for (int32_t mode = 1; mode <= 7; ++mode) {
            Frame before(70, 2, bytesPerPixel, Rows::Wide, random);
            if (bytesPerPixel == 16)
                FillHardFloats(before, random);
            const Frame want = WithOracle(before, before, bytesPerPixel, mode, 0.3);
            ExpectInEveryForm(before, want, [&](Frame& f) {
                return Composite(f.Data(), f.Stride(), f.Data(), f.Stride(), bytesPerPixel, 70, 2, mode, 0.3);
            });
        }
}

// The large frame is shared among workers; a call for one row is not.
TEST(Composite, SharingRowsGivesTheBitsOfRowByRowCalls)
{
    Random random;
    for (const int32_t bytesPerPixel : {4, 16})
        for (const Rows rows : {Rows::Tight, Rows::Negative})
            for (const int32_t mode : {VX_COMPOSITE_SOURCE_OVER, VX_COMPOSITE_OVERLAY}) {
                const int32_t width = 1003;
                const int32_t height = int32_t(vx::kParallelBytes / (3 * bytesPerPixel * width)) + 1;
                Frame dst(width, height, bytesPerPixel, rows, random),
                    src(width, height, bytesPerPixel, rows, random);
                if (bytesPerPixel == 16) {
                    dst.FillFloats(random, 0.0f, 1.0f);
                    src.FillFloats(random, 0.0f, 1.0f);
                }
                Frame want = dst;
                for (int32_t y = 0; y < height; ++y)
                    Composite(want.Row(y), 0, src.Row(y), 0, bytesPerPixel, width, 1, mode, 0.4);
                Composite(dst.Data(), dst.Stride(), src.Data(), src.Stride(), bytesPerPixel, width, height,
                          mode, 0.4);
                ASSERT_EQ(dst, want) << "mode " << mode << ", " << rows;
            }
}

} // namespace
