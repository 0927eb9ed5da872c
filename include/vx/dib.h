/* What the operations on bitmaps share, single pixels, and colour tables.
 *
 * Rectangles count from the top left of the picture, whatever the order of rows in memory; right and
 * bottom are exclusive, and null is the whole bitmap. With VXDIBF_SUBPIXEL coordinates are in 1/16384
 * of a pixel. Headers, pixels and strides are as in vx/pixel.h: null pixels follow the header, a
 * stride of 0 is the padded row.
 *
 * Nothing here has state: any thread may call, as long as no two write the same bitmap. */
#ifndef VX_DIB_H
#define VX_DIB_H

#include "vx/pixel.h"
#include "vx/types.h"

/* Flags word; the exchange (vx/xchg.h) reads the bits not named here. */
#define VXDIBF_QUALITY \
    0xFu                                 /* below 3 pixels are picked, else interpolated, and dithered
                                               where float becomes 8 bits */
#define VXDIBF_FEATHER_LASTROWS 0x1000u  /* soft edge along the picture's upper side */
#define VXDIBF_FEATHER_FIRSTROWS 0x2000u /* along its lower side, whose rows come first in memory */
#define VXDIBF_FEATHER_LEFT 0x4000u
#define VXDIBF_FEATHER_RIGHT 0x8000u
#define VXDIBF_FEATHER_WIDTH 0xFF0000u /* width of soft edges in pixels */
#define VXDIBF_FEATHER_WIDTH_SHIFT 16
#define VXDIBF_SUBPIXEL 0x1000000u    /* rectangles are in 1/16384 of a pixel */
#define VXDIBF_AREA 0x2000000u        /* scaling down averages what it covers; else it samples */
#define VXDIBF_BICUBIC 0x4000000u     /* scaling is bicubic, else bilinear */
#define VXDIBF_NOEDGEBLEND 0x8000000u /* pixels covered in part are written whole, not blended */

VX_EXTERN_C_BEGIN

/* Clips a pair of rectangles, each to its bitmap; what one loses is taken off the other in proportion,
 * so that the picture does not shift.
 *   destIn, sourceIn   null is the whole bitmap, and the result is then the whole bitmap again, with
 *                      no clip amounts for a null sourceIn
 *   destOut, sourceOut may be the in rectangles
 *   clipOut            how far each side of the source rectangle moved inwards; may be null
 * A cut of l pixels moves the other rectangle's side by its width times l over the width of the bitmap
 * that cuts, truncated. Where a rectangle is empty, or nothing of it lies in its bitmap, all results
 * are zeros. */
VX_EXPORT void VxDibPrepareRects(const BITMAPINFOHEADER* destHeader, RECT* destOut, const RECT* destIn,
                                 const BITMAPINFOHEADER* sourceHeader, RECT* sourceOut, const RECT* sourceIn,
                                 RECT* clipOut);

/* Chooses the colour table of a bitmap for the colours of a picture. Only which colours occur counts,
 * to 5 bits a channel, not how often.
 *   destHeader   VXPIXEL_PAL4 or VXPIXEL_PAL8; biClrUsed is the number of entries to choose, and the
 *                table behind it is written from its start. Entries that are not needed keep their
 *                values; biClrUsed does not change.
 *   area         part of the source that counts
 *   flags        quality bits of the exchange that reads the source
 * E_NOTIMPL for a source type outside 16 to 32; S_OK and no change for an empty area; E_NOTIMPL for
 * another type of destHeader; E_INVALIDARG for biClrUsed 0; E_OUTOFMEMORY. The table is untouched on
 * failure. Colours that a very small table cannot cover are left out. */
VX_EXPORT HRESULT VxDibQuantizePalette(BITMAPINFOHEADER* destHeader, const BITMAPINFOHEADER* sourceHeader,
                                       const void* sourcePixels, const RECT* area, int32_t sourceStride,
                                       uint32_t flags);

/* Makes the map from any colour to the index of a near entry of the header's colour table: 32,768
 * bytes, indexed by red * 1024 + green * 32 + blue of 5 bits each. Near is the number of steps along
 * the axes; of two entries in one cell the first is taken.
 *   outMap   null on failure. The map is one locked global block: free it with
 *            GlobalFree(GlobalHandle(map)).
 * E_INVALIDARG for biClrUsed 0, E_OUTOFMEMORY. At most 256 entries count. */
VX_EXPORT HRESULT VxDibCreateColorQuantizer(uint8_t** outMap, const BITMAPINFOHEADER* header);

/* One pixel as four 16-bit channels, blue in the lowest word, then green, red, alpha: the exchange's
 * working pixel of 16 bits with exact 8-bit channels. x and y count from the top left.
 * E_NOTIMPL for a type outside 16 to 32, before x and y are looked at. A pixel outside the bitmap is
 * E_NOTIMPL when read and E_INVALIDARG when written. On the palette types VxDibSetPixel writes the
 * index of a near colour, and may fail as VxDibCreateColorQuantizer does. For single pixels, not for
 * loops: each call prepares a whole exchange. */
VX_EXPORT HRESULT VxDibGetPixel(const BITMAPINFOHEADER* header, const void* pixels, int32_t stride, int32_t x,
                                int32_t y, uint64_t* outPixel);
VX_EXPORT HRESULT VxDibSetPixel(const BITMAPINFOHEADER* header, void* pixels, int32_t stride, int32_t x,
                                int32_t y, const uint64_t* inPixel);

VX_EXTERN_C_END

#endif
