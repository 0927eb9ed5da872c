/* Comparing texts, and their case. */
#ifndef VX_PLATFORM_STRINGS_H
#define VX_PLATFORM_STRINGS_H

#include "vx/platform/types.h"

VX_EXTERN_C_BEGIN

/* Compares two texts without regard to case, in every script: below 0, 0 or above 0, as the first comes
 * before, is the same as, or comes behind the second. Texts are ordered by the code points of their
 * folded characters, in every locale alike; a null comes before all texts. Allocates nothing. */
VX_PLATFORM_API int lstrcmpiW(const WCHAR* first, const WCHAR* second);

/* The upper-case form of a character, in every script and every locale alike; itself where it has none, or
 * none of one character. Halves of surrogate pairs have none. */
VX_PLATFORM_API WCHAR VxPlatform_ToUpper(WCHAR character);

VX_EXTERN_C_END

#endif
