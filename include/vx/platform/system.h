/* Facts about the machine. */
#ifndef VX_PLATFORM_SYSTEM_H
#define VX_PLATFORM_SYSTEM_H

#include "vx/platform/types.h"

#define PROCESSOR_ARCHITECTURE_INTEL 0
#define PROCESSOR_ARCHITECTURE_AMD64 9
#define PROCESSOR_ARCHITECTURE_UNKNOWN 0xFFFF
#define PROCESSOR_INTEL_486 486
#define PROCESSOR_INTEL_PENTIUM 586
#define PROCESSOR_AMD_X8664 8664

typedef struct SYSTEM_INFO
{
    WORD wProcessorArchitecture; /* PROCESSOR_ARCHITECTURE_... */
    WORD wReserved;
    DWORD dwPageSize;                  /* bytes */
    void* lpMinimumApplicationAddress; /* lowest address that a program can map */
    void* lpMaximumApplicationAddress; /* highest one */
    DWORD_PTR dwActiveProcessorMask;   /* bit n: processor n may be used; the first 64 only */
    DWORD dwNumberOfProcessors;        /* processors that this process may run on, at least 1 */
    DWORD dwProcessorType;             /* PROCESSOR_AMD_X8664 on x86-64, else 0 */
    DWORD dwAllocationGranularity;     /* bytes; where mappings begin */
    WORD wProcessorLevel;              /* processor family, as CPUID tells it */
    WORD wProcessorRevision;           /* model in the high byte, stepping in the low one */
} SYSTEM_INFO;
VX_STATIC_ASSERT(sizeof(SYSTEM_INFO) == 48, "the published record has 48 bytes");

VX_EXTERN_C_BEGIN

/* Fills *info; it cannot fail. A process confined to some processors counts only those. */
VX_PLATFORM_API void GetSystemInfo(SYSTEM_INFO* info);

/* The same as GetSystemInfo: there is no emulated architecture here. */
VX_PLATFORM_API void GetNativeSystemInfo(SYSTEM_INFO* info);

VX_EXTERN_C_END

#endif
