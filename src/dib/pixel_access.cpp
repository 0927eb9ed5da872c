// VxDibGetPixel, VxDibSetPixel: one pixel through an exchange of its type with itself.
#include "dib/colour_table.h"
#include "vx/dib.h"
#include "vx/xchg.h"

#include <cstring>

namespace vx {
namespace {

constexpr uint32_t kExact16 = 3 | VXXCHGF_DEPTH16;

bool IsExchangeable(int32_t type)
{
    return type >= VXPIXEL_PAL1 && type <= VXPIXEL_RGBA128;
}

bool IsInside(const BITMAPINFOHEADER& header, int32_t x, int32_t y)
{
    return x >= 0 && x < header.biWidth && y >= 0 && y < header.biHeight;
}

// Where a pixel stands: its byte, and its bit there.
template <class Byte>
struct PixelPlace
{
    Byte* byte;
    uint32_t bit;

    PixelPlace(const DibRows<Byte>& rows, const BITMAPINFOHEADER& header, int32_t type, int32_t x, int32_t y)
    {
        const int64_t bits = int64_t(x) * PixelTypeInfoOf(type).bits;
        byte = rows.Row(header.biHeight - y - 1) + bits / 8;
        bit = uint32_t(bits % 8);
    }
};

} // namespace
} // namespace vx

HRESULT VxDibGetPixel(const BITMAPINFOHEADER* header, const void* pixels, int32_t stride, int32_t x,
                      int32_t y, uint64_t* outPixel)
{
    using namespace vx;
    const int32_t type = VxGetPixelType(header);
    const BITMAPINFOHEADER h = ReadHeader(header);
    if (!IsExchangeable(type) || !IsInside(h, x, y))
        return E_NOTIMPL;
    const DibRows<const uint8_t> rows = RowsOf(header, pixels, stride);
    if (!rows.pixels)
        return E_INVALIDARG;
    const PixelPlace place(rows, h, type, x, y);
    const ColourTable table(header);
    tVXXCHG exchange;
    VxXCHGGetFunctionPointers(type, type, kExact16, &exchange, nullptr, 1.0, 1.0);
    exchange.sourcePalette = table.entries;
    exchange.source = place.byte;
    exchange.sourceBit = place.bit;
    exchange.readPixel(&exchange);
    *outPixel = exchange.slots[0];
    return S_OK;
}

HRESULT VxDibSetPixel(const BITMAPINFOHEADER* header, void* pixels, int32_t stride, int32_t x, int32_t y,
                      const uint64_t* inPixel)
{
    using namespace vx;
    const int32_t type = VxGetPixelType(header);
    const BITMAPINFOHEADER h = ReadHeader(header);
    if (!IsExchangeable(type))
        return E_NOTIMPL;
    // Null pixels are those behind the header, which are the caller's to write.
    const DibRows<uint8_t> rows = RowsOf(const_cast<BITMAPINFOHEADER*>(header), pixels, stride);
    if (!IsInside(h, x, y) || !rows.pixels)
        return E_INVALIDARG;
    GlobalBytes map;
    if (type == VXPIXEL_PAL4 || type == VXPIXEL_PAL8) {
        uint8_t* made;
        const HRESULT status = VxDibCreateColorQuantizer(&made, header);
        if (FAILED(status))
            return status;
        map.reset(made);
    }
    const PixelPlace place(rows, h, type, x, y);
    tVXXCHG exchange;
    VxXCHGGetFunctionPointers(type, type, kExact16, &exchange, nullptr, 1.0, 1.0);
    exchange.inverseMap = map.get();
    exchange.dest = place.byte;
    exchange.destBit = place.bit;
    exchange.slots[0] = *inPixel;
    exchange.writePixel(&exchange);
    return S_OK;
}
