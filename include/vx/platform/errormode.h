/* The error mode of the process: a word that programs hand to one another.
 *
 * On the original interface its bits keep the system from showing boxes of its own. This layer shows
 * none in any mode, so the word is kept and given back, and nothing reads it. */
#ifndef VX_PLATFORM_ERRORMODE_H
#define VX_PLATFORM_ERRORMODE_H

#include "vx/platform/types.h"

#define SEM_FAILCRITICALERRORS 0x0001u
#define SEM_NOGPFAULTERRORBOX 0x0002u
#define SEM_NOALIGNMENTFAULTEXCEPT 0x0004u
#define SEM_NOOPENFILEERRORBOX 0x8000u

VX_EXTERN_C_BEGIN

/* Sets the word and returns the one before; 0 at the start. It is the process's, not the thread's. Any
 * thread may call. */
VX_PLATFORM_API UINT SetErrorMode(UINT mode);

/* The word as it is. */
VX_PLATFORM_API UINT GetErrorMode(void);

VX_EXTERN_C_END

#endif
