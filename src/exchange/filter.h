// Interpolation of working pixels, at each depth, and the slots of a record.
#pragma once

#include "exchange/codec.h"

namespace vx {

constexpr uint32_t kOnePixel = 16384; // positions have 14 fraction bits

template <class Working>
constexpr size_t kSlotBytes = sizeof(Working) > 8 ? 16 : 8;

template <class Working>
HWY_INLINE Working LoadSlot(const tVXXCHG& x, size_t i)
{
    Working pixel;
    std::memcpy(&pixel, reinterpret_cast<const uint8_t*>(x.slots) + kSlotBytes<Working> * i, sizeof(pixel));
    return pixel;
}

template <class Working>
HWY_INLINE void StoreSlot(tVXXCHG& x, size_t i, const Working& pixel)
{
    std::memcpy(reinterpret_cast<uint8_t*>(x.slots) + kSlotBytes<Working> * i, &pixel, sizeof(pixel));
}

// Weights of the pixel at a position, its right neighbour, and the two below. Each is truncated, so
// that their sum may be less than one.
struct IntegerWeights
{
    uint32_t w00, w10, w01, w11;

    HWY_INLINE IntegerWeights(uint32_t fx, uint32_t fy)
        : w00((kOnePixel - fx) * (kOnePixel - fy) / kOnePixel), w10(fx * (kOnePixel - fy) / kOnePixel),
          w01((kOnePixel - fx) * fy / kOnePixel), w11(fx * fy / kOnePixel)
    {}
    template <class Channel>
    HWY_INLINE Channel Mix(Channel c00, Channel c10, Channel c01, Channel c11) const
    {
        return Channel((c00 * w00 + c10 * w10 + c01 * w01 + c11 * w11) >> 14);
    }
};

struct FloatWeights
{
    float w00, w10, w01, w11;

    HWY_INLINE FloatWeights(uint32_t fx, uint32_t fy)
    {
        const float x = float(fx) * 6.1035156e-5f; // 1 / 16384
        const float y = float(fy) * 6.1035156e-5f;
        w00 = (1.0f - x) * (1.0f - y);
        w10 = x * (1.0f - y);
        w01 = (1.0f - x) * y;
        w11 = x * y;
    }
    HWY_INLINE float Mix(float c00, float c10, float c01, float c11) const
    {
        return w00 * c00 + w10 * c10 + w01 * c01 + w11 * c11;
    }
};

template <class Channel>
using WeightsOf = std::conditional_t<std::is_same_v<Channel, float>, FloatWeights, IntegerWeights>;

template <class Channel>
HWY_INLINE Pixel<Channel> MixBlock(const Pixel<Channel>& p00, const Pixel<Channel>& p10,
                                   const Pixel<Channel>& p01, const Pixel<Channel>& p11,
                                   const WeightsOf<Channel>& weights)
{
    return {weights.Mix(p00.blue, p10.blue, p01.blue, p11.blue),
            weights.Mix(p00.green, p10.green, p01.green, p11.green),
            weights.Mix(p00.red, p10.red, p01.red, p11.red),
            weights.Mix(p00.alpha, p10.alpha, p01.alpha, p11.alpha)};
}

HWY_INLINE float MixLineChannel(float top, float bottom, uint32_t fy)
{
    const float y = float(fy) * 6.1035156e-5f;
    return y * bottom + (1.0f - y) * top;
}

template <class Channel>
HWY_INLINE Channel MixLineChannel(Channel top, Channel bottom, uint32_t fy)
{
    return Channel((top * (kOnePixel - fy) + bottom * fy) / kOnePixel);
}

template <class Channel>
HWY_INLINE Pixel<Channel> MixLine(const Pixel<Channel>& top, const Pixel<Channel>& bottom, uint32_t fy)
{
    return {MixLineChannel(top.blue, bottom.blue, fy), MixLineChannel(top.green, bottom.green, fy),
            MixLineChannel(top.red, bottom.red, fy), MixLineChannel(top.alpha, bottom.alpha, fy)};
}

// The 2 by 2 pixels at a place. rowOffset leads to the row below, at the same bit.
template <class TheCodec, bool kExact>
struct Block
{
    using Working = typename TheCodec::Working;
    Working p00, p10, p01, p11;

    HWY_INLINE Block(const uint8_t* p, uint32_t bit, int32_t rowOffset, const ReadContext& context)
    {
        const uint32_t rightBit = bit + TheCodec::kBits;
        const uint8_t* const right = p + rightBit / 8;
        p00 = TheCodec::template Load<kExact>(p, bit, context);
        p10 = TheCodec::template Load<kExact>(right, rightBit % 8, context);
        p01 = TheCodec::template Load<kExact>(p + rowOffset, bit, context);
        p11 = TheCodec::template Load<kExact>(right + rowOffset, rightBit % 8, context);
    }
};

template <class TheCodec>
HWY_INLINE typename TheCodec::Working LoadFiltered(const uint8_t* p, uint32_t bit, int32_t rowOffset,
                                                   uint32_t fx, uint32_t fy, const ReadContext& context)
{
    const Block<TheCodec, true> block(p, bit, rowOffset, context);
    auto mixed =
        MixBlock(block.p00, block.p10, block.p01, block.p11, WeightsOf<typename TheCodec::Channel>(fx, fy));
    if constexpr (!TheCodec::kHasAlpha)
        mixed.alpha = block.p00.alpha; // full, of which the truncated weights would lose a little
    return mixed;
}

template <class TheCodec>
HWY_INLINE typename TheCodec::Working LoadLine(const uint8_t* p, uint32_t bit, int32_t rowOffset, uint32_t fy,
                                               const ReadContext& context)
{
    return MixLine(TheCodec::template Load<true>(p, bit, context),
                   TheCodec::template Load<true>(p + rowOffset, bit, context), fy);
}

} // namespace vx
