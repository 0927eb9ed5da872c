// What counts as white space and as a digit in all text that the library reads.
#pragma once

namespace vx {

// Unicode's White_Space. Thousands separators such as U+00A0 and U+202F are among it.
constexpr bool IsSpace(char16_t c)
{
    if (c < 0x80)
        return c == u' ' || (c >= 0x09 && c <= 0x0D);
    return c == 0x0085 || c == 0x00A0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) || c == 0x2028 ||
           c == 0x2029 || c == 0x202F || c == 0x205F || c == 0x3000;
}

constexpr bool IsDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

} // namespace vx
