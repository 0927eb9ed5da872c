#include "vx/platform/memory.h"

#include "platform/allocation.h"
#include "vx/platform/lasterror.h"

#include <algorithm>
#include <cstring>
#include <mutex>
#include <new>
#include <unordered_map>

namespace vxplatform {
namespace {

// An address that leak checkers do not take for a reference: the table below knows every block, and
// would otherwise keep all that a caller forgot from being reported.
class Hidden
{
public:
    Hidden(const void* address) : bits_(~reinterpret_cast<uintptr_t>(address)) {}
    void* Address() const { return reinterpret_cast<void*>(~bits_); }
    bool operator==(const Hidden&) const = default;
    struct Hash
    {
        size_t operator()(const Hidden& hidden) const { return std::hash<uintptr_t>()(hidden.bits_); }
    };

private:
    uintptr_t bits_;
};

struct Block
{
    Hidden data; // null while discarded
    SIZE_T bytes;
    SIZE_T room; // what was allocated: the block grows up to it without moving
    bool movable;
    uint32_t locks = 0;
};

// All live blocks of the process. The two maps and all fields of blocks change under `mutex` only.
struct BlockTable
{
    std::mutex mutex;
    std::unordered_map<Hidden, Block, Hidden::Hash> byHandle;
    std::unordered_map<Hidden, Hidden, Hidden::Hash> handleByData;
    uintptr_t lastSerial = 0;
};

// Never destroyed: hosts free blocks from exit handlers and from destructors of statics.
BlockTable& Table()
{
    static BlockTable& table = *new BlockTable;
    return table;
}

std::unique_lock<std::mutex> LockTable()
{
    return std::unique_lock(Table().mutex);
}

template <class Result>
Result Fail(DWORD error, Result result)
{
    SetLastError(error);
    return result;
}

Block* FindBlock(HGLOBAL handle)
{
    const auto found = Table().byHandle.find(handle);
    return found == Table().byHandle.end() ? Fail<Block*>(ERROR_INVALID_HANDLE, nullptr) : &found->second;
}

// A movable handle is 2 above a multiple of 4, which no block's address is.
HGLOBAL NewHandle(const Block& block)
{
    return block.movable ? reinterpret_cast<HGLOBAL>(++Table().lastSerial * 4 + 2) : block.data.Address();
}

bool EnterData(const void* data, HGLOBAL handle)
{
    try {
        if (data)
            Table().handleByData.emplace(data, handle);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

// The new block's handle; null where the table has no memory to grow.
HGLOBAL EnterBlock(const Block& block)
{
    const auto lock = LockTable();
    const HGLOBAL handle = NewHandle(block);
    if (!EnterData(block.data.Address(), handle))
        return nullptr;
    try {
        Table().byHandle.emplace(handle, block);
    } catch (const std::bad_alloc&) {
        Table().handleByData.erase(block.data);
        return nullptr;
    }
    return handle;
}

// Puts other bytes behind a handle. A fixed block gets the new address as its handle.
HGLOBAL ReplaceData(HGLOBAL handle, Block& block, void* data, SIZE_T bytes, SIZE_T room)
{
    const HGLOBAL newHandle = block.movable ? handle : data;
    if (!EnterData(data, newHandle))
        return Fail<HGLOBAL>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
    void* const old = block.data.Address();
    Table().handleByData.erase(block.data);
    block.data = data;
    block.bytes = bytes;
    block.room = room;
    if (newHandle != handle) {
        auto entry = Table().byHandle.extract(handle);
        entry.key() = newHandle;
        Table().byHandle.insert(std::move(entry));
    }
    ReleaseBytes(old);
    return newHandle;
}

HGLOBAL ResizeInPlace(HGLOBAL handle, Block& block, SIZE_T bytes, bool zeroed)
{
    if (zeroed && bytes > block.bytes)
        std::memset(static_cast<uint8_t*>(block.data.Address()) + block.bytes, 0, bytes - block.bytes);
    block.bytes = bytes;
    return handle;
}

// A block that has to move to grow gets half as much again, up to a limit: who adds a little again and
// again has each byte copied a few times, not at every step.
SIZE_T RoomFor(const Block& block, SIZE_T bytes)
{
    constexpr SIZE_T kMostSpare = SIZE_T(64) << 20;
    const bool grows = block.room != 0 && bytes > block.room;
    return grows && bytes <= SIZE_T(PTRDIFF_MAX) ? bytes + std::min(bytes / 2, kMostSpare) : bytes;
}

HGLOBAL ResizeByMove(HGLOBAL handle, Block& block, SIZE_T bytes, bool zeroed)
{
    SIZE_T room = RoomFor(block, bytes);
    void* data = AllocateBytes(room, false);
    if (!data && room > bytes) { // what is asked for may fit without the spare room
        room = bytes;
        data = AllocateBytes(room, false);
    }
    if (!data)
        return Fail<HGLOBAL>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
    const SIZE_T kept = std::min(bytes, block.bytes);
    if (kept != 0)
        std::memcpy(data, block.data.Address(), kept);
    if (zeroed)
        std::memset(static_cast<uint8_t*>(data) + kept, 0, bytes - kept);
    const HGLOBAL newHandle = ReplaceData(handle, block, data, bytes, room);
    if (!newHandle)
        ReleaseBytes(data);
    return newHandle;
}

HGLOBAL Resize(HGLOBAL handle, Block& block, SIZE_T bytes, UINT flags)
{
    const bool zeroed = (flags & GMEM_ZEROINIT) != 0;
    if (block.movable && bytes == 0)
        return block.locks == 0 ? ReplaceData(handle, block, nullptr, 0, 0)
                                : Fail<HGLOBAL>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
    const bool mayMove = (flags & GMEM_MOVEABLE) != 0 || (block.movable && block.locks == 0);
    // Shrinking by more than half gives memory back where the block may move.
    const bool fits = block.data.Address() && bytes <= block.room;
    if (fits && (bytes >= block.room / 2 || !mayMove))
        return ResizeInPlace(handle, block, bytes, zeroed);
    return mayMove ? ResizeByMove(handle, block, bytes, zeroed)
                   : Fail<HGLOBAL>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
}

} // namespace
} // namespace vxplatform

using namespace vxplatform;

HGLOBAL GlobalAlloc(UINT flags, SIZE_T bytes)
{
    const bool movable = (flags & GMEM_MOVEABLE) != 0;
    const bool discarded = movable && bytes == 0;
    void* const data = discarded ? nullptr : AllocateBytes(bytes, (flags & GMEM_ZEROINIT) != 0);
    if (!data && !discarded)
        return Fail<HGLOBAL>(ERROR_NOT_ENOUGH_MEMORY, nullptr);
    const HGLOBAL handle = EnterBlock({data, bytes, bytes, movable});
    if (!handle) {
        ReleaseBytes(data);
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    }
    return handle;
}

void* GlobalLock(HGLOBAL handle)
{
    const auto lock = LockTable();
    Block* const block = FindBlock(handle);
    if (!block)
        return nullptr;
    void* const data = block->data.Address();
    if (!data)
        return Fail<void*>(ERROR_DISCARDED, nullptr);
    if (block->movable)
        ++block->locks;
    return data;
}

BOOL GlobalUnlock(HGLOBAL handle)
{
    const auto lock = LockTable();
    Block* const block = FindBlock(handle);
    if (!block)
        return FALSE;
    if (!block->movable)
        return TRUE;
    if (block->locks == 0)
        return Fail(ERROR_NOT_LOCKED, FALSE);
    --block->locks;
    return block->locks != 0 ? TRUE : Fail(ERROR_SUCCESS, FALSE);
}

HGLOBAL GlobalHandle(const void* pointer)
{
    const auto lock = LockTable();
    const auto found = Table().handleByData.find(pointer);
    return found == Table().handleByData.end() ? Fail<HGLOBAL>(ERROR_INVALID_HANDLE, nullptr)
                                               : found->second.Address();
}

HGLOBAL GlobalFree(HGLOBAL handle)
{
    if (!handle)
        return nullptr;
    void* data = nullptr;
    {
        const auto lock = LockTable();
        const Block* const block = FindBlock(handle);
        if (!block)
            return handle;
        data = block->data.Address();
        Table().handleByData.erase(data);
        Table().byHandle.erase(handle);
    }
    ReleaseBytes(data);
    return nullptr;
}

SIZE_T GlobalSize(HGLOBAL handle)
{
    const auto lock = LockTable();
    const Block* const block = FindBlock(handle);
    return block ? block->bytes : 0;
}

HGLOBAL GlobalReAlloc(HGLOBAL handle, SIZE_T bytes, UINT flags)
{
    if (flags & GMEM_MODIFY)
        return Fail<HGLOBAL>(ERROR_NOT_SUPPORTED, nullptr);
    const auto lock = LockTable();
    Block* const block = FindBlock(handle);
    return block ? Resize(handle, *block, bytes, flags) : nullptr;
}

UINT GlobalFlags(HGLOBAL handle)
{
    const auto lock = LockTable();
    const Block* const block = FindBlock(handle);
    if (!block)
        return GMEM_INVALID_HANDLE;
    return std::min<uint32_t>(block->locks, GMEM_LOCKCOUNT) | (block->data.Address() ? 0 : GMEM_DISCARDED);
}
