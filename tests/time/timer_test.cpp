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

} // namespace
