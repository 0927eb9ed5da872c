// Lists under several threads; the thread sanitizer sees what these cannot.
#include "containers/list_support.h"
#include "vx/platform/threads.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <latch>
#include <thread>

namespace {

using namespace vxtest;

using L = List&;

struct Operation
{
    const ListKind& kind;
    int64_t refused;                             // the result where the calling thread may not use the list
    std::function<int64_t(L list, L other)> run; // on {1, 2} and {3}, which it may change
};

HRESULT Destroy(L list)
{
    const HRESULT status = VxList_Destroy(list);
    if (status == S_OK)
        list.Pointer() = nullptr;
    return status;
}

const void* const kKey = reinterpret_cast<const void*>(intptr_t(1));
constexpr VxListMatch kAnything = [](int64_t, const void*) { return 0; };
constexpr VxListCompare kCompare = [](int64_t, const void* left, const void* right) {
    return left < right ? -1 : int32_t(left > right);
};

// All that take the lock, with arguments that succeed.
const Operation kOperations[] = {
    {kArray, 0, [](L l, L) { return VxList_IsValidIndexSlow(l, 0); }},
    {kArray, E_FAIL, [](L l, L) { return VxList_GrowAllocated(l, 1); }},
    {kArray, E_FAIL, [](L l, L) { return VxList_ShrinkAllocated(l, 1); }},
    {kArray, E_FAIL, [](L l, L) { return VxList_ArrayForceItemCount(l, 1, 0); }},
    {kArray, E_FAIL, [](L l, L) { return VxList_MoveRange(l, 0, 1, 1); }},
    {kPointers, E_FAIL, [](L l, L) { return VxList_InsertList(l, 0, &kKey, 1); }},
    {kHeapItems, E_FAIL, [](L l, L) { return VxList_DeleteList(l, 0, 1, 0); }},
    {kPrivateHeap, E_FAIL,
     [](L l, L) {
         void* item = &item;
         const HRESULT status = VxList_AllocItem(l, 8, &item);
         EXPECT_EQ(item == nullptr, status != S_OK);
         return status;
     }},
    {kHeapItems, E_FAIL,
     [](L l, L) {
         int32_t index = 5;
         const HRESULT status = VxList_AllocAndInsertItem(l, nullptr, 8, 0, &index);
         EXPECT_EQ(index, status == S_OK ? 0 : -1);
         return status;
     }},
    {kHeapItems, E_FAIL, [](L l, L) { return VxList_ReAllocItem(l, 0, 64); }},
    {kHeapItems, 0, [](L l, L) { return int64_t(VxList_AllocSize(l, 0)); }},
    {kHeapItems, E_FAIL, [](L l, L o) { return VxList_MoveItemsBetweenHeapLists(l, 0, o, 0, 1); }},
    {kHeapItems, E_FAIL, [](L l, L o) { return VxList_MoveItemsBetweenHeapLists(o, 0, l, 0, 1); }},
    {kPointers, E_FAIL, [](L l, L) { return VxList_Sort(l, 9, kCompare); }},
    {kPointers, E_FAIL, [](L l, L) { return VxList_HeapSort(l, 9, kCompare); }},
    {kPointers, E_FAIL, [](L l, L o) { return VxList_SortTo(l, o, 9, kCompare); }},
    {kPointers, E_FAIL, [](L l, L o) { return VxList_SortTo(o, l, 9, kCompare); }},
    {kPointers, -1, [](L l, L) { return VxList_FindItemRange(l, 0, -1, 0, kAnything); }},
    {kPointers, -1, [](L l, L) { return VxList_FindSpecificItemRange(l, 0, -1, kKey); }},
    {kPointers, -1, [](L l, L) { return VxList_FindSortedItemRange(l, kKey, 0, -1, kCompare); }},
    {kPointers, -1, [](L l, L) { return VxList_FindSortedInsertIndexRange(l, kKey, 0, -1, kCompare); }},
    {kHeapItems, E_FAIL, [](L l, L) { return Destroy(l); }},
};

TEST(ListThreads, EveryOperationWaitsForTheLock)
{
    for (const bool converted : {false, true})
        for (const Operation& operation : kOperations) {
            SCOPED_TRACE(testing::Message()
                         << "row " << &operation - kOperations << ", converted " << converted);
            tVXLIST record;
            List list(operation.kind, {1, 2}, 4, VXLIST_OPT_LOCKED), other(operation.kind, {3});
            if (converted) {
                ASSERT_EQ(VxList_ConvertToInPlace(&list.Pointer(), &record), S_OK);
                list.Pointer() = &record;
            }
            CRITICAL_SECTION* lock = &list->lock;
            EnterCriticalSection(lock);
            std::latch started(1);
            std::atomic<bool> done = false;
            std::jthread thread([&] {
                started.count_down();
                EXPECT_NE(operation.run(list, other), operation.refused);
                done = true;
            });
            started.wait();
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
            EXPECT_FALSE(done);
            EXPECT_EQ(VxList_IsValidIndexSlow(list, 1), 1) << "the holder itself does not wait";
            LeaveCriticalSection(lock);
        }
}

TEST(ListThreads, OwnerCheckRefusesOtherThreads)
{
    for (const Operation& operation : kOperations) {
        List list(operation.kind, {1, 2}), other(operation.kind, {3});
        list->options &= ~VXLIST_OPT_ANYTHREAD;
        std::jthread([&] { EXPECT_EQ(operation.run(list, other), operation.refused); }).join();
        EXPECT_EQ(list.Values(), (std::vector<int64_t>{1, 2}));
        EXPECT_EQ(other.Values(), (std::vector<int64_t>{3}));
        EXPECT_EQ(VxList_GetSortCriteria(list) + VxList_GetSortCriteria(other), 0);
    }
}

TEST(ListThreads, OwnershipIsTakenAndGiven)
{
    List list(kPointers);
    list->options &= ~VXLIST_OPT_ANYTHREAD;
    constexpr int64_t kWide = INT64_MIN;
    VxList_SetUserData(list, kWide);
    std::jthread([&] {
        tVXLIST record, *pointer = list;
        EXPECT_EQ(VxList_ConvertToInPlace(&pointer, &record), E_FAIL);
        EXPECT_EQ(VxList_SetUserData(list, 8), 0xFFFFFFFF);
        EXPECT_EQ(VxList_GetUserData(list), 0xFFFFFFFF);
        EXPECT_EQ(VxList_SetThreadOwner(list, 0), S_OK);
        EXPECT_EQ(VxList_GetThreadOwner(list), GetCurrentThreadId());
        EXPECT_EQ(VxList_SetUserData(list, 8), kWide);
    }).join();
    EXPECT_EQ(VxList_GetUserData(list), 0xFFFFFFFF);
    EXPECT_EQ(VxList_SetThreadOwner(list, GetCurrentThreadId()), S_OK);
    EXPECT_EQ(VxList_GetUserData(list), 8);
}

TEST(ListThreads, UserDataIsExchangedAtomically)
{
    const List list(kPointers);
    std::vector<int64_t> seen[4];
    std::latch start(4);
    {
        std::vector<std::jthread> threads;
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([&, t] {
                start.arrive_and_wait();
                for (int64_t i = 1; i <= 1000; ++i)
                    seen[t].push_back(VxList_SetUserData(list, t * 1000 + i));
            });
    }
    std::vector<int64_t> all = {VxList_GetUserData(list)};
    for (const auto& values : seen)
        all.insert(all.end(), values.begin(), values.end());
    std::sort(all.begin(), all.end());
    for (int64_t i = 0; i <= 4000; ++i)
        ASSERT_EQ(all[size_t(i)], i) << "a value was lost or seen twice";
}

} // namespace
