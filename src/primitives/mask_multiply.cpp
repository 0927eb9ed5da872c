// MaskMultiply: a whole frame weighed by a mask; 8-bit and float frames.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/mask_multiply.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#include "primitives/arithmetic-inl.h"

#ifndef VX_MASK_MULTIPLY_PLAIN
#define VX_MASK_MULTIPLY_PLAIN

#include "kernel/vector_targets.h"
#include "primitives/arithmetic.h"
#include "primitives/rows.h"
#include "vx/blend.h"

namespace vx {
namespace {

// The mask's bytes for one pixel, read before any is written: the mask may be the frame itself.
struct PixelWeights
{
    uint8_t of[4];
};

PixelWeights WeightsAt(const uint8_t* mask, int32_t channel)
{
    if (channel < 0)
        return LoadElement<PixelWeights>(mask);
    const uint8_t w = mask[channel];
    return {{w, w, w, w}};
}

HWY_NOINLINE void MaskMultiplyRow(uint8_t* dst, const uint8_t* mask, int32_t width, int32_t channel,
                                  ScaleOffset)
{
    for (int32_t x = 0; x < width; ++x, dst += 4, mask += 4) {
        const PixelWeights w = WeightsAt(mask, channel);
        for (int c = 0; c < 4; ++c)
            dst[c] = MultiplyBytes(dst[c], w.of[c]);
    }
}

HWY_NOINLINE void MaskMultiplyScaledRow(uint8_t* dst, const uint8_t* mask, int32_t width, int32_t channel,
                                        ScaleOffset weight)
{
    for (int32_t x = 0; x < width; ++x, dst += 4, mask += 4) {
        const PixelWeights w = WeightsAt(mask, channel);
        for (int c = 0; c < 4; ++c)
            dst[c] = MultiplyScaled(dst[c], w.of[c], weight);
    }
}

// The two orders of the product round differently.
HWY_NOINLINE void MaskMultiplyFloatRow(uint8_t* dst, const uint8_t* mask, int32_t width, int32_t channel,
                                       FloatScaleOffset weight)
{
    for (int32_t x = 0; x < width; ++x, mask += 4) {
        const PixelWeights pixel = WeightsAt(mask, channel);
        for (int c = 0; c < 4; ++c, dst += 4) {
            const float d = LoadElement<float>(dst);
            const float w = float(pixel.of[c]);
            const float product = channel < 0 ? w * d * weight.scale : w * weight.scale * d;
            StoreElement(dst, product + weight.offset);
        }
    }
}

} // namespace
} // namespace vx

#endif // VX_MASK_MULTIPLY_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

// Scales below 1 without an offset. With w K = 1024 a + b, (w K d + 130560) / 261120 is
// (a d + (b d + 512) / 1024 + 127) / 255, all rounded down, in which nothing exceeds 16 bits. The
// fixed-point product (32 b d + 2^14) / 2^15 is its middle term.
template <class V>
HWY_INLINE V MultiplyReducedTimes255(V d, V w, uint32_t scale)
{
    const hn::DFromV<V> words;
    const hn::RebindToSigned<decltype(words)> numbers;
    const auto a = hn::MulHigh(w, hn::Set(words, uint16_t(scale << 6)));
    const auto b = hn::And(hn::Mul(w, hn::Set(words, uint16_t(scale))), hn::Set(words, 1023));
    const auto part = hn::MulFixedPoint15(hn::BitCast(numbers, hn::ShiftLeft<5>(b)), hn::BitCast(numbers, d));
    return hn::Add(MultiplyBytesTimes255(a, d), hn::BitCast(words, part));
}

// op multiplies bytes in 16-bit lanes. Returns how many pixels were done in whole vectors.
template <class Op>
HWY_INLINE int64_t MaskMultiplyLanes(uint8_t* dst, const uint8_t* mask, int32_t width, int32_t channel,
                                     const Op& op)
{
    const hn::ScalableTag<uint8_t> bytes;
    const int64_t step = int64_t(hn::Lanes(bytes)) / 4;
    const auto toChannel = ChannelIndexes(bytes, channel);
    int64_t x = 0;
    for (; x + step <= width; x += step) {
        const auto d = hn::LoadU(bytes, dst + 4 * x);
        const auto w = hn::TableLookupBytes(hn::LoadU(bytes, mask + 4 * x), toChannel);
        hn::StoreU(OnWideLanes<uint16_t>(bytes, op, d, w), bytes, dst + 4 * x);
    }
    return x;
}

void MaskMultiplyRowVector(uint8_t* dst, const uint8_t* mask, int32_t width, int32_t channel,
                           ScaleOffset weight)
{
    const auto multiply = [](auto d, auto w) HWY_ATTR { return DivideBy255(MultiplyBytesTimes255(d, w)); };
    const int64_t done = MaskMultiplyLanes(dst, mask, width, channel, multiply);
    MaskMultiplyRow(dst + 4 * done, mask + 4 * done, int32_t(width - done), channel, weight);
}

void MaskMultiplyScaledRowVector(uint8_t* dst, const uint8_t* mask, int32_t width, int32_t channel,
                                 ScaleOffset weight)
{
    const auto multiply = [=](auto d, auto w) HWY_ATTR {
        const auto scaled = [=](auto d32, auto w32)
                                HWY_ATTR { return MultiplyScaledTimes255(d32, w32, weight); };
        return DivideBy255(OnWideLanes<int32_t>(hn::DFromV<decltype(d)>(), scaled, d, w));
    };
    const auto reduce = [=](auto d, auto w)
                            HWY_ATTR { return DivideBy255(MultiplyReducedTimes255(d, w, weight.scale)); };
    const bool isReduced = weight.scale < 1024 && weight.offset == 0;
    const int64_t done = isReduced ? MaskMultiplyLanes(dst, mask, width, channel, reduce)
                                   : MaskMultiplyLanes(dst, mask, width, channel, multiply);
    MaskMultiplyScaledRow(dst + 4 * done, mask + 4 * done, int32_t(width - done), channel, weight);
}

void MaskMultiplyFloatRowVector(uint8_t* dst, const uint8_t* mask, int32_t width, int32_t channel,
                                FloatScaleOffset weight)
{
    const hn::ScalableTag<float> floats;
    const hn::Rebind<int32_t, decltype(floats)> numbers;
    const hn::Rebind<uint8_t, decltype(floats)> bytes;
    const int64_t step = int64_t(hn::Lanes(floats)) / 4;
    const auto toChannel = ChannelIndexes(bytes, channel);
    const auto scale = hn::Set(floats, weight.scale);
    const auto offset = hn::Set(floats, weight.offset);
    int64_t x = 0;
    for (; x + step <= width; x += step) {
        float* const at = reinterpret_cast<float*>(dst + 16 * x);
        const auto d = hn::LoadU(floats, at);
        const auto maskBytes = hn::TableLookupBytes(hn::LoadU(bytes, mask + 4 * x), toChannel);
        const auto w = hn::ConvertTo(floats, hn::PromoteTo(numbers, maskBytes));
        const auto product = channel < 0 ? hn::Mul(hn::Mul(w, d), scale) : hn::Mul(hn::Mul(w, scale), d);
        hn::StoreU(hn::Add(product, offset), floats, at);
    }
    MaskMultiplyFloatRow(dst + 16 * x, mask + 4 * x, int32_t(width - x), channel, weight);
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
HWY_EXPORT(MaskMultiplyRowVector);
HWY_EXPORT(MaskMultiplyScaledRowVector);
HWY_EXPORT(MaskMultiplyFloatRowVector);
} // namespace vx

bool MaskMultiply(void* dst, int32_t dstStride, int32_t bytesPerPixel, const void* mask, int32_t maskStride,
                  int32_t width, int32_t height, int32_t channel, double scale, double offset)
{
    using namespace vx;
    if (channel >= 4)
        return false;
    if (IsEmpty(width, height))
        return true;
    if (bytesPerPixel != 4) {
        const auto row = VX_VECTOR_FORM(MaskMultiplyFloatRowVector, MaskMultiplyFloatRow);
        const FloatScaleOffset weight = FloatScaleOffsetOf(scale, offset);
        for (int32_t y = 0; y < height; ++y)
            row(RowAt(dst, dstStride, y), RowAt(mask, maskStride, y), width, channel, weight);
        return true;
    }
    const auto row = IsUnscaled(scale, offset)
                         ? VX_VECTOR_FORM(MaskMultiplyRowVector, MaskMultiplyRow)
                         : VX_VECTOR_FORM(MaskMultiplyScaledRowVector, MaskMultiplyScaledRow);
    const ScaleOffset weight = ScaleOffsetOf(scale, offset);
    for (int32_t y = 0; y < height; ++y)
        row(RowAt(dst, dstStride, y), RowAt(mask, maskStride, y), width, channel, weight);
    return true;
}

#endif // HWY_ONCE
