// Each allocation of every operation fails, and all behind it: the status says so, the list is as
// before, and nothing is lost (the leak checker looks).
#include "containers/list_support.h"
#include "vx/platform/testing.h"

#include <functional>
#include <numeric>

namespace {

using namespace vxtest;

// All that a host can see of a list.
struct Snapshot
{
    std::vector<int64_t> values;
    int32_t allocated;
    const void *items, *pending;

    explicit Snapshot(const List& list)
        : values(list.Values()), allocated(list->allocated), items(list->items), pending(list->pendingItem)
    {}
    bool operator==(const Snapshot&) const = default;
};

// Runs the operation on lists of four items in four slots, with all allocations from its first,
// second, ... one on failing, until it needs no more; returns how many failed.
int FailEachAllocation(const ListKind& kind, int32_t moreSlots,
                       const std::function<HRESULT(List&)>& operation)
{
    for (uint32_t nth = 1;; ++nth) {
        List list(kind, {1, 2, 3, 4});
        if (moreSlots) {
            EXPECT_EQ(VxList_GrowAllocated(list, moreSlots), S_OK);
        }
        const Snapshot before(list);
        VxPlatform_FailAllocationsFrom(nth);
        const HRESULT status = operation(list);
        VxPlatform_FailAllocationAt(0);
        if (status == S_OK)
            return int(nth) - 1;
        EXPECT_EQ(status, E_OUTOFMEMORY);
        EXPECT_TRUE(Snapshot(list) == before) << kind << ", allocation " << nth;
    }
}

TEST(ListMemory, CreationLeavesNothingBehind)
{
    for (const ListKind& kind : kAllKinds)
        for (const uint32_t inPlace : {0u, VXLIST_OPT_INPLACE}) {
            const uint32_t options = kind.options | VXLIST_OPT_LOCKED | inPlace;
            const uint32_t allocations = (inPlace ? 1 : 2) + (options & VXLIST_OPT_PRIVATEHEAP ? 1 : 0);
            for (uint32_t nth = 1; nth <= allocations + 1; ++nth) {
                tVXLIST record, *list = inPlace ? &record : nullptr;
                VxPlatform_FailAllocationAt(nth);
                const HRESULT status = VxList_CreateExZ(&list, 8, 0, 0, options, nullptr, 0, nullptr);
                VxPlatform_FailAllocationAt(0);
                const bool made = nth > allocations;
                EXPECT_EQ(status, made ? S_OK : E_OUTOFMEMORY) << kind << ", allocation " << nth;
                EXPECT_EQ(list != nullptr, made || inPlace);
                EXPECT_EQ(inPlace && VxList_IsListFast(&record), made && inPlace);
                EXPECT_EQ(made ? VxList_Destroy(list) : S_OK, S_OK);
            }
        }
}

TEST(ListMemory, FailedOperationsChangeNothing)
{
    for (const ListKind& kind : kAllKinds) {
        EXPECT_EQ(FailEachAllocation(kind, 0, [](List& list) { return VxList_GrowAllocated(list, 1); }), 1);
        // Most of a large block goes back, so that it moves.
        EXPECT_EQ(FailEachAllocation(kind, 4000, [](List& list) { return VxList_ShrinkAllocated(list, -1); }),
                  1);
        EXPECT_EQ(FailEachAllocation(kind, 0, [](List& list) { return list.Insert(2, {9}); }),
                  kind.IsHeap() ? 2 : 1);
    }
    for (const ListKind& kind : {kHeapItems, kPrivateHeap}) {
        EXPECT_EQ(FailEachAllocation(kind, 0, [](List& list) { return VxList_ReAllocItem(list, 1, 3000); }),
                  1);
        int32_t index = 0;
        EXPECT_EQ(FailEachAllocation(kind, 4,
                                     [&](List& list) {
                                         EXPECT_EQ(index, index == 0 ? 0 : -1);
                                         return VxList_AllocAndInsertItem(list, nullptr, 8, 1, &index);
                                     }),
                  1);
        EXPECT_EQ(index, 1);
    }
    EXPECT_EQ(
        FailEachAllocation(kArray, 0, [](List& list) { return VxList_ArrayForceItemCount(list, 5, 0); }), 1);
    // One of these items is moved without memory, two are not.
    constexpr ListKind kLargeItems{"array of large items", VXLIST_OPT_ARRAY, 512};
    for (const int32_t n : {1, 2})
        EXPECT_EQ(
            FailEachAllocation(kLargeItems, 0, [=](List& list) { return VxList_MoveRange(list, 0, 2, n); }),
            n - 1);
}

TEST(ListMemory, AMoveBetweenListsThatStopsHasMovedTheLastItems)
{
    List dst(kHeapItems, {1, 2}), src(kHeapItems);
    std::vector<int64_t> all(100);
    std::iota(all.begin(), all.end(), 11);
    EXPECT_EQ(src.Insert(0, all), S_OK);
    VxPlatform_FailAllocationsFrom(2);
    EXPECT_EQ(VxList_MoveItemsBetweenHeapLists(dst, 1, src, 0, -1), E_OUTOFMEMORY);
    VxPlatform_FailAllocationsFrom(0);
    const int32_t left = src->count;
    EXPECT_TRUE(left > 0 && left < 98) << left; // two slots of dst were free, and the block grew
    EXPECT_EQ(src.Values(), std::vector<int64_t>(all.begin(), all.begin() + left));
    std::vector<int64_t> want = {1, 2};
    want.insert(want.begin() + 1, all.begin() + left, all.end());
    EXPECT_EQ(dst.Values(), want);
    EXPECT_EQ(dst->pendingItem, nullptr);
}

} // namespace
