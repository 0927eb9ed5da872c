// MultiplyChannel: one channel of a frame weighed by, or made from, one channel of another.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/multiply_channel.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#include "primitives/arithmetic-inl.h"
#include "primitives/row_loops-inl.h"

#ifndef VX_MULTIPLY_CHANNEL_PLAIN
#define VX_MULTIPLY_CHANNEL_PLAIN

#include "kernel/vector_targets.h"
#include "primitives/arithmetic.h"
#include "primitives/rows.h"
#include "vx/blend.h"

namespace vx {
namespace {

struct ChannelPair
{
    int32_t dst;
    int32_t src;
};

HWY_NOINLINE void MultiplyChannelRow(uint8_t* dst, const uint8_t* src, int32_t width, ChannelPair channel,
                                     ScaleOffset)
{
    for (int32_t x = 0; x < width; ++x, dst += 4, src += 4)
        dst[channel.dst] = MultiplyBytes(dst[channel.dst], src[channel.src]);
}

HWY_NOINLINE void MultiplyChannelScaledRow(uint8_t* dst, const uint8_t* src, int32_t width,
                                           ChannelPair channel, ScaleOffset weight)
{
    for (int32_t x = 0; x < width; ++x, dst += 4, src += 4)
        dst[channel.dst] = MultiplyScaled(dst[channel.dst], src[channel.src], weight);
}

// Writes one float of every four: a loop that the compiler's vectors cannot better.
void SetFloatChannelRow(uint8_t* dst, const uint8_t* src, int32_t width, ChannelPair channel,
                        FloatScaleOffset weight)
{
    dst += 4 * channel.dst, src += channel.src;
    for (int32_t x = 0; x < width; ++x, dst += 16, src += 4)
        StoreElement(dst, float(*src) * weight.scale + weight.offset);
}

} // namespace
} // namespace vx

#endif // VX_MULTIPLY_CHANNEL_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

// A pixel is a 32-bit lane. op multiplies a byte by its weight. Returns how many bytes of the row were done.
template <class Op>
HWY_INLINE int64_t MultiplyChannelLanes(uint8_t* dst, const uint8_t* src, int32_t width, ChannelPair channel,
                                        const Op& op)
{
    const hn::ScalableTag<int32_t> pixels;
    const auto low = hn::Set(pixels, 0xFF);
    const auto others = hn::Not(hn::ShiftLeftSame(low, 8 * channel.dst));
    const auto multiply = [=](auto d, auto s) VX_LANES {
        const auto product = op(hn::And(hn::ShiftRightSame(d, 8 * channel.dst), low),
                                hn::And(hn::ShiftRightSame(s, 8 * channel.src), low));
        return hn::Or(hn::And(d, others), hn::ShiftLeftSame(product, 8 * channel.dst));
    };
    return ReplaceVectors(pixels, dst, 4 * int64_t(width), multiply, src);
}

void MultiplyChannelRowVector(uint8_t* dst, const uint8_t* src, int32_t width, ChannelPair channel,
                              ScaleOffset weight)
{
    const auto multiply = [](auto d, auto w) VX_LANES {
        const hn::RepartitionToNarrow<hn::RebindToUnsigned<hn::DFromV<decltype(d)>>> words;
        return hn::BitCast(hn::DFromV<decltype(d)>(),
                           MultiplyBytesVector(hn::BitCast(words, d), hn::BitCast(words, w)));
    };
    const int64_t done = MultiplyChannelLanes(dst, src, width, channel, multiply);
    MultiplyChannelRow(dst + done, src + done, width - int32_t(done / 4), channel, weight);
}

void MultiplyChannelScaledRowVector(uint8_t* dst, const uint8_t* src, int32_t width, ChannelPair channel,
                                    ScaleOffset weight)
{
    const auto multiply = [=](auto d, auto w) VX_LANES { return MultiplyScaledVector(d, w, weight); };
    const int64_t done = MultiplyChannelLanes(dst, src, width, channel, multiply);
    MultiplyChannelScaledRow(dst + done, src + done, width - int32_t(done / 4), channel, weight);
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
HWY_EXPORT(MultiplyChannelRowVector);
HWY_EXPORT(MultiplyChannelScaledRowVector);

namespace {

bool IsChannel(int32_t channel)
{
    return channel >= 0 && channel <= 3;
}

} // namespace
} // namespace vx

bool MultiplyChannel(void* dst, int32_t dstStride, int32_t bytesPerPixel, int32_t dstChannel, const void* src,
                     int32_t srcStride, int32_t srcChannel, int32_t width, int32_t height, double scale,
                     double offset)
{
    using namespace vx;
    if (!IsChannel(dstChannel) || !IsChannel(srcChannel))
        return false;
    if (IsEmpty(width, height))
        return true;
    const ChannelPair channel{dstChannel, srcChannel};
    if (bytesPerPixel != 4) {
        const FloatScaleOffset weight = FloatScaleOffsetOf(scale, offset);
        for (int32_t y = 0; y < height; ++y)
            SetFloatChannelRow(RowAt(dst, dstStride, y), RowAt(src, srcStride, y), width, channel, weight);
        return true;
    }
    const ScaleOffset weight = ScaleOffsetOf(scale, offset);
    const auto row = IsUnscaled(scale, offset)
                         ? VX_VECTOR_FORM(MultiplyChannelRowVector, MultiplyChannelRow)
                         : VX_VECTOR_FORM(MultiplyChannelScaledRowVector, MultiplyChannelScaledRow);
    for (int32_t y = 0; y < height; ++y)
        row(RowAt(dst, dstStride, y), RowAt(src, srcStride, y), width, channel, weight);
    return true;
}

#endif // HWY_ONCE
