/* Pixel types, and bitmaps described by a header (DIBs).
 *
 * A pixel type is a small integer. A bitmap is a BITMAPINFOHEADER, what follows it, and its pixels:
 *
 *   biCompression   behind the header
 *   BI_BITFIELDS    three 32-bit masks: red, green, blue; the pixels begin 52 bytes from the header
 *   anything else   biClrUsed entries of 4 bytes (RGBQUAD); the pixels begin biSize bytes and the
 *                   entries from the header. A BI_RGB header of 1 to 8 bits with biClrUsed 0 has a
 *                   full table: 2 to the power biBitCount entries.
 *
 * Rows run from the bottom of the picture to its top: row 0 in memory is the lowest. biHeight is
 * positive; there is no top-down form, and a bitmap with a negative size has no pixels. Each row is
 * padded to a multiple of 4 bytes: ((biBitCount biWidth + 31) / 8) & 0x1FFFFFFC, in unsigned 32 bits.
 * For example 3 pixels of 24 bits take 9 bytes and a row of 12; 10 pixels of 32 bits take 40 and 40.
 *
 * Functions that take a header and pixels take null pixels for those that follow the header, and a
 * stride of 0 for the padded row; any other stride is the signed distance in bytes between rows.
 * Headers and pixels may stand at any address, as they do in a file that was read whole. Header
 * pointers are not null unless a function says so.
 *
 * Memory stays its owner's; VxDibAlloc alone allocates. Status codes are S_OK, E_INVALIDARG,
 * E_NOTIMPL, E_OUTOFMEMORY. Nothing here has state: any thread may call, on different bitmaps. */
#ifndef VX_PIXEL_H
#define VX_PIXEL_H

#include "vx/types.h"

/* Channels are named from the low address, or the low bit, up. Signatures take int32_t. */
typedef enum VxPixelType
{
    VXPIXEL_UNKNOWN = 0,
    VXPIXEL_PAL1 = 16,  /* colour table index; the highest bit is the left pixel */
    VXPIXEL_GRAY1 = 17, /* gray without a colour table, in the order of VXPIXEL_PAL1 */
    VXPIXEL_GRAY2 = 18,
    VXPIXEL_GRAY4 = 19, /* the high nibble is the left pixel */
    VXPIXEL_GRAY8 = 20,
    VXPIXEL_GRAY16 = 21, /* unsigned 16 bits */
    VXPIXEL_GRAY32 = 22, /* 32-bit float, 0.0 to 1.0 */
    VXPIXEL_PAL4 = 23,   /* colour table index; the high nibble is the left pixel */
    VXPIXEL_PAL8 = 24,
    VXPIXEL_RGB555 = 25,    /* 16-bit word: blue 5, green 5, red 5 bits, one unused */
    VXPIXEL_RGB565 = 26,    /* 16-bit word: blue 5, green 6, red 5 bits */
    VXPIXEL_RGB24 = 27,     /* bytes blue, green, red */
    VXPIXEL_RGB32 = 28,     /* bytes blue, green, red, and a fourth */
    VXPIXEL_RGBA32 = 29,    /* bytes blue, green, red, alpha */
    VXPIXEL_RGB101010 = 30, /* 32-bit word: blue 10, green 10, red 10, alpha 2 bits */
    VXPIXEL_RGBA64 = 31,    /* unsigned 16-bit blue, green, red, alpha */
    VXPIXEL_RGBA128 = 32,   /* 32-bit floats blue, green, red, alpha, 0.0 to 1.0 */
    VXPIXEL_UYVY = 64,      /* a pair of pixels is the bytes U, Y0, V, Y1 */
    VXPIXEL_YUYV = 65,      /* a pair of pixels is the bytes Y0, U, Y1, V */
    VXPIXEL_Y41B = 66,      /* planes Y, U, V; a chroma sample serves 4 pixels of a row */
    VXPIXEL_I420 = 67,      /* planes Y, U, V; a chroma sample serves 2 by 2 pixels */
    VXPIXEL_V210 = 68       /* six pixels in four 32-bit words, three 10-bit samples a word:
                                U0 Y0 V0, Y1 U1 Y2, V1 Y3 U2, Y4 V2 Y5 */
} VxPixelType;

/* biCompression, beside BI_RGB and BI_BITFIELDS: four characters, the first in the low byte. */
#define VXCOMPRESSION_VXDB 0x42445856u /* colours with alpha */
#define VXCOMPRESSION_VXGS 0x53475856u /* gray */
#define VXCOMPRESSION_UYVY 0x59565955u
#define VXCOMPRESSION_YUYV 0x56595559u
#define VXCOMPRESSION_Y41B 0x42313459u
#define VXCOMPRESSION_I420 0x30323449u
#define VXCOMPRESSION_IYUV 0x56555949u /* I420 by another name; no pixel type */
#define VXCOMPRESSION_YV12 0x32315659u /* I420 with the V plane first; no pixel type */
#define VXCOMPRESSION_V210 0x30313276u

/* Where the planes of a YUV image lie, in bytes from its start. Packed images have a luma stride
 * only, which is that of the whole pixels. */
typedef struct VxYuvPlanes
{
    int32_t lumaStride;
    int32_t uOffset;
    int32_t uStride;
    int32_t vOffset;
    int32_t vStride;
} VxYuvPlanes;
VX_STATIC_ASSERT(sizeof(VxYuvPlanes) == 20, "five 32-bit words");

#define VXBITATTRIBS_GRAY 0x1000u
#define VXBITATTRIBS_OTHER 0xFFFFFFFFu

/* What VxPixelTypeToBitAttribs tells hosts of a type; the library never reads it. */
typedef struct VxBitAttribs
{
    uint32_t size;       /* 64 */
    uint32_t attributes; /* VXBITATTRIBS_GRAY for the gray types, else VXBITATTRIBS_OTHER */
    uint32_t lowest;     /* 0 */
    uint32_t highest;    /* 0xFFFFFFFF */
    double lowestFloat;  /* 0.0 */
    double highestFloat; /* 1.0 */
    uint8_t reserved[32];
} VxBitAttribs;
VX_STATIC_ASSERT(sizeof(VxBitAttribs) == 64, "the record tells its size");
VX_STATIC_ASSERT(offsetof(VxBitAttribs, lowestFloat) == 16, "the published order of fields");

#define VXDIBALLOC_ZERO 1u /* VxDibAlloc: the pixels are 0 */

VX_EXTERN_C_BEGIN

/* The type of a bitmap; 0 for a null header and for any header that no type fits. With BI_BITFIELDS
 * the three masks are read too, and only the number of their bits counts, not which they are. */
VX_EXPORT int32_t VxGetPixelType(const BITMAPINFOHEADER* header);

/* Bits a pixel of a type, 0 for an unknown one, and what a header of the type holds.
 *   outCompression  may be null; 0 for an unknown type
 *   outRecord       may be null; recordBytes is the room there
 *   outMasks        may be null; room for three masks, red, green, blue, 0 for types without
 * With a record of less than 64 bytes the result is 0 and nothing is written anywhere. */
VX_EXPORT int32_t VxPixelTypeToBitAttribs(int32_t type, uint32_t* outCompression, VxBitAttribs* outRecord,
                                          int32_t recordBytes, uint32_t* outMasks);

/* Widths in bits of the channels red, green, blue, alpha, into 4 bytes (not null); returns the bits a pixel.
 * Gray types have their width in the fourth byte; palette types have the width of the table's
 * entries; YUV and unknown types give 0 throughout. */
VX_EXPORT int32_t VxGetPixelBitsPerChannel(int32_t type, uint8_t* out);

/* Bytes of the YUV image that biWidth, biHeight and biCompression describe; 0 for any other
 * compression, with a record of zeros. outPlanes may be null. Products wrap at 32 bits and are
 * unsigned, so that images of up to 4 GiB are told right; negative sizes have no defined result. */
VX_EXPORT uint32_t VxYUVImageBytesAndOffsets(const BITMAPINFOHEADER* header, VxYuvPlanes* outPlanes);

/* Writes the header for a type, and the masks or the colour table behind it.
 *   bitmapInfo     room for 52 bytes with type VXPIXEL_RGB565 or VXPIXEL_RGB101010, else for 40 and
 *                  4 a given palette entry; null is E_INVALIDARG
 *   palette        entries to copy; null writes none. It may be the table behind bitmapInfo itself.
 *   paletteCount   entries, below 0 as 0
 *   outImageBytes  bytes of the pixels; 0 on failure; may be null
 * biClrUsed is paletteCount; without palette and count a type of 8 bits or fewer gets one less than
 * its number of colours: 255, 15, 3, 1. Types with masks take no palette and have biClrUsed 0.
 * E_INVALIDARG for an unknown type, with nothing written to bitmapInfo. */
VX_EXPORT HRESULT VxVideo_InitBitmapInfo(BITMAPINFOHEADER* bitmapInfo, int32_t type, int32_t width,
                                         int32_t height, const RGBQUAD* palette, int32_t paletteCount,
                                         uint32_t* outImageBytes);

/* VxVideo_InitBitmapInfo, which also tells the bytes in front of the pixels. Both results may be
 * null, and are 0 on failure. */
VX_EXPORT HRESULT VxDibInfo(uint32_t* outHeaderBytes, uint32_t* outImageBytes, BITMAPINFOHEADER* bitmapInfo,
                            int32_t type, int32_t width, int32_t height, const RGBQUAD* palette,
                            int32_t paletteCount);

/* Allocates a bitmap in one block: header, table or masks, pixels. VxDibFree gives it back.
 *   outDib         null on failure
 *   palette        entries, or null: a table of zeros
 *   paletteCount   at most 256, else E_INVALIDARG
 *   flags          VXDIBALLOC_ZERO; the pixels are undefined without. Other bits have no effect.
 *   tag            not read
 * E_INVALIDARG for an unknown type; E_OUTOFMEMORY without memory, and where width or height are
 * negative or the sizes in the header would wrap. The block is movable global memory, locked. A
 * palette with paletteCount 0 on a BI_RGB type of 8 bits or fewer leaves biClrUsed 0, which means a
 * full table: the block has room for it, though VxDibInfo counts none. */
VX_EXPORT HRESULT VxDibAlloc(BITMAPINFOHEADER** outDib, int32_t type, int32_t width, int32_t height,
                             const RGBQUAD* palette, int32_t paletteCount, uint32_t flags, intptr_t tag);

/* Frees a bitmap from VxDibAlloc, or any locked global block; null is nothing. A pointer that is
 * neither is the caller's error, which a negative mode declares to be expected; it is left alone
 * either way. Returns S_OK. */
VX_EXPORT HRESULT VxDibFree(BITMAPINFOHEADER* dib, int32_t mode);

/* Mirrors a bitmap in place, vertically first.
 *   rect            null for the whole bitmap. Of its part inside the bitmap only width and height
 *                   count: what is mirrored begins at the first pixel of the first row in memory.
 *   flipHorizontal  mirrors each row; types of 24 and 32 bits only
 *   flipVertical    exchanges rows, each whole: |stride| bytes from the row's first pixel
 * E_NOTIMPL for the types below 23 and above 32, for 30 and 32, and where flipHorizontal is asked of
 * another depth: the vertical part is then done. E_INVALIDARG with stride 0 where a padded row does
 * not fit 32 bits. An empty area is success. */
VX_EXPORT HRESULT VxDibFlip(BITMAPINFOHEADER* header, void* pixels, const RECT* rect, int32_t stride,
                            int32_t flipHorizontal, int32_t flipVertical);

/* Exchanges red and blue of every pixel in place: types 27, 28, 29 and 32, else E_NOTIMPL. rect and
 * the other results as in VxDibFlip. */
VX_EXPORT HRESULT VxDibSwapRB(BITMAPINFOHEADER* header, void* pixels, const RECT* rect, int32_t stride);

/* The number of bits set. */
VX_EXPORT int32_t VxCountBits(uint32_t value);

/* count bits set from firstBit up; what lies outside the bits 0 to 31 falls off. */
VX_EXPORT uint32_t VxCreateBitMask(int32_t firstBit, int32_t count);

/* 1 for a bitmap that is not plain pixels in rows: a compression other than BI_RGB, BI_BITFIELDS,
 * VXDB and VXGS, YUV included, or one of these that no pixel type fits; else 0. */
VX_EXPORT int32_t VxVideo_IsCompressed(const BITMAPINFOHEADER* header);

/* Colour tables to display palettes and back; the fourth byte becomes 0. count is in entries, 0 or
 * less does nothing. dst may be src. */
VX_EXPORT void VxVideo_PaletteRGBAFromEntry(RGBQUAD* dst, const PALETTEENTRY* src, int32_t count);
VX_EXPORT void VxVideo_PaletteEntryFromRGBA(PALETTEENTRY* dst, const RGBQUAD* src, int32_t count);

VX_EXTERN_C_END

#endif
