/* Rectangles. A rectangle whose right is not above its left, or whose bottom is not above its top,
 * is empty; right and bottom are exclusive.
 *
 * Results may be written over an argument. A null pointer makes a function fail (FALSE) and change
 * nothing; IsRectEmpty takes it as empty. Coordinates wrap at 32 bits. No last error is set. */
#ifndef VX_PLATFORM_RECT_H
#define VX_PLATFORM_RECT_H

#include "vx/platform/types.h"

VX_EXTERN_C_BEGIN

VX_PLATFORM_API BOOL SetRect(RECT* rect, INT left, INT top, INT right, INT bottom);
/* All four coordinates 0. */
VX_PLATFORM_API BOOL SetRectEmpty(RECT* rect);
VX_PLATFORM_API BOOL CopyRect(RECT* out, const RECT* rect);
VX_PLATFORM_API BOOL OffsetRect(RECT* rect, INT dx, INT dy);
/* Moves every side outwards, with a negative value inwards. */
VX_PLATFORM_API BOOL InflateRect(RECT* rect, INT dx, INT dy);

VX_PLATFORM_API BOOL IsRectEmpty(const RECT* rect);
/* Compares coordinates: two empty rectangles may differ. */
VX_PLATFORM_API BOOL EqualRect(const RECT* a, const RECT* b);
/* The left and top sides belong to the rectangle, the right and bottom ones do not. */
VX_PLATFORM_API BOOL PtInRect(const RECT* rect, POINT point);

/* The common part. FALSE, with *out all zeros, where there is none. */
VX_PLATFORM_API BOOL IntersectRect(RECT* out, const RECT* a, const RECT* b);
/* The smallest rectangle that holds both; an empty one adds nothing. FALSE, with *out all zeros,
 * where both are empty. */
VX_PLATFORM_API BOOL UnionRect(RECT* out, const RECT* a, const RECT* b);
/* a without b where that is a rectangle, which it is when b covers a whole side of a; else a.
 * FALSE, with *out all zeros, where nothing remains. */
VX_PLATFORM_API BOOL SubtractRect(RECT* out, const RECT* a, const RECT* b);

VX_EXTERN_C_END

#endif
