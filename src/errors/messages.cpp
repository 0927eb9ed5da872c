// Finding a failure's context and reason, and composing its message.
#include "errors/details.h"
#include "errors/tables.h"
#include "lang/kernel_language.h"
#include "lang/strings.h"
#include "vx/errors.h"
#include "vx/print.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <string_view>

using namespace vx;

namespace {

struct HostTable
{
    const _vxerror_table* rows;
    uint32_t count;
    HVXLANG language;
    bool ofKernel; // whose handle is another one after each start

    std::span<const _vxerror_table> Rows() const { return {rows, count}; }
    HVXLANG Language() const { return ofKernel ? g_kernelLanguage : language; }
};

HostTable g_hostTables[VXERROR_MAX_TABLES];
uint32_t g_hostTableCount;

constexpr uintptr_t kLastNumber = 0xFFFF;

// Failures are shown outside a run of the kernel too, when there is no handle: tables are in English then, and
// strings of resources are not known.
const char16_t* TextOf(HVXLANG language, const char16_t* text)
{
    if (language)
        return VxGetStringSmart(language, text);
    if (reinterpret_cast<uintptr_t>(text) <= kLastNumber)
        return nullptr;
    return IsVXLANGSTRINGID(language, text) ? reinterpret_cast<const vxlang_t*>(text)->text[0] : text;
}

// A reason needs 100 characters of room to be worth beginning.
constexpr uint32_t kMostContext = VXERROR_MESSAGE_CHARS - 100;

int32_t AddTable(const HostTable& table)
{
    if (g_hostTableCount == VXERROR_MAX_TABLES)
        return 1;
    g_hostTables[g_hostTableCount++] = table;
    return 0;
}

// Reasons are formats for their tokens; they have no arguments, and one that asks for a name gets the empty one.
void AppendReason(const char16_t* reason, char16_t* text, uint32_t capacity)
{
    VxCchPrintF(text, capacity, nullptr, reason, u"");
}

} // namespace

int32_t VxErrorHandler_AddErrorTable(const _vxerror_table* rows, uint32_t count)
{
    return AddTable({rows, count, nullptr, true});
}

int32_t VxErrorHandler_AddErrorTable(HVXLANG language, const _vxerror_table_rcid* rows, uint32_t count)
{
    // A number and an address are told apart when the text is looked up, so the two kinds of rows are one.
    return AddTable({reinterpret_cast<const _vxerror_table*>(rows), count, language,
                     language && language == g_kernelLanguage});
}

const char16_t* VxErrorHandler_GetHresultString(HRESULT code)
{
    for (const HostTable& table : std::span(g_hostTables, g_hostTableCount)) {
        const auto row = std::ranges::find(table.Rows(), code, &_vxerror_table::code);
        if (row != table.Rows().end())
            return TextOf(table.Language(), row->text);
    }
    const auto reason = std::ranges::find(BuiltInReasons(), uint32_t(code), &Reason::status);
    return reason != BuiltInReasons().end() ? KernelText(reason->text) : nullptr;
}

const char16_t* VxErrorHandler_GetContextString(uintptr_t context)
{
    return context > kLastNumber ? reinterpret_cast<const char16_t*>(context)
                                 : KernelText(BuiltInContext(context));
}

const char16_t* VxErrorHandler_GetErrorMessage(uintptr_t context, HRESULT code, const char16_t* insert)
{
    char16_t* const message = g_errorDetails.messageText;
    uint32_t length = 0;
    VxCchPrintF(message, VXERROR_MESSAGE_CHARS, &length, VxErrorHandler_GetContextString(context),
                insert ? insert : u"");
    if (length >= kMostContext)
        return message;
    char16_t missing[100];
    const char16_t* reason = VxErrorHandler_GetHresultString(code);
    if (!reason) {
        VxCchPrintF(missing, uint32_t(std::size(missing)), nullptr, KernelText(strings::kReasonMissing),
                    code);
        reason = missing;
    }
    AppendReason(reason, message + length, VXERROR_MESSAGE_CHARS - length);
    return message;
}

BSTR VxErrorHandler_ComposeErrorText(uintptr_t context, HRESULT code, const char16_t* insert)
{
    const std::u16string_view message = VxErrorHandler_GetErrorMessage(context, code, insert);
    if (g_errorDetails.detailsCount < 1)
        return SysAllocStringLen(message.data(), uint32_t(message.size()));
    return JoinDetails(message, g_errorDetails.detailsText);
}
