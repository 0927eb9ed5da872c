#include "vx/blend.h"

#include "support/forms.h"

#include <algorithm>
#include <cmath>

namespace {

using namespace vxtest;

// Whole numbers in doubles: the quotient is off by far less than 1 / 255.
int64_t Mean(int64_t d, int64_t s, int64_t w)
{
    return int64_t(std::floor(double(s * w + d * (255 - w)) / 255.0 + 1e-9));
}

void MaskedBlendOracle(Frame& dst, const Frame& mask, const Frame& src, const uint8_t* lut)
{
    for (int32_t y = 0; y < dst.Height(); ++y)
        for (int32_t x = 0; x < dst.Width(); ++x)
            for (int32_t c = 0; c < 3; ++c) {
                uint8_t* const d = dst.Pixel(x, y);
                const uint8_t m = mask.Pixel(x, y)[c];
                d[c] = uint8_t(
                    std::min<int64_t>(Mean(d[c], src.Pixel(x, y)[c], lut ? lut[4 * m + c] : m), d[3]));
            }
}

void CheckMaskedBlend(const Frame& before, const Frame& mask, const Frame& src, const uint8_t* lut)
{
    Frame want = before;
    MaskedBlendOracle(want, mask, src, lut);
    ExpectInEveryForm(before, want, [&](Frame& dst) {
        return MaskedBlend(dst.Data(), dst.Stride(), mask.Data(), mask.Stride(), src.Data(), src.Stride(),
                           dst.Width(), dst.Height(), lut);
    });
}

TEST(MaskedBlend, EveryShape)
{
    Random random;
    uint8_t table[1025];
    std::generate(std::begin(table), std::end(table), [&] { return random.Byte(); });
    const auto check = [&](int32_t width, Rows rows) {
        const Frame dst(width, 2, 4, rows, random), mask(width, 2, 4, rows, random),
            src(width, 2, 4, rows, random);
        CheckMaskedBlend(dst, mask, src, nullptr);
        CheckMaskedBlend(dst, mask, src, table + 1);
    };
    ForEveryShape(check);
    for (const int32_t width : {255, 256, 257, 600}) // about the stretches that a table is looked up in
        check(width, Rows::Wide);
}

TEST(MaskedBlend, EveryWeightOfEveryByte)
{
    Random random;
    const Frame mask = FrameOfRows(random), dst = FrameOfColumns(random);
    for (int i = 0; i < 4; ++i)
        CheckMaskedBlend(dst, mask, Frame(256, 256, 4, Rows::Tight, random), nullptr);
}

void MaskedFadeOracle(Frame& dst, const Frame& src, const Frame& mask)
{
    for (int32_t y = 0; y < dst.Height(); ++y)
        for (int32_t x = 0; x < dst.Width(); ++x)
            for (int32_t c : {3, 0, 1, 2}) {
                uint8_t* const d = dst.Pixel(x, y);
                const int64_t v = Mean(d[c], src.Pixel(x, y)[c], mask.Pixel(x, y)[c]);
                d[c] = uint8_t(c == 3 ? v : std::min<int64_t>(v, d[3]));
            }
}

void MaskedFadeFloatOracle(Frame& dst, const Frame& src, const Frame& mask)
{
    const float unit = std::strtof("0.003921569", nullptr);
    for (int32_t y = 0; y < dst.Height(); ++y)
        for (int32_t x = 0; x < dst.Width(); ++x)
            for (int32_t c : {3, 0, 1, 2}) {
                const float w = float(mask.Pixel(x, y)[c]) * unit, rest = 1.0f - w;
                const float in = w * src.Get<float>(4 * x + c, y), kept = rest * dst.Get<float>(4 * x + c, y);
                const float v = in + kept;
                const float alpha = c == 3 ? v : dst.Get<float>(4 * x + 3, y);
                dst.Set(4 * x + c, y, v < alpha ? v : alpha);
            }
}

TEST(MaskedFade, EveryShapeInBytesAndFloats)
{
    Random random;
    ForEveryShape([&](int32_t width, Rows rows) {
        const Frame mask(width, 2, 4, rows, random);
        for (const int32_t bytesPerPixel : {4, 16}) {
            Frame before(width, 2, bytesPerPixel, rows, random), src(width, 2, bytesPerPixel, rows, random);
            if (bytesPerPixel == 16) {
                FillHardFloats(before, random);
                FillHardFloats(src, random);
            }
            Frame want = before;
            (bytesPerPixel == 4 ? MaskedFadeOracle : MaskedFadeFloatOracle)(want, src, mask);
            ExpectInEveryForm(before, want, [&](Frame& dst) {
                return MaskedFade(dst.Data(), dst.Stride(), src.Data(), src.Stride(), bytesPerPixel,
                                  mask.Data(), mask.Stride(), width, 2);
            });
        }
    });
}

} // namespace
