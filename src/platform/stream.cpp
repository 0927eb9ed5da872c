#include "vx/platform/stream.h"

#include "vx/platform/memory.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <limits>
#include <memory>
#include <mutex>
#include <new>

namespace vxplatform {
namespace {

// Known to memory streams only: they answer with themselves, and so are told from others.
constexpr IID kMemoryStream = {0x6B1F0D52, 0x3C0E, 0x4C65, {0x9A, 0x41, 0x5E, 0x27, 0xD0, 0x88, 0x13, 0xF6}};

// The bytes of a stream and its clones.
class Bytes
{
public:
    Bytes(HGLOBAL memory, bool owned) : memory_(memory), owned_(owned) {}
    ~Bytes()
    {
        if (owned_)
            GlobalFree(memory_);
    }
    Bytes(const Bytes&) = delete;
    Bytes& operator=(const Bytes&) = delete;

    HGLOBAL Memory() const { return memory_; }

    uint64_t Size()
    {
        const std::lock_guard lock(mutex_);
        return GlobalSize(memory_);
    }

    bool Resize(uint64_t size)
    {
        const std::lock_guard lock(mutex_);
        return ResizeLocked(size);
    }

    ULONG Read(uint64_t position, void* data, ULONG bytes)
    {
        const std::lock_guard lock(mutex_);
        const uint64_t size = GlobalSize(memory_);
        const ULONG count = ULONG(std::min<uint64_t>(bytes, size - std::min(position, size)));
        if (count != 0) {
            std::memcpy(data, static_cast<const uint8_t*>(GlobalLock(memory_)) + position, count);
            GlobalUnlock(memory_);
        }
        return count;
    }

    bool Write(uint64_t position, const void* data, ULONG bytes)
    {
        const std::lock_guard lock(mutex_);
        if (bytes == 0)
            return true;
        const uint64_t end = position + bytes;
        if (end < position || (end > GlobalSize(memory_) && !ResizeLocked(end)))
            return false;
        std::memcpy(static_cast<uint8_t*>(GlobalLock(memory_)) + position, data, bytes);
        GlobalUnlock(memory_);
        return true;
    }

private:
    bool ResizeLocked(uint64_t size)
    {
        return size <= uint64_t(PTRDIFF_MAX) && GlobalReAlloc(memory_, SIZE_T(size), GMEM_ZEROINIT);
    }

    const HGLOBAL memory_;
    const bool owned_;
    std::mutex mutex_;
};

template <class T>
void Tell(T* to, uint64_t value)
{
    if constexpr (std::is_same_v<T, ULARGE_INTEGER>) {
        if (to)
            to->QuadPart = value;
    } else if (to) {
        *to = T(value);
    }
}

class MemoryStream final : public IStream
{
public:
    MemoryStream(std::shared_ptr<Bytes> bytes, uint64_t position)
        : bytes_(std::move(bytes)), position_(position)
    {}
    virtual ~MemoryStream() = default; // behind the published members

    HGLOBAL Memory() const { return bytes_->Memory(); }

    HRESULT QueryInterface(const IID* iid, void** object) override
    {
        if (!object)
            return E_POINTER;
        *object = nullptr;
        if (!iid)
            return E_INVALIDARG;
        if (*iid != IID_IUnknown && *iid != IID_ISequentialStream && *iid != IID_IStream &&
            *iid != kMemoryStream)
            return E_NOINTERFACE;
        *object = this;
        AddRef();
        return S_OK;
    }
    ULONG AddRef() override { return ++references_; }
    ULONG Release() override
    {
        const ULONG left = --references_;
        if (left == 0)
            delete this;
        return left;
    }

    HRESULT Read(void* data, ULONG bytes, ULONG* bytesRead) override
    {
        Tell(bytesRead, 0);
        if (!data)
            return STG_E_INVALIDPOINTER;
        const std::lock_guard lock(mutex_);
        const ULONG count = bytes_->Read(position_, data, bytes);
        position_ += count;
        Tell(bytesRead, count);
        return S_OK;
    }

    HRESULT Write(const void* data, ULONG bytes, ULONG* bytesWritten) override
    {
        Tell(bytesWritten, 0);
        if (!data)
            return STG_E_INVALIDPOINTER;
        const std::lock_guard lock(mutex_);
        if (!bytes_->Write(position_, data, bytes))
            return STG_E_MEDIUMFULL;
        position_ += bytes;
        Tell(bytesWritten, bytes);
        return S_OK;
    }

    HRESULT Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* newPosition) override
    {
        const std::lock_guard lock(mutex_);
        if (origin > STREAM_SEEK_END)
            return STG_E_INVALIDFUNCTION;
        const uint64_t start = origin == STREAM_SEEK_SET   ? 0
                               : origin == STREAM_SEEK_CUR ? position_
                                                           : bytes_->Size();
        int64_t target = 0;
        if (__builtin_add_overflow(int64_t(start), move.QuadPart, &target) || target < 0)
            return STG_E_INVALIDFUNCTION;
        position_ = uint64_t(target);
        Tell(newPosition, position_);
        return S_OK;
    }

    HRESULT SetSize(ULARGE_INTEGER size) override
    {
        return bytes_->Resize(size.QuadPart) ? S_OK : STG_E_MEDIUMFULL;
    }

    // Through a buffer of its own: the other stream may be a clone, whose bytes move as they grow.
    HRESULT CopyTo(IStream* other, ULARGE_INTEGER bytes, ULARGE_INTEGER* bytesRead,
                   ULARGE_INTEGER* bytesWritten) override
    {
        if (!other)
            return STG_E_INVALIDPOINTER;
        uint64_t read = 0, written = 0;
        HRESULT status = S_OK;
        uint8_t buffer[4096];
        while (read < bytes.QuadPart) {
            ULONG got = 0, put = 0;
            Read(buffer, ULONG(std::min<uint64_t>(sizeof buffer, bytes.QuadPart - read)), &got);
            if (got == 0)
                break;
            status = other->Write(buffer, got, &put);
            read += got;
            written += put;
            if (FAILED(status) || put < got)
                break;
        }
        Tell(bytesRead, read);
        Tell(bytesWritten, written);
        return status;
    }

    HRESULT Commit(DWORD) override { return S_OK; }
    HRESULT Revert() override { return S_OK; }
    HRESULT LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return STG_E_INVALIDFUNCTION; }
    HRESULT UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return STG_E_INVALIDFUNCTION; }

    HRESULT Stat(STATSTG* facts, DWORD) override
    {
        if (!facts)
            return STG_E_INVALIDPOINTER;
        *facts = {};
        facts->type = STGTY_STREAM;
        facts->cbSize.QuadPart = bytes_->Size();
        facts->grfMode = STGM_READWRITE;
        return S_OK;
    }

    HRESULT Clone(IStream** clone) override
    {
        if (!clone)
            return STG_E_INVALIDPOINTER;
        const std::lock_guard lock(mutex_);
        *clone = new (std::nothrow) MemoryStream(bytes_, position_);
        return *clone ? S_OK : E_OUTOFMEMORY;
    }

private:
    const std::shared_ptr<Bytes> bytes_;
    std::mutex mutex_; // of the position
    uint64_t position_;
    std::atomic<ULONG> references_{1};
};

// Before anything is taken over, so that a failure leaves the caller's block alone.
HRESULT MakeStream(HGLOBAL memory, bool owned, IStream** stream)
try {
    *stream = nullptr;
    auto bytes = std::make_shared<Bytes>(memory, owned);
    *stream = new MemoryStream(std::move(bytes), 0);
    return S_OK;
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

} // namespace
} // namespace vxplatform

using namespace vxplatform;

extern const IID IID_IUnknown = {0, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
extern const IID IID_ISequentialStream = {
    0x0C733A30, 0x2A1C, 0x11CE, {0xAD, 0xE5, 0x00, 0xAA, 0x00, 0x44, 0x77, 0x3D}};
extern const IID IID_IStream = {0xC, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

HRESULT CreateStreamOnHGlobal(HGLOBAL memory, BOOL deleteOnRelease, IStream** stream)
{
    if (!stream)
        return E_POINTER;
    *stream = nullptr;
    if (memory && (GlobalFlags(memory) & GMEM_INVALID_HANDLE))
        return E_INVALIDARG;
    const HGLOBAL block = memory ? memory : GlobalAlloc(GMEM_MOVEABLE, 0);
    return block ? MakeStream(block, deleteOnRelease != 0, stream) : E_OUTOFMEMORY;
}

HRESULT GetHGlobalFromStream(IStream* stream, HGLOBAL* memory)
{
    if (!stream || !memory)
        return E_INVALIDARG;
    void* found = nullptr;
    if (FAILED(stream->QueryInterface(&kMemoryStream, &found)))
        return E_INVALIDARG;
    auto* const own = static_cast<MemoryStream*>(static_cast<IStream*>(found));
    *memory = own->Memory();
    own->Release();
    return S_OK;
}
