// File names checked and compared.
#include "files/path.h"
#include "vx/path.h"
#include "vx/platform/files.h"

int32_t VxValidateFileName(char16_t* name, int32_t fix)
{
    constexpr std::u16string_view kForbidden = u"\n\r\"*/:<>?\\|", kForbiddenLast = u" .";
    bool good = true;
    for (char16_t* c = name; c && *c; ++c) {
        if (kForbidden.find(*c) == kForbidden.npos &&
            (c[1] || kForbiddenLast.find(*c) == kForbiddenLast.npos))
            continue;
        if (!fix)
            return 0;
        *c = u'_';
        good = false;
    }
    return good;
}

int32_t VxIsMatchWildCard(const char16_t* pattern, const char16_t* name)
{
    const char16_t *p = pattern ? pattern : u"", *n = name ? name : u"";
    if (p[0] == u'*' && !p[1])
        return 1;
    for (;;) {
        if (!*n)
            return !*p || *p == u'*' || (*p == u'.' && !p[1]);
        if (!*p)
            return *n == u'.' && !n[1];
        if (*p == u'*') {
            for (++p; *n && *n != u'.' && *n != *p;)
                ++n;
            continue;
        }
        if (*p != u'?' && *p != *n)
            return 0;
        ++p;
        ++n;
    }
}

int32_t VxFilenameLogicalCompare(const char16_t* a, const char16_t* b)
{
    return StrCmpLogicalW(a, b);
}
