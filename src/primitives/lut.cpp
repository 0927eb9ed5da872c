// Lut and LutWithAlphaClamp: each byte of a frame through its channel's own table.
#define HWY_WANT_AVX3_DL // for its permutations of bytes
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/lut.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#include "primitives/byte_tables-inl.h"

#ifndef VX_LUT_PLAIN
#define VX_LUT_PLAIN

#include "kernel/vector_targets.h"
#include "primitives/rows.h"
#include "vx/channels.h"

#include <algorithm>

namespace vx {
namespace {

template <bool kClampToAlpha>
HWY_NOINLINE void LutRow(uint8_t* row, int64_t width, const ByteTables& tables)
{
    for (; width > 0; --width, row += 4) {
        const uint8_t alpha = tables.column[3][row[3]];
        for (int c = 0; c < 3; ++c) {
            const uint8_t value = tables.column[c][row[c]];
            row[c] = kClampToAlpha ? std::min(value, alpha) : value;
        }
        row[3] = alpha;
    }
}

} // namespace
} // namespace vx

#endif // VX_LUT_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

template <bool kClampToAlpha>
void LutRowVector(uint8_t* row, int64_t width, const ByteTables& tables)
{
#if VX_VECTOR_BYTE_TABLES
    const int64_t step = int64_t(hn::Lanes(TableBytes()));
    const ColumnLookUps lookUps(tables);
    for (; width >= step; width -= step, row += 4 * step) {
        PixelPlanes pixels = LoadPlanes(row);
        for (int c = 3; c >= 0; --c) {
            pixels.channel[c] = lookUps.column[c](pixels.channel[c]);
            if (kClampToAlpha)
                pixels.channel[c] = hn::Min(pixels.channel[c], pixels.channel[3]);
        }
        StorePlanes(pixels, row);
    }
#endif
    LutRow<kClampToAlpha>(row, width, tables);
}

void PlainLutRowVector(uint8_t* row, int64_t width, const ByteTables& tables)
{
    LutRowVector<false>(row, width, tables);
}

void ClampedLutRowVector(uint8_t* row, int64_t width, const ByteTables& tables)
{
    LutRowVector<true>(row, width, tables);
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
namespace {

HWY_EXPORT(PlainLutRowVector);
HWY_EXPORT(ClampedLutRowVector);

template <class RowFn>
void LutRows(void* buffer, int32_t stride, int32_t width, int32_t height, const uint8_t* table, RowFn row)
{
    if (IsEmpty(width, height))
        return; // without a look at the table
    const ByteTables tables(table);
    for (int32_t y = 0; y < height; ++y)
        row(RowAt(buffer, stride, y), width, tables);
}

} // namespace
} // namespace vx

bool Lut(void* buffer, int32_t stride, int32_t width, int32_t height, const uint8_t* table)
{
    using namespace vx;
    LutRows(buffer, stride, width, height, table, VX_VECTOR_FORM(PlainLutRowVector, LutRow<false>));
    return true;
}

bool LutWithAlphaClamp(void* buffer, int32_t stride, int32_t width, int32_t height, const uint8_t* table)
{
    using namespace vx;
    LutRows(buffer, stride, width, height, table, VX_VECTOR_FORM(ClampedLutRowVector, LutRow<true>));
    return true;
}

#endif // HWY_ONCE
