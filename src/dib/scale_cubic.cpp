// Cubic sampling on both axes: four rows are filtered into one, then four of its columns into a pixel.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "dib/scale_cubic.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#ifndef VX_SCALE_CUBIC_PLAIN
#define VX_SCALE_CUBIC_PLAIN

#include "dib/cubic_weights.h"
#include "dib/scale_job.h"
#include "kernel/vector_targets.h"

#include <hwy/cache_control.h>

namespace vx {
namespace {

// The four source rows of a destination row.
struct CubicRows
{
    const uint8_t* row[4];
    int32_t weights;      // row of the weight tables
    const uint8_t* ahead; // the row that comes next
    int64_t destAhead;    // bytes to the destination's next row
};

// Sums are rounded, and what is negative is truncated after that: towards zero.
int32_t WithoutFraction(int32_t sum)
{
    return (sum + kSubpixelOne / 2) / kSubpixelOne;
}

Channels<int32_t> FilteredColumn(BytePixel, const CubicRows& rows, int32_t column)
{
    Channels<int32_t> sum{};
    for (size_t tap = 0; tap < 4; ++tap) {
        const auto pixel = LoadPixel<BytePixel>(rows.row[tap], column);
        for (size_t c = 0; c < 4; ++c)
            sum[c] += pixel[c] * kCubicIntegers[size_t(rows.weights)][tap];
    }
    for (int32_t& s : sum)
        s = WithoutFraction(s);
    return sum;
}

Channels<float> FilteredColumn(FloatPixel, const CubicRows& rows, int32_t column)
{
    const auto& w = kCubicFloats[size_t(rows.weights)];
    Channels<float> p[4], sum;
    for (size_t tap = 0; tap < 4; ++tap)
        p[tap] = LoadPixel<FloatPixel>(rows.row[tap], column);
    for (size_t c = 0; c < 4; ++c)
        sum[c] = p[0][c] * w[0] + p[1][c] * w[1] + p[2][c] * w[2] + p[3][c] * w[3];
    return sum;
}

Channels<uint8_t> Filtered(BytePixel, const CubicRows& rows, const CubicTaps& x)
{
    Channels<int32_t> sum{};
    for (size_t tap = 0; tap < 4; ++tap) {
        const auto column = FilteredColumn(BytePixel(), rows, x.tap[tap]);
        for (size_t c = 0; c < 4; ++c)
            sum[c] += column[c] * kCubicIntegers[size_t(x.weights)][tap];
    }
    Channels<uint8_t> filtered;
    for (size_t c = 0; c < 4; ++c)
        filtered[c] = uint8_t(std::clamp(WithoutFraction(sum[c]), 0, 255));
    return filtered;
}

Channels<float> Filtered(FloatPixel, const CubicRows& rows, const CubicTaps& x)
{
    const auto& w = kCubicFloats[size_t(x.weights)];
    Channels<float> p[4], sum;
    for (size_t tap = 0; tap < 4; ++tap)
        p[tap] = FilteredColumn(FloatPixel(), rows, x.tap[tap]);
    for (size_t c = 0; c < 4; ++c)
        sum[c] = p[0][c] * w[0] + p[1][c] * w[1] + p[2][c] * w[2] + p[3][c] * w[3];
    sum[3] = LimitedAlpha(sum[3]);
    return sum;
}

// A run of columns with what each samples, so that it is worked out once for all rows.
constexpr int32_t kStripColumns = 4096; // long: rows are read and written best from end to end
constexpr int32_t kChunkColumns = 128;  // whose source columns are filtered into one line
constexpr int32_t kSpareLanes = 16;     // a vector may be loaded where fewer columns are left

struct Strip
{
    const ScaleAxis& axis;
    int32_t start, count;
    bool far;                         // columns are so far apart that they share few source columns
    int32_t begin, end;               // the columns whose four source columns are read as they are
    int32_t first[kStripColumns];     // of the four
    int32_t weights[kStripColumns];   // row of the weight tables
    int32_t linePlace[kStripColumns]; // of `first` in the line of its chunk, in values
    int32_t firstPair[kStripColumns + kSpareLanes], lastPair[kStripColumns + kSpareLanes];

    Strip(const ScaleAxis& wholeAxis, int32_t startAt)
        : axis(wholeAxis), start(startAt), count(std::min(axis.count - start, kStripColumns)),
          far(axis.step > kFarStep), begin(count), end(0)
    {
        for (int32_t k = 0; k < count; ++k) {
            const int32_t position = axis.Position(start + k);
            const int32_t pixel = position >> kSubpixelBits;
            first[k] = pixel - 2;
            if (CubicTapsInFrame(axis, pixel)) {
                begin = std::min(begin, k);
                end = k + 1;
                linePlace[k] = 4 * (first[k] - FirstOfChunk(k));
            }
            weights[k] = SubpixelFraction(position) / 4;
            const auto& w = kCubicIntegers[size_t(weights[k])];
            firstPair[k] = Pair(w[0], w[1]);
            lastPair[k] = Pair(w[2], w[3]);
        }
        begin = std::min(begin, end);
        std::fill_n(firstPair + count, kSpareLanes, 0);
        std::fill_n(lastPair + count, kSpareLanes, 0);
    }

    // The first source column of the chunk's columns that are read as they are.
    int32_t FirstOfChunk(int32_t k) const { return first[std::max(k - k % kChunkColumns, begin)]; }

    CubicTaps Taps(int32_t k) const { return CubicTapsAt(axis, start + k, true); }

    // Two 16-bit weights side by side, the first in the low half.
    static int32_t Pair(int16_t low, int16_t high)
    {
        return int32_t(uint32_t(uint16_t(low)) | uint32_t(uint16_t(high)) << 16);
    }
    static constexpr int32_t kFarStep = 4 * kSubpixelOne;
};

// Writes the columns `begin` to `end` of a strip; dest is the pixel of column 0.
template <class Pixel>
void CubicRow(uint8_t* dest, const CubicRows& rows, const Strip& strip, int32_t begin, int32_t end)
{
    for (int32_t k = begin; k < end; ++k) {
        const auto filtered = Filtered(Pixel(), rows, strip.Taps(k));
        std::memcpy(dest + int64_t(Pixel::kBytes) * k, filtered.data(), Pixel::kBytes);
    }
}

using CubicRowFn = void (*)(uint8_t*, const CubicRows&, const Strip&, int32_t, int32_t);

} // namespace
} // namespace vx

#endif // VX_SCALE_CUBIC_PLAIN

#include "dib/scale_taps-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

constexpr int32_t kLinePixels = kChunkColumns * (Strip::kFarStep / kSubpixelOne) + 8;

// One value a column, each spread over the lanes of its pixel: of every second column from `first`.
hn::Vec<Ints> SpreadColumns(const int32_t* values, int32_t first)
{
    const Ints lanes;
    const auto pixel = hn::ShiftRight<2>(hn::Iota(lanes, 0));
    const auto column = hn::IndicesFromVec(lanes, hn::Add(hn::Add(pixel, pixel), hn::Set(lanes, first)));
    return hn::TableLookupLanes(hn::LoadU(lanes, values), column);
}

// Filters rows into a line. Its values lie between -64 and 319: the weights' sizes sum to 1.25. The rows
// are laid side by side for the products in two halves of each block, which packing brings together.
void FilterRows(int16_t* line, const CubicRows& rows, int64_t firstByte, int32_t values)
{
    const Ints lanes;
    const Words words;
    const hn::Rebind<uint8_t, Words> bytes;
    const auto& w = kCubicIntegers[size_t(rows.weights)];
    const auto firstWeights = hn::BitCast(words, hn::Set(lanes, Strip::Pair(w[0], w[1])));
    const auto lastWeights = hn::BitCast(words, hn::Set(lanes, Strip::Pair(w[2], w[3])));
    const auto half = hn::Set(lanes, kSubpixelOne / 2);
    const uint8_t* const ahead = rows.ahead + firstByte;
    const auto fraction = hn::Set(lanes, kSubpixelOne - 1);
    const auto withoutFraction = [&](hn::Vec<Words> first, hn::Vec<Words> last) {
        auto sum = AddMulPairs(AddMulPairs(half, first, firstWeights), last, lastWeights);
        sum = hn::Add(sum, hn::And(hn::BroadcastSignBit(sum), fraction)); // the shift rounds down
        return hn::ShiftRight<kSubpixelBits>(sum);
    };
    int32_t i = 0;
    for (; i + 2 * kLanes <= values; i += 2 * kLanes) {
        hwy::Prefetch(ahead + i);
        const auto load = [&](int32_t tap) {
            return hn::PromoteTo(words, hn::LoadU(bytes, rows.row[tap] + firstByte + i));
        };
        const auto r0 = load(0), r1 = load(1), r2 = load(2), r3 = load(3);
        const auto lower =
            withoutFraction(hn::InterleaveLower(words, r0, r1), hn::InterleaveLower(words, r2, r3));
        const auto upper =
            withoutFraction(hn::InterleaveUpper(words, r0, r1), hn::InterleaveUpper(words, r2, r3));
        hn::StoreU(hn::ReorderDemote2To(words, lower, upper), words, line + i);
    }
    for (; i < values; ++i) {
        int32_t sum = 0;
        for (size_t tap = 0; tap < 4; ++tap)
            sum += rows.row[tap][firstByte + i] * w[tap];
        line[i] = int16_t(WithoutFraction(sum));
    }
}

void FilterRows(float* line, const CubicRows& rows, int64_t firstByte, int32_t values)
{
    const Floats lanes;
    const auto& w = kCubicFloats[size_t(rows.weights)];
    const auto product = [&](int32_t tap, int32_t i) {
        const uint8_t* const from = rows.row[tap] + firstByte + 4 * int64_t(i);
        return hn::Mul(hn::LoadU(lanes, reinterpret_cast<const float*>(from)),
                       hn::Set(lanes, w[size_t(tap)]));
    };
    int32_t i = 0;
    for (; i + kLanes <= values; i += kLanes) {
        const auto sum =
            hn::Add(hn::Add(hn::Add(product(0, i), product(1, i)), product(2, i)), product(3, i));
        hn::StoreU(sum, lanes, line + i);
    }
    for (; i < values; i += 4) {
        const auto column =
            FilteredColumn(FloatPixel(), rows, int32_t(firstByte / FloatPixel::kBytes) + i / 4);
        std::memcpy(line + i, column.data(), sizeof(column));
    }
}

// Two vectors of pixels, of the columns k and on. A block of the line holds two pixels, whose channels
// are laid side by side for the products. Even and odd columns are worked apart: packing the two
// vectors block by block then leaves pixels in order.
void FilterColumns(uint8_t* dest, const int16_t* line, const Strip& strip, int32_t k)
{
    const Ints lanes;
    const Words words;
    const hn::Repartition<uint8_t, Ints> bytesOfWords;
    const hn::Rebind<uint8_t, Words> bytes;
    alignas(16) static constexpr uint8_t kPairs[16] = {0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15};
    const auto pairs = hn::LoadDup128(bytesOfWords, kPairs);
    const auto addProduct = [&](hn::Vec<Ints> sum, const int16_t* from, const int32_t* weights, int32_t odd) {
        const auto pixels =
            hn::BitCast(bytesOfWords, GatherBlocks<2>(words, from, strip.linePlace + k + odd, 1));
        return AddMulPairs(sum, hn::BitCast(words, hn::TableLookupBytes(pixels, pairs)),
                           hn::BitCast(words, SpreadColumns(weights + k, odd)));
    };
    const auto filter = [&](int32_t odd) {
        const auto half = hn::Set(lanes, kSubpixelOne / 2);
        const auto sum =
            addProduct(addProduct(half, line, strip.firstPair, odd), line + 8, strip.lastPair, odd);
        return hn::ShiftRight<kSubpixelBits>(sum);
    };
    const auto packed = hn::ReorderDemote2To(words, filter(0), filter(1));
    hn::StoreU(hn::DemoteTo(bytes, packed), bytes, dest); // limits: rounding down below 0 does not show
}

void FilterColumns(uint8_t* dest, const float* line, const Strip& strip, int32_t k)
{
    const Floats lanes;
    const Ints ints;
    const auto three = hn::Set(ints, 3);
    const auto isAlpha = hn::RebindMask(lanes, hn::Eq(hn::And(hn::Iota(ints, 0), three), three));
    const auto zero = hn::Zero(lanes), one = hn::Set(lanes, 1.0f);
    for (const int32_t end = k + 2 * kVectorPixels; k < end; k += kVectorPixels, dest += 4 * kLanes) {
        const auto weights = GatherBlocks<1>(lanes, kCubicFloats[0].data(), strip.weights + k, 4);
        const auto pixels = [&](int32_t tap) {
            return GatherBlocks<1>(lanes, line + 4 * tap, strip.linePlace + k, 1);
        };
        auto sum = hn::Add(hn::Mul(pixels(0), hn::Broadcast<0>(weights)),
                           hn::Mul(pixels(1), hn::Broadcast<1>(weights)));
        sum = hn::Add(sum, hn::Mul(pixels(2), hn::Broadcast<2>(weights)));
        sum = hn::Add(sum, hn::Mul(pixels(3), hn::Broadcast<3>(weights)));
        sum = hn::IfThenElse(hn::And(isAlpha, hn::Lt(sum, zero)), zero, sum); // compares keep a NaN
        sum = hn::IfThenElse(hn::And(isAlpha, hn::Gt(sum, one)), one, sum);
        hn::StoreU(sum, lanes, reinterpret_cast<float*>(dest));
    }
}

// Filters each source column of a chunk once, then the chunk's pixels from the line of them.
template <class Pixel, class Value>
void CubicRowVector(uint8_t* dest, const CubicRows& rows, const Strip& strip, int32_t begin, int32_t end)
{
    const int32_t freeBegin = strip.far ? end : std::clamp(strip.begin, begin, end);
    const int32_t freeEnd = strip.far ? end : std::clamp(strip.end, freeBegin, end);
    CubicRow<Pixel>(dest, rows, strip, begin, freeBegin);
    HWY_ALIGN Value line[4 * kLinePixels];
    for (int32_t k = freeBegin; k < freeEnd;) {
        const int32_t last = std::min(k - k % kChunkColumns + kChunkColumns, freeEnd);
        const int32_t first = strip.FirstOfChunk(k);
        FilterRows(line, rows, int64_t(Pixel::kBytes) * first, 4 * (strip.first[last - 1] + 4 - first));
        for (; k + 2 * kVectorPixels <= last; k += 2 * kVectorPixels) {
            uint8_t* const at = dest + int64_t(Pixel::kBytes) * k;
            hwy::Prefetch(at + rows.destAhead);
            FilterColumns(at, line, strip, k);
        }
        CubicRow<Pixel>(dest, rows, strip, k, last);
        k = last;
    }
    CubicRow<Pixel>(dest, rows, strip, freeEnd, end);
}

void CubicByteRow(uint8_t* dest, const CubicRows& rows, const Strip& strip, int32_t begin, int32_t end)
{
    CubicRowVector<BytePixel, int16_t>(dest, rows, strip, begin, end);
}

void CubicFloatRow(uint8_t* dest, const CubicRows& rows, const Strip& strip, int32_t begin, int32_t end)
{
    CubicRowVector<FloatPixel, float>(dest, rows, strip, begin, end);
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
namespace {

HWY_EXPORT(CubicByteRow);
HWY_EXPORT(CubicFloatRow);

template <class Pixel>
void ScaleCubicPixels(const ScaleJob& job, CubicRowFn workRow)
{
    for (int32_t first = 0; first < job.x.count; first += kStripColumns) {
        const Strip strip(job.x, first);
        for (int32_t y = 0; y < job.y.count; ++y) {
            const CubicTaps taps = CubicTapsAt(job.y, y, false);
            const CubicRows rows{{job.SourceRow(taps.tap[0]), job.SourceRow(taps.tap[1]),
                                  job.SourceRow(taps.tap[2]), job.SourceRow(taps.tap[3])},
                                 taps.weights,
                                 job.SourceRow(taps.tap[3] + 1),
                                 job.destStride};
            ForStripOfRow<Pixel>(
                job, y, first, strip.count, [&](int32_t k) { return Filtered(Pixel(), rows, strip.Taps(k)); },
                [&](uint8_t* dest, int32_t begin, int32_t end) { workRow(dest, rows, strip, begin, end); });
        }
    }
}

} // namespace

void ScaleCubic(const ScaleJob& job, int32_t bytesPerPixel)
{
    if (bytesPerPixel == BytePixel::kBytes)
        ScaleCubicPixels<BytePixel>(job, VX_VECTOR_FORM(CubicByteRow, CubicRow<BytePixel>));
    else
        ScaleCubicPixels<FloatPixel>(job, VX_VECTOR_FORM(CubicFloatRow, CubicRow<FloatPixel>));
}

} // namespace vx

#endif // HWY_ONCE
