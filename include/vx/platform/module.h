/* Modules: files of code and of resources, loaded by path and known by a handle.
 *
 * A module is one of three things.
 *   - A shared object. Its resources are a compiled-resource image (below) in its section ".vxres", or,
 *     where it has no such section, in a file beside it: of the same name with the extension res, what
 *     follows ".so" being no part of the name (tools.so and libtools.so.2 go with tools.res and
 *     libtools.res). `objcopy --add-section .vxres=tools.res tools.so` puts an image into a file.
 *   - The host's executable, whose resources are found in the same two places (host and host.res).
 *   - A file of resources alone, under any extension: a compiled-resource image, as a resource compiler
 *     writes it in its 32-bit form, or a PE file, whose resource section is read in place and whose code
 *     is never run. Language files (LNG) are such files.
 * What a file is, is told by its first bytes. Files are mapped, not read: put a new one in its place by
 * renaming it, since a file that is cut short while it is mapped ends the process that reads it.
 *
 * Handles. That of a shared object or of the executable is the address at which its image begins, that of
 * a file of resources one that no other loaded module has. A null handle stands for the executable where
 * a function says so. A handle that is none, or is no longer one, is never followed: the call fails with
 * ERROR_INVALID_HANDLE. A shared object that others loaded has a handle too (GetModuleHandleW and
 * GetModuleHandleExW give it); it then stays loaded to the end of the process.
 *
 * Resources have a type, a name and a language. Types and names are numbers or texts: a pointer below
 * 0x10000 is a number (MAKEINTRESOURCEW), a text of '#' and decimal digits stands for that number, and
 * the case of other texts does not count; PE files name theirs with up to 255 characters. Languages are
 * the low 16 bits of an LCID. Every offset within a file is checked: of a damaged file only what is whole
 * is found. The bytes of a resource are at most 4-byte aligned, and those of a damaged file not at all;
 * they are read only, and live as long as the module is loaded.
 *
 * A failing function returns null, 0 or FALSE and sets the last error (lasterror.h). Any thread may call
 * at any time. */
#ifndef VX_PLATFORM_MODULE_H
#define VX_PLATFORM_MODULE_H

#include "vx/platform/types.h"

typedef HMODULE HINSTANCE;
typedef HANDLE HRSRC; /* a resource that was found */
typedef intptr_t LONG_PTR;
typedef intptr_t (*FARPROC)(void); /* to be cast to the function's own type */

/* A number in the place of a type's or name's text. */
#define MAKEINTRESOURCEW(number) ((WCHAR*)(uintptr_t)(WORD)(number))
#define IS_INTRESOURCE(text) ((uintptr_t)(text) < 0x10000u)

#define RT_CURSOR MAKEINTRESOURCEW(1)
#define RT_BITMAP MAKEINTRESOURCEW(2)
#define RT_ICON MAKEINTRESOURCEW(3)
#define RT_MENU MAKEINTRESOURCEW(4)
#define RT_DIALOG MAKEINTRESOURCEW(5)
#define RT_STRING MAKEINTRESOURCEW(6)
#define RT_ACCELERATOR MAKEINTRESOURCEW(9)
#define RT_RCDATA MAKEINTRESOURCEW(10)
#define RT_GROUP_CURSOR MAKEINTRESOURCEW(12)
#define RT_GROUP_ICON MAKEINTRESOURCEW(14)
#define RT_VERSION MAKEINTRESOURCEW(16)

#define LOAD_LIBRARY_AS_DATAFILE 0x00000002u
#define LOAD_WITH_ALTERED_SEARCH_PATH 0x00000008u
#define LOAD_LIBRARY_AS_IMAGE_RESOURCE 0x00000020u

#define GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT 0x00000002u
#define GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS 0x00000004u

VX_EXTERN_C_BEGIN

/* ---- Modules ---- */

/* Loads a module, or counts one more load of one that is loaded: each load wants its FreeLibrary.
 *   file   path, through the drive map. A name without an extension is tried with ".so", then with
 *          ".dll", then as it is; a dot at its end says that it has none. A name without a folder is
 *          looked for beside the executable and then, for shared objects, where the system keeps them:
 *          "OpenCL.dll" is there libOpenCL.so or libOpenCL.so.1. The working directory is not searched.
 * ERROR_MOD_NOT_FOUND where there is no such file, and for a shared object that the system does not load,
 * as one that needs another that is missing (a debug text, debug.h, says why). ERROR_BAD_EXE_FORMAT for a
 * file that is no module, ERROR_ACCESS_DENIED for one that cannot be read, ERROR_PATH_NOT_FOUND for a
 * drive that is not in the map, ERROR_INVALID_PARAMETER for a null or empty path. */
VX_PLATFORM_API HMODULE LoadLibraryW(const WCHAR* file);

/* The same, with
 *   reserved  null, else ERROR_INVALID_PARAMETER
 *   flags     LOAD_LIBRARY_AS_DATAFILE and LOAD_LIBRARY_AS_IMAGE_RESOURCE: the resources alone; no code
 *             runs, and GetProcAddress finds nothing. LOAD_WITH_ALTERED_SEARCH_PATH has no effect: a
 *             shared object itself names the folders of those that it needs. Others:
 *             ERROR_INVALID_PARAMETER */
VX_PLATFORM_API HMODULE LoadLibraryExW(const WCHAR* file, HANDLE reserved, DWORD flags);

/* Takes back one load; with the last one the handle and what was found in the module are gone. FALSE,
 * with nothing done, where no load of the module is counted: for the executable, say. */
VX_PLATFORM_API BOOL FreeLibrary(HMODULE module);

/* The address of what a shared object or the executable exports under a name; null is the executable.
 * Only the module's own exports are found, not those of modules that it needs. An executable exports
 * what it was linked to export (CMake: ENABLE_EXPORTS). ERROR_PROC_NOT_FOUND for a name that is null or a
 * number, too. */
VX_PLATFORM_API FARPROC GetProcAddress(HMODULE module, const char* name);

/* The handle of a loaded module, without counting a load; null is the executable.
 *   file   path, or a name without a folder, which is compared with the names of the loaded modules, the
 *          case not counting; extensions as for LoadLibraryW
 * ERROR_MOD_NOT_FOUND where none is loaded. */
VX_PLATFORM_API HMODULE GetModuleHandleW(const WCHAR* file);

/* The same, counted as a load unless told otherwise.
 *   flags   GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT: not counted.
 *           GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS: file is any address within a shared object or the
 *           executable; so a shared object finds its own handle. Others: ERROR_INVALID_PARAMETER
 *   module  receives the handle, null on failure */
VX_PLATFORM_API BOOL GetModuleHandleExW(DWORD flags, const WCHAR* file, HMODULE* module);

/* The full path of a module's file, with its drive; null is the executable.
 *   chars   room at path, terminator included
 * Returns the length. Where the path does not fit it is cut and terminated, the result is chars, and the
 * last error ERROR_INSUFFICIENT_BUFFER. ERROR_PATH_NOT_FOUND where no drive of the map has the file. */
VX_PLATFORM_API DWORD GetModuleFileNameW(HMODULE module, WCHAR* path, DWORD chars);

/* The same in UTF-8; chars counts bytes. */
VX_PLATFORM_API DWORD GetModuleFileNameA(HMODULE module, char* path, DWORD chars);

/* ---- Resources: in all of these a null module is the executable ---- */

/* Finds a resource in the first of these languages: the neutral one (0), the user's (locale.h), the
 * user's without a country (0x0007 for 0x0C07), 0x0409, 0x0009, the one of the lowest number.
 * ERROR_RESOURCE_DATA_NOT_FOUND: the module has no resources; ERROR_RESOURCE_TYPE_NOT_FOUND,
 * ERROR_RESOURCE_NAME_NOT_FOUND: none of that type, or none of that name. */
VX_PLATFORM_API HRSRC FindResourceW(HMODULE module, const WCHAR* name, const WCHAR* type);

/* Finds a resource in exactly this language, 0 the neutral one: ERROR_RESOURCE_LANG_NOT_FOUND where it
 * has others only. Type stands before name here. */
VX_PLATFORM_API HRSRC FindResourceExW(HMODULE module, const WCHAR* type, const WCHAR* name, WORD language);

/* The resource's bytes, for LockResource. Not to be freed. ERROR_INVALID_HANDLE where the resource was
 * not found in this module. */
VX_PLATFORM_API HGLOBAL LoadResource(HMODULE module, HRSRC resource);

/* Their address. Null with ERROR_INVALID_HANDLE for what does not lie in a loaded module. */
VX_PLATFORM_API void* LockResource(HGLOBAL data);

/* Their number; 0 on failure, and for an empty resource, which sets no error. */
VX_PLATFORM_API DWORD SizeofResource(HMODULE module, HRSRC resource);

/* Copies the string with this number, in the language that FindResourceW would choose for its block of
 * sixteen.
 *   id     0 to 65535; higher bits are not read
 *   text   receives the string, cut to the room and terminated; empty on failure
 *   chars  room, terminator included; below 1 nothing is written: ERROR_INVALID_PARAMETER
 * Returns the characters copied without the terminator; 0 also for an empty string, which a block holds
 * for each number that has none. */
VX_PLATFORM_API int LoadStringW(HINSTANCE module, UINT id, WCHAR* text, int chars);

/* Receives a language, or a name, of a resource; FALSE ends the enumeration. It may call anything; a
 * module that it frees stays until the enumeration returns. */
typedef BOOL (*ENUMRESLANGPROCW)(HMODULE module, const WCHAR* type, const WCHAR* name, WORD language,
                                 LONG_PTR context);
typedef BOOL (*ENUMRESNAMEPROCW)(HMODULE module, const WCHAR* type, const WCHAR* name, LONG_PTR context);

/* Tells the languages of a resource, in the order of their numbers. FALSE where there is none, with the
 * codes of FindResourceW, and where the receiver ended it, with ERROR_RESOURCE_ENUM_USER_STOP. */
VX_PLATFORM_API BOOL EnumResourceLanguagesW(HMODULE module, const WCHAR* type, const WCHAR* name,
                                            ENUMRESLANGPROCW receive, LONG_PTR context);

/* Tells the names of a type's resources: texts first, then numbers, each in order. Else the same. */
VX_PLATFORM_API BOOL EnumResourceNamesW(HMODULE module, const WCHAR* type, ENUMRESNAMEPROCW receive,
                                        LONG_PTR context);

VX_EXTERN_C_END

#endif
