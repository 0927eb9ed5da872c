#include "vx/platform/sync.h"

#include <cstring>
#include <gtest/gtest.h>
#include <latch>
#include <thread>
#include <vector>

namespace {

bool OthersMayEnter(CRITICAL_SECTION& section)
{
    bool entered = false;
    std::jthread([&] {
        entered = TryEnterCriticalSection(&section) != FALSE;
        if (entered)
            LeaveCriticalSection(&section);
    }).join();
    return entered;
}

TEST(CriticalSection, BelongsToItsThreadUntilLeftAsOftenAsEntered)
{
    CRITICAL_SECTION section;
    std::memset(&section, 0xAB, sizeof(section)); // storage as a host has it, not zeroed
    InitializeCriticalSection(&section);
    EXPECT_TRUE(OthersMayEnter(section));
    EnterCriticalSection(&section);
    EXPECT_TRUE(TryEnterCriticalSection(&section));
    for (int entries = 2; entries > 0; --entries) {
        EXPECT_FALSE(OthersMayEnter(section)) << entries << " entries";
        LeaveCriticalSection(&section);
    }
    EXPECT_TRUE(OthersMayEnter(section));
    DeleteCriticalSection(&section);
}

TEST(CriticalSection, KeepsThreadsApart)
{
    CRITICAL_SECTION section;
    EXPECT_TRUE(InitializeCriticalSectionAndSpinCount(&section, 4000));
    int64_t sum = 0; // torn without the lock, and seen by the thread sanitizer
    constexpr int kThreads = 4, kRounds = 5000;
    {
        std::latch start(kThreads);
        std::vector<std::jthread> threads;
        for (int t = 0; t < kThreads; ++t)
            threads.emplace_back([&] {
                start.arrive_and_wait();
                for (int i = 0; i < kRounds; ++i) {
                    EnterCriticalSection(&section);
                    ++sum;
                    LeaveCriticalSection(&section);
                }
            });
    }
    DeleteCriticalSection(&section);
    EXPECT_EQ(sum, int64_t(kThreads) * kRounds);
}

} // namespace
