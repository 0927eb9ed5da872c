/* The name of a bitmap's format, for a person.
 *
 * Text is UTF-16; it is cut to its capacity (characters, terminator included) and terminated. A null
 * buffer or a capacity below 1 writes nothing. All functions return 0. Any thread. */
#ifndef VX_FORMATTEXT_H
#define VX_FORMATTEXT_H

#include "vx/types.h"

VX_EXTERN_C_BEGIN

/* The name of a compression word: "RGB", "RGB (bitfields)", "RGBA", "Grayscale", or the four characters
 * of the word (VxFourCCToString). */
VX_EXPORT HRESULT VxVideo_GetFormatText(uint32_t compression, char16_t* text, int32_t capacity);

/* Width, height and bits a pixel of a header as they stand in it, as 720x-576x32. */
VX_EXPORT HRESULT VxVideo_GetAttribsText(const BITMAPINFOHEADER* header, char16_t* text, int32_t capacity);

/* The same.
 *   unused  ignored; pass null */
VX_EXPORT HRESULT VxVideo_GetAttribsTextEx(const BITMAPINFOHEADER* header, const void* unused, char16_t* text,
                                           int32_t capacity);

VX_EXTERN_C_END

#endif
