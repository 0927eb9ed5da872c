// VxDibSet and its kin: one colour into a rectangle.
#include "dib/copy_job.h"
#include "exchange/codec.h"
#include "kernel/row_copy.h"
#include "vx/dibcopy.h"

namespace vx {
namespace {

struct Colour
{
    float blue, green, red, alpha;
};

template <class Channel>
Pixel<Channel> WorkingPixel(const Colour& c)
{
    constexpr auto kOne = float(Channel(~Channel(0)));
    return {Channel(CutTo32(c.blue * kOne)), Channel(CutTo32(c.green * kOne)), Channel(CutTo32(c.red * kOne)),
            Channel(CutTo32(c.alpha * kOne))};
}

template <class Working>
void Repeat(RunBuffer& buffer, const Working& pixel, int32_t count)
{
    for (int32_t i = 0; i < count; ++i)
        std::memcpy(buffer.bytes + sizeof(pixel) * size_t(i), &pixel, sizeof(pixel));
}

void FillBuffer(RunBuffer& buffer, const Colour& colour, int32_t depth, int32_t count)
{
    if (depth == VXXCHG_DEPTH_8)
        Repeat(buffer, WorkingPixel<uint8_t>(colour), count);
    else if (depth == VXXCHG_DEPTH_16)
        Repeat(buffer, WorkingPixel<uint16_t>(colour), count);
    else
        Repeat(buffer, colour, count);
}

void FillRow(const PixelRows<uint8_t>& rows, int32_t y, const RunBuffer& run, const Exchange& exchange)
{
    for (int32_t x = 0; x < rows.width; x += kRunPixels)
        exchange.runs.write(rows.Row(y), rows.Bit(x), run.bytes, std::min(kRunPixels, rows.width - x),
                            exchange.record);
}

// Where pixels fill bytes, the first row is written and the others are copies of it.
void FillRows(const PixelRows<uint8_t>& rows, const Colour& colour, const Exchange& exchange)
{
    RunBuffer run;
    FillBuffer(run, colour, exchange.record.depth, std::min(kRunPixels, rows.width));
    const CopyRowFn copy = rows.bits >= 8 ? SelectCopyRow() : nullptr;
    FillRow(rows, 0, run, exchange);
    for (int32_t y = 1; y < rows.height; ++y) {
        if (copy)
            copy(rows.Bytes(y), rows.Bytes(0), rows.RowBytes());
        else
            FillRow(rows, y, run, exchange);
    }
}

} // namespace
} // namespace vx

HRESULT VxDibSet(const BITMAPINFOHEADER* header, void* pixels, const RECT* rect, int32_t stride, float red,
                 float green, float blue, float alpha, uint32_t flags)
{
    using namespace vx;
    const int32_t type = VxGetPixelType(header);
    if (!IsDibType(type))
        return E_NOTIMPL;
    const RECT wanted = PixelRect(header, rect, flags);
    const RECT area = WorkingArea(header, &wanted);
    if (IsRectEmpty(&area))
        return S_OK;
    GlobalBytes map;
    const HRESULT status = MakeColourMap(type, header, map);
    if (FAILED(status))
        return status;
    const DibRows<uint8_t> rows = WritableRowsOf(header, pixels, stride);
    if (!rows.pixels)
        return E_INVALIDARG;
    const Exchange exchange(type, type, flags & ~VXDIBF_SUBPIXEL, {1.0, 1.0}, map.get(), header);
    FillRows(PixelRows<uint8_t>(rows, header, area, type), {blue, green, red, alpha}, exchange);
    return S_OK;
}

HRESULT VxDibFillRect(const BITMAPINFOHEADER* header, void* pixels, const RECT* rect, int32_t stride,
                      const float* colour, uint32_t flags)
{
    return VxDibSet(header, pixels, rect, stride, colour[2], colour[1], colour[0], colour[3], flags);
}

HRESULT VxDibFillRectChannel(const BITMAPINFOHEADER*, void*, const RECT*, int32_t, const float*, uint32_t)
{
    return E_NOTIMPL;
}
