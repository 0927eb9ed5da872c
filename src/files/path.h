// What the families of files and paths share.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace vx {

// Characters of a path in all local work, its terminator included.
constexpr int32_t kMaxPath = 260;

constexpr bool IsPathSeparator(char16_t c)
{
    return c == u':' || c == u'\\';
}

// A null text is an empty one.
constexpr std::u16string_view ViewOf(const char16_t* text)
{
    return text ? std::u16string_view(text) : std::u16string_view();
}

// The first characters that a buffer of that room holds with a terminator.
constexpr std::u16string_view CutTo(std::u16string_view text, int32_t chars)
{
    return text.substr(0, size_t(std::max(chars, 1)) - 1);
}

// Copies what there is room for, and terminates it; the length of it. Text may lie within dst.
int32_t CopyCut(std::u16string_view text, char16_t* dst, int32_t dstChars);

// Where the file name of a path begins, and the extension of a name.
size_t FileNameStart(std::u16string_view path);
size_t ExtensionStart(std::u16string_view name);

// A path of at most 259 characters, cut where more is put in.
class LocalPath
{
public:
    explicit LocalPath(std::u16string_view text) : length_(CopyCut(text, text_, kMaxPath)) {}

    void Append(std::u16string_view text) { length_ += CopyCut(text, text_ + length_, kMaxPath - length_); }
    std::u16string_view View() const { return {text_, size_t(length_)}; }

private:
    char16_t text_[kMaxPath];
    int32_t length_;
};

} // namespace vx
