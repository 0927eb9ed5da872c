// What the box kernels share: sums over the source pixels that a destination pixel covers.
//
// Bytes are summed in integers, weighted in 1/16384 of a pixel; floats in doubles, weighted in pixels.
#pragma once

#include "dib/scale_job.h"

namespace vx {

// Bytes sum in 32 bits where the worst case stays below this, else in 64.
constexpr double kNarrowSums = 536870911.0;

// Boxes above this keep the plain form: so many rows fit 16 bits, and the sums of a pixel's edges, all
// of 16384 times 255, fit 32.
constexpr int32_t kVectorSide = 64 * kSubpixelOne;

// Source pixels that one destination pixel may touch along an axis, whole or in part.
inline double WidestSpan(const ScaleAxis& axis)
{
    return (axis.step + 2.0 * kSubpixelOne) / kSubpixelOne;
}

inline int32_t ShareAt(const BoxSpan& span, int32_t pixel)
{
    return pixel == span.first ? span.firstShare : pixel == span.last ? span.lastShare : kSubpixelOne;
}

// What a share multiplies a channel by.
template <class Sum>
Sum Multiplier(int32_t share)
{
    if constexpr (std::is_same_v<Sum, double>)
        return double(float(share) * kSubpixelToPixel);
    else
        return Sum(share);
}

template <class Sum, class Value>
void Add(Channels<Sum>& sum, const Channels<Value>& pixel)
{
    for (size_t c = 0; c < 4; ++c)
        sum[c] += Sum(pixel[c]);
}

template <class Sum, class Value>
void AddShare(Channels<Sum>& sum, const Channels<Value>& pixel, int32_t share)
{
    const Sum multiplier = Multiplier<Sum>(share);
    for (size_t c = 0; c < 4; ++c)
        sum[c] += Sum(pixel[c]) * multiplier;
}

// Adds the span's pixels of a row, each by its own share of the row's.
template <class Pixel, class Sum>
void AddColumns(Channels<Sum>& sum, const uint8_t* row, const BoxSpan& x, int32_t rowShare)
{
    Channels<Sum> whole{};
    for (int32_t column = x.first + 1; column < x.last; ++column)
        Add(whole, LoadPixel<Pixel>(row, column));
    AddShare(sum, LoadPixel<Pixel>(row, x.first), CoverageProduct(x.firstShare, rowShare));
    AddShare(sum, whole, rowShare);
    if (x.last != x.first)
        AddShare(sum, LoadPixel<Pixel>(row, x.last), CoverageProduct(x.lastShare, rowShare));
}

// Along a row.
template <class Pixel, class Sum>
Channels<Sum> SumOfColumns(const uint8_t* row, const BoxSpan& x)
{
    Channels<Sum> sum{};
    AddColumns<Pixel>(sum, row, x, kSubpixelOne);
    return sum;
}

// Down a column.
template <class Pixel, class Sum>
Channels<Sum> SumOfRows(const ScaleJob& job, int32_t column, const BoxSpan& y)
{
    Channels<Sum> sum{};
    for (int32_t row = y.first; row <= y.last; ++row)
        AddShare(sum, LoadPixel<Pixel>(job.SourceRow(row), column), ShareAt(y, row));
    return sum;
}

// The last step of a float pixel. The coverage is cut to 1/16384, as that of bytes.
template <class Pixel>
auto BoxCoverage(int32_t column, int32_t row)
{
    const int32_t product = CoverageProduct(column, row);
    if constexpr (std::is_same_v<Pixel, BytePixel>)
        return product;
    else
        return float(product) * kSubpixelToPixel;
}

// A kernel with a box along one axis, `box`. value(job, x, y, divisor) gives pixel x of row y; the divisor
// is what the box sums to: the whole ratio, or for a pixel covered in part its span, which leaves the
// pixel alone where it is nothing.
template <class Pixel, class Value>
void BlendBoxPixel(const ScaleJob& job, const ScaleAxis& box, uint8_t* at, int32_t x, int32_t y,
                   const Value& value)
{
    if (const int32_t span = BoxSpanAt(box, &box == &job.x ? x : y).length; span >= 1)
        StorePixel(at, value(job, x, y, span), BoxCoverage<Pixel>(job.x.Coverage(x), job.y.Coverage(y)));
}

template <class Pixel, class Value>
void ForBoxPixels(const ScaleJob& job, const ScaleAxis& box, const Value& value)
{
    for (int32_t y = 0; y < job.y.count; ++y) {
        uint8_t* const row = job.DestRow(y) + int64_t(Pixel::kBytes) * job.x.firstPixel;
        const auto at = [row](int32_t x) { return row + int64_t(Pixel::kBytes) * x; };
        ForColumns(
            job, job.y.Coverage(y), 0, job.x.count,
            [&](int32_t x) { BlendBoxPixel<Pixel>(job, box, at(x), x, y, value); },
            [&](int32_t begin, int32_t end) {
                for (int32_t x = begin; x < end; ++x) {
                    const auto pixel = value(job, x, y, box.step);
                    std::memcpy(at(x), pixel.data(), sizeof(pixel));
                }
            });
    }
}

using ScaleJobFn = void (*)(const ScaleJob&);

// The form for bytes, by how far the axis with the box shrinks: plain sums have 32 or 64 bits. `most` is what a
// sum weighs at most beside a whole box.
inline ScaleJobFn ChooseBoxForm(const ScaleAxis& box, double most, ScaleJobFn vector, ScaleJobFn narrow,
                                ScaleJobFn wide)
{
    if (box.step <= kVectorSide)
        return vector;
    return WidestSpan(box) * kSubpixelOne * 255 * most < kNarrowSums ? narrow : wide;
}

// Works a job of bytes whose boxes are few halves or quarters of pixels, and whose pixels are all covered
// whole; false leaves any other job alone.
bool ScaleBoxByUnits(const ScaleJob& job);

} // namespace vx
