#include "vx/platform/strings.h"

#include <unicode/uchar.h>
#include <unicode/utf16.h>

namespace {

// The next character of a text, case folded, 0 at its end. Most names are ASCII.
UChar32 NextFolded(const WCHAR*& text)
{
    const WCHAR unit = *text;
    if (unit < 0x80) {
        text += unit != 0;
        return unit >= u'A' && unit <= u'Z' ? unit + 0x20 : unit;
    }
    UChar32 character = 0;
    int32_t length = 0;
    U16_NEXT(text, length, -1, character);
    text += length;
    return u_foldCase(character, U_FOLD_CASE_DEFAULT);
}

} // namespace

int lstrcmpiW(const WCHAR* first, const WCHAR* second)
{
    if (!first || !second)
        return (first != nullptr) - (second != nullptr);
    for (;;) {
        const UChar32 a = NextFolded(first), b = NextFolded(second);
        if (a != b)
            return a < b ? -1 : 1;
        if (a == 0)
            return 0;
    }
}

WCHAR VxPlatform_ToUpper(WCHAR character)
{
    const UChar32 upper = u_toupper(character);
    return U_IS_BMP(upper) ? WCHAR(upper) : character;
}
