/* Failures as status codes.
 *
 * A status is an HRESULT: negative for failures. The library's own failures begin at 0x8004E000, its successes
 * with a remark at 0x0004E000. Any thread may call. */
#ifndef VX_ERRORS_H
#define VX_ERRORS_H

#include "vx/types.h"

VX_EXTERN_C_BEGIN

/* The status for an error code of the system (GetLastError; vx/platform/lasterror.h): 0 for 0, E_FAIL for a code
 * that has none of its own. */
VX_EXPORT HRESULT VxErrorHandler_TranslateWin32Error(uint32_t error);

/* The same for the extended error of a common dialog. */
VX_EXPORT HRESULT VxErrorHandler_TranslateCommDlgError(uint32_t error);

VX_EXTERN_C_END

#endif
