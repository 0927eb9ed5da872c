#include "vx/blend.h"

#include "support/forms.h"

#include <algorithm>
#include <cmath>

namespace {

using namespace vxtest;

void BlendOracle(Frame& dst, const Frame& src, double factor)
{
    const int64_t wd = IntegerPart(factor * 4096.0), ws = IntegerPart((1.0 - factor) * 4096.0);
    for (int32_t y = 0; y < dst.Height(); ++y)
        for (int32_t x = 0; x < dst.Width(); ++x)
            for (int32_t c = 0; c < 3; ++c) {
                uint8_t* const d = dst.Pixel(x, y);
                const int64_t v = Wrap(d[c] * wd + src.Pixel(x, y)[c] * ws + 2048) / 4096;
                d[c] = uint8_t(std::clamp<int64_t>(v, 0, d[3]));
            }
}

void CheckBlend(const Frame& before, const Frame& src, double factor)
{
    SCOPED_TRACE(testing::Message() << "factor " << factor);
    Frame want = before;
    BlendOracle(want, src, factor);
    ExpectInEveryForm(before, want, [&](Frame& dst) {
        return Blend(dst.Data(), dst.Stride(), src.Data(), src.Stride(), dst.Width(), dst.Height(), factor);
    });
}

TEST(Blend, EveryShape)
{
    Random random;
    ForEveryShape([&](int32_t width, Rows rows) {
        CheckBlend(Frame(width, 3, 4, rows, random), Frame(width, 3, 4, rows, random),
                   random.Unit() * 3.0 - 1.0);
    });
}

// The last few lie about the places where 16-bit weights end and where nothing fits 32 bits.
TEST(Blend, EveryPairOfBytesAndFarFactors)
{
    Random random;
    const Frame dst = FrameOfColumns(random), src = FrameOfRows(random);
    std::vector<double> factors = {0.0, 0x1p-60, 1.0 / 4096, 0.5, 0.9999, 1.0, 1.0001, -1.0};
    for (int i = 0; i < 8; ++i)
        factors.push_back(random.Unit());
    for (const double limit : {8.0, 524287.0, 524288.0, 1e300, std::numeric_limits<double>::infinity()})
        for (const double step : {0.0, 0.0001, 0.3, 1.0})
            factors.insert(factors.end(), {limit - step, -limit - step});
    factors.push_back(std::numeric_limits<double>::quiet_NaN());
    for (const double factor : factors)
        CheckBlend(dst, src, factor);
}

} // namespace
