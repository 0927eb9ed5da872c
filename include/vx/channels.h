/* Channels, tables and thresholds: per-pixel tools that work on one frame, or from one into another.
 *
 * 8-bit frame: four bytes a pixel, blue, green, red, alpha; as a little-endian word 0xAARRGGBB. Float
 * frame: four 32-bit floats a pixel in the same order. A channel is named by its place in the pixel, 0
 * to 3. Frames and tables may begin at any byte. Strides are the signed distance in bytes from one row
 * to the next; they may be negative or wider than a row, and the bytes between rows are not touched.
 *
 * A width or height of 0 or less does nothing and succeeds, after the arguments that a function refuses
 * have been tested; nothing is read then, tables included. A function without such arguments always
 * returns true. Frames and tables stay the caller's, and nothing is kept or allocated. A source may be
 * the destination itself, but must not overlap it otherwise. Any thread may call, on different
 * destinations; each call works on its own thread. */
#ifndef VX_CHANNELS_H
#define VX_CHANNELS_H

#include "vx/types.h"

VX_EXTERN_C_BEGIN

/* Copies one byte of each pixel.
 *   dst, src          already moved to the wanted channel of the first pixel
 *   ...Stride         bytes from row to row
 *   ...PixelStep      bytes from pixel to pixel, of either sign; 1 for a plane of bytes, 4 for an 8-bit
 *                     frame
 * The bytes between those of the destination are never written, so that several threads may fill the
 * channels of one frame. Source and destination may be different channels of the same frame. */
VX_EXPORT bool ChannelCopy(void* dst, int32_t dstStride, int32_t dstPixelStep, int32_t width, int32_t height,
                           const void* src, int32_t srcStride, int32_t srcPixelStep);

/* Sets every pixel to one colour.
 *   bytesPerPixel   16: the floats are stored as given. 4: each becomes the low 8 bits of
 *                   trunc(value 255 + 0.5), so that values outside 0.0 to 1.0 wrap; a NaN, and what lies
 *                   beyond 32 bits, gives 0. Any other value does nothing. */
VX_EXPORT bool Fill(void* buffer, int32_t stride, int32_t bytesPerPixel, int32_t width, int32_t height,
                    float alpha, float red, float green, float blue);

/* Copies width times bytesPerPixel bytes of each row: any two factors of a row's length will do. The
 * product has 32 bits; one of 0 or less copies nothing. */
VX_EXPORT bool BitmapCopy(void* dst, int32_t dstStride, const void* src, int32_t srcStride, int32_t width,
                          int32_t bytesPerPixel, int32_t height);

/* Replaces each whole 8-bit pixel by the table's entry for one of its bytes.
 *   channel   0 to 3. Any other value is refused: false, and a debug text.
 *   table     256 pixels */
VX_EXPORT bool ChannelMap(void* buffer, int32_t stride, int32_t channel, int32_t width, int32_t height,
                          const uint32_t* table);

/* ChannelMap from a source frame into another; the source stays as it is. */
VX_EXPORT bool ChannelMapEx(void* dst, int32_t dstStride, const void* src, int32_t srcStride, int32_t channel,
                            int32_t width, int32_t height, const uint32_t* table);

/* Makes a float frame from one channel of another through a table of whole float pixels.
 *   channel        0 to 3. Any other value is refused: false, and a debug text.
 *   table          tableEntries pixels of four floats
 *   tableEntries   below 1 does nothing and succeeds
 * The entry is value times tableEntries, multiplied as floats, rounded to the nearest integer with
 * halves up, and held to the table: so 1.0 takes the last entry. A NaN takes entry 0. Of an integer
 * beyond 32 bits only the low 32 count, as a signed number. */
VX_EXPORT bool ChannelMapExFloat(void* dst, int32_t dstStride, const void* src, int32_t srcStride,
                                 int32_t channel, int32_t width, int32_t height, const float* table,
                                 int32_t tableEntries);

/* Replaces each whole 8-bit pixel by the table's entry for the sum of its first bytes, 255 at most.
 *   channelCount   bytes to sum; 0 or less takes entry 0 for every pixel, more than 4 counts as 4
 *   table          256 pixels */
VX_EXPORT bool ChannelMergeLut(void* buffer, int32_t stride, int32_t channelCount, int32_t width,
                               int32_t height, const uint32_t* table);

/* Sends each byte of an 8-bit frame through its channel's own table.
 *   table   256 entries of 4 bytes: byte c of entry v is the new value of v in channel c */
VX_EXPORT bool Lut(void* buffer, int32_t stride, int32_t width, int32_t height, const uint8_t* table);

/* Lut for premultiplied frames: each colour is held to the new alpha. */
VX_EXPORT bool LutWithAlphaClamp(void* buffer, int32_t stride, int32_t width, int32_t height,
                                 const uint8_t* table);

/* Takes colours over a limit back to the alpha; float frames on a scale of 0 to 255.
 *   limit   colours above limit 255 become the alpha, or floor 255 if that is greater
 *   floor   keeps what is put in from falling too low
 * Colours at or below the limit, NaNs and the alpha stay. */
VX_EXPORT bool ClipRestore(void* buffer, int32_t stride, int32_t width, int32_t height, double limit,
                           double floor);

/* A soft step on all four channels of a float frame, in place.
 *   low    values below it become 0.0
 *   high   values from high - 0.00001 on become 1.0, unless they are above 1.0, which stay
 * Between them values rise as (value - low) / (high - low); a range of 0.0001 or less counts as 0.0001.
 * A NaN stays a NaN. */
VX_EXPORT bool ThresholdFloat(void* buffer, int32_t stride, int32_t width, int32_t height, double low,
                              double high);

/* Clears what lies below a threshold, in all four channels.
 *   bytesPerPixel   16: floats below threshold become 0.0, NaNs stay. 4: bytes below the low 8 bits of
 *                   trunc(threshold 255 + 0.5) become 0. Any other value is refused: false. */
VX_EXPORT bool ThresholdClear(void* buffer, int32_t stride, int32_t bytesPerPixel, int32_t width,
                              int32_t height, float threshold);

VX_EXTERN_C_END

#endif
