// Lists under several threads; the thread sanitizer sees what these cannot.
#include "containers/list_support.h"
#include "support/random.h"
#include "vx/platform/threads.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <latch>
#include <thread>

namespace {

using namespace vxtest;

void OnThreads(int count, const std::function<void(int)>& work)
{
    std::latch start(count);
    std::vector<std::jthread> threads;
    for (int t = 0; t < count; ++t)
        threads.emplace_back([&start, &work, t] {
            start.arrive_and_wait();
            work(t);
        });
}

void InsertSorted(List& list, const ListKind& kind, int64_t value)
{
    EnterCriticalSection(&list->lock);
    const int32_t at = VxList_FindSortedInsertIndexRange(list, KeyOf(kind, value), 0, -1, CompareOf(kind));
    EXPECT_EQ(list.Insert(at, {value}), S_OK);
    LeaveCriticalSection(&list->lock);
}

TEST(ListThreads, FindThenInsertUnderTheLockKeepsOrder)
{
    for (const ListKind& kind : kAllKinds) {
        List list(kind, {}, 4, VXLIST_OPT_LOCKED);
        OnThreads(4, [&](int t) {
            Random random(uint64_t(t) + 1);
            for (int i = 0; i < 200; ++i)
                InsertSorted(list, kind, random.Int(1, 300));
        });
        const std::vector<int64_t> values = list.Values();
        EXPECT_EQ(values.size(), 800u);
        EXPECT_TRUE(std::is_sorted(values.begin(), values.end())) << kind;
    }
}

struct Operation
{
    const char* name;
    const ListKind& kind;
    int64_t refused;                         // the result where the calling thread may not use the list
    int64_t (*run)(List& list, List& other); // on {1, 2} and {3}, which it may change
};

int32_t IsAnything(int64_t, const void*)
{
    return 0;
}

const void* const kOne = reinterpret_cast<const void*>(intptr_t(1));

// All that take the lock, with arguments that succeed.
const Operation kOperations[] = {
    {"IsValidIndexSlow", kArray, 0, [](List& l, List&) -> int64_t { return VxList_IsValidIndexSlow(l, 0); }},
    {"GrowAllocated", kArray, E_FAIL, [](List& l, List&) -> int64_t { return VxList_GrowAllocated(l, 1); }},
    {"ShrinkAllocated", kArray, E_FAIL,
     [](List& l, List&) -> int64_t { return VxList_ShrinkAllocated(l, 1); }},
    {"InsertList", kPointers, E_FAIL,
     [](List& l, List&) -> int64_t { return VxList_InsertList(l, 0, &kOne, 1); }},
    {"DeleteList", kHeapItems, E_FAIL,
     [](List& l, List&) -> int64_t { return VxList_DeleteList(l, 0, 1, 0); }},
    {"DeleteList of none", kArray, E_FAIL,
     [](List& l, List&) -> int64_t { return VxList_DeleteList(l, 0, 0, 0); }},
    {"MoveRange", kArray, E_FAIL, [](List& l, List&) -> int64_t { return VxList_MoveRange(l, 0, 1, 1); }},
    {"ArrayForceItemCount", kArray, E_FAIL,
     [](List& l, List&) -> int64_t { return VxList_ArrayForceItemCount(l, 1, 0); }},
    {"AllocItem", kPrivateHeap, E_FAIL,
     [](List& l, List&) -> int64_t {
         void* item = &item;
         const HRESULT status = VxList_AllocItem(l, 8, &item);
         EXPECT_EQ(item == nullptr, status != S_OK);
         return status;
     }},
    {"AllocAndInsertItem", kHeapItems, E_FAIL,
     [](List& l, List&) -> int64_t {
         int32_t index = 5;
         const HRESULT status = VxList_AllocAndInsertItem(l, nullptr, 8, 0, &index);
         EXPECT_EQ(index, status == S_OK ? 0 : -1);
         return status;
     }},
    {"ReAllocItem", kHeapItems, E_FAIL,
     [](List& l, List&) -> int64_t { return VxList_ReAllocItem(l, 0, 64); }},
    {"AllocSize", kHeapItems, 0, [](List& l, List&) { return int64_t(VxList_AllocSize(l, 0)); }},
    {"move to", kHeapItems, E_FAIL,
     [](List& l, List& o) -> int64_t { return VxList_MoveItemsBetweenHeapLists(l, 0, o, 0, 1); }},
    {"move from", kHeapItems, E_FAIL,
     [](List& l, List& o) -> int64_t { return VxList_MoveItemsBetweenHeapLists(o, 0, l, 0, 1); }},
    {"Sort", kPointers, E_FAIL, [](List& l, List&) -> int64_t { return VxList_Sort(l, 9, ComparePointers); }},
    {"HeapSort", kPointers, E_FAIL,
     [](List& l, List&) -> int64_t { return VxList_HeapSort(l, 9, ComparePointers); }},
    {"SortTo it", kPointers, E_FAIL,
     [](List& l, List& o) -> int64_t { return VxList_SortTo(l, o, 9, ComparePointers); }},
    {"SortTo another", kPointers, E_FAIL,
     [](List& l, List& o) -> int64_t { return VxList_SortTo(o, l, 9, ComparePointers); }},
    {"FindItemRange", kPointers, -1,
     [](List& l, List&) -> int64_t { return VxList_FindItemRange(l, 0, -1, 0, IsAnything); }},
    {"FindSpecificItemRange", kPointers, -1,
     [](List& l, List&) -> int64_t { return VxList_FindSpecificItemRange(l, 0, -1, kOne); }},
    {"FindSortedItemRange", kPointers, -1,
     [](List& l, List&) -> int64_t { return VxList_FindSortedItemRange(l, kOne, 0, -1, ComparePointers); }},
    {"FindSortedInsertIndexRange", kPointers, -1,
     [](List& l, List&) -> int64_t {
         return VxList_FindSortedInsertIndexRange(l, kOne, 0, -1, ComparePointers);
     }},
    {"Destroy", kHeapItems, E_FAIL,
     [](List& l, List&) -> int64_t {
         const HRESULT status = VxList_Destroy(l);
         if (status == S_OK)
             l.Pointer() = nullptr;
         return status;
     }},
};

TEST(ListThreads, EveryOperationWaitsForTheLock)
{
    for (const bool converted : {false, true})
        for (const Operation& operation : kOperations) {
            SCOPED_TRACE(testing::Message() << operation.name << (converted ? ", converted in place" : ""));
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
            LeaveCriticalSection(lock);
        }
}

TEST(ListThreads, OwnerCheckRefusesOtherThreads)
{
    for (const Operation& operation : kOperations) {
        List list(operation.kind, {1, 2}), other(operation.kind, {3});
        list->options &= ~VXLIST_OPT_ANYTHREAD;
        std::jthread([&] {
            EXPECT_EQ(operation.run(list, other), operation.refused) << operation.name;
        }).join();
        EXPECT_EQ(list.Values(), (std::vector<int64_t>{1, 2})) << operation.name;
        EXPECT_EQ(other.Values(), (std::vector<int64_t>{3})) << operation.name;
        EXPECT_EQ(VxList_GetSortCriteria(list), 0) << operation.name;
        EXPECT_EQ(VxList_GetSortCriteria(other), 0) << operation.name;
    }
}

TEST(ListThreads, OwnershipIsTakenAndGiven)
{
    List list(kPointers);
    list->options &= ~VXLIST_OPT_ANYTHREAD;
    VxList_SetUserData(list, 4);
    std::jthread([&] {
        tVXLIST record, *pointer = list;
        EXPECT_EQ(VxList_ConvertToInPlace(&pointer, &record), E_FAIL);
        EXPECT_EQ(VxList_SetUserData(list, 8), 0xFFFFFFFF);
        EXPECT_EQ(VxList_GetUserData(list), 0xFFFFFFFF);
        EXPECT_EQ(VxList_SetThreadOwner(list, 0), S_OK);
        EXPECT_EQ(VxList_GetThreadOwner(list), GetCurrentThreadId());
        EXPECT_EQ(VxList_SetUserData(list, 8), 4);
    }).join();
    EXPECT_EQ(VxList_GetUserData(list), 0xFFFFFFFF);
    EXPECT_EQ(VxList_SetThreadOwner(list, GetCurrentThreadId()), S_OK);
    EXPECT_EQ(VxList_GetUserData(list), 8);
}

TEST(ListThreads, UserDataIsExchangedAtomically)
{
    const List list(kPointers);
    std::vector<int64_t> seen[4];
    OnThreads(4, [&](int t) {
        for (int64_t i = 1; i <= 1000; ++i)
            seen[t].push_back(VxList_SetUserData(list, t * 1000 + i));
    });
    std::vector<int64_t> all = {VxList_GetUserData(list)};
    for (const auto& values : seen)
        all.insert(all.end(), values.begin(), values.end());
    std::sort(all.begin(), all.end());
    for (int64_t i = 0; i <= 4000; ++i)
        ASSERT_EQ(all[size_t(i)], i) << "a value was lost or seen twice";
}

} // namespace
