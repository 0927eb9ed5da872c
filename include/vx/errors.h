/* Failures as status codes, and as sentences that a person can read.
 *
 * A status is an HRESULT: negative for failures. The library's own failures begin at 0x8004E000, its successes
 * with a remark at 0x0004E000. VX_E_CANCELLED says that the user cancelled: no error, and never shown.
 *
 * A message has two halves, each in the user's language. The context says what was being done: a number below
 * 0x10000 (0 to 57; any other reads as 0, "An error occurred during the current operation."), or a format of the
 * host's own (print.h), in which %s takes a name. The reason says what went wrong and is found by the status:
 * in the tables that hosts added, in their order, then in the library's. So context 5 with "a.prj" and 0x8004E00A
 * is "An error occurred while loading the project file a.prj.\n\nThe item was not found.".
 *
 * Details are lines that the code that failed leaves for the next message while the failure travels up. One
 * record holds them for the whole process, together with the last message. The first thread that adds a line
 * owns them until they are cleared; others may add only with the status of the last line. Adding and clearing
 * are safe on any thread.
 *
 * Texts that are returned from the record are its own: a message is good until the next one is composed, on
 * whatever thread, and details until the next line or clearing. Hosts that compose on several threads keep
 * them apart. Tables are added at the start, before other threads use the family. The translations, and what
 * only looks up, may be called on any thread. */
#ifndef VX_ERRORS_H
#define VX_ERRORS_H

#include "vx/lang.h"
#include "vx/platform/sysstring.h"
#include "vx/types.h"

#define VX_E_CANCELLED ((HRESULT)0x8004E00Cu)

#define VXERROR_MESSAGE_CHARS 2048 /* capacity of a message, terminator included */
#define VXERROR_DETAILS_CHARS 8192 /* capacity of all details */
#define VXERROR_MAX_TABLES 32

/* A row of a host's table: the reason for a status, as a text argument (lang.h). Reasons that are to stand as a
 * paragraph of their own begin with two line feeds. They are formats, without arguments: a "%" is doubled. */
typedef struct _vxerror_table
{
    HRESULT code;
    const char16_t* text; /* a text, or a vxlang_t */
} _vxerror_table;
VX_STATIC_ASSERT(sizeof(_vxerror_table) == 16, "the published record has 16 bytes");
VX_STATIC_ASSERT(offsetof(_vxerror_table, text) == 8, "the published order of fields");

/* The same with the number of a string resource. */
typedef struct _vxerror_table_rcid
{
    HRESULT code;
    uintptr_t text; /* below 0x10000 */
} _vxerror_table_rcid;
VX_STATIC_ASSERT(sizeof(_vxerror_table_rcid) == 16, "the published record has 16 bytes");
VX_STATIC_ASSERT(offsetof(_vxerror_table_rcid, text) == 8, "the published order of fields");

VX_EXTERN_C_BEGIN

/* ---- Messages ---- */

/* Composes the message of a failure.
 *   context  a number below 0x10000, or the address of a format
 *   insert   the name for %s in the context; null for the empty text
 * It is cut at 2047 characters; a context of 1948 and more has no reason behind it. A status without a reason is
 * shown as "\n\nError 0x%08x (message missing)". Never null. */
VX_EXPORT const char16_t* VxErrorHandler_GetErrorMessage(uintptr_t context, HRESULT code,
                                                         const char16_t* insert);

/* The reason for a status, not formatted yet; null where no table knows it. */
VX_EXPORT const char16_t* VxErrorHandler_GetHresultString(HRESULT code);

/* The format of a context number, not formatted yet; an address is returned as it stands. */
VX_EXPORT const char16_t* VxErrorHandler_GetContextString(uintptr_t context);

/* The message, and the details behind it where there are any, between <Details> and </Details>. The details
 * stay. A new string, to be freed with SysFreeString; null without memory. */
VX_EXPORT BSTR VxErrorHandler_ComposeErrorText(uintptr_t context, HRESULT code, const char16_t* insert);

/* ---- Details ---- */

/* Clears the whole record: the last message, the details and their owner, the hyperlink. Returns 0. */
VX_EXPORT HRESULT VxErrorHandler_DetailsInit(void);

/* Adds a line.
 *   code    the status of the failure, which VxErrorHandler_GetLastError returns from then on
 *   format  a format with its arguments where it has a "%" or a "$", else the line as it stands
 * Returns 0; E_POINTER for a null format; E_FAIL, with nothing added, where the details are another thread's
 * and have another status, or where the whole line does not fit. */
VX_EXPORT HRESULT VxErrorHandler_DetailsAddString(HRESULT code, const char16_t* format, ...);

/* The details, each line ended by "\r\n"; null where there are none.
 *   code, count, thread  receive the last status, the number of lines and the owner's thread id (0: none), all 0
 *                        after clearing; each may be null */
VX_EXPORT const char16_t* VxErrorHandler_DetailsInfo(uint32_t* code, uint32_t* count, uint32_t* thread);

/* Puts a hyperlink under the next message: its address, cut at 2082 characters, and its caption, at 2047.
 * Returns 0; E_POINTER where either is null, with nothing changed. */
VX_EXPORT HRESULT VxErrorHandler_DetailsSetHyperlink(const char16_t* url, const char16_t* caption);

/* The status of the last line of the details, 0 where there is none. */
VX_EXPORT HRESULT VxErrorHandler_GetLastError(void);

/* ---- Errors of the system ---- */

/* The status for an error code of the system (GetLastError; vx/platform/lasterror.h): 0 for 0, E_FAIL for a code
 * that has none of its own. */
VX_EXPORT HRESULT VxErrorHandler_TranslateWin32Error(uint32_t error);

/* The same for the extended error of a common dialog. */
VX_EXPORT HRESULT VxErrorHandler_TranslateCommDlgError(uint32_t error);

VX_EXTERN_C_END

/* Two forms, so of C++ linkage. */
#ifdef __cplusplus

/* Adds a host's table, for the rest of the process. Its rows stay the host's, who keeps them in memory; of two rows
 * for one status the first counts, whether in one table or two.
 *   language  resolves the texts: a handle that stays open while failures are shown. The form without it takes
 *             the kernel's handle, that of each start of the kernel. Without a handle tables are in English,
 *             and numbers have no text
 * Returns 0, or 1 with nothing done where VXERROR_MAX_TABLES were added. */
VX_EXPORT int32_t VxErrorHandler_AddErrorTable(const _vxerror_table* rows, uint32_t count);
VX_EXPORT int32_t VxErrorHandler_AddErrorTable(HVXLANG language, const _vxerror_table_rcid* rows,
                                               uint32_t count);

#endif

#endif
