// The comparisons that searches and sorts make, one by one: hosts' callbacks rely on them.
#include "containers/list_support.h"
#include "support/random.h"

#include <algorithm>

namespace {

using namespace vxtest;

using Pairs = std::vector<std::pair<int64_t, int64_t>>;

// Neighbours are equal, so that it shows which one of several equal items went where.
int32_t Order(int64_t left, int64_t right)
{
    return int32_t(left / 2 - right / 2);
}

// What the comparison of a list under test notes; its address is the list's criteria.
struct Log
{
    const ListKind& kind;
    Pairs pairs;

    int64_t Criteria() const { return int64_t(reinterpret_cast<intptr_t>(this)); }
    static int32_t Compare(int64_t criteria, const void* left, const void* right)
    {
        Log& log = *reinterpret_cast<Log*>(intptr_t(criteria));
        log.pairs.emplace_back(List::Value(log.kind, left), List::Value(log.kind, right));
        return Order(log.pairs.back().first, log.pairs.back().second);
    }
};

// The same operations on a vector, step by step as hosts know them.
class Oracle
{
public:
    struct Found
    {
        int32_t index, place;
    };

    explicit Oracle(std::vector<int64_t> values) : items(std::move(values)) {}

    void Sort()
    {
        for (size_t end = items.size(); end-- > 1;) {
            size_t best = 0;
            for (size_t p = 1; p <= end; ++p)
                if (Compare(items[p], items[best]) > 0)
                    best = p;
            std::swap(items[best], items[end]);
        }
    }

    void HeapSort()
    {
        const size_t n = items.size();
        for (size_t k = n / 2; k >= 2; --k)
            Sift(k, n);
        for (size_t size = n; size >= 2; --size) {
            Sift(1, size);
            std::swap(At(1), At(size));
        }
    }

    Found Search(int64_t key, int32_t first, int32_t count)
    {
        const int32_t all = int32_t(items.size());
        int32_t low = std::max(first, 0);
        if (low > all)
            return {-1, -1};
        int32_t range = count < 0 ? all - low : std::min(count, all - low);
        if (range < 1)
            return {-1, 0};
        for (int32_t high = low + range - 1; range / 2 != 0;) {
            const int32_t probe = low + (range - 1) / 2;
            const int32_t order = Compare(key, items[size_t(probe)]);
            if (order == 0)
                return {probe, probe};
            range = order < 0 && range % 2 == 0 ? range / 2 - 1 : range / 2;
            (order < 0 ? high : low) = order < 0 ? probe - 1 : probe + 1;
            if (low > high)
                return {-1, order < 0 ? probe : probe + 1};
        }
        const int32_t order = Compare(key, items[size_t(low)]);
        return {order == 0 ? low : -1, order <= 0 ? low : low + 1};
    }

    std::vector<int64_t> items;
    Pairs pairs;

private:
    int64_t& At(size_t position) { return items[position - 1]; }
    int32_t Compare(int64_t left, int64_t right)
    {
        pairs.emplace_back(left, right);
        return Order(left, right);
    }
    void Sift(size_t node, size_t size)
    {
        size_t child = 2 * node;
        do {
            if (child < size && Compare(At(child + 1), At(child)) > 0)
                ++child;
            if (Compare(At(child), At(node)) > 0)
                std::swap(At(child), At(node));
            node = child;
            child *= 2;
        } while (child < size);
    }
};

class ListOrder : public testing::TestWithParam<ListKind>
{
protected:
    std::vector<int64_t> RandomValues()
    {
        std::vector<int64_t> values(size_t(random_.Int(0, random_.Int(0, 1) ? 4 : 40)));
        const int32_t most = random_.Int(2, 60); // few values: many are equal
        for (int64_t& value : values)
            value = random_.Int(2, most);
        return values;
    }

    Random random_;
};

TEST_P(ListOrder, SortsCompareAndSwapStepByStep)
{
    for (int round = 0; round < 200; ++round) {
        Oracle oracle(RandomValues());
        List list(GetParam());
        ASSERT_EQ(list.Insert(0, oracle.items), S_OK);
        Log log{GetParam(), {}};
        const bool heapSort = random_.Int(0, 1) != 0;
        heapSort ? oracle.HeapSort() : oracle.Sort();
        ASSERT_EQ((heapSort ? VxList_HeapSort : VxList_Sort)(list, log.Criteria(), Log::Compare), S_OK);
        ASSERT_EQ(log.pairs, oracle.pairs);
        ASSERT_EQ(list.Values(), oracle.items);
        ASSERT_TRUE(std::is_sorted(oracle.items.begin(), oracle.items.end(),
                                   [](int64_t a, int64_t b) { return Order(a, b) < 0; }));
    }
}

TEST_P(ListOrder, SearchesHalveTheRange)
{
    for (int round = 0; round < 1000; ++round) {
        Oracle oracle(RandomValues());
        std::sort(oracle.items.begin(), oracle.items.end());
        List list(GetParam());
        ASSERT_EQ(list.Insert(0, oracle.items), S_OK);
        Log log{GetParam(), {}};
        ASSERT_EQ(VxList_Sort(list, log.Criteria(), nullptr), S_OK);
        const int64_t value = random_.Int(1, 62);
        const void* key = KeyOf(GetParam(), value);
        const int32_t first = random_.Int(0, 2) ? random_.Int(-2, list->count + 2) : 0;
        const int32_t count = random_.Int(0, 2) ? random_.Int(-2, list->count + 2) : -1;
        const auto [index, place] = oracle.Search(value, first, count);
        ASSERT_EQ(VxList_FindSortedItemRange(list, key, first, count, Log::Compare), index);
        ASSERT_EQ(log.pairs, oracle.pairs);
        log.pairs.clear();
        ASSERT_EQ(VxList_FindSortedInsertIndexRange(list, key, first, count, Log::Compare), place);
        ASSERT_EQ(log.pairs, oracle.pairs);
        ASSERT_EQ(VxList_FindSortedItemRange(list, key, INT32_MAX, INT32_MAX, Log::Compare), -1);
        ASSERT_EQ(VxList_FindSortedInsertIndexRange(list, key, INT32_MAX, INT32_MAX, Log::Compare), -1);
    }
}

TEST_P(ListOrder, SortToInsertsOneByOne)
{
    // Into a heap list nothing goes; its items are put in order in a pointer list.
    const bool heap = GetParam().IsHeap();
    for (int round = 0; round < 100; ++round) {
        Oracle oracle(heap ? std::vector<int64_t>() : RandomValues());
        std::sort(oracle.items.begin(), oracle.items.end());
        const std::vector<int64_t> added = RandomValues();
        List source(GetParam()), target(heap ? kPointers : GetParam());
        ASSERT_EQ(source.Insert(0, added), S_OK);
        ASSERT_EQ(target.Insert(0, oracle.items), S_OK);
        Log log{GetParam(), {}};
        ASSERT_EQ(VxList_SortTo(target, source, log.Criteria(), Log::Compare), S_OK);
        for (const int64_t value : added)
            oracle.items.insert(oracle.items.begin() + oracle.Search(value, 0, -1).place, value);
        ASSERT_EQ(log.pairs, oracle.pairs);
        ASSERT_EQ(target->count, int32_t(oracle.items.size()));
        for (int32_t i = 0; i < target->count; ++i)
            ASSERT_EQ(source.ItemOf(target, i), oracle.items[size_t(i)]);
        ASSERT_EQ(source.Values(), added);
        ASSERT_EQ(VxList_GetSortCriteria(source), 0) << "the source's stay";
    }
}

INSTANTIATE_TEST_SUITE_P(EveryKind, ListOrder, testing::ValuesIn(kAllKinds));

} // namespace
