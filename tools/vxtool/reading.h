// Values that a command reads from a text of their own, rather than from an option.
#pragma once

#include <charconv>
#include <string_view>

namespace vxtool {

// Fails with the text and a caret under the character (by its index) where reading stopped. `what` is
// what the text should have been, as "a whole number".
[[noreturn]] void FailReading(std::string_view what, std::u16string_view text, size_t stop);
[[noreturn]] void FailReading(std::string_view what, std::string_view text, size_t stop);

// A number as programs write it: no blanks, no grouping, a decimal point.
template <class T>
T ReadPlain(std::string_view what, std::string_view text)
{
    T value{};
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ptr != end)
        FailReading(what, text, size_t(result.ptr - text.data()));
    // Out of range, reading used the text up; an empty one gave nothing to use.
    if (result.ec != std::errc())
        FailReading(what, text, 0);
    return value;
}

// Whether all that stands behind `stop` is white space.
bool OnlySpaceBehind(std::u16string_view text, size_t stop);
bool HasDigit(std::u16string_view text);

} // namespace vxtool
