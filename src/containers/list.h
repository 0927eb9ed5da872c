// What the list's sources share. Functions here expect the list's lock to be held.
#pragma once

#include "vx/list.h"
#include "vx/platform/threads.h"

#include <atomic>
#include <cstddef>
#include <cstring>

namespace vx {

inline bool IsArrayList(const tVXLIST& list)
{
    return (list.options & VXLIST_OPT_ARRAY) != 0;
}

inline bool IsHeapList(const tVXLIST& list)
{
    return (list.options & VXLIST_OPT_HEAPITEMS) != 0;
}

// Fields that functions without a lock read and write.
template <class Word>
std::atomic_ref<Word> Shared(const Word& field)
{
    return std::atomic_ref<Word>(const_cast<Word&>(field));
}

inline bool MayUse(const tVXLIST& list)
{
    return (list.options & (VXLIST_OPT_LOCKED | VXLIST_OPT_ANYTHREAD)) != 0 ||
           Shared(list.ownerThread).load(std::memory_order_relaxed) == GetCurrentThreadId();
}

// One operation on a list: holds its lock, if it has one, for the scope. False where the calling
// thread may not use the list.
class ListScope
{
public:
    explicit ListScope(tVXLIST* list) : list_(*list), allowed_(MayUse(list_))
    {
        if (list_.options & VXLIST_OPT_LOCKED)
            EnterCriticalSection(&list_.lock);
    }
    ~ListScope()
    {
        if (list_.options & VXLIST_OPT_LOCKED)
            LeaveCriticalSection(&list_.lock);
    }
    ListScope(const ListScope&) = delete;
    ListScope& operator=(const ListScope&) = delete;

    explicit operator bool() const { return allowed_; }

private:
    tVXLIST& list_;
    const bool allowed_;
};

inline std::byte* SlotAt(void* block, uint64_t slotBytes, int32_t index)
{
    return static_cast<std::byte*>(block) + uint64_t(uint32_t(index)) * slotBytes;
}

inline void* PointerIn(const std::byte* slot)
{
    void* pointer;
    std::memcpy(&pointer, slot, sizeof(pointer));
    return pointer;
}

inline std::byte* SlotAt(const tVXLIST& list, int32_t index)
{
    return SlotAt(list.items, list.itemSize, index);
}

inline void* PointerAt(const tVXLIST& list, int32_t index)
{
    return PointerIn(SlotAt(list, index));
}

// Items as callbacks get them. A callback does not change the list, so the record is read once.
class Items
{
public:
    explicit Items(const tVXLIST& list)
        : block_(list.items), slotBytes_(list.itemSize), inSlots_(IsArrayList(list))
    {}

    const void* operator[](int32_t index) const
    {
        const std::byte* slot = SlotAt(block_, slotBytes_, index);
        return inSlots_ ? slot : PointerIn(slot);
    }

private:
    void* const block_;
    const uint64_t slotBytes_;
    const bool inSlots_;
};

inline bool IsIndex(const tVXLIST& list, int32_t index)
{
    return index >= 0 && index < list.count;
}

// Where an insertion at this index takes place.
inline int32_t InsertIndex(const tVXLIST& list, int32_t index)
{
    return index < 0 || index > list.count ? list.count : index;
}

// Slots that a block of so many has room for: at least one, so that an empty list keeps a block.
inline int64_t RoomOf(int64_t slots)
{
    return slots > 0 ? slots : 1;
}

// list_storage.cpp
HRESULT AllocateBlock(tVXLIST& list, int32_t initialSlots);
void FreeBlock(tVXLIST& list);
HRESULT GrowBlock(tVXLIST& list, int64_t extra);
HRESULT InsertSlots(tVXLIST& list, int32_t index, const void* slots, int64_t n);
void RemoveSlots(tVXLIST& list, int32_t first, int32_t n); // items are not freed

// list_items.cpp
HANDLE ItemHeap(const tVXLIST& list);
void FreeItem(const tVXLIST& list, void* item);

// list_search.cpp
int32_t FindInsertIndex(const tVXLIST& list, const void* key, int32_t first, int32_t count,
                        VxListCompare compare);

} // namespace vx
