/* File paths as texts.
 *
 * Paths have the form that the platform layer maps to this machine's (docs/platform.md): a drive letter
 * with a colon, names between backslashes, "\\server\share\" in front of what lies on another machine. A
 * slash is an ordinary character here. The file name is what follows the last colon or backslash. Its
 * extension begins with its last dot and goes to the end, the dot included, unless white space follows the
 * dot somewhere: "a.b c" has none; a dot at the very end is an extension of one character.
 *
 * Paths have at most 259 characters: what is longer is cut where a function works on a copy. Room
 * (`capacity`, `dstChars`, `chars`) counts characters with the terminator, lengths without it. A bounded
 * function terminates what it cuts; room below 1 writes nothing. Source and destination may be the same
 * buffer where a function says so. A null path is an empty one.
 *
 * No function keeps or hands out memory; all may be called from any thread. */
#ifndef VX_PATH_H
#define VX_PATH_H

#include "vx/types.h"

#define VX_MAX_PATH 260

VX_EXTERN_C_BEGIN

/* ---- Taking apart ---- */

/* The file name within the path, which has no other part where there is no separator. The result points into
 * the argument; null for null. The A form takes bytes of an ASCII-based code page (UTF-8 here). */
VX_EXPORT char* VxGetFileNamePtrA(const char* path);
VX_EXPORT char16_t* VxGetFileNamePtrW(const char16_t* path);

/* The dot of the extension within a file name, its terminator where there is none; null for null. The whole
 * argument is looked at: give the file name alone where folders may have dots. White space of the A form is
 * ASCII's, of the W form Unicode's. */
VX_EXPORT char* VxGetFileNameExtensionPtrA(const char* name);
VX_EXPORT char16_t* VxGetFileNameExtensionPtrW(const char16_t* name);

/* Copies the file name, as far as there is room, and cuts the extension of what was copied. Returns the
 * length. */
VX_EXPORT int32_t VxGetFileNameWithoutPathOrExtension(const char16_t* path, char16_t* dst, int32_t dstChars);

/* Copies what stands in front of the file name, the separator included. Returns its length, also where the
 * room is too small: dst is then empty. An empty path gives 0 and leaves dst alone. dst may be path. */
VX_EXPORT int32_t VxGetPathNameFromFilePath(const char16_t* path, char16_t* dst, int32_t dstChars);

/* Copies the root: "\\server\share\" of a path to another machine, which must have that last backslash, else
 * everything up to and with the first backslash. Returns its length, 0 where there is none. dst is empty
 * where there is no root or too little room. dst may be path. */
VX_EXPORT int32_t VxGetRootPathFromFilePath(const char16_t* path, char16_t* dst, int32_t dstChars);

/* ---- Building, in place ---- */

/* Puts a backslash at the end, if there is none. Returns the new length; 0, with nothing changed, for an
 * empty path, one that is not terminated within the capacity, and where there is no room. */
VX_EXPORT int32_t VxAddSlashToPathName(char16_t* path, int32_t capacity);

/* Takes one backslash from the end. Returns the new length; 0 for an empty path and one that is not
 * terminated within the capacity. */
VX_EXPORT int32_t VxRemoveSlashFromPathNameEnd(char16_t* path, int32_t capacity);

/* Gives the file name this extension in the place of its own; a dot in front of ext does not count. Nothing
 * changes where it has the same extension already, in whatever case, and for an empty ext. What is written
 * has as much room as the whole path, with its old extension, leaves: in a nearly full buffer it is cut.
 * Returns the final length. */
VX_EXPORT int32_t VxAddExtensionToPathName(char16_t* path, int32_t capacity, const char16_t* ext);

/* Puts ext, with or without its dot, in the place of the extension; an empty ext leaves the dot. Cut at the
 * capacity. Nothing changes where the file name is empty. Returns the final length. */
VX_EXPORT int32_t VxReplaceExtensionOnPathName(char16_t* path, int32_t capacity, const char16_t* ext);

/* Appends a name, less one backslash that it may begin with, behind a backslash that an unfinished path gets
 * first if there is room for it; cut at the capacity. With ext that is not null, then
 * VxReplaceExtensionOnPathName on what was appended. Returns the final length. */
VX_EXPORT int32_t VxAppendToPathName(char16_t* path, int32_t capacity, const char16_t* name,
                                     const char16_t* ext);

/* Cuts the last name of a path, with or without a backslash behind it: "C:\a\b\" becomes "C:\a\". Returns 1,
 * or 0 with nothing changed for paths below 4 and above 259 characters and those without another
 * backslash. */
VX_EXPORT int32_t VxDirectoryUpOneLevel(char16_t* path, int32_t capacity);

/* ---- Checking and comparing ---- */

/* Returns 1 for a good file name (an empty one is), else 0. Bad are line feed, carriage return and any of
 * "*\/:<>?| and the double quote, and a space or dot at the end. With `fix` set each bad character becomes
 * "_"; the result still tells of them. */
VX_EXPORT int32_t VxValidateFileName(char16_t* name, int32_t fix);

/* Whether a name matches a pattern, case included. '*' stands for characters up to the next dot or, if that
 * comes first, up to the first one that is the pattern's next; '?' for one character. There is no way
 * back: "*a" does not match "bab". A lone "*" matches everything, a dot at the end of either side
 * nothing. */
VX_EXPORT int32_t VxIsMatchWildCard(const char16_t* pattern, const char16_t* name);

/* Order of file names for a person: numbers in them by their value, letters without regard to case. Below 0,
 * 0 or above 0. */
VX_EXPORT int32_t VxFilenameLogicalCompare(const char16_t* a, const char16_t* b);

/* ---- Two paths ---- */

/* The first whole name of the tail that two paths have in common, in whatever case: of "C:\a\b\c.txt" and
 * "D:\x\b\c.txt" the "b\c.txt". Points into path: its start where all of it is common, its end where
 * nothing is. */
VX_EXPORT char16_t* VxGetFileNamePtrRelative(const char16_t* other, const char16_t* path);

/* Copies what stands in path in front of that, with a backslash at its end. Returns 0, or E_FAIL where it was
 * cut. */
VX_EXPORT HRESULT VxGetBasePathRelative(const char16_t* other, const char16_t* path, char16_t* dst,
                                        int32_t dstChars);

/* Copies path with newBase in the place of oldBase, with which it must begin in whatever case. Returns 0, or
 * E_FAIL: with the cut text where dst is too small, with an empty one where path begins otherwise or the
 * result has more than 259 characters. dst may be path. */
VX_EXPORT HRESULT VxReplaceBasePathRelative(const char16_t* path, const char16_t* oldBase,
                                            const char16_t* newBase, char16_t* dst, int32_t dstChars);

/* ---- With the system's help ---- */

/* Copies a path with its names as they are on disk (vx/platform/files.h, GetLongPathNameW), unchanged where
 * it does not exist or does not fit. Returns the system's value: the length, the room that is needed, or 0.
 * dst may be src. */
VX_EXPORT int32_t VxGetLongPathName(const char16_t* src, char16_t* dst, int32_t dstChars);

/* The path from its root on, names as they are on disk. `filePart`, if given, receives the place of the file
 * name in dst. Returns the length, the room that is needed where it does not fit, 0 on failure. */
VX_EXPORT int32_t VxGetFullPathName(const char16_t* path, int32_t chars, char16_t* dst, char16_t** filePart);

/* The folder for temporary files, with a backslash at its end. Returns as VxGetFullPathName. */
VX_EXPORT int32_t VxGetTempPath(int32_t chars, char16_t* dst);

/* The path of a module's file, cut to the room; null is the host's executable. Returns its length; 0, and an
 * empty text, for what is no module. */
VX_EXPORT int32_t VxGetModuleFileName(HMODULE module, char16_t* dst, int32_t dstChars);

/* The folder of a module's file, as VxGetPathNameFromFilePath gives it. */
VX_EXPORT int32_t VxGetModulePath(HMODULE module, char16_t* dst, int32_t dstChars);

/* VxGetFullPathName for a path that must exist. Returns 1, or 0 where it does not or does not fit. */
VX_EXPORT int32_t VxQualifyPath(const char16_t* path, char16_t* dst, int32_t chars);

VX_EXTERN_C_END

#endif
