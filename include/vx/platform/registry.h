/* The registry: settings that outlive the process, as typed values in a tree of named keys.
 *
 * There are two trees, called hives: the user's and the machine's, each a file of the folder that the
 * environment variable VX_STATE_DIR names (by default "vxkernel" below the user's configuration folder).
 * The variable is read once, at first use. A hive's file is made by the first write to it.
 *
 * A key is named by its path below another one, with backslashes: "Software\\Demo\\1.0". Names of keys
 * have up to 255 characters, those of values up to 16,383; the empty or null name is the key's default
 * value. Names are found without regard to case and keep the case in which they were made. Names of
 * sub-keys and values are enumerated in the order of their folded characters.
 *
 * Each successful opening gives a handle of its own, to be given back with RegCloseKey; the constants
 * HKEY_CURRENT_USER and HKEY_LOCAL_MACHINE are always open and need not be. Any value may be passed as a
 * handle: what is none is refused with ERROR_INVALID_HANDLE. A handle outlives its key: once the key is
 * deleted, calls fail with ERROR_KEY_DELETED, also when a key of the same path is made again.
 *
 * All functions return 0 or an ERROR_ code; they leave the last error alone. Beside the codes that each
 * one names there are, for all: ERROR_INVALID_PARAMETER for a null where a pointer is needed and for
 * what is said to be null or 0 here, ERROR_ACCESS_DENIED where the hive or the handle's rights do not
 * allow the call, ERROR_BAD_PATHNAME for a path that begins with a backslash, ERROR_BUSY where other
 * processes held the hive for more than ten seconds, ERROR_DISK_FULL, ERROR_NOT_ENOUGH_MEMORY,
 * ERROR_BADDB for a damaged file and ERROR_REGISTRY_IO_FAILED for any other failure of its storage.
 *
 * Each call is one transaction: all processes and threads see what it did as a whole or not at all, and a
 * process that is killed in it loses that call's change and no other. Any thread may call, many at once.
 * After fork the child may go on using its handles. */
#ifndef VX_PLATFORM_REGISTRY_H
#define VX_PLATFORM_REGISTRY_H

#include "vx/platform/lasterror.h"
#include "vx/platform/types.h"

typedef HANDLE HKEY;
typedef DWORD REGSAM;  /* KEY_ rights */
typedef DWORD LSTATUS; /* 0 or an ERROR_ code */

#define HKEY_CURRENT_USER ((HKEY)(intptr_t)(LONG)0x80000001u)
#define HKEY_LOCAL_MACHINE ((HKEY)(intptr_t)(LONG)0x80000002u)

/* Rights of a handle. */
#define KEY_QUERY_VALUE 0x0001u
#define KEY_SET_VALUE 0x0002u
#define KEY_CREATE_SUB_KEY 0x0004u
#define KEY_ENUMERATE_SUB_KEYS 0x0008u
#define KEY_NOTIFY 0x0010u
#define KEY_CREATE_LINK 0x0020u
#define KEY_READ 0x20019u
#define KEY_WRITE 0x20006u
#define KEY_ALL_ACCESS 0xF003Fu
#define MAXIMUM_ALLOWED 0x02000000u /* whatever the hive allows */

/* Types of values. The registry stores bytes and type, and looks into neither. */
#define REG_NONE 0u
#define REG_SZ 1u        /* text; the terminator is stored */
#define REG_EXPAND_SZ 2u /* text with names of environment variables in it */
#define REG_BINARY 3u
#define REG_DWORD 4u    /* 32 bits, little-endian */
#define REG_MULTI_SZ 7u /* terminated texts one behind the other, and an empty one at the end */
#define REG_QWORD 11u   /* 64 bits, little-endian */

#define REG_OPTION_NON_VOLATILE 0u

/* What RegCreateKeyExW did. */
#define REG_CREATED_NEW_KEY 1u
#define REG_OPENED_EXISTING_KEY 2u

VX_EXTERN_C_BEGIN

/* Opens a key; makes it, and what is missing above it, where it does not exist. The handle has whatever
 * rights the hive allows.
 *   subKey   path below key; empty or null opens key itself
 *   result   receives the handle, or null on failure */
VX_PLATFORM_API LSTATUS RegCreateKeyW(HKEY key, const WCHAR* subKey, HKEY* result);

/* The same with rights of the caller's choice.
 *   reserved, options      0
 *   className, security    not looked at
 *   disposition            receives REG_CREATED_NEW_KEY or REG_OPENED_EXISTING_KEY; may be null
 * Where the hive cannot be written: ERROR_ACCESS_DENIED for KEY_SET_VALUE or KEY_CREATE_SUB_KEY, and for a
 * key that does not exist. */
VX_PLATFORM_API LSTATUS RegCreateKeyExW(HKEY key, const WCHAR* subKey, DWORD reserved, WCHAR* className,
                                        DWORD options, REGSAM rights, void* security, HKEY* result,
                                        DWORD* disposition);

/* Opens a key that exists; ERROR_FILE_NOT_FOUND where it does not. options is 0, the rest as above. */
VX_PLATFORM_API LSTATUS RegOpenKeyExW(HKEY key, const WCHAR* subKey, DWORD options, REGSAM rights,
                                      HKEY* result);

/* Gives a handle back. */
VX_PLATFORM_API LSTATUS RegCloseKey(HKEY key);

/* Reads a value. Needs KEY_QUERY_VALUE.
 *   reserved   null
 *   type       receives the type; may be null
 *   data       receives the bytes, as they were stored: a text has the terminator that was stored with it
 *   bytes      in: room of data; out: bytes of the value. May be null only where data is
 * With data null the size is told. Too little room is ERROR_MORE_DATA: type and the size needed are told,
 * data stays as it was. ERROR_FILE_NOT_FOUND where there is no such value. */
VX_PLATFORM_API LSTATUS RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type,
                                         BYTE* data, DWORD* bytes);

/* Stores a value in place of the one of that name, whose name keeps its case. Needs KEY_SET_VALUE.
 *   reserved   0
 *   data       may be null where bytes is 0 */
VX_PLATFORM_API LSTATUS RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type,
                                       const BYTE* data, DWORD bytes);

/* Deletes a value; ERROR_FILE_NOT_FOUND where there is none. Needs KEY_SET_VALUE. */
VX_PLATFORM_API LSTATUS RegDeleteValueW(HKEY key, const WCHAR* name);

/* The name of the sub-key with that index, from 0; ERROR_NO_MORE_ITEMS behind the last. Needs
 * KEY_ENUMERATE_SUB_KEYS.
 *   name        receives the name and a terminator
 *   nameChars   in: room of name in characters; out: length of the name without terminator. Too little
 *               room is ERROR_MORE_DATA with the room needed
 * All others are null. */
VX_PLATFORM_API LSTATUS RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* nameChars, DWORD* reserved,
                                      WCHAR* className, DWORD* classChars, void* lastWriteTime);

/* The value with that index: its name as above, and its type, data and size as RegQueryValueExW gives
 * them, all of which may be null. Where the name or the data has too little room, ERROR_MORE_DATA comes
 * with the room that both need. Needs KEY_QUERY_VALUE. */
VX_PLATFORM_API LSTATUS RegEnumValueW(HKEY key, DWORD index, WCHAR* name, DWORD* nameChars, DWORD* reserved,
                                      DWORD* type, BYTE* data, DWORD* bytes);

/* How many sub-keys and values a key has, the lengths of their longest names in characters without
 * terminator, and the bytes of the largest value. Results that are not wanted are null; className,
 * classChars, reserved, longestClass, securityBytes and lastWriteTime are. Needs KEY_QUERY_VALUE. */
VX_PLATFORM_API LSTATUS RegQueryInfoKeyW(HKEY key, WCHAR* className, DWORD* classChars, DWORD* reserved,
                                         DWORD* subKeys, DWORD* longestSubKey, DWORD* longestClass,
                                         DWORD* values, DWORD* longestValueName, DWORD* mostBytes,
                                         DWORD* securityBytes, void* lastWriteTime);

/* Deletes a key with its values. ERROR_FILE_NOT_FOUND where there is none, ERROR_ACCESS_DENIED where it
 * has sub-keys and for a hive's root; whatever the rights of the handle. */
VX_PLATFORM_API LSTATUS RegDeleteKeyW(HKEY key, const WCHAR* subKey);

VX_EXTERN_C_END

#endif
