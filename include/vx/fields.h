/* Fields of interlaced video: the even and the odd rows of a frame, taken at different moments.
 *
 * Headers, null pixels and strides are those of vx/pixel.h, rectangles those of vx/dib.h. Fields are
 * told by the parity of rows counted in memory or from the top, as each function says. Source and
 * destination must not overlap. Any thread may call, on different destinations. */
#ifndef VX_FIELDS_H
#define VX_FIELDS_H

#include "vx/types.h"

VX_EXTERN_C_BEGIN

/* Makes a whole picture of one field: its rows are copied, each row of the other field becomes the
 * mean of its two neighbours, rounded down at 8 and 16 bits. The first and the last row have one
 * neighbour, which counts twice; a row alone is its own. Pixel types are converted by the exchange,
 * without a curve; nothing is scaled. Large pictures share their rows among threads.
 *   destRect, sourceRect   null is the whole bitmap; with VXDIBF_SUBPIXEL fractions are cut off
 *   field                  row r, counted in memory from the rectangle's lowest, is copied where
 *                          (sourceRect->bottom - r) % 2 equals field; 0 or 1
 *   flags                  VXDIBF_SUBPIXEL and the bits of the exchange, vx/xchg.h
 * In this order: E_NOTIMPL for a source type outside 16 to 32, S_OK for an empty source rectangle, the
 * same two for the destination, what VxDibCreateColorQuantizer fails with for a palette destination,
 * E_NOTIMPL for rectangles of different size, E_INVALIDARG for a rectangle that reaches outside its
 * bitmap and where a stride of 0 stands for rows of more than 32 bits. Nothing is written then. */
VX_EXPORT HRESULT VxDibCopyInterlace(const BITMAPINFOHEADER* destHeader, void* destPixels,
                                     const RECT* destRect, int32_t destStride,
                                     const BITMAPINFOHEADER* sourceHeader, const void* sourcePixels,
                                     const RECT* sourceRect, int32_t sourceStride, int32_t field,
                                     uint32_t flags);

/* Lays one field of the source over the destination: every second row is copied whole, without
 * conversion. Field 1 is the rows 0, 2, 4 of the picture counted from the top, field 0 the rows 1, 3,
 * 5; any other number copies every second row from the lowest on.
 * E_NOTIMPL where bits a pixel, widths or heights differ; types may differ. E_INVALIDARG where a stride
 * of 0 stands for rows of more than 32 bits. */
VX_EXPORT HRESULT VxDibMergeFields(const BITMAPINFOHEADER* destHeader, void* destPixels, int32_t destStride,
                                   const BITMAPINFOHEADER* sourceHeader, const void* sourcePixels,
                                   int32_t sourceStride, int32_t field);

/* The same for a picture turned by a quarter, whose fields are columns: field 1 is the columns of the
 * parity of width - 1, field 0 the others, any other number the columns 0, 2, 4. Pixels of 4 and of 16
 * bytes; E_NOTIMPL for others. */
VX_EXPORT HRESULT VxDibMergeFieldsRotated(const BITMAPINFOHEADER* destHeader, void* destPixels,
                                          int32_t destStride, const BITMAPINFOHEADER* sourceHeader,
                                          const void* sourcePixels, int32_t sourceStride, int32_t field);

VX_EXTERN_C_END

#endif
