#include "errors/details.h"

#include "kernel/text.h"
#include "vx/errors.h"
#include "vx/platform/threads.h"
#include "vx/print.h"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <stdarg.h>
#include <string_view>

namespace vx {

ErrorDetails g_errorDetails;

} // namespace vx

using vx::CopyCut, vx::g_errorDetails;

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
    const std::u16string_view plain(format);
    if (plain.find_first_of(u"$%") == plain.npos)
        return plain;
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

} // namespace

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
    CopyCut(url, g_errorDetails.linkUrl, int32_t(std::size(g_errorDetails.linkUrl)));
    CopyCut(caption, g_errorDetails.linkText, int32_t(std::size(g_errorDetails.linkText)));
    return S_OK;
}

HRESULT VxErrorHandler_GetLastError()
{
    const std::scoped_lock lock(g_detailsLock);
    return g_errorDetails.lastError;
}
