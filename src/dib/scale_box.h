// What the box kernels share: sums over the source pixels that a destination pixel covers.
//
// Bytes are summed in integers, weighted in 1/16384 of a pixel; floats in doubles, weighted in pixels.
#pragma once

#include "dib/scale_job.h"

namespace vx {

// Bytes sum in 32 bits where the worst case stays below this, else in 64.
constexpr double kNarrowSums = 536870911.0;

// Source pixels that one destination pixel may touch along an axis, whole or in part.
inline double WidestSpan(const ScaleAxis& axis)
{
    return (axis.step + 2.0 * kSubpixelOne) / kSubpixelOne;
}

inline int32_t ShareAt(const BoxSpan& span, int32_t pixel)
{
    return pixel == span.first ? span.firstShare : pixel == span.last ? span.lastShare : kSubpixelOne;
}

template <class Sum>
void AddShare(Channels<Sum>& sum, const Channels<uint8_t>& pixel, int32_t share)
{
    for (size_t c = 0; c < 4; ++c)
        sum[c] += Sum(pixel[c]) * Sum(share);
}

template <class Value>
void AddShare(Channels<double>& sum, const Channels<Value>& pixel, int32_t share)
{
    for (size_t c = 0; c < 4; ++c)
        sum[c] += double(pixel[c]) * double(float(share) * kSubpixelToPixel);
}

// Along a row.
template <class Pixel, class Sum>
Channels<Sum> SumOfColumns(const uint8_t* row, const BoxSpan& x)
{
    Channels<Sum> sum{};
    for (int32_t column = x.first; column <= x.last; ++column)
        AddShare(sum, LoadPixel<Pixel>(row, column), ShareAt(x, column));
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

// Writes every pixel of a kernel with a box along one axis, `box`. value(x, y, divisor) gives pixel x
// of row y; the divisor is what the box sums to: the whole ratio, or for a pixel covered in part its
// span, which leaves the pixel alone where it is nothing.
template <class Pixel, class Value>
void ForBoxPixels(const ScaleJob& job, const ScaleAxis& box, bool boxAlongX, const Value& value)
{
    for (int32_t y = 0; y < job.y.count; ++y) {
        uint8_t* const row = job.DestRow(y) + int64_t(Pixel::kBytes) * job.x.firstPixel;
        for (int32_t x = 0; x < job.x.count; ++x) {
            uint8_t* const at = row + int64_t(Pixel::kBytes) * x;
            const int32_t coverX = job.x.Coverage(x), coverY = job.y.Coverage(y);
            if (!job.blendEdges || CoverageProduct(coverX, coverY) == kSubpixelOne) {
                const auto pixel = value(x, y, box.step);
                std::memcpy(at, pixel.data(), sizeof(pixel));
            } else if (const int32_t span = BoxSpanAt(box, boxAlongX ? x : y).length; span >= 1) {
                StorePixel(at, value(x, y, span), BoxCoverage<Pixel>(coverX, coverY));
            }
        }
    }
}

} // namespace vx
