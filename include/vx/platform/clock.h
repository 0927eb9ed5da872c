/* Clocks that only move forward, and the arithmetic that goes with them. */
#ifndef VX_PLATFORM_CLOCK_H
#define VX_PLATFORM_CLOCK_H

#include "vx/platform/types.h"

typedef union LARGE_INTEGER
{
    struct
    {
        DWORD LowPart;
        LONG HighPart;
    } u;
    LONGLONG QuadPart;
} LARGE_INTEGER;
VX_STATIC_ASSERT(sizeof(LARGE_INTEGER) == 8, "64 bits");

VX_EXTERN_C_BEGIN

/* Ticks of the performance counter, from an arbitrary start. Returns TRUE. */
VX_PLATFORM_API BOOL QueryPerformanceCounter(LARGE_INTEGER* count);

/* Ticks a second: 10,000,000, constant. Returns TRUE. */
VX_PLATFORM_API BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency);

/* Milliseconds since the system started; wraps after 49.7 days. */
VX_PLATFORM_API DWORD GetTickCount(void);

/* number * numerator / denominator through 64 bits, rounded to the nearest, halves away from zero.
 * -1 where the denominator is 0 or the result does not fit 32 bits. */
VX_PLATFORM_API int MulDiv(int number, int numerator, int denominator);

VX_EXTERN_C_END

#endif
