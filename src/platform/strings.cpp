#include "vx/platform/strings.h"

#include "platform/case_folding.h"

int lstrcmpiW(const WCHAR* first, const WCHAR* second)
{
    if (!first || !second)
        return (first != nullptr) - (second != nullptr);
    for (int32_t i = 0, j = 0;;) {
        const UChar32 a = vxplatform::NextFolded(first, i, -1), b = vxplatform::NextFolded(second, j, -1);
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
