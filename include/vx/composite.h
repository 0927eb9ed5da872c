/* Laying one frame onto another: seven mixing modes, with an opacity.
 *
 * 8-bit frame: four bytes a pixel, blue, green, red, alpha. Float frame: four 32-bit floats a pixel
 * in the same order, on the scale 0.0 to 1.0, which is not enforced. Both are premultiplied: their
 * colours are already multiplied by their alpha. Rows may begin at any byte. Strides are the signed
 * distance in bytes from one row to the next; they may be negative or wider than a row, and the
 * bytes between rows are not touched.
 *
 * In the formulas d and s are a channel of dst and src, da and sa their alphas, and R is the mixed
 * value; / on integers cuts the fraction off. "As colour" means that alpha is one more channel under
 * the formula for colours, "over" that its R is the R of source over.
 *
 *   mode                8-bit R of a colour                       float R of a colour         alpha
 *   source over         ((255 - sa) d + 255 s + 127) / 255        (1 - sa) d + s              over
 *   destination over    ((255 - da) s + 255 d + 127) / 255        (1 - da) s + d              as colour
 *   add                 d + s, 255 at most                        d + s                       over
 *   multiply            d s / 255                                 d s                         as colour
 *   overlay, dark d     2 d s / 255                               d s 2                       over
 *   overlay, light d    255 - 2 (255 - d)(255 - s) / 255          1 - (1 - d) 2 (1 - s)       over
 *   screen              255 - (255 - s)(255 - d) / 255            1 - (1 - s)(1 - d)          over
 *   average             (d + s) / 2                               (d + s) 0.5                 as colour
 *
 * A d is dark below 128 or 0.5. */
#ifndef VX_COMPOSITE_H
#define VX_COMPOSITE_H

#include "vx/types.h"

enum VxCompositeMode
{
    VX_COMPOSITE_SOURCE_OVER = 1,
    VX_COMPOSITE_DESTINATION_OVER = 2,
    VX_COMPOSITE_ADD = 3,
    VX_COMPOSITE_MULTIPLY = 4,
    VX_COMPOSITE_OVERLAY = 5,
    VX_COMPOSITE_SCREEN = 6,
    VX_COMPOSITE_AVERAGE = 7
};

VX_EXTERN_C_BEGIN

/* Mixes src into dst.
 *   dst, dstStride   changed in place
 *   src, srcStride   frame of the same size; it may be dst itself, but must not overlap it otherwise
 *   bytesPerPixel    4: 8-bit frames; anything else: float frames
 *   width, height    pixels, rows; 0 or less does nothing and succeeds
 *   mode             one of VxCompositeMode
 *   opacity          weight of R against the base, which is s for destination over, else d
 * 8-bit: o = trunc(255 opacity + 0.5), kept within 0 to 255, 0 for a NaN. R is stored where o is 255,
 * else (R o + base (255 - o)) / 255. Where colours exceed their alpha, R may exceed 255; the low 8
 * bits of the result are stored.
 * Float: f = (float)opacity, not clamped. R is stored where f is above 0.999f (add and overlay:
 * 0.9999f), else R f + (1 - f) base, in 32-bit floats. Nothing is clamped. Where two NaNs meet, the
 * result may be either.
 * Returns false, with nothing changed, for a mode outside 1 to 7; else true, when every row is done.
 * Large frames are shared by rows among worker threads, small ones stay on the caller's; the result
 * is the same. Frames stay the caller's, and nothing is kept. Any thread may call, on different
 * destinations. */
VX_EXPORT bool Composite(void* dst, int32_t dstStride, const void* src, int32_t srcStride,
                         int32_t bytesPerPixel, int32_t width, int32_t height, int32_t mode, double opacity);

VX_EXTERN_C_END

#endif
