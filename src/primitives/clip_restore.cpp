// ClipRestore: colours over a limit drop back to the alpha.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/clip_restore.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#ifndef VX_CLIP_RESTORE_PLAIN
#define VX_CLIP_RESTORE_PLAIN

#include "kernel/vector_targets.h"
#include "primitives/rows.h"
#include "vx/channels.h"

#include <cstring>
#include <limits>

namespace vx {
namespace {

struct ClipBounds
{
    float limit;
    float floor;
};

void ClipRestoreRow(uint8_t* row, int64_t width, ClipBounds bounds)
{
    for (; width > 0; --width, row += 16) {
        float pixel[4];
        std::memcpy(pixel, row, sizeof(pixel));
        const float restored = bounds.floor > pixel[3] ? bounds.floor : pixel[3];
        for (int c = 0; c < 3; ++c)
            pixel[c] = pixel[c] > bounds.limit ? restored : pixel[c];
        std::memcpy(row, pixel, 12);
    }
}

} // namespace
} // namespace vx

#endif // VX_CLIP_RESTORE_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

void ClipRestoreRowVector(uint8_t* row, int64_t width, ClipBounds bounds)
{
    const hn::ScalableTag<uint8_t> bytes;
    const hn::Repartition<float, decltype(bytes)> lanes;
    const int64_t step = int64_t(hn::Lanes(lanes)) / 4;
    // Nothing is above infinity: alpha, the fourth lane of a pixel, always stays.
    const float limits[4] = {bounds.limit, bounds.limit, bounds.limit,
                             std::numeric_limits<float>::infinity()};
    const auto limit = hn::LoadDup128(lanes, limits);
    const auto floor = hn::Set(lanes, bounds.floor);
    for (; width >= step; width -= step, row += 16 * step) {
        const auto pixels = hn::BitCast(lanes, hn::LoadU(bytes, row));
        const auto alpha = hn::Broadcast<3>(pixels);
        const auto restored = hn::IfThenElse(hn::Gt(floor, alpha), floor, alpha);
        const auto result = hn::IfThenElse(hn::Gt(pixels, limit), restored, pixels);
        hn::StoreU(hn::BitCast(bytes, result), bytes, row);
    }
    ClipRestoreRow(row, width, bounds);
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
HWY_EXPORT(ClipRestoreRowVector);
} // namespace vx

bool ClipRestore(void* buffer, int32_t stride, int32_t width, int32_t height, double limit, double floor)
{
    using namespace vx;
    const ClipBounds bounds{float(limit * 255.0), float(floor * 255.0)};
    const auto row = VX_VECTOR_FORM(ClipRestoreRowVector, ClipRestoreRow);
    for (int32_t y = 0; y < height; ++y)
        row(RowAt(buffer, stride, y), width, bounds);
    return true;
}

#endif // HWY_ONCE
