/* Elapsed time in milliseconds and microseconds.
 *
 * Times are counted from the library's own start (VxGetMillisec, VxGetMicrosec) or from a stamp that
 * the caller holds: a 64-bit raw reading of the clock, 0 before its first use. A first
 * VxDelta... call on a zero stamp gives the time since the clock's own zero, and leaves a good stamp.
 *
 * Until the kernel's start has run, and in a process where it never runs, the clock is the system's
 * tick count: whole milliseconds, wrapping at 32 bits. From then on it is the performance counter. A
 * stamp of the one means nothing under the other.
 *
 * Any thread may call; a stamp belongs to one thread at a time. */
#ifndef VX_TIMER_H
#define VX_TIMER_H

#include "vx/types.h"

VX_EXTERN_C_BEGIN

/* Since the library's start. */
VX_EXPORT int64_t VxGetMillisec(void);
VX_EXPORT int64_t VxGetMicrosec(void);

/* Since the stamp, which stays. Where the counter's frequency is no multiple of 1 MHz, microseconds
 * hold for times of up to 32 bits only; -1 where the result does not fit. */
VX_EXPORT int64_t VxGetMillisecEx(const int64_t* stamp);
VX_EXPORT int64_t VxGetMicrosecEx(const int64_t* stamp);

/* Since the stamp, which becomes now. */
VX_EXPORT int64_t VxDeltaMillisecEx(int64_t* stamp);
VX_EXPORT int64_t VxDeltaMicrosecEx(int64_t* stamp);

/* Part of the kernel's start; a host need not call it, and it changes nothing that shows. */
VX_EXPORT void VxTimer_LateInitialize(void);

VX_EXTERN_C_END

#endif
