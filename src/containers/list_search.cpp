// Linear search, and search by halving in a list that is in order.
#include "containers/list.h"

#include <algorithm>

namespace vx {
namespace {

struct Range
{
    int32_t first;
    int32_t count; // 0 and less: nothing; the first is then past the end, or nothing was asked for
};

Range ClipRange(const tVXLIST& list, int32_t first, int32_t count)
{
    first = std::max(first, 0);
    const int32_t rest = list.count - first;
    return {first, count < 0 ? rest : std::min(count, rest)};
}

struct Place
{
    int32_t index; // of the equal item, else where the key belongs
    bool equal;
};

// The range holds at least one item. Callers rely on the order and number of the comparisons: the
// lower middle of an even range is probed, the first equal item ends the search, and a last single
// item is compared once. The steps to either side are selected without a branch, which would be
// mispredicted every other time.
Place FindPlace(const tVXLIST& list, const void* key, Range range, VxListCompare compare)
{
    const Items items(list);
    const int64_t criteria = list.sortCriteria;
    int32_t low = range.first;
    uint32_t count = uint32_t(range.count);
    while (count > 1) {
        const int32_t probe = low + int32_t((count - 1) / 2);
        const int32_t order = compare(criteria, key, items[probe]);
        if (order == 0)
            return {probe, true};
        const bool below = order < 0;
        low = below ? low : probe + 1;
        count = (count - below) / 2;
    }
    if (count == 0)
        return {low, false};
    const int32_t order = compare(criteria, key, items[low]);
    return {order > 0 ? low + 1 : low, order == 0};
}

template <class IsSought>
int32_t FindFirst(Range range, const IsSought& isSought)
{
    for (int32_t i = range.first; i < range.first + range.count; ++i)
        if (isSought(i))
            return i;
    return -1;
}

} // namespace

int32_t FindInsertIndex(const tVXLIST& list, const void* key, int32_t first, int32_t count,
                        VxListCompare compare)
{
    const Range range = ClipRange(list, first, count);
    if (range.first > list.count)
        return -1;
    return range.count < 1 ? 0 : FindPlace(list, key, range, compare).index;
}

} // namespace vx

using namespace vx;

int32_t VxList_FindItemRange(tVXLIST* list, int32_t first, int32_t count, int64_t word, VxListMatch match)
{
    const ListScope scope(list);
    if (!scope)
        return -1;
    const Items items(*list);
    return FindFirst(ClipRange(*list, first, count), [&](int32_t i) { return match(word, items[i]) == 0; });
}

int32_t VxList_FindSpecificItemRange(tVXLIST* list, int32_t first, int32_t count, const void* item)
{
    const ListScope scope(list);
    if (!scope)
        return -1;
    const Range range = ClipRange(*list, first, count);
    if (IsArrayList(*list))
        return FindFirst(range, [&](int32_t i) {
            return std::memcmp(SlotAt(*list, i), item, size_t(list->itemSize)) == 0;
        });
    return FindFirst(range, [&](int32_t i) { return PointerAt(*list, i) == item; });
}

int32_t VxList_FindSortedItemRange(tVXLIST* list, const void* key, int32_t first, int32_t count,
                                   VxListCompare compare)
{
    const ListScope scope(list);
    const Range range = scope ? ClipRange(*list, first, count) : Range{0, 0};
    if (range.count < 1)
        return -1;
    const Place place = FindPlace(*list, key, range, compare);
    return place.equal ? place.index : -1;
}

int32_t VxList_FindSortedInsertIndexRange(tVXLIST* list, const void* key, int32_t first, int32_t count,
                                          VxListCompare compare)
{
    const ListScope scope(list);
    return scope ? FindInsertIndex(*list, key, first, count, compare) : -1;
}
