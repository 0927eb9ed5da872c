// BitmapCopy: rows of bytes from one buffer into another.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/bitmap_copy.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#ifndef VX_BITMAP_COPY_PLAIN
#define VX_BITMAP_COPY_PLAIN

#include "kernel/vector_targets.h"
#include "primitives/rows.h"
#include "vx/channels.h"

#include <cstring>

namespace vx {
namespace {

void CopyRow(uint8_t* dst, const uint8_t* src, int64_t bytes)
{
    std::memmove(dst, src, size_t(bytes)); // a row may be copied onto itself
}

} // namespace
} // namespace vx

#endif // VX_BITMAP_COPY_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// Rows of pictures have the length where the C library changes to string instructions, whose start
// costs as much as half a row.
void CopyRowVector(uint8_t* dst, const uint8_t* src, int64_t bytes)
{
    const hn::ScalableTag<uint8_t> lanes;
    const int64_t step = int64_t(hn::Lanes(lanes));
    int64_t i = 0;
    for (; i + 2 * step <= bytes; i += 2 * step) {
        const auto first = hn::LoadU(lanes, src + i);
        const auto second = hn::LoadU(lanes, src + i + step);
        hn::StoreU(first, lanes, dst + i);
        hn::StoreU(second, lanes, dst + i + step);
    }
    CopyRow(dst + i, src + i, bytes - i);
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
HWY_EXPORT(CopyRowVector);
} // namespace vx

bool BitmapCopy(void* dst, int32_t dstStride, const void* src, int32_t srcStride, int32_t width,
                int32_t bytesPerPixel, int32_t height)
{
    using namespace vx;
    const int32_t rowBytes = int32_t(uint32_t(width) * uint32_t(bytesPerPixel));
    if (width <= 0 || rowBytes <= 0)
        return true;
    const auto row = VX_VECTOR_FORM(CopyRowVector, CopyRow);
    for (int32_t y = 0; y < height; ++y)
        row(RowAt(dst, dstStride, y), RowAt(src, srcStride, y), rowBytes);
    return true;
}

#endif // HWY_ONCE
