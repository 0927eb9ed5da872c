// Paths put together in place.
#include "files/path.h"
#include "vx/path.h"
#include "vx/platform/strings.h"

namespace {

using namespace vx;

// A path in its buffer, read no further than that. Without a terminator there its length is the capacity.
struct PathInPlace
{
    PathInPlace(char16_t* text, int32_t room) : path(text), capacity(text ? std::max(room, 0) : 0)
    {
        while (length < capacity && path[length])
            ++length;
    }
    bool IsTerminated() const { return length < capacity; }
    std::u16string_view View() const { return {path, size_t(length)}; }
    int32_t NameStart() const { return int32_t(FileNameStart(View())); }
    int32_t ExtensionStart() const
    {
        return NameStart() + int32_t(vx::ExtensionStart(View().substr(size_t(NameStart()))));
    }
    // Replaces what begins there by a dot and the extension, in at most that much room; the final length.
    int32_t PutExtension(int32_t at, std::u16string_view ext, int32_t room)
    {
        const int32_t dot = CopyCut(u".", path + at, room);
        return at + dot + CopyCut(ext, path + at + dot, room - dot);
    }

    char16_t* path;
    int32_t capacity;
    int32_t length = 0;
};

std::u16string_view WithoutFirst(std::u16string_view text, char16_t c)
{
    return text.starts_with(c) ? text.substr(1) : text;
}

// Both without their dots.
bool IsSameExtension(std::u16string_view mine, const char16_t* other)
{
    const PathText copy(mine); // terminated
    return lstrcmpiW(copy.Text(), other) == 0;
}

} // namespace

int32_t VxAddSlashToPathName(char16_t* path, int32_t capacity)
{
    const PathInPlace p(path, capacity);
    if (p.length == 0 || !p.IsTerminated())
        return 0;
    if (p.View().ends_with(u'\\'))
        return p.length;
    if (p.length + 2 > capacity)
        return 0;
    return p.length + CopyCut(u"\\", path + p.length, 2);
}

int32_t VxRemoveSlashFromPathNameEnd(char16_t* path, int32_t capacity)
{
    const PathInPlace p(path, capacity);
    if (p.length == 0 || !p.IsTerminated())
        return 0;
    const int32_t kept = p.View().ends_with(u'\\') ? p.length - 1 : p.length;
    path[kept] = u'\0';
    return kept;
}

int32_t VxAddExtensionToPathName(char16_t* path, int32_t capacity, const char16_t* ext)
{
    PathInPlace p(path, capacity);
    const std::u16string_view wanted = WithoutFirst(ViewOf(ext), u'.');
    if (wanted.empty() || !p.IsTerminated())
        return p.length;
    const int32_t at = p.ExtensionStart();
    const std::u16string_view present = p.View().substr(size_t(at));
    if (!present.empty() && IsSameExtension(present.substr(1), wanted.data()))
        return p.length;
    return p.PutExtension(at, wanted, capacity - p.length);
}

int32_t VxReplaceExtensionOnPathName(char16_t* path, int32_t capacity, const char16_t* ext)
{
    PathInPlace p(path, capacity);
    if (!ext || !p.IsTerminated() || p.NameStart() == p.length)
        return p.length;
    const int32_t at = p.ExtensionStart();
    return p.PutExtension(at, WithoutFirst(ext, u'.'), capacity - at);
}

int32_t VxAppendToPathName(char16_t* path, int32_t capacity, const char16_t* name, const char16_t* ext)
{
    VxAddSlashToPathName(path, capacity);
    const PathInPlace p(path, capacity);
    if (!p.IsTerminated())
        return p.length;
    char16_t* const appended = path + p.length;
    const int32_t left = capacity - p.length;
    const int32_t length = CopyCut(WithoutFirst(ViewOf(name), u'\\'), appended, left);
    return p.length + (ext ? VxReplaceExtensionOnPathName(appended, left, ext) : length);
}

int32_t VxDirectoryUpOneLevel(char16_t* path, int32_t capacity)
{
    constexpr size_t kShortest = 4; // "C:\a"
    std::u16string_view text = ViewOf(path);
    if (text.size() >= size_t(kMaxPath) || text.size() < kShortest || capacity < 1)
        return 0;
    if (text.ends_with(u'\\'))
        text.remove_suffix(1);
    const size_t kept = text.rfind(u'\\') + 1;
    if (kept == 0)
        return 0;
    CopyCut(text.substr(0, kept), path, capacity);
    return 1;
}
