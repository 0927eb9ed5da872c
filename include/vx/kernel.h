/* The kernel's start and end in a host process.
 *
 * The application half of the library (lists of tokens, text, languages, settings, errors, user interface)
 * works from one set of process-wide state, which VxKernel_EarlyInitialize fills and
 * VxKernel_LateTerminate empties. There is no count: one pair of calls serves the process, and after an
 * end another start begins a new run. The pixel half (vx/pixel.h to vx/scale.h) and the capability words
 * need neither.
 *
 * Nothing here is locked. A host makes these calls on its main thread while no other thread uses the
 * application half; the two getters may be called from any thread in between. */
#ifndef VX_KERNEL_H
#define VX_KERNEL_H

#include "vx/platform/module.h"
#include "vx/types.h"

/* Flags of VxKernel_EarlyInitialize; other bits are kept and mean nothing. */
#define VXKERNEL_OWN_COLORS 0x1u /* the library's own colour tables, whatever the other flag says */
#define VXKERNEL_DELEGATE_COLORS \
    0x20u /* the module that the host's VxApp_GetAppKernel names has the colours */

/* Messages that VxKernel_UserPrefChanges heeds. */
#define WM_SYSCOLORCHANGE 21u
#define WM_DISPLAYCHANGE 126u

VX_EXTERN_C_BEGIN

/* Starts the kernel for the module `appKernel`, whose strings and resources the library's own messages
 * come from; null stands for the host's executable where a module is needed.
 *
 * A second start without an end between them takes the new module and flags, resets the user interface's
 * colours and forgets the splash window; the language handle and the print tokens stay.
 *
 * Returns 1, or 0 where the print tokens or the kernel's language handle could not be made (no memory).
 * The clock and the numeric engine are then ready all the same, and VxKernel_LateTerminate may follow. */
VX_EXPORT int32_t VxKernel_EarlyInitialize(HMODULE appKernel, uint32_t flags);

/* Ends the run: closes the kernel's language handle, drops the print tokens, frees the user interface's
 * graphics objects and cursors, forgets the module. Harmless without a start and a second time.
 * Returns 1. */
VX_EXPORT int32_t VxKernel_LateTerminate(void);

/* The module of the last start; null before it and after the end. */
VX_EXPORT HMODULE VxKernel_GetAppKernel(void);

/* The full path of that module, of the host's executable where there is none, into `path` of `pathChars`
 * characters, cut and terminated where it does not fit. Returns 0, or the status of the system's error. */
VX_EXPORT HRESULT VxKernel_GetAppKernelPathName(char16_t* path, int32_t pathChars);

/* To be called from the host's main window procedure with each of its messages, or only with the two that
 * matter. WM_SYSCOLORCHANGE asks for the depth of the displays again and drops all graphics objects made
 * from the system's colours; WM_DISPLAYCHANGE asks for the depth only. `unread` is not looked at. */
VX_EXPORT void VxKernel_UserPrefChanges(intptr_t unread, uint32_t message);

/* Names the host's splash window, any handle. A start clears it: call this after the start. */
VX_EXPORT void VxKernel_SetSplash(intptr_t window);

/* Nothing, and 0: hosts call them so that the linker keeps the library. */
VX_EXPORT void VxDib_Initialize(void);
VX_EXPORT int32_t VxVideoDSP_ForceExternRef(void);

VX_EXTERN_C_END

#endif
