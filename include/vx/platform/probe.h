/* Whether memory can be read, without reading it. */
#ifndef VX_PLATFORM_PROBE_H
#define VX_PLATFORM_PROBE_H

#include "vx/platform/types.h"

VX_EXTERN_C_BEGIN

/* TRUE where any of `bytes` bytes from `address` on cannot be read; FALSE for 0 bytes, whatever the
 * address. The answer can be out of date as soon as another thread maps or unmaps memory. Safe on any
 * thread and in a fault handler; leaves errno as it was. */
VX_PLATFORM_API BOOL IsBadReadPtr(const void* address, SIZE_T bytes);

VX_EXTERN_C_END

#endif
