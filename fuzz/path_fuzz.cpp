// Any text into all that takes paths apart, puts them together, matches and relates them.
//
// Input: a byte of room, then UTF-16 text up to a line feed, then more of it. Texts and results lie in
// memory of exactly their size, so that the sanitizer sees any access behind them.
#include "require.h"
#include "vx/path.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace {

using namespace vxfuzz;
using std::u16string_view;

constexpr size_t kMostMatched = 12; // characters for the slow matcher

// A terminated text in memory of its own size.
class Text
{
public:
    explicit Text(u16string_view text) : size_(text.size()), text_(new char16_t[text.size() + 1])
    {
        text_[text.copy(text_.get(), text.size())] = u'\0';
    }
    operator const char16_t*() const { return text_.get(); }
    u16string_view View() const { return {text_.get(), size_}; }

private:
    size_t size_;
    std::unique_ptr<char16_t[]> text_;
};

// A buffer of that room with as much of a text as it holds.
class Buffer
{
public:
    Buffer(int32_t room, u16string_view text) : room_(room), text_(new char16_t[size_t(room)])
    {
        if (room > 0)
            text_[text.copy(text_.get(), size_t(room) - 1)] = u'\0';
    }
    char16_t* Get() const { return text_.get(); }
    u16string_view View() const
    {
        const char16_t* end = std::find(text_.get(), text_.get() + room_, u'\0');
        Require(room_ == 0 || end < text_.get() + room_);
        return {text_.get(), size_t(end - text_.get())};
    }

private:
    int32_t room_;
    std::unique_ptr<char16_t[]> text_;
};

void TakeApart(const Text& path, int32_t room)
{
    const char16_t* name = VxGetFileNamePtrW(path);
    Require(name >= path && u16string_view(name).find_first_of(u":\\") == u16string_view::npos);
    const char16_t* extension = VxGetFileNameExtensionPtrW(name);
    Require(extension >= name && (!*extension || *extension == u'.'));

    const size_t folder = size_t(name - path);
    const Buffer stem(room, u"?"), own(room, u"?"), root(room, u"?");
    VxGetFileNameWithoutPathOrExtension(path, stem.Get(), room);
    Require(u16string_view(name).starts_with(stem.View()));
    const int32_t folderLength = VxGetPathNameFromFilePath(path, own.Get(), room);
    Require(folder >= 500 || size_t(folderLength) == folder);
    Require(path.View().empty() || own.View() == (folderLength < room ? path.View().substr(0, folder) : u""));
    const int32_t rootLength = VxGetRootPathFromFilePath(path, root.Get(), room);
    Require(rootLength == 0 || path.View()[size_t(rootLength) - 1] == u'\\');
    Require(root.View() == (rootLength < room ? path.View().substr(0, size_t(rootLength)) : u""));
}

// The A form on the bytes of an ASCII text finds what the W form finds.
void CompareForms(const Text& path)
{
    if (std::ranges::any_of(path.View(), [](char16_t c) { return c >= 0x80; }))
        return;
    const std::string bytes(path.View().begin(), path.View().end());
    Require(VxGetFileNamePtrA(bytes.c_str()) - bytes.c_str() == VxGetFileNamePtrW(path) - path);
    Require(VxGetFileNameExtensionPtrA(bytes.c_str()) - bytes.c_str() ==
            VxGetFileNameExtensionPtrW(path) - path);
}

template <class Change>
void Build(const Text& path, int32_t room, Change change)
{
    const Buffer buffer(room, path.View());
    const int32_t length = change(buffer.Get());
    Require(length == 0 || size_t(length) == buffer.View().size());
}

void PutTogether(const Text& path, const Text& other, int32_t room)
{
    Build(path, room, [&](char16_t* p) { return VxAddSlashToPathName(p, room); });
    Build(path, room, [&](char16_t* p) { return VxRemoveSlashFromPathNameEnd(p, room); });
    Build(path, room, [&](char16_t* p) { return VxAddExtensionToPathName(p, room, other); });
    Build(path, room, [&](char16_t* p) { return VxReplaceExtensionOnPathName(p, room, other); });
    Build(path, room, [&](char16_t* p) { return VxAppendToPathName(p, room, other, nullptr); });
    Build(path, room, [&](char16_t* p) { return VxAppendToPathName(p, room, other, path); });
    if (room > 0) {
        const Buffer buffer(room, path.View());
        const size_t before = buffer.View().size();
        const int32_t up = VxDirectoryUpOneLevel(buffer.Get(), room);
        Require(up ? buffer.View().size() < before : buffer.View().size() == before);
    }
}

void Check(const Text& name)
{
    const Text copy(name.View());
    const auto fixed = const_cast<char16_t*>(static_cast<const char16_t*>(copy));
    const int32_t good = VxValidateFileName(fixed, 0);
    Require(copy.View() == name.View() && VxValidateFileName(fixed, 1) == good);
    Require(VxValidateFileName(fixed, 0) == 1 && (copy.View() == name.View()) == (good == 1));
}

// With every run that a '*' may stand for: what the library matches without a way back matches here too,
// where a dot at the end of either side may stand for nothing.
bool MatchesSomehow(u16string_view pattern, u16string_view name)
{
    if (pattern.empty() || name.empty())
        return (pattern.empty() || pattern[0] == u'*' || pattern == u".") && (name.empty() || name == u".");
    if (pattern[0] == u'*')
        return MatchesSomehow(pattern.substr(1), name) || MatchesSomehow(pattern, name.substr(1));
    return (pattern[0] == u'?' || pattern[0] == name[0]) && MatchesSomehow(pattern.substr(1), name.substr(1));
}

void Match(const Text& pattern, const Text& name)
{
    const bool matches = VxIsMatchWildCard(pattern, name);
    if (pattern.View().size() <= kMostMatched && name.View().size() <= kMostMatched)
        Require(!matches || MatchesSomehow(pattern.View(), name.View()));
    if (pattern.View().find_first_of(u"*?") == u16string_view::npos && pattern.View() == name.View())
        Require(matches);
}

void Relate(const Text& path, const Text& other, int32_t room)
{
    const char16_t* common = VxGetFileNamePtrRelative(other, path);
    Require(common >= path && common <= path + path.View().size());
    Require(common == path || !*common || common[-1] == u'\\');
    Require(VxGetFileNamePtrRelative(path, path) == path);
    const Buffer base(room, u"?"), moved(room, u"?");
    const HRESULT status = VxGetBasePathRelative(other, path, base.Get(), room);
    if (SUCCEEDED(status) && *common && path.View().size() < VX_MAX_PATH)
        Require(base.View() == path.View().substr(0, size_t(common - path)));
    // What is moved away comes back.
    const Text prefix(path.View().substr(0, path.View().size() / 2));
    if (SUCCEEDED(VxReplaceBasePathRelative(path, prefix, other, moved.Get(), room))) {
        const Buffer back(VX_MAX_PATH, u"?");
        const HRESULT returned =
            VxReplaceBasePathRelative(moved.Get(), other, prefix, back.Get(), VX_MAX_PATH);
        Require(path.View().size() >= VX_MAX_PATH || (SUCCEEDED(returned) && back.View() == path.View()));
    }
}

void AskSystem(const Text& path, const Text& other, int32_t room)
{
    const Buffer full(room, u"?");
    char16_t* part = nullptr;
    const int32_t length = VxGetFullPathName(path, room, full.Get(), &part);
    Require(length <= 0 || length >= room || (full.View().size() == size_t(length) && part));
    Require(length <= 0 || length >= room || part == VxGetFileNamePtrW(full.Get()));
    const int order = VxFilenameLogicalCompare(path, other);
    const int reverse = VxFilenameLogicalCompare(other, path);
    Require((order < 0) == (reverse > 0) && (order > 0) == (reverse < 0));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1)
        return 0;
    const int32_t room = data[0] + (data[0] >= 200 ? 100 : 0); // on both sides of the longest path
    std::u16string all((size - 1) / sizeof(char16_t), u'\0');
    std::memcpy(all.data(), data + 1, all.size() * sizeof(char16_t));
    std::erase(all, u'\0');
    const size_t middle = std::min(all.find(u'\n'), all.size());
    const Text path(u16string_view(all).substr(0, middle));
    const Text other(u16string_view(all).substr(std::min(middle + 1, all.size())));
    TakeApart(path, room);
    CompareForms(path);
    PutTogether(path, other, room);
    Check(path);
    Match(path, other);
    Relate(path, other, room);
    AskSystem(path, other, room);
    return 0;
}
