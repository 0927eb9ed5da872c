#include "vx/platform/memory.h"

#include "vx/platform/lasterror.h"
#include "vx/platform/testing.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {

class GlobalMemory : public testing::Test
{
protected:
    void SetUp() override { SetLastError(ERROR_SUCCESS); }
    void TearDown() override { VxPlatform_FailAllocationAt(0); }
};

bool AllBytesAre(const void* bytes, size_t count, uint8_t value)
{
    const auto* first = static_cast<const uint8_t*>(bytes);
    return std::all_of(first, first + count, [value](uint8_t byte) { return byte == value; });
}

TEST_F(GlobalMemory, AFixedBlockIsItsPointer)
{
    for (const SIZE_T bytes : {SIZE_T(0), SIZE_T(1), SIZE_T(1) << 20}) {
        const HGLOBAL block = GlobalAlloc(GPTR, bytes);
        EXPECT_TRUE(AllBytesAre(block, bytes, 0));
        EXPECT_EQ(GlobalHandle(block), block);
        EXPECT_EQ(GlobalSize(block), bytes);
        EXPECT_EQ(GlobalLock(block), block);
        EXPECT_EQ(GlobalFlags(block), 0u) << "a fixed block counts no locks";
        EXPECT_TRUE(GlobalUnlock(block));
        EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
        EXPECT_EQ(GlobalFree(block), nullptr);
    }
}

TEST_F(GlobalMemory, AMovableBlockCountsItsLocks)
{
    const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, 100);
    ASSERT_NE(block, nullptr);
    void* const bytes = GlobalLock(block);
    EXPECT_NE(bytes, block);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(bytes) % 64, 0u);
    EXPECT_EQ(GlobalLock(block), bytes);
    EXPECT_EQ(GlobalFlags(block), 2u);
    EXPECT_EQ(GlobalHandle(bytes), block);
    EXPECT_TRUE(GlobalUnlock(block));
    SetLastError(ERROR_MORE_DATA);
    EXPECT_FALSE(GlobalUnlock(block)) << "the last lock";
    EXPECT_EQ(GetLastError(), ERROR_SUCCESS);
    EXPECT_FALSE(GlobalUnlock(block));
    EXPECT_EQ(GetLastError(), ERROR_NOT_LOCKED);
    for (int i = 0; i < 300; ++i)
        GlobalLock(block);
    EXPECT_EQ(GlobalFlags(block), 255u);
    EXPECT_EQ(GlobalFree(block), nullptr) << "though it is locked";
}

TEST_F(GlobalMemory, WhatIsNoLiveBlockIsRefusedUnread)
{
    const HGLOBAL movable = GlobalAlloc(GMEM_MOVEABLE, 64);
    void* const bytes = GlobalLock(movable);
    const HGLOBAL fixed = GlobalAlloc(GMEM_FIXED, 64), freed = GlobalAlloc(GMEM_MOVEABLE, 8);
    GlobalFree(freed);
    int local = 0;
    const auto value = [](uintptr_t bits) { return reinterpret_cast<void*>(bits); };
    for (void* handle :
         {bytes, freed, static_cast<void*>(&local), static_cast<void*>(static_cast<char*>(fixed) + 1),
          value(1), value(2), value(~uintptr_t(0)), value(0x8000000000000000u)}) {
        const auto refused = [](bool failed) {
            const bool is = failed && GetLastError() == ERROR_INVALID_HANDLE;
            SetLastError(ERROR_SUCCESS);
            return is;
        };
        EXPECT_TRUE(refused(GlobalLock(handle) == nullptr)) << handle;
        EXPECT_TRUE(refused(!GlobalUnlock(handle))) << handle;
        EXPECT_TRUE(refused(GlobalSize(handle) == 0)) << handle;
        EXPECT_TRUE(refused(GlobalFlags(handle) == GMEM_INVALID_HANDLE)) << handle;
        EXPECT_TRUE(refused(GlobalReAlloc(handle, 10, GMEM_MOVEABLE) == nullptr)) << handle;
        EXPECT_TRUE(refused(GlobalFree(handle) == handle)) << handle;
        EXPECT_TRUE(handle == bytes || refused(GlobalHandle(handle) == nullptr)) << handle;
    }
    EXPECT_EQ(GlobalHandle(movable), nullptr) << "a handle is no pointer";
    EXPECT_EQ(GlobalHandle(nullptr), nullptr);
    EXPECT_EQ(GlobalFree(nullptr), nullptr);
    EXPECT_EQ(GlobalFree(movable), nullptr);
    EXPECT_EQ(GlobalFree(fixed), nullptr);
}

TEST_F(GlobalMemory, ResizingKeepsTheBytesAndClearsWhatIsAdded)
{
    for (const UINT kind : {GMEM_MOVEABLE, GMEM_FIXED}) {
        HGLOBAL block = GlobalAlloc(kind, 100);
        std::memset(GlobalLock(block), 0x55, 100);
        GlobalUnlock(block);
        SIZE_T kept = 100;
        for (const SIZE_T bytes : {SIZE_T(60), SIZE_T(100), SIZE_T(5000), SIZE_T(1), SIZE_T(4000)}) {
            block = GlobalReAlloc(block, bytes, GMEM_MOVEABLE | GMEM_ZEROINIT);
            ASSERT_NE(block, nullptr);
            kept = std::min(kept, bytes);
            const auto* now = static_cast<const uint8_t*>(GlobalLock(block));
            EXPECT_EQ(GlobalSize(block), bytes);
            EXPECT_EQ(GlobalHandle(now), block);
            EXPECT_TRUE(AllBytesAre(now, kept, 0x55)) << bytes;
            EXPECT_TRUE(AllBytesAre(now + kept, bytes - kept, 0)) << bytes;
            GlobalUnlock(block);
        }
        EXPECT_EQ(GlobalFree(block), nullptr);
    }
}

TEST_F(GlobalMemory, LockedAndFixedBlocksStayWhereTheyAre)
{
    const HGLOBAL locked = GlobalAlloc(GMEM_MOVEABLE, 100), fixed = GlobalAlloc(GMEM_FIXED, 100);
    void* const bytes = GlobalLock(locked);
    for (const HGLOBAL block : {locked, fixed}) {
        EXPECT_EQ(GlobalReAlloc(block, 10, 0), block) << "shrinks in place";
        EXPECT_EQ(GlobalReAlloc(block, 100, 0), block) << "and takes its room again";
        EXPECT_EQ(GlobalReAlloc(block, 101, 0), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
        EXPECT_EQ(GlobalSize(block), 100u);
    }
    EXPECT_EQ(GlobalReAlloc(locked, 0, 0), nullptr) << "is not discarded either";
    EXPECT_EQ(GlobalHandle(bytes), locked);
    EXPECT_EQ(GlobalReAlloc(locked, 10, GMEM_MODIFY), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_NOT_SUPPORTED);
    GlobalFree(locked);
    GlobalFree(fixed);
}

TEST_F(GlobalMemory, AnAllocationThatFailsChangesNothing)
{
    VxPlatform_FailAllocationsFrom(2);
    const HGLOBAL block = GlobalAlloc(GHND, 10);
    ASSERT_NE(block, nullptr) << "the second one fails, not the first";
    EXPECT_EQ(GlobalReAlloc(block, 1000, 0), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(GlobalSize(block), 10u);
    EXPECT_TRUE(AllBytesAre(GlobalLock(block), 10, 0));
    GlobalUnlock(block);
    VxPlatform_FailAllocationAt(1);
    EXPECT_EQ(GlobalReAlloc(block, 1000, 0), block) << "there is memory, but none to spare";
    GlobalLock(block);
    EXPECT_EQ(GlobalReAlloc(block, 1001, 0), nullptr);
    GlobalFree(block);
    for (const UINT kind : {GMEM_MOVEABLE, GMEM_FIXED}) {
        SetLastError(ERROR_SUCCESS);
        VxPlatform_FailAllocationAt(1);
        EXPECT_EQ(GlobalAlloc(kind, 10), nullptr);
        EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
    }
}

TEST_F(GlobalMemory, ThreadsAllocateLookUpAndFreeAtOnce)
{
    std::vector<std::jthread> threads;
    for (uint8_t id = 1; id <= 4; ++id)
        threads.emplace_back([id] {
            for (SIZE_T bytes = 1; bytes <= 500; ++bytes) {
                const HGLOBAL block = GlobalAlloc(bytes % 2 ? GMEM_MOVEABLE : GMEM_FIXED, bytes);
                void* const data = GlobalLock(block);
                std::memset(data, id, bytes);
                EXPECT_EQ(GlobalHandle(data), block);
                EXPECT_TRUE(AllBytesAre(data, bytes, id));
                EXPECT_EQ(GlobalFree(block), nullptr);
            }
        });
}

} // namespace
