/* What every header of the exported interface stands on.
 *
 * All exported functions have C linkage, take plain values and pointers, and let no C++ exception
 * out. Pixels, rows and buffers are void pointers with a signed 32-bit byte stride; text is
 * zero-terminated UTF-16. Any buffer stays its owner's: the library frees only what it allocated,
 * through the family's own call. */
#ifndef VX_TYPES_H
#define VX_TYPES_H

#include "vx/platform/types.h"

#define VX_EXPORT VX_VISIBLE

/* Status codes of the library's own, beside those of the platform. */
#define VX_E_UNSUPPORTED_MEDIA ((HRESULT)0x8004E000u)
#define VX_E_ITEM_NOT_FOUND ((HRESULT)0x8004E00Au) /* no such key, value, text or resource */
#define VX_E_BUFFERTOSMALL ((HRESULT)0x8004E03Cu)  /* the result does not fit */

#endif
