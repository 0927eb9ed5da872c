#include "vxtool/reading.h"

#include "vxtool/failure.h"
#include "vxtool/unicode.h"

#include <algorithm>

namespace vxtool {
namespace {

bool IsSecondHalf(char16_t c)
{
    return c >> 10 == 0xDC00 >> 10;
}

// On one line and in columns, whatever the text is.
std::u16string WithoutControls(std::u16string_view text)
{
    std::u16string line(text);
    std::ranges::replace_if(
        line, [](char16_t c) { return c < u' ' || c == 0x7F; }, u' ');
    return line;
}

} // namespace

void FailReading(std::string_view what, std::u16string_view text, size_t stop)
{
    const auto before = text.substr(0, stop);
    const size_t column = stop - size_t(std::ranges::count_if(before, IsSecondHalf));
    FailArgument("this cannot be read as ", what, ":\n  ", Utf8Of(WithoutControls(text)), "\n  ",
                 std::string(column, ' '), "^");
}

void FailReading(std::string_view what, std::string_view text, size_t stop)
{
    FailReading(what, Utf16Of(text), Utf16Of(text.substr(0, stop)).size());
}

bool OnlySpaceBehind(std::u16string_view text, size_t stop)
{
    return text.find_first_not_of(u" \t\n\v\f\r", stop) == text.npos;
}

bool HasDigit(std::u16string_view text)
{
    return text.find_first_of(u"0123456789") != text.npos;
}

} // namespace vxtool
