/* Mixing two frames, and scaling one.
 *
 * 8-bit frame: four bytes a pixel, blue, green, red, alpha. Float frame: four 32-bit floats a pixel
 * in the same order. Rows may begin at any byte. Strides are the signed distance in bytes from one
 * row to the next; they may be negative or wider than a row, and the bytes between rows are not
 * touched. A width or height of 0 or less does nothing and succeeds, after the arguments that a
 * function refuses have been tested. Frames stay the caller's, and nothing is kept or allocated. A
 * source may be the destination itself, but must not overlap it otherwise. Any thread may call, on
 * different destinations. */
#ifndef VX_BLEND_H
#define VX_BLEND_H

#include "vx/types.h"

VX_EXTERN_C_BEGIN

/* Mixes src into dst by one factor; 8-bit frames.
 *   dst, dstStride   changed in place; its alpha bytes stay
 *   src, srcStride   frame of the same size; its alpha is not read
 *   width, height    pixels, rows
 *   factor           weight of dst: 1.0 keeps dst, 0.0 takes src
 * Each colour is (d trunc(factor 4096) + s trunc((1 - factor) 4096) + 2048) / 4096, clamped to 0 and
 * to the alpha of dst, so that premultiplied frames stay so. Returns true. */
VX_EXPORT bool Blend(void* dst, int32_t dstStride, const void* src, int32_t srcStride, int32_t width,
                     int32_t height, double factor);

VX_EXTERN_C_END

#endif
