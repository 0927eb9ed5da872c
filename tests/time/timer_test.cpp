#include "vx/timer.h"

#include "time/timer.h"
#include "vx/platform/clock.h"

#include <gtest/gtest.h>
#include <thread>

namespace {

TEST(CounterScale, FollowsFromTheFrequency)
{
    const struct
    {
        uint32_t frequency, perMillisec, perMicrosec, divisor;
    } cases[] = {
        {10'000'000, 10'000, 10, 0},
        {3'579'545, 3'579, 3, 1'193'181},
        {32'768, 32, 1, 32'768},
        {500, 1, 1, 500},
    };
    for (const auto& c : cases) {
        const auto scale = vx::CounterScale::Of(c.frequency);
        EXPECT_EQ(scale.ticksPerMillisec, c.perMillisec) << c.frequency;
        EXPECT_EQ(scale.ticksPerMicrosec, c.perMicrosec) << c.frequency;
        EXPECT_EQ(scale.microDivisor, c.divisor) << c.frequency;
    }
}

TEST(CounterScale, MicrosecondsRoundAndStopAt32BitsWhereTheyMustBeCorrected)
{
    const auto microsec = [](uint32_t frequency, int64_t ticks) {
        return vx::CounterScale::Of(frequency).Microsec(ticks);
    };
    EXPECT_EQ(microsec(10'000'000, 100'000'000'000'019), 10'000'000'000'001);
    EXPECT_EQ(microsec(3'579'545, 3'579'543), 1'000'000);
    EXPECT_EQ(microsec(32'768, 32'768 * 2'000), 2'000'000'000);
    EXPECT_EQ(microsec(32'768, 32'768 * 3'000), -1) << "3,000 seconds do not fit";
}

// In one test, since the clock is chosen once for the process.
TEST(Timer, CountsOnBothClocks)
{
    int64_t stamp = 0;
    const int64_t sinceStart = VxDeltaMillisecEx(&stamp);
    EXPECT_EQ(stamp, sinceStart) << "the tick count's own value";
    const int64_t future = stamp + (int64_t(1) << 40) + 1000; // cut to 32 bits, a second from now
    EXPECT_GT(VxGetMillisecEx(&future), INT64_C(0xFFFF0000));
    EXPECT_LE(VxGetMillisecEx(&future), INT64_C(0xFFFFFFFF));
    int64_t moved = future;
    const int64_t wrapped = VxDeltaMicrosecEx(&moved);
    EXPECT_TRUE(wrapped >= 0 && wrapped <= INT64_C(0xFFFFFFFF)) << wrapped;
    moved = future;
    EXPECT_LE(VxDeltaMillisecEx(&moved), INT64_C(0xFFFFFFFF));
    const int64_t later = stamp - 5000;
    EXPECT_EQ(VxGetMicrosecEx(&later) % 1000, 0) << "whole milliseconds";

    vx::TimerEarlyInitialize(0);
    EXPECT_GT(VxGetMillisec(), 0) << "still the tick count, since 0";
    vx::TimerEarlyInitialize(4);
    EXPECT_LT(VxGetMillisec(), 10'000) << "since the choice";
    stamp = 0;
    VxDeltaMicrosecEx(&stamp);
    const int64_t kept = stamp;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const int64_t micro = VxGetMicrosecEx(&stamp);
    EXPECT_GE(micro, 20'000);
    EXPECT_GE(VxGetMicrosecEx(&stamp), micro);
    EXPECT_EQ(stamp, kept);
    EXPECT_GE(VxDeltaMillisecEx(&stamp), 20);
    EXPECT_GT(stamp, kept);
    int64_t raw = stamp;
    EXPECT_GT(vx::kCounterTimer.raw(&raw), 0);
    EXPECT_EQ(stamp + vx::kCounterTimer.moveRaw(&raw), raw) << "not scaled";
    raw = 0;
    EXPECT_EQ(vx::kTickTimer.moveRaw(&raw), raw);
    EXPECT_GE(vx::kTickTimer.raw(&raw), 0);
    const int64_t before = VxGetMicrosec();
    vx::TimerEarlyInitialize(4);
    VxTimer_LateInitialize();
    EXPECT_GE(VxGetMicrosec(), before) << "a second set-up changes nothing";
}

} // namespace
