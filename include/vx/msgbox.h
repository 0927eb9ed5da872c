/* Message boxes: questions to the user, and their answers with or without a screen.
 *
 * There are two kinds. Plain boxes (VxMessageBox, VxMsgBox...) are the system's own (platform/messagebox.h). Custom
 * boxes (VxMsgBox_...) have more sets of buttons, labels in the user's language, a check box, details and a hyperlink.
 * Both wait for an answer. A host that sets a hook sees each of them first and may answer in its place: so a run
 * without a screen goes on, with VxMsgBoxSetNoUIHook.
 *
 * All take flags, of 32 bits.
 *   VXMB_BUTTONS   the set of buttons, VXMB_OK to VXMB_YESALLNOALLCANCEL; a number without a set is VXMB_OK
 *   VXMB_ICON      0x10 hand, 0x20 question, 0x30 exclamation, 0x40 asterisk, else none
 *   VXMB_DEFAULT   the default button, counted from 0 in bits 8 to 11; a custom box takes the last one for more
 *   VXMB_CHECK     of custom boxes: a check box
 *   VXMB_DETAILS   of custom boxes: details behind a button. With either of the two bits there must be a text for them
 * Plain boxes know the first six sets.
 *
 * Answers are button numbers, VXMB_ID_...; closing a box answers Cancel, or OK where that is the only button. A box
 * without either cannot be closed. 0: an argument was missing and nothing was shown, or a plain box could not be made. -1: a
 * custom box could not be made; none can so far, as the library has no dialogs yet, and only a hook answers them.
 *
 * owner: a window; null: the window that is in front among those of the application's main window, where there is one;
 * VXMB_NO_OWNER: none.
 *
 * A format goes through the print engine (print.h) with its arguments where it has a "%" or a "$", and else stands as
 * it is. Null is the empty text. Messages are cut: at 4095 characters in plain boxes, at 2047 in custom boxes; in plain
 * boxes of VxMessageBox nowhere. Titles, details, captions and addresses are shown whole.
 *
 * The application's block (VxMsgBoxSetAppData) is one for the process and not locked: it is set at the start, on the
 * main thread, and only that thread may set hooks. Boxes may then come from any thread. The hook is called on the
 * thread that shows the box. */
#ifndef VX_MSGBOX_H
#define VX_MSGBOX_H

#include "vx/lang.h"
#include "vx/platform/display.h"
#include "vx/platform/module.h"
#include "vx/types.h"

/* Sets of buttons, from left to right. */
#define VXMB_OK 0u
#define VXMB_OKCANCEL 1u
#define VXMB_ABORTRETRYIGNORE 2u /* cannot be closed */
#define VXMB_YESNOCANCEL 3u
#define VXMB_YESNO 4u /* cannot be closed */
#define VXMB_RETRYCANCEL 5u
#define VXMB_YESALLNOCANCEL 10u    /* Yes, Yes to All, No, Cancel */
#define VXMB_YESNODELETE 11u       /* cannot be closed */
#define VXMB_YESNONOALLCANCEL 12u  /* Yes, No, No to All, Cancel */
#define VXMB_YESALLNOALLCANCEL 13u /* Yes, Yes to All, No, No to All, Cancel */

#define VXMB_BUTTONS 0x000Fu
#define VXMB_ICON 0x00F0u
#define VXMB_DEFAULT 0x0F00u
#define VXMB_CHECK 0x1000u
#define VXMB_CHECK_MASK 0x3000u
#define VXMB_DETAILS 0xC000u

/* Answers. */
#define VXMB_ID_OK 1
#define VXMB_ID_CANCEL 2
#define VXMB_ID_ABORT 3
#define VXMB_ID_RETRY 4
#define VXMB_ID_IGNORE 5
#define VXMB_ID_YES 6
#define VXMB_ID_NO 7
#define VXMB_ID_YES_TO_ALL 100
#define VXMB_ID_DELETE 101
#define VXMB_ID_NO_TO_ALL 102

#define VXMB_NO_OWNER ((HWND)(intptr_t)-1)
#define VXMB_TITLE_CHARS 128 /* of the application's title, terminator included */

/* A host's answer to a box; -1: the box is to be shown.
 *   data   as it was set
 *   owner  the window that the box would have, null for none
 *   text   the message; with details, "\r\n<Details>\r\n", these and "\r\n</Details>" behind it (left out where there
 *          is no memory to join them)
 *   title  of plain boxes as given, so null for the application's; of custom boxes always the application's
 *   flags  as given
 * The texts live for the call only. */
typedef int32_t (*VXMSGBOXHOOK)(intptr_t data, HWND owner, const char16_t* text, const char16_t* title,
                                uint32_t flags);

/* Receives the text of a box that was answered without a screen. */
typedef void (*VXMSGBOXLOG)(const char16_t* text);

VX_EXTERN_C_BEGIN

/* ---- The application ---- */

/* Sets what boxes take from the application, on its main thread: the module that dialogs belong to, the main window
 * (null: none), and the title of all boxes without one of their own, which is copied and cut at 127 characters (null:
 * empty). The calling thread is from then on the one that may set hooks; a hook that was set is gone. Returns 1. */
VX_EXPORT int32_t VxMsgBoxSetAppData(HINSTANCE instance, HWND mainWindow, const char16_t* title);

/* Sets the hook and its data in place of the one before; null: none. Returns 1; 0, with nothing changed, on another
 * thread than that of VxMsgBoxSetAppData. */
VX_EXPORT int32_t VxMsgBoxSetHook(VXMSGBOXHOOK hook, uint32_t data);

/* Sets the hook that answers without a screen: it hands the text of each box to `log` and answers with the default
 * button. VXMB_OK answers 1 whatever the default; for a default beyond the last button of another set, "Invalid
 * Message Box parameter...User intervention is needed!!!!" is logged too, and the box is shown after all. Boxes of
 * other threads than that of VxMsgBoxSetAppData are answered with 0 and not logged.
 * Null takes that hook away, and leaves any other. Returns 1; 0, with nothing changed, on another thread. */
VX_EXPORT int32_t VxMsgBoxSetNoUIHook(VXMSGBOXLOG log);

/* ---- Plain boxes ---- */

/* Shows a box of the system's. title null: the application's. */
VX_EXPORT int32_t VxMessageBox(HWND owner, const char16_t* text, const char16_t* title, uint32_t type);

/* The same under the application's title; the second shows its text as it is, the third takes the format from a
 * string resource of an open language handle (VxGetString). */
VX_EXPORT int32_t VxMsgBoxF(HWND owner, uint32_t type, const char16_t* format, ...);
VX_EXPORT int32_t VxMsgBoxNoF(HWND owner, uint32_t type, const char16_t* text);
VX_EXPORT int32_t VxMsgBoxId(HVXLANG handle, HWND owner, uint32_t type, uint32_t id, ...);

/* ---- Custom boxes: those named NoF show their text as it is ---- */

/* A box with details (null: none). It has no check box, whatever the flags say. */
VX_EXPORT int32_t VxMsgBox_CustomF(HWND owner, uint32_t flags, const char16_t* details,
                                   const char16_t* format, ...);
VX_EXPORT int32_t VxMsgBox_CustomNoF(HWND owner, uint32_t flags, const char16_t* details,
                                     const char16_t* text);

/* The same under a title; null: the application's. */
VX_EXPORT int32_t VxMsgBox_TitledF(HWND owner, uint32_t flags, const char16_t* title, const char16_t* details,
                                   const char16_t* format, ...);
VX_EXPORT int32_t VxMsgBox_TitledNoF(HWND owner, uint32_t flags, const char16_t* title,
                                     const char16_t* details, const char16_t* text);

/* The same with a check box, where the flags hold VXMB_CHECK.
 *   checkText   its label; null: "Do not show this message again.", in the user's language
 *   checkState  1 or 0, set and read while the box is up; what it means is the host's. Null: 0 is returned where
 *               there is to be a check box */
VX_EXPORT int32_t VxMsgBox_CustomExF(HWND owner, uint32_t flags, const char16_t* details,
                                     const char16_t* checkText, int32_t* checkState, const char16_t* format,
                                     ...);
VX_EXPORT int32_t VxMsgBox_CustomExNoF(HWND owner, uint32_t flags, const char16_t* details,
                                       const char16_t* checkText, int32_t* checkState, const char16_t* text);

/* The same with a hyperlink below the message, where neither text of it is null. */
VX_EXPORT int32_t VxMsgBox_CustomExLinkF(HWND owner, uint32_t flags, const char16_t* details,
                                         const char16_t* checkText, int32_t* checkState,
                                         const char16_t* linkUrl, const char16_t* linkCaption,
                                         const char16_t* format, ...);

/* ---- Boxes of failures (errors.h) ---- */

/* Composes the message of a failure (VxErrorHandler_GetErrorMessage) and shows it as below. VX_E_CANCELLED is not
 * shown: 1 is returned at once, and the details stay. */
VX_EXPORT int32_t VxErrorHandler_MsgBox(HWND owner, uint32_t flags, uintptr_t context, HRESULT code,
                                        const char16_t* insert, int32_t isWarning);

/* Shows a text with the details that were collected and the hyperlink that was set, and clears that record.
 *   flags      those of details are not looked at: they depend on whether there are any. There is no check box:
 *              with VXMB_CHECK, 0 is returned and nothing shown
 *   text       may be the message of that record
 *   isWarning  not 0: "Warning: " stands in front of it, in the user's language */
VX_EXPORT int32_t VxErrorHandler_MsgBoxText(HWND owner, uint32_t flags, const char16_t* text,
                                            int32_t isWarning);

VX_EXTERN_C_END

#endif
