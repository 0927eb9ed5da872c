// ChannelCopy: one byte of each pixel from one buffer into another.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/channel_copy.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#ifndef VX_CHANNEL_COPY_PLAIN
#define VX_CHANNEL_COPY_PLAIN

#include "kernel/vector_targets.h"
#include "primitives/rows.h"
#include "vx/channels.h"

namespace vx {
namespace {

struct PixelSteps
{
    int32_t dst;
    int32_t src;
};

void CopyChannelRow(uint8_t* dst, const uint8_t* src, int64_t width, PixelSteps steps)
{
    for (int64_t x = 0; x < width; ++x)
        dst[x * steps.dst] = src[x * steps.src];
}

} // namespace
} // namespace vx

#endif // VX_CHANNEL_COPY_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// Works on whole words that begin at the channel's byte, as many as fit before the row's last pixel: the
// three bytes behind that one may lie outside the buffer. Returns the pixels done.
int64_t GatherPlane(uint8_t* dst, const uint8_t* src, int64_t width)
{
    const hn::ScalableTag<uint8_t> bytes;
    const hn::Repartition<uint32_t, decltype(bytes)> words;
    const hn::Rebind<uint8_t, decltype(words)> plane;
    const int64_t step = int64_t(hn::Lanes(words));
    int64_t x = 0;
    for (; x + step < width; x += step) {
        const auto pixels = hn::BitCast(words, hn::LoadU(bytes, src + 4 * x));
        hn::StoreU(hn::TruncateTo(plane, pixels), plane, dst + x);
    }
    return x;
}

#if HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_AVX3_DL
// Stores under a mask leave the other channels' bytes alone; lesser targets would have to write them
// back, which may undo what another thread has put there.
template <int kSrcStep>
int64_t SpreadIntoFrame(uint8_t* dst, const uint8_t* src, int64_t width)
{
    const hn::ScalableTag<uint8_t> bytes;
    const hn::Repartition<uint32_t, decltype(bytes)> words;
    const hn::Rebind<uint8_t, decltype(words)> plane;
    const int64_t step = int64_t(hn::Lanes(words));
    const auto isChannel = hn::Ne(hn::BitCast(bytes, hn::Set(words, 0xFF)), hn::Zero(bytes));
    int64_t x = 0;
    for (; x + step < width; x += step) {
        if constexpr (kSrcStep == 4) {
            hn::BlendedStore(hn::LoadU(bytes, src + 4 * x), isChannel, bytes, dst + 4 * x);
        } else {
            const auto pixels = hn::PromoteTo(words, hn::LoadU(plane, src + x));
            hn::BlendedStore(hn::BitCast(bytes, pixels), isChannel, bytes, dst + 4 * x);
        }
    }
    return x;
}
#endif

int64_t CopyChannelBlocks(uint8_t* dst, const uint8_t* src, int64_t width, PixelSteps steps)
{
    if (steps.dst == 1 && steps.src == 4)
        return GatherPlane(dst, src, width);
#if HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_AVX3_DL
    if (steps.dst == 4 && steps.src == 4)
        return SpreadIntoFrame<4>(dst, src, width);
    if (steps.dst == 4 && steps.src == 1)
        return SpreadIntoFrame<1>(dst, src, width);
#endif
    return 0;
}

void CopyChannelRowVector(uint8_t* dst, const uint8_t* src, int64_t width, PixelSteps steps)
{
    const int64_t x = CopyChannelBlocks(dst, src, width, steps);
    CopyChannelRow(dst + x * steps.dst, src + x * steps.src, width - x, steps);
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
HWY_EXPORT(CopyChannelRowVector);
} // namespace vx

bool ChannelCopy(void* dst, int32_t dstStride, int32_t dstPixelStep, int32_t width, int32_t height,
                 const void* src, int32_t srcStride, int32_t srcPixelStep)
{
    using namespace vx;
    if (dstPixelStep == 1 && srcPixelStep == 1)
        return BitmapCopy(dst, dstStride, src, srcStride, width, 1, height);
    const auto row = VX_VECTOR_FORM(CopyChannelRowVector, CopyChannelRow);
    for (int32_t y = 0; y < height; ++y)
        row(RowAt(dst, dstStride, y), RowAt(src, srcStride, y), width,
            PixelSteps{dstPixelStep, srcPixelStep});
    return true;
}

#endif // HWY_ONCE
