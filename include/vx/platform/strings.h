/* Comparing texts. */
#ifndef VX_PLATFORM_STRINGS_H
#define VX_PLATFORM_STRINGS_H

#include "vx/platform/types.h"

VX_EXTERN_C_BEGIN

/* Compares two texts without regard to case, in every script: below 0, 0 or above 0, as the first comes
 * before, is the same as, or comes behind the second. Texts are ordered by the code points of their
 * folded characters, in every locale alike; a null comes before all texts. Allocates nothing. */
VX_PLATFORM_API int lstrcmpiW(const WCHAR* first, const WCHAR* second);

VX_EXTERN_C_END

#endif
