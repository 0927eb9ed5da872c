#include "time/timer.h"

#include "vx/platform/clock.h"
#include "vx/timer.h"

#include <algorithm>
#include <utility>

namespace vx {

CounterScale CounterScale::Of(uint32_t frequency)
{
    CounterScale scale;
    scale.ticksPerMillisec = std::max(frequency / 1000, 1u); // below 1 kHz a millisecond is one tick
    scale.ticksPerMicrosec = std::max(scale.ticksPerMillisec / 1000, 1u);
    const uint32_t quotient = frequency / scale.ticksPerMicrosec;
    scale.microDivisor = quotient == 1'000'000 ? 0 : quotient;
    return scale;
}

int64_t CounterScale::Microsec(int64_t ticks) const
{
    const int64_t quotient = ticks / int64_t(ticksPerMicrosec);
    return microDivisor == 0 ? quotient : MulDiv(int(quotient), 1'000'000, int(microDivisor));
}

namespace {

CounterScale g_scale; // written with g_timer

// The two clocks: how a raw reading is taken, and how the difference of two becomes a time.
struct CounterClock
{
    static int64_t Now()
    {
        LARGE_INTEGER now;
        QueryPerformanceCounter(&now);
        return now.QuadPart;
    }
    static int64_t Millisec(int64_t difference) { return g_scale.Millisec(difference); }
    static int64_t Microsec(int64_t difference) { return g_scale.Microsec(difference); }
};

struct TickClock
{
    static int64_t Now() { return GetTickCount(); }
    static int64_t Millisec(int64_t difference) { return uint32_t(difference); }
    static int64_t Microsec(int64_t difference) { return uint32_t(difference) * 1000u; }
};

template <class Clock>
struct Timer
{
    static int64_t Raw(const int64_t* stamp) { return int64_t(uint64_t(Clock::Now()) - uint64_t(*stamp)); }
    static int64_t MoveRaw(int64_t* stamp)
    {
        const int64_t now = Clock::Now();
        return int64_t(uint64_t(now) - uint64_t(std::exchange(*stamp, now)));
    }
    static int64_t Millisec(const int64_t* stamp) { return Clock::Millisec(Raw(stamp)); }
    static int64_t Microsec(const int64_t* stamp) { return Clock::Microsec(Raw(stamp)); }
    static int64_t MoveMillisec(int64_t* stamp) { return Clock::Millisec(MoveRaw(stamp)); }
    static int64_t MoveMicrosec(int64_t* stamp) { return Clock::Microsec(MoveRaw(stamp)); }

    static constexpr TimerFunctions kFunctions = {Millisec,     Microsec, MoveMillisec,
                                                  MoveMicrosec, Raw,      MoveRaw};
};

} // namespace

constexpr TimerFunctions kTickTimer = Timer<TickClock>::kFunctions;
constexpr TimerFunctions kCounterTimer = Timer<CounterClock>::kFunctions;

namespace {

// Written once, by the kernel's early start on the host's main thread. A copy, not a pointer: a call
// is one load and one jump.
constinit TimerFunctions g_timer = kTickTimer;
bool g_counterChosen = false;
int64_t g_base = 0;

} // namespace

void TimerEarlyInitialize(int32_t stage)
{
    if (stage == 0 || g_counterChosen)
        return;
    LARGE_INTEGER frequency;
    if (QueryPerformanceFrequency(&frequency) && frequency.u.LowPart != 0) {
        g_scale = CounterScale::Of(frequency.u.LowPart);
        g_timer = kCounterTimer;
        g_counterChosen = true;
    }
    g_timer.moveRaw(&g_base);
}

} // namespace vx

using vx::g_timer;

int64_t VxGetMillisec()
{
    return g_timer.millisec(&vx::g_base);
}

int64_t VxGetMicrosec()
{
    return g_timer.microsec(&vx::g_base);
}

int64_t VxGetMillisecEx(const int64_t* stamp)
{
    return g_timer.millisec(stamp);
}

int64_t VxGetMicrosecEx(const int64_t* stamp)
{
    return g_timer.microsec(stamp);
}

int64_t VxDeltaMillisecEx(int64_t* stamp)
{
    return g_timer.moveMillisec(stamp);
}

int64_t VxDeltaMicrosecEx(int64_t* stamp)
{
    return g_timer.moveMicrosec(stamp);
}

void VxTimer_LateInitialize() {}
