#include "vx/platform/sysstring.h"

#include "platform/allocation.h"

#include <cstring>
#include <string>

using namespace vxplatform;

namespace {

// In front of the text: its length in the last 4 bytes, and as much as keeps the text aligned to 16 bytes.
constexpr size_t kHead = 16;

} // namespace

BSTR SysAllocString(const WCHAR* text)
{
    if (!text)
        return nullptr;
    const size_t length = std::char_traits<WCHAR>::length(text);
    return length <= 0x7FFFFFFF ? SysAllocStringLen(text, uint32_t(length)) : nullptr;
}

BSTR SysAllocStringLen(const WCHAR* text, uint32_t length)
{
    if (length > 0x7FFFFFFF)
        return nullptr;
    const uint32_t bytes = length * uint32_t(sizeof(WCHAR));
    auto* const block = static_cast<char*>(AllocateBytes(kHead + bytes + sizeof(WCHAR), false));
    if (!block)
        return nullptr;
    memcpy(block + kHead - sizeof bytes, &bytes, sizeof bytes);
    const BSTR string = reinterpret_cast<BSTR>(block + kHead);
    if (text)
        memcpy(string, text, bytes);
    string[length] = u'\0';
    return string;
}

void SysFreeString(BSTR string)
{
    if (string)
        ReleaseBytes(reinterpret_cast<char*>(string) - kHead);
}

uint32_t SysStringLen(BSTR string)
{
    if (!string)
        return 0;
    uint32_t bytes;
    memcpy(&bytes, reinterpret_cast<const char*>(string) - sizeof bytes, sizeof bytes);
    return bytes / uint32_t(sizeof(WCHAR));
}
