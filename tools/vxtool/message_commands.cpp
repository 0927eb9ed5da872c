// error and prompt: the messages of failures, and what a message box asks.
#include "errors/button_sets.h"
#include "lang/kernel_language.h"
#include "lang/strings.h"
#include "vx/errors.h"
#include "vx/msgbox.h"
#include "vx/print.h"
#include "vxtool/commands.h"
#include "vxtool/languages.h"
#include "vxtool/print_call.h"
#include "vxtool/unicode.h"

#include <algorithm>
#include <charconv>
#include <iostream>

namespace vxtool {
namespace {

// What the hook of the box that was asked last saw.
struct SeenBox
{
    std::string text;
    uint32_t flags;
};
SeenBox g_seen;

int32_t See(intptr_t, HWND, const char16_t* text, const char16_t*, uint32_t flags)
{
    g_seen = {Utf8Of(text), flags};
    return VXMB_ID_OK;
}

// Lines as a terminal takes them.
std::string WithoutReturns(std::string text)
{
    std::erase(text, '\r');
    return text;
}

// A number as programmers write it, decimal or behind 0x; to be read with 32 bits.
bool ReadCode(std::string_view text, uint32_t& code)
{
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    if (isHex)
        text.remove_prefix(2);
    int64_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value, isHex ? 16 : 10);
    code = uint32_t(value);
    return error == std::errc() && stop == end && value >= (isHex ? 0 : INT32_MIN) && value <= UINT32_MAX;
}

void SetApplication(const Arguments& arguments)
{
    const std::string* const name = arguments.Text("--app");
    const std::u16string title = name ? Utf16Of(*name) : u"";
    if (name && !VxPrintF_AddToken(u"AppName", title.c_str()))
        FailFile("there is not enough memory for a token");
    VxMsgBoxSetAppData(nullptr, nullptr, title.c_str());
}

// ---- error

constexpr uint32_t kLastContext = 0xFFFF;

HRESULT CodeOf(const Arguments& arguments)
{
    uint32_t code = 0;
    const std::string& word = arguments.Operand(1);
    if (!ReadCode(word, code))
        FailArgument("CODE is a status as 0x8004E00A, or a decimal number, not '", word, "'");
    return arguments.Has("--system") ? VxErrorHandler_TranslateWin32Error(code) : HRESULT(code);
}

// A number, or a format of the user's own, which gets one name.
uintptr_t ContextOf(const std::string& word, const std::u16string& format)
{
    uint32_t number = 0;
    if (ReadCode(word, number) && number <= kLastContext)
        return number;
    const std::vector<ArgumentKind> kinds = ArgumentsOfFormat(format);
    if (kinds.size() > 1 || (kinds.size() == 1 && kinds[0] != ArgumentKind::Text))
        FailArgument("CONTEXT is a number from 0 to 57, or a text with one %s at most, not '", word, "'");
    return reinterpret_cast<uintptr_t>(format.c_str());
}

void AddDetails(const Arguments& arguments, HRESULT code)
{
    for (const std::string& line : arguments.All("--details"))
        if (VxErrorHandler_DetailsAddString(code, u"%s", Utf16Of(line).c_str()) != S_OK)
            FailArgument("all details together have at most ", VXERROR_DETAILS_CHARS - 1, " characters");
}

void RunError(const Arguments& arguments)
{
    StartKernelInLanguage(arguments);
    SetApplication(arguments);
    VxMsgBoxSetHook(See, 0);
    const HRESULT code = CodeOf(arguments);
    if (code == VX_E_CANCELLED) {
        std::cout << "(nothing is shown: the user cancelled)\n";
        return;
    }
    AddDetails(arguments, code);
    const std::u16string format = Utf16Of(arguments.Operand(0));
    const uintptr_t context = ContextOf(arguments.Operand(0), format);
    const std::string* const insert = arguments.Text("--insert");
    VxErrorHandler_MsgBox(nullptr, VXMB_OK, context, code, insert ? Utf16Of(*insert).c_str() : nullptr,
                          arguments.Has("--warning"));
    std::cout << WithoutReturns(g_seen.text) << "\n";
}

constexpr Option kAppOption = {"--app", "NAME", "the application's name, for $(AppName) in messages"};

constexpr Option kErrorOptions[] = {
    {"--insert", "TEXT", "the name for %s in the context, as that of a file"},
    {"--details", "LINE", "a line of details; may be given several times"},
    {"--system", nullptr, "CODE is an error code of the system, to be translated"},
    {"--warning", nullptr, "a warning rather than an error"},
    kAppOption,
    kLangOption,
};

// ---- prompt

constexpr Choice kSets[] = {
    {"ok", VXMB_OK},
    {"ok-cancel", VXMB_OKCANCEL},
    {"abort-retry-ignore", VXMB_ABORTRETRYIGNORE},
    {"yes-no-cancel", VXMB_YESNOCANCEL},
    {"yes-no", VXMB_YESNO},
    {"retry-cancel", VXMB_RETRYCANCEL},
    {"yes-all-no-cancel", VXMB_YESALLNOCANCEL},
    {"yes-no-delete", VXMB_YESNODELETE},
    {"yes-no-noall-cancel", VXMB_YESNONOALLCANCEL},
    {"yes-all-no-noall-cancel", VXMB_YESALLNOALLCANCEL},
};

constexpr Choice kIcons[] = {
    {"hand", 0x10},
    {"question", 0x20},
    {"exclamation", 0x30},
    {"asterisk", 0x40},
};

// A set's name, or all flags as a number, and what options put in their place.
uint32_t FlagsOf(const Arguments& arguments)
{
    uint32_t flags = 0;
    const std::string& word = arguments.Operand(0);
    if (!ReadCode(word, flags))
        flags = uint32_t(ParseChoice("BUTTONS", word, kSets));
    if (arguments.Has("--default"))
        flags = (flags & ~VXMB_DEFAULT) | uint32_t(arguments.Integer("--default", 0, 0, 15)) << 8;
    const int32_t icon = int32_t(flags & VXMB_ICON);
    flags = (flags & ~VXMB_ICON) | uint32_t(arguments.OneOf("--icon", kIcons, icon));
    flags |= arguments.Has("--check") ? VXMB_CHECK : 0;
    return flags | (arguments.Has("--details") ? VXMB_DETAILS : 0);
}

std::string LabelOf(int32_t button)
{
    return Utf8Of(vx::KernelText(vx::LabelOf(button)));
}

void ShowLine(const char* name, const std::string& text)
{
    std::cout << PaddedRight(name, 11) << text << "\n";
}

void ShowButtons(uint32_t flags)
{
    const vx::ButtonSet& set = vx::ButtonsOf(flags);
    for (const int32_t button : set.buttons)
        ShowLine(button == set.buttons[0] ? "buttons" : "",
                 Join(PaddedLeft(std::to_string(button), 3), "  ", LabelOf(button),
                      button == vx::DefaultButton(flags) ? "  (default)" : ""));
    ShowLine("closing", set.closing ? std::to_string(set.closing) : "not possible");
}

void RunPrompt(const Arguments& arguments)
{
    const uint32_t flags = FlagsOf(arguments);
    StartKernelInLanguage(arguments);
    SetApplication(arguments);
    const std::u16string text = arguments.OperandCount() > 1 ? Utf16Of(arguments.Operand(1)) : u"";
    const std::string* const details = arguments.Text("--details");
    const std::u16string detailsText = details ? Utf16Of(*details) : u"";
    int32_t checked = 0;
    const auto ask = [&] {
        return VxMsgBox_CustomExNoF(nullptr, flags, details ? detailsText.c_str() : nullptr, nullptr,
                                    &checked, text.c_str());
    };
    VxMsgBoxSetHook(See, 0);
    if (ask() == 0)
        FailArgument("flags with bits of 0xC000 need --details");
    const auto* const icon = std::ranges::find(kIcons, int32_t(flags & VXMB_ICON), &Choice::value);
    ShowLine("text", WithoutReturns(g_seen.text));
    ShowLine("icon", icon != std::end(kIcons) ? icon->name : "none");
    ShowButtons(flags);
    if (flags & VXMB_CHECK)
        ShowLine("check box", Utf8Of(vx::KernelText(vx::strings::kDoNotShowAgain)));
    VxMsgBoxSetNoUIHook([](const char16_t*) {});
    const int32_t answer = ask();
    ShowLine("no screen", answer != -1 ? std::to_string(answer) : "no answer: there are fewer buttons");
}

constexpr Option kPromptOptions[] = {
    {"--default", "N", "the default button, counted from 0"},
    {"--icon", "ICON", "hand, question, exclamation or asterisk (default: none)"},
    {"--details", "TEXT", "details, as the hook of a host sees them"},
    {"--check", nullptr, "with a check box"},
    kAppOption,
    kLangOption,
};

} // namespace

const Command kError = {
    "error",
    "show the message of a failure",
    "CONTEXT CODE",
    2,
    2,
    kErrorOptions,
    "vxtool error 5 0x8004E00A --insert a.prj",
    RunError,
};

const Command kPrompt = {
    "prompt",
    "show what a message box asks, and what is answered without a screen",
    "BUTTONS|FLAGS [TEXT]",
    1,
    2,
    kPromptOptions,
    "vxtool prompt yes-no-cancel 'Save the project?' --default 2",
    RunPrompt,
};

} // namespace vxtool
