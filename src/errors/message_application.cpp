#include "errors/message_application.h"

#include "errors/button_sets.h"
#include "kernel/text.h"
#include "vx/platform/messagebox.h"
#include "vx/platform/threads.h"

namespace vx {

constinit MessageApplication g_messageApplication{};

namespace {

constexpr int32_t kNotAnswered = -1;
constexpr char16_t kInvalidParameter[] = u"Invalid Message Box parameter...User intervention is needed!!!!";

bool IsApplicationThread()
{
    return g_messageApplication.appThread == GetCurrentThreadId();
}

int32_t AnswerAndLog(intptr_t data, HWND, const char16_t* text, const char16_t*, uint32_t flags)
{
    if (!IsApplicationThread())
        return 0;
    const auto log = reinterpret_cast<VXMSGBOXLOG>(data);
    log(text);
    if (const auto answer = AnswerWithoutScreen(flags))
        return *answer;
    log(kInvalidParameter);
    return kNotAnswered;
}

} // namespace

HWND ResolveOwner(HWND owner)
{
    if (owner == VXMB_NO_OWNER)
        return nullptr;
    return owner || !g_messageApplication.hwndMain ? owner
                                                   : GetLastActivePopup(g_messageApplication.hwndMain);
}

int32_t AskHook(HWND owner, const char16_t* text, const char16_t* title, uint32_t flags)
{
    const MessageApplication& app = g_messageApplication;
    return app.hook ? app.hook(app.hookData, owner, text, title, flags) : kNotAnswered;
}

} // namespace vx

using namespace vx;

int32_t VxMsgBoxSetAppData(HINSTANCE instance, HWND mainWindow, const char16_t* title)
{
    g_messageApplication = {.appThread = GetCurrentThreadId(),
                            .hInstance = instance,
                            .hwndMain = mainWindow,
                            .hook = nullptr,
                            .hookData = 0,
                            .appTitle = {},
                            .centreHook = nullptr,
                            .centreTitle = nullptr};
    CopyCut(ViewOf(title), g_messageApplication.appTitle, VXMB_TITLE_CHARS);
    return 1;
}

int32_t VxMsgBoxSetHook(VXMSGBOXHOOK hook, uint32_t data)
{
    if (!IsApplicationThread())
        return 0;
    g_messageApplication.hook = hook;
    g_messageApplication.hookData = data;
    return 1;
}

int32_t VxMsgBoxSetNoUIHook(VXMSGBOXLOG log)
{
    if (!IsApplicationThread())
        return 0;
    MessageApplication& app = g_messageApplication;
    if (log || app.hook == AnswerAndLog) {
        app.hook = log ? AnswerAndLog : nullptr;
        app.hookData = reinterpret_cast<intptr_t>(log);
    }
    return 1;
}
