/* The last error of the calling thread: each failing operation of the platform layer sets it. */
#ifndef VX_PLATFORM_LASTERROR_H
#define VX_PLATFORM_LASTERROR_H

#include "vx/platform/types.h"

#define ERROR_SUCCESS 0u
#define ERROR_INVALID_FUNCTION 1u
#define ERROR_FILE_NOT_FOUND 2u
#define ERROR_PATH_NOT_FOUND 3u
#define ERROR_TOO_MANY_OPEN_FILES 4u
#define ERROR_ACCESS_DENIED 5u
#define ERROR_INVALID_HANDLE 6u
#define ERROR_NOT_ENOUGH_MEMORY 8u
#define ERROR_BAD_FORMAT 11u
#define ERROR_READ_FAULT 30u
#define ERROR_NOT_SUPPORTED 50u
#define ERROR_INVALID_PARAMETER 87u
#define ERROR_CALL_NOT_IMPLEMENTED 120u
#define ERROR_INSUFFICIENT_BUFFER 122u
#define ERROR_MOD_NOT_FOUND 126u
#define ERROR_PROC_NOT_FOUND 127u
#define ERROR_DISCARDED 157u
#define ERROR_NOT_LOCKED 158u
#define ERROR_BAD_EXE_FORMAT 193u
#define ERROR_MORE_DATA 234u
#define ERROR_NO_MORE_ITEMS 259u
#define ERROR_INVALID_FLAGS 1004u
#define ERROR_RESOURCE_DATA_NOT_FOUND 1812u
#define ERROR_RESOURCE_TYPE_NOT_FOUND 1813u
#define ERROR_RESOURCE_NAME_NOT_FOUND 1814u
#define ERROR_RESOURCE_LANG_NOT_FOUND 1815u
#define ERROR_RESOURCE_ENUM_USER_STOP 15106u

VX_EXTERN_C_BEGIN

/* The code that the last failing operation of this thread left; a success leaves it as it is. */
VX_PLATFORM_API DWORD GetLastError(void);
VX_PLATFORM_API void SetLastError(DWORD code);

VX_EXTERN_C_END

#endif
