// The sorts. Callers rely on the order and number of the comparisons, and on which of several equal
// items ends up where: neither algorithm may be exchanged for a faster one.
#include "containers/list.h"

#include <algorithm>

namespace vx {
namespace {

class Sorter
{
public:
    Sorter(const tVXLIST& list, VxListCompare compare)
        : list_(list), items_(list), criteria_(list.sortCriteria), compare_(compare)
    {}

    bool Greater(int32_t left, int32_t right) const
    {
        return compare_(criteria_, items_[left], items_[right]) > 0;
    }

    void Swap(int32_t a, int32_t b) const
    {
        std::byte* left = SlotAt(list_, a);
        std::byte* right = SlotAt(list_, b);
        if (list_.itemSize == sizeof(uint64_t))
            SwapBytes<sizeof(uint64_t)>(left, right);
        else
            std::swap_ranges(left, left + list_.itemSize, right);
    }

private:
    template <size_t kBytes>
    static void SwapBytes(std::byte* left, std::byte* right)
    {
        std::byte kept[kBytes];
        std::memcpy(kept, left, kBytes);
        std::memcpy(left, right, kBytes);
        std::memcpy(right, kept, kBytes);
    }

    const tVXLIST& list_;
    const Items items_;
    const int64_t criteria_;
    const VxListCompare compare_;
};

// The earliest of the greatest items goes to the end of what is not in order yet.
void SelectionSort(const Sorter& sorter, int32_t count)
{
    for (int32_t end = count - 1; end > 0; --end) {
        int32_t best = 0;
        for (int32_t p = 1; p <= end; ++p)
            if (sorter.Greater(p, best))
                best = p;
        if (best != end)
            sorter.Swap(best, end);
    }
}

// Positions count from 1; the children of a node are at twice its position and the next. The walk goes
// on to the bottom though the item may have found its place, but leaves an only child at `size` out
// below the first level: that item is at the root of no subtree and goes to the root next.
void Sift(const Sorter& sorter, int32_t node, int32_t size)
{
    int64_t child = 2 * int64_t(node);
    do {
        const int32_t left = int32_t(child - 1);
        const int32_t greater = child < size && sorter.Greater(left + 1, left) ? left + 1 : left;
        if (sorter.Greater(greater, node - 1))
            sorter.Swap(greater, node - 1);
        node = greater + 1;
        child = 2 * int64_t(node);
    } while (child < size);
}

void HeapSort(const Sorter& sorter, int32_t count)
{
    for (int32_t node = count / 2; node >= 2; --node)
        Sift(sorter, node, count);
    for (int32_t size = count; size >= 2; --size) {
        Sift(sorter, 1, size);
        sorter.Swap(0, size - 1);
    }
}

// Takes the criteria over; true where there is something to sort.
bool BeginSort(tVXLIST& list, int64_t criteria, VxListCompare compare)
{
    Shared(list.sortCriteria).store(criteria, std::memory_order_relaxed);
    return compare && list.count >= 2;
}

// The place is looked up and taken in two steps, each under the lock of its own.
void InsertSorted(tVXLIST& dst, const tVXLIST& src, int32_t index, VxListCompare compare)
{
    const int32_t place = VxList_FindSortedInsertIndexRange(&dst, Items(src)[index], 0, -1, compare);
    VxList_InsertList(&dst, place, SlotAt(src, index), 1);
}

} // namespace
} // namespace vx

using namespace vx;

HRESULT VxList_Sort(tVXLIST* list, int64_t criteria, VxListCompare compare)
{
    const ListScope scope(list);
    if (!scope)
        return E_FAIL;
    if (BeginSort(*list, criteria, compare))
        SelectionSort(Sorter(*list, compare), list->count);
    return S_OK;
}

HRESULT VxList_HeapSort(tVXLIST* list, int64_t criteria, VxListCompare compare)
{
    const ListScope scope(list);
    if (!scope)
        return E_FAIL;
    if (BeginSort(*list, criteria, compare))
        HeapSort(Sorter(*list, compare), list->count);
    return S_OK;
}

HRESULT VxList_SortTo(tVXLIST* dst, tVXLIST* src, int64_t criteria, VxListCompare compare)
{
    const ListScope srcScope(src);
    if (!srcScope || !MayUse(*dst))
        return E_FAIL;
    Shared(dst->sortCriteria).store(criteria, std::memory_order_relaxed);
    if (compare)
        for (int32_t i = 0; i < src->count; ++i)
            InsertSorted(*dst, *src, i, compare);
    return S_OK;
}
