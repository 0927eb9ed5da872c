// The mean of what each destination pixel covers, on both axes.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "dib/scale_box.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#ifndef VX_SCALE_BOX_PLAIN
#define VX_SCALE_BOX_PLAIN

#include "dib/scale_box.h"
#include "kernel/vector_targets.h"

#include <bit>

namespace vx {
namespace {

template <class Pixel, class Sum>
Channels<Sum> SumOfBlock(const ScaleJob& job, const BoxSpan& x, const BoxSpan& y)
{
    Channels<Sum> sum{};
    for (int32_t row = y.first; row <= y.last; ++row)
        AddColumns<Pixel>(sum, job.SourceRow(row), x, ShareAt(y, row));
    return sum;
}

// In 1/16384 of a source pixel.
int64_t Area(int32_t width, int32_t height)
{
    return int64_t(width) * height >> kSubpixelBits;
}

// A sum times the reciprocal of its area goes to the nearest integer, of two to the even one: a double
// that has 1.5 * 2^52 added has no room for a fraction, and the integer in its low bits. The small term
// lifts halves that the reciprocal left just below.
constexpr double kLift = 1.5e-8;
constexpr double kNoFraction = 0x1.8p52;

uint8_t RoundedMean(double sum, double reciprocal)
{
    return uint8_t(std::bit_cast<uint64_t>(sum * reciprocal + kLift + kNoFraction));
}

template <class Sum>
Channels<uint8_t> WholeMean(const Channels<Sum>& sum, int64_t area)
{
    const double reciprocal = 1.0 / double(area);
    Channels<uint8_t> mean;
    for (size_t c = 0; c < 4; ++c)
        mean[c] = RoundedMean(double(sum[c]), reciprocal);
    return mean;
}

Channels<float> WholeMean(const Channels<double>& sum, int64_t area)
{
    const double reciprocal = double(kSubpixelOne) / double(area);
    Channels<float> mean;
    for (size_t c = 0; c < 4; ++c)
        mean[c] = float(sum[c] * reciprocal);
    return mean;
}

// The corners' shares are truncated, and so is the area: the quotient may exceed a byte by a little.
template <class Sum>
Channels<uint8_t> PartMean(const Channels<Sum>& sum, int64_t area)
{
    Channels<uint8_t> mean;
    for (size_t c = 0; c < 4; ++c)
        mean[c] = uint8_t(std::min<uint64_t>(uint64_t(sum[c]) / uint64_t(area), 255));
    return mean;
}

Channels<float> PartMean(const Channels<double>& sum, int64_t area)
{
    return WholeMean(sum, area);
}

// A part of a destination pixel that covers less than one unit of the source leaves it alone.
// A run of columns with what each covers, so that it is worked out once for all rows.
constexpr int32_t kStripColumns = 1024;

struct Strip
{
    int32_t start, count;
    BoxSpan spans[kStripColumns];

    Strip(const ScaleAxis& axis, int32_t startAt)
        : start(startAt), count(std::min(axis.count - startAt, kStripColumns))
    {
        for (int32_t k = 0; k < count; ++k)
            spans[k] = BoxSpanAt(axis, start + k);
    }
};

// Writes the columns `begin` to `end` of a strip; dest is the pixel of column 0.
template <class Pixel, class Sum>
void BoxRow(const ScaleJob& job, const Strip& strip, uint8_t* dest, int32_t begin, int32_t end,
            const BoxSpan& y)
{
    const int64_t area = Area(job.x.step, job.y.step);
    for (int32_t k = begin; k < end; ++k) {
        const auto mean = WholeMean(SumOfBlock<Pixel, Sum>(job, strip.spans[k], y), area);
        std::memcpy(dest + int64_t(Pixel::kBytes) * k, mean.data(), sizeof(mean));
    }
}

using BoxRowFn = void (*)(const ScaleJob&, const Strip&, uint8_t*, int32_t, int32_t, const BoxSpan&);

} // namespace
} // namespace vx

#endif // VX_SCALE_BOX_PLAIN

#include "dib/scale_box-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

constexpr int32_t kLinePixels = 1024;
constexpr int32_t kChunkColumns = 128;

// The rows that lie in the box whole, summed column by column.
void SumRows(uint16_t* line, const uint8_t* first, int32_t stride, int32_t rows, int32_t values)
{
    const hn::ScalableTag<uint16_t> lanes;
    const hn::Rebind<uint8_t, decltype(lanes)> bytes;
    const int32_t step = int32_t(hn::Lanes(lanes));
    int32_t i = 0;
    for (; i + 2 * step <= values; i += 2 * step) {
        auto sum = hn::Zero(lanes), nextSum = hn::Zero(lanes);
        const uint8_t* at = first + i;
        for (int32_t row = 0; row < rows; ++row, at += stride) {
            sum = hn::Add(sum, hn::PromoteTo(lanes, hn::LoadU(bytes, at)));
            nextSum = hn::Add(nextSum, hn::PromoteTo(lanes, hn::LoadU(bytes, at + step)));
        }
        hn::StoreU(sum, lanes, line + i);
        hn::StoreU(nextSum, lanes, line + i + step);
    }
    for (; i < values; ++i) {
        line[i] = 0;
        for (int32_t row = 0; row < rows; ++row)
            line[i] = uint16_t(line[i] + first[int64_t(stride) * row + i]);
    }
}

// The rows that lie in the box in part; none has the share 0.
struct PartRows
{
    const uint8_t* top;
    const uint8_t* bottom;
    int32_t topShare, bottomShare;
};

IntVec SumOfPartRows(const PartRows& rows, const BoxSpan& x)
{
    const int64_t first = 4 * int64_t(x.first), last = 4 * int64_t(x.last);
    const EdgeWeights ofTop(x, rows.topShare), ofBottom(x, rows.bottomShare);
    IntVec top = hn::Zero(Ints()), bottom = top;
    for (int64_t at = first + 4; at < last; at += 4) {
        top = hn::Add(top, LoadQuad(rows.top + at));
        bottom = hn::Add(bottom, LoadQuad(rows.bottom + at));
    }
    const IntVec inner = hn::Add(hn::Mul(top, ofTop.inner), hn::Mul(bottom, ofBottom.inner));
    const IntVec edges = hn::Add(SumOfEdges(rows.top + first, rows.top + last, ofTop),
                                 SumOfEdges(rows.bottom + first, rows.bottom + last, ofBottom));
    return hn::Add(inner, edges);
}

// Whole pixels of the box weigh 16384 and are summed apart from the rest, so that both fit 32 bits.
void WriteMeans(uint8_t* dest, const int32_t* whole, const int32_t* rest, int32_t values, double reciprocal)
{
    const Doubles lanes;
    const PartInts ints;
    const hn::Rebind<uint8_t, Doubles> bytes;
    const int32_t step = int32_t(hn::Lanes(lanes));
    for (int32_t i = 0; i < values; i += step) {
        const auto ofWhole = hn::PromoteTo(lanes, hn::LoadU(ints, whole + i));
        const auto ofRest = hn::PromoteTo(lanes, hn::LoadU(ints, rest + i));
        const auto sum = hn::Add(hn::Mul(ofWhole, hn::Set(lanes, double(kSubpixelOne))), ofRest);
        const auto mean = hn::Add(hn::Mul(sum, hn::Set(lanes, reciprocal)), hn::Set(lanes, kLift));
        const auto rounded =
            hn::BitCast(hn::RebindToUnsigned<decltype(lanes)>(), hn::Add(mean, hn::Set(lanes, kNoFraction)));
        hn::StoreU(hn::TruncateTo(bytes, rounded), bytes, dest + i);
    }
}

void BoxByteRow(const ScaleJob& job, const Strip& strip, uint8_t* dest, int32_t begin, int32_t end,
                const BoxSpan& y)
{
    const double reciprocal = 1.0 / double(Area(job.x.step, job.y.step));
    const bool partFirst = y.firstShare != kSubpixelOne,
               partLast = y.last > y.first && y.lastShare != kSubpixelOne;
    const PartRows part{job.SourceRow(y.first), job.SourceRow(y.last), partFirst ? y.firstShare : 0,
                        partLast ? y.lastShare : 0};
    const int32_t wholeFirst = y.first + partFirst, wholeRows = y.last - partLast - wholeFirst + 1;
    const int32_t chunkColumns = std::min(kChunkColumns, (kLinePixels - 2) * kSubpixelOne / job.x.step);
    HWY_ALIGN uint16_t line[4 * kLinePixels];
    HWY_ALIGN int32_t whole[4 * kChunkColumns], rest[4 * kChunkColumns];
    for (int32_t chunk = begin; chunk < end; chunk += chunkColumns) {
        const int32_t last = std::min(chunk + chunkColumns, end);
        const int32_t firstColumn = strip.spans[chunk].first;
        SumRows(line, job.SourceRow(wholeFirst) + 4 * int64_t(firstColumn), job.sourceStride, wholeRows,
                4 * (strip.spans[last - 1].last - firstColumn + 1));
        for (int32_t k = chunk; k < last; ++k) {
            const BoxSpan& x = strip.spans[k];
            const uint16_t* const from = line + 4 * (x.first - firstColumn);
            const uint16_t* const to = line + 4 * (x.last - firstColumn);
            IntVec sum = SumOfEdges(from, to, EdgeWeights(x, kSubpixelOne));
            if (partFirst || partLast)
                sum = hn::Add(sum, SumOfPartRows(part, x));
            hn::StoreU(SumOfInner(from, to), Ints(), whole + 4 * (k - chunk));
            hn::StoreU(sum, Ints(), rest + 4 * (k - chunk));
        }
        WriteMeans(dest + 4 * int64_t(chunk), whole, rest, 4 * (last - chunk), reciprocal);
    }
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
namespace {

HWY_EXPORT(BoxByteRow);

// A part of a destination pixel that covers less than one unit of the source leaves it alone.
template <class Pixel, class Sum>
void BlendMean(const ScaleJob& job, uint8_t* at, const BoxSpan& x, const BoxSpan& y, int32_t coverX,
               int32_t coverY)
{
    const int64_t area = Area(x.length, y.length);
    if (area >= 1)
        StorePixel(at, PartMean(SumOfBlock<Pixel, Sum>(job, x, y), area), BoxCoverage<Pixel>(coverX, coverY));
}

template <class Pixel, class Sum>
void Box(const ScaleJob& job, BoxRowFn workRow)
{
    for (int32_t first = 0; first < job.x.count; first += kStripColumns) {
        const Strip strip(job.x, first);
        for (int32_t row = 0; row < job.y.count; ++row) {
            const BoxSpan y = BoxSpanAt(job.y, row);
            const int32_t coverage = job.y.Coverage(row);
            uint8_t* const dest = job.DestRow(row) + int64_t(Pixel::kBytes) * (job.x.firstPixel + first);
            ForColumns(
                job, coverage, first, first + strip.count,
                [&](int32_t k) {
                    BlendMean<Pixel, Sum>(job, dest + int64_t(Pixel::kBytes) * (k - first),
                                          strip.spans[k - first], y, job.x.Coverage(k), coverage);
                },
                [&](int32_t begin, int32_t end) {
                    workRow(job, strip, dest, begin - first, end - first, y);
                });
        }
    }
}

template <class Sum>
void BoxBytes(const ScaleJob& job)
{
    const bool small = job.x.step <= kVectorSide && job.y.step <= kVectorSide;
    const BoxRowFn plain = BoxRow<BytePixel, Sum>;
    Box<BytePixel, Sum>(job, small ? VX_VECTOR_FORM(BoxByteRow, (BoxRow<BytePixel, Sum>)) : plain);
}

} // namespace

void ScaleBox(const ScaleJob& job, int32_t bytesPerPixel)
{
    if (bytesPerPixel == FloatPixel::kBytes)
        Box<FloatPixel, double>(job, BoxRow<FloatPixel, double>);
    else if (WidestSpan(job.x) * WidestSpan(job.y) * kSubpixelOne * 255 < kNarrowSums)
        BoxBytes<uint32_t>(job);
    else
        BoxBytes<uint64_t>(job);
}

} // namespace vx

#endif // HWY_ONCE
