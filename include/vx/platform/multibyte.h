/* 8-bit text and wide text.
 *
 * The system's 8-bit text is UTF-8. What is no UTF-8, or half of a surrogate pair, becomes U+FFFD. Lengths
 * count bytes on one side and characters of 16 bits on the other: a character of 16 bits has 1 to 3 bytes, a
 * surrogate pair 4. Nothing is allocated; any thread may call. */
#ifndef VX_PLATFORM_MULTIBYTE_H
#define VX_PLATFORM_MULTIBYTE_H

#include "vx/platform/types.h"

#define CP_ACP 0u      /* the system's */
#define CP_UTF8 65001u /* the same here */
#define MB_PRECOMPOSED 0x00000001u

VX_EXTERN_C_BEGIN

/* The bytes of a text without its terminator, at most 0x7FFFFFFF; 0 for null. */
VX_PLATFORM_API int lstrlenA(const char* text);

/* Converts between the two.
 *   codePage  CP_ACP or CP_UTF8
 *   flags     MB_PRECOMPOSED, which has no effect, or 0; the other direction takes 0
 *   from      text, and its length; -1: it is terminated, and the terminator is converted too. Not the
 *             room's memory
 *   to        room, and its size, 0: only the room needed is returned
 *   defaultCharacter, usedDefault  null: every character has a form
 * Returns what was written, in characters or bytes. 0 with ERROR_INSUFFICIENT_BUFFER where the room is too
 * small (what fits may have been written), with ERROR_INVALID_PARAMETER for a null text, an empty one of
 * length 0 or below -1, a negative size and other code pages, with ERROR_INVALID_FLAGS for other flags. */
VX_PLATFORM_API int MultiByteToWideChar(UINT codePage, DWORD flags, const char* from, int fromBytes,
                                        WCHAR* to, int toChars);
VX_PLATFORM_API int WideCharToMultiByte(UINT codePage, DWORD flags, const WCHAR* from, int fromChars,
                                        char* to, int toBytes, const char* defaultCharacter,
                                        BOOL* usedDefault);

VX_EXTERN_C_END

#endif
