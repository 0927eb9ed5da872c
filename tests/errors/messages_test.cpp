// Messages of failures: what they say, where they are cut, what hosts add, and details on the way.
#include "errors/details.h"
#include "errors/tables.h"
#include "lang/kernel_language.h"
#include "lang/strings.h"
#include "vx/errors.h"
#include "vx/platform/testing.h"
#include "vx/platform/threads.h"

#include <gmock/gmock.h>

#include <set>
#include <string>
#include <thread>

namespace {

constexpr HRESULT kNotFound = HRESULT(0x8004E00A);
constexpr HRESULT kDiskFull = HRESULT(0x8004E002);
const std::u16string kNotFoundText = u"\n\nThe item was not found.";

uintptr_t AsContext(const char16_t* text)
{
    return reinterpret_cast<uintptr_t>(text);
}

class ErrorMessages : public testing::Test
{
protected:
    ErrorMessages() { VxErrorHandler_DetailsInit(); }
    ~ErrorMessages() override { VxErrorHandler_DetailsInit(); }
};

TEST_F(ErrorMessages, ContextAndReasonMakeASentence)
{
    const struct
    {
        uintptr_t context;
        uint32_t code;
        const char16_t* insert;
        const char16_t* want;
    } cases[] = {
        {0, 0x8004E002, nullptr,
         u"An error occurred during the current operation.\n\nThe disk is full. Please free some space and "
         u"try again."},
        {5, 0x8004E00A, u"a.prj",
         u"An error occurred while loading the project file a.prj.\n\nThe item was not found."},
        {4, 0x80030070, nullptr,
         u"An error occurred accessing project media .\n\nThe system is low on memory. You may be able to "
         u"reduce memory usage by closing other applications."},
        {53, 0x8004E0D4, u"x", u"An error occurred during the current operation.ASPI is not installed."},
        {58, 0x12345, u"x",
         u"An error occurred during the current operation.\n\nError 0x00012345 (message missing)"},
        {0xFFFF, 0x8004E164, u"x",
         u"An error occurred during the current operation.\n\n file type is unsupported in this version of "
         u"$(AppName)."},
        {57, 0x0004E005, u"x",
         u"An error occurred while renaming a file.\n\nThis feature is not configured properly."},
        {AsContext(u"No name here."), 0x8004E00A, u"x", u"No name here.\n\nThe item was not found."},
        {AsContext(u"100%% of %s"), 0x8004E00A, u"50%", u"100% of 50%\n\nThe item was not found."},
    };
    for (const auto& c : cases)
        EXPECT_EQ(std::u16string(VxErrorHandler_GetErrorMessage(c.context, HRESULT(c.code), c.insert)),
                  c.want);
    EXPECT_EQ(VxErrorHandler_GetHresultString(0x12345), nullptr);
}

TEST_F(ErrorMessages, EachStatusHasOneReason)
{
    std::set<uint32_t> statuses;
    for (const vx::Reason& reason : vx::BuiltInReasons())
        EXPECT_TRUE(statuses.insert(reason.status).second) << std::hex << reason.status;
}

TEST_F(ErrorMessages, LongMessagesLoseTheReasonThenTheirEnd)
{
    for (size_t length = 1920; length <= 2060; ++length) {
        const std::u16string context(length, u'x');
        const std::u16string whole = length < 1948 ? context + kNotFoundText : context;
        EXPECT_EQ(VxErrorHandler_GetErrorMessage(AsContext(context.c_str()), kNotFound, nullptr),
                  whole.substr(0, 2047));
        EXPECT_EQ(VxErrorHandler_GetErrorMessage(AsContext(u"%s"), kNotFound, context.c_str()),
                  whole.substr(0, 2047));
        ASSERT_EQ(vx::g_errorDetails.detailsThread, 0u) << "written behind the message, at " << length;
    }
    static const std::u16string longReason(300, u'r');
    static const _vxerror_table rows[] = {{HRESULT(0xA0000001), longReason.c_str()}};
    const std::u16string context(1947, u'x');
    ASSERT_EQ(VxErrorHandler_AddErrorTable(rows, 1), 0);
    EXPECT_EQ(VxErrorHandler_GetErrorMessage(AsContext(context.c_str()), rows[0].code, nullptr),
              context + longReason.substr(0, 100));
    EXPECT_EQ(vx::g_errorDetails.detailsThread, 0u);
}

// Last of those that add tables: it fills all places, for the rest of the process.
TEST_F(ErrorMessages, TablesOfHostsComeFirstInTheirOrder)
{
    static const _vxerror_table first[] = {
        {HRESULT(0xA0000002), u"first"},
        {HRESULT(0xA0000002), u"again"},
        {HRESULT(0x8004E00F), u"no window"},
        {HRESULT(0xA0000003), reinterpret_cast<const char16_t*>(vx::strings::kRetry)}};
    static const _vxerror_table_rcid second[] = {{HRESULT(0xA0000002), 1}, {HRESULT(0xA0000005), 1}};
    static const _vxerror_table late[] = {{HRESULT(0xA0000004), u"too late"}};
    EXPECT_EQ(VxErrorHandler_AddErrorTable(first, 4), 0);
    EXPECT_EQ(VxErrorHandler_AddErrorTable(nullptr, second, 2), 0);
    int added = 0;
    while (VxErrorHandler_AddErrorTable(first, 1) == 0)
        ASSERT_LE(++added, VXERROR_MAX_TABLES);
    EXPECT_GE(added, VXERROR_MAX_TABLES - 3);
    EXPECT_EQ(VxErrorHandler_AddErrorTable(late, 1), 1);

    const auto reason = [](uint32_t code) {
        const char16_t* const text = VxErrorHandler_GetHresultString(HRESULT(code));
        return text ? std::u16string(text) : u"none";
    };
    EXPECT_EQ(reason(0xA0000002), u"first");
    EXPECT_EQ(reason(0x8004E00F), u"no window");
    EXPECT_EQ(reason(0xA0000003), u"&Retry");
    EXPECT_EQ(reason(0xA0000004), u"none");
    EXPECT_EQ(reason(0xA0000005), u"none") << "a number without a handle";

    ASSERT_EQ(vx::OpenKernelLanguage(nullptr), S_OK);
    VxLang_UpdateKernelLCID(vx::g_kernelLanguage, 0x0407);
    EXPECT_EQ(reason(0xA0000003), u"&Wiederholen") << "tables follow starts";
    vx::CloseKernelLanguage();
    EXPECT_EQ(reason(0xA0000003), u"&Retry");
}

TEST_F(ErrorMessages, DetailsGatherAndStandBehindTheMessage)
{
    EXPECT_EQ(VxErrorHandler_DetailsInfo(nullptr, nullptr, nullptr), nullptr);
    EXPECT_EQ(VxErrorHandler_DetailsAddString(kDiskFull, u"plain\\"), 0);
    EXPECT_EQ(VxErrorHandler_DetailsAddString(kNotFound, u"%d%% of %s", 100, u"it"), 0);
    EXPECT_EQ(VxErrorHandler_DetailsAddString(kDiskFull, nullptr), E_POINTER);
    uint32_t code = 0, count = 0, thread = 0;
    EXPECT_EQ(std::u16string(VxErrorHandler_DetailsInfo(&code, &count, &thread)),
              u"plain\\\r\n100% of it\r\n");
    EXPECT_EQ(HRESULT(code), kNotFound);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(thread, GetCurrentThreadId());
    EXPECT_EQ(VxErrorHandler_GetLastError(), kNotFound);

    std::thread([] {
        EXPECT_EQ(VxErrorHandler_DetailsAddString(kDiskFull, u"another failure"), E_FAIL);
        EXPECT_EQ(VxErrorHandler_DetailsAddString(kNotFound, u"the same"), 0);
    }).join();

    VxPlatform_FailAllocationAt(1);
    EXPECT_EQ(VxErrorHandler_ComposeErrorText(0, kNotFound, nullptr), nullptr);
    const BSTR text = VxErrorHandler_ComposeErrorText(AsContext(u"Context"), kNotFound, nullptr);
    const std::u16string want =
        u"Context" + kNotFoundText + u"\r\n<Details>\r\nplain\\\r\n100% of it\r\nthe same\r\n\r\n</Details>";
    EXPECT_EQ(std::u16string(text, SysStringLen(text) + 1), want + u'\0');
    SysFreeString(text);

    EXPECT_EQ(VxErrorHandler_DetailsInit(), 0);
    EXPECT_EQ(VxErrorHandler_GetLastError(), 0);
    const BSTR alone = VxErrorHandler_ComposeErrorText(AsContext(u"Context"), kNotFound, nullptr);
    EXPECT_EQ(alone, u"Context" + kNotFoundText);
    SysFreeString(alone);
}

// 8189 characters, their line end and the terminator fill the details; one more is dropped whole, formatted or not.
TEST_F(ErrorMessages, DetailsThatDoNotFitAreDroppedWhole)
{
    for (const size_t before : {0, 100})
        for (const size_t length : {8188, 8189, 8190, 9213, 9300, 20000}) {
            const std::u16string old(before, u'o'), line(length - before - (before ? 2 : 0), u'x');
            const std::u16string kept = before ? old + u"\r\n" : u"";
            for (const char16_t* format : {line.c_str(), u"%s"}) {
                VxErrorHandler_DetailsInit();
                if (before) {
                    EXPECT_EQ(VxErrorHandler_DetailsAddString(kDiskFull, old.c_str()), 0);
                }
                EXPECT_EQ(VxErrorHandler_DetailsAddString(kNotFound, format, line.c_str()),
                          length <= 8189 ? S_OK : E_FAIL);
                EXPECT_EQ(vx::g_errorDetails.detailsText, length <= 8189 ? kept + line + u"\r\n" : kept);
                ASSERT_EQ(vx::g_errorDetails.linkUrl[0], 0);
            }
        }
}

} // namespace
