// Life of a list, its recognition and the words of its record.
#include "containers/list.h"

#include "vx/platform/heap.h"
#include "vx/platform/probe.h"

#include <algorithm>

namespace vx {
namespace {

constexpr int32_t kDefaultSlots = 16;
constexpr int32_t kFewestSlots = 4;
constexpr int32_t kLargestStep = 0x10400;
constexpr SIZE_T kPrivateHeapBytes = 4096;
constexpr uint32_t kRefusedWord = 0xFFFFFFFFu;

int32_t SlotsOrDefault(int32_t slots)
{
    return slots < 1 ? kDefaultSlots : std::max(slots, kFewestSlots);
}

// A record of zeros; the one in place has been cleared.
tVXLIST* NewRecord(tVXLIST** list, uint32_t options)
{
    return options & VXLIST_OPT_INPLACE
               ? *list
               : static_cast<tVXLIST*>(HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, sizeof(tVXLIST)));
}

void EndRecord(tVXLIST* list)
{
    list->tag = 0;
    if (!(list->options & VXLIST_OPT_INPLACE))
        HeapFree(GetProcessHeap(), 0, list);
}

void FreeItems(tVXLIST& list)
{
    if (list.heap) {
        HeapDestroy(list.heap);
        list.heap = nullptr;
        return;
    }
    for (int32_t i = 0; i < list.count; ++i)
        FreeItem(list, PointerAt(list, i));
}

HRESULT PrepareHeap(tVXLIST& list)
{
    list.heapAllocFlags = HEAP_NO_SERIALIZE | HEAP_ZERO_MEMORY;
    list.heapFreeFlags = HEAP_NO_SERIALIZE;
    if (!(list.options & VXLIST_OPT_PRIVATEHEAP))
        return S_OK;
    list.heap = HeapCreate(HEAP_NO_SERIALIZE, kPrivateHeapBytes, 0);
    return list.heap ? S_OK : E_OUTOFMEMORY;
}

HRESULT InitializeRecord(tVXLIST* list, uint64_t itemSize, int32_t initialSlots, int32_t growBy,
                         uint32_t options)
{
    list->tag = VXLIST_TAG;
    list->options = options | VXLIST_OPT_ANYTHREAD;
    list->itemSize = IsArrayList(*list) ? (itemSize + 3) & ~uint64_t(3) : sizeof(void*);
    list->growBy = std::min(SlotsOrDefault(growBy), kLargestStep);
    list->ownerThread = GetCurrentThreadId();
    if (FAILED(AllocateBlock(*list, SlotsOrDefault(initialSlots)))) {
        EndRecord(list);
        return E_OUTOFMEMORY;
    }
    if (options & VXLIST_OPT_LOCKED)
        InitializeCriticalSection(&list->lock);
    if (IsHeapList(*list) && FAILED(PrepareHeap(*list))) {
        VxList_Destroy(list);
        return E_OUTOFMEMORY;
    }
    return S_OK;
}

} // namespace
} // namespace vx

using namespace vx;

HRESULT VxList_CreateExZ(tVXLIST** list, uint64_t itemSize, int32_t initialSlots, int32_t growBy,
                         uint32_t options, const void*, int32_t, const void*)
{
    if (!list)
        return E_FAIL;
    if (!(options & VXLIST_OPT_INPLACE))
        *list = nullptr;
    else if (!*list)
        return E_FAIL;
    else
        **list = {};
    constexpr uint32_t kBothKinds = VXLIST_OPT_ARRAY | VXLIST_OPT_HEAPITEMS;
    if ((options & kBothKinds) == kBothKinds)
        return E_FAIL;
    tVXLIST* record = NewRecord(list, options);
    if (!record)
        return E_OUTOFMEMORY;
    const HRESULT status = InitializeRecord(record, itemSize, initialSlots, growBy, options);
    if (SUCCEEDED(status))
        *list = record;
    return status;
}

HRESULT VxList_Destroy(tVXLIST* list)
{
    if (!list)
        return S_OK;
    {
        const ListScope scope(list);
        if (!scope)
            return E_FAIL;
        if (list->items) {
            if (IsHeapList(*list))
                FreeItems(*list);
            FreeBlock(*list);
        }
    }
    if (list->options & VXLIST_OPT_LOCKED)
        DeleteCriticalSection(&list->lock);
    EndRecord(list);
    return S_OK;
}

HRESULT VxList_ConvertToInPlace(tVXLIST** list, tVXLIST* record)
{
    if (!list || !*list || !record || !VxList_IsListFast(*list))
        return E_INVALIDARG;
    tVXLIST* old = *list;
    if ((old->options & VXLIST_OPT_INPLACE) || !MayUse(*old))
        return E_FAIL;
    {
        const ListScope afterLastUser(old);
        *record = *old;
    }
    record->options |= VXLIST_OPT_INPLACE;
    if (old->options & VXLIST_OPT_LOCKED) { // a lock cannot be moved
        DeleteCriticalSection(&old->lock);
        InitializeCriticalSection(&record->lock);
    }
    EndRecord(old);
    *list = nullptr;
    return S_OK;
}

int32_t VxList_IsList(const void* pointer, int32_t size)
{
    return size == int32_t(sizeof(tVXLIST)) && !IsBadReadPtr(pointer, sizeof(tVXLIST)) &&
           VxList_IsListFast(pointer);
}

int32_t VxList_IsListFast(const void* pointer)
{
    uint32_t tag;
    std::memcpy(&tag, static_cast<const std::byte*>(pointer) + offsetof(tVXLIST, tag), sizeof(tag));
    return tag == VXLIST_TAG;
}

int32_t VxList_IsValidIndexSlow(tVXLIST* list, int32_t index)
{
    const ListScope scope(list);
    return scope && IsIndex(*list, index);
}

uint32_t VxList_GetCreateOptions(const tVXLIST* list)
{
    return list->options;
}

uint32_t VxList_GetFileAndLine(const tVXLIST*, char16_t* text)
{
    if (text)
        *text = u'\0';
    return kRefusedWord;
}

uint32_t VxList_GetThreadOwner(const tVXLIST* list)
{
    return Shared(list->ownerThread).load(std::memory_order_relaxed);
}

HRESULT VxList_SetThreadOwner(tVXLIST* list, uint32_t threadId)
{
    Shared(list->ownerThread).store(threadId ? threadId : GetCurrentThreadId(), std::memory_order_relaxed);
    return S_OK;
}

int64_t VxList_SetUserData(tVXLIST* list, int64_t value)
{
    return MayUse(*list) ? Shared(list->userData).exchange(value) : kRefusedWord;
}

int64_t VxList_GetUserData(const tVXLIST* list)
{
    return MayUse(*list) ? Shared(list->userData).load() : kRefusedWord;
}

int64_t VxList_GetSortCriteria(const tVXLIST* list)
{
    return Shared(list->sortCriteria).load(std::memory_order_relaxed);
}
