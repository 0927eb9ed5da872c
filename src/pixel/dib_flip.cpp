// VxDibFlip: a bitmap mirrored in place.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "pixel/dib_flip.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#ifndef VX_DIB_FLIP_PLAIN
#define VX_DIB_FLIP_PLAIN

#include "kernel/vector_targets.h"
#include "pixel/dib_layout.h"
#include "vx/pixel.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace vx {
namespace {

using FlipRowFn = void (*)(uint8_t* row, int32_t width);

template <int kPixelBytes>
void FlipRow(uint8_t* row, int32_t width)
{
    uint8_t* right = row + int64_t(width) * kPixelBytes;
    for (int32_t x = 0; x < width / 2; ++x) {
        uint8_t* const left = row + int64_t(x) * kPixelBytes;
        right -= kPixelBytes;
        uint8_t pixel[kPixelBytes];
        std::memcpy(pixel, left, kPixelBytes);
        std::memcpy(left, right, kPixelBytes);
        std::memcpy(right, pixel, kPixelBytes);
    }
}

// By chunks that stay in the first-level cache, so that a row of any length needs no heap.
void ExchangeRows(uint8_t* a, uint8_t* b, int64_t bytes)
{
    uint8_t chunk[4096];
    for (int64_t done = 0; done < bytes; done += int64_t(sizeof(chunk))) {
        const size_t size = size_t(std::min<int64_t>(bytes - done, sizeof(chunk)));
        std::memcpy(chunk, a + done, size);
        std::memcpy(a + done, b + done, size);
        std::memcpy(b + done, chunk, size);
    }
}

void FlipVertically(const DibRows<uint8_t>& rows, int32_t height)
{
    for (int32_t y = 0; y < height / 2; ++y)
        ExchangeRows(rows.Row(y), rows.Row(height - 1 - y), std::abs(int64_t(rows.stride)));
}

} // namespace
} // namespace vx

#endif // VX_DIB_FLIP_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// Five pixels of 3 bytes from each end at a time: 15 of a vector's bytes, the 16th is stored as it
// was read. The next vectors are read before these are stored, as a read that overlaps a store which
// is not done yet would wait for it.
void FlipRow3Vector(uint8_t* row, int32_t width)
{
    constexpr int kStep = 15, kBytes = 16;
    constexpr int64_t kLeast = kStep + 2 * kBytes; // a next vector stays clear of the other end's store
    HWY_ALIGN static constexpr uint8_t kToRight[kBytes] = {0, 12, 13, 14, 9, 10, 11, 6,
                                                           7, 8,  3,  4,  5, 0,  1,  2};
    HWY_ALIGN static constexpr uint8_t kToLeft[kBytes] = {13, 14, 15, 10, 11, 12, 7, 8,
                                                          9,  4,  5,  6,  1,  2,  3, 0};
    const hn::Full128<uint8_t> bytes;
    const auto toRight = hn::Load(bytes, kToRight), toLeft = hn::Load(bytes, kToLeft);
    const auto lanes = hn::Iota(bytes, 0);
    const auto firstLane = hn::Eq(lanes, hn::Zero(bytes)), lastLane = hn::Eq(lanes, hn::Set(bytes, kStep));
    uint8_t* left = row;
    uint8_t* right = row + int64_t(width) * 3; // behind the last pixel to exchange
    if (right - left >= kLeast) {
        auto l = hn::LoadU(bytes, left), r = hn::LoadU(bytes, right - kBytes);
        for (; right - left >= kLeast; left += kStep, right -= kStep) {
            const auto nextLeft = hn::LoadU(bytes, left + kStep);
            const auto nextRight = hn::LoadU(bytes, right - kStep - kBytes);
            hn::StoreU(hn::IfThenElse(lastLane, l, hn::TableLookupBytes(r, toLeft)), bytes, left);
            hn::StoreU(hn::IfThenElse(firstLane, r, hn::TableLookupBytes(l, toRight)), bytes, right - kBytes);
            l = nextLeft;
            r = nextRight;
        }
    }
    FlipRow<3>(left, int32_t((right - left) / 3));
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
HWY_EXPORT(FlipRow3Vector);

namespace {

// How a type can be mirrored: not at all, by rows, or by pixels too.
enum class Flip : uint8_t
{
    None,
    Rows,
    Pixels3,
    Pixels4
};

constexpr Flip kFlips[] = {
    Flip::Rows,    // VXPIXEL_PAL4
    Flip::Rows,    // VXPIXEL_PAL8
    Flip::Rows,    // VXPIXEL_RGB555
    Flip::Rows,    // VXPIXEL_RGB565
    Flip::Pixels3, // VXPIXEL_RGB24
    Flip::Pixels4, // VXPIXEL_RGB32
    Flip::Pixels4, // VXPIXEL_RGBA32
    Flip::None,    // VXPIXEL_RGB101010
    Flip::Rows,    // VXPIXEL_RGBA64
    Flip::None,    // VXPIXEL_RGBA128
};
static_assert(std::size(kFlips) == VXPIXEL_RGBA128 - VXPIXEL_PAL4 + 1, "an entry for each type");

HRESULT FlipHorizontally(const DibRows<uint8_t>& rows, int32_t width, int32_t height, Flip flip)
{
    if (flip != Flip::Pixels3 && flip != Flip::Pixels4)
        return E_NOTIMPL;
    const FlipRowFn flipRow = flip == Flip::Pixels4 ? FlipRow<4> : VX_VECTOR_FORM(FlipRow3Vector, FlipRow<3>);
    for (int32_t y = 0; y < height; ++y)
        flipRow(rows.Row(y), width);
    return S_OK;
}

} // namespace
} // namespace vx

HRESULT VxDibFlip(BITMAPINFOHEADER* header, void* pixels, const RECT* rect, int32_t stride,
                  int32_t flipHorizontal, int32_t flipVertical)
{
    using namespace vx;
    const int32_t type = VxGetPixelType(header);
    if (type < VXPIXEL_PAL4 || type > VXPIXEL_RGBA128)
        return E_NOTIMPL;
    const RECT area = WorkingArea(header, rect);
    if (IsRectEmpty(&area))
        return S_OK;
    const Flip flip = kFlips[type - VXPIXEL_PAL4];
    if (flip == Flip::None)
        return E_NOTIMPL;
    const DibRows<uint8_t> rows = RowsOf(header, pixels, stride);
    if (!rows.pixels)
        return E_INVALIDARG;
    const int32_t width = area.right - area.left, height = area.bottom - area.top;
    if (flipVertical)
        FlipVertically(rows, height);
    return flipHorizontal ? FlipHorizontally(rows, width, height, flip) : S_OK;
}

#endif // HWY_ONCE
