#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/row_copy.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#ifndef VX_ROW_COPY_PLAIN
#define VX_ROW_COPY_PLAIN

#include "kernel/row_copy.h"
#include "kernel/vector_targets.h"

#include <cstring>

namespace vx {
namespace {

void CopyRow(uint8_t* dst, const uint8_t* src, int64_t bytes)
{
    std::memmove(dst, src, size_t(bytes)); // a row may be copied onto itself
}

} // namespace
} // namespace vx

#endif // VX_ROW_COPY_PLAIN

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

CopyRowFn SelectCopyRow()
{
    return VX_VECTOR_FORM(CopyRowVector, CopyRow);
}

} // namespace vx

#endif // HWY_ONCE
