// A box along the axis that shrinks, cubic sampling along the other.
#include "dib/cubic_weights.h"
#include "dib/scale_box.h"

namespace vx {
namespace {

// Each tap's product drops its fraction on its own.
template <class Sum>
Channels<uint8_t> Weighted(const Channels<Sum> (&taps)[4], int32_t weights, int32_t divisor)
{
    Channels<uint8_t> weighted;
    for (size_t c = 0; c < 4; ++c) {
        int64_t sum = kSubpixelOne / 2;
        for (size_t tap = 0; tap < 4; ++tap)
            sum += int64_t(taps[tap][c]) * kCubicIntegers[size_t(weights)][tap] / kSubpixelOne;
        weighted[c] = uint8_t(std::clamp<int64_t>(sum / divisor, 0, 255));
    }
    return weighted;
}

Channels<float> Weighted(const Channels<double> (&taps)[4], int32_t weights, int32_t divisor)
{
    Channels<float> weighted;
    for (size_t c = 0; c < 4; ++c) {
        double sum = 0.0;
        for (size_t tap = 0; tap < 4; ++tap)
            sum += taps[tap][c] * double(kCubicFloats[size_t(weights)][tap]);
        weighted[c] = float(sum * (double(kSubpixelOne) / divisor));
    }
    weighted[3] = LimitedAlpha(weighted[3]);
    return weighted;
}

template <class Pixel, class Sum>
void BoxXCubicY(const ScaleJob& job)
{
    ForBoxPixels<Pixel>(job, job.x, true, [&job](int32_t x, int32_t y, int32_t divisor) {
        const BoxSpan span = BoxSpanAt(job.x, x);
        const CubicTaps taps = CubicTapsAt(job.y, y, false);
        Channels<Sum> sums[4];
        for (size_t tap = 0; tap < 4; ++tap)
            sums[tap] = SumOfColumns<Pixel, Sum>(job.SourceRow(taps.tap[tap]), span);
        return Weighted(sums, taps.weights, divisor);
    });
}

template <class Pixel, class Sum>
void BoxYCubicX(const ScaleJob& job)
{
    ForBoxPixels<Pixel>(job, job.y, false, [&job](int32_t x, int32_t y, int32_t divisor) {
        const BoxSpan span = BoxSpanAt(job.y, y);
        const CubicTaps taps = CubicTapsAt(job.x, x, true);
        Channels<Sum> sums[4];
        for (size_t tap = 0; tap < 4; ++tap)
            sums[tap] = SumOfRows<Pixel, Sum>(job, taps.tap[tap], span);
        return Weighted(sums, taps.weights, divisor);
    });
}

} // namespace

void ScaleBoxXCubicY(const ScaleJob& job, int32_t bytesPerPixel)
{
    if (bytesPerPixel == FloatPixel::kBytes)
        BoxXCubicY<FloatPixel, double>(job);
    else if (WidestSpan(job.x) * kSubpixelOne * 255 * 2 < kNarrowSums)
        BoxXCubicY<BytePixel, uint32_t>(job);
    else
        BoxXCubicY<BytePixel, uint64_t>(job);
}

void ScaleBoxYCubicX(const ScaleJob& job, int32_t bytesPerPixel)
{
    if (bytesPerPixel == FloatPixel::kBytes)
        BoxYCubicX<FloatPixel, double>(job);
    else if (WidestSpan(job.y) * kSubpixelOne * 255 < kNarrowSums)
        BoxYCubicX<BytePixel, uint32_t>(job);
    else
        BoxYCubicX<BytePixel, uint64_t>(job);
}

} // namespace vx
