// VxDibCopy: the call. It finds the road that a copy takes; copy_job.h names the pumps.
#include "dib/copy_job.h"
#include "vx/dibcopy.h"
#include "vx/scale.h"

namespace vx {
namespace {

constexpr uint32_t kFeatherFlags =
    VXDIBF_FEATHER_LASTROWS | VXDIBF_FEATHER_FIRSTROWS | VXDIBF_FEATHER_LEFT | VXDIBF_FEATHER_RIGHT;

constexpr bool IsBytes32(int32_t type)
{
    return type == VXPIXEL_RGB32 || type == VXPIXEL_RGBA32;
}

// Pairs that the scaling functions know.
bool IsScalable(const CopyCall& call)
{
    return (IsBytes32(call.destType) && IsBytes32(call.sourceType)) ||
           (call.destType == VXPIXEL_RGBA128 && call.sourceType == VXPIXEL_RGBA128);
}

bool HasFraction(const RECT* r)
{
    return r && SubpixelFraction(r->left | r->top | r->right | r->bottom) != 0;
}

// A bitmap as the scaling functions take it: from the top row down.
template <class Byte>
struct TopDown
{
    Byte* top = nullptr;
    int32_t stride = 0;
    SIZE size;

    TopDown(const DibRows<Byte>& rows, const BITMAPINFOHEADER* header)
    {
        const BITMAPINFOHEADER h = ReadHeader(header);
        size = {h.biWidth, h.biHeight};
        if (h.biWidth <= 0 || h.biHeight <= 0)
            return;
        top = rows.Row(h.biHeight - 1);
        stride = int32_t(0u - uint32_t(rows.stride));
    }
};

using ScaleFn = decltype(&VxDibScale_Bilinear);

ScaleFn ChooseScale(uint32_t flags, bool subpixel)
{
    if (flags & VXDIBF_BICUBIC)
        return subpixel ? VxDibScale_BiCubicSubPixel : VxDibScale_BiCubic;
    return subpixel ? VxDibScale_BilinearSubPixel : VxDibScale_Bilinear;
}

HRESULT Scale(const CopyCall& call, const RECT* destRect, const RECT* sourceRect, bool subpixel)
{
    const DibRows<uint8_t> destRows = WritableRowsOf(call.destHeader, call.destPixels, call.destStride);
    const DibRows<const uint8_t> sourceRows = RowsOf(call.sourceHeader, call.sourcePixels, call.sourceStride);
    if (!destRows.pixels || !sourceRows.pixels)
        return E_INVALIDARG;
    const TopDown dest(destRows, call.destHeader);
    const TopDown source(sourceRows, call.sourceHeader);
    if (!dest.top || !source.top)
        return S_OK;
    return ChooseScale(call.flags,
                       subpixel)(dest.top, &dest.size, dest.stride, destRect, source.top, &source.size,
                                 source.stride, sourceRect, PixelTypeInfoOf(call.destType).bits / 8,
                                 (call.flags & VXDIBF_AREA) != 0, (call.flags & VXDIBF_NOEDGEBLEND) != 0);
}

HRESULT CopyBetweenPixels(const CopyCall& call, const RECT* destRect, const RECT* sourceRect)
{
    if (IsScalable(call))
        return Scale(call, destRect, sourceRect, true);
    CopySubpixel(call, destRect, sourceRect);
    return S_OK;
}

HRESULT Pump(const CopyCall& call, const RECT& destRect, const RECT& sourceRect)
{
    RECT dest, source, clip;
    VxDibPrepareRects(call.destHeader, &dest, &destRect, call.sourceHeader, &source, &sourceRect, &clip);
    if (IsRectEmpty(&dest) || IsRectEmpty(&source))
        return VX_E_UNSUPPORTED_MEDIA;
    const DibRows<uint8_t> destRows = WritableRowsOf(call.destHeader, call.destPixels, call.destStride);
    const DibRows<const uint8_t> sourceRows = RowsOf(call.sourceHeader, call.sourcePixels, call.sourceStride);
    if (!destRows.pixels || !sourceRows.pixels)
        return E_INVALIDARG;
    GlobalBytes map;
    const HRESULT status = MakeColourMap(call.destType, call.destHeader, map);
    if (FAILED(status))
        return status;
    const CopyJob job(call, destRows, dest, sourceRows, source, clip);
    if (call.flags & kFeatherFlags) {
        CopySoft(job, call, map.get());
        return S_OK;
    }
    Exchange exchange(call.destType, call.sourceType, call.flags, call.gammas, map.get(), call.sourceHeader);
    CopyPlain(job, exchange);
    return S_OK;
}

bool SizesDiffer(const RECT& a, const RECT& b)
{
    return WidthOf(a) != WidthOf(b) || HeightOf(a) != HeightOf(b);
}

HRESULT CopyWholePixels(const CopyCall& call, const RECT& destRect, const RECT& sourceRect)
{
    if (call.IsFine() && IsScalable(call) && SizesDiffer(destRect, sourceRect))
        return Scale(call, &destRect, &sourceRect, false);
    return Pump(call, destRect, sourceRect);
}

} // namespace
} // namespace vx

HRESULT VxDibCopy(const BITMAPINFOHEADER* destHeader, void* destPixels, const RECT* destRect,
                  int32_t destStride, const BITMAPINFOHEADER* sourceHeader, const void* sourcePixels,
                  const RECT* sourceRect, int32_t sourceStride, uint32_t flags, double destGamma,
                  double sourceGamma)
{
    using namespace vx;
    const CopyCall call{destHeader,
                        sourceHeader,
                        destPixels,
                        sourcePixels,
                        destStride,
                        sourceStride,
                        VxGetPixelType(destHeader),
                        VxGetPixelType(sourceHeader),
                        flags,
                        {destGamma, sourceGamma}};
    const bool betweenPixels =
        (flags & VXDIBF_SUBPIXEL) && call.IsFine() && (HasFraction(destRect) || HasFraction(sourceRect));
    if (!IsDibType(call.destType) || !IsDibType(call.sourceType))
        return betweenPixels ? S_OK : VX_E_UNSUPPORTED_MEDIA;
    if (betweenPixels)
        return CopyBetweenPixels(call, destRect, sourceRect);
    return CopyWholePixels(call, PixelRect(destHeader, destRect, flags),
                           PixelRect(sourceHeader, sourceRect, flags));
}
