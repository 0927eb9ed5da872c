/* Global memory blocks, which a host and the library hand to each other.
 *
 * A fixed block's handle is the pointer to its bytes. A movable block's handle is a value of its own,
 * which is no address; GlobalLock gives the pointer, which stays valid until the block is unlocked as
 * often as it was locked, and GlobalHandle finds the handle from it. Handles of freed blocks are
 * never used again for movable blocks.
 *
 * Bytes begin at a multiple of 64. A block belongs to whoever allocated it and is given back with
 * GlobalFree. Any value may be passed as handle or pointer: what is no live block is refused with
 * ERROR_INVALID_HANDLE and is never looked into. All functions are safe on any thread; two threads
 * must not resize or free the same block while one uses its bytes. */
#ifndef VX_PLATFORM_MEMORY_H
#define VX_PLATFORM_MEMORY_H

#include "vx/platform/types.h"

#define GMEM_FIXED 0x0000u
#define GMEM_MOVEABLE 0x0002u
#define GMEM_ZEROINIT 0x0040u /* the bytes, in GlobalReAlloc the added ones, are 0 */
#define GMEM_MODIFY 0x0080u   /* GlobalReAlloc only: not supported */
#define GHND (GMEM_MOVEABLE | GMEM_ZEROINIT)
#define GPTR (GMEM_FIXED | GMEM_ZEROINIT)

#define GMEM_LOCKCOUNT 0x00FFu /* bits of the answer of GlobalFlags */
#define GMEM_DISCARDED 0x4000u
#define GMEM_INVALID_HANDLE 0x8000u

VX_EXTERN_C_BEGIN

/* A block of so many bytes; flags are GMEM_MOVEABLE and GMEM_ZEROINIT, others are ignored. Null with
 * ERROR_NOT_ENOUGH_MEMORY where there is no memory. A movable block of 0 bytes is discarded: it has a
 * handle but no bytes until it is resized. */
VX_PLATFORM_API HGLOBAL GlobalAlloc(UINT flags, SIZE_T bytes);

/* The pointer to the bytes, and one lock more on a movable block. Null with ERROR_INVALID_HANDLE, or
 * with ERROR_DISCARDED for a discarded block. */
VX_PLATFORM_API void* GlobalLock(HGLOBAL handle);

/* Takes one lock off. TRUE while the block remains locked, and always for a fixed block; FALSE with
 * ERROR_SUCCESS when the last lock went, with ERROR_NOT_LOCKED where there was none. */
VX_PLATFORM_API BOOL GlobalUnlock(HGLOBAL handle);

/* The handle of the block whose bytes begin at this pointer; null with ERROR_INVALID_HANDLE. */
VX_PLATFORM_API HGLOBAL GlobalHandle(const void* pointer);

/* Frees the block, locked or not. Null on success and for a null handle, else the handle. */
VX_PLATFORM_API HGLOBAL GlobalFree(HGLOBAL handle);

/* Bytes of the block, as asked for; 0 for a discarded block, and with ERROR_INVALID_HANDLE. */
VX_PLATFORM_API SIZE_T GlobalSize(HGLOBAL handle);

/* Resizes a block and keeps its bytes as far as they fit. A fixed or locked block moves only with
 * GMEM_MOVEABLE and otherwise grows only into room that it had before. Returns the handle, which is
 * another one where a fixed block moved; null with ERROR_NOT_ENOUGH_MEMORY, the block unchanged. A
 * movable block of 0 bytes is discarded; a locked one is not, and the call fails. GMEM_MODIFY fails
 * with ERROR_NOT_SUPPORTED. */
VX_PLATFORM_API HGLOBAL GlobalReAlloc(HGLOBAL handle, SIZE_T bytes, UINT flags);

/* Lock count in GMEM_LOCKCOUNT, at most 255, and GMEM_DISCARDED; 0 for a fixed block;
 * GMEM_INVALID_HANDLE with ERROR_INVALID_HANDLE. */
VX_PLATFORM_API UINT GlobalFlags(HGLOBAL handle);

VX_EXTERN_C_END

#endif
