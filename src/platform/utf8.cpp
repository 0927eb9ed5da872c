#include "platform/utf8.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

namespace vxplatform {
namespace {

constexpr UChar32 kReplacement = 0xFFFD;

} // namespace

std::string ToUtf8(std::u16string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size();) {
        UChar32 c = 0;
        U16_NEXT(text.data(), i, text.size(), c);
        char bytes[U8_MAX_LENGTH];
        int length = 0;
        U8_APPEND_UNSAFE(bytes, length, U_IS_SURROGATE(c) ? kReplacement : c);
        out.append(bytes, size_t(length));
    }
    return out;
}

std::u16string ToUtf16(std::string_view text)
{
    std::u16string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size();) {
        UChar32 c = 0;
        U8_NEXT_OR_FFFD(text.data(), i, text.size(), c);
        char16_t units[U16_MAX_LENGTH];
        int length = 0;
        U16_APPEND_UNSAFE(units, length, c);
        out.append(units, size_t(length));
    }
    return out;
}

} // namespace vxplatform
