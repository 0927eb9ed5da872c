/* Streams of bytes, and those that keep their bytes in global memory.
 *
 * A memory stream reads and writes a movable global block (memory.h), which grows as it is written. A
 * clone has a position of its own and shares the bytes. Any thread may call a memory stream's members. */
#ifndef VX_PLATFORM_STREAM_H
#define VX_PLATFORM_STREAM_H

#include "vx/platform/clock.h"
#include "vx/platform/com.h"

#define STREAM_SEEK_SET 0u
#define STREAM_SEEK_CUR 1u
#define STREAM_SEEK_END 2u

#define STGTY_STREAM 2u
#define STGM_READWRITE 2u

#define STG_E_INVALIDFUNCTION ((HRESULT)0x80030001u)
#define STG_E_MEDIUMFULL ((HRESULT)0x80030070u)
#define STG_E_INVALIDPOINTER ((HRESULT)0x80030009u)

typedef union ULARGE_INTEGER
{
    struct
    {
        DWORD LowPart;
        DWORD HighPart;
    } u;
    ULONGLONG QuadPart;
} ULARGE_INTEGER;

/* What Stat tells. A memory stream knows its size and has no name, times or class. */
typedef struct STATSTG
{
    WCHAR* pwcsName;
    DWORD type; /* STGTY_STREAM */
    ULARGE_INTEGER cbSize;
    ULONGLONG mtime; /* 100 ns since 1601 */
    ULONGLONG ctime;
    ULONGLONG atime;
    DWORD grfMode; /* STGM_READWRITE */
    DWORD grfLocksSupported;
    CLSID clsid;
    DWORD grfStateBits;
    DWORD reserved;
} STATSTG;
VX_STATIC_ASSERT(sizeof(STATSTG) == 80, "the published record has 80 bytes");
VX_STATIC_ASSERT(offsetof(STATSTG, cbSize) == 16, "the published order of fields");
VX_STATIC_ASSERT(offsetof(STATSTG, clsid) == 56, "the published order of fields");

/* The members, in C with the stream in front:
 *   Read, Write    move the position by what was read or written, which the last argument receives (it may
 *                  be null). Reading stops at the end and succeeds; writing behind the end fills the gap
 *                  with zeros. STG_E_MEDIUMFULL without memory, with nothing written
 *   Seek           STG_E_INVALIDFUNCTION for a position below 0 and an unknown origin. The position may
 *                  lie behind the end. newPosition may be null
 *   SetSize        cuts the bytes or adds zeros
 *   CopyTo         writes up to `bytes` bytes from the position on to another stream
 *   Commit, Revert         nothing to do: each write lasts
 *   LockRegion, UnlockRegion   STG_E_INVALIDFUNCTION
 *   Stat           flags are not looked at */
#ifdef __cplusplus

struct ISequentialStream : IUnknown
{
    virtual HRESULT Read(void* data, ULONG bytes, ULONG* bytesRead) = 0;
    virtual HRESULT Write(const void* data, ULONG bytes, ULONG* bytesWritten) = 0;
};

struct IStream : ISequentialStream
{
    virtual HRESULT Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* newPosition) = 0;
    virtual HRESULT SetSize(ULARGE_INTEGER size) = 0;
    virtual HRESULT CopyTo(IStream* other, ULARGE_INTEGER bytes, ULARGE_INTEGER* bytesRead,
                           ULARGE_INTEGER* bytesWritten) = 0;
    virtual HRESULT Commit(DWORD flags) = 0;
    virtual HRESULT Revert() = 0;
    virtual HRESULT LockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER bytes, DWORD type) = 0;
    virtual HRESULT UnlockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER bytes, DWORD type) = 0;
    virtual HRESULT Stat(STATSTG* facts, DWORD flags) = 0;
    virtual HRESULT Clone(IStream** clone) = 0;
};

#else

typedef struct IStream IStream;
typedef struct IStreamVtbl
{
    HRESULT (*QueryInterface)(IStream* self, const IID* iid, void** object);
    ULONG (*AddRef)(IStream* self);
    ULONG (*Release)(IStream* self);
    HRESULT (*Read)(IStream* self, void* data, ULONG bytes, ULONG* bytesRead);
    HRESULT (*Write)(IStream* self, const void* data, ULONG bytes, ULONG* bytesWritten);
    HRESULT (*Seek)(IStream* self, LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* newPosition);
    HRESULT (*SetSize)(IStream* self, ULARGE_INTEGER size);
    HRESULT(*CopyTo)
    (IStream* self, IStream* other, ULARGE_INTEGER bytes, ULARGE_INTEGER* bytesRead,
     ULARGE_INTEGER* bytesWritten);
    HRESULT (*Commit)(IStream* self, DWORD flags);
    HRESULT (*Revert)(IStream* self);
    HRESULT (*LockRegion)(IStream* self, ULARGE_INTEGER offset, ULARGE_INTEGER bytes, DWORD type);
    HRESULT (*UnlockRegion)(IStream* self, ULARGE_INTEGER offset, ULARGE_INTEGER bytes, DWORD type);
    HRESULT (*Stat)(IStream* self, STATSTG* facts, DWORD flags);
    HRESULT (*Clone)(IStream* self, IStream** clone);
} IStreamVtbl;
struct IStream
{
    const IStreamVtbl* lpVtbl;
};

#endif

VX_EXTERN_C_BEGIN

VX_PLATFORM_API extern const IID IID_ISequentialStream; /* {0C733A30-2A1C-11CE-ADE5-00AA0044773D} */
VX_PLATFORM_API extern const IID IID_IStream;           /* {0000000C-0000-0000-C000-000000000046} */

/* A memory stream at position 0, of one reference.
 *   memory            a movable block, whose bytes it begins with; null makes one. Until the last stream on
 *                     it is released nobody else may resize or free it
 *   deleteOnRelease   frees the block with the last stream on it; 0 leaves it to the caller, who finds it
 *                     through GetHGlobalFromStream
 * E_INVALIDARG for what is no movable block, E_POINTER, E_OUTOFMEMORY. */
VX_PLATFORM_API HRESULT CreateStreamOnHGlobal(HGLOBAL memory, BOOL deleteOnRelease, IStream** stream);

/* The block of a memory stream, which stays the stream's; E_INVALIDARG for another stream. */
VX_PLATFORM_API HRESULT GetHGlobalFromStream(IStream* stream, HGLOBAL* memory);

VX_EXTERN_C_END

#endif
