#include "vx/blend.h"

#include "support/forms.h"

#include <algorithm>
#include <cmath>

namespace {

using namespace vxtest;

constexpr uint8_t kPlainAlpha = 0, kPremultiplied = 1;

void MultiplyOracle(Frame& frame, double factor, uint8_t premultiplied)
{
    const int64_t k = IntegerPart(factor * 256.0 + 0.5);
    for (int32_t y = 0; y < frame.Height(); ++y)
        for (int32_t x = 0; x < frame.Width(); ++x)
            for (int32_t c = 0; c < (premultiplied ? 3 : 4); ++c) {
                uint8_t* const p = frame.Pixel(x, y);
                const int64_t v = Wrap(p[c] * k + 127) / 256;
                p[c] = uint8_t(premultiplied ? std::min<int64_t>(v, p[3]) : v);
            }
}

void MultiplyFloatOracle(Frame& frame, double factor, uint8_t premultiplied)
{
    for (int32_t y = 0; y < frame.Height(); ++y)
        for (int32_t i = 0; i < 4 * frame.Width(); ++i) {
            const float v = frame.Get<float>(i, y) * float(factor), alpha = frame.Get<float>(i | 3, y);
            if (!premultiplied)
                frame.Set(i, y, v);
            else if (i % 4 != 3)
                frame.Set(i, y, v < alpha ? v : alpha);
        }
}

void CheckMultiply(const Frame& before, int32_t bytesPerPixel, double factor)
{
    for (const uint8_t premultiplied : {kPlainAlpha, kPremultiplied}) {
        SCOPED_TRACE(testing::Message() << "factor " << factor << ", premultiplied " << int(premultiplied));
        Frame want = before;
        (bytesPerPixel == 4 ? MultiplyOracle : MultiplyFloatOracle)(want, factor, premultiplied);
        ExpectInEveryForm(before, want, [&](Frame& frame) {
            return Multiply(frame.Data(), frame.Stride(), bytesPerPixel, frame.Width(), frame.Height(),
                            factor, premultiplied);
        });
    }
}

TEST(Multiply, EveryShapeInBytesAndFloats)
{
    Random random;
    ForEveryShape([&](int32_t width, Rows rows) {
        CheckMultiply(Frame(width, 3, 4, rows, random), 4, random.Unit() * 2.0);
        Frame floats(width, 3, 16, rows, random);
        FillHardFloats(floats, random);
        CheckMultiply(floats, 16, random.Unit() * 3.0 - 1.0);
    });
}

// 256 is where 16-bit lanes end, and about 32,896 the products outgrow 32 bits.
TEST(Multiply, EveryByteUnderFarFactors)
{
    Random random;
    Frame bytes(256, 256, 4, Rows::Tight, random);
    for (int32_t y = 0; y < 256; ++y)
        for (int32_t x = 0; x < 256; ++x) {
            uint8_t* const p = bytes.Pixel(x, y);
            p[0] = p[1] = p[2] = uint8_t(x), p[3] = uint8_t(y);
        }
    for (const double limit :
         {0.0, 0.6, 1.0, 2.0, 256.0, 32896.0, 8388608.0, 1e300, double(INFINITY), double(NAN)})
        for (const double step : {0.0, 0.003, 0.3, 1.0})
            for (const double factor : {limit - step, limit + step, -limit - step})
                CheckMultiply(bytes, 4, factor);
    Frame floats(64, 2, 16, Rows::Wide, random);
    FillHardFloats(floats, random);
    for (const double factor : {0.0, -1.0, 1e300, double(INFINITY)})
        CheckMultiply(floats, 16, factor);
}

TEST(MultiplyMasks, EveryShape)
{
    Random random;
    ForEveryShape([&](int32_t width, Rows rows) {
        Frame before(width, 3, 4, rows, random), src(width, 3, 4, rows, random);
        FillHardFloats(before, random);
        FillHardFloats(src, random);
        Frame want = before;
        for (int32_t y = 0; y < 3; ++y)
            for (int32_t x = 0; x < width; ++x)
                want.Set(x, y, want.Get<float>(x, y) * src.Get<float>(x, y));
        ExpectInEveryForm(before, want, [&](Frame& dst) {
            return MultiplyMasks(dst.Data(), dst.Stride(), src.Data(), src.Stride(), width, 3);
        });
    });
}

} // namespace
