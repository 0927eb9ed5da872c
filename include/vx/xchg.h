/* The exchange: any bitmap pixel turned into any other through one working pixel.
 *
 * VxXCHGGetFunctionPointers chooses, once a job, kernels for a pair of pixel types and fills a record,
 * tVXXCHG, with them. The caller (the driver) then sets the record's pointers, calls a read kernel, if
 * it likes an operation kernel, and a write kernel. Pixel types are those of vx/pixel.h from
 * VXPIXEL_PAL1 to VXPIXEL_RGBA128.
 *
 * Working pixels have the channels blue, green, red, alpha, in this order, at one of three depths:
 *
 *   depth                 a channel              a slot        chosen where
 *   VXXCHG_DEPTH_8        8 bits                 8 bytes, of   both types are 24, 27, 28 or 29
 *                                                which 4 used
 *   VXXCHG_DEPTH_16       16 bits, 0 to 65535    8 bytes       always, unless one of the others is
 *   VXXCHG_DEPTH_FLOAT    32-bit float           16 bytes      both types are 32
 *
 * VXXCHGF_DEPTH16 in the flags chooses 16 bits for every pair. Types without alpha read as opaque.
 *
 * At 16 bits an 8-bit channel c reads as 256 c, with VXXCHGF_INTERPOLATE as 257 c, and writes as its
 * high byte; narrower fields read left-justified (5, 6, 10 bits) or spread over 0 to 65535 (1, 2, 4
 * bits); floats read as x 65535 + 0.5, cut, with a NaN as 0, and write as m * 1.5259022e-5f. A colour
 * table's entry c reads as 256 c always; VXPIXEL_PAL1 reads as gray, without its table. Gray types are
 * written from the mean of the three colours. Float types pass through the record's curve, alpha too;
 * float working pixels never do.
 *
 * Kernels check nothing: pointers, tables and sizes are the driver's. Each takes the record first and
 * keeps no state anywhere else: a record serves one thread at a time, workers take copies of their
 * own. A record needs no release. Rows may begin at any byte. */
#ifndef VX_XCHG_H
#define VX_XCHG_H

#include "vx/curve.h"
#include "vx/types.h"

#define VXXCHG_DEPTH_8 0
#define VXXCHG_DEPTH_16 1
#define VXXCHG_DEPTH_FLOAT 2

/* Flags word. A quality of 1 to 4 keeps the bits VXXCHGF_KEPT of the word and adds those named here;
 * any other quality keeps the whole word as it is given. Soft edges and the drivers' bits are in
 * vx/dib.h. */
#define VXXCHGF_QUALITY 0xFu
#define VXXCHGF_DEPTH16 0x10u      /* quality 4 */
#define VXXCHGF_INTERPOLATE 0x20u  /* quality 3, 4: interpolate, and read 8-bit channels exactly */
#define VXXCHGF_EXACT_FADE 0x40u   /* quality 2, 3, 4: the full weight in the 8-bit fade */
#define VXXCHGF_ANY_QUALITY 0x180u /* quality 1 to 4; no kernel looks */
#define VXXCHGF_KEPT 0x7FFF1F0u

/* Operations on A (slot A) with B (slot B). c is each of blue, green, red; K the key colour, T the
 * tolerance, W and W2 the weights. B is near where the absolute differences of its colours from K sum
 * to T at most. Mix(x, y, w) is x + (y - x) w / 65536 at 16 bits, rounded down, and x + (y - x) w / 256
 * at 8 bits, rounded toward 0. Numbers are those of the 16-bit depth: at 8 bits 255 stands for 65535
 * and 256 for 65536. There is no float form: a float pair needs VXXCHGF_DEPTH16. */
#define VXXCHG_OP_COPY 0  /* B; so are 9 and 10 */
#define VXXCHG_OP_ALPHA 1 /* Mix(A, B, a) for c and alpha, with a and the new alpha from B's alpha */
#define VXXCHG_OP_ALPHA_PREMULTIPLIED 2 /* (A.c (65536 - a) + B.c) / 65536, and a for B's alpha; wraps */
#define VXXCHG_OP_FADE 3       /* Mix(A, B, W); at 8 bits, without VXXCHGF_EXACT_FADE, in 4 bits a channel */
#define VXXCHG_OP_KEY_COPY 4   /* B unless it is near */
#define VXXCHG_OP_KEY_FADE 5   /* Mix(A, B, W) unless B is near */
#define VXXCHG_OP_KEY_SHADOW 6 /* as 5; near: Mix(A.c, s, W2), s = A.c (1 + B's brightest) / 65535 */
#define VXXCHG_OP_KEY_SCALE 7  /* not near: Mix(B.c, s, W2), s = A.c (1 + A's brightest) / (1 + B's) */
#define VXXCHG_OP_DIFFERENCE 8 /* |A - B| */
#define VXXCHG_OP_TINT 11      /* c is Mix(B.c, K.c, W) */
#define VXXCHG_OP_INVERT_FADE 12 /* Mix(A, 65535 - B, W) */
#define VXXCHG_OP_GRAY_FADE 13   /* c is Mix(A.c, mean of B's colours, W); alpha is mixed too */
#define VXXCHG_OP_MATTE 14       /* c is (K.c - A.c) a / 65536 + B.c - K.c + A.c, clamped; a is B's alpha */
#define VXXCHG_OP_DISTANCE 15    /* each c: distance of A from K, sqrt(3) as the unit, through the lut */
#define VXXCHG_OP_LEVEL 17 /* each c: (mean of A - W2) 65535 / T, 0 below, 65535 above, through the lut */
#define VXXCHG_OP_ADD 19   /* A + B W / 65536, wrapping */
#define VXXCHG_OP_COUNT 20 /* 16 and 18 leave all as it is */

/* An operation: its number and, for each depth, the key, the tolerance and the weights. */
typedef struct VxXchgOperation
{
    uint32_t number;
    uint16_t keyBlue16, keyGreen16, keyRed16, unused16;
    int32_t tolerance16;
    uint16_t weight16, weight16b;
    uint8_t keyBlue8, keyGreen8, keyRed8, unused8;
    int16_t tolerance8;
    uint8_t weight8, weight8b;
    uint32_t unused[7];
} VxXchgOperation;
VX_STATIC_ASSERT(sizeof(VxXchgOperation) == 56, "fourteen 32-bit words");
VX_STATIC_ASSERT(offsetof(VxXchgOperation, keyBlue16) == 4, "word 1");
VX_STATIC_ASSERT(offsetof(VxXchgOperation, tolerance16) == 12, "word 3");
VX_STATIC_ASSERT(offsetof(VxXchgOperation, weight16) == 16, "word 4");
VX_STATIC_ASSERT(offsetof(VxXchgOperation, keyBlue8) == 20, "word 5");
VX_STATIC_ASSERT(offsetof(VxXchgOperation, tolerance8) == 24, "word 6");

typedef struct tVXXCHG tVXXCHG;
typedef void (*VxXchgKernel)(tVXXCHG* record);
/* On four slots: slot i of record is A, slot i of second is B; key, tolerance and weights are
 * second's. second is not changed. */
typedef void (*VxXchgGroupKernel)(tVXXCHG* record, const tVXXCHG* second);

/* Set by VxXCHGGetFunctionPointers: flags, types, kernels, depth, edgeWidth, op, the curves. All else
 * begins at zero and is the driver's; it may change the weights in op between calls. */
struct tVXXCHG
{
    uint32_t flags; /* after the rules of the quality */
    int32_t sourceType;
    int32_t destType;
    VxXchgKernel readPixel;  /* into slot A; advances source */
    VxXchgKernel writePixel; /* from slot A; advances dest */
    /* One pixel out of the 2 by 2 at source, by fractionX and fractionY, into slot A; source stays.
     * Without VXXCHGF_INTERPOLATE this, readLine and readReduce are readPixel itself, which advances. */
    VxXchgKernel readFiltered;
    /* The 2 by 2 pixels at source into slots A, B (upper row in rowOffset's sense) and C, D; source
     * stays. 8-bit channels read exactly whatever the flags. */
    VxXchgKernel readBlock;
    VxXchgKernel readQuad;  /* four pixels into slots A to D; advances source */
    VxXchgKernel writeQuad; /* four pixels from slots A to D; advances dest */
    VxXchgKernel readLine;  /* as readFiltered, between the pixel at source and the one below it only */
    VxXchgKernel opPixel;   /* on slots A and B; null without an operation, as the next three */
    VxXchgGroupKernel opQuad;
    /* For operations 4 and 5, else null. opMark: A becomes 0 where B is near, else blue and green are
     * full and red and alpha 0. opMarkQuad: A stays where it is near, else becomes the first of B, C, D
     * that is, else the mix of the four slots by fractionX and fractionY. */
    VxXchgKernel opMark;
    VxXchgKernel opMarkQuad;
    /* readFiltered; for VXPIXEL_RGB24 at 8 bits the mean of a box instead: columns from the ceiling of
     * fractionX to the floor of fractionX + reduceWidth, rows likewise, ends excluded, where source is
     * the image's first pixel and rowOffset counts pixels. Alpha is then 0, and an empty box is 0. */
    VxXchgKernel readReduce;
    int32_t depth;
    uint64_t slots[8];  /* working pixels A to D; copy them out and in, by memcpy */
    const void* source; /* next pixel to read */
    uint32_t sourceBit; /* for types below 8 bits: offset in the byte at source, 0 is its highest bit */
    void* dest;
    uint32_t destBit;
    int32_t rowOffset;  /* bytes from a source pixel to the one below it; 0 makes both rows one */
    uint32_t fractionX; /* 0 to 16383, in 1/16384 of a pixel */
    uint32_t fractionY;
    uint32_t reduceWidth; /* in 1/16384 of a pixel */
    uint32_t reduceHeight;
    uint32_t edgeWidth;           /* bits 16 to 23 of flags */
    const RGBQUAD* sourcePalette; /* of a palette source: an entry for every index */
    const RGBQUAD* destPalette;   /* for the driver; no kernel looks */
    const uint8_t* inverseMap;    /* of a palette destination: VxDibCreateColorQuantizer makes it */
    VxXchgOperation op;
    VxTransferCurve destCurve;   /* applied where float types are written from 16 bits */
    VxTransferCurve sourceCurve; /* applied where float types are read to 16 bits */
    const uint8_t* lut8;         /* 256 bytes, for operations 15 and 17, or null */
    const uint16_t* lut16;       /* 65536 words, likewise */
};
VX_STATIC_ASSERT(sizeof(tVXXCHG) == 432, "the published record");
VX_STATIC_ASSERT(offsetof(tVXXCHG, readPixel) == 16, "the published order of fields");
VX_STATIC_ASSERT(offsetof(tVXXCHG, readReduce) == 104, "twelve kernels");
VX_STATIC_ASSERT(offsetof(tVXXCHG, depth) == 112, "the published order of fields");
VX_STATIC_ASSERT(offsetof(tVXXCHG, slots) == 120, "the published order of fields");
VX_STATIC_ASSERT(offsetof(tVXXCHG, source) == 184, "the published order of fields");
VX_STATIC_ASSERT(offsetof(tVXXCHG, rowOffset) == 212, "the published order of fields");
VX_STATIC_ASSERT(offsetof(tVXXCHG, sourcePalette) == 240, "the published order of fields");
VX_STATIC_ASSERT(offsetof(tVXXCHG, op) == 264, "the published order of fields");
VX_STATIC_ASSERT(offsetof(tVXXCHG, destCurve) == 320, "the published order of fields");
VX_STATIC_ASSERT(offsetof(tVXXCHG, sourceCurve) == 368, "the published order of fields");
VX_STATIC_ASSERT(offsetof(tVXXCHG, lut16) == 424, "the published order of fields");

VX_EXTERN_C_BEGIN

/* Fills a record for a job, from zeros.
 *   operation   copied into the record, or null for a job without one
 *   destGamma, sourceGamma   see vx/curve.h. A float source gets sourceCurve; a float destination of
 *               a source that is not float gets destCurve; the other curve is the identity.
 * E_INVALIDARG for a type outside 16 to 32, with the record all zeros; E_NOTIMPL for an operation
 * that has no kernel. A palette source needs sourcePalette, a palette destination inverseMap before
 * the first kernel is called. */
VX_EXPORT HRESULT VxXCHGGetFunctionPointers(int32_t destType, int32_t sourceType, uint32_t flags,
                                            tVXXCHG* record, const VxXchgOperation* operation,
                                            double destGamma, double sourceGamma);

VX_EXTERN_C_END

#endif
