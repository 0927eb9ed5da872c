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
    int32_t* checkState; // the check box at first, and when the box was closed; null: there is none
    const char16_t* title;
    const char16_t* linkUrl; // the link is there where both are
    const char16_t* linkCaption;
};

// Shows the box and waits; returns the button, or -1 where the dialog could not be made.
using RunMessageDialog = int32_t (*)(HINSTANCE instance, HWND owner, MessageDialog& dialog);

// Set by the family that has dialogs. Without it none can be made.
extern RunMessageDialog g_runMessageDialog;

} // namespace vx
