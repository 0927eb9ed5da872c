#include "vxtool/unicode.h"

#include "vxtool/failure.h"

#include <algorithm>
#include <cstdint>

namespace vxtool {
namespace {

constexpr uint32_t kReplacement = 0xFFFD;

bool IsSurrogate(uint32_t c)
{
    return c >= 0xD800 && c <= 0xDFFF;
}

// The least character of a sequence of 1, 2, 3 and 4 bytes: a smaller one is too long a spelling.
constexpr uint32_t kLeast[] = {0, 0x80, 0x800, 0x10000};

// How many bytes follow a first byte; -1 for one that begins no sequence.
int Followers(uint8_t first)
{
    return first < 0x80 ? 0 : first < 0xC2 ? -1 : first < 0xE0 ? 1 : first < 0xF0 ? 2 : first < 0xF5 ? 3 : -1;
}

// Takes a character off the front; false where there is none.
bool TakeUtf8(std::string_view& text, uint32_t& c)
{
    const int followers = Followers(uint8_t(text[0]));
    if (followers < 0 || text.size() <= size_t(followers))
        return false;
    c = followers == 0 ? uint8_t(text[0]) : uint8_t(text[0]) & (0x3Fu >> followers);
    for (int i = 1; i <= followers; ++i) {
        const uint8_t byte = uint8_t(text[size_t(i)]);
        if (byte >> 6 != 2)
            return false;
        c = c << 6 | (byte & 0x3F);
    }
    text.remove_prefix(size_t(followers) + 1);
    return c >= kLeast[followers] && c <= 0x10FFFF && !IsSurrogate(c);
}

void PutUtf16(std::u16string& text, uint32_t c)
{
    if (c >= 0x10000) {
        text += char16_t(0xD7C0 + (c >> 10));
        c = 0xDC00 | (c & 0x3FF);
    }
    text += char16_t(c);
}

uint32_t TakeUtf16(std::u16string_view& text)
{
    const uint32_t first = text[0];
    text.remove_prefix(1);
    if (!IsSurrogate(first))
        return first;
    if (first >= 0xDC00 || text.empty() || text[0] >> 10 != 0xDC00 >> 10)
        return kReplacement;
    const uint32_t second = text[0];
    text.remove_prefix(1);
    return 0x10000 + ((first & 0x3FF) << 10) + (second & 0x3FF);
}

void PutUtf8(std::string& text, uint32_t c)
{
    const int followers = c < 0x80 ? 0 : c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
    constexpr uint32_t kMarks[] = {0, 0xC0, 0xE0, 0xF0};
    text += char(kMarks[followers] | c >> (6 * followers));
    for (int i = followers - 1; i >= 0; --i)
        text += char(0x80 | (c >> (6 * i) & 0x3F));
}

std::string Padding(const std::string& text, size_t width)
{
    const auto beginsCharacter = [](char byte) { return uint8_t(byte) >> 6 != 2; };
    const size_t shown = size_t(std::ranges::count_if(text, beginsCharacter));
    return std::string(width > shown ? width - shown : 0, ' ');
}

} // namespace

std::u16string Utf16Of(std::string_view text)
{
    std::u16string wide;
    for (std::string_view rest = text; !rest.empty();) {
        uint32_t c = 0;
        if (!TakeUtf8(rest, c))
            FailArgument("'", text, "' is not UTF-8");
        PutUtf16(wide, c);
    }
    return wide;
}

std::string Utf8Of(std::u16string_view text)
{
    std::string narrow;
    while (!text.empty())
        PutUtf8(narrow, TakeUtf16(text));
    return narrow;
}

std::string PaddedLeft(const std::string& text, size_t width)
{
    return Padding(text, width) + text;
}

std::string PaddedRight(const std::string& text, size_t width)
{
    return text + Padding(text, width);
}

} // namespace vxtool
