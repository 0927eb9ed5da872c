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

void MaskMultiplyRow(uint8_t* dst, const uint8_t* mask, int32_t width, int32_t channel, ScaleOffset)
{
    for (int32_t x = 0; x < width; ++x, dst += 4, mask += 4) {
        const PixelWeights w = WeightsAt(mask, channel);
        for (int c = 0; c < 4; ++c)
            dst[c] = MultiplyBytes(dst[c], w.of[c]);
    }
}

void MaskMultiplyScaledRow(uint8_t* dst, const uint8_t* mask, int32_t width, int32_t channel,
                           ScaleOffset weight)
{
    for (int32_t x = 0; x < width; ++x, dst += 4, mask += 4) {
        const PixelWeights w = WeightsAt(mask, channel);
        for (int c = 0; c < 4; ++c)
            dst[c] = MultiplyScaled(dst[c], w.of[c], weight);
    }
}

// The two orders of the product round differently.
void MaskMultiplyFloatRow(uint8_t* dst, const uint8_t* mask, int32_t width, int32_t channel,
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

void MaskMultiplyRowVector(uint8_t* dst, const uint8_t* mask, int32_t width, int32_t channel,
                           ScaleOffset weight)
{
    const hn::ScalableTag<uint8_t> bytes;
    const int64_t step = int64_t(hn::Lanes(bytes)) / 4;
    const auto toChannel = ChannelIndexes(bytes, channel);
    const auto multiply = [](auto d, auto w) HWY_ATTR { return RoundBy255(hn::Mul(d, w)); };
    int64_t x = 0;
    for (; x + step <= width; x += step) {
        const auto d = hn::LoadU(bytes, dst + 4 * x);
        const auto w = hn::TableLookupBytes(hn::LoadU(bytes, mask + 4 * x), toChannel);
        hn::StoreU(OnWideLanes<uint16_t>(bytes, multiply, d, w), bytes, dst + 4 * x);
    }
    MaskMultiplyRow(dst + 4 * x, mask + 4 * x, int32_t(width - x), channel, weight);
}

// The bytes kChannel of pixels in 32-bit lanes, multiplied and put back where they stood.
template <int kChannel, class V>
HWY_INLINE V MultiplyScaledChannel(V d, V w, ScaleOffset weight)
{
    const hn::DFromV<V> pixels;
    const auto low = hn::Set(pixels, 0xFF);
    const auto product = MultiplyScaledVector(hn::And(hn::ShiftRight<8 * kChannel>(d), low),
                                              hn::And(hn::ShiftRight<8 * kChannel>(w), low), weight);
    return hn::ShiftLeft<8 * kChannel>(product);
}

void MaskMultiplyScaledRowVector(uint8_t* dst, const uint8_t* mask, int32_t width, int32_t channel,
                                 ScaleOffset weight)
{
    const hn::ScalableTag<uint8_t> bytes;
    const hn::Repartition<int32_t, decltype(bytes)> pixels;
    const int64_t step = int64_t(hn::Lanes(pixels));
    const auto toChannel = ChannelIndexes(bytes, channel);
    int64_t x = 0;
    for (; x + step <= width; x += step) {
        const auto d = hn::BitCast(pixels, hn::LoadU(bytes, dst + 4 * x));
        const auto w = hn::BitCast(pixels, hn::TableLookupBytes(hn::LoadU(bytes, mask + 4 * x), toChannel));
        const auto low =
            hn::Or(MultiplyScaledChannel<0>(d, w, weight), MultiplyScaledChannel<1>(d, w, weight));
        const auto high =
            hn::Or(MultiplyScaledChannel<2>(d, w, weight), MultiplyScaledChannel<3>(d, w, weight));
        hn::StoreU(hn::BitCast(bytes, hn::Or(low, high)), bytes, dst + 4 * x);
    }
    MaskMultiplyScaledRow(dst + 4 * x, mask + 4 * x, int32_t(width - x), channel, weight);
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
