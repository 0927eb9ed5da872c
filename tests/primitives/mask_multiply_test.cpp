#include "vx/blend.h"

#include "support/forms.h"

#include <algorithm>
#include <cmath>

namespace {

using namespace vxtest;

struct Scale
{
    double scale, offset;
};

// Both limits of the plain product and what lies beyond them, sums within 0 to 255 and beyond, and products
// beyond 32 bits, the last ones with weights that do not fit themselves.
constexpr Scale kScales[] = {
    {1.0, 0.0},      {0.9999, 0.0001},   {1.0001, -0.0001},  {1.0002, 0.0}, {1.001, 0.0}, {0.99989, 0.0},
    {1.0, 0.02},     {0.5, 10.0},        {2.0, -100.0},      {-1.0, 255.0}, {0.0, 300.0}, {33.0, 0.0},
    {1.0, 200.5},    {0.0, 8200.0},      {5000.0, 3.0},      {-0.7, 200.3}, {0.3, 178.6}, {0.0, -40000.0},
    {1e9, -1.0e300}, {double(NAN), 1.0}, {1.0, double(NAN)},
};

// What a byte d becomes under a mask byte w.
uint8_t WeighedByte(int64_t d, int64_t w, Scale s)
{
    if (std::abs(s.scale - 1.0) < 0.00010001 && std::abs(s.offset) < 0.00010001)
        return uint8_t((w * d + 127) / 255);
    const int64_t weight = Wrap(w * IntegerPart(s.scale * 1024.0) + IntegerPart(s.offset * 1024.0));
    return uint8_t(std::clamp<int64_t>(Wrap(__int128(weight) * d + 130560) / 261120, 0, 255));
}

float ByteScale(Scale s)
{
    return float(s.scale / 255.0);
}

TEST(MultiplyChannel, Table)
{
    const struct
    {
        const char* name;
        int32_t dstChannel, srcChannel;
        Scale s;
        uint32_t want;
    } cases[] = {
        {"255 times 255", 3, 0, {1.0, 0.0}, 0xFF804020},
        {"128 times 128 rounds down", 2, 1, {1.0, 0.0}, 0xFF404020},
        {"only its channel", 0, 3, {1.0, 0.0}, 0xFF804000},
        {"half the weight", 2, 0, {0.5, 0.0}, 0xFF404020},
        {"an offset counts in bytes", 1, 3, {1.0, 127.0}, 0xFF802020},
        {"below 0", 1, 0, {-1.0, 0.0}, 0xFF800020},
        {"above 255", 0, 0, {100.0, 0.0}, 0xFF8040FF},
    };
    for (const auto& c : cases) {
        uint32_t dst = 0xFF804020;
        const uint32_t src = 0x010080FF;
        EXPECT_TRUE(
            MultiplyChannel(&dst, 4, 4, c.dstChannel, &src, 4, c.srcChannel, 1, 1, c.s.scale, c.s.offset));
        EXPECT_EQ(dst, c.want) << c.name;
    }
}

TEST(MultiplyChannel, EveryShapeInBytesAndFloats)
{
    Random random;
    ForEveryShape([&](int32_t width, Rows rows) {
        const int32_t to = random.Int(0, 3), from = random.Int(0, 3);
        const Scale s = kScales[random.Int(0, int32_t(std::size(kScales)) - 1)];
        const Frame src(width, 2, 4, rows, random);
        for (const int32_t bytesPerPixel : {4, 16}) {
            const Frame before(width, 2, bytesPerPixel, rows, random);
            Frame want = before;
            for (int32_t y = 0; y < 2; ++y)
                for (int32_t x = 0; x < width; ++x) {
                    const uint8_t m = src.Pixel(x, y)[from];
                    if (bytesPerPixel == 4)
                        want.Pixel(x, y)[to] = WeighedByte(want.Pixel(x, y)[to], m, s);
                    else
                        want.Set(4 * x + to, y, float(m) * ByteScale(s) + float(s.offset));
                }
            SCOPED_TRACE(testing::Message() << "channel " << from << " to " << to << ", scale " << s.scale
                                            << ", offset " << s.offset);
            ExpectInEveryForm(before, want, [&](Frame& dst) {
                return MultiplyChannel(dst.Data(), dst.Stride(), bytesPerPixel, to, src.Data(), src.Stride(),
                                       from, width, 2, s.scale, s.offset);
            });
        }
    });
}

void MaskMultiplyOracle(Frame& dst, const Frame& mask, int32_t channel, Scale s)
{
    for (int32_t y = 0; y < dst.Height(); ++y)
        for (int32_t x = 0; x < dst.Width(); ++x)
            for (int32_t c = 0; c < 4; ++c) {
                const uint8_t w = mask.Pixel(x, y)[channel < 0 ? c : channel];
                dst.Pixel(x, y)[c] = WeighedByte(dst.Pixel(x, y)[c], w, s);
            }
}

void MaskMultiplyFloatOracle(Frame& dst, const Frame& mask, int32_t channel, Scale s)
{
    for (int32_t y = 0; y < dst.Height(); ++y)
        for (int32_t x = 0; x < dst.Width(); ++x)
            for (int32_t c = 0; c < 4; ++c) {
                const float w = mask.Pixel(x, y)[channel < 0 ? c : channel];
                float v = w * (channel < 0 ? dst.Get<float>(4 * x + c, y) : ByteScale(s));
                v *= channel < 0 ? ByteScale(s) : dst.Get<float>(4 * x + c, y);
                dst.Set(4 * x + c, y, v + float(s.offset));
            }
}

void CheckMaskMultiply(const Frame& before, const Frame& mask, int32_t bytesPerPixel, int32_t channel,
                       Scale s)
{
    SCOPED_TRACE(testing::Message() << bytesPerPixel << " bytes, channel " << channel << ", scale " << s.scale
                                    << ", offset " << s.offset);
    Frame want = before;
    (bytesPerPixel == 4 ? MaskMultiplyOracle : MaskMultiplyFloatOracle)(want, mask, channel, s);
    ExpectInEveryForm(before, want, [&](Frame& dst) {
        return MaskMultiply(dst.Data(), dst.Stride(), bytesPerPixel, mask.Data(), mask.Stride(), dst.Width(),
                            dst.Height(), channel, s.scale, s.offset);
    });
}

TEST(MaskMultiply, EveryShapeInBytesAndFloats)
{
    Random random;
    ForEveryShape([&](int32_t width, Rows rows) {
        const Frame mask(width, 2, 4, rows, random), bytes(width, 2, 4, rows, random);
        Frame floats(width, 2, 16, rows, random);
        FillHardFloats(floats, random);
        const int32_t channel = random.Int(-2, 3);
        CheckMaskMultiply(bytes, mask, 4, channel, {1.0, 0.0});
        CheckMaskMultiply(bytes, mask, 4, channel, {random.Unit() * 2.0, random.Unit() * 100.0 - 50.0});
        CheckMaskMultiply(floats, mask, 16, channel, {random.Unit() * 2.0, random.Unit() - 0.5});
    });
}

TEST(MaskMultiply, EveryPairOfBytesUnderEveryScale)
{
    Random random;
    const Frame dst = FrameOfColumns(random), mask = FrameOfRows(random);
    for (const Scale& s : kScales)
        CheckMaskMultiply(dst, mask, 4, -1, s);
}

// A frame made premultiplied by its own alpha; alpha itself is squared.
TEST(MaskMultiply, TheMaskMayBeTheFrame)
{
    Random random;
    const Frame before(70, 2, 4, Rows::Wide, random);
    Frame want = before;
    MaskMultiplyOracle(want, before, 3, {1.0, 0.0});
    ExpectInEveryForm(before, want, [&](Frame& dst) {
        return MaskMultiply(dst.Data(), dst.Stride(), 4, dst.Data(), dst.Stride(), 70, 2, 3, 1.0, 0.0);
    });
}

// Arguments are refused before an empty size succeeds, and an empty frame may be null.
TEST(MixingPrimitives, RefusalsAndEmptySizes)
{
    uint32_t pixels[4] = {1, 2, 3, 4};
    const uint32_t mask = 0;
    for (const int32_t size : {1, 0}) {
        for (const int32_t bytesPerPixel : {-4, 0, 3, 8, 15})
            for (const uint8_t premultiplied : {0, 1})
                EXPECT_FALSE(Multiply(pixels, 16, bytesPerPixel, size, size, 0.0, premultiplied));
        for (const int32_t bytesPerPixel : {4, 16}) {
            for (const int32_t bad : {-1, 4}) {
                EXPECT_FALSE(
                    MultiplyChannel(pixels, 16, bytesPerPixel, bad, &mask, 4, 0, size, size, 1.0, 0.0));
                EXPECT_FALSE(
                    MultiplyChannel(pixels, 16, bytesPerPixel, 0, &mask, 4, bad, size, size, 1.0, 0.0));
            }
            EXPECT_FALSE(MaskMultiply(pixels, 16, bytesPerPixel, &mask, 4, size, size, 4, 1.0, 0.0));
        }
    }
    EXPECT_THAT(pixels, testing::ElementsAre(1, 2, 3, 4));
    for (const auto& [width, height] :
         {std::pair(0, 1), std::pair(1, 0), std::pair(-1, 2), std::pair(2, -1)}) {
        EXPECT_TRUE(Blend(nullptr, 4, nullptr, 4, width, height, 0.5));
        EXPECT_TRUE(MaskedBlend(nullptr, 4, nullptr, 4, nullptr, 4, width, height, nullptr));
        EXPECT_TRUE(MaskedFade(nullptr, 4, nullptr, 4, 4, nullptr, 4, width, height));
        EXPECT_TRUE(Multiply(nullptr, 4, 4, width, height, 0.5, 0));
        EXPECT_TRUE(MultiplyChannel(nullptr, 4, 4, 0, nullptr, 4, 0, width, height, 1.0, 0.0));
        EXPECT_TRUE(MaskMultiply(nullptr, 4, 16, nullptr, 4, width, height, 0, 1.0, 0.0));
        EXPECT_TRUE(MultiplyMasks(nullptr, 4, nullptr, 4, width, height));
    }
}

} // namespace
