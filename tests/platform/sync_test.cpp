#include "vx/platform/sync.h"
#include "vx/platform/threads.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <latch>
#include <thread>
#include <vector>

namespace {

class Section
{
public:
    // Storage as a host has it, not zeroed.
    Section()
    {
        std::memset(&section_, 0xAB, sizeof(section_));
        InitializeCriticalSection(&section_);
    }
    ~Section() { DeleteCriticalSection(&section_); }
    CRITICAL_SECTION* operator&() { return &section_; }

private:
    CRITICAL_SECTION section_;
};

template <class Work>
void OnOtherThread(const Work& work)
{
    std::jthread thread(work);
}

bool OthersMayEnter(Section& section)
{
    bool entered = false;
    OnOtherThread([&] {
        entered = TryEnterCriticalSection(&section) != FALSE;
        if (entered)
            LeaveCriticalSection(&section);
    });
    return entered;
}

TEST(CriticalSection, BelongsToItsThreadUntilLeftAsOftenAsEntered)
{
    Section section;
    EXPECT_TRUE(OthersMayEnter(section));
    EnterCriticalSection(&section);
    EXPECT_TRUE(TryEnterCriticalSection(&section));
    EnterCriticalSection(&section);
    for (int entries = 3; entries > 0; --entries) {
        EXPECT_FALSE(OthersMayEnter(section)) << entries << " entries";
        LeaveCriticalSection(&section);
    }
    EXPECT_TRUE(OthersMayEnter(section));
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

TEST(Threads, NumbersAreSteadyAndDifferent)
{
    const DWORD here = GetCurrentThreadId();
    DWORD there = here;
    OnOtherThread([&] { there = GetCurrentThreadId(); });
    EXPECT_NE(here, 0u);
    EXPECT_NE(there, 0u);
    EXPECT_NE(there, here);
    EXPECT_EQ(GetCurrentThreadId(), here);
}

} // namespace
