// Fill: every pixel of a frame set to one colour.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/fill.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#ifndef VX_FILL_PLAIN
#define VX_FILL_PLAIN

#include "kernel/vector_targets.h"
#include "primitives/rows.h"
#include "primitives/unit_byte.h"
#include "vx/channels.h"

#include <cstring>

namespace vx {
namespace {

// One float pixel, or the same 8-bit pixel four times.
struct Pattern
{
    alignas(16) uint8_t bytes[16];
};

Pattern BytePattern(uint8_t blue, uint8_t green, uint8_t red, uint8_t alpha)
{
    return {
        {blue, green, red, alpha, blue, green, red, alpha, blue, green, red, alpha, blue, green, red, alpha}};
}

Pattern FloatPattern(float blue, float green, float red, float alpha)
{
    const float pixel[4] = {blue, green, red, alpha};
    return LoadElement<Pattern>(pixel);
}

HWY_NOINLINE void FillRow(uint8_t* row, int64_t bytes, const Pattern& pattern)
{
    for (; bytes >= 16; bytes -= 16, row += 16)
        std::memcpy(row, pattern.bytes, 16);
    std::memcpy(row, pattern.bytes, size_t(bytes));
}

} // namespace
} // namespace vx

#endif // VX_FILL_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// The last vector overlaps the one before it: rows are whole pixels, and so is the distance.
void FillRowVector(uint8_t* row, int64_t bytes, const Pattern& pattern)
{
    const hn::ScalableTag<uint8_t> lanes;
    const int64_t step = int64_t(hn::Lanes(lanes));
    if (bytes < step) {
        FillRow(row, bytes, pattern);
        return;
    }
    const auto pixels = hn::LoadDup128(lanes, pattern.bytes);
    int64_t i = 0;
    for (; i + 2 * step <= bytes; i += 2 * step) {
        hn::StoreU(pixels, lanes, row + i);
        hn::StoreU(pixels, lanes, row + i + step);
    }
    if (i + step <= bytes)
        hn::StoreU(pixels, lanes, row + i);
    hn::StoreU(pixels, lanes, row + bytes - step);
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
HWY_EXPORT(FillRowVector);
} // namespace vx

bool Fill(void* buffer, int32_t stride, int32_t bytesPerPixel, int32_t width, int32_t height, float alpha,
          float red, float green, float blue)
{
    using namespace vx;
    if ((bytesPerPixel != 4 && bytesPerPixel != 16) || IsEmpty(width, height))
        return true;
    const Pattern pattern = bytesPerPixel == 4
                                ? BytePattern(UnitByte(blue), UnitByte(green), UnitByte(red), UnitByte(alpha))
                                : FloatPattern(blue, green, red, alpha);
    const auto row = VX_VECTOR_FORM(FillRowVector, FillRow);
    for (int32_t y = 0; y < height; ++y)
        row(RowAt(buffer, stride, y), int64_t(width) * bytesPerPixel, pattern);
    return true;
}

#endif // HWY_ONCE
