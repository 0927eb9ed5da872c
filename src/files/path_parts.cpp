// The parts of a path.
#include "files/path.h"
#include "kernel/characters.h"
#include "vx/path.h"

#include <string>

namespace vx {
namespace {

// Space in ASCII for bytes, in Unicode for characters.
bool IsNameSpace(char c)
{
    return c == ' ' || (c >= 0x09 && c <= 0x0D);
}

bool IsNameSpace(char16_t c)
{
    return IsSpace(c);
}

template <class Char>
size_t NameStart(std::basic_string_view<Char> path)
{
    constexpr Char kSeparators[] = {':', '\\', 0};
    return path.find_last_of(kSeparators) + 1; // 0 where there is none
}

template <class Char>
size_t DotOf(std::basic_string_view<Char> name)
{
    const size_t dot = name.rfind(Char('.'));
    if (dot == name.npos || std::ranges::any_of(name.substr(dot), [](Char c) { return IsNameSpace(c); }))
        return name.size();
    return dot;
}

template <class Char>
Char* FileNameIn(const Char* path)
{
    return path ? const_cast<Char*>(path) + NameStart<Char>(path) : nullptr;
}

template <class Char>
Char* ExtensionIn(const Char* name)
{
    return name ? const_cast<Char*>(name) + DotOf<Char>(name) : nullptr;
}

// With its last backslash; 0 without a server, a share or that backslash.
size_t RootLengthOfServer(std::u16string_view path)
{
    const size_t server = path.find(u'\\', 2);
    if (server == 2 || server == path.npos)
        return 0;
    const size_t share = path.find(u'\\', server + 1);
    return share == server + 1 || share == path.npos ? 0 : share + 1;
}

size_t RootLength(std::u16string_view path)
{
    return path.starts_with(u"\\\\") ? RootLengthOfServer(path) : path.find(u'\\') + 1;
}

// A part from the start of a path: all of it or an empty text.
int32_t CopyPart(std::u16string_view part, char16_t* dst, int32_t dstChars)
{
    const int32_t length = int32_t(part.size());
    CopyCut(length < dstChars ? part : u"", dst, dstChars);
    return length;
}

} // namespace

size_t FileNameStart(std::u16string_view path)
{
    return NameStart(path);
}

size_t ExtensionStart(std::u16string_view name)
{
    return DotOf(name);
}

} // namespace vx

using namespace vx;

char* VxGetFileNamePtrA(const char* path)
{
    return FileNameIn(path);
}

char16_t* VxGetFileNamePtrW(const char16_t* path)
{
    return FileNameIn(path);
}

char* VxGetFileNameExtensionPtrA(const char* name)
{
    return ExtensionIn(name);
}

char16_t* VxGetFileNameExtensionPtrW(const char16_t* name)
{
    return ExtensionIn(name);
}

int32_t VxGetFileNameWithoutPathOrExtension(const char16_t* path, char16_t* dst, int32_t dstChars)
{
    const std::u16string_view whole = ViewOf(path);
    const std::u16string_view name = CutTo(whole.substr(FileNameStart(whole)), dstChars);
    return CopyCut(name.substr(0, ExtensionStart(name)), dst, dstChars);
}

int32_t VxGetPathNameFromFilePath(const char16_t* path, char16_t* dst, int32_t dstChars)
{
    constexpr int32_t kMostRead = 520;
    const std::u16string_view whole = CutTo(ViewOf(path), kMostRead);
    return whole.empty() ? 0 : CopyPart(whole.substr(0, FileNameStart(whole)), dst, dstChars);
}

int32_t VxGetRootPathFromFilePath(const char16_t* path, char16_t* dst, int32_t dstChars)
{
    const std::u16string_view whole = CutTo(ViewOf(path), kMaxPath);
    return CopyPart(whole.substr(0, RootLength(whole)), dst, dstChars);
}
