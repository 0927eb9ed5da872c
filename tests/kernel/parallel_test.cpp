#include "kernel/parallel.h"

#include <atomic>
#include <gtest/gtest.h>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

namespace {

TEST(ParallelRows, WorksEveryRowOnce)
{
    for (const int32_t height : {-1, 0, 1, 2, 3, 7, 1080}) {
        for (const int64_t bytes : {int64_t(0), vx::kParallelBytes}) {
            std::vector<std::atomic<int>> worked(size_t(height < 0 ? 0 : height));
            vx::ParallelRows(height, bytes, [&](int32_t y) { ++worked[size_t(y)]; });
            for (const auto& count : worked)
                ASSERT_EQ(count, 1);
        }
    }
}

TEST(ParallelRows, WorkersTakeTheCallersFloatModeForTheCallOnly)
{
    const unsigned before = vx::WithFloatMode::Current();
    for (const unsigned mode : {before | 0x8040, before}) {
        const vx::WithFloatMode set(mode);
        vx::ParallelRows(64, vx::kParallelBytes,
                         [&](int32_t) { EXPECT_EQ(vx::WithFloatMode::Current(), mode); });
    }
    EXPECT_EQ(vx::WithFloatMode::Current(), before);
}

} // namespace
