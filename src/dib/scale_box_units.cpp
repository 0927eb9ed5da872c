// The mean of bytes over boxes whose sides are few halves or quarters of pixels, such as 4 or 1.5.
//
// The shares are then whole numbers of units, no product of them is truncated, and everything is small
// enough for 16 bits: rows are summed first, from end to end, then the columns of that line.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "dib/scale_box_units.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#ifndef VX_SCALE_BOX_UNITS_PLAIN
#define VX_SCALE_BOX_UNITS_PLAIN

#include "dib/scale_box.h"
#include "kernel/vector_targets.h"

#include <bit>

namespace vx {
namespace {

// Columns are worked four at a time: boxes of quarters lie alike in every four.
constexpr int32_t kGroup = 4;

// Units of area in a box. Quotients of the sums, each a product's upper bits, are right up to here.
constexpr int32_t kMostUnits = 128;
constexpr int32_t kMostPairs = kMostUnits / 4 + 1; // of columns in a box, which is two units high or more

struct Units
{
    int32_t x, y; // in sub-pixels

    explicit Units(const ScaleJob& job) : x(Of(job.x)), y(Of(job.y)) {}

    int64_t InBox(const ScaleJob& job) const { return int64_t(job.x.step / x) * (job.y.step / y); }

private:
    static int32_t Of(const ScaleAxis& axis)
    {
        return 1 << std::countr_zero(uint32_t(axis.start | axis.step | kSubpixelOne));
    }
};

bool IsWhole(const ScaleAxis& axis)
{
    return axis.firstCoverage == kSubpixelOne && axis.lastCoverage == kSubpixelOne;
}

// The columns of a group and the weights of their boxes, alike for all groups.
struct Pattern
{
    int32_t step;          // pixels from the source of one group to that of the next
    int32_t pairs;         // of columns in the widest box
    int32_t place[kGroup]; // of each box's first column, in values
    alignas(64) int32_t weights[kMostPairs][4 * kGroup]; // a pair of 16-bit ones for each channel

    Pattern(const ScaleAxis& axis, int32_t unit) : step(kGroup * axis.step >> kSubpixelBits), pairs(0)
    {
        const int32_t origin = BoxSpanAt(axis, 0).first;
        for (int32_t k = 0; k < kGroup; ++k) {
            const BoxSpan span = BoxSpanAt(axis, k);
            place[k] = 4 * (span.first - origin);
            pairs = std::max(pairs, (span.last - span.first + 2) / 2);
        }
        for (int32_t i = 0; i < pairs * 4 * kGroup; ++i) {
            const BoxSpan span = BoxSpanAt(axis, i / 4 % kGroup);
            const int32_t pair = i / (4 * kGroup), column = span.first + 2 * pair;
            const auto weight = [&](int32_t at) { return at > span.last ? 0 : ShareAt(span, at) / unit; };
            weights[pair][i % (4 * kGroup)] = weight(column) | weight(column + 1) << 16;
        }
    }
};

// The nearest integer to sum / units, halves upwards, is (sum + half) * factor >> (16 + shift).
struct Quotient
{
    int32_t half, shift;
    uint16_t factor;

    explicit Quotient(int32_t units)
        : half(units / 2), shift(std::bit_width(uint32_t(units - 1)) - 1),
          factor(uint16_t(((0x10000u << shift) + uint32_t(units) - 1) / uint32_t(units)))
    {}
};

// The source columns of a chunk of groups are summed into one line, and what the last group reads behind
// them is 0.
constexpr int32_t kLinePixels = 2048;
constexpr int32_t kSparePixels = kGroup * kMostUnits / 2 + 2 * kMostPairs;

bool NoVectors(const ScaleJob&, const Units&)
{
    return false;
}

} // namespace
} // namespace vx

#endif // VX_SCALE_BOX_UNITS_PLAIN

#include "dib/scale_taps-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

// The rows of a box: the first and the last by their units, those between by all of theirs.
struct UnitRows
{
    const uint8_t* first;
    int32_t stride, between;
    int32_t firstWeight, lastWeight, wholeBits;

    UnitRows(const ScaleJob& job, const BoxSpan& y, int32_t unit)
        : first(job.SourceRow(y.first)), stride(job.sourceStride), between(y.last - y.first - 1),
          firstWeight(y.firstShare / unit), lastWeight(y.lastShare / unit),
          wholeBits(std::countr_zero(uint32_t(kSubpixelOne / unit)))
    {}

    bool Unweighted() const { return wholeBits == 0; }
};

template <bool kUnweighted, class D>
HWY_INLINE hn::Vec<D> SumOfRows(D lanes, const UnitRows& rows, int64_t i)
{
    const hn::Rebind<uint8_t, D> bytes;
    const auto load = [&](const uint8_t* at) HWY_ATTR { return hn::PromoteTo(lanes, hn::LoadU(bytes, at)); };
    const uint8_t* at = rows.first + i;
    auto first = load(at), sum = hn::Zero(lanes);
    for (int32_t row = 0; row < rows.between; ++row)
        sum = hn::Add(sum, load(at += rows.stride));
    auto last = load(at + rows.stride);
    if constexpr (!kUnweighted) {
        first = hn::Mul(first, hn::Set(lanes, uint16_t(rows.firstWeight)));
        last = hn::Mul(last, hn::Set(lanes, uint16_t(rows.lastWeight)));
        if (rows.between > 0)
            sum = hn::ShiftLeftSame(sum, rows.wholeBits);
    }
    return hn::Add(sum, hn::Add(first, last));
}

template <bool kUnweighted>
void SumRows(uint16_t* line, const UnitRows& rows, int64_t from, int32_t values)
{
    const hn::ScalableTag<uint16_t> lanes;
    const hn::CappedTag<uint16_t, 4> pixel;
    const int32_t step = int32_t(hn::Lanes(lanes));
    int32_t i = 0;
    for (; i + step <= values; i += step)
        hn::StoreU(SumOfRows<kUnweighted>(lanes, rows, from + i), lanes, line + i);
    for (; i < values; i += 4)
        hn::StoreU(SumOfRows<kUnweighted>(pixel, rows, from + i), pixel, line + i);
}

// Writes the means of `groups` groups. kPairs is the pattern's number of pairs, where it is small.
template <int32_t kPairs>
void WriteMeans(uint8_t* dest, const int16_t* line, int32_t groups, const Pattern& pattern,
                const Quotient& quotient)
{
    const hn::Repartition<uint16_t, Ints> shares;
    const hn::Rebind<uint8_t, Ints> bytes;
    alignas(16) static constexpr uint8_t kNeighbours[16] = {0, 1, 8,  9,  2, 3, 10, 11,
                                                            4, 5, 12, 13, 6, 7, 14, 15};
    const auto neighbours = hn::LoadDup128(Bytes(), kNeighbours);
    const auto half = hn::Set(Ints(), quotient.half);
    const auto factor = hn::Set(shares, quotient.factor);
    const int32_t pairs = kPairs > 0 ? kPairs : pattern.pairs, shift = quotient.shift;
    int32_t place[kGroup];
    std::copy_n(pattern.place, kGroup, place);
    for (int32_t group = 0; group < groups; ++group, line += 4 * pattern.step)
        for (int32_t k = 0; k < kGroup; k += kVectorPixels, dest += kLanes) {
            auto sum = half;
            for (int32_t pair = 0; pair < pairs; ++pair) {
                const auto pixels = GatherBlocks<1>(Words(), line + 8 * pair, place + k, 1);
                const auto words =
                    hn::BitCast(Words(), hn::TableLookupBytes(hn::BitCast(Bytes(), pixels), neighbours));
                const auto weights = hn::Load(Ints(), pattern.weights[pair] + 4 * k);
                sum = AddMulPairs(sum, words, hn::BitCast(Words(), weights));
            }
            const auto means = hn::ShiftRightSame(hn::MulHigh(hn::BitCast(shares, sum), factor), shift);
            hn::StoreU(hn::U8FromU32(hn::BitCast(hn::RebindToUnsigned<Ints>(), means)), bytes, dest);
        }
}

void WriteRow(uint8_t* dest, int32_t columns, const int16_t* line, const Pattern& pattern,
              const Quotient& quotient)
{
    const auto write = [&](uint8_t* to, const int16_t* from, int32_t groups) HWY_ATTR {
        if (pattern.pairs == 1)
            WriteMeans<1>(to, from, groups, pattern, quotient);
        else if (pattern.pairs == 2)
            WriteMeans<2>(to, from, groups, pattern, quotient);
        else
            WriteMeans<0>(to, from, groups, pattern, quotient);
    };
    const int32_t groups = columns / kGroup, over = columns % kGroup;
    write(dest, line, groups);
    if (over > 0) {
        uint8_t part[BytePixel::kBytes * kGroup];
        write(part, line + int64_t(4) * pattern.step * groups, 1);
        std::memcpy(dest + BytePixel::kBytes * kGroup * int64_t(groups), part,
                    size_t(BytePixel::kBytes * over));
    }
}

bool BoxByUnits(const ScaleJob& job, const Units& units)
{
    const Pattern pattern(job.x, units.x);
    const Quotient quotient(int32_t(units.InBox(job)));
    const int32_t chunk = kGroup * (kLinePixels / pattern.step);
    HWY_ALIGN uint16_t line[4 * (kLinePixels + kSparePixels)];
    for (int32_t k = 0; k < job.x.count; k += chunk) {
        const int32_t columns = std::min(chunk, job.x.count - k);
        const int32_t first = BoxSpanAt(job.x, k).first;
        const int32_t values = 4 * (BoxSpanAt(job.x, k + columns - 1).last - first + 1);
        std::fill_n(line + values, 4 * (pattern.step + 2 * pattern.pairs), uint16_t(0));
        for (int32_t y = 0; y < job.y.count; ++y) {
            const UnitRows rows(job, BoxSpanAt(job.y, y), units.y);
            if (rows.Unweighted())
                SumRows<true>(line, rows, 4 * int64_t(first), values);
            else
                SumRows<false>(line, rows, 4 * int64_t(first), values);
            WriteRow(job.DestRow(y) + BytePixel::kBytes * (int64_t(job.x.firstPixel) + k), columns,
                     reinterpret_cast<const int16_t*>(line), pattern, quotient);
        }
    }
    return true;
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
namespace {

HWY_EXPORT(BoxByUnits);

} // namespace

bool ScaleBoxByUnits(const ScaleJob& job)
{
    const Units units(job);
    return IsWhole(job.x) && IsWhole(job.y) && kGroup * units.x >= kSubpixelOne &&
           units.InBox(job) <= kMostUnits && VX_VECTOR_FORM(BoxByUnits, NoVectors)(job, units);
}

} // namespace vx

#endif // HWY_ONCE
