// Blend: two 8-bit frames mixed by one factor.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/blend.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#include "primitives/arithmetic-inl.h"

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

void BlendRow(uint8_t* dst, const uint8_t* src, int32_t width, BlendWeights w)
{
    for (int32_t x = 0; x < width; ++x, dst += 4, src += 4)
        for (int c = 0; c < 3; ++c)
            dst[c] = BlendChannel(dst[c], src[c], dst[3], w);
}

// The vector form takes weights that sum to 1, or miss it by the one step that truncating both of
// them can lose, with 16 bits for that of dst: all factors from -8.0 to just below 8.0.
bool FitsVectorForm(BlendWeights w)
{
    const uint32_t missing = kOne - (w.dst + w.src);
    return missing <= 1 && int32_t(w.dst) == int16_t(w.dst);
}

} // namespace
} // namespace vx

#endif // VX_BLEND_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

// With weights that sum to 4096 the mean is s + ((d - s) wd + 2048) / 4096, rounded down. The
// fixed-point product (8 (d - s) wd + 2^14) / 2^15 is just that quotient, and exact.
// With weights that sum to 4095, s is to be taken off before the division: the quotient is one less
// where the remainder is below s. The remainder is in the low 16 bits of the product.
template <bool kSumIsWhole, class V>
HWY_INLINE V BlendLanes(V d, V s, V dstWeight)
{
    const hn::DFromV<V> words;
    const auto difference = hn::Sub(d, s);
    const auto quotient = hn::MulFixedPoint15(hn::ShiftLeft<3>(difference), dstWeight);
    const auto mixed = hn::Add(s, quotient);
    if constexpr (kSumIsWhole)
        return mixed;
    const auto biased = hn::Add(hn::Mul(difference, dstWeight), hn::Set(words, int16_t(kHalf)));
    const auto remainder = hn::And(biased, hn::Set(words, int16_t(kOne - 1)));
    return hn::Add(mixed, hn::ShiftRight<15>(hn::Sub(remainder, s)));
}

template <bool kSumIsWhole>
void BlendRowOfSum(uint8_t* dst, const uint8_t* src, int32_t width, BlendWeights w)
{
    const hn::ScalableTag<uint8_t> bytes;
    const hn::Repartition<int16_t, decltype(bytes)> words;
    const int64_t step = int64_t(hn::Lanes(bytes)) / 4;
    const auto dstWeight = hn::Set(words, int16_t(w.dst));
    const auto toAlpha = ChannelIndexes(bytes, 3);
    const auto isAlpha = AlphaLanes(bytes);
    const auto mix = [=](auto d, auto s, auto alpha) HWY_ATTR {
        return hn::Clamp(BlendLanes<kSumIsWhole>(d, s, dstWeight), hn::Zero(words), alpha);
    };
    int64_t x = 0;
    for (; x + step <= width; x += step) {
        const auto d = hn::LoadU(bytes, dst + 4 * x);
        const auto s = hn::LoadU(bytes, src + 4 * x);
        const auto mixed = OnWideLanes<int16_t>(bytes, mix, d, s, hn::TableLookupBytes(d, toAlpha));
        hn::StoreU(hn::IfThenElse(isAlpha, d, mixed), bytes, dst + 4 * x);
    }
    BlendRow(dst + 4 * x, src + 4 * x, int32_t(width - x), w);
}

void BlendRowVector(uint8_t* dst, const uint8_t* src, int32_t width, BlendWeights w)
{
    if (w.dst + w.src == kOne)
        BlendRowOfSum<true>(dst, src, width, w);
    else
        BlendRowOfSum<false>(dst, src, width, w);
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
    const BlendWeights weights{TruncatedWeight(factor * 4096.0), TruncatedWeight((1.0 - factor) * 4096.0)};
    const auto row = FitsVectorForm(weights) ? VX_VECTOR_FORM(BlendRowVector, BlendRow) : &BlendRow;
    for (int32_t y = 0; y < height; ++y)
        row(RowAt(dst, dstStride, y), RowAt(src, srcStride, y), width, weights);
    return true;
}

#endif // HWY_ONCE
