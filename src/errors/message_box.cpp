// The ways to show a box. Each comes down to a plain box, which the system shows, or a custom one.
#include "errors/button_sets.h"
#include "errors/details.h"
#include "errors/message_application.h"
#include "errors/message_dialog.h"
#include "kernel/text.h"
#include "lang/kernel_language.h"
#include "lang/strings.h"
#include "vx/msgbox.h"
#include "vx/platform/messagebox.h"
#include "vx/print.h"

#include <stdarg.h>

namespace vx {

constinit DialogSteps dialogSteps;

namespace {

constexpr int32_t kPlainChars = 4096, kCustomChars = 2048; // terminator included
constexpr int32_t kNothingShown = 0, kNotAnswered = -1, kNotMade = -1;

// A message in the frame of the call that shows it.
template <int32_t chars>
class Message
{
public:
    explicit Message(const char16_t* text) { CopyCut(ViewOf(text), text_, chars); }
    Message(const char16_t* format, va_list arguments)
    {
        if (IsFormat(ViewOf(format)))
            VxNVPrintF(text_, chars, nullptr, format, arguments);
        else
            CopyCut(ViewOf(format), text_, chars);
    }

    const char16_t* Text() const { return text_; }

private:
    char16_t text_[chars];
};

using PlainMessage = Message<kPlainChars>;
using CustomMessage = Message<kCustomChars>;

// Has the plain box that is made while this lives centred, unless another one is being made.
class Centring
{
public:
    Centring(const char16_t* title, uint32_t type)
    {
        constexpr uint32_t kSystemModalError =
            MB_SYSTEMMODAL | MB_ICONHAND; // must come up however things stand
        MessageApplication& app = g_messageApplication;
        if (type == kSystemModalError || app.centreHook || !dialogSteps.installCentring)
            return;
        app.centreTitle = title;
        hook_ = app.centreHook = dialogSteps.installCentring();
        if (!hook_)
            app.centreTitle = nullptr;
    }
    ~Centring()
    {
        MessageApplication& app = g_messageApplication;
        if (!hook_ || app.centreHook != hook_)
            return;
        dialogSteps.removeCentring(hook_);
        app.centreHook = nullptr;
        app.centreTitle = nullptr;
    }
    Centring(const Centring&) = delete;
    Centring& operator=(const Centring&) = delete;

private:
    HANDLE hook_ = nullptr;
};

// What the caller of a custom box says beside its message.
struct CustomBox
{
    HWND owner;
    uint32_t flags;
    const char16_t* title;
    const char16_t* details;
    bool mayCheck = false; // the call has a place for the check box's state
    const char16_t* checkText = nullptr;
    int32_t* checkState = nullptr;
    const char16_t* linkUrl = nullptr;
    const char16_t* linkCaption = nullptr;

    bool HasDetails() const { return (flags & VXMB_DETAILS) != 0; }
    bool HasCheckBox() const { return mayCheck && (flags & VXMB_CHECK) != 0; }
    bool IsComplete() const { return (!HasDetails() || details) && (!HasCheckBox() || checkState); }
};

// The hook has no place for details beside the message: it sees one text.
int32_t AskHookWithDetails(const CustomBox& box, HWND owner, const char16_t* text)
{
    if (!g_messageApplication.hook)
        return kNotAnswered;
    const BSTR joined = box.HasDetails() ? JoinDetails(text, box.details) : nullptr;
    const int32_t answer = AskHook(owner, joined ? joined : text, g_messageApplication.appTitle, box.flags);
    SysFreeString(joined);
    return answer;
}

MessageDialog DialogOf(const CustomBox& box, const char16_t* text)
{
    const ButtonSet& set = ButtonsOf(box.flags);
    const uint32_t kept = ~(VXMB_BUTTONS | (box.mayCheck ? 0 : VXMB_CHECK_MASK));
    return {.flags = (box.flags & kept) | set.number,
            .text = text,
            .details = box.details,
            .noCancel = set.closing == 0,
            .checkText = box.checkText ? box.checkText : KernelText(strings::kDoNotShowAgain),
            .checkState = box.HasCheckBox() ? box.checkState : nullptr,
            .title = box.title ? box.title : g_messageApplication.appTitle,
            .linkUrl = box.linkUrl,
            .linkCaption = box.linkCaption};
}

int32_t ShowCustom(const CustomBox& box, const char16_t* text)
{
    const HWND owner = ResolveOwner(box.owner);
    if (const int32_t answer = AskHookWithDetails(box, owner, text); answer != kNotAnswered)
        return answer;
    MessageDialog dialog = DialogOf(box, text);
    return dialogSteps.run ? dialogSteps.run(g_messageApplication.hInstance, owner, dialog) : kNotMade;
}

int32_t ShowFormatted(const CustomBox& box, const char16_t* format, va_list arguments)
{
    return box.IsComplete() ? ShowCustom(box, CustomMessage(format, arguments).Text()) : kNothingShown;
}

int32_t ShowAsItIs(const CustomBox& box, const char16_t* text)
{
    return box.IsComplete() ? ShowCustom(box, CustomMessage(text).Text()) : kNothingShown;
}

} // namespace
} // namespace vx

using namespace vx;

int32_t VxMessageBox(HWND owner, const char16_t* text, const char16_t* title, uint32_t type)
{
    const HWND window = ResolveOwner(owner);
    const char16_t* const message = text ? text : u"";
    if (const int32_t answer = AskHook(window, message, title, type); answer != kNotAnswered)
        return answer;
    const char16_t* const caption = title ? title : g_messageApplication.appTitle;
    const Centring centring(caption, type);
    return MessageBoxW(window, message, caption, type);
}

int32_t VxMsgBoxF(HWND owner, uint32_t type, const char16_t* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const PlainMessage message(format, arguments);
    va_end(arguments);
    return VxMessageBox(owner, message.Text(), nullptr, type);
}

int32_t VxMsgBoxNoF(HWND owner, uint32_t type, const char16_t* text)
{
    return VxMessageBox(owner, PlainMessage(text).Text(), nullptr, type);
}

int32_t VxMsgBoxId(HVXLANG handle, HWND owner, uint32_t type, uint32_t id, ...)
{
    va_list arguments;
    va_start(arguments, id);
    const PlainMessage message(VxGetString(handle, id), arguments);
    va_end(arguments);
    return VxMessageBox(owner, message.Text(), nullptr, type);
}

int32_t VxMsgBox_CustomF(HWND owner, uint32_t flags, const char16_t* details, const char16_t* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int32_t answer = ShowFormatted(
        {.owner = owner, .flags = flags, .title = nullptr, .details = details}, format, arguments);
    va_end(arguments);
    return answer;
}

int32_t VxMsgBox_CustomNoF(HWND owner, uint32_t flags, const char16_t* details, const char16_t* text)
{
    return ShowAsItIs({.owner = owner, .flags = flags, .title = nullptr, .details = details}, text);
}

int32_t VxMsgBox_TitledF(HWND owner, uint32_t flags, const char16_t* title, const char16_t* details,
                         const char16_t* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int32_t answer = ShowFormatted({.owner = owner, .flags = flags, .title = title, .details = details},
                                         format, arguments);
    va_end(arguments);
    return answer;
}

int32_t VxMsgBox_TitledNoF(HWND owner, uint32_t flags, const char16_t* title, const char16_t* details,
                           const char16_t* text)
{
    return ShowAsItIs({.owner = owner, .flags = flags, .title = title, .details = details}, text);
}

int32_t VxMsgBox_CustomExF(HWND owner, uint32_t flags, const char16_t* details, const char16_t* checkText,
                           int32_t* checkState, const char16_t* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int32_t answer =
        ShowFormatted({owner, flags, nullptr, details, true, checkText, checkState}, format, arguments);
    va_end(arguments);
    return answer;
}

int32_t VxMsgBox_CustomExNoF(HWND owner, uint32_t flags, const char16_t* details, const char16_t* checkText,
                             int32_t* checkState, const char16_t* text)
{
    return ShowAsItIs({owner, flags, nullptr, details, true, checkText, checkState}, text);
}

int32_t VxMsgBox_CustomExLinkF(HWND owner, uint32_t flags, const char16_t* details, const char16_t* checkText,
                               int32_t* checkState, const char16_t* linkUrl, const char16_t* linkCaption,
                               const char16_t* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const int32_t answer =
        ShowFormatted({owner, flags, nullptr, details, true, checkText, checkState, linkUrl, linkCaption},
                      format, arguments);
    va_end(arguments);
    return answer;
}

int32_t VxErrorHandler_MsgBox(HWND owner, uint32_t flags, uintptr_t context, HRESULT code,
                              const char16_t* insert, int32_t isWarning)
{
    if (code == VX_E_CANCELLED)
        return VXMB_ID_OK;
    return VxErrorHandler_MsgBoxText(owner, flags, VxErrorHandler_GetErrorMessage(context, code, insert),
                                     isWarning);
}

int32_t VxErrorHandler_MsgBoxText(HWND owner, uint32_t flags, const char16_t* text, int32_t isWarning)
{
    constexpr size_t kMostPrefix = 49;
    ShownDetails shown;
    TakeDetails(isWarning ? ViewOf(KernelText(strings::kWarningPrefix)).substr(0, kMostPrefix) : u"", text,
                shown);
    const bool hasDetails = shown.details[0] != u'\0';
    return ShowAsItIs({owner, (flags & ~VXMB_DETAILS) | (hasDetails ? VXMB_DETAILS : 0), nullptr,
                       hasDetails ? shown.details : nullptr, true, nullptr, nullptr, shown.linkUrl,
                       shown.linkText},
                      shown.text);
}
