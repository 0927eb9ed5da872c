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
    int32_t count;
    bool onPixels; // every column samples one source column alone
    bool far;      // columns are so far apart that few source columns count
    int32_t here[kStripColumns], next[kStripColumns];
    float fraction[kStripColumns + kSpareLanes];

    Strip(const ScaleAxis& axis, int32_t first)
        : count(std::min(axis.count - first, kStripColumns)), onPixels(true), far(axis.step > kFarStep)
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

    static constexpr int32_t kFarStep = 4 * kSubpixelOne;
};

// Writes the columns `begin` to `end` of a strip; dest is the pixel of column 0.
template <class Pixel>
void LinearRow(uint8_t* dest, const RowPair& rows, const Strip& strip, int32_t begin, int32_t end)
{
    for (int32_t k = begin; k < end; ++k)
        WriteMixed<Pixel>(dest + int64_t(Pixel::kBytes) * k, rows, strip.Taps(k));
}

using LinearRowFn = void (*)(uint8_t*, const RowPair&, const Strip&, int32_t, int32_t);

} // namespace
} // namespace vx

#endif // VX_SCALE_LINEAR_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Lanes = hn::ScalableTag<float>;
constexpr int32_t kVectorPixels = int32_t(hn::MaxLanes(Lanes())) / 4;

// Pixels of four floats each, one for each block of the vector. The row begins with column `first`.
template <class D>
hn::Vec<D> GatherPixels(D d, const void* row, const int32_t* columns, int32_t first)
{
    if constexpr (hn::MaxLanes(d) == 4) {
        const auto* pixels = static_cast<const uint8_t*>(row);
        return hn::LoadU(
            d, reinterpret_cast<const float*>(pixels + int64_t(FloatPixel::kBytes) * (columns[0] - first)));
    } else {
        const hn::Half<D> half;
        return hn::Combine(d, GatherPixels(half, row, columns + hn::MaxLanes(half) / 4, first),
                           GatherPixels(half, row, columns, first));
    }
}

// One value a column, each spread over the lanes of its pixel.
hn::Vec<Lanes> SpreadColumns(const float* values)
{
    const Lanes lanes;
    const hn::RebindToSigned<Lanes> ints;
    const auto pixelOfLane = hn::IndicesFromVec(lanes, hn::ShiftRight<2>(hn::Iota(ints, 0)));
    return hn::TableLookupLanes(hn::LoadU(lanes, values), pixelOfLane);
}

// Source columns of a row pair mixed by the row's fraction, in 1/16384: exact in a float.
void MixRows(float* line, const uint8_t* here, const uint8_t* next, int32_t values, int32_t fraction)
{
    const Lanes lanes;
    const hn::RebindToSigned<Lanes> ints;
    const hn::Rebind<uint8_t, Lanes> bytes;
    const auto hereWeight = hn::Set(lanes, float(kSubpixelOne - fraction));
    const auto nextWeight = hn::Set(lanes, float(fraction));
    const auto load = [&](const uint8_t* p) {
        return hn::ConvertTo(lanes, hn::PromoteTo(ints, hn::LoadU(bytes, p)));
    };
    const int32_t step = int32_t(hn::Lanes(lanes));
    int32_t i = 0;
    for (; i + step <= values; i += step)
        hn::StoreU(hn::Add(hn::Mul(load(here + i), hereWeight), hn::Mul(load(next + i), nextWeight)), lanes,
                   line + i);
    for (; i < values; ++i)
        line[i] = float(here[i] * (kSubpixelOne - fraction) + next[i] * fraction);
}

constexpr int32_t kChunkColumns = 256;
constexpr int32_t kLinePixels = kChunkColumns * (Strip::kFarStep / kSubpixelOne) + 4;

// Mixes the rows first, once for each source column, then the columns, in floats and in units of
// 1/16384. The exact sum of a pixel differs from that by at most 1/4 for the two roundings here, by
// 1/2 for the rounding to an integer, and is smaller by up to 15/16 for what the integer weights lose:
// it lies between estimate - 27/16 and estimate + 3/4. So where the estimate, half a unit of the
// result added, stands on or one above a multiple of 16384, and only there, the bytes are in doubt;
// one vector in hundreds is then mixed exactly.
void LinearByteRow(uint8_t* dest, const RowPair& rows, const Strip& strip, int32_t begin, int32_t end)
{
    if (strip.far)
        return LinearRow<BytePixel>(dest, rows, strip, begin, end);
    const Lanes lanes;
    const hn::RebindToSigned<Lanes> ints;
    const hn::Rebind<uint8_t, Lanes> bytes;
    const bool exact = strip.onPixels || rows.fraction == 0;
    const auto half = hn::Set(ints, kSubpixelOne / 2);
    const auto doubtBits = hn::Set(ints, kSubpixelOne - 2);
    HWY_ALIGN float line[4 * kLinePixels];
    for (int32_t chunk = begin; chunk < end; chunk += kChunkColumns) {
        const int32_t last = std::min(chunk + kChunkColumns, end);
        const int32_t first = strip.here[chunk];
        MixRows(line, rows.here + 4 * int64_t(first), rows.next + 4 * int64_t(first),
                4 * (strip.next[last - 1] - first + 1), rows.fraction);
        int32_t k = chunk;
        for (; k + kVectorPixels <= last; k += kVectorPixels) {
            const auto here = GatherPixels(lanes, line, strip.here + k, first);
            const auto next = GatherPixels(lanes, line, strip.next + k, first);
            const auto part = hn::Mul(hn::Sub(next, here), SpreadColumns(strip.fraction + k));
            const auto sum = hn::Add(hn::NearestInt(hn::Add(here, part)), half);
            if (!exact && !hn::AllFalse(ints, hn::Eq(hn::And(sum, doubtBits), hn::Zero(ints))))
                LinearRow<BytePixel>(dest, rows, strip, k, k + kVectorPixels);
            else
                hn::StoreU(hn::DemoteTo(bytes, hn::ShiftRight<kSubpixelBits>(sum)), bytes,
                           dest + 4 * int64_t(k));
        }
        LinearRow<BytePixel>(dest, rows, strip, k, last);
    }
}

void LinearFloatRow(uint8_t* dest, const RowPair& rows, const Strip& strip, int32_t begin, int32_t end)
{
    const Lanes lanes;
    const auto one = hn::Set(lanes, 1.0f);
    const auto fy = hn::Set(lanes, float(rows.fraction) * kSubpixelToPixel);
    const auto restY = hn::Sub(one, fy);
    int32_t k = begin;
    for (; k + kVectorPixels <= end; k += kVectorPixels) {
        const auto fx = SpreadColumns(strip.fraction + k);
        const auto restX = hn::Sub(one, fx);
        const auto c00 = GatherPixels(lanes, rows.here, strip.here + k, 0);
        const auto c01 = GatherPixels(lanes, rows.here, strip.next + k, 0);
        const auto c10 = GatherPixels(lanes, rows.next, strip.here + k, 0);
        const auto c11 = GatherPixels(lanes, rows.next, strip.next + k, 0);
        auto sum = hn::Add(hn::Mul(c00, hn::Mul(restY, restX)), hn::Mul(c01, hn::Mul(restY, fx)));
        sum = hn::Add(sum, hn::Mul(c10, hn::Mul(fy, restX)));
        sum = hn::Add(sum, hn::Mul(c11, hn::Mul(fy, fx)));
        hn::StoreU(sum, lanes, reinterpret_cast<float*>(dest + int64_t(FloatPixel::kBytes) * k));
    }
    LinearRow<FloatPixel>(dest, rows, strip, k, end);
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
namespace {

HWY_EXPORT(LinearByteRow);
HWY_EXPORT(LinearFloatRow);

// Mixing a pixel takes about as long as copying it eight times.
constexpr int64_t kWorkOfPixel = 8;

template <class Pixel>
void ScaleLinearPixels(const ScaleJob& job, LinearRowFn workRow)
{
    for (int32_t first = 0; first < job.x.count; first += kStripColumns) {
        const Strip strip(job.x, first);
        const int64_t work = kWorkOfPixel * Pixel::kBytes * strip.count * job.y.count;
        ParallelRows(job.y.count, work, [&](int32_t y) {
            const LinearTaps taps = LinearTapsAt(job.y, y);
            const RowPair rows{job.SourceRow(taps.here), job.SourceRow(taps.next), taps.fraction};
            const int32_t coverage = job.y.Coverage(y);
            uint8_t* const dest = job.DestRow(y) + int64_t(Pixel::kBytes) * (job.x.firstPixel + first);
            ForColumns(
                job, coverage, first, first + strip.count,
                [&](int32_t k) {
                    StorePixel(dest + int64_t(Pixel::kBytes) * (k - first),
                               Mixed(Pixel(), rows, strip.Taps(k - first)),
                               EdgeCoverage(Pixel(), job.x.Coverage(k), coverage));
                },
                [&](int32_t begin, int32_t end) { workRow(dest, rows, strip, begin - first, end - first); });
        });
    }
}

} // namespace

void ScaleLinear(const ScaleJob& job, int32_t bytesPerPixel)
{
    if (bytesPerPixel == BytePixel::kBytes)
        ScaleLinearPixels<BytePixel>(job, VX_VECTOR_FORM(LinearByteRow, LinearRow<BytePixel>));
    else
        ScaleLinearPixels<FloatPixel>(job, VX_VECTOR_FORM(LinearFloatRow, LinearRow<FloatPixel>));
}

} // namespace vx

#endif // HWY_ONCE
