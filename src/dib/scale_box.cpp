// The mean of what each destination pixel covers, on both axes.
#include "dib/scale_box.h"

#include <bit>

namespace vx {
namespace {

template <class Pixel, class Sum>
Channels<Sum> SumOfBlock(const ScaleJob& job, const BoxSpan& x, const BoxSpan& y)
{
    Channels<Sum> sum{};
    for (int32_t row = y.first; row <= y.last; ++row) {
        const uint8_t* const pixels = job.SourceRow(row);
        const int32_t rowShare = ShareAt(y, row);
        for (int32_t column = x.first; column <= x.last; ++column)
            AddShare(sum, LoadPixel<Pixel>(pixels, column), CoverageProduct(ShareAt(x, column), rowShare));
    }
    return sum;
}

// In 1/16384 of a source pixel.
int64_t Area(int32_t width, int32_t height)
{
    return int64_t(width) * height >> kSubpixelBits;
}

// To the nearest integer, of two the even one: a double that adds 1.5 * 2^52 has no room for a
// fraction, and the integer in its low bits. The small term makes halves of inexact quotients go up.
uint8_t RoundedMean(double sum, double reciprocal)
{
    const double shifted = sum * reciprocal + 1.5e-8 + 0x1.8p52;
    return uint8_t(std::bit_cast<uint64_t>(shifted));
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
template <class Pixel, class Sum>
void BlendMean(const ScaleJob& job, uint8_t* at, int32_t k, int32_t rowCoverage, const BoxSpan& y)
{
    const BoxSpan x = BoxSpanAt(job.x, k);
    const int64_t area = Area(x.length, y.length);
    if (area >= 1)
        StorePixel(at, PartMean(SumOfBlock<Pixel, Sum>(job, x, y), area),
                   BoxCoverage<Pixel>(job.x.Coverage(k), rowCoverage));
}

template <class Pixel, class Sum>
void BoxRow(const ScaleJob& job, uint8_t* dest, int32_t begin, int32_t end, const BoxSpan& y)
{
    const int64_t area = Area(job.x.step, job.y.step);
    for (int32_t k = begin; k < end; ++k) {
        const auto mean = WholeMean(SumOfBlock<Pixel, Sum>(job, BoxSpanAt(job.x, k), y), area);
        std::memcpy(dest + int64_t(Pixel::kBytes) * k, mean.data(), sizeof(mean));
    }
}

template <class Pixel, class Sum>
void Box(const ScaleJob& job)
{
    for (int32_t row = 0; row < job.y.count; ++row) {
        const BoxSpan y = BoxSpanAt(job.y, row);
        const int32_t coverage = job.y.Coverage(row);
        uint8_t* const dest = job.DestRow(row) + int64_t(Pixel::kBytes) * job.x.firstPixel;
        ForColumns(
            job, coverage, 0, job.x.count,
            [&](int32_t k) { BlendMean<Pixel, Sum>(job, dest + int64_t(Pixel::kBytes) * k, k, coverage, y); },
            [&](int32_t begin, int32_t end) { BoxRow<Pixel, Sum>(job, dest, begin, end, y); });
    }
}

} // namespace

void ScaleBox(const ScaleJob& job, int32_t bytesPerPixel)
{
    if (bytesPerPixel == FloatPixel::kBytes)
        Box<FloatPixel, double>(job);
    else if (WidestSpan(job.x) * WidestSpan(job.y) * kSubpixelOne * 255 < kNarrowSums)
        Box<BytePixel, uint32_t>(job);
    else
        Box<BytePixel, uint64_t>(job);
}

} // namespace vx
