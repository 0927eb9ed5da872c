// Linear sampling on both axes.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "dib/scale_linear.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#ifndef VX_SCALE_LINEAR_PLAIN
#define VX_SCALE_LINEAR_PLAIN

#include "dib/scale_job.h"
#include "kernel/parallel.h"
#include "kernel/vector_targets.h"

#include <hwy/cache_control.h>
#include <utility>

namespace vx {
namespace {

// The two source rows of a destination row.
struct RowPair
{
    const uint8_t* here;
    const uint8_t* next;
    int32_t fraction;
};

// Weights of 24 fraction bits: the four sum to one or a few units less, so that a flat picture stays.
uint32_t ByteWeight(int32_t row, int32_t column)
{
    return uint32_t(row) * uint32_t(column) >> 4;
}

Channels<uint8_t> Mixed(BytePixel, const RowPair& rows, const LinearTaps& x)
{
    const int32_t restX = kSubpixelOne - x.fraction, restY = kSubpixelOne - rows.fraction;
    const uint32_t w00 = ByteWeight(restY, restX), w01 = ByteWeight(restY, x.fraction);
    const uint32_t w10 = ByteWeight(rows.fraction, restX), w11 = ByteWeight(rows.fraction, x.fraction);
    const auto c00 = LoadPixel<BytePixel>(rows.here, x.here), c01 = LoadPixel<BytePixel>(rows.here, x.next);
    const auto c10 = LoadPixel<BytePixel>(rows.next, x.here), c11 = LoadPixel<BytePixel>(rows.next, x.next);
    Channels<uint8_t> mixed;
    for (size_t c = 0; c < 4; ++c)
        mixed[c] = uint8_t((c00[c] * w00 + c01[c] * w01 + c10[c] * w10 + c11[c] * w11 + 0x800000u) >> 24);
    return mixed;
}

Channels<float> Mixed(FloatPixel, const RowPair& rows, const LinearTaps& x)
{
    const float fx = float(x.fraction) * kSubpixelToPixel, fy = float(rows.fraction) * kSubpixelToPixel;
    const float w00 = (1.0f - fy) * (1.0f - fx), w01 = (1.0f - fy) * fx, w10 = fy * (1.0f - fx),
                w11 = fy * fx;
    const auto c00 = LoadPixel<FloatPixel>(rows.here, x.here), c01 = LoadPixel<FloatPixel>(rows.here, x.next);
    const auto c10 = LoadPixel<FloatPixel>(rows.next, x.here), c11 = LoadPixel<FloatPixel>(rows.next, x.next);
    Channels<float> mixed;
    for (size_t c = 0; c < 4; ++c)
        mixed[c] = c00[c] * w00 + c01[c] * w01 + c10[c] * w10 + c11[c] * w11;
    return mixed;
}

template <class Pixel>
void WriteMixed(uint8_t* dest, const RowPair& rows, const LinearTaps& x)
{
    const auto mixed = Mixed(Pixel(), rows, x);
    std::memcpy(dest, mixed.data(), Pixel::kBytes);
}

// A run of columns with what each samples, so that it is worked out once for all rows.
constexpr int32_t kStripColumns = 2048;
constexpr int32_t kSpareLanes = 16; // a vector may be loaded where fewer columns are left

struct Strip
{
    int32_t first, count;
    bool onPixels; // every column samples one source column alone
    int32_t here[kStripColumns], next[kStripColumns];
    float fraction[kStripColumns + kSpareLanes];

    Strip(const ScaleAxis& axis, int32_t firstColumn)
        : first(firstColumn), count(std::min(axis.count - first, kStripColumns)), onPixels(true)
    {
        for (int32_t k = 0; k < count; ++k) {
            const LinearTaps taps = LinearTapsAt(axis, first + k);
            here[k] = taps.here;
            next[k] = taps.next;
            fraction[k] = float(taps.fraction) * kSubpixelToPixel;
            onPixels = onPixels && taps.fraction == 0;
        }
        std::fill_n(fraction + count, kSpareLanes, 0.0f);
    }

    LinearTaps Taps(int32_t k) const
    {
        return {here[k], next[k], int32_t(fraction[k] * float(kSubpixelOne))};
    }
};

// Writes the columns `begin` to `end` of a strip; dest is the pixel of column 0.
template <class Pixel>
void LinearRow(uint8_t* dest, const RowPair& rows, const Strip& strip, int32_t begin, int32_t end)
{
    for (int32_t k = begin; k < end; ++k)
        WriteMixed<Pixel>(dest + int64_t(Pixel::kBytes) * k, rows, strip.Taps(k));
}

RowPair RowsAt(const ScaleJob& job, int32_t y)
{
    const LinearTaps taps = LinearTapsAt(job.y, y);
    return {job.SourceRow(taps.here), job.SourceRow(taps.next), taps.fraction};
}

// Works a strip's part of the rows `first` to `last`. writeColumns(dest, rows, y, begin, end) does what
// blends with nothing.
template <class Pixel, class WriteColumns>
void ForRows(const ScaleJob& job, const Strip& strip, int32_t first, int32_t last,
             const WriteColumns& writeColumns)
{
    for (int32_t y = first; y < last; ++y) {
        const RowPair rows = RowsAt(job, y);
        ForStripOfRow<Pixel>(
            job, y, strip.first, strip.count, [&](int32_t k) { return Mixed(Pixel(), rows, strip.Taps(k)); },
            [&](uint8_t* dest, int32_t begin, int32_t end) { writeColumns(dest, rows, y, begin, end); });
    }
}

template <class Pixel>
void LinearBand(const ScaleJob& job, const Strip& strip, int32_t first, int32_t last)
{
    ForRows<Pixel>(job, strip, first, last,
                   [&](uint8_t* dest, const RowPair& rows, int32_t, int32_t begin, int32_t end) {
                       LinearRow<Pixel>(dest, rows, strip, begin, end);
                   });
}

using LinearBandFn = void (*)(const ScaleJob&, const Strip&, int32_t, int32_t);

} // namespace
} // namespace vx

#endif // VX_SCALE_LINEAR_PLAIN

#include "dib/join_bytes-inl.h"
#include "dib/scale_taps-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

// Columns are worked in groups of four vectors, whose bytes come together in one.
constexpr int32_t kGroup = 4 * kVectorPixels;

// 1.5 * 2^23, as the bits of a float. A float so large has an integer in its low bits.
constexpr int32_t kIntegerFloat = 0x4B400000;
constexpr int32_t kHalf = kSubpixelOne / 2;

// A strip's columns for the vectors, in groups. Columns behind the last one repeat it. Where what a vector
// samples lies close together it comes by one load, its window, and a shuffle.
struct Columns
{
    HWY_ALIGN int32_t weights[kStripColumns];      // a pair of 16-bit ones a pixel
    int32_t place[kStripColumns];                  // of the source pixel, in bytes
    int32_t window[kStripColumns / kVectorPixels]; // in bytes, -1 where there is none
    uint8_t lane[4 * kStripColumns];               // of the window, two pairs of neighbours a pixel
    int32_t groups;
    int32_t fetchStep;                  // bytes of a row from one place to fetch to the next
    bool atEnd[kStripColumns / kGroup]; // fewer than 16 bytes are left in the source row from some place on

    Columns(const Strip& strip, const ScaleAxis& axis)
        : groups((strip.count + kGroup - 1) / kGroup),
          fetchStep(std::max(64, BytePixel::kBytes * (axis.step >> kSubpixelBits)))
    {
        for (int32_t k = 0; k < groups * kGroup; ++k) {
            const int32_t at = std::min(k, strip.count - 1), here = strip.here[at];
            const int32_t ofNext = strip.next[at] == here ? 0 : strip.Taps(at).fraction;
            weights[k] = (kSubpixelOne - ofNext) | ofNext << 16;
            place[k] = BytePixel::kBytes * here;
        }
        std::fill_n(atEnd, groups, false);
        for (int32_t k = 0; k < groups * kGroup; k += kVectorPixels)
            PrepareVector(k, axis.sourceSize);
    }

private:
    void PrepareVector(int32_t k, int32_t sourceSize)
    {
        int32_t pixel[kVectorPixels];
        for (int32_t i = 0; i < kVectorPixels; ++i)
            pixel[i] = place[k + i] >> 2;
        const int32_t first = std::min(pixel[0], sourceSize - kLanes), last = pixel[kVectorPixels - 1];
        const bool fits =
            kVectorPixels > 1 && first >= 0 && std::min(last + 1, sourceSize - 1) - first < kLanes;
        window[k / kVectorPixels] = fits ? BytePixel::kBytes * first : -1;
        atEnd[k / kGroup] = atEnd[k / kGroup] || (!fits && last + 4 > sourceSize);
        for (int32_t i = 0; fits && i < kVectorPixels; ++i) {
            const int32_t here = pixel[i] - first, next = std::min(here + 1, kLanes - 1);
            const uint8_t lanes[4] = {uint8_t(here), uint8_t(next), uint8_t(here), uint8_t(next)};
            std::memcpy(lane + 4 * (k + i), lanes, sizeof(lanes));
        }
    }
};

void MixGroupAtEnd(float* line, const uint8_t* row, const Columns& columns, int32_t group)
{
    for (int32_t k = group * kGroup; k < (group + 1) * kGroup; ++k) {
        const int32_t weights = columns.weights[k];
        const uint8_t* const here = row + columns.place[k];
        const uint8_t* const next = weights >> 16 ? here + BytePixel::kBytes : here;
        for (int32_t c = 0; c < 4; ++c) {
            const int32_t mixed = here[c] * (weights & 0xFFFF) + next[c] * (weights >> 16);
            line[4 * k + c] = float(mixed + kHalf + 3 * (1 << 22));
        }
    }
}

// The blocks of a vector's pixels, each starting with the pixel and its neighbour.
HWY_INLINE hn::Vec<Bytes> Neighbours(const uint8_t* row, const Columns& columns, int32_t k)
{
    if constexpr (kVectorPixels > 1) {
        const int32_t window = columns.window[k / kVectorPixels];
        if (HWY_LIKELY(window >= 0)) {
            const Ints ints;
            const auto pixels = hn::LoadU(ints, reinterpret_cast<const int32_t*>(row + window));
            const auto lanes =
                hn::PromoteTo(ints, hn::LoadU(hn::Rebind<uint8_t, Ints>(), columns.lane + 4 * k));
            return hn::BitCast(Bytes(), hn::TableLookupLanes(pixels, hn::IndicesFromVec(ints, lanes)));
        }
    }
    return GatherBlocks<1>(Bytes(), row, columns.place + k, 1);
}

// Mixes the columns of a row into a line of integers, in units of 1/16384 and half a unit of the result
// more: floats of the kind that kIntegerFloat starts.
void MixColumns(float* line, const uint8_t* row, const uint8_t* rowAfter, const Columns& columns)
{
    const Ints ints;
    const Bytes bytes;
    alignas(16) static constexpr uint8_t kPairs[16] = {0, 0x80, 4, 0x80, 1, 0x80, 5, 0x80,
                                                       2, 0x80, 6, 0x80, 3, 0x80, 7, 0x80};
    const auto pairs = hn::LoadDup128(bytes, kPairs);
    const auto start = hn::Set(ints, kIntegerFloat + kHalf);
    for (int32_t group = 0; group < columns.groups; ++group) {
        const int32_t at = group * kGroup;
        if (HWY_UNLIKELY(columns.atEnd[group])) {
            MixGroupAtEnd(line, row, columns, group);
            continue;
        }
        for (int32_t place = columns.place[at]; place <= columns.place[at + kGroup - 1];
             place += columns.fetchStep)
            hwy::Prefetch(rowAfter + place);
        for (int32_t k = at; k < at + kGroup; k += kVectorPixels) {
            const auto words =
                hn::BitCast(Words(), hn::TableLookupBytesOr0(Neighbours(row, columns, k), pairs));
            const auto weights = hn::BitCast(Words(), SpreadPixels(columns.weights + k));
            hn::Store(hn::BitCast(Floats(), AddMulPairs(start, words, weights)), Floats(), line + 4 * k);
        }
    }
}

struct LinePair
{
    const float* here;
    const float* next;
    float fraction;
    bool exact; // the integer weights lose nothing
};

// The rows of a vector's pixels mixed too, by the same units.
HWY_INLINE hn::Vec<Ints> MixLines(const LinePair& lines, int32_t at)
{
    const Floats lanes;
    const auto here = hn::Load(lanes, lines.here + at), next = hn::Load(lanes, lines.next + at);
    return hn::BitCast(Ints(), hn::Add(here, hn::Mul(hn::Sub(next, here), hn::Set(lanes, lines.fraction))));
}

// The low byte of what stands above the 14 fraction bits, in byte `to` of each lane.
template <int32_t to>
HWY_INLINE hn::Vec<Ints> TakeByte(hn::Vec<Ints> mixed)
{
    constexpr int32_t kShift = 8 * to - kSubpixelBits;
    const auto mask = hn::Set(Ints(), int32_t(0xFFu << (8 * to)));
    if constexpr (kShift < 0)
        return hn::And(hn::ShiftRight<-kShift>(mixed), mask);
    else
        return hn::And(hn::ShiftLeft<kShift>(mixed), mask);
}

// Lanes that stand on or one above a multiple of 16384. The exact sum of a pixel differs from what the lines
// give by at most 1/8 for the rounded product and 1/2 for the rounding to an integer, and is smaller by
// up to 15/16 for what the integer weights lose: it lies between that - 25/16 and that + 5/8. So there,
// and only there, the byte is in doubt.
HWY_INLINE hn::Vec<Ints> InDoubtWhereZero(hn::Vec<Ints> mixed)
{
    return hn::And(mixed, hn::Set(Ints(), kSubpixelOne - 2));
}

// Writes a group's pixels; false where some are in doubt.
HWY_INLINE bool MixGroup(uint8_t* dest, const LinePair& lines, int32_t at)
{
    const Ints ints;
    const auto a = MixLines(lines, at), b = MixLines(lines, at + kLanes),
               c = MixLines(lines, at + 2 * kLanes), d = MixLines(lines, at + 3 * kLanes);
    const auto channels =
        hn::Or(hn::Or(TakeByte<0>(a), TakeByte<1>(b)), hn::Or(TakeByte<2>(c), TakeByte<3>(d)));
    hn::StoreU(InOrder(channels), Bytes(), dest);
    const auto nearest = hn::Min(hn::Min(InDoubtWhereZero(a), InDoubtWhereZero(b)),
                                 hn::Min(InDoubtWhereZero(c), InDoubtWhereZero(d)));
    return lines.exact || hn::AllFalse(ints, hn::Eq(nearest, hn::Zero(ints)));
}

// Mixes the pixels of a group that are in doubt exactly.
HWY_NOINLINE void SettleDoubts(uint8_t* dest, const LinePair& lines, const RowPair& rows, const Strip& strip,
                               int32_t group)
{
    const Ints ints;
    for (int32_t j = 0; j < 4; ++j) {
        const auto mixed = MixLines(lines, 4 * group + j * kLanes);
        uint8_t inDoubt[8]{};
        hn::StoreMaskBits(ints, hn::Eq(InDoubtWhereZero(mixed), hn::Zero(ints)), inDoubt);
        for (int32_t i = 0; i < kVectorPixels; ++i) {
            const int32_t k = kVectorPixels * j + i;
            if ((inDoubt[i / 2] >> (i % 2 * 4) & 15) != 0 && group + k < strip.count)
                WriteMixed<BytePixel>(dest + BytePixel::kBytes * k, rows, strip.Taps(group + k));
        }
    }
}

void WriteGroups(uint8_t* dest, const LinePair& lines, const RowPair& rows, const Strip& strip, int32_t begin,
                 int32_t end, int64_t ahead)
{
    HWY_ALIGN uint8_t part[BytePixel::kBytes * kGroup];
    for (int32_t k = begin; k < end;) {
        const int32_t group = k - k % kGroup, last = std::min(group + kGroup, end);
        uint8_t* const at = dest + BytePixel::kBytes * int64_t(k);
        uint8_t* const to = last - k == kGroup ? at : part;
        hwy::Prefetch(at + ahead);
        if (HWY_UNLIKELY(!MixGroup(to, lines, 4 * group)))
            SettleDoubts(to, lines, rows, strip, group);
        if (to == part)
            std::memcpy(at, part + BytePixel::kBytes * (k - group), size_t(BytePixel::kBytes * (last - k)));
        k = last;
    }
}

// Mixes the columns first, once for each source row, and then the lines of them. The two lines in use are
// kept, each in the place that its row's low bit says.
void LinearByteBand(const ScaleJob& job, const Strip& strip, int32_t first, int32_t last)
{
    const Columns columns(strip, job.x);
    HWY_ALIGN float lines[2][4 * kStripColumns];
    int32_t kept[2] = {-1, -1};
    const int32_t rowsAhead = std::max(job.y.step >> kSubpixelBits, 1);
    const auto lineOf = [&](int32_t row) {
        if (std::exchange(kept[row % 2], row) != row)
            MixColumns(lines[row % 2], job.SourceRow(row), job.SourceRow(row + rowsAhead), columns);
        return lines[row % 2];
    };
    ForRows<BytePixel>(job, strip, first, last,
                       [&](uint8_t* dest, const RowPair& rows, int32_t y, int32_t begin, int32_t end) {
                           const LinearTaps taps = LinearTapsAt(job.y, y);
                           const float* const here = lineOf(taps.here);
                           const LinePair pair{here, taps.fraction ? lineOf(taps.next) : here,
                                               float(taps.fraction) * kSubpixelToPixel,
                                               strip.onPixels || taps.fraction == 0};
                           WriteGroups(dest, pair, rows, strip, begin, end, job.destStride);
                       });
}

// One value a column, each spread over the lanes of its pixel.
hn::Vec<Floats> SpreadColumns(hn::Vec<Floats> values)
{
    const Ints ints;
    return hn::TableLookupLanes(values, hn::IndicesFromVec(Floats(), hn::ShiftRight<2>(hn::Iota(ints, 0))));
}

void LinearFloatRow(uint8_t* dest, const RowPair& rows, const Strip& strip, int32_t begin, int32_t end)
{
    const Floats lanes;
    const auto one = hn::Set(lanes, 1.0f);
    const auto fy = hn::Set(lanes, float(rows.fraction) * kSubpixelToPixel);
    const auto restY = hn::Sub(one, fy);
    const auto* here = reinterpret_cast<const float*>(rows.here);
    const auto* next = reinterpret_cast<const float*>(rows.next);
    int32_t k = begin;
    for (; k + kVectorPixels <= end; k += kVectorPixels) {
        const auto fx = SpreadColumns(hn::LoadU(lanes, strip.fraction + k));
        const auto restX = hn::Sub(one, fx);
        const auto c00 = GatherBlocks<1>(lanes, here, strip.here + k, 4);
        const auto c01 = GatherBlocks<1>(lanes, here, strip.next + k, 4);
        const auto c10 = GatherBlocks<1>(lanes, next, strip.here + k, 4);
        const auto c11 = GatherBlocks<1>(lanes, next, strip.next + k, 4);
        auto sum = hn::Add(hn::Mul(c00, hn::Mul(restY, restX)), hn::Mul(c01, hn::Mul(restY, fx)));
        sum = hn::Add(sum, hn::Mul(c10, hn::Mul(fy, restX)));
        sum = hn::Add(sum, hn::Mul(c11, hn::Mul(fy, fx)));
        hn::StoreU(sum, lanes, reinterpret_cast<float*>(dest + int64_t(FloatPixel::kBytes) * k));
    }
    LinearRow<FloatPixel>(dest, rows, strip, k, end);
}

void LinearFloatBand(const ScaleJob& job, const Strip& strip, int32_t first, int32_t last)
{
    ForRows<FloatPixel>(job, strip, first, last,
                        [&](uint8_t* dest, const RowPair& rows, int32_t, int32_t begin, int32_t end) {
                            LinearFloatRow(dest, rows, strip, begin, end);
                        });
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
namespace {

HWY_EXPORT(LinearByteBand);
HWY_EXPORT(LinearFloatBand);

// Mixing a pixel takes about as long as copying it eight times.
constexpr int64_t kWorkOfPixel = 8;

// Rows that a worker does one after the other: so many that it seldom mixes a line which the band above has
// mixed too.
constexpr int32_t kBandRows = 64;

void ScaleLinearBy(const ScaleJob& job, LinearBandFn band, int32_t bytesPerPixel)
{
    for (int32_t first = 0; first < job.x.count; first += kStripColumns) {
        const Strip strip(job.x, first);
        const int64_t work = kWorkOfPixel * bytesPerPixel * strip.count * job.y.count;
        ParallelRows((job.y.count + kBandRows - 1) / kBandRows, work, [&](int32_t i) {
            band(job, strip, i * kBandRows, std::min((i + 1) * kBandRows, job.y.count));
        });
    }
}

} // namespace

void ScaleLinear(const ScaleJob& job, int32_t bytesPerPixel)
{
    if (bytesPerPixel == BytePixel::kBytes)
        ScaleLinearBy(job, VX_VECTOR_FORM(LinearByteBand, LinearBand<BytePixel>), bytesPerPixel);
    else
        ScaleLinearBy(job, VX_VECTOR_FORM(LinearFloatBand, LinearBand<FloatPixel>), bytesPerPixel);
}

} // namespace vx

#endif // HWY_ONCE
