// The list beside a vector of 64-bit values, 10,000 of them. The floor is the vector with what the
// list's callers cannot give: the comparison inlined, or the room known beforehand.
#include "families.h"
#include "vx/list.h"

#include "support/random.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <functional>
#include <utility>
#include <vector>

namespace vxbench {
namespace {

using Values = std::vector<int64_t>;

constexpr Size kItems{10000, 0};
constexpr int32_t kGrowBy = 1024;

int32_t CompareValues(int64_t, const void* left, const void* right)
{
    const int64_t a = *static_cast<const int64_t*>(left), b = *static_cast<const int64_t*>(right);
    return a < b ? -1 : a > b;
}

// The vector's callers have a comparison of their own too.
bool LessByCallback(int64_t left, int64_t right)
{
    // Read anew for each call, so that it is not inlined.
    static VxListCompare volatile compare = CompareValues;
    return compare(0, &left, &right) < 0;
}

Values RandomValues(const Work& work)
{
    vxtest::Random random;
    Values values(size_t(work.size().width));
    for (int64_t& value : values)
        value = int64_t(random.Next());
    return values;
}

class ArrayList
{
public:
    ArrayList()
    {
        VxList_CreateExZ(&list_, sizeof(int64_t), kGrowBy, kGrowBy, VXLIST_OPT_ARRAY, nullptr, 0, nullptr);
    }
    ~ArrayList() { VxList_Destroy(list_); }
    ArrayList(ArrayList&& other) noexcept : list_(std::exchange(other.list_, nullptr)) {}
    operator tVXLIST*() const { return list_; }
    tVXLIST* operator->() const { return list_; }

private:
    tVXLIST* list_ = nullptr;
};

void Append(Work& work)
{
    const Values& values = work.Own(RandomValues(work));
    work.Vx([&] {
        const ArrayList list;
        for (const int64_t& value : values)
            VxList_InsertList(list, -1, &value, 1);
        benchmark::DoNotOptimize(list->items);
    });
    work.Peer("std::vector", [&] {
        Values copy;
        for (const int64_t value : values)
            copy.push_back(value);
        benchmark::DoNotOptimize(copy.data());
    });
    work.Floor("reserved std::vector", [&] {
        Values copy;
        copy.reserve(values.size());
        for (const int64_t value : values)
            copy.push_back(value);
        benchmark::DoNotOptimize(copy.data());
    });
}

template <class Less>
Values SortedByInsertion(const Values& values, const Less& less)
{
    Values sorted;
    for (const int64_t value : values)
        sorted.insert(std::upper_bound(sorted.begin(), sorted.end(), value, less), value);
    return sorted;
}

void InsertSorted(Work& work)
{
    const Values& values = work.Own(RandomValues(work));
    work.Vx([&] {
        const ArrayList list;
        for (const int64_t& value : values) {
            const int32_t at = VxList_FindSortedInsertIndexRange(list, &value, 0, -1, CompareValues);
            VxList_InsertList(list, at, &value, 1);
        }
        benchmark::DoNotOptimize(list->items);
    });
    work.Peer("std::vector",
              [&] { benchmark::DoNotOptimize(SortedByInsertion(values, LessByCallback).data()); });
    work.Floor("std::vector, inlined",
               [&] { benchmark::DoNotOptimize(SortedByInsertion(values, std::less<>()).data()); });
}

template <class Less>
int64_t FindEach(const Values& sorted, const Values& keys, const Less& less)
{
    int64_t sum = 0;
    for (const int64_t key : keys)
        sum += std::lower_bound(sorted.begin(), sorted.end(), key, less) - sorted.begin();
    return sum;
}

void Search(Work& work)
{
    const Values& keys = work.Own(RandomValues(work));
    Values& sorted = work.Own(Values(keys));
    std::sort(sorted.begin(), sorted.end());
    const ArrayList& list = work.Own(ArrayList());
    VxList_InsertList(list, -1, sorted.data(), int32_t(sorted.size()));
    work.Vx([&] {
        int64_t sum = 0;
        for (const int64_t& key : keys)
            sum += VxList_FindSortedItemRange(list, &key, 0, -1, CompareValues);
        benchmark::DoNotOptimize(sum);
    });
    work.Peer("std::vector", [&] { benchmark::DoNotOptimize(FindEach(sorted, keys, LessByCallback)); });
    work.Floor("std::vector, inlined",
               [&] { benchmark::DoNotOptimize(FindEach(sorted, keys, std::less<>())); });
}

} // namespace

void AddListWorks(Suite& suite)
{
    suite.Add("list: append", {kItems}, Append);
    suite.Add("list: insert in order", {kItems}, InsertSorted);
    suite.Add("list: search", {kItems}, Search);
}

} // namespace vxbench
