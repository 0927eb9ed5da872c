// Text copied within limits, as all families do it.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

namespace vx {

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

// Copies what there is room for, and terminates it. Returns the length copied; room below 1: 0, with nothing
// written. Text may lie within dst.
inline int32_t CopyCut(std::u16string_view text, char16_t* dst, int32_t dstChars)
{
    if (dstChars < 1)
        return 0;
    const std::u16string_view kept = CutTo(text, dstChars);
    std::char_traits<char16_t>::move(dst, kept.data(), kept.size());
    dst[kept.size()] = u'\0';
    return int32_t(kept.size());
}

// Characters of a path, of files or of keys, in all local work; its terminator included.
inline constexpr int32_t kMaxPath = 260;

// A path of at most 259 characters, cut where more is put in.
class PathText
{
public:
    explicit PathText(std::u16string_view text = {}) : length_(CopyCut(text, text_, kMaxPath)) {}

    PathText& Add(std::u16string_view text)
    {
        length_ += CopyCut(text, text_ + length_, kMaxPath - length_);
        return *this;
    }
    PathText& Add(uint32_t number)
    {
        char digits[10];
        char16_t wide[10];
        const char* const end = std::to_chars(digits, std::end(digits), number).ptr;
        return Add({wide, size_t(std::copy<const char*>(digits, end, wide) - wide)});
    }

    std::u16string_view View() const { return {text_, size_t(length_)}; }
    const char16_t* Text() const { return text_; }

private:
    char16_t text_[kMaxPath];
    int32_t length_;
};

} // namespace vx
