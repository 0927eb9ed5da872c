// MaskedBlend: an 8-bit frame mixed into another, weighed channel by channel by a mask.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/masked_blend.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#include "primitives/arithmetic-inl.h"
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

// The mask seen through the table. Byte c of an entry serves channel c, so that it is masked out of
// the entry's word where it stands. Not inlined: the compiler, once it sees that the weights are an array
// of their own, makes slow gathers of the look-ups.
HWY_NOINLINE void LookUpMask(const uint8_t* mask, const uint8_t* lut, int32_t width, uint8_t* weights)
{
    for (int32_t x = 0; x < width; ++x, mask += 4, weights += 4) {
        const uint32_t blue = LoadElement<uint32_t>(lut + 4 * mask[0]) & 0x000000FF;
        const uint32_t green = LoadElement<uint32_t>(lut + 4 * mask[1]) & 0x0000FF00;
        const uint32_t red = LoadElement<uint32_t>(lut + 4 * mask[2]) & 0x00FF0000;
        StoreElement(weights, blue | green | red);
    }
}

using MaskedBlendRowFn = void (*)(uint8_t*, const uint8_t*, const uint8_t*, int32_t);

// Looks up a stretch of the mask at a time, short enough to stay in the first-level cache.
void MaskedBlendRowThroughLut(uint8_t* dst, const uint8_t* mask, const uint8_t* src, int32_t width,
                              const uint8_t* lut, MaskedBlendRowFn row)
{
    constexpr int32_t kStretch = 256;
    uint8_t weights[4 * kStretch];
    while (width > 0) {
        const int32_t count = std::min(width, kStretch);
        LookUpMask(mask, lut, count, weights);
        row(dst, weights, src, count);
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

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
HWY_EXPORT(MaskedBlendRowVector);
} // namespace vx

bool MaskedBlend(void* dst, int32_t dstStride, const void* mask, int32_t maskStride, const void* src,
                 int32_t srcStride, int32_t width, int32_t height, const void* lut)
{
    using namespace vx;
    if (IsEmpty(width, height))
        return true;
    const MaskedBlendRowFn row = VX_VECTOR_FORM(MaskedBlendRowVector, MaskedBlendRow);
    for (int32_t y = 0; y < height; ++y) {
        uint8_t* const dstRow = RowAt(dst, dstStride, y);
        const uint8_t* const maskRow = RowAt(mask, maskStride, y);
        const uint8_t* const srcRow = RowAt(src, srcStride, y);
        if (lut)
            MaskedBlendRowThroughLut(dstRow, maskRow, srcRow, width, static_cast<const uint8_t*>(lut), row);
        else
            row(dstRow, maskRow, srcRow, width);
    }
    return true;
}

#endif // HWY_ONCE
