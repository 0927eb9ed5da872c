/* Locks between the threads of one process. */
#ifndef VX_PLATFORM_SYNC_H
#define VX_PLATFORM_SYNC_H

#include "vx/platform/types.h"

/* A lock that its owner may enter again, and leaves as often as it entered. 40 bytes in the caller's
 * storage, which must not move or be copied between initialisation and deletion. */
typedef struct CRITICAL_SECTION
{
    uint64_t opaque[5];
} CRITICAL_SECTION;
VX_STATIC_ASSERT(sizeof(CRITICAL_SECTION) == 40, "published records hold it as 40 bytes");

VX_EXTERN_C_BEGIN

/* Makes a free lock of the storage, whatever it held. It takes no memory and cannot fail. */
VX_PLATFORM_API void InitializeCriticalSection(CRITICAL_SECTION* section);

/* The same, and TRUE. The spin count is taken as a hint and not followed: a thread that finds the
 * section owned sleeps at once. */
VX_PLATFORM_API BOOL InitializeCriticalSectionAndSpinCount(CRITICAL_SECTION* section, DWORD spinCount);

/* Waits until the section is free or already the caller's, and owns it once more. */
VX_PLATFORM_API void EnterCriticalSection(CRITICAL_SECTION* section);

/* TRUE and owned once more, or FALSE at once where another thread owns it. */
VX_PLATFORM_API BOOL TryEnterCriticalSection(CRITICAL_SECTION* section);

/* Undoes one entry of the calling thread, which must own the section. */
VX_PLATFORM_API void LeaveCriticalSection(CRITICAL_SECTION* section);

/* Ends the lock, which nobody may own; the storage is the caller's again. */
VX_PLATFORM_API void DeleteCriticalSection(CRITICAL_SECTION* section);

VX_EXTERN_C_END

#endif
