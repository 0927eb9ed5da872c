// A box along the axis that shrinks, linear sampling along the other.
#include "dib/scale_box.h"

namespace vx {
namespace {

template <class Sum>
Channels<uint8_t> Mixed(const Channels<Sum>& here, const Channels<Sum>& next, int32_t fraction,
                        int32_t divisor)
{
    Channels<uint8_t> mixed;
    for (size_t c = 0; c < 4; ++c) {
        const uint64_t sum = uint64_t(kSubpixelOne - fraction) * here[c] + uint64_t(fraction) * next[c];
        mixed[c] = uint8_t((sum >> kSubpixelBits) / uint32_t(divisor));
    }
    return mixed;
}

Channels<float> Mixed(const Channels<double>& here, const Channels<double>& next, int32_t fraction,
                      int32_t divisor)
{
    const double weight = float(fraction) * kSubpixelToPixel, perPixel = double(kSubpixelOne) / divisor;
    Channels<float> mixed;
    for (size_t c = 0; c < 4; ++c)
        mixed[c] = float(((1.0 - weight) * here[c] + weight * next[c]) * perPixel);
    return mixed;
}

template <class Pixel, class Sum>
void BoxXLinearY(const ScaleJob& job)
{
    ForBoxPixels<Pixel>(job, job.x, true, [&job](int32_t x, int32_t y, int32_t divisor) {
        const BoxSpan span = BoxSpanAt(job.x, x);
        const LinearTaps taps = LinearTapsBesideBoxAt(job.y, y);
        return Mixed(SumOfColumns<Pixel, Sum>(job.SourceRow(taps.here), span),
                     SumOfColumns<Pixel, Sum>(job.SourceRow(taps.next), span), taps.fraction, divisor);
    });
}

// A pair of pixels in one row. Bytes drop the fraction before the rows are summed.
Channels<uint8_t> MixedPair(const Channels<uint8_t>& here, const Channels<uint8_t>& next, int32_t fraction)
{
    Channels<uint8_t> mixed;
    for (size_t c = 0; c < 4; ++c)
        mixed[c] = uint8_t((here[c] * (kSubpixelOne - fraction) + next[c] * fraction) >> kSubpixelBits);
    return mixed;
}

Channels<double> MixedPair(const Channels<float>& here, const Channels<float>& next, int32_t fraction)
{
    const double weight = float(fraction) * kSubpixelToPixel;
    Channels<double> mixed;
    for (size_t c = 0; c < 4; ++c)
        mixed[c] = here[c] * (1.0 - weight) + next[c] * weight;
    return mixed;
}

template <class Sum>
Channels<uint8_t> PerPixel(const Channels<Sum>& sum, int32_t divisor)
{
    Channels<uint8_t> mean;
    for (size_t c = 0; c < 4; ++c)
        mean[c] = uint8_t(sum[c] / Sum(divisor));
    return mean;
}

Channels<float> PerPixel(const Channels<double>& sum, int32_t divisor)
{
    Channels<float> mean;
    for (size_t c = 0; c < 4; ++c)
        mean[c] = float(sum[c] * (double(kSubpixelOne) / divisor));
    return mean;
}

template <class Pixel, class Sum>
void BoxYLinearX(const ScaleJob& job)
{
    ForBoxPixels<Pixel>(job, job.y, false, [&job](int32_t x, int32_t y, int32_t divisor) {
        const BoxSpan span = BoxSpanAt(job.y, y);
        const LinearTaps taps = LinearTapsBesideBoxAt(job.x, x);
        Channels<Sum> sum{};
        for (int32_t row = span.first; row <= span.last; ++row) {
            const uint8_t* const pixels = job.SourceRow(row);
            const auto mixed = MixedPair(LoadPixel<Pixel>(pixels, taps.here),
                                         LoadPixel<Pixel>(pixels, taps.next), taps.fraction);
            AddShare(sum, mixed, ShareAt(span, row));
        }
        return PerPixel(sum, divisor);
    });
}

} // namespace

void ScaleBoxXLinearY(const ScaleJob& job, int32_t bytesPerPixel)
{
    if (bytesPerPixel == FloatPixel::kBytes)
        BoxXLinearY<FloatPixel, double>(job);
    else if (WidestSpan(job.x) * kSubpixelOne * 255 * 2 < kNarrowSums)
        BoxXLinearY<BytePixel, uint32_t>(job);
    else
        BoxXLinearY<BytePixel, uint64_t>(job);
}

void ScaleBoxYLinearX(const ScaleJob& job, int32_t bytesPerPixel)
{
    if (bytesPerPixel == FloatPixel::kBytes)
        BoxYLinearX<FloatPixel, double>(job);
    else if (WidestSpan(job.y) * kSubpixelOne * 255 < kNarrowSums)
        BoxYLinearX<BytePixel, uint32_t>(job);
    else
        BoxYLinearX<BytePixel, uint64_t>(job);
}

} // namespace vx
