// Locked lists under several threads; the thread sanitizer sees what these cannot.
#include "containers/list_support.h"
#include "support/random.h"

#include <algorithm>
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

TEST(ListThreads, AllOperationsTakeTheLock)
{
    for (const ListKind& kind : kAllKinds) {
        List list(kind, {1, 2, 3, 4, 5}, 4, VXLIST_OPT_LOCKED);
        OnThreads(4, [&](int t) {
            Random random(uint64_t(t) + 1);
            for (int i = 0; i < 300; ++i) {
                EXPECT_EQ(list.Insert(random.Int(0, 3), {i + 1}), S_OK);
                VxList_MoveRange(list, 0, 2, 2);
                VxList_HeapSort(list, t, CompareOf(kind));
                VxList_GetSortCriteria(list);
                VxList_IsValidIndexSlow(list, i);
                VxList_ReAllocItem(list, 0, 64);
                VxList_FindSortedItemRange(list, KeyOf(kind, list->userData), 0, -1, CompareOf(kind));
                VxList_AllocSize(list, -1);
                VxList_GrowAllocated(list, 1);
                EXPECT_EQ(VxList_DeleteList(list, 1, 1, 1), S_OK);
            }
        });
        EXPECT_EQ(list->count, 5) << kind;
    }
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

TEST(ListThreads, ALockedListConvertedInPlaceIsStillLocked)
{
    List list(kHeapItems, {}, 4, VXLIST_OPT_LOCKED);
    tVXLIST record;
    const auto fill = [&](int t) {
        for (int i = 0; i < 200; ++i)
            InsertSorted(list, kHeapItems, t * 200 + i);
    };
    OnThreads(2, fill);
    EXPECT_EQ(VxList_ConvertToInPlace(&list.Pointer(), &record), S_OK);
    list.Pointer() = &record;
    OnThreads(2, fill);
    EXPECT_EQ(list->count, 800);
}

TEST(ListThreads, MovesBetweenListsHoldBothLocks)
{
    List source(kHeapItems, {}, 16, VXLIST_OPT_LOCKED), target(kHeapItems, {}, 16, VXLIST_OPT_LOCKED);
    EXPECT_EQ(source.Insert(0, std::vector<int64_t>(400, 1)), S_OK);
    OnThreads(4, [&](int) {
        for (int i = 0; i < 50; ++i)
            EXPECT_EQ(VxList_MoveItemsBetweenHeapLists(target, 0, source, 0, 2), S_OK);
    });
    EXPECT_EQ(source->count, 0);
    EXPECT_EQ(target->count, 400);
}

} // namespace
