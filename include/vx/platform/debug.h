/* Debug texts: short messages for whoever develops a host.
 *
 * A text goes to standard error where the environment variable VX_DEBUG is set to anything (it is read
 * once, with the first text), and to the process's debug output where one is set. It goes out as it is:
 * no line end is added. */
#ifndef VX_PLATFORM_DEBUG_H
#define VX_PLATFORM_DEBUG_H

#include "vx/platform/types.h"

VX_EXTERN_C_BEGIN

/* Sends a text of bytes. A null text is none. Any thread. */
VX_PLATFORM_API void OutputDebugStringA(const char* text);

/* Sends a UTF-16 text as UTF-8; half of a surrogate pair goes out as U+FFFD. A null text is none. */
VX_PLATFORM_API void OutputDebugStringW(const WCHAR* text);

/* Receives debug texts, on the thread that sends them. `text` lives for the call only. */
typedef void (*VxPlatform_DebugOutput)(void* context, const char* text);

/* Sets the debug output of the process in place of the one before; null: none.
 * Texts are handed over one at a time. When this returns, the one before is no longer running, unless on
 * the calling thread, and is not called again: its context may be freed. An output may itself send texts
 * and set another. */
VX_PLATFORM_API void VxPlatform_SetDebugOutput(VxPlatform_DebugOutput output, void* context);

VX_EXTERN_C_END

#endif
