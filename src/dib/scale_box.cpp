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

// The source columns of a chunk of columns are summed into one line of at most so many pixels.
constexpr int32_t kChunkColumns = 128;
constexpr int32_t kLinePixels = 1024;

// Vectors take the source columns of a box four at a time, by two pairs of weights.
constexpr int32_t kMostBlocks = (kVectorSide / kSubpixelOne + 2 + 3) / 4;

// A run of columns with what each covers, so that it is worked out once for all rows. It is long, as rows
// are read and written best from end to end, but for boxes with many weights.
constexpr int32_t kStripColumns = 2048;
constexpr int32_t kStripPairs = 512 * 2 * kMostBlocks;

// Boxes of floats whose weights are kept at once.
constexpr int32_t kFloatColumns = 256;

struct Strip
{
    int32_t start, count;
    BoxSpan spans[kStripColumns];
    int32_t firstShares[kStripColumns], lastShares[kStripColumns]; // the spans', side by side for vectors

    Strip(const ScaleAxis& axis, int32_t startAt)
        : start(startAt), count(std::min(axis.count - startAt, MostColumns(axis.step)))
    {
        for (int32_t k = 0; k < count; ++k) {
            spans[k] = BoxSpanAt(axis, start + k);
            firstShares[k] = spans[k].firstShare;
            lastShares[k] = spans[k].lastShare;
        }
    }

    // What vectors need besides.
    int32_t chunkColumns;
    int32_t blocks;               // of the widest box
    int32_t freeCount;            // columns all of whose blocks lie in the source row
    int32_t place[kStripColumns]; // of a box's first column behind the first one of its chunk, in values
    // Weights of each two columns side by side as 16-bit words, twice what they are: all first pairs, all
    // second ones and so on.
    int32_t pairs[kStripPairs];

    void PrepareForVectors(const ScaleAxis& axis)
    {
        chunkColumns = std::min(kChunkColumns, (kLinePixels - 2) * kSubpixelOne / axis.step / 4 * 4);
        int32_t widest = 0;
        for (int32_t k = 0; k < count; ++k)
            widest = std::max(widest, spans[k].last - spans[k].first + 1);
        blocks = (widest + 3) / 4;
        freeCount = count;
        while (freeCount > 0 && spans[freeCount - 1].first + 4 * blocks > axis.sourceSize)
            --freeCount;
        for (int32_t k = 0; k < count; ++k) {
            place[k] = 4 * (spans[k].first - FirstOfChunk(k));
            for (int32_t pair = 0; pair < 2 * blocks; ++pair) {
                const int32_t first = spans[k].first + 2 * pair;
                pairs[pair * count + k] = WeightOf(k, first) | WeightOf(k, first + 1) << 16;
            }
        }
    }

    int32_t FirstOfChunk(int32_t k) const { return spans[k - k % chunkColumns].first; }

    const int32_t* Pair(int32_t pair, int32_t k) const { return pairs + pair * count + k; }

private:
    static int32_t MostColumns(int32_t step)
    {
        const int32_t blocks = std::min(step / kSubpixelOne / 4 + 2, kMostBlocks);
        return std::min(kStripPairs / (2 * blocks), kStripColumns);
    }

    int32_t WeightOf(int32_t k, int32_t column) const
    {
        return column > spans[k].last ? 0 : 2 * ShareAt(spans[k], column);
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

#include "dib/scale_taps-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

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

// Pairs of what stands in neighbouring pixels, for the products.
template <int32_t firstPixel>
HWY_INLINE hn::Vec<Words> PairsOfBytes(hn::Vec<Bytes> pixels)
{
    constexpr uint8_t at = 4 * firstPixel, no = 0x80;
    alignas(16) static constexpr uint8_t kPairs[16] = {at,     no, at + 4, no, at + 1, no, at + 5, no,
                                                       at + 2, no, at + 6, no, at + 3, no, at + 7, no};
    return hn::BitCast(Words(), hn::TableLookupBytesOr0(pixels, hn::LoadDup128(Bytes(), kPairs)));
}

HWY_INLINE hn::Vec<Words> PairsOfWords(hn::Vec<Words> pixels)
{
    alignas(16) static constexpr uint8_t kPairs[16] = {0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15};
    return hn::BitCast(Words(),
                       hn::TableLookupBytes(hn::BitCast(Bytes(), pixels), hn::LoadDup128(Bytes(), kPairs)));
}

using Shares = hn::Repartition<uint16_t, Ints>;

// A row of the source with its share of the box.
struct ByteRow
{
    const uint8_t* pixels; // from the chunk's first column on
    int32_t share;
};

// The rows of a box: those that count in part and a single whole one as they are, more whole ones summed.
struct BoxRows
{
    ByteRow single[3];
    int32_t singles = 0;
    int32_t wholeFirst, wholeRows; // summed, unless there is one

    explicit BoxRows(const ScaleJob& job, const BoxSpan& y)
    {
        const bool partFirst = y.firstShare != kSubpixelOne,
                   partLast = y.last > y.first && y.lastShare != kSubpixelOne;
        wholeFirst = y.first + partFirst;
        wholeRows = y.last - partLast - wholeFirst + 1;
        if (partFirst)
            single[singles++] = {job.SourceRow(y.first), y.firstShare};
        if (partLast)
            single[singles++] = {job.SourceRow(y.last), y.lastShare};
        if (wholeRows == 1)
            single[singles++] = {job.SourceRow(wholeFirst), kSubpixelOne};
    }
};

// Sums of a vector of boxes. Where all does not fit 31 bits, whole pixels of summed rows, which weigh 16384, are
// kept apart from the rest.
struct Sums
{
    hn::Vec<Ints> whole, rest;
};

// Adds the four columns of a block. A pixel's weight is the product of its shares, cut.
HWY_INLINE void AddBlock(Sums& sums, const ByteRow& row, const int32_t* places, hn::Vec<Shares> first,
                         hn::Vec<Shares> last)
{
    const auto share = hn::Set(Shares(), uint16_t(2 * row.share));
    const auto pixels = GatherBlocks<1>(Bytes(), row.pixels, places, 1);
    const auto ofFirst = hn::BitCast(Words(), hn::MulHigh(first, share));
    const auto ofLast = hn::BitCast(Words(), hn::MulHigh(last, share));
    sums.rest = AddMulPairs(sums.rest, PairsOfBytes<0>(pixels), ofFirst);
    sums.rest = AddMulPairs(sums.rest, PairsOfBytes<2>(pixels), ofLast);
}

template <bool kWide>
HWY_INLINE void AddPairs(Sums& sums, hn::Vec<Words> pairs, hn::Vec<Shares> twiceWeights)
{
    const Shares shares;
    auto weights = hn::ShiftRight<1>(twiceWeights);
    if constexpr (kWide) {
        const auto isWhole = hn::Eq(weights, hn::Set(shares, uint16_t(kSubpixelOne)));
        const auto ones = hn::IfThenElseZero(isWhole, hn::Set(shares, uint16_t(1)));
        sums.whole = AddMulPairs(sums.whole, pairs, hn::BitCast(Words(), ones));
        weights = hn::IfThenZeroElse(isWhole, weights);
    }
    sums.rest = AddMulPairs(sums.rest, pairs, hn::BitCast(Words(), weights));
}

// The boxes of a vector of columns; line is null where no rows are summed.
template <bool kWide>
HWY_INLINE Sums SumOfBoxes(const Strip& strip, int32_t k, const BoxRows& rows, const int16_t* line)
{
    Sums sums{hn::Zero(Ints()), hn::Zero(Ints())};
    const int32_t* const places = strip.place + k;
    for (int32_t block = 0; block < strip.blocks; ++block) {
        const auto first = hn::BitCast(Shares(), SpreadPixels(strip.Pair(2 * block, k)));
        const auto last = hn::BitCast(Shares(), SpreadPixels(strip.Pair(2 * block + 1, k)));
        for (int32_t i = 0; i < rows.singles; ++i)
            AddBlock(sums, {rows.single[i].pixels + 16 * block, rows.single[i].share}, places, first, last);
        if (line) {
            const int16_t* const at = line + 16 * block;
            AddPairs<kWide>(sums, PairsOfWords(GatherBlocks<1>(Words(), at, places, 1)), first);
            AddPairs<kWide>(sums, PairsOfWords(GatherBlocks<1>(Words(), at + 8, places, 1)), last);
        }
    }
    return sums;
}

struct Divisor
{
    int32_t area;
    double reciprocal;
};

// Half a vector of means, as doubles with their integers in the low bits.
template <class V>
HWY_INLINE hn::Vec<Ints> WideMeans(V whole, V rest, double reciprocal)
{
    const hn::Repartition<double, Ints> lanes;
    const auto sum = hn::Add(hn::Mul(hn::PromoteTo(lanes, whole), hn::Set(lanes, double(kSubpixelOne))),
                             hn::PromoteTo(lanes, rest));
    const auto mean = hn::Add(hn::Mul(sum, hn::Set(lanes, reciprocal)), hn::Set(lanes, kLift));
    return hn::BitCast(Ints(), hn::Add(mean, hn::Set(lanes, kNoFraction)));
}

// The nearest integer to a quotient, halves upwards, as the doubles give it: sums of 31 bits have no quotient
// so near to a half that the small term would matter but a half itself. A float is wrong by less than
// 1/16384 here, which added makes its integer right or one too large: the remainder tells.
HWY_INLINE hn::Vec<Ints> NarrowMeans(hn::Vec<Ints> sums, const Divisor& divisor)
{
    constexpr float kIntegers = 0x1.8p23f; // added, leaves the nearest integer in the low bits
    const Floats lanes;
    const Ints ints;
    const auto quotient = hn::Mul(hn::ConvertTo(lanes, sums), hn::Set(lanes, float(divisor.reciprocal)));
    const auto raised =
        hn::Add(hn::Add(quotient, hn::Set(lanes, kSubpixelToPixel)), hn::Set(lanes, kIntegers));
    const auto means = hn::Sub(hn::BitCast(ints, raised), hn::BitCast(ints, hn::Set(lanes, kIntegers)));
    const auto halvesUp = hn::Add(sums, hn::Set(ints, divisor.area >> 1));
    const auto remainder = hn::Sub(halvesUp, hn::Mul(means, hn::Set(ints, divisor.area)));
    return hn::Add(means, hn::ShiftRight<31>(remainder)); // less one where it is negative
}

template <bool kWide>
HWY_INLINE hn::Vec<Ints> MeansOf(const Sums& sums, const Divisor& divisor)
{
    const Ints lanes;
    const hn::Half<Ints> half;
    if constexpr (kWide) {
        const auto lower =
            WideMeans(hn::LowerHalf(half, sums.whole), hn::LowerHalf(half, sums.rest), divisor.reciprocal);
        const auto upper =
            WideMeans(hn::UpperHalf(half, sums.whole), hn::UpperHalf(half, sums.rest), divisor.reciprocal);
        return hn::And(hn::ConcatEven(lanes, upper, lower), hn::Set(lanes, 255));
    } else {
        return NarrowMeans(sums.rest, divisor);
    }
}

template <bool kWide>
HWY_INLINE void WriteMeans(uint8_t* dest, const Sums& sums, const Divisor& divisor)
{
    const hn::Rebind<uint8_t, Ints> bytes;
    const auto means = hn::BitCast(hn::RebindToUnsigned<Ints>(), MeansOf<kWide>(sums, divisor));
    hn::StoreU(hn::U8FromU32(means), bytes, dest);
}

template <bool kWide>
void BoxByteRow(const ScaleJob& job, const Strip& strip, uint8_t* dest, int32_t begin, int32_t end,
                const BoxSpan& y)
{
    const int64_t area = Area(job.x.step, job.y.step);
    const Divisor divisor{int32_t(area), 1.0 / double(area)};
    const BoxRows rows(job, y);
    const int32_t spare = 16 * strip.blocks;
    HWY_ALIGN int16_t line[4 * kLinePixels + 16 * kMostBlocks];
    for (int32_t k = begin; k < end;) {
        const int32_t last = std::min(k - k % strip.chunkColumns + strip.chunkColumns, end);
        const int32_t firstColumn = strip.FirstOfChunk(k);
        BoxRows ofChunk = rows;
        for (ByteRow& row : ofChunk.single)
            row.pixels += 4 * int64_t(firstColumn);
        if (rows.wholeRows > 1) {
            const int32_t values = 4 * (strip.spans[last - 1].last - firstColumn + 1);
            SumRows(reinterpret_cast<uint16_t*>(line),
                    job.SourceRow(rows.wholeFirst) + 4 * int64_t(firstColumn), job.sourceStride,
                    rows.wholeRows, values);
            std::fill_n(line + values, spare, int16_t(0));
        }
        const int32_t vectorLast = std::min(last, strip.freeCount);
        for (; k + kVectorPixels <= vectorLast; k += kVectorPixels)
            WriteMeans<kWide>(dest + 4 * int64_t(k),
                              SumOfBoxes<kWide>(strip, k, ofChunk, rows.wholeRows > 1 ? line : nullptr),
                              divisor);
        BoxRow<BytePixel, std::conditional_t<kWide, uint64_t, uint32_t>>(job, strip, dest, k, last, y);
        k = last;
    }
}

void BoxByteRowNarrow(const ScaleJob& job, const Strip& strip, uint8_t* dest, int32_t begin, int32_t end,
                      const BoxSpan& y)
{
    BoxByteRow<false>(job, strip, dest, begin, end, y);
}

void BoxByteRowWide(const ScaleJob& job, const Strip& strip, uint8_t* dest, int32_t begin, int32_t end,
                    const BoxSpan& y)
{
    BoxByteRow<true>(job, strip, dest, begin, end, y);
}

// What the pixels of a row weigh in a run of boxes: the first and the last of each, and those between.
struct RowWeights
{
    alignas(64) double first[kFloatColumns], last[kFloatColumns];
    double inner;

    HWY_INLINE void Set(const Strip& strip, int32_t start, int32_t count, int32_t rowShare)
    {
        for (int32_t k = 0; k < count; ++k) {
            first[k] = Multiplier<double>(CoverageProduct(strip.firstShares[start + k], rowShare));
            last[k] = Multiplier<double>(CoverageProduct(strip.lastShares[start + k], rowShare));
        }
        inner = Multiplier<double>(rowShare);
    }
};

// The rows of a box that begin it, lie in it whole and end it.
struct BoxWeights
{
    RowWeights top, middle, bottom;

    HWY_INLINE BoxWeights(const Strip& strip, int32_t start, int32_t count, const BoxSpan& y)
    {
        top.Set(strip, start, count, y.firstShare);
        if (y.last > y.first + 1)
            middle.Set(strip, start, count, kSubpixelOne);
        if (y.last > y.first)
            bottom.Set(strip, start, count, y.lastShare);
    }
};

// Adds a row to the sum of a box, the four channels side by side, in the order of the plain form. Nothing is added for
// no pixels between the ends: a sum is never -0.0, which 0.0 would change.
template <class D>
HWY_INLINE hn::Vec<D> AddFloatRow(D lanes, hn::Vec<D> sum, const uint8_t* row, const BoxSpan& x,
                                  const RowWeights& weights, int32_t k)
{
    const auto* at = reinterpret_cast<const float*>(row) + 4 * int64_t(x.first); // loaded from any address
    const auto load = [lanes](const float* pixel)
                          HWY_ATTR { return hn::PromoteTo(lanes, hn::LoadU(hn::Rebind<float, D>(), pixel)); };
    sum = hn::Add(sum, hn::Mul(load(at), hn::Set(lanes, weights.first[k])));
    const float* const last = at + 4 * int64_t(x.last - x.first);
    if (last > at + 4) {
        auto whole = load(at + 4);
        for (at += 8; at < last; at += 4)
            whole = hn::Add(whole, load(at));
        sum = hn::Add(sum, hn::Mul(whole, hn::Set(lanes, weights.inner)));
    }
    if (x.last != x.first)
        sum = hn::Add(sum, hn::Mul(load(last), hn::Set(lanes, weights.last[k])));
    return sum;
}

// At most kFloatColumns boxes of a strip.
template <class D>
HWY_INLINE void BoxFloats(D lanes, const ScaleJob& job, const Strip& strip, float* to, int32_t start,
                          int32_t count, const BoxSpan& y)
{
    const hn::Rebind<float, D> floats;
    const BoxWeights weights(strip, start, count, y);
    const auto reciprocal = hn::Set(lanes, double(kSubpixelOne) / double(Area(job.x.step, job.y.step)));
    const uint8_t *const top = job.SourceRow(y.first), *const bottom = job.SourceRow(y.last);
    const int64_t stride = job.sourceStride;
    for (int32_t k = 0; k < count; ++k) {
        const BoxSpan& x = strip.spans[start + k];
        auto sum = AddFloatRow(lanes, hn::Zero(lanes), top, x, weights.top, k);
        for (int32_t line = y.first + 1; line < y.last; ++line)
            sum = AddFloatRow(lanes, sum, top + stride * (line - y.first), x, weights.middle, k);
        if (top != bottom)
            sum = AddFloatRow(lanes, sum, bottom, x, weights.bottom, k);
        hn::StoreU(hn::DemoteTo(floats, hn::Mul(sum, reciprocal)), floats, to + 4 * int64_t(k));
    }
}

void BoxFloatRow(const ScaleJob& job, const Strip& strip, uint8_t* dest, int32_t begin, int32_t end,
                 const BoxSpan& y)
{
    const hn::CappedTag<double, 4> lanes;
    if constexpr (hn::MaxLanes(lanes) < 4)
        return BoxRow<FloatPixel, double>(job, strip, dest, begin, end, y);
    else
        for (int32_t k = begin; k < end; k += kFloatColumns) {
            auto* const to = reinterpret_cast<float*>(dest + int64_t(FloatPixel::kBytes) * k);
            BoxFloats(lanes, job, strip, to, k, std::min(kFloatColumns, end - k), y);
        }
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
namespace {

HWY_EXPORT(BoxFloatRow);
HWY_EXPORT(BoxByteRowNarrow);
HWY_EXPORT(BoxByteRowWide);

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
void Box(const ScaleJob& job, BoxRowFn workRow, bool byVectors)
{
    for (int32_t first = 0; first < job.x.count;) {
        Strip strip(job.x, first);
        if (byVectors)
            strip.PrepareForVectors(job.x);
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
        first += strip.count;
    }
}

template <class Sum>
void BoxBytes(const ScaleJob& job, bool narrow)
{
    const BoxRowFn plain = BoxRow<BytePixel, Sum>;
    if (job.x.step > kVectorSide || job.y.step > kVectorSide)
        return Box<BytePixel, Sum>(job, plain, false);
    const BoxRowFn row = narrow ? VX_VECTOR_FORM(BoxByteRowNarrow, (BoxRow<BytePixel, Sum>))
                                : VX_VECTOR_FORM(BoxByteRowWide, (BoxRow<BytePixel, Sum>));
    Box<BytePixel, Sum>(job, row, row != plain);
}

} // namespace

void ScaleBox(const ScaleJob& job, int32_t bytesPerPixel)
{
    if (bytesPerPixel == FloatPixel::kBytes)
        Box<FloatPixel, double>(job, VX_VECTOR_FORM(BoxFloatRow, (BoxRow<FloatPixel, double>)), false);
    else if (ScaleBoxByUnits(job))
        return;
    else if (WidestSpan(job.x) * WidestSpan(job.y) * kSubpixelOne * 255 < kNarrowSums)
        BoxBytes<uint32_t>(job, true);
    else
        BoxBytes<uint64_t>(job, false);
}

} // namespace vx

#endif // HWY_ONCE
