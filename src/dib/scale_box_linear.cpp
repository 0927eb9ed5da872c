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

constexpr int32_t kChunkColumns = 256;

// Sums along the rows serve several destination rows: the two in use are kept, each in the place that
// its number's low bit says.
void BoxXLinearYVector(const ScaleJob& job)
{
    const double reciprocal = 1.0 / (double(job.x.step) * kSubpixelOne);
    HWY_ALIGN int32_t sums[2][4 * kChunkColumns];
    BoxSpan spans[kChunkColumns];
    for (int32_t chunk = 0; chunk < job.x.count; chunk += kChunkColumns) {
        const int32_t last = std::min(chunk + kChunkColumns, job.x.count);
        for (int32_t x = chunk; x < last; ++x)
            spans[x - chunk] = BoxSpanAt(job.x, x);
        int32_t kept[2] = {-1, -1};
        const auto sumsOf = [&](int32_t row) {
            int32_t* const to = sums[row % 2];
            for (int32_t x = chunk; x < last && kept[row % 2] != row; ++x)
                StoreSumOfColumns(to + 4 * (x - chunk), job.SourceRow(row), spans[x - chunk]);
            kept[row % 2] = row;
            return to;
        };
        for (int32_t y = 0; y < job.y.count; ++y) {
            const LinearTaps taps = LinearTapsBesideBoxAt(job.y, y);
            const int32_t *const here = sumsOf(taps.here), *const next = sumsOf(taps.next);
            uint8_t* const dest = job.DestRow(y) + 4 * int64_t(job.x.firstPixel);
            ForColumns(
                job, job.y.Coverage(y), chunk, last,
                [&](int32_t x) {
                    BlendBoxPixel<BytePixel>(job, job.x, dest + 4 * int64_t(x), x, y,
                                             BoxXLinearYPixel<BytePixel, uint32_t>);
                },
                [&](int32_t begin, int32_t end) {
                    const Doubles lanes;
                    const auto hereWeight = hn::Set(lanes, double(kSubpixelOne - taps.fraction));
                    const auto nextWeight = hn::Set(lanes, double(taps.fraction));
                    for (int32_t i = 4 * (begin - chunk); i < 4 * (end - chunk);
                         i += int32_t(hn::Lanes(lanes))) {
                        const auto h = hn::PromoteTo(lanes, hn::LoadU(PartInts(), here + i));
                        const auto n = hn::PromoteTo(lanes, hn::LoadU(PartInts(), next + i));
                        WriteQuotients(dest + 4 * int64_t(chunk) + i,
                                       hn::Add(hn::Mul(h, hereWeight), hn::Mul(n, nextWeight)), reciprocal);
                    }
                });
        }
    }
}

QuadVec MixedQuad(const uint8_t* row, const LinearTaps& taps)
{
    const QuadInts lanes;
    const auto here =
        hn::Mul(LoadQuad(row + 4 * int64_t(taps.here)), hn::Set(lanes, kSubpixelOne - taps.fraction));
    const auto next = hn::Mul(LoadQuad(row + 4 * int64_t(taps.next)), hn::Set(lanes, taps.fraction));
    return hn::ShiftRight<kSubpixelBits>(hn::Add(here, next));
}

void BoxYLinearXVector(const ScaleJob& job)
{
    const double reciprocal = 1.0 / double(job.y.step);
    LinearTaps taps[kChunkColumns];
    for (int32_t chunk = 0; chunk < job.x.count; chunk += kChunkColumns) {
        const int32_t last = std::min(chunk + kChunkColumns, job.x.count);
        for (int32_t x = chunk; x < last; ++x)
            taps[x - chunk] = LinearTapsBesideBoxAt(job.x, x);
        for (int32_t y = 0; y < job.y.count; ++y) {
            const BoxSpan span = BoxSpanAt(job.y, y);
            uint8_t* const dest = job.DestRow(y) + 4 * int64_t(job.x.firstPixel);
            ForColumns(
                job, job.y.Coverage(y), chunk, last,
                [&](int32_t x) {
                    BlendBoxPixel<BytePixel>(job, job.y, dest + 4 * int64_t(x), x, y,
                                             BoxYLinearXPixel<BytePixel, uint32_t>);
                },
                [&](int32_t begin, int32_t end) {
                    for (int32_t x = begin; x < end; ++x) {
                        const LinearTaps& at = taps[x - chunk];
                        auto inner = hn::Zero(QuadInts());
                        for (int32_t row = span.first + 1; row < span.last; ++row)
                            inner = hn::Add(inner, MixedQuad(job.SourceRow(row), at));
                        const auto first = hn::Mul(MixedQuad(job.SourceRow(span.first), at),
                                                   hn::Set(QuadInts(), span.firstShare));
                        const auto final = hn::Mul(MixedQuad(job.SourceRow(span.last), at),
                                                   hn::Set(QuadInts(), span.lastShare));
                        HWY_ALIGN int32_t sum[4];
                        hn::Store(hn::Add(hn::ShiftLeft<kSubpixelBits>(inner), hn::Add(first, final)),
                                  QuadInts(), sum);
                        for (int32_t c = 0; c < 4; c += int32_t(hn::Lanes(Doubles())))
                            WriteQuotients(dest + 4 * int64_t(x) + c,
                                           hn::PromoteTo(Doubles(), hn::LoadU(PartInts(), sum + c)),
                                           reciprocal);
                    }
                });
        }
    }
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

ScaleJobFn BoxXLinearYBytes(const ScaleJob& job)
{
    if (job.x.step <= kVectorSide)
        return VX_VECTOR_FORM(BoxXLinearYVector, (BoxXLinearY<BytePixel, uint32_t>));
    const bool narrow = WidestSpan(job.x) * kSubpixelOne * 255 * 2 < kNarrowSums;
    return narrow ? BoxXLinearY<BytePixel, uint32_t> : BoxXLinearY<BytePixel, uint64_t>;
}

ScaleJobFn BoxYLinearXBytes(const ScaleJob& job)
{
    if (job.y.step <= kVectorSide)
        return VX_VECTOR_FORM(BoxYLinearXVector, (BoxYLinearX<BytePixel, uint32_t>));
    const bool narrow = WidestSpan(job.y) * kSubpixelOne * 255 < kNarrowSums;
    return narrow ? BoxYLinearX<BytePixel, uint32_t> : BoxYLinearX<BytePixel, uint64_t>;
}

} // namespace

void ScaleBoxXLinearY(const ScaleJob& job, int32_t bytesPerPixel)
{
    (bytesPerPixel == FloatPixel::kBytes ? BoxXLinearY<FloatPixel, double> : BoxXLinearYBytes(job))(job);
}

void ScaleBoxYLinearX(const ScaleJob& job, int32_t bytesPerPixel)
{
    (bytesPerPixel == FloatPixel::kBytes ? BoxYLinearX<FloatPixel, double> : BoxYLinearXBytes(job))(job);
}

} // namespace vx

#endif // HWY_ONCE
