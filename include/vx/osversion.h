/* Which system the library runs on, what its screens show, and the version texts of files.
 *
 * Hosts use the answers for display and for gating features; nothing in the library depends on them.
 * Everything works without initialisation and on any thread. */
#ifndef VX_OSVERSION_H
#define VX_OSVERSION_H

#include "vx/types.h"

/* Levels of VxOSVersionOK. */
#define VXOS_95 0
#define VXOS_98 1
#define VXOS_98_SP1 2 /* the service pack of the call is not read */
#define VXOS_NT4 4
#define VXOS_2000 5
#define VXOS_XP 6
#define VXOS_VISTA 7
#define VXOS_7 8
#define VXOS_8 9

VX_EXTERN_C_BEGIN

/* 1 where the system reports itself as at least that level: a higher version, or the same with at least
 * that service pack. 0 where it is of the other line: NT or not.
 *   level  VXOS_...; any other is met by every system that is not NT */
VX_EXPORT int32_t VxOSVersionOK(int32_t level, uint16_t servicePack);

/* The system's name, as "Windows 8 (64-bit)", cut to the capacity (characters, terminator included).
 * Returns 1; 0 for an unknown system, whose text has the numbers instead. A capacity below 1 writes
 * nothing. */
VX_EXPORT int32_t VxGetOS(char16_t* text, int32_t capacity);

/* 1 on a system that is not NT. */
VX_EXPORT int32_t VxIsWin95(void);

/* Always 1: the library is a 64-bit program. */
VX_EXPORT int32_t VxIsOS64Bit(void);

/* A text of a file's version resource, in the first language that the file names.
 *   path      the file
 *   key       name of the text, as u"ProductVersion"
 *   text      receives the text, cut to the capacity and terminated; nothing for a capacity below 1
 * Returns 0; VX_E_ITEM_NOT_FOUND, with nothing written, where there is no such file or text. */
VX_EXPORT HRESULT VxVersion_GetString(const char16_t* path, const char16_t* key, char16_t* text,
                                      int32_t capacity);

/* 1 where the screen has 16 or more bits a pixel; for all monitors in the second form. The answers are
 * kept until the host reports a change of the display. */
VX_EXPORT int32_t VxIsHighColor(void);
VX_EXPORT int32_t VxIsAllMonitorsHighColor(void);

VX_EXTERN_C_END

#endif
