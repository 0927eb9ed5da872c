#include "time/timer.h"

#include "vx/platform/clock.h"
#include "vx/timer.h"

#include <algorithm>

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

// The two clocks: how a raw reading is taken, and how a difference of two becomes a time.
struct Clock
{
    int64_t (*now)();
    int64_t (*millisec)(int64_t difference);
    int64_t (*microsec)(int64_t difference);
};

CounterScale g_scale; // written with g_clock

int64_t CounterNow()
{
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    return now.QuadPart;
}

int64_t TickNow()
{
    return GetTickCount();
}

constexpr Clock kTickClock = {
    TickNow,
    [](int64_t difference) { return int64_t(uint32_t(difference)); },
    [](int64_t difference) { return int64_t(uint32_t(difference) * 1000u); },
};

constexpr Clock kCounterClock = {
    CounterNow,
    [](int64_t difference) { return g_scale.Millisec(difference); },
    [](int64_t difference) { return g_scale.Microsec(difference); },
};

// Written once, by the kernel's early start on the host's main thread.
const Clock* g_clock = &kTickClock;
int64_t g_base = 0;

int64_t Difference(int64_t now, int64_t stamp)
{
    return int64_t(uint64_t(now) - uint64_t(stamp));
}

// Moves the stamp to now and returns by how much.
int64_t Advance(int64_t& stamp)
{
    const int64_t now = g_clock->now();
    const int64_t difference = Difference(now, stamp);
    stamp = now;
    return difference;
}

} // namespace

void TimerEarlyInitialize(int32_t stage)
{
    if (stage == 0 || g_clock == &kCounterClock)
        return;
    LARGE_INTEGER frequency;
    if (QueryPerformanceFrequency(&frequency) && frequency.u.LowPart != 0) {
        g_scale = CounterScale::Of(frequency.u.LowPart);
        g_clock = &kCounterClock;
    }
    g_base = g_clock->now();
}

} // namespace vx

using vx::g_clock;

int64_t VxGetMillisec()
{
    return VxGetMillisecEx(&vx::g_base);
}

int64_t VxGetMicrosec()
{
    return VxGetMicrosecEx(&vx::g_base);
}

int64_t VxGetMillisecEx(const int64_t* stamp)
{
    return g_clock->millisec(vx::Difference(g_clock->now(), *stamp));
}

int64_t VxGetMicrosecEx(const int64_t* stamp)
{
    return g_clock->microsec(vx::Difference(g_clock->now(), *stamp));
}

int64_t VxDeltaMillisecEx(int64_t* stamp)
{
    return g_clock->millisec(vx::Advance(*stamp));
}

int64_t VxDeltaMicrosecEx(int64_t* stamp)
{
    return g_clock->microsec(vx::Advance(*stamp));
}

void VxTimer_LateInitialize() {}
