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

constexpr int32_t kChunkColumns = 256;

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

// Sums along the rows serve several destination rows: the four in use are kept, each in the place that
// its number's low bits say.
void BoxXCubicYVector(const ScaleJob& job)
{
    const double reciprocal = 1.0 / double(job.x.step);
    HWY_ALIGN int32_t kept[4][4 * kChunkColumns];
    BoxSpan spans[kChunkColumns];
    for (int32_t chunk = 0; chunk < job.x.count; chunk += kChunkColumns) {
        const int32_t last = std::min(chunk + kChunkColumns, job.x.count);
        for (int32_t x = chunk; x < last; ++x)
            spans[x - chunk] = BoxSpanAt(job.x, x);
        int32_t keptRow[4] = {-1, -1, -1, -1};
        const auto sumsOf = [&](int32_t row) {
            int32_t* const to = kept[row % 4];
            for (int32_t x = chunk; x < last && keptRow[row % 4] != row; ++x)
                StoreSumOfColumns(to + 4 * (x - chunk), job.SourceRow(row), spans[x - chunk]);
            keptRow[row % 4] = row;
            return to;
        };
        for (int32_t y = 0; y < job.y.count; ++y) {
            const CubicTaps taps = CubicTapsAt(job.y, y, false);
            const int32_t* sums[4];
            for (size_t tap = 0; tap < 4; ++tap)
                sums[tap] = sumsOf(taps.tap[tap]);
            uint8_t* const dest = job.DestRow(y) + 4 * int64_t(job.x.firstPixel);
            ForColumns(
                job, job.y.Coverage(y), chunk, last,
                [&](int32_t x) {
                    BlendBoxPixel<BytePixel>(job, job.x, dest + 4 * int64_t(x), x, y,
                                             BoxXCubicYPixel<BytePixel, uint32_t>);
                },
                [&](int32_t begin, int32_t end) {
                    const int32_t skipped = 4 * (begin - chunk);
                    WriteWeighted(
                        dest + 4 * int64_t(begin),
                        {sums[0] + skipped, sums[1] + skipped, sums[2] + skipped, sums[3] + skipped},
                        4 * (end - begin), taps.weights, reciprocal);
                });
        }
    }
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
    CubicTaps taps[kChunkColumns];
    for (int32_t chunk = 0; chunk < job.x.count; chunk += kChunkColumns) {
        const int32_t last = std::min(chunk + kChunkColumns, job.x.count);
        int32_t firstColumn = job.x.sourceSize, lastColumn = 0;
        for (int32_t x = chunk; x < last; ++x) {
            taps[x - chunk] = CubicTapsAt(job.x, x, true);
            firstColumn = std::min(firstColumn, taps[x - chunk].tap[0]);
            lastColumn = std::max(lastColumn, taps[x - chunk].tap[3]);
        }
        for (int32_t y = 0; y < job.y.count; ++y) {
            const BoxSpan span = BoxSpanAt(job.y, y);
            SumRows(line, job, firstColumn, 4 * (lastColumn - firstColumn + 1), span);
            uint8_t* const dest = job.DestRow(y) + 4 * int64_t(job.x.firstPixel);
            ForColumns(
                job, job.y.Coverage(y), chunk, last,
                [&](int32_t x) {
                    BlendBoxPixel<BytePixel>(job, job.y, dest + 4 * int64_t(x), x, y,
                                             BoxYCubicXPixel<BytePixel, uint32_t>);
                },
                [&](int32_t begin, int32_t end) {
                    for (int32_t x = begin; x < end; ++x) {
                        const CubicTaps& at = taps[x - chunk];
                        const auto sum = [&](size_t tap) { return line + 4 * (at.tap[tap] - firstColumn); };
                        WriteWeighted(dest + 4 * int64_t(x), {sum(0), sum(1), sum(2), sum(3)}, 4, at.weights,
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

HWY_EXPORT(BoxXCubicYVector);
HWY_EXPORT(BoxYCubicXVector);

ScaleJobFn BoxXCubicYBytes(const ScaleJob& job)
{
    if (job.x.step <= kVectorSide)
        return VX_VECTOR_FORM(BoxXCubicYVector, (BoxXCubicY<BytePixel, uint32_t>));
    const bool narrow = WidestSpan(job.x) * kSubpixelOne * 255 * 2 < kNarrowSums;
    return narrow ? BoxXCubicY<BytePixel, uint32_t> : BoxXCubicY<BytePixel, uint64_t>;
}

ScaleJobFn BoxYCubicXBytes(const ScaleJob& job)
{
    if (job.y.step <= kVectorSide)
        return VX_VECTOR_FORM(BoxYCubicXVector, (BoxYCubicX<BytePixel, uint32_t>));
    const bool narrow = WidestSpan(job.y) * kSubpixelOne * 255 < kNarrowSums;
    return narrow ? BoxYCubicX<BytePixel, uint32_t> : BoxYCubicX<BytePixel, uint64_t>;
}

} // namespace

void ScaleBoxXCubicY(const ScaleJob& job, int32_t bytesPerPixel)
{
    (bytesPerPixel == FloatPixel::kBytes ? BoxXCubicY<FloatPixel, double> : BoxXCubicYBytes(job))(job);
}

void ScaleBoxYCubicX(const ScaleJob& job, int32_t bytesPerPixel)
{
    (bytesPerPixel == FloatPixel::kBytes ? BoxYCubicX<FloatPixel, double> : BoxYCubicXBytes(job))(job);
}

} // namespace vx

#endif // HWY_ONCE
