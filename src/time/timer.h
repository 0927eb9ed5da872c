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

// One clock's functions, each of them whole: what is exported jumps to it. A stamp is a raw reading.
struct TimerFunctions
{
    int64_t (*millisec)(const int64_t* stamp);
    int64_t (*microsec)(const int64_t* stamp);
    int64_t (*moveMillisec)(int64_t* stamp); // the stamp becomes now
    int64_t (*moveMicrosec)(int64_t* stamp);
    int64_t (*raw)(const int64_t* stamp);
    int64_t (*moveRaw)(int64_t* stamp);
};

extern const TimerFunctions kTickTimer;    // whole milliseconds, cut to 32 bits
extern const TimerFunctions kCounterTimer; // only once TimerEarlyInitialize has chosen it

} // namespace vx
