// Lists for tests: made and destroyed with the scope, read and filled by value.
#pragma once

#include "vx/list.h"

#include <cstring>
#include <gtest/gtest.h>
#include <ostream>
#include <vector>

namespace vxtest {

struct ListKind
{
    const char* name;
    uint32_t options;
    int32_t itemSize;

    bool IsArray() const { return (options & VXLIST_OPT_ARRAY) != 0; }
    bool IsHeap() const { return (options & VXLIST_OPT_HEAPITEMS) != 0; }
    friend std::ostream& operator<<(std::ostream& out, const ListKind& kind) { return out << kind.name; }
};

constexpr ListKind kArray{"array", VXLIST_OPT_ARRAY, 8};
constexpr ListKind kWideArray{"array of 20 bytes", VXLIST_OPT_ARRAY, 20};
constexpr ListKind kPointers{"pointers", 0, 8};
constexpr ListKind kHeapItems{"heap items", VXLIST_OPT_HEAPITEMS, 8};
constexpr ListKind kPrivateHeap{"private heap", VXLIST_OPT_HEAPITEMS | VXLIST_OPT_PRIVATEHEAP, 8};
constexpr ListKind kAllKinds[] = {kArray, kWideArray, kPointers, kHeapItems, kPrivateHeap};

// A list of 64-bit values: they stand first in an array's items and in heap items, and are the
// pointers of a pointer list.
class List
{
public:
    explicit List(const ListKind& kind, std::initializer_list<int64_t> values = {}, int32_t growBy = 4,
                  uint32_t moreOptions = 0)
        : kind_(kind)
    {
        EXPECT_EQ(VxList_CreateExZ(&list_, uint64_t(kind.itemSize), 1, growBy, kind.options | moreOptions,
                                   nullptr, 0, nullptr),
                  S_OK);
        for (const int64_t value : values)
            EXPECT_EQ(Insert(-1, {value}), S_OK);
    }
    ~List() { EXPECT_EQ(VxList_Destroy(list_), S_OK); }
    List(const List&) = delete;
    List& operator=(const List&) = delete;

    operator tVXLIST*() const { return list_; }
    tVXLIST* operator->() const { return list_; }
    tVXLIST*& Pointer() { return list_; }

    HRESULT Insert(int32_t index, const std::vector<int64_t>& values)
    {
        if (kind_.IsHeap()) {
            HRESULT status = S_OK;
            for (size_t i = 0; i < values.size() && status == S_OK; ++i)
                status = VxList_AllocAndInsertItem(list_, &values[i], 8, index < 0 ? -1 : index + int32_t(i),
                                                   nullptr);
            return status;
        }
        std::vector<std::byte> slots(values.size() * list_->itemSize + 1);
        for (size_t i = 0; i < values.size(); ++i)
            std::memcpy(&slots[i * list_->itemSize], &values[i], 8);
        return VxList_InsertList(list_, index, slots.data(), int32_t(values.size()));
    }

    // The value of an item as callbacks get it.
    static int64_t Value(const ListKind& kind, const void* item)
    {
        if (kind.options == 0)
            return int64_t(reinterpret_cast<intptr_t>(item));
        int64_t value;
        std::memcpy(&value, item, sizeof(value));
        return value;
    }

    const std::byte* Slot(int32_t i) const
    {
        return static_cast<const std::byte*>(list_->items) + size_t(i) * list_->itemSize;
    }
    void* Pointer(int32_t i) const
    {
        void* pointer;
        std::memcpy(&pointer, Slot(i), sizeof(pointer));
        return pointer;
    }
    std::vector<int64_t> Values() const
    {
        std::vector<int64_t> values;
        for (int32_t i = 0; i < list_->count; ++i)
            values.push_back(ItemOf(*this, i));
        return values;
    }
    // The value of an item of another list, which holds this one's items.
    int64_t ItemOf(const List& list, int32_t i) const
    {
        return Value(kind_, kind_.IsArray() ? list.Slot(i) : list.Pointer(i));
    }

private:
    const ListKind kind_;
    tVXLIST* list_ = nullptr;
};

// A key as callbacks get items of the kind; the value must outlive it.
inline const void* KeyOf(const ListKind& kind, const int64_t& value)
{
    return kind.options == 0 ? reinterpret_cast<const void*>(intptr_t(value)) : &value;
}

} // namespace vxtest
