/* The system's message box. */
#ifndef VX_PLATFORM_MESSAGEBOX_H
#define VX_PLATFORM_MESSAGEBOX_H

#include "vx/platform/display.h"

/* Buttons. */
#define MB_OK 0u
#define MB_OKCANCEL 1u
#define MB_ABORTRETRYIGNORE 2u
#define MB_YESNOCANCEL 3u
#define MB_YESNO 4u
#define MB_RETRYCANCEL 5u
#define MB_TYPEMASK 0xFu

/* What kind of message it is. */
#define MB_ICONHAND 0x10u
#define MB_ICONQUESTION 0x20u
#define MB_ICONEXCLAMATION 0x30u
#define MB_ICONASTERISK 0x40u
#define MB_ICONMASK 0xF0u

/* The index of the default button; beyond the last one: the first. */
#define MB_DEFMASK 0xF00u
#define MB_SYSTEMMODAL 0x1000u

/* Answers: the button that was chosen. */
#define IDOK 1
#define IDCANCEL 2
#define IDABORT 3
#define IDRETRY 4
#define IDIGNORE 5
#define IDYES 6
#define IDNO 7

VX_EXTERN_C_BEGIN

/* Shows a box on the desktop, in English, and waits for an answer. Its windows are those of SDL 2 (libSDL2-2.0.so.0),
 * which is loaded with the first box.
 *   owner    not looked at: the desktop puts the box where it likes
 *   text     null: none
 *   caption  null: "Error"
 *   type     the bits above; others mean nothing here
 * Returns the answer. Closing a box or pressing escape answers Cancel where there is such a button, and OK where that is
 * the only one; all others come up again. 0 with ERROR_INVALID_MSGBOX_STYLE for other buttons, and with
 * ERROR_NOT_SUPPORTED where no box can be shown: without a desktop (VX_DISPLAY is "headless", or is not set and neither
 * WAYLAND_DISPLAY nor DISPLAY is) and without the library. What the box would have said then goes out as a debug text
 * (debug.h).
 * Any thread. */
VX_PLATFORM_API int MessageBoxW(HWND owner, const WCHAR* text, const WCHAR* caption, UINT type);

/* The window among those that `owner` owns that was last in front. No window owns another yet: `owner` itself. */
VX_PLATFORM_API HWND GetLastActivePopup(HWND owner);

VX_EXTERN_C_END

#endif
