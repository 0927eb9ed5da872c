// How names are compared without regard to case.
#pragma once

#include <unicode/uchar.h>
#include <unicode/utf16.h>

namespace vxplatform {

// The folded form of the character at text[at], and steps behind it. length is -1 for a text with a
// terminator, at which it gives 0. Most names are ASCII.
inline UChar32 NextFolded(const char16_t* text, int32_t& at, int32_t length)
{
    const char16_t unit = text[at];
    if (unit < 0x80) {
        ++at;
        return unit >= u'A' && unit <= u'Z' ? unit + 0x20 : unit;
    }
    UChar32 character = 0;
    U16_NEXT(text, at, length, character);
    return u_foldCase(character, U_FOLD_CASE_DEFAULT);
}

} // namespace vxplatform
