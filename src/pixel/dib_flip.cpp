// VxDibFlip: a bitmap mirrored in place.
#include "pixel/dib_layout.h"
#include "vx/pixel.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace vx {
namespace {

using FlipRowFn = void (*)(uint8_t* row, int32_t width);

template <int kPixelBytes>
void FlipRow(uint8_t* row, int32_t width)
{
    uint8_t* left = row;
    uint8_t* right = row + int64_t(width - 1) * kPixelBytes;
    for (; left < right; left += kPixelBytes, right -= kPixelBytes) {
        uint8_t pixel[kPixelBytes];
        std::memcpy(pixel, left, kPixelBytes);
        std::memcpy(left, right, kPixelBytes);
        std::memcpy(right, pixel, kPixelBytes);
    }
}

struct FlipWorker
{
    bool flipsRows;    // vertically
    FlipRowFn flipRow; // horizontally; null where the depth has none
};

constexpr FlipWorker kWorkers[] = {
    {true, nullptr},    // VXPIXEL_PAL4
    {true, nullptr},    // VXPIXEL_PAL8
    {true, nullptr},    // VXPIXEL_RGB555
    {true, nullptr},    // VXPIXEL_RGB565
    {true, FlipRow<3>}, // VXPIXEL_RGB24
    {true, FlipRow<4>}, // VXPIXEL_RGB32
    {true, FlipRow<4>}, // VXPIXEL_RGBA32
    {false, nullptr},   // VXPIXEL_RGB101010
    {true, nullptr},    // VXPIXEL_RGBA64
    {false, nullptr},   // VXPIXEL_RGBA128
};
static_assert(std::size(kWorkers) == VXPIXEL_RGBA128 - VXPIXEL_PAL4 + 1, "a worker for each type");

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
    const int32_t width = area.right - area.left, height = area.bottom - area.top;
    const FlipWorker& worker = kWorkers[type - VXPIXEL_PAL4];
    if (!worker.flipsRows)
        return E_NOTIMPL;
    const DibRows<uint8_t> rows = RowsOf(header, pixels, stride);
    if (!rows.pixels)
        return E_INVALIDARG;
    if (flipVertical)
        FlipVertically(rows, height);
    if (flipHorizontal && !worker.flipRow)
        return E_NOTIMPL;
    for (int32_t y = 0; flipHorizontal && y < height; ++y)
        worker.flipRow(rows.Row(y), width);
    return S_OK;
}
