// The block: growing and shrinking it, putting slots in and taking them out.
#include "containers/list.h"

#include "vx/platform/memory.h"

#include <algorithm>

namespace vx {
namespace {

constexpr int64_t kMostSlots = INT32_MAX;

int64_t WholeSteps(const tVXLIST& list, int64_t slots)
{
    return (slots + list.growBy - 1) / list.growBy * list.growBy;
}

// 0 where the bytes cannot be counted; items of no bytes need a block too.
size_t BlockBytes(const tVXLIST& list, int64_t slots)
{
    uint64_t bytes;
    if (slots > kMostSlots || __builtin_mul_overflow(uint64_t(RoomOf(slots)), list.itemSize, &bytes) ||
        bytes > uint64_t(PTRDIFF_MAX))
        return 0;
    return std::max<size_t>(bytes, 1);
}

// The block is a fixed one, whose handle is its address.
HRESULT ResizeBlock(tVXLIST& list, int64_t slots)
{
    const size_t bytes = BlockBytes(list, slots);
    void* block = bytes ? GlobalReAlloc(list.items, bytes, GMEM_MOVEABLE) : nullptr;
    if (!block)
        return E_OUTOFMEMORY;
    list.items = block;
    list.allocated = int32_t(slots);
    return S_OK;
}

HRESULT ShrinkBlock(tVXLIST& list, int64_t release)
{
    const int64_t spare = list.allocated - list.count;
    const int64_t spareSteps = spare / list.growBy * list.growBy;
    const int64_t released = std::min(WholeSteps(list, release < 0 ? spare : release), spareSteps);
    return released > 0 ? ResizeBlock(list, list.allocated - released) : S_OK;
}

void ShrinkIfAsked(tVXLIST& list, int32_t shrink)
{
    if (shrink && list.allocated - list.count > list.growBy)
        ShrinkBlock(list, -1);
}

// One slot of a pointer list, and of most array lists, is copied without a call.
void CopySlots(void* to, const void* from, size_t bytes)
{
    if (bytes == sizeof(uint64_t))
        std::memcpy(to, from, sizeof(uint64_t));
    else
        std::memcpy(to, from, bytes);
}

HRESULT DeletePendingItem(tVXLIST& list)
{
    if (!list.pendingItem)
        return E_FAIL;
    FreeItem(list, list.pendingItem);
    list.pendingItem = nullptr;
    return S_OK;
}

} // namespace

HRESULT AllocateBlock(tVXLIST& list, int32_t initialSlots)
{
    const int64_t slots = WholeSteps(list, initialSlots);
    const size_t bytes = BlockBytes(list, slots);
    list.items = bytes ? GlobalAlloc(GMEM_FIXED | GMEM_ZEROINIT, bytes) : nullptr;
    list.allocated = list.items ? int32_t(slots) : 0;
    return list.items ? S_OK : E_OUTOFMEMORY;
}

void FreeBlock(tVXLIST& list)
{
    GlobalFree(list.items);
    list.items = nullptr;
}

HRESULT GrowBlock(tVXLIST& list, int64_t extra)
{
    const int32_t oldSlots = list.allocated;
    const HRESULT status = ResizeBlock(list, oldSlots + WholeSteps(list, std::max<int64_t>(extra, 1)));
    if (SUCCEEDED(status))
        std::memset(SlotAt(list, oldSlots), 0, size_t(list.allocated - oldSlots) * list.itemSize);
    return status;
}

HRESULT InsertSlots(tVXLIST& list, int32_t index, const void* slots, int64_t n)
{
    if (list.allocated < list.count + n) {
        const HRESULT status = GrowBlock(list, n);
        if (FAILED(status))
            return status;
    }
    const int32_t at = InsertIndex(list, index);
    const size_t bytes = size_t(n) * list.itemSize;
    std::byte* gap = SlotAt(list, at);
    if (at != list.count)
        std::memmove(gap + bytes, gap, size_t(list.count - at) * list.itemSize);
    CopySlots(gap, slots, bytes);
    list.count += int32_t(n);
    list.pendingItem = nullptr;
    return S_OK;
}

void RemoveSlots(tVXLIST& list, int32_t first, int32_t n)
{
    const int32_t end = first + n;
    std::memmove(SlotAt(list, first), SlotAt(list, end), size_t(list.count - end) * list.itemSize);
    list.count -= n;
    std::memset(SlotAt(list, list.count), 0, size_t(n) * list.itemSize);
}

} // namespace vx

using namespace vx;

HRESULT VxList_GrowAllocated(tVXLIST* list, int32_t extra)
{
    const ListScope scope(list);
    return scope ? GrowBlock(*list, extra) : E_FAIL;
}

HRESULT VxList_ShrinkAllocated(tVXLIST* list, int32_t release)
{
    const ListScope scope(list);
    return scope ? ShrinkBlock(*list, release) : E_FAIL;
}

HRESULT VxList_InsertList(tVXLIST* list, int32_t index, const void* source, int32_t n)
{
    const ListScope scope(list);
    if (!scope)
        return E_FAIL;
    if (!source)
        return n == -1 && list->pendingItem ? InsertSlots(*list, index, &list->pendingItem, 1) : E_FAIL;
    if (n >= 0 && IsHeapList(*list))
        return E_FAIL;
    return InsertSlots(*list, index, source, n < 0 ? -int64_t(n) : n);
}

HRESULT VxList_DeleteList(tVXLIST* list, int32_t first, int32_t n, int32_t shrink)
{
    const ListScope scope(list);
    if (!scope)
        return E_FAIL;
    if (first < 0 && n < 0)
        return DeletePendingItem(*list);
    if (n < 0)
        n = list->count - first;
    if (n < 1)
        return S_OK;
    if (!IsIndex(*list, first))
        return E_FAIL;
    n = std::min(n, list->count - first);
    if (IsHeapList(*list))
        for (int32_t i = first; i < first + n; ++i)
            FreeItem(*list, PointerAt(*list, i));
    RemoveSlots(*list, first, n);
    ShrinkIfAsked(*list, shrink);
    return S_OK;
}

HRESULT VxList_ArrayForceItemCount(tVXLIST* list, int32_t n, int32_t shrink)
{
    const ListScope scope(list);
    if (!scope || !IsArrayList(*list))
        return E_FAIL;
    if (n < 0)
        return E_INVALIDARG;
    if (n > list->allocated) {
        const HRESULT status = GrowBlock(*list, int64_t(n) - list->allocated);
        if (FAILED(status))
            return status;
    }
    list->count = n;
    ShrinkIfAsked(*list, shrink);
    return S_OK;
}
