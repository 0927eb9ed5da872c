/* The version that the system reports, and version resources of files.
 *
 * Programs written for the original interface gate features by the version number. The layer answers
 * as version 6.2 of the NT line, the last that such programs know without being told otherwise. */
#ifndef VX_PLATFORM_VERSION_H
#define VX_PLATFORM_VERSION_H

#include "vx/platform/types.h"

#define VER_PLATFORM_WIN32_WINDOWS 1
#define VER_PLATFORM_WIN32_NT 2

typedef struct OSVERSIONINFOEXW
{
    DWORD dwOSVersionInfoSize; /* bytes of the record, set by the caller: these or the first 276 */
    DWORD dwMajorVersion;
    DWORD dwMinorVersion;
    DWORD dwBuildNumber;
    DWORD dwPlatformId; /* VER_PLATFORM_... */
    WCHAR szCSDVersion[128];
    WORD wServicePackMajor;
    WORD wServicePackMinor;
    WORD wSuiteMask;
    BYTE wProductType;
    BYTE wReserved;
} OSVERSIONINFOEXW;
VX_STATIC_ASSERT(sizeof(OSVERSIONINFOEXW) == 284, "the published record has 284 bytes");
VX_STATIC_ASSERT(offsetof(OSVERSIONINFOEXW, szCSDVersion) == 20, "the published order of fields");
VX_STATIC_ASSERT(offsetof(OSVERSIONINFOEXW, wServicePackMajor) == 276, "the published order of fields");

VX_EXTERN_C_BEGIN

/* Fills the record; FALSE with ERROR_INSUFFICIENT_BUFFER for any other size. */
VX_PLATFORM_API BOOL GetVersionExW(OSVERSIONINFOEXW* info);

/* Bytes of the file's version resource, 0 with the last error set where the file cannot be read, is no
 * PE image, has no such resource or is damaged.
 *   file    path, through the drive map
 *   handle  set to 0; may be null */
VX_PLATFORM_API DWORD GetFileVersionInfoSizeW(const WCHAR* file, DWORD* handle);

/* Reads the version resource.
 *   handle  not read
 *   size    bytes of room at data, at least GetFileVersionInfoSizeW; less: ERROR_INSUFFICIENT_BUFFER */
VX_PLATFORM_API BOOL GetFileVersionInfoW(const WCHAR* file, DWORD handle, DWORD size, void* data);

/* Finds a value in a version resource that was read so; case does not count in names.
 *   path    "\" for the binary head; "\VarFileInfo\Translation"; "\StringFileInfo\040904B0\NAME"
 *   value   receives its address within data
 *   length  receives characters for a text, its terminator included where it has one, else bytes; 0
 *           where there is no value
 * FALSE with ERROR_RESOURCE_TYPE_NOT_FOUND where there is none. */
VX_PLATFORM_API BOOL VerQueryValueW(const void* data, const WCHAR* path, void** value, UINT* length);

VX_EXTERN_C_END

#endif
