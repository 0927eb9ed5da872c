// MaskedBlend: an 8-bit frame mixed into another, weighed channel by channel by a mask.
#define HWY_WANT_AVX3_DL // for its permutations of bytes
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/masked_blend.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#include "primitives/arithmetic-inl.h"
#include "primitives/byte_tables-inl.h"
#include "primitives/row_loops-inl.h"

#ifndef VX_MASKED_BLEND_PLAIN
#define VX_MASKED_BLEND_PLAIN

#include "kernel/vector_targets.h"
#include "primitives/arithmetic.h"
#include "primitives/rows.h"
#include "vx/blend.h"

#include <algorithm>

namespace vx {
namespace {

HWY_NOINLINE void MaskedBlendRow(uint8_t* dst, const uint8_t* mask, const uint8_t* src, int32_t width)
{
    for (int32_t x = 0; x < width; ++x, dst += 4, mask += 4, src += 4)
        for (int c = 0; c < 3; ++c)
            dst[c] = std::min(MixBytes(dst[c], src[c], mask[c]), dst[3]);
}

// The mask seen through the tables of its channels. The alpha of the weights is not used.
HWY_NOINLINE void LookUpMask(const uint8_t* mask, const ByteTables& tables, int32_t width, uint8_t* weights)
{
    for (int32_t x = 0; x < width; ++x, mask += 4, weights += 4)
        for (int c = 0; c < 3; ++c)
            weights[c] = tables.column[c][mask[c]];
}

struct MaskedBlendRows
{
    void (*blend)(uint8_t* dst, const uint8_t* mask, const uint8_t* src, int32_t width);
    void (*lookUp)(const uint8_t* mask, const ByteTables& tables, int32_t width, uint8_t* weights);
};

// Looks up a stretch of the mask at a time, short enough to stay in the first-level cache.
void MaskedBlendRowThroughTables(uint8_t* dst, const uint8_t* mask, const uint8_t* src, int32_t width,
                                 const ByteTables& tables, MaskedBlendRows rows)
{
    constexpr int32_t kStretch = 256;
    uint8_t weights[4 * kStretch] = {};
    while (width > 0) {
        const int32_t count = std::min(width, kStretch);
        rows.lookUp(mask, tables, count, weights);
        rows.blend(dst, weights, src, count);
        dst += 4 * count, mask += 4 * count, src += 4 * count, width -= count;
    }
}

} // namespace
} // namespace vx

#endif // VX_MASKED_BLEND_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

void MaskedBlendRowVector(uint8_t* dst, const uint8_t* mask, const uint8_t* src, int32_t width)
{
    const hn::ScalableTag<uint8_t> bytes;
    const auto toAlpha = ChannelIndexes(bytes, 3);
    const auto isAlpha = AlphaLanes(bytes);
    const auto blend = [=](auto d, auto w, auto s) VX_LANES {
        const auto capped = hn::Min(MixBytesVector(bytes, d, s, w), hn::TableLookupBytes(d, toAlpha));
        return hn::IfThenElse(isAlpha, d, capped);
    };
    const int64_t done = ReplaceVectors(bytes, dst, 4 * int64_t(width), blend, mask, src);
    MaskedBlendRow(dst + done, mask + done, src + done, width - int32_t(done / 4));
}

void LookUpMaskVector(const uint8_t* mask, const ByteTables& tables, int32_t width, uint8_t* weights)
{
#if VX_VECTOR_BYTE_TABLES
    const int32_t step = int32_t(hn::Lanes(TableBytes()));
    const ColumnLookUps lookUps(tables);
    for (; width >= step; width -= step, mask += 4 * step, weights += 4 * step) {
        PixelPlanes pixels = LoadPlanes(mask);
        for (int c = 0; c < 3; ++c)
            pixels.channel[c] = lookUps.column[c](pixels.channel[c]);
        StorePlanes(pixels, weights);
    }
#endif
    LookUpMask(mask, tables, width, weights);
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
HWY_EXPORT(MaskedBlendRowVector);
HWY_EXPORT(LookUpMaskVector);
} // namespace vx

bool MaskedBlend(void* dst, int32_t dstStride, const void* mask, int32_t maskStride, const void* src,
                 int32_t srcStride, int32_t width, int32_t height, const void* lut)
{
    using namespace vx;
    if (IsEmpty(width, height))
        return true;
    const MaskedBlendRows rows{VX_VECTOR_FORM(MaskedBlendRowVector, MaskedBlendRow),
                               VX_VECTOR_FORM(LookUpMaskVector, LookUpMask)};
    if (!lut) {
        for (int32_t y = 0; y < height; ++y)
            rows.blend(RowAt(dst, dstStride, y), RowAt(mask, maskStride, y), RowAt(src, srcStride, y), width);
        return true;
    }
    const ByteTables tables(lut);
    for (int32_t y = 0; y < height; ++y)
        MaskedBlendRowThroughTables(RowAt(dst, dstStride, y), RowAt(mask, maskStride, y),
                                    RowAt(src, srcStride, y), width, tables, rows);
    return true;
}

#endif // HWY_ONCE
