// Where custom message boxes become windows.
#pragma once

#include "vx/msgbox.h"

namespace vx {

// What a box is to show, in the frame of the call that shows it.
struct MessageDialog
{
    uint32_t flags; // of a set that exists
    const char16_t* text;
    const char16_t* details; // null: none
    bool noCancel;           // it cannot be closed
    const char16_t* checkText;
    // The check box at first, and when the box was closed. There is one where VXMB_CHECK_MASK of the flags is VXMB_CHECK.
    int32_t* checkState;
    const char16_t* title;
    const char16_t* linkUrl; // the link is there where both are
    const char16_t* linkCaption;
};

// What boxes need of windows. The family that has these puts its functions here; until then no dialog can be made, and
// plain boxes come up where the system puts them.
struct DialogSteps
{
    // Shows the box and waits; returns the button, or -1 where the dialog could not be made.
    int32_t (*run)(HINSTANCE instance, HWND owner, MessageDialog& dialog) = nullptr;
    // A hook on this thread that centres the next box with the application's centreTitle; null where it cannot. It clears
    // centreHook and centreTitle when it has done that and is gone.
    HANDLE (*installCentring)() = nullptr;
    void (*removeCentring)(HANDLE hook) = nullptr;
};
extern constinit DialogSteps dialogSteps;

} // namespace vx
