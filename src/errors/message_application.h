// What the application says about its message boxes, once for the process.
#pragma once

#include "vx/msgbox.h"

namespace vx {

struct MessageApplication
{
    uint32_t appThread; // the only one that may set hooks; 0: none yet
    HINSTANCE hInstance;
    HWND hwndMain;
    VXMSGBOXHOOK hook;
    intptr_t hookData;
    char16_t appTitle[VXMB_TITLE_CHARS];
    HANDLE centreHook; // while a plain box is being made
    const char16_t* centreTitle;
};

extern MessageApplication g_messageApplication;

// An owner as a host gives it, as a window or null.
HWND ResolveOwner(HWND owner);

// Asks the hook, where there is one; -1 where nobody answers.
int32_t AskHook(HWND owner, const char16_t* text, const char16_t* title, uint32_t flags);

} // namespace vx
