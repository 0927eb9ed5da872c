// Message boxes: what the hook and the dialog see of each front end, what is answered without either.
#include "errors/details.h"
#include "errors/message_application.h"
#include "errors/message_dialog.h"
#include "lang/host_module.h"
#include "vx/errors.h"
#include "vx/msgbox.h"
#include "vx/platform/debug.h"
#include "vx/platform/lasterror.h"
#include "vx/platform/messagebox.h"
#include "vx/platform/testing.h"

#include <gmock/gmock.h>

#include <map>
#include <optional>
#include <stdlib.h>
#include <string>
#include <thread>
#include <vector>

namespace {

using testing::ElementsAre;
using Text = std::optional<std::u16string>;

Text Copy(const char16_t* text)
{
    return text ? Text(text) : std::nullopt;
}

struct Asked
{
    intptr_t data = 0;
    HWND owner = nullptr;
    Text text, title;
    uint32_t flags = 0;
};

struct Shown
{
    HINSTANCE instance = nullptr;
    HWND owner = nullptr;
    uint32_t flags = 0;
    Text text, details, checkText, title, url, caption;
    bool noCancel = false;
    int32_t* checkState = nullptr;
};

// What the hook and the dialog were called with, and what they are to answer.
std::vector<Asked> g_asked;
std::vector<Shown> g_shown;
std::vector<std::u16string> g_logged;
int32_t g_hookAnswer, g_dialogAnswer;

int32_t Hook(intptr_t data, HWND owner, const char16_t* text, const char16_t* title, uint32_t flags)
{
    g_asked.push_back({data, owner, Copy(text), Copy(title), flags});
    return g_hookAnswer;
}

int32_t Dialog(HINSTANCE instance, HWND owner, vx::MessageDialog& d)
{
    g_shown.push_back({instance, owner, d.flags, Copy(d.text), Copy(d.details), Copy(d.checkText),
                       Copy(d.title), Copy(d.linkUrl), Copy(d.linkCaption), d.noCancel, d.checkState});
    return g_dialogAnswer;
}

void Log(const char16_t* text)
{
    g_logged.push_back(text);
}

const HWND kMainWindow = HWND(0x100), kOther = HWND(0x200);
const HINSTANCE kInstance = HINSTANCE(0x300);

class MessageBoxes : public testing::Test
{
protected:
    MessageBoxes()
    {
        g_asked.clear();
        g_shown.clear();
        g_logged.clear();
        g_hookAnswer = 77;
        g_dialogAnswer = 88;
        VxErrorHandler_DetailsInit();
        VxMsgBoxSetAppData(kInstance, kMainWindow, u"Editor");
        vx::dialogSteps.run = Dialog;
    }
    ~MessageBoxes() override
    {
        vx::dialogSteps = {};
        vx::g_messageApplication = {};
        VxErrorHandler_DetailsInit();
    }

    static void SetHook() { EXPECT_EQ(VxMsgBoxSetHook(Hook, 0xFFFFFFF0u), 1); }
};

// By set, from the left; numbers without a set have OK alone.
const std::map<uint32_t, std::vector<int32_t>> kButtons = {
    {1, {1, 2}},       {2, {3, 4, 5}},       {3, {6, 7, 2}},
    {4, {6, 7}},       {5, {4, 2}},          {10, {6, 100, 7, 2}},
    {11, {6, 7, 101}}, {12, {6, 7, 102, 2}}, {13, {6, 100, 7, 102, 2}},
};

TEST_F(MessageBoxes, WithoutAScreenTheDefaultButtonAnswers)
{
    VxMsgBoxSetNoUIHook(Log);
    for (uint32_t set = 0; set < 16; ++set) {
        const auto buttons = kButtons.find(set);
        for (uint32_t index = 0; index < 16; ++index) {
            SCOPED_TRACE(testing::Message() << "set " << set << " default " << index);
            g_shown.clear();
            g_logged.clear();
            const bool isValid = buttons == kButtons.end() || index < buttons->second.size();
            const int32_t want = buttons == kButtons.end() ? 1
                                 : isValid                 ? buttons->second[index]
                                                           : g_dialogAnswer;
            EXPECT_EQ(VxMsgBox_CustomNoF(nullptr, 0xF0u | set | index << 8, nullptr, u"100% $"), want);
            EXPECT_EQ(g_shown.size(), isValid ? 0u : 1u);
            ASSERT_EQ(g_logged.size(), isValid ? 1u : 2u);
            EXPECT_EQ(g_logged[0], u"100% $");
            if (!isValid) {
                EXPECT_EQ(g_logged[1], u"Invalid Message Box parameter...User intervention is needed!!!!");
            }
        }
    }
}

TEST_F(MessageBoxes, OnlyTheApplicationsThreadSetsHooksOrIsAnswered)
{
    VxMsgBoxSetNoUIHook(Log);
    std::thread([] {
        EXPECT_EQ(VxMsgBoxSetHook(nullptr, 0), 0);
        EXPECT_EQ(VxMsgBoxSetNoUIHook(nullptr), 0);
        EXPECT_EQ(VxMsgBoxNoF(nullptr, 1, u"from afar"), 0);
    }).join();
    EXPECT_THAT(g_logged, ElementsAre());
    EXPECT_EQ(VxMsgBoxNoF(nullptr, 0x101, u"here"), 2);
    EXPECT_THAT(g_logged, ElementsAre(u"here"));

    SetHook();
    EXPECT_EQ(VxMsgBoxSetNoUIHook(nullptr), 1); // leaves a host's own
    EXPECT_EQ(VxMsgBoxNoF(nullptr, 1, u"x"), 77);
    VxMsgBoxSetNoUIHook(Log);
    EXPECT_EQ(VxMsgBoxSetNoUIHook(nullptr), 1);
    EXPECT_EQ(vx::g_messageApplication.hook, nullptr);
    SetHook();
    VxMsgBoxSetAppData(nullptr, nullptr, nullptr);
    EXPECT_EQ(vx::g_messageApplication.hook, nullptr);
}

TEST_F(MessageBoxes, OwnersAndTitles)
{
    SetHook();
    VxMessageBox(nullptr, u"x", nullptr, 0x24);
    VxMessageBox(VXMB_NO_OWNER, u"x", u"Own", 0x24);
    VxMessageBox(kOther, nullptr, u"Own", 0x24);
    VxMsgBox_TitledNoF(nullptr, 0x24, u"Own", nullptr, u"x");
    ASSERT_EQ(g_asked.size(), 4u);
    EXPECT_EQ(g_asked[0].data, intptr_t(0xFFFFFFF0));
    EXPECT_EQ(g_asked[0].owner, kMainWindow);
    EXPECT_EQ(g_asked[0].title, Text());
    EXPECT_EQ(g_asked[0].flags, 0x24u);
    EXPECT_EQ(g_asked[1].owner, nullptr);
    EXPECT_EQ(g_asked[1].title, u"Own");
    EXPECT_EQ(g_asked[2].owner, kOther);
    EXPECT_EQ(g_asked[2].text, u"");
    EXPECT_EQ(g_asked[3].title, u"Editor"); // whatever the box's own

    g_hookAnswer = -1;
    EXPECT_EQ(VxMsgBox_TitledNoF(nullptr, 0, u"Own", nullptr, u"x"), 88);
    EXPECT_EQ(g_shown.back().title, u"Own");
    EXPECT_EQ(g_shown.back().instance, kInstance);
    EXPECT_EQ(g_shown.back().owner, kMainWindow);
    EXPECT_EQ(VxMsgBox_TitledF(nullptr, 0, nullptr, nullptr, u"%d", 5), 88);
    EXPECT_EQ(g_shown.back().title, u"Editor");
    VxMsgBoxSetAppData(nullptr, nullptr, std::u16string(300, u't').c_str());
    EXPECT_EQ(VxMsgBox_CustomNoF(nullptr, 0, nullptr, u"x"), 88);
    EXPECT_EQ(g_shown.back().title, std::u16string(127, u't'));
    EXPECT_EQ(g_shown.back().owner, nullptr);
}

// Each front end that formats, with the room of its kind; the answer is the hook's.
TEST_F(MessageBoxes, MessagesAreCutAtTheirRoom)
{
    SetHook();
    for (const size_t room : {4096, 2048})
        for (size_t length = room - 12; length <= room + 12; ++length) {
            const std::u16string text(length, u'x'), cut = text.substr(0, room - 1);
            const char16_t* const t = text.c_str();
            const auto Last = [&] { return *g_asked.back().text; };
            if (room == 4096) {
                VxMsgBoxNoF(nullptr, 1, t);
                EXPECT_EQ(Last(), cut);
                VxMsgBoxF(nullptr, 1, t);
                EXPECT_EQ(Last(), cut);
                VxMsgBoxF(nullptr, 1, u"%s", t);
                EXPECT_EQ(Last(), cut);
                VxMsgBoxF(nullptr, 1, u"ab%%%s", t);
                EXPECT_EQ(Last(), (u"ab%" + text).substr(0, room - 1));
                continue;
            }
            VxMsgBox_CustomNoF(nullptr, 1, nullptr, t);
            EXPECT_EQ(Last(), cut);
            VxMsgBox_CustomF(nullptr, 1, nullptr, u"%d%s", 12, t);
            EXPECT_EQ(Last(), (u"12" + text).substr(0, room - 1));
            VxMsgBox_TitledF(nullptr, 1, nullptr, nullptr, u"%s", t);
            EXPECT_EQ(Last(), cut);
            VxMsgBox_CustomExF(nullptr, 1, nullptr, nullptr, nullptr, u"%s%s", t, u"more");
            EXPECT_EQ(Last(), (text + u"more").substr(0, room - 1));
            VxMsgBox_CustomExLinkF(nullptr, 1, nullptr, nullptr, nullptr, nullptr, nullptr, u"%s", t);
            EXPECT_EQ(Last(), cut);
            VxErrorHandler_MsgBoxText(nullptr, 1, t, 1);
            EXPECT_EQ(Last(), (u"Warning: " + text).substr(0, room - 1));
        }
    VxMsgBox_CustomF(nullptr, 1, nullptr, nullptr);
    EXPECT_EQ(g_asked.back().text, u"");
}

TEST_F(MessageBoxes, BoxesWithoutWhatTheirFlagsNeedAreRefused)
{
    SetHook();
    int32_t state = 1;
    for (const uint32_t details : {0x4000u, 0x8000u, 0xC000u})
        EXPECT_EQ(VxMsgBox_CustomExNoF(nullptr, details | 0x1000, nullptr, nullptr, &state, u"x"), 0);
    EXPECT_EQ(VxMsgBox_CustomExNoF(nullptr, 0x1000, u"d", nullptr, nullptr, u"x"), 0);
    EXPECT_EQ(VxMsgBox_CustomExLinkF(nullptr, 0x3000, nullptr, u"c", nullptr, u"u", u"c", u"x"), 0);
    EXPECT_EQ(VxErrorHandler_MsgBoxText(nullptr, 0x1000, u"x", 0), 0);
    EXPECT_TRUE(g_asked.empty());

    g_hookAnswer = -1;
    EXPECT_EQ(VxMsgBox_CustomNoF(nullptr, 0x3001, nullptr, u"x"), 88); // has no check box to ask for
    EXPECT_EQ(g_shown.back().flags, 1u);
    EXPECT_EQ(g_shown.back().checkState, nullptr);
    EXPECT_EQ(VxMsgBox_CustomExNoF(nullptr, 0x1001, nullptr, nullptr, &state, u"x"), 88);
    EXPECT_EQ(g_shown.back().flags, 0x1001u);
    EXPECT_EQ(g_shown.back().checkState, &state);
    EXPECT_EQ(g_shown.back().checkText, u"Do no&t show this message again.");
    EXPECT_EQ(VxMsgBox_CustomExNoF(nullptr, 0x1001, nullptr, u"Again", &state, u"x"), 88);
    EXPECT_EQ(g_shown.back().checkText, u"Again");
}

TEST_F(MessageBoxes, TheHookSeesDetailsInTheTextTheDialogBesideIt)
{
    SetHook();
    g_hookAnswer = -1;
    const std::u16string details(9000, u'd');
    EXPECT_EQ(VxMsgBox_CustomF(nullptr, 0x8002, details.c_str(), u"%d lines", 3), 88);
    EXPECT_EQ(g_asked.back().text, u"3 lines\r\n<Details>\r\n" + details + u"\r\n</Details>");
    EXPECT_EQ(g_shown.back().text, u"3 lines");
    EXPECT_EQ(g_shown.back().details, details);
    EXPECT_EQ(VxMsgBox_CustomF(nullptr, 2, u"not asked for", u"x"), 88);
    EXPECT_EQ(g_asked.back().text, u"x");

    VxPlatform_FailAllocationAt(1);
    EXPECT_EQ(VxMsgBox_CustomNoF(nullptr, 0x4000, u"d", u"x"), 88);
    VxPlatform_FailAllocationAt(0);
    EXPECT_EQ(g_asked.back().text, u"x");
}

TEST_F(MessageBoxes, FailuresAreShownWithTheirDetailsOnce)
{
    VxErrorHandler_DetailsAddString(E_FAIL, u"line %d", 1);
    VxErrorHandler_DetailsSetHyperlink(u"http://x.y", u"More");
    EXPECT_EQ(VxErrorHandler_MsgBox(nullptr, 0x12, 5, VX_E_CANCELLED, u"a", 1), 1);
    EXPECT_TRUE(g_shown.empty());
    EXPECT_EQ(VxErrorHandler_MsgBox(nullptr, 0x12, 5, HRESULT(0x8004E00A), u"a.prj", 1), 88);
    const Shown first = g_shown.back();
    EXPECT_EQ(first.text,
              u"Warning: An error occurred while loading the project file a.prj.\n\nThe item was not "
              u"found.");
    EXPECT_EQ(first.flags, 0xC012u);
    EXPECT_EQ(first.details, u"line 1\r\n");
    EXPECT_EQ(first.url, u"http://x.y");
    EXPECT_EQ(first.caption, u"More");
    EXPECT_EQ(first.checkState, nullptr);

    EXPECT_EQ(VxErrorHandler_MsgBoxText(nullptr, 0xC012, u"100% again", 0), 88);
    const Shown second = g_shown.back();
    EXPECT_EQ(second.text, u"100% again");
    EXPECT_EQ(second.flags, 0x12u);
    EXPECT_EQ(second.details, Text());
    EXPECT_EQ(second.url, u""); // an empty line, but a line
    EXPECT_EQ(second.caption, u"");
    EXPECT_EQ(vx::g_errorDetails.messageText[0], u'\0');
}

std::string g_debugText;

TEST_F(MessageBoxes, PlainBoxesAreCentredWhileTheyAreMade)
{
    setenv("VX_DISPLAY", "headless", 1);
    static std::u16string log;
    static HANDLE next;
    log.clear();
    next = &log;
    vx::dialogSteps.installCentring = [] {
        log += std::u16string(u"+") + vx::g_messageApplication.centreTitle;
        return next;
    };
    vx::dialogSteps.removeCentring = [](HANDLE hook) { log += hook == &log ? u"-" : u"?"; };
    VxMsgBoxNoF(nullptr, 1, u"x");
    EXPECT_EQ(log, u"+Editor-");
    VxMessageBox(nullptr, u"x", u"Own", 0x1010); // the system-modal error
    EXPECT_EQ(log, u"+Editor-");
    VxMessageBox(nullptr, u"x", u"Own", 0x1011);
    EXPECT_EQ(log, u"+Editor-+Own-");
    next = nullptr; // no hook to be had
    VxMessageBox(nullptr, u"x", u"Own", 1);
    vx::g_messageApplication.centreHook = &next; // another box is being made
    VxMessageBox(nullptr, u"x", u"Own", 1);
    EXPECT_EQ(log, u"+Editor-+Own-+Own");
}

} // namespace
