/* Making operations of the platform layer fail on purpose. For tests only. */
#ifndef VX_PLATFORM_TESTING_H
#define VX_PLATFORM_TESTING_H

#include "vx/platform/types.h"

VX_EXTERN_C_BEGIN

/* The n-th allocation of a block's bytes from now, on any thread, fails once for want of memory;
 * 1 is the next one, 0 takes back what was asked for. */
VX_PLATFORM_API void VxPlatform_FailAllocationAt(uint32_t n);

/* The n-th and all behind it fail, until either function takes that back. */
VX_PLATFORM_API void VxPlatform_FailAllocationsFrom(uint32_t n);

VX_EXTERN_C_END

#endif
