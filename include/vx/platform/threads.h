/* Threads of this process. */
#ifndef VX_PLATFORM_THREADS_H
#define VX_PLATFORM_THREADS_H

#include "vx/platform/types.h"

VX_EXTERN_C_BEGIN

/* The calling thread's number, never 0: no two living threads of the machine share one. */
VX_PLATFORM_API DWORD GetCurrentThreadId(void);

VX_EXTERN_C_END

#endif
