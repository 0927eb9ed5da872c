// A box along the axis that shrinks, cubic sampling along the other.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "dib/scale_box_cubic.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#ifndef VX_SCALE_BOX_CUBIC_PLAIN
#define VX_SCALE_BOX_CUBIC_PLAIN

#include "dib/cubic_weights.h"
#include "dib/scale_box.h"
#include "kernel/vector_targets.h"

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
auto BoxXCubicYPixel(const ScaleJob& job, int32_t x, int32_t y, int32_t divisor)
{
    const BoxSpan span = BoxSpanAt(job.x, x);
    const CubicTaps taps = CubicTapsAt(job.y, y, false);
    Channels<Sum> sums[4];
    for (size_t tap = 0; tap < 4; ++tap)
        sums[tap] = SumOfColumns<Pixel, Sum>(job.SourceRow(taps.tap[tap]), span);
    return Weighted(sums, taps.weights, divisor);
}

template <class Pixel, class Sum>
void BoxXCubicY(const ScaleJob& job)
{
    ForBoxPixels<Pixel>(job, job.x, BoxXCubicYPixel<Pixel, Sum>);
}

template <class Pixel, class Sum>
auto BoxYCubicXPixel(const ScaleJob& job, int32_t x, int32_t y, int32_t divisor)
{
    const BoxSpan span = BoxSpanAt(job.y, y);
    const CubicTaps taps = CubicTapsAt(job.x, x, true);
    Channels<Sum> sums[4];
    for (size_t tap = 0; tap < 4; ++tap)
        sums[tap] = SumOfRows<Pixel, Sum>(job, taps.tap[tap], span);
    return Weighted(sums, taps.weights, divisor);
}

template <class Pixel, class Sum>
void BoxYCubicX(const ScaleJob& job)
{
    ForBoxPixels<Pixel>(job, job.y, BoxYCubicXPixel<Pixel, Sum>);
}

} // namespace
} // namespace vx

#endif // VX_SCALE_BOX_CUBIC_PLAIN

#include "dib/scale_box-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

// The four sums of a pixel or of a run of them, weighted. Each product is exact in a double, scaled so
// that its fraction is what the conversion drops.
void WriteWeighted(uint8_t* dest, const int32_t* const (&sums)[4], int32_t values, int32_t weights,
                   double reciprocal)
{
    const Doubles lanes;
    const auto& w = kCubicIntegers[size_t(weights)];
    for (int32_t i = 0; i < values; i += int32_t(hn::Lanes(lanes))) {
        auto sum = hn::Set(PartInts(), kSubpixelOne / 2);
        for (size_t tap = 0; tap < 4; ++tap) {
            const auto s = hn::PromoteTo(lanes, hn::LoadU(PartInts(), sums[tap] + i));
            const auto product = hn::Mul(s, hn::Set(lanes, double(w[tap]) / kSubpixelOne));
            sum = hn::Add(sum, hn::DemoteTo(PartInts(), product));
        }
        WriteQuotients(dest + i, hn::PromoteTo(lanes, sum), reciprocal);
    }
}

void BoxXCubicYVector(const ScaleJob& job)
{
    const double reciprocal = 1.0 / double(job.x.step);
    ForChunksOfBoxX<4>(job, BoxXCubicYPixel<BytePixel, uint32_t>,
                       [&](uint8_t* dest, const auto& sumsOf, int32_t y, int32_t values) {
                           const CubicTaps taps = CubicTapsAt(job.y, y, false);
                           WriteWeighted(dest,
                                         {sumsOf(taps.tap[0]), sumsOf(taps.tap[1]), sumsOf(taps.tap[2]),
                                          sumsOf(taps.tap[3])},
                                         values, taps.weights, reciprocal);
                       });
}

// What a box sums to down each column.
void SumRows(int32_t* line, const ScaleJob& job, int32_t firstColumn, int32_t values, const BoxSpan& y)
{
    const hn::ScalableTag<int32_t> lanes;
    const hn::Rebind<uint8_t, decltype(lanes)> bytes;
    const int32_t step = int32_t(hn::Lanes(lanes));
    const int64_t firstByte = 4 * int64_t(firstColumn);
    int32_t i = 0;
    for (; i + step <= values; i += step) {
        const auto load = [&](int32_t row) {
            return hn::PromoteTo(lanes, hn::LoadU(bytes, job.SourceRow(row) + firstByte + i));
        };
        auto inner = hn::Zero(lanes);
        for (int32_t row = y.first + 1; row < y.last; ++row)
            inner = hn::Add(inner, load(row));
        const auto edges = hn::Add(hn::Mul(load(y.first), hn::Set(lanes, y.firstShare)),
                                   hn::Mul(load(y.last), hn::Set(lanes, y.lastShare)));
        hn::StoreU(hn::Add(hn::ShiftLeft<kSubpixelBits>(inner), edges), lanes, line + i);
    }
    for (; i < values; ++i) {
        line[i] = 0;
        for (int32_t row = y.first; row <= y.last; ++row)
            line[i] += job.SourceRow(row)[firstByte + i] * ShareAt(y, row);
    }
}

// The axis with the taps does not shrink, so that the source columns of a chunk are no more than its own
// and the taps beside them.
constexpr int32_t kLinePixels = kChunkColumns + 8;

void BoxYCubicXVector(const ScaleJob& job)
{
    const double reciprocal = 1.0 / double(job.y.step);
    HWY_ALIGN int32_t line[4 * kLinePixels];
    int32_t firstColumn = 0, lastColumn = 0;
    ForChunksOfBoxY<CubicTaps>(
        job, [&](int32_t x) { return CubicTapsAt(job.x, x, true); }, BoxYCubicXPixel<BytePixel, uint32_t>,
        [&](const CubicTaps* taps, int32_t count) {
            firstColumn = job.x.sourceSize;
            lastColumn = 0;
            for (int32_t i = 0; i < count; ++i) {
                firstColumn = std::min(firstColumn, taps[i].tap[0]);
                lastColumn = std::max(lastColumn, taps[i].tap[3]);
            }
        },
        [&](const BoxSpan& span) {
            SumRows(line, job, firstColumn, 4 * (lastColumn - firstColumn + 1), span);
        },
        [&](uint8_t* dest, const CubicTaps& taps, const BoxSpan&) {
            const auto sum = [&](size_t tap) { return line + 4 * (taps.tap[tap] - firstColumn); };
            WriteWeighted(dest, {sum(0), sum(1), sum(2), sum(3)}, 4, taps.weights, reciprocal);
        });
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
namespace {

HWY_EXPORT(BoxXCubicYVector);
HWY_EXPORT(BoxYCubicXVector);

} // namespace

void ScaleBoxXCubicY(const ScaleJob& job, int32_t bytesPerPixel)
{
    if (bytesPerPixel == FloatPixel::kBytes)
        return BoxXCubicY<FloatPixel, double>(job);
    ChooseBoxForm(job.x, 2.0, VX_VECTOR_FORM(BoxXCubicYVector, (BoxXCubicY<BytePixel, uint32_t>)),
                  BoxXCubicY<BytePixel, uint32_t>, BoxXCubicY<BytePixel, uint64_t>)(job);
}

void ScaleBoxYCubicX(const ScaleJob& job, int32_t bytesPerPixel)
{
    if (bytesPerPixel == FloatPixel::kBytes)
        return BoxYCubicX<FloatPixel, double>(job);
    ChooseBoxForm(job.y, 1.0, VX_VECTOR_FORM(BoxYCubicXVector, (BoxYCubicX<BytePixel, uint32_t>)),
                  BoxYCubicX<BytePixel, uint32_t>, BoxYCubicX<BytePixel, uint64_t>)(job);
}

} // namespace vx

#endif // HWY_ONCE
