// A box along the axis that shrinks, linear sampling along the other.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "dib/scale_box_linear.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#ifndef VX_SCALE_BOX_LINEAR_PLAIN
#define VX_SCALE_BOX_LINEAR_PLAIN

#include "dib/scale_box.h"
#include "kernel/vector_targets.h"

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
auto BoxXLinearYPixel(const ScaleJob& job, int32_t x, int32_t y, int32_t divisor)
{
    const BoxSpan span = BoxSpanAt(job.x, x);
    const LinearTaps taps = LinearTapsBesideBoxAt(job.y, y);
    return Mixed(SumOfColumns<Pixel, Sum>(job.SourceRow(taps.here), span),
                 SumOfColumns<Pixel, Sum>(job.SourceRow(taps.next), span), taps.fraction, divisor);
}

template <class Pixel, class Sum>
void BoxXLinearY(const ScaleJob& job)
{
    ForBoxPixels<Pixel>(job, job.x, BoxXLinearYPixel<Pixel, Sum>);
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
auto BoxYLinearXPixel(const ScaleJob& job, int32_t x, int32_t y, int32_t divisor)
{
    const BoxSpan span = BoxSpanAt(job.y, y);
    const LinearTaps taps = LinearTapsBesideBoxAt(job.x, x);
    Channels<Sum> sum{};
    for (int32_t row = span.first; row <= span.last; ++row) {
        const uint8_t* const pixels = job.SourceRow(row);
        const auto mixed = MixedPair(LoadPixel<Pixel>(pixels, taps.here), LoadPixel<Pixel>(pixels, taps.next),
                                     taps.fraction);
        AddShare(sum, mixed, ShareAt(span, row));
    }
    return PerPixel(sum, divisor);
}

template <class Pixel, class Sum>
void BoxYLinearX(const ScaleJob& job)
{
    ForBoxPixels<Pixel>(job, job.y, BoxYLinearXPixel<Pixel, Sum>);
}

} // namespace
} // namespace vx

#endif // VX_SCALE_BOX_LINEAR_PLAIN

#include "dib/scale_box-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

void BoxXLinearYVector(const ScaleJob& job)
{
    const double reciprocal = 1.0 / (double(job.x.step) * kSubpixelOne);
    ForChunksOfBoxX<2>(
        job, BoxXLinearYPixel<BytePixel, uint32_t>,
        [&](uint8_t* dest, const auto& sumsOf, int32_t y, int32_t values) {
            const Doubles lanes;
            const LinearTaps taps = LinearTapsBesideBoxAt(job.y, y);
            const int32_t *const here = sumsOf(taps.here), *const next = sumsOf(taps.next);
            const auto hereWeight = hn::Set(lanes, double(kSubpixelOne - taps.fraction));
            const auto nextWeight = hn::Set(lanes, double(taps.fraction));
            for (int32_t i = 0; i < values; i += int32_t(hn::Lanes(lanes))) {
                const auto h = hn::PromoteTo(lanes, hn::LoadU(PartInts(), here + i));
                const auto n = hn::PromoteTo(lanes, hn::LoadU(PartInts(), next + i));
                WriteQuotients(dest + i, hn::Add(hn::Mul(h, hereWeight), hn::Mul(n, nextWeight)), reciprocal);
            }
        });
}

QuadVec MixedQuad(const uint8_t* row, const LinearTaps& taps)
{
    const QuadInts lanes;
    const auto here =
        hn::Mul(LoadQuad(row + 4 * int64_t(taps.here)), hn::Set(lanes, kSubpixelOne - taps.fraction));
    const auto next = hn::Mul(LoadQuad(row + 4 * int64_t(taps.next)), hn::Set(lanes, taps.fraction));
    return hn::ShiftRight<kSubpixelBits>(hn::Add(here, next));
}

// What a box sums to down the columns of two taps.
QuadVec SumOfMixed(const ScaleJob& job, const LinearTaps& taps, const BoxSpan& y)
{
    auto inner = hn::Zero(QuadInts());
    for (int32_t row = y.first + 1; row < y.last; ++row)
        inner = hn::Add(inner, MixedQuad(job.SourceRow(row), taps));
    const auto share = [&](int32_t row, int32_t s) {
        return hn::Mul(MixedQuad(job.SourceRow(row), taps), hn::Set(QuadInts(), s));
    };
    const auto edges = hn::Add(share(y.first, y.firstShare), share(y.last, y.lastShare));
    return hn::Add(hn::ShiftLeft<kSubpixelBits>(inner), edges);
}

void BoxYLinearXVector(const ScaleJob& job)
{
    const double reciprocal = 1.0 / double(job.y.step);
    ForChunksOfBoxY<LinearTaps>(
        job, [&](int32_t x) { return LinearTapsBesideBoxAt(job.x, x); },
        BoxYLinearXPixel<BytePixel, uint32_t>, [](const LinearTaps*, int32_t) {}, [](const BoxSpan&) {},
        [&](uint8_t* dest, const LinearTaps& taps, const BoxSpan& span) {
            HWY_ALIGN int32_t sum[4];
            hn::Store(SumOfMixed(job, taps, span), QuadInts(), sum);
            for (int32_t c = 0; c < 4; c += int32_t(hn::Lanes(Doubles())))
                WriteQuotients(dest + c, hn::PromoteTo(Doubles(), hn::LoadU(PartInts(), sum + c)),
                               reciprocal);
        });
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
namespace {

HWY_EXPORT(BoxXLinearYVector);
HWY_EXPORT(BoxYLinearXVector);

} // namespace

void ScaleBoxXLinearY(const ScaleJob& job, int32_t bytesPerPixel)
{
    if (bytesPerPixel == FloatPixel::kBytes)
        return BoxXLinearY<FloatPixel, double>(job);
    ChooseBoxForm(job.x, 2.0, VX_VECTOR_FORM(BoxXLinearYVector, (BoxXLinearY<BytePixel, uint32_t>)),
                  BoxXLinearY<BytePixel, uint32_t>, BoxXLinearY<BytePixel, uint64_t>)(job);
}

void ScaleBoxYLinearX(const ScaleJob& job, int32_t bytesPerPixel)
{
    if (bytesPerPixel == FloatPixel::kBytes)
        return BoxYLinearX<FloatPixel, double>(job);
    ChooseBoxForm(job.y, 1.0, VX_VECTOR_FORM(BoxYLinearXVector, (BoxYLinearX<BytePixel, uint32_t>)),
                  BoxYLinearX<BytePixel, uint32_t>, BoxYLinearX<BytePixel, uint64_t>)(job);
}

} // namespace vx

#endif // HWY_ONCE
