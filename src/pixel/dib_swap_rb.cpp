// VxDibSwapRB: red and blue of every pixel exchanged in place.
#include "pixel/dib_layout.h"
#include "vx/pixel.h"

#include <cstring>
#include <iterator>

namespace vx {
namespace {

using SwapRowFn = void (*)(uint8_t* row, int32_t width);

// Channel is the type that carries a channel's bits; the first and the third change places.
template <class Channel, int kChannels>
void SwapRow(uint8_t* row, int32_t width)
{
    for (int32_t x = 0; x < width; ++x) {
        uint8_t* const pixel = row + int64_t(x) * int32_t(kChannels * sizeof(Channel));
        Channel blue, red;
        std::memcpy(&blue, pixel, sizeof(Channel));
        std::memcpy(&red, pixel + 2 * sizeof(Channel), sizeof(Channel));
        std::memcpy(pixel, &red, sizeof(Channel));
        std::memcpy(pixel + 2 * sizeof(Channel), &blue, sizeof(Channel));
    }
}

constexpr SwapRowFn kWorkers[] = {
    nullptr,              // VXPIXEL_PAL4
    nullptr,              // VXPIXEL_PAL8
    nullptr,              // VXPIXEL_RGB555
    nullptr,              // VXPIXEL_RGB565
    SwapRow<uint8_t, 3>,  // VXPIXEL_RGB24
    SwapRow<uint8_t, 4>,  // VXPIXEL_RGB32
    SwapRow<uint8_t, 4>,  // VXPIXEL_RGBA32
    nullptr,              // VXPIXEL_RGB101010
    nullptr,              // VXPIXEL_RGBA64
    SwapRow<uint32_t, 4>, // VXPIXEL_RGBA128
};
static_assert(std::size(kWorkers) == VXPIXEL_RGBA128 - VXPIXEL_PAL4 + 1, "a worker for each type");

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
    const SwapRowFn swapRow = kWorkers[type - VXPIXEL_PAL4];
    if (!swapRow)
        return E_NOTIMPL;
    const DibRows<uint8_t> rows = RowsOf(header, pixels, stride);
    if (!rows.pixels)
        return E_INVALIDARG;
    for (int32_t y = 0; y < area.bottom - area.top; ++y)
        swapRow(rows.Row(y), area.right - area.left);
    return S_OK;
}
