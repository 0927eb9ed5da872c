// The sub-pixel record: clipping a pair of rectangles and finding the ratios and steps between them.
#include "dib/fixed.h"
#include "pixel/dib_layout.h"
#include "vx/dib.h"
#include "vx/platform/memory.h"
#include "vx/scale.h"

#include <algorithm>
#include <limits>

namespace vx {
namespace {

constexpr int32_t kSixteenth = kSubpixelOne / 16;

// Sides far apart do not fit 32 bits.
int64_t Width(const RECT& r)
{
    return int64_t(r.right) - r.left;
}

int64_t Height(const RECT& r)
{
    return int64_t(r.bottom) - r.top;
}

bool IsAtLeast(const RECT& r, int32_t side)
{
    return Width(r) >= side && Height(r) >= side;
}

RECT Cut(const RECT& r, const RECT& to)
{
    return {std::max(r.left, to.left), std::max(r.top, to.top), std::min(r.right, to.right),
            std::min(r.bottom, to.bottom)};
}

// Beyond 131,071 pixels the size wraps, and a part of the frame is worked on.
RECT WholeFrame(const SIZE& size)
{
    return {0, 0, int32_t(uint32_t(size.cx) << kSubpixelBits), int32_t(uint32_t(size.cy) << kSubpixelBits)};
}

int32_t Saturated(int64_t value)
{
    return int32_t(std::min<int64_t>(value, std::numeric_limits<int32_t>::max()));
}

// A huge source in a speck of a destination may leave 32 bits: the average is then of a part.
int32_t Ratio(int64_t source, int64_t dest)
{
    return Saturated(source * kSubpixelOne / dest);
}

// As the ratio is truncated, the whole source would reach the destination's end or beyond: no part of
// the destination is without a source.
int32_t MapBack(int32_t coordinate, int32_t destOrigin, int32_t ratio, int32_t sourceOrigin)
{
    return int32_t(sourceOrigin + ((int64_t(coordinate) - destOrigin) * ratio >> kSubpixelBits));
}

// The last destination pixel of a run samples the last source pixel.
int32_t Step(int64_t source, int64_t dest)
{
    if (dest < 2 * kSubpixelOne)
        return 0;
    return int32_t((source - kSubpixelOne) * kSubpixelOne / (dest - kSubpixelOne));
}

// `smallest` is the least side of both destination rectangles. Steps may come out negative.
bool PrepareRects(VxSubpixelParam& p, const SIZE& destSize, const RECT* destRect, const SIZE& sourceSize,
                  const RECT* sourceRect, int32_t smallest)
{
    const RECT destFrame = WholeFrame(destSize), sourceFrame = WholeFrame(sourceSize);
    p.destRect = destRect ? *destRect : destFrame;
    p.sourceBounds = sourceRect ? Cut(*sourceRect, sourceFrame) : sourceFrame;
    if (!IsAtLeast(p.sourceBounds, kSubpixelOne) || !IsAtLeast(p.destRect, smallest))
        return false;
    p.ratioX = Ratio(Width(p.sourceBounds), Width(p.destRect));
    p.ratioY = Ratio(Height(p.sourceBounds), Height(p.destRect));
    p.destClip = Cut(p.destRect, destFrame);
    if (!IsAtLeast(p.destClip, smallest))
        return false;
    const RECT mapped{MapBack(p.destClip.left, p.destRect.left, p.ratioX, p.sourceBounds.left),
                      MapBack(p.destClip.top, p.destRect.top, p.ratioY, p.sourceBounds.top),
                      MapBack(p.destClip.right, p.destRect.left, p.ratioX, p.sourceBounds.left),
                      MapBack(p.destClip.bottom, p.destRect.top, p.ratioY, p.sourceBounds.top)};
    p.sourceClip = Cut(mapped, p.sourceBounds);
    p.stepX = Step(Width(p.sourceClip), Width(p.destClip));
    p.stepY = Step(Height(p.sourceClip), Height(p.destClip));
    return true;
}

bool HasExchange(int32_t type)
{
    return type >= VXPIXEL_PAL1 && type <= VXPIXEL_RGBA128;
}

bool HasPalette(int32_t type)
{
    return type == VXPIXEL_PAL4 || type == VXPIXEL_PAL8;
}

// Null where the header has no entries.
const RGBQUAD* PaletteOf(const BITMAPINFOHEADER* header)
{
    const BITMAPINFOHEADER h = ReadHeader(header);
    if (h.biCompression == BI_BITFIELDS || PixelOffset(h) == TableOffset(h))
        return nullptr;
    return reinterpret_cast<const RGBQUAD*>(reinterpret_cast<const uint8_t*>(header) + TableOffset(h));
}

SIZE SizeOf(const BITMAPINFOHEADER* header)
{
    const BITMAPINFOHEADER h = ReadHeader(header);
    return {h.biWidth, h.biHeight};
}

int32_t Negated(int32_t stride)
{
    return int32_t(0u - uint32_t(stride));
}

// The bottom row comes first in memory.
template <class Byte>
Byte* TopRow(const DibRows<Byte>& rows, const SIZE& size)
{
    return rows.Row(size.cy - 1);
}

} // namespace
} // namespace vx

int32_t VxPrepareSubpixelParam(VxSubpixelParam* param, void* dest, const SIZE* destSize, int32_t destStride,
                               const RECT* destRect, const void* source, const SIZE* sourceSize,
                               int32_t sourceStride, const RECT* sourceRect)
{
    VxSubpixelParam& p = *param;
    p = {};
    p.destPixels = dest;
    p.destStride = destStride;
    p.sourcePixels = source;
    p.sourceStride = sourceStride;
    if (!vx::PrepareRects(p, *destSize, destRect, *sourceSize, sourceRect, vx::kSixteenth))
        return 0;
    p.stepX = std::max(p.stepX, 0);
    p.stepY = std::max(p.stepY, 0);
    return 1;
}

int32_t DibPrepareSubpixelParam(VxSubpixelParam* param, const BITMAPINFOHEADER* destHeader, double destGamma,
                                void* destPixels, const RECT* destRect, int32_t destStride,
                                const BITMAPINFOHEADER* sourceHeader, double sourceGamma,
                                const void* sourcePixels, const RECT* sourceRect, int32_t sourceStride,
                                uint32_t flags)
{
    using namespace vx;
    VxSubpixelParam& p = *param;
    p = {};
    const int32_t destType = VxGetPixelType(destHeader);
    if (!HasExchange(destType) || !HasExchange(VxGetPixelType(sourceHeader)))
        return 0;
    const SIZE destSize = SizeOf(destHeader), sourceSize = SizeOf(sourceHeader);
    if (!PrepareRects(p, destSize, destRect, sourceSize, sourceRect, kSubpixelOne))
        return 0;
    // A bitmap's pixels that follow its header are as writable as the pixels passed.
    const DibRows<uint8_t> dest = RowsOf(const_cast<BITMAPINFOHEADER*>(destHeader), destPixels, destStride);
    const DibRows<const uint8_t> source = RowsOf(sourceHeader, sourcePixels, sourceStride);
    if (dest.pixels == nullptr || source.pixels == nullptr)
        return 0;
    p.destHeader = destHeader;
    p.destGamma = destGamma;
    p.destPixels = TopRow(dest, destSize);
    p.destStride = Negated(dest.stride);
    p.destPalette = PaletteOf(destHeader);
    p.sourceHeader = sourceHeader;
    p.sourceGamma = sourceGamma;
    p.sourcePixels = TopRow(source, sourceSize);
    p.sourceStride = Negated(source.stride);
    p.sourcePalette = PaletteOf(sourceHeader);
    p.flags = flags;
    return !HasPalette(destType) || VxDibCreateColorQuantizer(&p.quantizer, destHeader) == S_OK;
}

void DibCleanupSubpixelParam(VxSubpixelParam* param)
{
    if (param == nullptr || param->quantizer == nullptr)
        return;
    GlobalFree(GlobalHandle(param->quantizer));
    param->quantizer = nullptr;
}
