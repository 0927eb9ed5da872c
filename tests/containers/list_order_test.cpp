// The comparisons that searches and sorts make, one by one: hosts' callbacks rely on them.
#include "containers/list_support.h"

#include <string>

namespace {

using namespace vxtest;

// Items are letters; two letters that differ in case only are equal. Keeps all comparisons.
std::string g_calls;
int64_t g_criteria;

int32_t CompareLetters(int64_t criteria, const void* left, const void* right)
{
    const auto letter = [](const void* item) { return char(reinterpret_cast<intptr_t>(item)); };
    g_criteria = criteria;
    g_calls += g_calls.empty() ? "" : " ";
    g_calls += {letter(left), letter(right)};
    return (letter(left) | 32) - (letter(right) | 32);
}

class Letters : public List
{
public:
    explicit Letters(const std::string& letters) : List(kPointers)
    {
        EXPECT_EQ(Insert(-1, {letters.begin(), letters.end()}), S_OK);
    }
    std::string Text() const
    {
        const std::vector<int64_t> values = Values();
        return {values.begin(), values.end()};
    }
};

const void* Key(char letter)
{
    return reinterpret_cast<const void*>(intptr_t(letter));
}

TEST(ListOrder, Sorts)
{
    const struct
    {
        HRESULT (*sort)(tVXLIST*, int64_t, VxListCompare);
        const char *before, *after, *calls;
    } cases[] = {
        {VxList_Sort, "", "", ""},
        {VxList_Sort, "a", "a", ""},
        {VxList_Sort, "cab", "abc", "ac bc ab"},
        {VxList_Sort, "abc", "abc", "ba cb ba"},
        // Equal items: the first of them goes to the end in each round.
        {VxList_Sort, "aA", "Aa", "Aa"},
        {VxList_Sort, "bcCa", "abCc", "cb Cc ac ab Cb ab"},
        {VxList_HeapSort, "", "", ""},
        {VxList_HeapSort, "a", "a", ""},
        {VxList_HeapSort, "ab", "ab", "ba"},
        {VxList_HeapSort, "ba", "ab", "ab"},
        {VxList_HeapSort, "adbc", "abcd", "cd bd da ba bc ab"},
    };
    for (const auto& c : cases) {
        const Letters list(c.before);
        g_calls.clear();
        g_criteria = 99;
        EXPECT_EQ(c.sort(list, 99, CompareLetters), S_OK);
        EXPECT_EQ(list.Text(), c.after) << c.before;
        EXPECT_EQ(g_calls, c.calls) << c.before;
        EXPECT_EQ(g_criteria, 99);
    }
}

// Nothing is ever greater, so each walk goes down by left children, and on to the bottom.
TEST(ListOrder, HeapSortOfEqualItems)
{
    static std::string pairs;
    const auto equal = [](int64_t, const void* left, const void* right) -> int32_t {
        pairs += {char(reinterpret_cast<intptr_t>(left)), char(reinterpret_cast<intptr_t>(right)), ' '};
        return 0;
    };
    const Letters list("abcdef");
    EXPECT_EQ(VxList_HeapSort(list, 0, equal), S_OK);
    EXPECT_EQ(pairs, "fc ed db cb ba ed db cb bf ed db cb be cb bd bc ");
    EXPECT_EQ(list.Text(), "bcdefa");
}

TEST(ListOrder, CriteriaAreStoredAndHandedOnAndANullCallbackDoesNothingElse)
{
    const Letters list("cab"), source("c");
    EXPECT_EQ(VxList_GetSortCriteria(list), 0);
    VxList_FindSortedItemRange(list, Key('a'), 0, 1, CompareLetters);
    EXPECT_EQ(g_criteria, 0);
    constexpr int64_t kWide = 0x123456789ABCDEF0;
    for (const auto sort : {VxList_Sort, VxList_HeapSort}) {
        VxList_SortTo(list, source, 1, nullptr);
        EXPECT_EQ(VxList_GetSortCriteria(list), 1);
        EXPECT_EQ(sort(list, kWide, nullptr), S_OK);
        EXPECT_EQ(VxList_GetSortCriteria(list), kWide);
        EXPECT_EQ(list.Text(), "cab");
    }
    VxList_FindSortedInsertIndexRange(list, Key('a'), 0, 1, CompareLetters);
    EXPECT_EQ(g_criteria, kWide);
    EXPECT_EQ(VxList_GetSortCriteria(source), 0) << "the source's stay";
}

TEST(ListOrder, SearchesByHalving)
{
    const struct
    {
        const char* items;
        char key;
        int32_t first, count, found, place;
        const char* calls;
    } cases[] = {
        {"", 'a', 0, -1, -1, 0, ""},
        {"c", 'c', 0, -1, 0, 0, "cc"},
        {"c", 'd', 0, -1, -1, 1, "dc"},
        {"c", 'b', 0, -1, -1, 0, "bc"},
        {"bd", 'b', 0, -1, 0, 0, "bb"},
        {"bd", 'a', 0, -1, -1, 0, "ab"},
        {"bd", 'c', 0, -1, -1, 1, "cb cd"},
        {"bd", 'e', 0, -1, -1, 2, "eb ed"},
        {"bdfhjln", 'g', 0, -1, -1, 3, "gh gd gf"},
        {"bdfhjln", 'n', 0, -1, 6, 6, "nh nl nn"},
        {"bdfhjl", 'b', 0, -1, 0, 0, "bf bb"},
        {"bdfhjl", 'k', 0, -1, -1, 5, "kf kj kl"},
        {"bdfh", 'a', 0, -1, -1, 0, "ad ab"},
        // Of several equal ones the first that the halving meets.
        {"abBbc", 'B', 0, -1, 2, 2, "BB"},
        {"bbbbbd", 'b', 0, -1, 2, 2, "bb"},
        // Ranges: before the list, in it, across its end, empty, behind it.
        {"bdfh", 'h', -5, 99, 3, 3, "hd hf hh"},
        {"bdfh", 'h', 0, 3, -1, 3, "hd hf"},
        {"bdfh", 'b', 1, -1, -1, 1, "bf bd"},
        {"bdfh", 'f', 2, 1, 2, 2, "ff"},
        {"bdfh", 'f', 2, 0, -1, 0, ""},
        {"bdfh", 'f', 4, -1, -1, 0, ""},
        {"bdfh", 'f', 5, -1, -1, -1, ""},
        {"bdfh", 'f', INT32_MAX, INT32_MAX, -1, -1, ""},
    };
    for (const auto& c : cases) {
        const Letters list(c.items);
        SCOPED_TRACE(testing::Message()
                     << c.key << " in " << c.items << " from " << c.first << ", " << c.count);
        g_calls.clear();
        EXPECT_EQ(VxList_FindSortedItemRange(list, Key(c.key), c.first, c.count, CompareLetters), c.found);
        EXPECT_EQ(g_calls, c.calls);
        g_calls.clear();
        EXPECT_EQ(VxList_FindSortedInsertIndexRange(list, Key(c.key), c.first, c.count, CompareLetters),
                  c.place);
        EXPECT_EQ(g_calls, c.calls);
    }
}

TEST(ListOrder, LinearSearchVisitsTheRangeInOrderUpToTheHit)
{
    static std::string visited;
    const auto match = [](int64_t word, const void* item) -> int32_t {
        visited += char(reinterpret_cast<intptr_t>(item));
        return int32_t(word - reinterpret_cast<intptr_t>(item));
    };
    const struct
    {
        char sought;
        int32_t first, count, found;
        const char* visited;
    } cases[] = {
        {'c', 0, -1, 2, "abc"}, {'c', -5, 3, 2, "abc"}, {'a', 1, -1, 4, "bcda"}, {'d', 1, 2, -1, "bc"},
        {'a', 5, -1, -1, ""},   {'a', 0, 0, -1, ""},    {'z', 3, 99, -1, "da"},  {'a', INT32_MAX, 1, -1, ""},
    };
    const Letters list("abcda");
    for (const auto& c : cases) {
        visited.clear();
        EXPECT_EQ(VxList_FindItemRange(list, c.first, c.count, c.sought, match), c.found) << c.sought;
        EXPECT_EQ(visited, c.visited);
        EXPECT_EQ(VxList_FindSpecificItemRange(list, c.first, c.count, Key(c.sought)), c.found);
    }
}

TEST(ListOrder, SortToPutsNewItemsInFrontOfTheEqualOneMet)
{
    const Letters source("cCab"), target("bd");
    g_calls.clear();
    EXPECT_EQ(VxList_SortTo(target, source, 5, CompareLetters), S_OK);
    EXPECT_EQ(target.Text(), "abbCcd");
    EXPECT_EQ(g_calls, "cb cd Cc aC ab bC ba bb");
    EXPECT_EQ(source.Text(), "cCab");
}

TEST(ListOrder, SortToWorksBetweenListsOfEachKind)
{
    for (const ListKind& kind : kAllKinds) {
        const List source(kind, {3, 1, 2, 1}), target(kind, {2});
        EXPECT_EQ(VxList_SortTo(target, source, 0, CompareOf(kind)), S_OK);
        const std::vector<int64_t> sorted = {1, 1, 2, 2, 3}, untouched = {2}; // no copies of heap items
        EXPECT_EQ(target.Values(), kind.IsHeap() ? untouched : sorted) << kind;
    }
    const List items(kHeapItems, {3, 1, 2}), order(kPointers);
    EXPECT_EQ(VxList_SortTo(order, items, 0, CompareAddressed), S_OK);
    ASSERT_EQ(order->count, 3);
    for (int32_t i = 0; i < 3; ++i)
        EXPECT_EQ(List::Value(kHeapItems, order.Pointer(i)), i + 1);
}

} // namespace
