/* Mixing two frames, and multiplying one by a factor or by a mask.
 *
 * 8-bit frame: four bytes a pixel, blue, green, red, alpha, which are channels 0 to 3. Float frame:
 * four 32-bit floats a pixel in the same order. Functions that take both have `bytesPerPixel`: 4 is
 * 8-bit, 16 is float. Mask: an 8-bit frame whose bytes weigh the picture's, unless a function says
 * otherwise. Rows may begin at any byte. Strides are the signed distance in bytes from one row to the
 * next; they may be negative or wider than a row, and the bytes between rows are not touched.
 *
 * All return true, for a width or height of 0 or less too, which does nothing and reads no pointer;
 * false, with nothing changed, only where a function says so, and then for an empty size too.
 *
 * Frames stay the caller's, and nothing is kept or allocated. A source or mask may be the destination
 * itself where both have the same shape, but must not overlap it otherwise. Each function works on
 * the calling thread, and any thread may call, on different destinations.
 *
 * Below, d is a channel of the destination, s of the source, w a byte of the mask, a the alpha of the
 * destination, all as they were before the call; trunc takes the integer part of a double, and a value
 * beyond 32 bits or no number as -2^31. Divisions of integers truncate, and integer arithmetic is that
 * of signed 32 bits, which wraps. Float arithmetic is that of 32-bit floats, each step rounded. Where
 * operands are two different NaNs, the result has the bits of either. */
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
 * to the alpha of dst, so that premultiplied frames stay so. */
VX_EXPORT bool Blend(void* dst, int32_t dstStride, const void* src, int32_t srcStride, int32_t width,
                     int32_t height, double factor);

/* Mixes src into dst, weighed channel by channel by a mask; 8-bit frames.
 *   dst, dstStride    changed in place; its alpha bytes stay
 *   mask, maskStride  0 keeps dst, 255 takes src; its alpha is not used
 *   src, srcStride    frame of the same size; its alpha is not used
 *   width, height     pixels, rows
 *   lut               null, or 256 entries of four bytes: byte c of entry w replaces the weight w of
 *                     channel c
 * Each colour is the lesser of (s w + d (255 - w)) / 255 and a. */
VX_EXPORT bool MaskedBlend(void* dst, int32_t dstStride, const void* mask, int32_t maskStride,
                           const void* src, int32_t srcStride, int32_t width, int32_t height,
                           const void* lut);

/* Mixes src into dst by a mask, alpha too.
 *   dst, dstStride    changed in place
 *   src, srcStride    frame of the same form and size
 *   bytesPerPixel     4 for 8-bit frames; any other value means float frames
 *   mask, maskStride  8-bit in both forms
 *   width, height     pixels, rows
 * 8-bit: (s w + d (255 - w)) / 255. Float: w' s + (1 - w') d, where w' is w times 0.003921569. A colour
 * is then capped at the new alpha A: it is stored if A is greater, else A is. */
VX_EXPORT bool MaskedFade(void* dst, int32_t dstStride, const void* src, int32_t srcStride,
                          int32_t bytesPerPixel, const void* mask, int32_t maskStride, int32_t width,
                          int32_t height);

/* Multiplies a frame by a factor.
 *   buffer, stride  changed in place
 *   bytesPerPixel   4 or 16; anything else is refused with false
 *   width, height   pixels, rows
 *   factor          1.0 changes nothing
 *   premultiplied   0: all four channels, uncapped. Else: the colours, capped at alpha, which stays
 * 8-bit: v = (d k + 127) / 256, where k is trunc(factor 256 + 0.5); float: v = d times factor. A capped
 * channel is v if a is greater than v, else a. The low 8 bits of an 8-bit result are stored: without
 * the cap, a factor above 1.0 wraps. */
VX_EXPORT bool Multiply(void* buffer, int32_t stride, int32_t bytesPerPixel, int32_t width, int32_t height,
                        double factor, uint8_t premultiplied);

/* Makes one channel of dst from one channel of an 8-bit frame; the others stay.
 *   dst, dstStride          changed in place
 *   bytesPerPixel           of dst: 4 for an 8-bit frame; any other value means a float frame
 *   dstChannel, srcChannel  0 to 3; anything else is refused with false
 *   src, srcStride          8-bit frame of the same size; its channel gives m
 *   width, height           pixels, rows
 *   scale, offset           applied to m; offset counts in steps of m
 * 8-bit: d is multiplied by m. With scale from 0.9999 to 1.0001 and offset from -0.0001 to 0.0001 it is
 * (m d + 127) / 255. Otherwise ((m K + O) d + 130560) / 261120, clamped to 0 and 255, where K is
 * trunc(scale 1024) and O is trunc(offset 1024).
 * Float: the channel becomes m k + o and d plays no part; k is scale / 255 and o is offset, as floats. */
VX_EXPORT bool MultiplyChannel(void* dst, int32_t dstStride, int32_t bytesPerPixel, int32_t dstChannel,
                               const void* src, int32_t srcStride, int32_t srcChannel, int32_t width,
                               int32_t height, double scale, double offset);

/* Multiplies all four channels of a frame by a mask; nothing is capped at alpha.
 *   dst, dstStride    changed in place
 *   bytesPerPixel     of dst: 4 for an 8-bit frame; any other value means a float frame
 *   mask, maskStride  8-bit in both forms
 *   width, height     pixels, rows
 *   channel           below 0: channel c of the mask weighs channel c. 0 to 3: this channel of the
 *                     mask weighs all four. Above 3: refused with false
 *   scale, offset     applied to the mask's bytes, as in MultiplyChannel
 * 8-bit: as MultiplyChannel, w in place of m. Float: w d k + o where channel is below 0, else w k d + o,
 * multiplied in that order. */
VX_EXPORT bool MaskMultiply(void* dst, int32_t dstStride, int32_t bytesPerPixel, const void* mask,
                            int32_t maskStride, int32_t width, int32_t height, int32_t channel, double scale,
                            double offset);

/* Multiplies a mask of one 32-bit float a pixel by another.
 *   dst, dstStride  changed in place
 *   src, srcStride  mask of the same size
 *   width, height   elements of 4 bytes, rows */
VX_EXPORT bool MultiplyMasks(void* dst, int32_t dstStride, const void* src, int32_t srcStride, int32_t width,
                             int32_t height);

VX_EXTERN_C_END

#endif
