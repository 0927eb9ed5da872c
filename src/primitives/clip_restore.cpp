// ClipRestore: colours over a limit drop back to the alpha.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/clip_restore.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#include "primitives/row_loops-inl.h"

#ifndef VX_CLIP_RESTORE_PLAIN
#define VX_CLIP_RESTORE_PLAIN

#include "kernel/vector_targets.h"
#include "primitives/rows.h"
#include "vx/channels.h"

#include <limits>

namespace vx {
namespace {

struct ClipBounds
{
    float limit;
    float floor;
};

HWY_NOINLINE void ClipRestoreRow(uint8_t* row, int32_t width, ClipBounds bounds)
{
    for (int32_t x = 0; x < width; ++x, row += 16) {
        const float alpha = LoadElement<float>(row + 12);
        const float restored = EitherFloat(bounds.floor > alpha, bounds.floor, alpha);
        for (int c = 0; c < 3; ++c)
            if (LoadElement<float>(row + 4 * c) > bounds.limit)
                StoreElement(row + 4 * c, restored);
    }
}

} // namespace
} // namespace vx

#endif // VX_CLIP_RESTORE_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

void ClipRestoreRowVector(uint8_t* row, int32_t width, ClipBounds bounds)
{
    const hn::ScalableTag<float> floats;
    // Nothing is above infinity: alpha, the fourth lane of a pixel, always stays.
    const float limits[4] = {bounds.limit, bounds.limit, bounds.limit,
                             std::numeric_limits<float>::infinity()};
    const auto limit = hn::LoadDup128(floats, limits);
    const auto floor = hn::Set(floats, bounds.floor);
    const auto restore = [=](auto pixels) VX_LANES {
        const auto alpha = hn::Broadcast<3>(pixels);
        const auto restored = EitherFloats(hn::Gt(floor, alpha), floor, alpha);
        return hn::IfThenElse(hn::Gt(pixels, limit), restored, pixels);
    };
    const int64_t done = ReplaceVectors(floats, row, 16 * int64_t(width), restore);
    ClipRestoreRow(row + done, width - int32_t(done / 16), bounds);
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
    if (IsEmpty(width, height))
        return true;
    const ClipBounds bounds{float(limit * 255.0), float(floor * 255.0)};
    const auto row = VX_VECTOR_FORM(ClipRestoreRowVector, ClipRestoreRow);
    for (int32_t y = 0; y < height; ++y)
        row(RowAt(buffer, stride, y), width, bounds);
    return true;
}

#endif // HWY_ONCE
