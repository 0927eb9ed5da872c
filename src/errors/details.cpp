#include "errors/details.h"

#include "kernel/text.h"
#include "vx/errors.h"
#include "vx/platform/threads.h"
#include "vx/print.h"

#include <algorithm>
#include <mutex>
#include <stdarg.h>
#include <string_view>

namespace vx {

ErrorDetails g_errorDetails;

} // namespace vx

using namespace vx;

namespace {

// Keeps two threads that add lines of one failure from writing over each other.
std::mutex g_detailsLock;

constexpr std::u16string_view kLineEnd = u"\r\n";

// A conversion without room is left out, which would pass for a line that fits. With the room of the longest one
// (1024 characters) behind the most that fits, nothing is left out of a line that does.
constexpr uint32_t kScratchChars = VXERROR_DETAILS_CHARS + 1024;
char16_t g_scratch[kScratchChars];

std::u16string_view Formatted(const char16_t* format, va_list arguments)
{
    if (!IsFormat(format))
        return format;
    uint32_t length = 0;
    VxNVPrintF(g_scratch, kScratchChars, &length, format, arguments);
    return {g_scratch, length};
}

HRESULT AppendLine(std::u16string_view line)
{
    const size_t length = std::u16string_view(g_errorDetails.detailsText).size();
    if (length + kLineEnd.size() + line.size() >= VXERROR_DETAILS_CHARS)
        return E_FAIL;
    char16_t* const end = std::ranges::copy(line, g_errorDetails.detailsText + length).out;
    *std::ranges::copy(kLineEnd, end).out = u'\0';
    return S_OK;
}

HRESULT AddLine(HRESULT code, const char16_t* format, va_list arguments)
{
    const std::scoped_lock lock(g_detailsLock);
    const uint32_t thread = GetCurrentThreadId();
    if (g_errorDetails.detailsThread == 0)
        g_errorDetails.detailsThread = thread;
    if (g_errorDetails.detailsThread != thread && g_errorDetails.lastError != code)
        return E_FAIL;
    if (!format)
        return E_POINTER;
    if (const HRESULT status = AppendLine(Formatted(format, arguments)); status != S_OK)
        return status;
    ++g_errorDetails.detailsCount;
    g_errorDetails.lastError = code;
    return S_OK;
}

template <size_t room>
int32_t CopyText(std::u16string_view text, char16_t (&dst)[room])
{
    return CopyCut(text, dst, int32_t(room));
}

} // namespace

void vx::TakeDetails(std::u16string_view prefix, const char16_t* text, ShownDetails& shown)
{
    const std::scoped_lock lock(g_detailsLock);
    const int32_t length = CopyText(prefix, shown.text);
    CopyCut(ViewOf(text), shown.text + length, VXERROR_MESSAGE_CHARS - length);
    CopyText(g_errorDetails.detailsCount > 0 ? g_errorDetails.detailsText : u"", shown.details);
    CopyText(g_errorDetails.linkUrl, shown.linkUrl);
    CopyText(g_errorDetails.linkText, shown.linkText);
    g_errorDetails = {};
}

BSTR vx::JoinDetails(std::u16string_view message, std::u16string_view details)
{
    const std::u16string_view parts[] = {message, u"\r\n<Details>\r\n", details, u"\r\n</Details>"};
    size_t length = 0;
    for (const std::u16string_view part : parts)
        length += part.size();
    const BSTR text = SysAllocStringLen(nullptr, uint32_t(length));
    if (!text)
        return nullptr;
    char16_t* end = text;
    for (const std::u16string_view part : parts)
        end = std::ranges::copy(part, end).out;
    return text;
}

HRESULT VxErrorHandler_DetailsInit()
{
    const std::scoped_lock lock(g_detailsLock);
    g_errorDetails = {};
    return S_OK;
}

HRESULT VxErrorHandler_DetailsAddString(HRESULT code, const char16_t* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const HRESULT status = AddLine(code, format, arguments);
    va_end(arguments);
    return status;
}

const char16_t* VxErrorHandler_DetailsInfo(uint32_t* code, uint32_t* count, uint32_t* thread)
{
    const std::scoped_lock lock(g_detailsLock);
    if (code)
        *code = uint32_t(g_errorDetails.lastError);
    if (count)
        *count = uint32_t(g_errorDetails.detailsCount);
    if (thread)
        *thread = g_errorDetails.detailsThread;
    return g_errorDetails.detailsCount >= 1 ? g_errorDetails.detailsText : nullptr;
}

HRESULT VxErrorHandler_DetailsSetHyperlink(const char16_t* url, const char16_t* caption)
{
    if (!url || !caption)
        return E_POINTER;
    const std::scoped_lock lock(g_detailsLock);
    CopyText(url, g_errorDetails.linkUrl);
    CopyText(caption, g_errorDetails.linkText);
    return S_OK;
}

HRESULT VxErrorHandler_GetLastError()
{
    const std::scoped_lock lock(g_detailsLock);
    return g_errorDetails.lastError;
}
