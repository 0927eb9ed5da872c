#include "vx/platform/messagebox.h"

#include "platform/utf8.h"
#include "vx/platform/debug.h"
#include "vx/platform/lasterror.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <dlfcn.h>
#include <SDL_messagebox.h>
#include <span>
#include <string>
#include <string_view>

namespace {

using vxplatform::ToUtf8;

struct Button
{
    int id;
    const char* label;
};

constexpr Button kOk{IDOK, "OK"}, kCancel{IDCANCEL, "Cancel"}, kAbort{IDABORT, "Abort"},
    kRetry{IDRETRY, "Retry"}, kIgnore{IDIGNORE, "Ignore"}, kYes{IDYES, "Yes"}, kNo{IDNO, "No"};

constexpr size_t kMostButtons = 3;

// By the number of the set; a null label ends one early.
constexpr Button kSets[][kMostButtons] = {
    {kOk}, {kOk, kCancel}, {kAbort, kRetry, kIgnore}, {kYes, kNo, kCancel}, {kYes, kNo}, {kRetry, kCancel},
};

std::span<const Button> ButtonsOf(UINT type)
{
    const std::span<const Button> all(kSets[type & MB_TYPEMASK]);
    return {all.begin(), std::ranges::find(all, nullptr, &Button::label)};
}

// 0: the box cannot be closed.
int ClosingAnswer(std::span<const Button> buttons)
{
    if (buttons.size() == 1)
        return buttons[0].id;
    return std::ranges::find(buttons, IDCANCEL, &Button::id) != buttons.end() ? IDCANCEL : 0;
}

// Without VX_DISPLAY, where a session has a display.
bool FindDesktop()
{
    const auto value = [](const char* name) {
        const char* const text = std::getenv(name);
        return std::string_view(text ? text : "");
    };
    const std::string_view display = value("VX_DISPLAY");
    return display.empty() ? !value("WAYLAND_DISPLAY").empty() || !value("DISPLAY").empty()
                           : display == "window";
}

using ShowBox = decltype(&SDL_ShowMessageBox);

// Null without a desktop or the library, which stays loaded to the end of the process.
ShowBox FindShowBox()
{
    void* const library = FindDesktop() ? dlopen("libSDL2-2.0.so.0", RTLD_NOW | RTLD_LOCAL) : nullptr;
    return library ? reinterpret_cast<ShowBox>(dlsym(library, "SDL_ShowMessageBox")) : nullptr;
}

Uint32 KindOf(UINT type)
{
    switch (type & MB_ICONMASK) {
    case MB_ICONHAND:
        return SDL_MESSAGEBOX_ERROR;
    case MB_ICONEXCLAMATION:
        return SDL_MESSAGEBOX_WARNING;
    default:
        return SDL_MESSAGEBOX_INFORMATION;
    }
}

size_t DefaultIndex(UINT type, size_t count)
{
    const size_t index = (type & MB_DEFMASK) >> 8;
    return index < count ? index : 0;
}

// 0 where the box could not be shown.
int Show(ShowBox show, const std::string& text, const std::string& caption, UINT type)
{
    const std::span<const Button> buttons = ButtonsOf(type);
    const int closing = ClosingAnswer(buttons);
    std::array<SDL_MessageBoxButtonData, kMostButtons> shown{};
    for (size_t i = 0; i < buttons.size(); ++i) {
        const bool isDefault = i == DefaultIndex(type, buttons.size());
        shown[i] = {(isDefault ? uint32_t(SDL_MESSAGEBOX_BUTTON_RETURNKEY_DEFAULT) : 0) |
                        (buttons[i].id == closing ? uint32_t(SDL_MESSAGEBOX_BUTTON_ESCAPEKEY_DEFAULT) : 0),
                    buttons[i].id, buttons[i].label};
    }
    const SDL_MessageBoxData box{.flags = KindOf(type) | SDL_MESSAGEBOX_BUTTONS_LEFT_TO_RIGHT,
                                 .window = nullptr,
                                 .title = caption.c_str(),
                                 .message = text.c_str(),
                                 .numbuttons = int(buttons.size()),
                                 .buttons = shown.data(),
                                 .colorScheme = nullptr};
    constexpr int kClosed = -1;
    int answer = kClosed;
    do {
        answer = kClosed;
        if (show(&box, &answer) != 0)
            return 0;
    } while (answer == kClosed && closing == 0);
    return answer == kClosed ? closing : answer;
}

int Fail(DWORD error)
{
    SetLastError(error);
    return 0;
}

} // namespace

int MessageBoxW(HWND, const WCHAR* text, const WCHAR* caption, UINT type)
{
    if ((type & MB_TYPEMASK) >= std::size(kSets))
        return Fail(ERROR_INVALID_MSGBOX_STYLE);
    static const ShowBox show = FindShowBox();
    const std::string title = ToUtf8(caption ? caption : u"Error"), message = ToUtf8(text ? text : u"");
    if (const int answer = show ? Show(show, message, title, type) : 0)
        return answer;
    OutputDebugStringA(("message box not shown: " + title + ": " + message + "\n").c_str());
    return Fail(ERROR_NOT_SUPPORTED);
}

HWND GetLastActivePopup(HWND owner)
{
    return owner;
}
