// A path against another one.
#include "files/path.h"
#include "vx/path.h"
#include "vx/platform/strings.h"

namespace {

using namespace vx;

bool SameLetter(char16_t a, char16_t b)
{
    return a == b || VxPlatform_ToUpper(a) == VxPlatform_ToUpper(b);
}

// Where the first whole name begins of what two paths have in common at their ends.
size_t CommonNames(std::u16string_view other, std::u16string_view path)
{
    size_t common = 0;
    while (common < std::min(other.size(), path.size()) &&
           SameLetter(other[other.size() - 1 - common], path[path.size() - 1 - common]))
        ++common;
    const size_t at = path.size() - common;
    if (at == 0 || at == path.size())
        return at;
    return std::min(path.find_first_not_of(u'\\', path.find(u'\\', at)), path.size());
}

bool BeginsWith(std::u16string_view path, std::u16string_view base)
{
    return path.size() >= base.size() && std::equal(base.begin(), base.end(), path.begin(), SameLetter);
}

HRESULT CopyOrFail(std::u16string_view text, char16_t* dst, int32_t dstChars)
{
    return CopyCut(text, dst, dstChars) == int32_t(text.size()) && dstChars > 0 ? S_OK : E_FAIL;
}

} // namespace

char16_t* VxGetFileNamePtrRelative(const char16_t* other, const char16_t* path)
{
    return path ? const_cast<char16_t*>(path) + CommonNames(ViewOf(other), path) : nullptr;
}

HRESULT VxGetBasePathRelative(const char16_t* other, const char16_t* path, char16_t* dst, int32_t dstChars)
{
    const std::u16string_view whole = ViewOf(path);
    PathText base(whole.substr(0, CommonNames(ViewOf(other), whole)));
    if (!base.View().empty() && !base.View().ends_with(u'\\'))
        base.Add(u"\\");
    return CopyOrFail(base.View(), dst, dstChars);
}

HRESULT VxReplaceBasePathRelative(const char16_t* path, const char16_t* oldBase, const char16_t* newBase,
                                  char16_t* dst, int32_t dstChars)
{
    const std::u16string_view whole = ViewOf(path), before = ViewOf(oldBase), now = ViewOf(newBase);
    if (!BeginsWith(whole, before) || now.size() + (whole.size() - before.size()) >= size_t(kMaxPath)) {
        CopyCut(u"", dst, dstChars);
        return E_FAIL;
    }
    PathText result(now);
    result.Add(whole.substr(before.size()));
    return CopyOrFail(result.View(), dst, dstChars);
}
