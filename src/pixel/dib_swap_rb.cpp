// VxDibSwapRB: red and blue of every pixel exchanged in place.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pixel/dib_swap_rb.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#ifndef VX_DIB_SWAP_RB_PLAIN
#define VX_DIB_SWAP_RB_PLAIN

#include "kernel/vector_targets.h"
#include "pixel/dib_layout.h"
#include "vx/pixel.h"

#include <bit>
#include <cstring>
#include <utility>

namespace vx {
namespace {

using SwapRowFn = void (*)(uint8_t* row, int32_t width);

void SwapRow24(uint8_t* row, int32_t width)
{
    for (int64_t at = 0; at < int64_t(width) * 3; at += 3)
        std::swap(row[at], row[at + 2]);
}

// A rotation by half a word takes the odd bytes to their own kind: 0 to 2 and 2 to 0.
void SwapRow32(uint8_t* row, int32_t width)
{
    for (int64_t at = 0; at < int64_t(width) * 4; at += 4) {
        uint32_t pixel;
        std::memcpy(&pixel, row + at, sizeof(pixel));
        pixel = (pixel & 0xFF00FF00u) | (std::rotl(pixel, 16) & 0x00FF00FFu);
        std::memcpy(row + at, &pixel, sizeof(pixel));
    }
}

// As bits: a float register might quiet a NaN.
void SwapRow128(uint8_t* row, int32_t width)
{
    for (int64_t at = 0; at < int64_t(width) * 16; at += 16) {
        uint32_t pixel[4];
        std::memcpy(pixel, row + at, sizeof(pixel));
        std::swap(pixel[0], pixel[2]);
        std::memcpy(row + at, pixel, sizeof(pixel));
    }
}

} // namespace
} // namespace vx

#endif // VX_DIB_SWAP_RB_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// Five pixels at a time: 15 of a vector's bytes, the 16th is stored as it was read. The next vector
// is read before this one is stored, as a read that overlaps a store which is not done yet would wait
// for it.
void SwapRow24Vector(uint8_t* row, int32_t width)
{
    constexpr int kStep = 15, kBytes = 16;
    HWY_ALIGN static constexpr uint8_t kOrder[kBytes] = {2, 1,  0,  5, 4,  3,  8,  7,
                                                         6, 11, 10, 9, 14, 13, 12, 15};
    const hn::Full128<uint8_t> bytes;
    const auto order = hn::Load(bytes, kOrder);
    const int64_t rowBytes = int64_t(width) * 3;
    int64_t at = 0;
    if (rowBytes >= kStep + kBytes) {
        auto pixels = hn::LoadU(bytes, row);
        for (; at + kStep + kBytes <= rowBytes; at += kStep) {
            const auto next = hn::LoadU(bytes, row + at + kStep);
            hn::StoreU(hn::TableLookupBytes(pixels, order), bytes, row + at);
            pixels = next;
        }
    }
    SwapRow24(row + at, int32_t((rowBytes - at) / 3));
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
HWY_EXPORT(SwapRow24Vector);

namespace {

// Null for a type that has no red and blue to exchange.
SwapRowFn SelectSwapRow(int32_t type)
{
    switch (type) {
    case VXPIXEL_RGB24:
        return VX_VECTOR_FORM(SwapRow24Vector, SwapRow24);
    case VXPIXEL_RGB32:
    case VXPIXEL_RGBA32:
        return SwapRow32;
    case VXPIXEL_RGBA128:
        return SwapRow128;
    default:
        return nullptr;
    }
}

} // namespace
} // namespace vx

HRESULT VxDibSwapRB(BITMAPINFOHEADER* header, void* pixels, const RECT* rect, int32_t stride)
{
    using namespace vx;
    const int32_t type = VxGetPixelType(header);
    if (type < VXPIXEL_PAL4 || type > VXPIXEL_RGBA128)
        return E_NOTIMPL;
    const RECT area = WorkingArea(header, rect);
    if (IsRectEmpty(&area))
        return S_OK;
    const SwapRowFn swapRow = SelectSwapRow(type);
    if (!swapRow)
        return E_NOTIMPL;
    const DibRows<uint8_t> rows = RowsOf(header, pixels, stride);
    if (!rows.pixels)
        return E_INVALIDARG;
    for (int32_t y = 0; y < area.bottom - area.top; ++y)
        swapRow(rows.Row(y), area.right - area.left);
    return S_OK;
}

#endif // HWY_ONCE
