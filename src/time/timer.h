// The clock's set-up, for the kernel's start, and the arithmetic of its counter.
#pragma once

#include <cstdint>

namespace vx {

// Chooses the performance counter, once; `stage` 0 does nothing. Runs on the host's main thread
// before any other thread reads the clock.
void TimerEarlyInitialize(int32_t stage);

// What follows from the counter's frequency. All divisions are 32 bits wide and truncate.
struct CounterScale
{
    uint32_t ticksPerMillisec = 1;
    uint32_t ticksPerMicrosec = 1;
    uint32_t microDivisor = 0; // 0: ticksPerMicrosec is exact; else quotients to correct by 1,000,000 / this

    static CounterScale Of(uint32_t frequency);
    int64_t Millisec(int64_t ticks) const { return ticks / int64_t(ticksPerMillisec); }
    int64_t Microsec(int64_t ticks) const;
};

} // namespace vx
