#include "vx/platform/clock.h"

#include <cstdlib>
#include <limits>
#include <time.h>

namespace {

constexpr LONGLONG kTicksPerSecond = 10'000'000;
constexpr LONGLONG kNanosPerTick = 1'000'000'000 / kTicksPerSecond;

} // namespace

BOOL QueryPerformanceCounter(LARGE_INTEGER* count)
{
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    count->QuadPart = now.tv_sec * kTicksPerSecond + now.tv_nsec / kNanosPerTick;
    return TRUE;
}

BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency)
{
    frequency->QuadPart = kTicksPerSecond;
    return TRUE;
}

DWORD GetTickCount()
{
    timespec now;
    clock_gettime(CLOCK_BOOTTIME, &now);
    return DWORD(now.tv_sec * 1000 + now.tv_nsec / 1'000'000);
}

int MulDiv(int number, int numerator, int denominator)
{
    if (denominator == 0)
        return -1;
    const LONGLONG product = LONGLONG(number) * numerator;
    const LONGLONG divisor = denominator;
    const bool negative = (product < 0) != (divisor < 0);
    const LONGLONG half = std::llabs(divisor) / 2;
    const LONGLONG quotient = (std::llabs(product) + half) / std::llabs(divisor);
    if (quotient > std::numeric_limits<int>::max())
        return -1;
    return int(negative ? -quotient : quotient);
}
