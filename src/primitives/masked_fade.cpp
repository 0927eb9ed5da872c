// MaskedFade: a frame mixed into another by a mask, alpha included; 8-bit and float frames.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/masked_fade.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#include "primitives/arithmetic-inl.h"
#include "primitives/row_loops-inl.h"

#ifndef VX_MASKED_FADE_PLAIN
#define VX_MASKED_FADE_PLAIN

#include "kernel/vector_targets.h"
#include "primitives/arithmetic.h"
#include "primitives/rows.h"
#include "vx/blend.h"

#include <algorithm>

namespace vx {
namespace {

constexpr float kByteToUnit = 0.003921569f; // 1 / 255

HWY_NOINLINE void MaskedFadeRow(uint8_t* dst, const uint8_t* src, const uint8_t* mask, int32_t width)
{
    for (int32_t x = 0; x < width; ++x, dst += 4, src += 4, mask += 4) {
        const uint8_t alpha = MixBytes(dst[3], src[3], mask[3]);
        for (int c = 0; c < 3; ++c)
            dst[c] = std::min(MixBytes(dst[c], src[c], mask[c]), alpha);
        dst[3] = alpha;
    }
}

float MixFloats(float d, float s, uint8_t maskByte)
{
    const float w = float(maskByte) * kByteToUnit;
    return w * s + (1.0f - w) * d;
}

// A colour that is no number becomes the alpha.
HWY_NOINLINE void MaskedFadeFloatRow(uint8_t* dst, const uint8_t* src, const uint8_t* mask, int32_t width)
{
    for (int32_t x = 0; x < width; ++x, dst += 16, src += 16, mask += 4) {
        const float alpha = MixFloats(LoadElement<float>(dst + 12), LoadElement<float>(src + 12), mask[3]);
        for (int c = 0; c < 3; ++c) {
            const float v =
                MixFloats(LoadElement<float>(dst + 4 * c), LoadElement<float>(src + 4 * c), mask[c]);
            StoreElement(dst + 4 * c, EitherFloat(alpha > v, v, alpha));
        }
        StoreElement(dst + 12, alpha);
    }
}

} // namespace
} // namespace vx

#endif // VX_MASKED_FADE_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

// Alpha takes the same path as the colours: its lane is capped by itself.
void MaskedFadeRowVector(uint8_t* dst, const uint8_t* src, const uint8_t* mask, int32_t width)
{
    const hn::ScalableTag<uint8_t> bytes;
    const auto toAlpha = ChannelIndexes(bytes, 3);
    const auto fade = [=](auto d, auto s, auto w) VX_LANES {
        const auto mixed = MixBytesVector(bytes, d, s, w);
        return hn::Min(mixed, hn::TableLookupBytes(mixed, toAlpha));
    };
    const int64_t done = ReplaceVectors(bytes, dst, 4 * int64_t(width), fade, src, mask);
    MaskedFadeRow(dst + done, src + done, mask + done, width - int32_t(done / 4));
}

void MaskedFadeFloatRowVector(uint8_t* dst, const uint8_t* src, const uint8_t* mask, int32_t width)
{
    const hn::ScalableTag<float> floats;
    const hn::Rebind<int32_t, decltype(floats)> numbers;
    const hn::Rebind<uint8_t, decltype(floats)> bytes;
    const int64_t step = int64_t(hn::Lanes(floats)) / 4;
    int64_t x = 0;
    for (; x + step <= width; x += step) {
        const auto d = LoadOnce(floats, dst + 16 * x);
        const auto s = LoadOnce(floats, src + 16 * x);
        const auto maskBytes = hn::PromoteTo(numbers, hn::LoadU(bytes, mask + 4 * x));
        const auto w = hn::Mul(hn::ConvertTo(floats, maskBytes), hn::Set(floats, kByteToUnit));
        const auto rest = hn::Sub(hn::Set(floats, 1.0f), w);
        const auto mixed = hn::Add(hn::Mul(w, s), hn::Mul(rest, d));
        const auto alpha = hn::Broadcast<3>(mixed); // a pixel is four lanes
        StoreBytes(EitherFloats(hn::Gt(alpha, mixed), mixed, alpha), dst + 16 * x);
    }
    MaskedFadeFloatRow(dst + 16 * x, src + 16 * x, mask + 4 * x, int32_t(width - x));
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
HWY_EXPORT(MaskedFadeRowVector);
HWY_EXPORT(MaskedFadeFloatRowVector);
} // namespace vx

bool MaskedFade(void* dst, int32_t dstStride, const void* src, int32_t srcStride, int32_t bytesPerPixel,
                const void* mask, int32_t maskStride, int32_t width, int32_t height)
{
    using namespace vx;
    if (IsEmpty(width, height))
        return true;
    const auto row = bytesPerPixel == 4 ? VX_VECTOR_FORM(MaskedFadeRowVector, MaskedFadeRow)
                                        : VX_VECTOR_FORM(MaskedFadeFloatRowVector, MaskedFadeFloatRow);
    for (int32_t y = 0; y < height; ++y)
        row(RowAt(dst, dstStride, y), RowAt(src, srcStride, y), RowAt(mask, maskStride, y), width);
    return true;
}

#endif // HWY_ONCE
