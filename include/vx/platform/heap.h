/* Heaps: the C runtime's, and private ones whose blocks all go at once.
 *
 * Blocks are aligned to 16 bytes. A failing call sets the last error: ERROR_NOT_ENOUGH_MEMORY where
 * memory or the heap's maximum ran out, ERROR_INVALID_HANDLE for a heap that is none,
 * ERROR_INVALID_PARAMETER for a block that is not of that heap or was freed, ERROR_INVALID_FLAGS for
 * flags other than those below. Any thread may call, but calls on one private heap that was created
 * with HEAP_NO_SERIALIZE, or that are made with it, are the caller's to keep apart. */
#ifndef VX_PLATFORM_HEAP_H
#define VX_PLATFORM_HEAP_H

#include "vx/platform/types.h"

#define HEAP_NO_SERIALIZE 0x1u /* the caller keeps threads apart */
#define HEAP_ZERO_MEMORY 0x8u  /* new bytes are zero */

VX_EXTERN_C_BEGIN

/* The C runtime's heap: its blocks are those of malloc and can be handed to free and realloc, and the
 * other way round. It cannot be destroyed. */
VX_PLATFORM_API HANDLE GetProcessHeap(void);

/* Makes an empty private heap; null on failure.
 *   flags         HEAP_NO_SERIALIZE or 0
 *   initialSize   bytes that are taken at once, at least 4096
 *   maximumSize   bytes that it may take in all, its own bookkeeping included; 0: no limit */
VX_PLATFORM_API HANDLE HeapCreate(DWORD flags, SIZE_T initialSize, SIZE_T maximumSize);

/* Frees a private heap with all its blocks. FALSE for the process heap. */
VX_PLATFORM_API BOOL HeapDestroy(HANDLE heap);

/* A block of `bytes` bytes, which may be 0; null on failure. */
VX_PLATFORM_API void* HeapAlloc(HANDLE heap, DWORD flags, SIZE_T bytes);

/* Resizes a block, which may move it; its first bytes stay. Null on failure, and the old block lives
 * on. With HEAP_ZERO_MEMORY what lies behind the old HeapSize is zero. */
VX_PLATFORM_API void* HeapReAlloc(HANDLE heap, DWORD flags, void* block, SIZE_T bytes);

/* Frees a block; null is no error. FALSE, with nothing done, for a block that is not of a private heap. */
VX_PLATFORM_API BOOL HeapFree(HANDLE heap, DWORD flags, void* block);

/* Bytes of a block: as asked for in a private heap; in the process heap that or somewhat more, all of
 * it usable. (SIZE_T)-1 on failure. */
VX_PLATFORM_API SIZE_T HeapSize(HANDLE heap, DWORD flags, const void* block);

VX_EXTERN_C_END

#endif
