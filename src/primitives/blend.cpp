// Blend: two 8-bit frames mixed by one factor.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/blend.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#ifndef VX_BLEND_PLAIN
#define VX_BLEND_PLAIN

#include "kernel/vector_targets.h"
#include "primitives/rows.h"
#include "primitives/weights.h"
#include "vx/blend.h"

#include <algorithm>

namespace vx {
namespace {

constexpr uint32_t kHalf = 2048; // rounds the 12 fraction bits of the weights

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

} // namespace
} // namespace vx

#endif // VX_BLEND_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// One channel is a 32-bit lane here, so that any weight wraps as in the plain form.
void BlendRowVector(uint8_t* dst, const uint8_t* src, int32_t width, BlendWeights w)
{
    const hn::ScalableTag<int32_t> lanes;
    const hn::Rebind<uint8_t, decltype(lanes)> bytes;
    const int32_t step = int32_t(hn::Lanes(lanes)) / 4;
    const auto dstWeight = hn::Set(lanes, int32_t(w.dst));
    const auto srcWeight = hn::Set(lanes, int32_t(w.src));
    const auto half = hn::Set(lanes, int32_t(kHalf));
    const auto isAlpha = hn::Eq(hn::And(hn::Iota(lanes, 0), hn::Set(lanes, 3)), hn::Set(lanes, 3));
    int32_t x = 0;
    for (; x + step <= width; x += step) {
        const auto d = hn::PromoteTo(lanes, hn::LoadU(bytes, dst + 4 * x));
        const auto s = hn::PromoteTo(lanes, hn::LoadU(bytes, src + 4 * x));
        const auto alpha = hn::Broadcast<3>(d); // a pixel is four lanes
        const auto sum = hn::Add(hn::Add(hn::Mul(d, dstWeight), hn::Mul(s, srcWeight)), half);
        const auto mixed = hn::Clamp(hn::ShiftRight<12>(sum), hn::Zero(lanes), alpha);
        hn::StoreU(hn::DemoteTo(bytes, hn::IfThenElse(isAlpha, d, mixed)), bytes, dst + 4 * x);
    }
    BlendRow(dst + 4 * x, src + 4 * x, width - x, w);
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
    const BlendWeights weights{TruncatedWeight(factor * 4096.0), TruncatedWeight((1.0 - factor) * 4096.0)};
    const auto row = VX_VECTOR_FORM(BlendRowVector, BlendRow);
    for (int32_t y = 0; y < height; ++y)
        row(RowAt(dst, dstStride, y), RowAt(src, srcStride, y), width, weights);
    return true;
}

#endif // HWY_ONCE
