// A private heap: small blocks are carved from chunks and kept in a free list for each size, large
// ones are blocks of the C runtime in a ring. Destroying it frees chunks and ring, not single blocks.
#pragma once

#include <cstddef>
#include <mutex>

namespace vxplatform {

class PrivateHeap
{
public:
    // Null without memory.
    static PrivateHeap* Create(bool serialized, size_t initialSize, size_t maximumSize);
    ~PrivateHeap();

    void* Allocate(size_t bytes, bool zeroed);
    void* Reallocate(void* block, size_t bytes, bool zeroed); // a block of this heap
    void Free(void* block);                                   // a block of this heap
    bool Owns(const void* block) const;
    static size_t SizeOf(const void* block);

    // Locked for the scope where both the heap and the call are serialised.
    std::unique_lock<std::mutex> Guard(bool serializedCall);

private:
    static constexpr size_t kAlignment = 16;
    static constexpr size_t kLargestSmall = 1024;
    static constexpr size_t kLargestChunk = 65536;
    static constexpr size_t kSizes = kLargestSmall / kAlignment;

    // Stands before every block's bytes.
    struct Header
    {
        PrivateHeap* owner; // null in a free block
        union
        {
            size_t size;      // as asked for
            Header* nextFree; // of the same capacity, in a free block
        };
    };
    struct Chunk
    {
        Chunk* next;
        size_t bytes;
    };
    struct Large
    {
        Large* previous;
        Large* next;
        Header header;
    };
    static_assert(sizeof(Header) == kAlignment && sizeof(Chunk) == kAlignment &&
                      sizeof(Large) == 2 * kAlignment,
                  "blocks behind these keep their alignment");

    PrivateHeap(bool serialized, size_t maximumSize);
    static Header* HeaderOf(const void* block);
    static Large* LargeOf(Header* header);
    static size_t Capacity(size_t bytes);

    void* AllocateSmall(size_t bytes);
    void* AllocateLarge(size_t bytes);
    void* ReallocateLarge(void* block, size_t bytes);
    void* Move(void* block, size_t bytes);
    Header* Carve(size_t capacity);
    bool AddChunk(size_t bytes);
    bool MayTake(size_t bytes) const;
    void Link(Large* large);

    const bool serialized_;
    const size_t maximumSize_; // 0: no limit
    size_t taken_;
    size_t nextChunk_ = 0; // bytes
    Chunk* chunks_ = nullptr;
    std::byte* unused_ = nullptr; // of the newest chunk
    std::byte* unusedEnd_ = nullptr;
    Header* free_[kSizes] = {}; // capacities 16, 32, ...
    Large large_;               // anchor of the ring
    std::mutex mutex_;
};

} // namespace vxplatform
