// ChannelCopy: one byte of each pixel from one buffer into another.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/channel_copy.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#include "primitives/arithmetic-inl.h"

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

HWY_NOINLINE void CopyChannelRow(uint8_t* dst, const uint8_t* src, int64_t width, PixelSteps steps)
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

using Bytes = hn::ScalableTag<uint8_t>;
using Words = hn::Repartition<int32_t, Bytes>;
using Plane = hn::Rebind<uint8_t, Words>;

#undef VX_CHANNEL_COPY_MASKS
#define VX_CHANNEL_COPY_MASKS (HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_AVX3_DL)

// Channels are read as words that begin at the channel's byte. The three bytes behind that of a row's last
// pixel may lie outside the buffer, and are not touched.
HWY_INLINE hn::Vec<Words> LoadChannel(const uint8_t* src)
{
    const auto pixels = hn::BitCast(Words(), hn::LoadU(Bytes(), src));
    return hn::And(pixels, hn::Set(Words(), 0xFF));
}

// Packing leaves four pixels of each vector in each block; lane i takes them from block i % blocks.
HWY_INLINE auto BlocksToRow()
{
    constexpr size_t kGroups = hn::MaxLanes(Words()), kBlocks = kGroups / 4;
    int32_t from[kGroups];
    for (size_t i = 0; i < kGroups; ++i)
        from[i] = int32_t(i % kBlocks * 4 + i / kBlocks);
    return hn::SetTableIndices(Words(), from);
}

// Returns the pixels done; so do the next ones.
int64_t GatherPlane(uint8_t* dst, const uint8_t* src, int64_t width)
{
    const int64_t step = int64_t(hn::Lanes(Words()));
    const auto toRow = BlocksToRow();
    int64_t x = 0;
    for (; x + 4 * step < width; x += 4 * step) {
        const uint8_t* const from = src + 4 * x;
        const auto packed = PackLongs(Bytes(), LoadChannel(from), LoadChannel(from + 4 * step),
                                      LoadChannel(from + 8 * step), LoadChannel(from + 12 * step));
        const auto plane = hn::TableLookupLanes(hn::BitCast(Words(), packed), toRow);
        hn::StoreU(hn::BitCast(Bytes(), plane), Bytes(), dst + x);
    }
    for (; x + step < width; x += step)
        hn::StoreU(hn::DemoteTo(Plane(), LoadChannel(src + 4 * x)), Plane(), dst + x);
#if VX_CHANNEL_COPY_MASKS
    const auto rest = hn::MaskedLoad(hn::FirstN(Bytes(), size_t(4 * (width - x) - 3)), Bytes(), src + 4 * x);
    const auto channel = hn::And(hn::BitCast(Words(), rest), hn::Set(Words(), 0xFF));
    hn::BlendedStore(hn::DemoteTo(Plane(), channel), hn::FirstN(Plane(), size_t(width - x)), Plane(),
                     dst + x);
    x = width;
#endif
    return x;
}

#if VX_CHANNEL_COPY_MASKS
// Stores under a mask leave the other channels' bytes alone; lesser targets would have to write them
// back, which may undo what another thread has put there.
template <int kSrcStep>
int64_t SpreadIntoFrame(uint8_t* dst, const uint8_t* src, int64_t width)
{
    const int64_t step = int64_t(hn::Lanes(Words()));
    const auto isChannel = hn::Ne(hn::BitCast(Bytes(), hn::Set(Words(), 0xFF)), hn::Zero(Bytes()));
    int64_t x = 0;
    for (; x + step < width; x += step) {
        if constexpr (kSrcStep == 4) {
            hn::BlendedStore(hn::LoadU(Bytes(), src + 4 * x), isChannel, Bytes(), dst + 4 * x);
        } else {
            const auto pixels = hn::PromoteTo(Words(), hn::LoadU(Plane(), src + x));
            hn::BlendedStore(hn::BitCast(Bytes(), pixels), isChannel, Bytes(), dst + 4 * x);
        }
    }
    const auto isRest = hn::And(isChannel, hn::FirstN(Bytes(), size_t(4 * (width - x) - 3)));
    if constexpr (kSrcStep == 4) {
        hn::BlendedStore(hn::MaskedLoad(isRest, Bytes(), src + 4 * x), isRest, Bytes(), dst + 4 * x);
    } else {
        const auto rest = hn::MaskedLoad(hn::FirstN(Plane(), size_t(width - x)), Plane(), src + x);
        hn::BlendedStore(hn::BitCast(Bytes(), hn::PromoteTo(Words(), rest)), isRest, Bytes(), dst + 4 * x);
    }
    return width;
}
#endif

int64_t CopyChannelBlocks(uint8_t* dst, const uint8_t* src, int64_t width, PixelSteps steps)
{
    if (steps.dst == 1 && steps.src == 4)
        return GatherPlane(dst, src, width);
#if VX_CHANNEL_COPY_MASKS
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
    if (IsEmpty(width, height))
        return true;
    const auto row = VX_VECTOR_FORM(CopyChannelRowVector, CopyChannelRow);
    for (int32_t y = 0; y < height; ++y)
        row(RowAt(dst, dstStride, y), RowAt(src, srcStride, y), width,
            PixelSteps{dstPixelStep, srcPixelStep});
    return true;
}

#endif // HWY_ONCE
