// Moving items within a list, and from one heap list to another.
#include "containers/list.h"

#include "vx/platform/memory.h"

#include <algorithm>

namespace vx {
namespace {

constexpr size_t kLocalBytes = 512;

// Room for the items on the move: a local buffer where they fit.
class Scratch
{
public:
    explicit Scratch(size_t bytes) : bytes_(bytes <= kLocalBytes ? local_ : GlobalAlloc(GMEM_FIXED, bytes)) {}
    ~Scratch()
    {
        if (bytes_ != local_)
            GlobalFree(bytes_);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    void* Bytes() { return bytes_; }

private:
    std::byte local_[kLocalBytes];
    void* bytes_;
};

HRESULT RotateSlots(tVXLIST& list, int32_t from, int32_t to, int32_t n)
{
    const size_t bytes = size_t(n) * list.itemSize;
    Scratch moved(bytes);
    if (!moved.Bytes())
        return E_OUTOFMEMORY;
    std::memcpy(moved.Bytes(), SlotAt(list, from), bytes);
    if (from < to)
        std::memmove(SlotAt(list, from), SlotAt(list, from + n), size_t(to - from) * list.itemSize);
    else
        std::memmove(SlotAt(list, to + n), SlotAt(list, to), size_t(from - to) * list.itemSize);
    std::memcpy(SlotAt(list, to), moved.Bytes(), bytes);
    return S_OK;
}

// Room for n more slots, a step at a time. Without memory for all of them the steps that were got stay.
HRESULT GrowForItems(tVXLIST& list, int32_t n)
{
    HRESULT status = S_OK;
    while (SUCCEEDED(status) && list.allocated - list.count < n)
        status = GrowBlock(list, 1);
    return status;
}

HRESULT MoveBetween(tVXLIST& dst, int32_t dstIndex, tVXLIST& src, int32_t srcIndex, int32_t n)
{
    if (!IsHeapList(dst) || !IsHeapList(src) || dst.pendingItem)
        return E_FAIL;
    if (n < 0)
        n = src.count;
    if (n == 0)
        return S_OK;
    if (&dst == &src || srcIndex < 0 || int64_t(srcIndex) + n > src.count)
        return E_FAIL;
    const HRESULT status = GrowForItems(dst, n);
    const int32_t moved = std::min(n, dst.allocated - dst.count);
    const int32_t first = srcIndex + n - moved;
    if (moved > 0) {
        InsertSlots(dst, dstIndex, SlotAt(src, first), moved);
        RemoveSlots(src, first, moved);
    }
    return status;
}

} // namespace
} // namespace vx

using namespace vx;

HRESULT VxList_MoveRange(tVXLIST* list, int32_t from, int32_t to, int32_t n)
{
    const ListScope scope(list);
    if (!scope)
        return E_FAIL;
    if (from < 0)
        return E_INVALIDARG;
    to = std::max(to, 0);
    if (n < 0)
        n = list->count - std::max(from, to);
    if (n < 1 || from == to)
        return S_OK;
    if (int64_t(std::max(from, to)) + n > list->count)
        return E_FAIL;
    return RotateSlots(*list, from, to, n);
}

HRESULT VxList_MoveItemsBetweenHeapLists(tVXLIST* dst, int32_t dstIndex, tVXLIST* src, int32_t srcIndex,
                                         int32_t n)
{
    const ListScope dstScope(dst);
    const ListScope srcScope(src);
    return dstScope && srcScope ? MoveBetween(*dst, dstIndex, *src, srcIndex, n) : E_FAIL;
}
