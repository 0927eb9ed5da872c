/* Copying, filling and fading rectangles of bitmaps.
 *
 * Rectangles, sub-pixel coordinates and the flags word are those of vx/dib.h; null pixels, strides of
 * 0 and the order of rows those of vx/pixel.h. A colour component is a float on the scale 0.0 to 1.0.
 *
 * A status other than S_OK says that nothing was written. Any thread may call, on different
 * destinations; the source of a copy must not overlap its destination. Large copies share their rows
 * among threads where no pixel needs more than a table; the result is the same on any number. */
#ifndef VX_DIBCOPY_H
#define VX_DIBCOPY_H

#include "vx/types.h"

VX_EXTERN_C_BEGIN

/* Copies a rectangle of one bitmap into a rectangle of another: converts the pixel type, scales where
 * the rectangles differ in size, applies a transfer curve where one side is of float, and by flags
 * places the picture between pixels or feathers its edges.
 *   destRect, sourceRect   null is the whole bitmap. What lies outside a bitmap is cut off both in
 *                          proportion, so that the picture does not shift.
 *   flags                  VXDIBF_... and the bits of the exchange, vx/xchg.h
 *   destGamma, sourceGamma see vx/curve.h: 0.0 is the default of both. A curve applies to alpha too.
 *
 * Which pump runs:
 *   VXDIBF_SUBPIXEL, some coordinate has a fraction, and quality is 3 or above: pixels that the
 *     destination rectangle covers in part are blended in by their share. Between VXPIXEL_RGB32 and
 *     VXPIXEL_RGBA32, and from VXPIXEL_RGBA128 to itself, by the functions of vx/scale.h. Otherwise
 *     such coordinates lose their fractions, toward 0.
 *   Sizes differ, quality 3 or above, and such a pair of types: the functions of vx/scale.h.
 *   All else: the exchange. Scaled at quality 3 and above, the first and last pixels fall on the first
 *     and last of the source; below 3, pixels are picked.
 * At equal sizes float becomes 8 bits with an ordered dither of 4 by 4 pixels from quality 3 on, and is
 * cut below; VXPIXEL_RGB24 becomes opaque; the same type is copied byte for byte, but for types of up
 * to 8 bits and for a curve.
 *
 * VXDIBF_FEATHER_... mixes the copy with what stood in the destination along an edge of the rectangle,
 * more of it the nearer the edge. Not where vx/scale.h does the work.
 *
 * VX_E_UNSUPPORTED_MEDIA for a type outside 16 to 32 and for rectangles of which nothing remains, but
 * where the work is between pixels or scaling by vx/scale.h: there both are S_OK, and nothing is done.
 * E_INVALIDARG where a stride of 0 stands for rows of more than 32 bits; for a palette destination what
 * VxDibCreateColorQuantizer fails with. Without memory for a table, curves are evaluated: slower, and
 * equal but for rounding. */
VX_EXPORT HRESULT VxDibCopy(const BITMAPINFOHEADER* destHeader, void* destPixels, const RECT* destRect,
                            int32_t destStride, const BITMAPINFOHEADER* sourceHeader,
                            const void* sourcePixels, const RECT* sourceRect, int32_t sourceStride,
                            uint32_t flags, double destGamma, double sourceGamma);

/* Fills the part of a rectangle inside the bitmap with one colour. No curve applies.
 *   rect    null is the whole bitmap; sub-pixel coordinates lose their fractions, toward 0
 *   flags   VXDIBF_SUBPIXEL, and the bits of the exchange
 * Components become working pixels of the exchange: integers by cutting component * 255 or
 * component * 65535, of which the low 8 or 16 bits count, floats as they are. Gray types get the mean of
 * the colours, palette types a near entry.
 * E_NOTIMPL for a type outside 16 to 32; S_OK and no change for an empty area; then what
 * VxDibCreateColorQuantizer fails with, and E_INVALIDARG as in VxDibCopy. */
VX_EXPORT HRESULT VxDibSet(const BITMAPINFOHEADER* header, void* pixels, const RECT* rect, int32_t stride,
                           float red, float green, float blue, float alpha, uint32_t flags);

/* VxDibSet with the colour as four floats: blue, green, red, alpha. */
VX_EXPORT HRESULT VxDibFillRect(const BITMAPINFOHEADER* header, void* pixels, const RECT* rect,
                                int32_t stride, const float* colour, uint32_t flags);

/* Not supported: E_NOTIMPL, whatever the arguments; none is looked at. */
VX_EXPORT HRESULT VxDibFillRectChannel(const BITMAPINFOHEADER* header, void* pixels, const RECT* rect,
                                       int32_t stride, const float* colour, uint32_t flags);

/* Moves the pixels of a rectangle towards a colour. Pixels that the rectangle covers in part move by
 * that share of the way.
 *   colour     four floats in the order of the pixel's channels in memory. For bytes: component * 255,
 *              cut, of which the low 8 bits count.
 *   amount     0.0 leaves the pixels, 1.0 makes them the colour; held to that range, a NaN as 0.0
 *   keepAlpha  not 0: the fourth channel stays
 *   flags      VXDIBF_SUBPIXEL
 * VXPIXEL_RGB32, VXPIXEL_RGBA32 and VXPIXEL_RGBA128, else E_NOTIMPL; S_OK and no change for an empty
 * area; E_INVALIDARG as in VxDibCopy. */
VX_EXPORT HRESULT VxDibFadeToColor(const BITMAPINFOHEADER* header, void* pixels, const RECT* rect,
                                   int32_t stride, const float* colour, float amount, int32_t keepAlpha,
                                   uint32_t flags);

VX_EXTERN_C_END

#endif
