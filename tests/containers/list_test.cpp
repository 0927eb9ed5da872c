// Life, recognition, refusals and the record's words.
#include "containers/list_support.h"

#include "vx/platform/threads.h"

#include <string>

namespace {

using namespace vxtest;

HRESULT Create(tVXLIST** list, uint64_t itemSize, int32_t slots, int32_t step, uint32_t options)
{
    return VxList_CreateExZ(list, itemSize, slots, step, options, nullptr, 0, nullptr);
}

TEST(ListLife, RoomAndSlotSizeAtCreation)
{
    const struct
    {
        uint32_t options;
        uint64_t itemSize;
        int32_t slots, step;
        uint64_t wantSize;
        int32_t wantAllocated, wantStep;
    } cases[] = {
        {0, 100, 1, 3, 8, 4, 4},
        {0, 0, 0, 0, 8, 16, 16},
        {VXLIST_OPT_HEAPITEMS, 100, -1, -5, 8, 16, 16},
        {VXLIST_OPT_ARRAY, 6, 20, 16, 8, 32, 16},
        {VXLIST_OPT_ARRAY, 1, 6, 5, 4, 10, 5},
        {VXLIST_OPT_ARRAY, 12, 1, 100000, 12, 0x10400, 0x10400},
        {VXLIST_OPT_ARRAY, 0, 3, 4, 0, 4, 4},
    };
    for (const auto& c : cases) {
        tVXLIST* list = nullptr;
        ASSERT_EQ(Create(&list, c.itemSize, c.slots, c.step, c.options), S_OK);
        EXPECT_EQ(list->itemSize, c.wantSize);
        EXPECT_EQ(list->allocated, c.wantAllocated);
        EXPECT_EQ(list->growBy, c.wantStep);
        const bool heap = (c.options & VXLIST_OPT_HEAPITEMS) != 0;
        EXPECT_EQ(list->heapAllocFlags, heap ? 9u : 0u) << "zeroed, and no lock of the heap's own";
        EXPECT_EQ(list->heapFreeFlags, heap ? 1u : 0u);
        EXPECT_EQ(VxList_GetCreateOptions(list), c.options | VXLIST_OPT_ANYTHREAD);
        EXPECT_EQ(VxList_GetThreadOwner(list), GetCurrentThreadId());
        EXPECT_EQ(VxList_AllocSize(list, -1), 136 + c.wantSize * uint64_t(c.wantAllocated));
        EXPECT_EQ(VxList_Destroy(list), S_OK);
    }
}

TEST(ListLife, RecognisesListsByAnyPointer)
{
    tVXLIST record, *list = &record;
    std::memset(&record, 0xCC, sizeof(record));
    ASSERT_EQ(Create(&list, 0, 0, 0, VXLIST_OPT_INPLACE | VXLIST_OPT_LOCKED | VXLIST_OPT_HEAPITEMS), S_OK);
    EXPECT_EQ(list, &record);
    EXPECT_EQ(VxList_IsList(list, 136), 1);
    EXPECT_EQ(VxList_IsListFast(list), 1);
    for (const int32_t size : {0, 135, 137, -136})
        EXPECT_EQ(VxList_IsList(list, size), 0) << size;
    EXPECT_EQ(VxList_IsList(nullptr, 136), 0);
    EXPECT_EQ(VxList_IsList(reinterpret_cast<void*>(0x1230), 136), 0);
    EXPECT_EQ(VxList_AllocAndInsertItem(list, nullptr, 100, 0, nullptr), S_OK);
    EXPECT_EQ(VxList_Destroy(list), S_OK);
    EXPECT_EQ(record.items, nullptr);
    EXPECT_FALSE(VxList_IsListFast(&record));
}

TEST(ListLife, ConvertsInPlaceWithItemsAndWords)
{
    tVXLIST record, noList{}, *none = nullptr, *wrong = &noList;
    List list(kHeapItems, {1, 2, 3}, 4, VXLIST_OPT_LOCKED);
    VxList_SetUserData(list, -5);
    const void* items = list->items;
    ASSERT_EQ(VxList_ConvertToInPlace(&list.Pointer(), &record), S_OK);
    EXPECT_EQ(list.Pointer(), nullptr);
    list.Pointer() = &record;
    EXPECT_EQ(record.items, items);
    EXPECT_EQ(VxList_GetUserData(list), -5);
    EXPECT_EQ(list.Insert(0, {7}), S_OK);
    EXPECT_EQ(list.Values(), (std::vector<int64_t>{7, 1, 2, 3}));

    EXPECT_EQ(VxList_ConvertToInPlace(&list.Pointer(), &noList), E_FAIL) << "is in place already";
    for (tVXLIST** refused : {static_cast<tVXLIST**>(nullptr), &none, &wrong})
        EXPECT_EQ(VxList_ConvertToInPlace(refused, &record), E_INVALIDARG);
    EXPECT_EQ(VxList_ConvertToInPlace(&list.Pointer(), nullptr), E_INVALIDARG);
}

TEST(List, WordsAndIndices)
{
    List list(kPointers, {1, 2, 3});
    char16_t text[] = u"x";
    EXPECT_EQ(VxList_GetFileAndLine(list, text), 0xFFFFFFFFu);
    EXPECT_EQ(text[0], u'\0');
    for (const int32_t index : {-1, 0, 2, 3, INT32_MAX, INT32_MIN})
        EXPECT_EQ(VxList_IsValidIndexSlow(list, index), index == 0 || index == 2) << index;
}

// The random model has the rest.
TEST(List, RefusalsChangeNothing)
{
    const int64_t value = 1;
    for (const ListKind& kind : kAllKinds) {
        List list(kind, {5, 6});
        for (const int32_t n : {-2, -1, 0, 1})
            EXPECT_EQ(VxList_InsertList(list, 0, nullptr, n), E_FAIL) << n;
        for (const int32_t n : {0, 1, INT32_MAX, INT32_MIN})
            if (kind.IsHeap() || n > 1 || n < 0) {
                EXPECT_EQ(VxList_InsertList(list, 0, &value, n),
                          kind.IsHeap() && n >= 0 ? E_FAIL : E_OUTOFMEMORY)
                    << kind << n;
            }
        EXPECT_EQ(VxList_ArrayForceItemCount(list, -1, 0), kind.IsArray() ? E_INVALIDARG : E_FAIL);
        EXPECT_EQ(VxList_DeleteList(list, -1, 1, 0), E_FAIL);
        EXPECT_EQ(VxList_DeleteList(list, -1, -1, 0), E_FAIL);
        EXPECT_EQ(VxList_DeleteList(list, INT32_MAX, -1, 0), S_OK);
        EXPECT_EQ(VxList_MoveRange(list, -1, 2, 0), E_INVALIDARG);
        EXPECT_EQ(VxList_MoveRange(list, INT32_MAX, 0, -1), S_OK);
        EXPECT_EQ(VxList_MoveRange(list, 0, 1, INT32_MAX), E_FAIL);
        EXPECT_EQ(VxList_MoveRange(list, INT32_MAX, 0, 1), E_FAIL);
        EXPECT_EQ(list.Values(), (std::vector<int64_t>{5, 6})) << kind;

        EXPECT_EQ(VxList_DeleteList(list, 1, INT32_MAX, 0), S_OK);
        EXPECT_EQ(VxList_DeleteList(list, 0, -1, 1), S_OK);
        EXPECT_EQ(VxList_ShrinkAllocated(list, INT32_MAX), S_OK);
        EXPECT_EQ(list->allocated, 0);
        EXPECT_EQ(VxList_AllocSize(list, -1), 136 + list->itemSize) << "an empty list keeps a block";
        EXPECT_EQ(list.Insert(0, {4}), S_OK) << "grows from nothing";
    }
}

TEST(ListItems, OnePendsUntilInsertedOrDropped)
{
    for (const ListKind& kind : {kHeapItems, kPrivateHeap}) {
        List list(kind, {1, 2});
        void *first = nullptr, *second = &first;
        ASSERT_EQ(VxList_AllocItem(list, 40, &first), S_OK);
        EXPECT_EQ(std::string(static_cast<char*>(first), 40), std::string(40, '\0'));
        int32_t index = 7;
        EXPECT_EQ(VxList_AllocItem(list, 8, &second), E_FAIL);
        EXPECT_EQ(second, nullptr);
        EXPECT_EQ(VxList_AllocAndInsertItem(list, nullptr, 8, 0, &index), E_FAIL);
        EXPECT_EQ(index, -1);
        EXPECT_EQ(list->pendingItem, first);
        std::memset(first, 9, 8);
        EXPECT_EQ(VxList_InsertList(list, 1, nullptr, -1), S_OK);
        EXPECT_EQ(list.Pointer(1), first);
        EXPECT_EQ(VxList_AllocItem(list, 0, &first), S_OK);
        EXPECT_EQ(VxList_DeleteList(list, -1, -1, 0), S_OK);
        EXPECT_EQ(VxList_DeleteList(list, -1, -1, 0), E_FAIL);
        EXPECT_EQ(list.Values(), (std::vector<int64_t>{1, 0x0909090909090909, 2})) << kind;
    }
    const List dropped(kPrivateHeap); // its pending item goes with the heap
    void* item;
    EXPECT_EQ(VxList_AllocItem(dropped, 100, &item), S_OK);
    EXPECT_EQ(VxList_AllocItem(List(kPointers), 8, &item), E_FAIL);
    EXPECT_EQ(VxList_AllocItem(List(kHeapItems), -1, &item), E_OUTOFMEMORY);
}

TEST(ListItems, ResizingKeepsBytesAndSizesAreTold)
{
    for (const ListKind& kind : {kHeapItems, kPrivateHeap}) {
        List list(kind, {11, 22, 33});
        EXPECT_EQ(VxList_ReAllocItem(list, 1, 5000), S_OK);
        EXPECT_GE(VxList_AllocSize(list, 1), 5000u);
        if (kind.options & VXLIST_OPT_PRIVATEHEAP) {
            EXPECT_EQ(VxList_AllocSize(list, 1), 5000u);
            EXPECT_EQ(static_cast<char*>(list.Pointer(1))[4999], 0);
        }
        uint64_t sum = 136 + uint64_t(list->allocated) * 8;
        for (int32_t i = 0; i < 3; ++i)
            sum += VxList_AllocSize(list, i);
        EXPECT_EQ(VxList_AllocSize(list, -1), sum);
        EXPECT_EQ(VxList_AllocSize(list, 3), 0u);
        EXPECT_EQ(VxList_ReAllocItem(list, 1, 8), S_OK);
        EXPECT_EQ(list.Values(), (std::vector<int64_t>{11, 22, 33}));
        EXPECT_EQ(VxList_ReAllocItem(list, 2, 0), S_OK);
        EXPECT_NE(list.Pointer(2), nullptr);
        for (const int32_t index : {-1, 3})
            EXPECT_EQ(VxList_ReAllocItem(list, index, 8), E_FAIL);
    }
    EXPECT_EQ(VxList_ReAllocItem(List(kPointers, {1}), 0, 8), E_FAIL);
    EXPECT_EQ(VxList_AllocSize(List(kPointers, {1}), 0), 8u);
    EXPECT_EQ(VxList_AllocSize(List(kWideArray, {1}), 0), 20u);
}

TEST(ListItems, MoveBetweenHeapLists)
{
    const struct
    {
        int32_t dstIndex, srcIndex, n;
        HRESULT status;
        std::vector<int64_t> dst, src;
    } cases[] = {
        {1, 1, 2, S_OK, {1, 12, 13, 2}, {11, 14}},    {-1, 0, -1, S_OK, {1, 2, 11, 12, 13, 14}, {}},
        {99, 0, 2, S_OK, {1, 2, 11, 12}, {13, 14}},   {0, 1, -1, E_FAIL, {1, 2}, {11, 12, 13, 14}},
        {0, -1, 1, E_FAIL, {1, 2}, {11, 12, 13, 14}}, {0, 2, INT32_MAX, E_FAIL, {1, 2}, {11, 12, 13, 14}},
    };
    for (const auto& c : cases) {
        const List dst(kHeapItems, {1, 2}), src(kHeapItems, {11, 12, 13, 14});
        EXPECT_EQ(VxList_MoveItemsBetweenHeapLists(dst, c.dstIndex, src, c.srcIndex, c.n), c.status);
        EXPECT_EQ(dst.Values(), c.dst);
        EXPECT_EQ(src.Values(), c.src);
    }
    const List heap(kHeapItems, {1}), other(kHeapItems, {2}), pointers(kPointers, {3});
    EXPECT_EQ(VxList_MoveItemsBetweenHeapLists(heap, 0, pointers, 0, 1), E_FAIL);
    EXPECT_EQ(VxList_MoveItemsBetweenHeapLists(pointers, 0, heap, 0, 1), E_FAIL);
    EXPECT_EQ(VxList_MoveItemsBetweenHeapLists(heap, 0, heap, 0, 1), E_FAIL);
    EXPECT_EQ(VxList_MoveItemsBetweenHeapLists(heap, 0, heap, 0, 0), S_OK);
    void* pending;
    EXPECT_EQ(VxList_AllocItem(heap, 8, &pending), S_OK);
    EXPECT_EQ(VxList_MoveItemsBetweenHeapLists(heap, 0, other, 0, 1), E_FAIL);
    EXPECT_EQ(heap->pendingItem, pending);
    EXPECT_EQ(VxList_DeleteList(heap, -1, -1, 0), S_OK);
}

TEST(ListLife, CreationRefuses)
{
    tVXLIST* list = reinterpret_cast<tVXLIST*>(8);
    EXPECT_EQ(Create(&list, 8, 1, 4, VXLIST_OPT_ARRAY | VXLIST_OPT_HEAPITEMS), E_FAIL);
    EXPECT_EQ(list, nullptr);
    EXPECT_EQ(Create(&list, 8, 1, 4, VXLIST_OPT_INPLACE), E_FAIL);
    tVXLIST record;
    std::memset(&record, 0xCC, sizeof(record));
    tVXLIST* inPlace = &record;
    EXPECT_EQ(Create(&inPlace, 8, 1, 4, VXLIST_OPT_INPLACE | VXLIST_OPT_ARRAY | VXLIST_OPT_HEAPITEMS),
              E_FAIL);
    const tVXLIST zeros = {};
    EXPECT_EQ(std::memcmp(&record, &zeros, sizeof(record)), 0) << "is cleared before anything is refused";
    // More bytes than can be counted, and more slots.
    EXPECT_EQ(Create(&list, uint64_t(1) << 62, 16, 16, VXLIST_OPT_ARRAY), E_OUTOFMEMORY);
    EXPECT_EQ(Create(&list, uint64_t(1) << 59, 16, 16, VXLIST_OPT_ARRAY), E_OUTOFMEMORY);
    EXPECT_EQ(Create(&list, 8, INT32_MAX, 16, 0), E_OUTOFMEMORY);
    EXPECT_EQ(list, nullptr);
    EXPECT_EQ(VxList_Destroy(nullptr), S_OK);
}

} // namespace
