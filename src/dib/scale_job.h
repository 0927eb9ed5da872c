// What a scaling kernel works on, its kinds of pixels, and the blending of pixels covered in part.
#pragma once

#include "dib/fixed.h"
#include "dib/scale_geometry.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace vx {

struct ScaleJob
{
    uint8_t* dest; // top rows
    int32_t destStride;
    const uint8_t* source;
    int32_t sourceStride;
    ScaleAxis x, y;
    bool blendEdges; // else pixels covered in part are written whole

    uint8_t* DestRow(int32_t k) const { return dest + int64_t(destStride) * (y.firstPixel + k); }
    const uint8_t* SourceRow(int32_t row) const { return source + int64_t(sourceStride) * row; }
};

// Both kinds have four channels of their own type; rows may stand at any address.
struct BytePixel
{
    using Channel = uint8_t;
    static constexpr int32_t kBytes = 4;
};

struct FloatPixel
{
    using Channel = float;
    static constexpr int32_t kBytes = 16;
};

template <class Value>
using Channels = std::array<Value, 4>;

template <class Pixel>
Channels<typename Pixel::Channel> LoadPixel(const uint8_t* row, int32_t column)
{
    Channels<typename Pixel::Channel> c;
    std::memcpy(c.data(), row + int64_t(Pixel::kBytes) * column, Pixel::kBytes);
    return c;
}

// Coverages in sub-pixel units, each up to one pixel; their product likewise.
constexpr int32_t CoverageProduct(int32_t column, int32_t row)
{
    return column * row >> kSubpixelBits;
}

constexpr float kSubpixelToPixel = 1.0f / kSubpixelOne; // exact

// The share of a pixel that its column and its row leave, as StorePixel takes it.
constexpr int32_t EdgeCoverage(BytePixel, int32_t column, int32_t row)
{
    return CoverageProduct(column, row);
}

constexpr float EdgeCoverage(FloatPixel, int32_t column, int32_t row)
{
    return (float(column) * kSubpixelToPixel) * (float(row) * kSubpixelToPixel);
}

// Writes a pixel by its share of the destination pixel: the bytes by a share of 255.
inline void StorePixel(uint8_t* at, const Channels<uint8_t>& value, int32_t coverage)
{
    const int32_t a = coverage * 255 / kSubpixelOne;
    for (size_t c = 0; c < 4; ++c)
        at[c] = BlendByte(at[c], value[c], a);
}

inline void StorePixel(uint8_t* at, const Channels<float>& value, float coverage)
{
    Channels<float> d = value;
    if (coverage != 1.0f) {
        std::memcpy(d.data(), at, sizeof(d));
        for (size_t c = 0; c < 4; ++c)
            d[c] += (value[c] - d[c]) * coverage;
    }
    std::memcpy(at, d.data(), sizeof(d));
}

// Alpha stays in its range where cubic sampling overshoots; a NaN stays.
inline float LimitedAlpha(float alpha)
{
    return alpha < 0.0f ? 0.0f : alpha > 1.0f ? 1.0f : alpha;
}

// Works the columns `from` to `to` of a row: body(begin, end) on those that are written whole, edge(k)
// on each one that blends.
template <class Edge, class Body>
void ForColumns(const ScaleJob& job, int32_t rowCoverage, int32_t from, int32_t to, const Edge& edge,
                const Body& body)
{
    int32_t begin = from, end = to;
    if (job.blendEdges && rowCoverage != kSubpixelOne)
        begin = end;
    else if (job.blendEdges) {
        if (from == 0 && job.x.firstCoverage != kSubpixelOne)
            begin = 1;
        if (to == job.x.count && job.x.lastCoverage != kSubpixelOne)
            end = std::max(to - 1, begin);
    }
    for (int32_t k = from; k < begin; ++k)
        edge(k);
    if (begin < end)
        body(begin, end);
    for (int32_t k = end; k < to; ++k)
        edge(k);
}

// Works the `count` columns from `first` on of row y: body(dest, begin, end) on columns that are written
// whole, counted from `first`, whose pixel dest is; value(k) gives the pixel of one that blends.
template <class Pixel, class Value, class Body>
void ForStripOfRow(const ScaleJob& job, int32_t y, int32_t first, int32_t count, const Value& value,
                   const Body& body)
{
    const int32_t coverage = job.y.Coverage(y);
    uint8_t* const dest = job.DestRow(y) + int64_t(Pixel::kBytes) * (job.x.firstPixel + first);
    ForColumns(
        job, coverage, first, first + count,
        [&](int32_t x) {
            StorePixel(dest + int64_t(Pixel::kBytes) * (x - first), value(x - first),
                       EdgeCoverage(Pixel(), job.x.Coverage(x), coverage));
        },
        [&](int32_t begin, int32_t end) { body(dest, begin - first, end - first); });
}

// The kernels. Each works the whole job.
void ScaleLinear(const ScaleJob& job, int32_t bytesPerPixel);
void ScaleCubic(const ScaleJob& job, int32_t bytesPerPixel);
void ScaleBox(const ScaleJob& job, int32_t bytesPerPixel);
void ScaleBoxXLinearY(const ScaleJob& job, int32_t bytesPerPixel);
void ScaleBoxYLinearX(const ScaleJob& job, int32_t bytesPerPixel);
void ScaleBoxXCubicY(const ScaleJob& job, int32_t bytesPerPixel);
void ScaleBoxYCubicX(const ScaleJob& job, int32_t bytesPerPixel);

} // namespace vx
