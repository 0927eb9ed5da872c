// Blend: two 8-bit frames mixed by one factor.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/blend.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#include "primitives/arithmetic-inl.h"
#include "primitives/row_loops-inl.h"

#ifndef VX_BLEND_PLAIN
#define VX_BLEND_PLAIN

#include "kernel/vector_targets.h"
#include "primitives/rows.h"
#include "primitives/weights.h"
#include "vx/blend.h"

#include <algorithm>

namespace vx {
namespace {

constexpr uint32_t kOne = 4096; // weights have 12 fraction bits
constexpr uint32_t kHalf = 2048;

struct BlendWeights
{
    uint32_t dst;
    uint32_t src;
};

// Unsigned products: a factor far out of range wraps instead of being undefined. The shift and the
// division differ only below zero, and the clamp takes both to 0.
uint8_t BlendChannel(uint32_t d, uint32_t s, uint8_t alpha, BlendWeights w)
{
    const int32_t mixed = int32_t(d * w.dst + s * w.src + kHalf) >> 12;
    return uint8_t(std::clamp<int32_t>(mixed, 0, alpha));
}

HWY_NOINLINE void BlendRow(uint8_t* dst, const uint8_t* src, int32_t width, BlendWeights w)
{
    for (int32_t x = 0; x < width; ++x, dst += 4, src += 4)
        for (int c = 0; c < 3; ++c)
            dst[c] = BlendChannel(dst[c], src[c], dst[3], w);
}

} // namespace
} // namespace vx

#endif // VX_BLEND_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

// Weights of 0 to 4096 come from factors from 0.0 to 1.0 and sum to no more than 4096. They are taken
// apart into 64 high + low. With H and L the sums of the products with either part, the mean
// (64 H + L + 2048) / 4096 is (H + L / 64 + 32) / 64, all rounded down; it is a byte, and no sum of two
// products exceeds 255 * 126. The fixed-point product with 512 is the last step: (512 x + 2^14) / 2^15.
// In alpha lanes dst weighs 4096 and stays.
void BlendRowUsual(uint8_t* dst, const uint8_t* src, int32_t width, BlendWeights w)
{
    const hn::ScalableTag<uint8_t> bytes;
    const hn::Repartition<int16_t, decltype(bytes)> words;
    const auto toAlpha = ChannelIndexes(bytes, 3);
    const auto isAlpha = AlphaLanes(words);
    const auto high = hn::IfThenElse(isAlpha, hn::Set(words, 64),
                                     hn::Set(words, int16_t((w.dst >> 6) | (w.src >> 6) << 8)));
    const auto low = hn::IfThenZeroElse(isAlpha, hn::Set(words, int16_t((w.dst & 63) | (w.src & 63) << 8)));
    const auto mean = [=](auto pair) VX_LANES {
        const auto sum = hn::Add(SumOfPair(pair, high), hn::ShiftRight<6>(SumOfPair(pair, low)));
        return hn::MulFixedPoint15(sum, hn::Set(words, 512));
    };
    const auto blend = [=](auto d, auto s) VX_LANES {
        return hn::Min(OnPairs(bytes, d, s, mean), hn::TableLookupBytes(d, toAlpha));
    };
    const int64_t done = ReplaceVectors(bytes, dst, 4 * int64_t(width), blend, src);
    BlendRow(dst + done, src + done, width - int32_t(done / 4), w);
}

// Any other weights: sums wrap as in the plain form.
void BlendRowAny(uint8_t* dst, const uint8_t* src, int32_t width, BlendWeights w)
{
    const hn::ScalableTag<uint8_t> bytes;
    const hn::Repartition<int32_t, decltype(bytes)> longs;
    const auto toAlpha = ChannelIndexes(bytes, 3);
    const auto isAlpha = AlphaLanes(bytes);
    const auto mean = [=](auto d, auto s, auto alpha) VX_LANES {
        const auto ofDst = hn::Mul(d, hn::Set(longs, int32_t(w.dst)));
        const auto ofSrc = hn::Mul(s, hn::Set(longs, int32_t(w.src)));
        const auto sum = hn::Add(hn::Add(ofDst, ofSrc), hn::Set(longs, int32_t(kHalf)));
        return hn::Clamp(hn::ShiftRight<12>(sum), hn::Zero(longs), alpha);
    };
    const auto blend = [=](auto d, auto s) VX_LANES {
        return hn::IfThenElse(isAlpha, d, OnLongs(bytes, mean, d, s, hn::TableLookupBytes(d, toAlpha)));
    };
    const int64_t done = ReplaceVectors(bytes, dst, 4 * int64_t(width), blend, src);
    BlendRow(dst + done, src + done, width - int32_t(done / 4), w);
}

void BlendRowVector(uint8_t* dst, const uint8_t* src, int32_t width, BlendWeights w)
{
    if (w.dst <= kOne && w.src <= kOne)
        BlendRowUsual(dst, src, width, w);
    else
        BlendRowAny(dst, src, width, w);
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
HWY_EXPORT(BlendRowVector);
} // namespace vx

bool Blend(void* dst, int32_t dstStride, const void* src, int32_t srcStride, int32_t width, int32_t height,
           double factor)
{
    using namespace vx;
    if (IsEmpty(width, height))
        return true;
    const BlendWeights weights{Truncated32(factor * 4096.0), Truncated32((1.0 - factor) * 4096.0)};
    const auto row = VX_VECTOR_FORM(BlendRowVector, BlendRow);
    for (int32_t y = 0; y < height; ++y)
        row(RowAt(dst, dstStride, y), RowAt(src, srcStride, y), width, weights);
    return true;
}

#endif // HWY_ONCE
