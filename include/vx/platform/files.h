/* Files, by the names that the operating system of the interface gives its operations.
 *
 * Paths have drive letters and backslashes; the drive map (docs/platform.md) says where a drive lies on this
 * machine. Both slashes separate. Names are found without regard to case where no entry has the exact
 * case. Room counts characters with the terminator.
 *
 * A failing function returns 0 and sets the last error (lasterror.h). Any thread may call. */
#ifndef VX_PLATFORM_FILES_H
#define VX_PLATFORM_FILES_H

#include "vx/platform/types.h"

VX_EXTERN_C_BEGIN

/* The path from its root on, without "." and ".." and with backslashes only. A path without a drive goes by
 * the working directory, one that begins with a separator by its drive, and one as "D:name" by the working
 * directory if that is on this drive, else by the drive's root. The disk is not looked at.
 *   filePart  receives the place of the last name in `buffer`, null where the path ends in a separator;
 *             may be null
 * Returns the length, or, with nothing written, the room that is needed. ERROR_INVALID_NAME for an empty
 * path, ERROR_PATH_NOT_FOUND where no drive of the map holds the working directory. */
VX_PLATFORM_API DWORD GetFullPathNameW(const WCHAR* path, DWORD chars, WCHAR* buffer, WCHAR** filePart);

/* The path of something that exists, each name as it is on disk; a drive, the separators and a relative
 * beginning stay as they are given. There are no short names here: only the case can differ.
 * `buffer` may be the path. Returns the length, or the room that is needed. ERROR_FILE_NOT_FOUND. */
VX_PLATFORM_API DWORD GetLongPathNameW(const WCHAR* path, WCHAR* buffer, DWORD chars);

/* The folder for temporary files, from TMPDIR or "/tmp", with a backslash at its end. Returns the length, or
 * the room that is needed. ERROR_PATH_NOT_FOUND where no drive of the map has it. */
VX_PLATFORM_API DWORD GetTempPathW(DWORD chars, WCHAR* buffer);

/* Order of names for a person, in every locale alike (the root collation of the Unicode Collation Algorithm
 * with numeric ordering): digits by their numeric value, letters without regard to case. Below 0, 0 or above
 * 0; a null comes before all texts. */
VX_PLATFORM_API int StrCmpLogicalW(const WCHAR* first, const WCHAR* second);

VX_EXTERN_C_END

#endif
