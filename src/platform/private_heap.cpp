#include "platform/private_heap.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <sanitizer/asan_interface.h> // its marks are nothing outside a build with that sanitizer

namespace vxplatform {
namespace {

constexpr size_t kSmallestChunk = 4096;
constexpr size_t kLargestBlock = PTRDIFF_MAX / 2; // keeps sums of sizes from wrapping

} // namespace

PrivateHeap::PrivateHeap(bool serialized, size_t maximumSize)
    : serialized_(serialized), maximumSize_(maximumSize),
      taken_(sizeof(PrivateHeap)), large_{&large_, &large_, {}}
{}

PrivateHeap* PrivateHeap::Create(bool serialized, size_t initialSize, size_t maximumSize)
{
    if (initialSize > kLargestBlock)
        return nullptr;
    PrivateHeap* heap = new (std::nothrow) PrivateHeap(serialized, maximumSize);
    if (heap && !heap->AddChunk(std::max(initialSize, kSmallestChunk))) {
        delete heap;
        return nullptr;
    }
    return heap;
}

PrivateHeap::~PrivateHeap()
{
    for (Chunk* chunk = chunks_; chunk;) {
        Chunk* next = chunk->next;
        ASAN_UNPOISON_MEMORY_REGION(chunk, chunk->bytes);
        std::free(chunk);
        chunk = next;
    }
    for (Large* large = large_.next; large != &large_;) {
        Large* next = large->next;
        std::free(large);
        large = next;
    }
}

std::unique_lock<std::mutex> PrivateHeap::Guard(bool serializedCall)
{
    return serialized_ && serializedCall ? std::unique_lock(mutex_) : std::unique_lock<std::mutex>();
}

PrivateHeap::Header* PrivateHeap::HeaderOf(const void* block)
{
    return static_cast<Header*>(const_cast<void*>(block)) - 1;
}

PrivateHeap::Large* PrivateHeap::LargeOf(Header* header)
{
    return reinterpret_cast<Large*>(reinterpret_cast<std::byte*>(header) - offsetof(Large, header));
}

size_t PrivateHeap::Capacity(size_t bytes)
{
    return (std::max<size_t>(bytes, 1) + kAlignment - 1) / kAlignment * kAlignment;
}

bool PrivateHeap::Owns(const void* block) const
{
    return block && reinterpret_cast<uintptr_t>(block) % kAlignment == 0 && HeaderOf(block)->owner == this;
}

size_t PrivateHeap::SizeOf(const void* block)
{
    return HeaderOf(block)->size;
}

bool PrivateHeap::MayTake(size_t bytes) const
{
    return maximumSize_ == 0 || (taken_ <= maximumSize_ && bytes <= maximumSize_ - taken_);
}

bool PrivateHeap::AddChunk(size_t bytes)
{
    Chunk* chunk = MayTake(bytes) ? static_cast<Chunk*>(std::malloc(bytes)) : nullptr;
    if (!chunk)
        return false;
    *chunk = {chunks_, bytes};
    chunks_ = chunk;
    taken_ += bytes;
    unused_ = reinterpret_cast<std::byte*>(chunk + 1);
    unusedEnd_ = reinterpret_cast<std::byte*>(chunk) + bytes;
    nextChunk_ = std::min(2 * bytes, kLargestChunk);
    ASAN_POISON_MEMORY_REGION(unused_, size_t(unusedEnd_ - unused_));
    return true;
}

// What is left of a chunk that is too short is given up: less than the largest small block.
PrivateHeap::Header* PrivateHeap::Carve(size_t capacity)
{
    const size_t bytes = sizeof(Header) + capacity;
    if (size_t(unusedEnd_ - unused_) < bytes && !AddChunk(nextChunk_))
        return nullptr;
    Header* header = reinterpret_cast<Header*>(unused_);
    unused_ += bytes;
    ASAN_UNPOISON_MEMORY_REGION(header, sizeof(Header));
    return header;
}

void* PrivateHeap::AllocateSmall(size_t bytes)
{
    const size_t capacity = Capacity(bytes);
    Header*& firstFree = free_[capacity / kAlignment - 1];
    Header* header = firstFree;
    if (header)
        firstFree = header->nextFree;
    else if (!(header = Carve(capacity)))
        return nullptr;
    header->owner = this;
    header->size = bytes;
    ASAN_UNPOISON_MEMORY_REGION(header + 1, bytes);
    return header + 1;
}

void PrivateHeap::Link(Large* large)
{
    large->previous->next = large;
    large->next->previous = large;
}

void* PrivateHeap::AllocateLarge(size_t bytes)
{
    const size_t total = sizeof(Large) + bytes;
    Large* large = MayTake(total) ? static_cast<Large*>(std::malloc(total)) : nullptr;
    if (!large)
        return nullptr;
    taken_ += total;
    *large = {large_.previous, &large_, {this, {bytes}}};
    Link(large);
    return &large->header + 1;
}

void* PrivateHeap::Allocate(size_t bytes, bool zeroed)
{
    if (bytes > kLargestBlock)
        return nullptr;
    void* block = bytes <= kLargestSmall ? AllocateSmall(bytes) : AllocateLarge(bytes);
    if (block && zeroed)
        std::memset(block, 0, bytes);
    return block;
}

void PrivateHeap::Free(void* block)
{
    Header* header = HeaderOf(block);
    const size_t bytes = header->size;
    header->owner = nullptr;
    if (bytes > kLargestSmall) {
        Large* large = LargeOf(header);
        large->previous->next = large->next;
        large->next->previous = large->previous;
        taken_ -= sizeof(Large) + bytes;
        std::free(large);
        return;
    }
    const size_t capacity = Capacity(bytes);
    Header*& firstFree = free_[capacity / kAlignment - 1];
    header->nextFree = firstFree;
    firstFree = header;
    ASAN_POISON_MEMORY_REGION(block, capacity);
}

void* PrivateHeap::ReallocateLarge(void* block, size_t bytes)
{
    Large* large = LargeOf(HeaderOf(block));
    const size_t oldBytes = large->header.size;
    if (bytes > oldBytes && !MayTake(bytes - oldBytes))
        return nullptr;
    large = static_cast<Large*>(std::realloc(large, sizeof(Large) + bytes));
    if (!large)
        return nullptr;
    taken_ += bytes - oldBytes; // wraps where it shrinks, and comes out right
    large->header.size = bytes;
    Link(large);
    return &large->header + 1;
}

void* PrivateHeap::Move(void* block, size_t bytes)
{
    void* moved = Allocate(bytes, false);
    if (!moved)
        return nullptr;
    std::memcpy(moved, block, std::min(bytes, SizeOf(block)));
    Free(block);
    return moved;
}

void* PrivateHeap::Reallocate(void* block, size_t bytes, bool zeroed)
{
    if (bytes > kLargestBlock)
        return nullptr;
    const size_t oldBytes = SizeOf(block);
    void* result = block;
    if (oldBytes > kLargestSmall && bytes > kLargestSmall)
        result = ReallocateLarge(block, bytes);
    else if (Capacity(oldBytes) != Capacity(bytes))
        result = Move(block, bytes);
    if (!result)
        return nullptr;
    if (result == block && bytes <= kLargestSmall) {
        HeaderOf(block)->size = bytes;
        ASAN_POISON_MEMORY_REGION(block, Capacity(bytes));
        ASAN_UNPOISON_MEMORY_REGION(block, bytes);
    }
    if (zeroed && bytes > oldBytes)
        std::memset(static_cast<std::byte*>(result) + oldBytes, 0, bytes - oldBytes);
    return result;
}

} // namespace vxplatform
