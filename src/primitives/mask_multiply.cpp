// MaskMultiply: a whole frame weighed by a mask; 8-bit and float frames.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/mask_multiply.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#include "primitives/arithmetic-inl.h"
#include "primitives/row_loops-inl.h"

#ifndef VX_MASK_MULTIPLY_PLAIN
#define VX_MASK_MULTIPLY_PLAIN

#include "kernel/vector_targets.h"
#include "primitives/arithmetic.h"
#include "primitives/rows.h"
#include "vx/blend.h"

#include <algorithm>

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

// Weights that lie from 0 to 1 for every mask byte w: W = w K + O is then from 0 to 255 * 1024, and so is K,
// as a negative one is a positive one of the mask's complement, up to 1024.
struct UnitWeight
{
    uint8_t flip; // 0xFF: of the complement
    uint16_t scale;
    uint32_t offset;
};

bool IsUnit(ScaleOffset weight)
{
    const int64_t first = int32_t(weight.offset), last = first + int64_t(int32_t(weight.scale)) * 255;
    return std::min(first, last) >= 0 && std::max(first, last) <= 255 * 1024;
}

UnitWeight UnitWeightOf(ScaleOffset weight)
{
    if (int32_t(weight.scale) >= 0)
        return {0, uint16_t(weight.scale), weight.offset};
    return {0xFF, uint16_t(0u - weight.scale), weight.offset + weight.scale * 255};
}

// With W = 1024 a + b, (W d + 130560) / 261120 is (a d + (b d + 512) / 1024 + 127) / 255, all rounded
// down, in which nothing exceeds 16 bits. K and O come in parts of 1024 each, so that b is up to 2046; the
// fixed-point product (16 b 2 d + 2^14) / 2^15 is the middle term.
template <class V>
HWY_INLINE V MultiplyUnit(V d, V w, UnitWeight weight)
{
    const hn::DFromV<V> words;
    const hn::RebindToSigned<decltype(words)> numbers;
    const auto scaledHigh = hn::MulHigh(hn::ShiftLeft<6>(w), hn::Set(words, weight.scale));
    const auto scaledLow =
        hn::And(hn::Mul(w, hn::Set(words, uint16_t(weight.scale << 4))), hn::Set(words, 1023 << 4));
    const auto a = hn::Add(scaledHigh, hn::Set(words, uint16_t(weight.offset >> 10)));
    const auto b16 = hn::Add(scaledLow, hn::Set(words, uint16_t((weight.offset & 1023) << 4)));
    const auto part = hn::MulFixedPoint15(hn::BitCast(numbers, b16), hn::BitCast(numbers, hn::Add(d, d)));
    return DivideBy255(hn::Add(hn::Mul(a, d), hn::BitCast(words, part)), 127);
}

// Multiplies a row of pixels by what op makes of their bytes and the mask's. Returns the bytes done.
template <class Op>
HWY_INLINE int64_t MaskMultiplyLanes(uint8_t* dst, const uint8_t* mask, int32_t width, int32_t channel,
                                     const Op& op)
{
    const hn::ScalableTag<uint8_t> bytes;
    const int64_t count = 4 * int64_t(width);
    const auto own = [=](auto d, auto w)
                         VX_LANES { return OnHalves(bytes, op, Split<uint16_t>(d), Split<uint16_t>(w)); };
    if (channel < 0)
        return ReplaceVectors(bytes, dst, count, own, mask);
    const auto toChannel = ChannelWordIndexes(bytes, channel);
    const auto byChannel = [=](auto d, auto w) VX_LANES {
        return OnHalves(bytes, op, Split<uint16_t>(d), SpreadChannel(w, toChannel));
    };
    return ReplaceVectors(bytes, dst, count, byChannel, mask);
}

void MaskMultiplyRowVector(uint8_t* dst, const uint8_t* mask, int32_t width, int32_t channel,
                           ScaleOffset weight)
{
    const auto multiply = [](auto d, auto w) VX_LANES { return MultiplyBytesVector(d, w); };
    const int64_t done = MaskMultiplyLanes(dst, mask, width, channel, multiply);
    MaskMultiplyRow(dst + done, mask + done, width - int32_t(done / 4), channel, weight);
}

void MaskMultiplyScaledRowVector(uint8_t* dst, const uint8_t* mask, int32_t width, int32_t channel,
                                 ScaleOffset weight)
{
    const UnitWeight unit = UnitWeightOf(weight);
    const auto multiplyUnit = [=](auto d, auto w) VX_LANES {
        const auto flip = hn::Set(hn::DFromV<decltype(w)>(), unit.flip);
        return MultiplyUnit(d, hn::Xor(w, flip), unit);
    };
    const auto multiplyAny = [=](auto d, auto w) VX_LANES {
        const auto scaled = [=](auto d32, auto w32)
                                VX_LANES { return MultiplyScaledVector(d32, w32, weight); };
        return OnHalves(hn::DFromV<decltype(d)>(), scaled, Split<int32_t>(d), Split<int32_t>(w));
    };
    const int64_t done = IsUnit(weight) ? MaskMultiplyLanes(dst, mask, width, channel, multiplyUnit)
                                        : MaskMultiplyLanes(dst, mask, width, channel, multiplyAny);
    MaskMultiplyScaledRow(dst + done, mask + done, width - int32_t(done / 4), channel, weight);
}

void MaskMultiplyFloatRowVector(uint8_t* dst, const uint8_t* mask, int32_t width, int32_t channel,
                                FloatScaleOffset weight)
{
    const hn::ScalableTag<float> floats;
    const hn::Rebind<int32_t, decltype(floats)> numbers;
    const hn::Rebind<uint8_t, decltype(floats)> bytes;
    const int64_t step = int64_t(hn::Lanes(floats)) / 4;
    const auto toChannel = channel < 0 ? hn::Iota(bytes, 0) : ChannelIndexes(bytes, channel);
    const auto scale = hn::Set(floats, weight.scale);
    const auto offset = hn::Set(floats, weight.offset);
    int64_t x = 0;
    for (; x + step <= width; x += step) {
        const auto d = LoadOnce(floats, dst + 16 * x);
        const auto maskBytes = hn::TableLookupBytes(hn::LoadU(bytes, mask + 4 * x), toChannel);
        const auto w = hn::ConvertTo(floats, hn::PromoteTo(numbers, maskBytes));
        const auto product = channel < 0 ? hn::Mul(hn::Mul(w, d), scale) : hn::Mul(hn::Mul(w, scale), d);
        StoreBytes(hn::Add(product, offset), dst + 16 * x);
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
