// Vector helpers of the box kernels, for one pixel at a time. Included once for each target.
#if defined(VX_DIB_SCALE_BOX_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VX_DIB_SCALE_BOX_INL_H
#undef VX_DIB_SCALE_BOX_INL_H
#else
#define VX_DIB_SCALE_BOX_INL_H
#endif

#include "dib/scale_box.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// The lanes of one pixel.
using QuadInts = hn::FixedTag<int32_t, 4>;
using QuadVec = hn::Vec<QuadInts>;

template <class Value>
QuadVec LoadQuad(const Value* pixel)
{
    return hn::PromoteTo(QuadInts(), hn::LoadU(hn::FixedTag<Value, 4>(), pixel));
}

// A row's share, and what of it falls to the first and the last pixel of a span.
struct EdgeWeights
{
    QuadVec inner, first, last;

    EdgeWeights(const BoxSpan& x, int32_t rowShare) : inner(hn::Set(QuadInts(), rowShare))
    {
        first = hn::ShiftRight<kSubpixelBits>(hn::Mul(hn::Set(QuadInts(), x.firstShare), inner));
        last = hn::ShiftRight<kSubpixelBits>(hn::Mul(hn::Set(QuadInts(), x.lastShare), inner));
    }
};

template <class Value>
QuadVec SumOfEdges(const Value* first, const Value* last, const EdgeWeights& w)
{
    return hn::Add(hn::Mul(LoadQuad(first), w.first), hn::Mul(LoadQuad(last), w.last));
}

template <class Value>
QuadVec SumOfInner(const Value* first, const Value* last)
{
    QuadVec sum = hn::Zero(QuadInts());
    for (const Value* at = first + 4; at < last; at += 4)
        sum = hn::Add(sum, LoadQuad(at));
    return sum;
}

// The lanes of one pixel in doubles, or half of them where there is no room for four.
using Doubles = hn::CappedTag<double, 4>;
using PartInts = hn::Rebind<int32_t, Doubles>;

// What a box sums to along a row, as the plain form's 32-bit sums.
[[maybe_unused]] void StoreSumOfColumns(int32_t* sum, const uint8_t* row, const BoxSpan& x)
{
    const uint8_t *const first = row + 4 * int64_t(x.first), *const last = row + 4 * int64_t(x.last);
    const QuadVec inner = hn::ShiftLeft<kSubpixelBits>(SumOfInner(first, last));
    hn::StoreU(hn::Add(SumOfEdges(first, last, EdgeWeights(x, kSubpixelOne)), inner), QuadInts(), sum);
}

// Writes a part of a pixel: sums over a divisor, truncated and limited to a byte. Half a unit more
// keeps exact quotients, up to 2^15 in sums up to 2^43, off the truncation's edge.
[[maybe_unused]] void WriteQuotients(uint8_t* dest, hn::Vec<Doubles> sums, double reciprocal)
{
    const Doubles lanes;
    const hn::Rebind<uint8_t, Doubles> bytes;
    const auto quotients = hn::Mul(hn::Add(sums, hn::Set(lanes, 0.5)), hn::Set(lanes, reciprocal));
    hn::StoreU(hn::DemoteTo(bytes, hn::DemoteTo(PartInts(), quotients)), bytes, dest);
}

constexpr int32_t kChunkColumns = 256;

// A kernel with a box along the rows. Sums along them serve several destination rows: the kRows in use
// are kept, each in the place that its number's remainder says. value is as in ForBoxPixels; write(dest,
// sumsOf, y, values) writes whole pixels out of the sums of the rows that it asks sumsOf for.
template <int32_t kRows, class Value, class Write>
HWY_INLINE void ForChunksOfBoxX(const ScaleJob& job, const Value& value, const Write& write)
{
    HWY_ALIGN int32_t kept[kRows][4 * kChunkColumns];
    BoxSpan spans[kChunkColumns];
    for (int32_t chunk = 0; chunk < job.x.count; chunk += kChunkColumns) {
        const int32_t last = std::min(chunk + kChunkColumns, job.x.count);
        for (int32_t x = chunk; x < last; ++x)
            spans[x - chunk] = BoxSpanAt(job.x, x);
        int32_t keptRow[kRows];
        std::fill_n(keptRow, kRows, -1);
        const auto sumsOf = [&](int32_t row) {
            int32_t* const to = kept[row % kRows];
            for (int32_t x = chunk; x < last && keptRow[row % kRows] != row; ++x)
                StoreSumOfColumns(to + 4 * (x - chunk), job.SourceRow(row), spans[x - chunk]);
            keptRow[row % kRows] = row;
            return to;
        };
        for (int32_t y = 0; y < job.y.count; ++y) {
            uint8_t* const dest = job.DestRow(y) + 4 * int64_t(job.x.firstPixel);
            ForColumns(
                job, job.y.Coverage(y), chunk, last,
                [&](int32_t x) { BlendBoxPixel<BytePixel>(job, job.x, dest + 4 * int64_t(x), x, y, value); },
                [&](int32_t begin, int32_t end) {
                    const auto sumsFromBegin = [&](int32_t row) { return sumsOf(row) + 4 * (begin - chunk); };
                    write(dest + 4 * int64_t(begin), sumsFromBegin, y, 4 * (end - begin));
                });
        }
    }
}

// A kernel with a box down the columns. startChunk(taps, count) hears of each run of columns,
// startRow(span) of each row of it; write(dest, taps, span) writes a whole pixel.
template <class Taps, class TapsAt, class Value, class StartChunk, class StartRow, class Write>
HWY_INLINE void ForChunksOfBoxY(const ScaleJob& job, const TapsAt& tapsAt, const Value& value,
                                const StartChunk& startChunk, const StartRow& startRow, const Write& write)
{
    Taps taps[kChunkColumns];
    for (int32_t chunk = 0; chunk < job.x.count; chunk += kChunkColumns) {
        const int32_t last = std::min(chunk + kChunkColumns, job.x.count);
        for (int32_t x = chunk; x < last; ++x)
            taps[x - chunk] = tapsAt(x);
        startChunk(taps, last - chunk);
        for (int32_t y = 0; y < job.y.count; ++y) {
            const BoxSpan span = BoxSpanAt(job.y, y);
            startRow(span);
            uint8_t* const dest = job.DestRow(y) + 4 * int64_t(job.x.firstPixel);
            ForColumns(
                job, job.y.Coverage(y), chunk, last,
                [&](int32_t x) { BlendBoxPixel<BytePixel>(job, job.y, dest + 4 * int64_t(x), x, y, value); },
                [&](int32_t begin, int32_t end) {
                    for (int32_t x = begin; x < end; ++x)
                        write(dest + 4 * int64_t(x), taps[x - chunk], span);
                });
        }
    }
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#endif
