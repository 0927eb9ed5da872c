/* Scaling of 32-bit and 128-bit float bitmaps, with edges anywhere inside a pixel.
 *
 * These functions work on plain pixel memory and know no pixel types. A frame is the address of its
 * top row, a size, and a signed stride in bytes from one row to the one below it in the picture: for
 * a bitmap in memory, the address of its last row and its negated stride. A pixel is 4 bytes, four
 * independent 8-bit channels, or 16 bytes, four 32-bit floats. Pixels and rows may stand at any
 * address. Sizes up to 131,071 pixels.
 *
 * Sub-pixel coordinates have 14 fraction bits: 16384 is one pixel, 24576 one and a half. A destination
 * rectangle may begin and end anywhere; the pixels that it covers in part are blended into what stands
 * there, by the share covered. With noEdgeBlend they are written whole. Rectangles count from the top
 * left, null is the whole frame, and what lies outside a frame is cut off: of the destination
 * rectangle without moving the picture, of the source rectangle by scaling what remains over the whole
 * destination rectangle.
 *
 * Sampling. Bilinear puts the first and last pixels of the destination on those of the source. Bicubic
 * is the cubic convolution of Keys ("Cubic convolution interpolation for digital image processing",
 * 1981) with a = -0.5, aligned at pixel centres; it overshoots: 8-bit channels and float alpha are
 * limited, float colours are not. Both look at 2 or 4 pixels an axis however far they shrink. With the
 * area flag an axis that shrinks averages all that it covers instead; where both do, the two families
 * are the same.
 *
 * Nothing is allocated except by DibPrepareSubpixelParam. Any thread may call, on different
 * destinations; source and destination must not overlap. The linear kernels share large frames among
 * threads. Results are the same on every processor and for any number of threads. */
#ifndef VX_SCALE_H
#define VX_SCALE_H

#include "vx/types.h"

/* How a destination rectangle maps to its source. Fields marked D are for bitmaps with headers, and 0
 * otherwise. */
typedef struct VxSubpixelParam
{
    const BITMAPINFOHEADER* destHeader;   /* D */
    double destGamma;                     /* D, as given */
    void* destPixels;                     /* top row */
    int32_t destStride;                   /* to the row below in the picture */
    const RGBQUAD* destPalette;           /* D, null without a colour table */
    RECT destClip;                        /* what is written: the part of destRect in the frame */
    RECT destRect;                        /* as given, or the whole frame */
    const BITMAPINFOHEADER* sourceHeader; /* D */
    double sourceGamma;                   /* D, as given */
    const void* sourcePixels;             /* top row */
    int32_t sourceStride;
    const RGBQUAD* sourcePalette; /* D */
    RECT sourceClip;              /* what maps to destClip */
    RECT sourceBounds;            /* the source rectangle cut to its frame */
    int32_t stepX, stepY;         /* source distance between pixels where the first and last are to fall
                                     on the first and last of the source; 0 below two pixels */
    int32_t ratioX, ratioY;       /* source size over destination size: above 16384 shrinks */
    uint8_t* quantizer;           /* D, colour map of a palette destination */
    uint32_t flags;               /* D, VXDIBF_... */
} VxSubpixelParam;
VX_STATIC_ASSERT(sizeof(VxSubpixelParam) == 176, "the published record");
VX_STATIC_ASSERT(offsetof(VxSubpixelParam, destClip) == 40, "the published order of fields");
VX_STATIC_ASSERT(offsetof(VxSubpixelParam, sourceHeader) == 72, "the published order of fields");
VX_STATIC_ASSERT(offsetof(VxSubpixelParam, sourceClip) == 112, "the published order of fields");
VX_STATIC_ASSERT(offsetof(VxSubpixelParam, stepX) == 144, "the published order of fields");
VX_STATIC_ASSERT(offsetof(VxSubpixelParam, ratioX) == 152, "the published order of fields");
VX_STATIC_ASSERT(offsetof(VxSubpixelParam, quantizer) == 160, "the published order of fields");

VX_EXTERN_C_BEGIN

/* Scales sourceRect into destRect, both in pixels. Equal sizes copy.
 *   destSize, sourceSize   width and height in pixels
 *   bytesPerPixel          4 or 16; others do nothing
 *   area, noEdgeBlend      flags, 0 or not
 * Nothing is done where VxPrepareSubpixelParam finds nothing to do. Returns S_OK always. */
VX_EXPORT HRESULT VxDibScale_Bilinear(void* dest, const SIZE* destSize, int32_t destStride,
                                      const RECT* destRect, const void* source, const SIZE* sourceSize,
                                      int32_t sourceStride, const RECT* sourceRect, int32_t bytesPerPixel,
                                      int32_t area, int32_t noEdgeBlend);
VX_EXPORT HRESULT VxDibScale_BiCubic(void* dest, const SIZE* destSize, int32_t destStride,
                                     const RECT* destRect, const void* source, const SIZE* sourceSize,
                                     int32_t sourceStride, const RECT* sourceRect, int32_t bytesPerPixel,
                                     int32_t area, int32_t noEdgeBlend);

/* The same with rectangles in sub-pixel coordinates. */
VX_EXPORT HRESULT VxDibScale_BilinearSubPixel(void* dest, const SIZE* destSize, int32_t destStride,
                                              const RECT* destRect, const void* source,
                                              const SIZE* sourceSize, int32_t sourceStride,
                                              const RECT* sourceRect, int32_t bytesPerPixel, int32_t area,
                                              int32_t noEdgeBlend);
VX_EXPORT HRESULT VxDibScale_BiCubicSubPixel(void* dest, const SIZE* destSize, int32_t destStride,
                                             const RECT* destRect, const void* source, const SIZE* sourceSize,
                                             int32_t sourceStride, const RECT* sourceRect,
                                             int32_t bytesPerPixel, int32_t area, int32_t noEdgeBlend);

/* Fills the record for two frames and rectangles in sub-pixel coordinates. Returns 1, or 0 where there
 * is nothing to do: less than one pixel of source, or less than 1/16 pixel of destination, in width or
 * height. The record owns nothing. */
VX_EXPORT int32_t VxPrepareSubpixelParam(VxSubpixelParam* param, void* dest, const SIZE* destSize,
                                         int32_t destStride, const RECT* destRect, const void* source,
                                         const SIZE* sourceSize, int32_t sourceStride,
                                         const RECT* sourceRect);

/* Fills the record for two bitmaps, with null pixels, strides of 0 and headers as in vx/pixel.h.
 * Types 16 to 32. A palette destination gets the map of VxDibCreateColorQuantizer, which
 * DibCleanupSubpixelParam frees. Returns 1, or 0 for other types, less than one pixel in any
 * direction, and where there is no map. Where enlarging leaves less than a pixel of source, the step
 * is negative: count it as 0. */
VX_EXPORT int32_t DibPrepareSubpixelParam(VxSubpixelParam* param, const BITMAPINFOHEADER* destHeader,
                                          double destGamma, void* destPixels, const RECT* destRect,
                                          int32_t destStride, const BITMAPINFOHEADER* sourceHeader,
                                          double sourceGamma, const void* sourcePixels,
                                          const RECT* sourceRect, int32_t sourceStride, uint32_t flags);

/* Frees what the record owns; null is nothing. May be called whatever the preparation returned. */
VX_EXPORT void DibCleanupSubpixelParam(VxSubpixelParam* param);

VX_EXTERN_C_END

#endif
