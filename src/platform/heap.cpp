#include "vx/platform/heap.h"

#include "platform/allocation.h"
#include "platform/private_heap.h"
#include "vx/platform/lasterror.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <malloc.h>

namespace {

using vxplatform::PrivateHeap;

char g_processHeap; // its address is the process heap's handle

bool IsProcessHeap(HANDLE heap)
{
    return heap == &g_processHeap;
}

bool Fail(DWORD code)
{
    SetLastError(code);
    return false;
}

bool IsHeap(HANDLE heap)
{
    return heap || Fail(ERROR_INVALID_HANDLE);
}

bool IsBlock(const void* block)
{
    return block || Fail(ERROR_INVALID_PARAMETER);
}

bool KnowsFlags(DWORD flags, DWORD known)
{
    return (flags & ~known) == 0 || Fail(ERROR_INVALID_FLAGS);
}

// The block's heap, where it is the private one named; else null and the last error.
PrivateHeap* OwnerOf(HANDLE heap, const void* block)
{
    PrivateHeap* owner = static_cast<PrivateHeap*>(heap);
    if (owner->Owns(block))
        return owner;
    SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
}

void* OutOfMemoryIfNull(void* block)
{
    if (!block)
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return block;
}

// A size of 0 would free the block.
void* ReallocateInProcessHeap(void* block, size_t bytes, bool zeroed)
{
    const size_t oldBytes = malloc_usable_size(block);
    void* result = std::realloc(block, std::max<size_t>(bytes, 1));
    if (result && zeroed && bytes > oldBytes)
        std::memset(static_cast<char*>(result) + oldBytes, 0, bytes - oldBytes);
    return result;
}

constexpr SIZE_T kMostBytes = PTRDIFF_MAX; // of an object
constexpr DWORD kAllocFlags = HEAP_NO_SERIALIZE | HEAP_ZERO_MEMORY;

} // namespace

HANDLE GetProcessHeap()
{
    return &g_processHeap;
}

HANDLE HeapCreate(DWORD flags, SIZE_T initialSize, SIZE_T maximumSize)
{
    if (!KnowsFlags(flags, HEAP_NO_SERIALIZE))
        return nullptr;
    if (vxplatform::AllocationMustFail())
        return OutOfMemoryIfNull(nullptr);
    return OutOfMemoryIfNull(PrivateHeap::Create(!(flags & HEAP_NO_SERIALIZE), initialSize, maximumSize));
}

BOOL HeapDestroy(HANDLE heap)
{
    if (!heap || IsProcessHeap(heap))
        return Fail(ERROR_INVALID_HANDLE);
    delete static_cast<PrivateHeap*>(heap);
    return TRUE;
}

void* HeapAlloc(HANDLE heap, DWORD flags, SIZE_T bytes)
{
    if (!IsHeap(heap) || !KnowsFlags(flags, kAllocFlags))
        return nullptr;
    if (bytes > kMostBytes || vxplatform::AllocationMustFail())
        return OutOfMemoryIfNull(nullptr);
    const bool zeroed = (flags & HEAP_ZERO_MEMORY) != 0;
    if (IsProcessHeap(heap)) {
        bytes = std::max<size_t>(bytes, 1);
        return OutOfMemoryIfNull(zeroed ? std::calloc(1, bytes) : std::malloc(bytes));
    }
    PrivateHeap* own = static_cast<PrivateHeap*>(heap);
    const auto guard = own->Guard(!(flags & HEAP_NO_SERIALIZE));
    return OutOfMemoryIfNull(own->Allocate(bytes, zeroed));
}

void* HeapReAlloc(HANDLE heap, DWORD flags, void* block, SIZE_T bytes)
{
    if (!IsHeap(heap) || !KnowsFlags(flags, kAllocFlags) || !IsBlock(block))
        return nullptr;
    if (bytes > kMostBytes || vxplatform::AllocationMustFail())
        return OutOfMemoryIfNull(nullptr);
    const bool zeroed = (flags & HEAP_ZERO_MEMORY) != 0;
    if (IsProcessHeap(heap))
        return OutOfMemoryIfNull(ReallocateInProcessHeap(block, bytes, zeroed));
    PrivateHeap* own = static_cast<PrivateHeap*>(heap);
    const auto guard = own->Guard(!(flags & HEAP_NO_SERIALIZE));
    return OwnerOf(heap, block) ? OutOfMemoryIfNull(own->Reallocate(block, bytes, zeroed)) : nullptr;
}

BOOL HeapFree(HANDLE heap, DWORD flags, void* block)
{
    if (!IsHeap(heap) || !KnowsFlags(flags, HEAP_NO_SERIALIZE))
        return FALSE;
    if (IsProcessHeap(heap)) {
        std::free(block);
        return TRUE;
    }
    if (!block)
        return TRUE;
    PrivateHeap* own = static_cast<PrivateHeap*>(heap);
    const auto guard = own->Guard(!(flags & HEAP_NO_SERIALIZE));
    if (!OwnerOf(heap, block))
        return FALSE;
    own->Free(block);
    return TRUE;
}

SIZE_T HeapSize(HANDLE heap, DWORD flags, const void* block)
{
    constexpr SIZE_T kFailed = SIZE_T(-1);
    if (!IsHeap(heap) || !KnowsFlags(flags, HEAP_NO_SERIALIZE) || !IsBlock(block))
        return kFailed;
    if (IsProcessHeap(heap))
        return malloc_usable_size(const_cast<void*>(block));
    PrivateHeap* own = static_cast<PrivateHeap*>(heap);
    const auto guard = own->Guard(!(flags & HEAP_NO_SERIALIZE));
    return OwnerOf(heap, block) ? own->SizeOf(block) : kFailed;
}
