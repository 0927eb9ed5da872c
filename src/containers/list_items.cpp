// Items that a heap list allocates and frees, one by one.
#include "containers/list.h"

#include "vx/platform/heap.h"

namespace vx {
namespace {

// A negative size is more than any heap has.
SIZE_T ItemBytes(int32_t size)
{
    return SIZE_T(int64_t(size));
}

HRESULT AllocPending(tVXLIST& list, int32_t size)
{
    if (!IsHeapList(list) || list.pendingItem)
        return E_FAIL;
    const DWORD flags = list.heap ? list.heapAllocFlags : HEAP_ZERO_MEMORY;
    list.pendingItem = HeapAlloc(ItemHeap(list), flags, ItemBytes(size));
    return list.pendingItem ? S_OK : E_OUTOFMEMORY;
}

HRESULT InsertNewItem(tVXLIST& list, const void* source, int32_t size, int32_t index)
{
    HRESULT status = AllocPending(list, size);
    if (FAILED(status))
        return status;
    void* item = list.pendingItem;
    if (source)
        std::memcpy(item, source, ItemBytes(size));
    status = InsertSlots(list, index, &item, 1);
    if (FAILED(status)) {
        FreeItem(list, item);
        list.pendingItem = nullptr;
    }
    return status;
}

// A pointer that was handed over and is not of the list's heap counts as nothing.
uint64_t HeapItemSize(const tVXLIST& list, int32_t index)
{
    void* item = PointerAt(list, index);
    const SIZE_T bytes = item ? HeapSize(ItemHeap(list), list.heap ? list.heapFreeFlags : 0, item) : 0;
    return bytes == SIZE_T(-1) ? 0 : bytes;
}

uint64_t WholeSize(const tVXLIST& list)
{
    uint64_t bytes = sizeof(tVXLIST) + uint64_t(RoomOf(list.allocated)) * list.itemSize;
    if (IsHeapList(list))
        for (int32_t i = 0; i < list.count; ++i)
            bytes += HeapItemSize(list, i);
    return bytes;
}

} // namespace

HANDLE ItemHeap(const tVXLIST& list)
{
    return list.heap ? list.heap : GetProcessHeap();
}

void FreeItem(const tVXLIST& list, void* item)
{
    HeapFree(ItemHeap(list), list.heap ? list.heapFreeFlags : 0, item);
}

} // namespace vx

using namespace vx;

HRESULT VxList_AllocItem(tVXLIST* list, int32_t size, void** item)
{
    *item = nullptr;
    const ListScope scope(list);
    if (!scope)
        return E_FAIL;
    const HRESULT status = AllocPending(*list, size);
    if (SUCCEEDED(status))
        *item = list->pendingItem;
    return status;
}

HRESULT VxList_AllocAndInsertItem(tVXLIST* list, const void* source, int32_t size, int32_t index,
                                  int32_t* outIndex)
{
    const ListScope scope(list);
    const int32_t at = scope ? InsertIndex(*list, index) : -1;
    const HRESULT status = scope ? InsertNewItem(*list, source, size, at) : E_FAIL;
    if (outIndex)
        *outIndex = SUCCEEDED(status) ? at : -1;
    return status;
}

HRESULT VxList_ReAllocItem(tVXLIST* list, int32_t index, int32_t size)
{
    const ListScope scope(list);
    if (!scope || !IsHeapList(*list) || !IsIndex(*list, index))
        return E_FAIL;
    const DWORD flags = list->heap ? list->heapAllocFlags : 0;
    void* item = HeapReAlloc(ItemHeap(*list), flags, PointerAt(*list, index), ItemBytes(size));
    if (!item)
        return E_OUTOFMEMORY;
    std::memcpy(SlotAt(*list, index), &item, sizeof(item));
    return S_OK;
}

uint64_t VxList_AllocSize(tVXLIST* list, int32_t index)
{
    const ListScope scope(list);
    if (!scope)
        return 0;
    if (index < 0)
        return WholeSize(*list);
    if (!IsHeapList(*list))
        return list->itemSize;
    return IsIndex(*list, index) ? HeapItemSize(*list, index) : 0;
}
