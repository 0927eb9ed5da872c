// One conversion of the C runtime's formatter, without its locale, its heap and its 32-bit characters.
#include "platform/bounded_text.h"
#include "vx/platform/format.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <string_view>
#include <utility>

namespace vxplatform {
namespace {

enum class Size
{
    Byte,
    Short,
    Long, // 32 bits, and all that changes nothing
    LongLong,
};

struct Conversion
{
    bool left = false, plus = false, blank = false, alternate = false, zeros = false;
    int32_t width = 0;
    int32_t precision = -1; // none
    Size size = Size::Long;
    char16_t letter = 0;
};

bool IsDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

void ParseFlags(const char16_t*& text, Conversion& out)
{
    for (;; ++text) {
        switch (*text) {
        case u'-':
            out.left = true;
            break;
        case u'+':
            out.plus = true;
            break;
        case u' ':
            out.blank = true;
            break;
        case u'#':
            out.alternate = true;
            break;
        case u'0':
            out.zeros = true;
            break;
        default:
            return;
        }
    }
}

// Stops at the largest value.
int32_t ParseCount(const char16_t*& text)
{
    constexpr int64_t kMost = std::numeric_limits<int32_t>::max();
    int64_t count = 0;
    for (; IsDigit(*text); ++text)
        count = std::min(count * 10 + (*text - u'0'), kMost);
    return int32_t(count);
}

struct SizeName
{
    std::u16string_view name;
    Size size;
};
// Longer names before those that they begin with.
constexpr SizeName kSizes[] = {
    {u"I64", Size::LongLong}, {u"I32", Size::Long}, {u"I", Size::LongLong},
    {u"ll", Size::LongLong},  {u"l", Size::Long},   {u"hh", Size::Byte},
    {u"h", Size::Short},      {u"L", Size::Long},   {u"w", Size::Long},
};

void ParseSize(const char16_t*& text, Conversion& out)
{
    const std::u16string_view rest(text);
    for (const SizeName& known : kSizes)
        if (rest.starts_with(known.name)) {
            out.size = known.size;
            text += known.name.size();
            return;
        }
}

bool Takes(VxFormatKind kind, char16_t letter)
{
    constexpr std::u16string_view kLetters[] = {u"diuxXoc", u"eEfgG", u"s"};
    return kLetters[kind].find(letter) != std::u16string_view::npos;
}

bool Parse(const char16_t* text, VxFormatKind kind, Conversion& out)
{
    if (*text++ != u'%')
        return false;
    ParseFlags(text, out);
    out.width = ParseCount(text);
    if (*text == u'.')
        out.precision = ParseCount(++text);
    ParseSize(text, out);
    out.letter = *text;
    return out.letter && text[1] == 0 && Takes(kind, out.letter);
}

// A number's text, in the order in which its parts stand: zeros that C asks for are counted, not
// stored, so that no precision needs room.
struct NumberText
{
    std::string_view prefix; // sign or base
    uint64_t leadingZeros = 0;
    std::string_view digits;
    bool point = false; // a decimal point behind the digits, which have none
    uint64_t trailingZeros = 0;
    std::string_view exponent;

    uint64_t Length() const
    {
        return prefix.size() + leadingZeros + digits.size() + point + trailingZeros + exponent.size();
    }
};

uint64_t Padding(const Conversion& conversion, uint64_t length)
{
    const uint64_t width = uint64_t(conversion.width);
    return width > length ? width - length : 0;
}

void PutNumber(BoundedText& out, const Conversion& conversion, NumberText number, bool mayZero)
{
    uint64_t padding = Padding(conversion, number.Length());
    if (conversion.zeros && !conversion.left && mayZero)
        number.leadingZeros += std::exchange(padding, 0);
    if (!conversion.left)
        out.Fill(u' ', padding);
    out.Put(number.prefix);
    out.Fill(u'0', number.leadingZeros);
    out.Put(number.digits);
    out.Fill(u'.', number.point);
    out.Fill(u'0', number.trailingZeros);
    out.Put(number.exponent);
    if (conversion.left)
        out.Fill(u' ', padding);
}

std::string_view Sign(bool negative, const Conversion& conversion)
{
    return negative ? "-" : conversion.plus ? "+" : conversion.blank ? " " : "";
}

void MakeUpper(char* first, char* last)
{
    std::transform(first, last, first, [](char c) { return c >= 'a' && c <= 'z' ? char(c - 0x20) : c; });
}

uint64_t SignExtended(uint64_t value, Size size)
{
    switch (size) {
    case Size::Byte:
        return uint64_t(int64_t(int8_t(value)));
    case Size::Short:
        return uint64_t(int64_t(int16_t(value)));
    case Size::Long:
        return uint64_t(int64_t(int32_t(value)));
    default:
        return value;
    }
}

uint64_t ZeroExtended(uint64_t value, Size size)
{
    switch (size) {
    case Size::Byte:
        return uint8_t(value);
    case Size::Short:
        return uint16_t(value);
    case Size::Long:
        return uint32_t(value);
    default:
        return value;
    }
}

using IntegerDigits = char[22]; // octal

std::string_view WriteInteger(IntegerDigits& digits, uint64_t value, unsigned base, bool upper)
{
    const char* glyphs = upper ? "0123456789ABCDEF" : "0123456789abcdef";
    char* first = std::end(digits);
    do {
        *--first = glyphs[value % base];
        value /= base;
    } while (value != 0);
    return {first, size_t(std::end(digits) - first)};
}

void PutInteger(BoundedText& out, const Conversion& conversion, uint64_t value)
{
    const char16_t letter = conversion.letter;
    const bool isSigned = letter == u'd' || letter == u'i';
    value = isSigned ? SignExtended(value, conversion.size) : ZeroExtended(value, conversion.size);
    NumberText number;
    if (isSigned) {
        const bool negative = int64_t(value) < 0;
        number.prefix = Sign(negative, conversion);
        if (negative)
            value = 0 - value;
    }
    const bool hexadecimal = letter == u'x' || letter == u'X';
    IntegerDigits digits;
    if (value != 0 || conversion.precision != 0)
        number.digits = WriteInteger(digits, value,
                                     letter == u'o' ? 8
                                     : hexadecimal  ? 16
                                                    : 10,
                                     letter == u'X');
    if (conversion.precision > int64_t(number.digits.size()))
        number.leadingZeros = uint64_t(conversion.precision) - number.digits.size();
    if (conversion.alternate && hexadecimal && value != 0)
        number.prefix = letter == u'x' ? "0x" : "0X";
    if (conversion.alternate && letter == u'o' && number.leadingZeros == 0 && !number.digits.starts_with('0'))
        number.leadingZeros = 1;
    PutNumber(out, conversion, number, conversion.precision < 0);
}

// No double has more decimals than 1074, nor more digits than 767 that are not zeros at an end: the
// digits behind are zeros.
constexpr int32_t kMostDecimals = 1100;
// 309 digits in front of the point, it, and the decimals, which g raises by up to 4
using DoubleText = char[309 + 1 + kMostDecimals + 16];

void SetDigits(NumberText& number, const char* first, const char* last)
{
    const std::string_view all(first, size_t(last - first));
    const size_t exponent = std::min(all.find('e'), all.size());
    number.digits = all.substr(0, exponent);
    number.exponent = all.substr(exponent);
}

void WriteDigits(NumberText& number, DoubleText& text, double value, std::chars_format style,
                 int64_t precision)
{
    const int exact = int(std::min<int64_t>(precision, kMostDecimals + 4));
    SetDigits(number, text, std::to_chars(text, std::end(text), value, style, exact).ptr);
    number.trailingZeros = uint64_t(precision - exact);
}

int ExponentOf(std::string_view exponent)
{
    int value = 0; // "e", a sign, two or three digits
    std::from_chars(exponent.data() + 2, exponent.data() + exponent.size(), value);
    return exponent[1] == '-' ? -value : value;
}

void DropTrailingZeros(NumberText& number)
{
    number.trailingZeros = 0;
    if (number.digits.find('.') == number.digits.npos)
        return;
    while (number.digits.ends_with('0'))
        number.digits.remove_suffix(1);
    if (number.digits.ends_with('.'))
        number.digits.remove_suffix(1);
}

void WriteGeneral(NumberText& number, DoubleText& text, double value, const Conversion& conversion,
                  int64_t precision)
{
    const int64_t significant = std::max<int64_t>(precision, 1);
    WriteDigits(number, text, value, std::chars_format::scientific, significant - 1);
    const int exponent = ExponentOf(number.exponent);
    if (exponent >= -4 && exponent < significant)
        WriteDigits(number, text, value, std::chars_format::fixed, significant - 1 - exponent);
    if (!conversion.alternate)
        DropTrailingZeros(number);
}

void WriteFinite(NumberText& number, DoubleText& text, double value, const Conversion& conversion)
{
    const int64_t precision = conversion.precision < 0 ? 6 : conversion.precision;
    if (conversion.letter == u'f')
        WriteDigits(number, text, value, std::chars_format::fixed, precision);
    else if (conversion.letter == u'e' || conversion.letter == u'E')
        WriteDigits(number, text, value, std::chars_format::scientific, precision);
    else
        WriteGeneral(number, text, value, conversion, precision);
    number.point = conversion.alternate && number.digits.find('.') == number.digits.npos;
}

void PutDouble(BoundedText& out, const Conversion& conversion, double value)
{
    DoubleText text;
    NumberText number;
    const bool finite = std::isfinite(value);
    if (finite) {
        WriteFinite(number, text, std::fabs(value), conversion);
    } else {
        std::memcpy(text, std::isnan(value) ? "nan" : "inf", 3);
        number.digits = {text, 3};
    }
    number.prefix = Sign(std::signbit(value), conversion);
    const std::string_view last = number.exponent.empty() ? number.digits : number.exponent;
    if (conversion.letter == u'E' || conversion.letter == u'G')
        MakeUpper(text, text + (last.data() + last.size() - text));
    PutNumber(out, conversion, number, finite);
}

template <class Char>
void PutPadded(BoundedText& out, const Conversion& conversion, std::basic_string_view<Char> text)
{
    const uint64_t padding = Padding(conversion, text.size());
    if (!conversion.left)
        out.Fill(conversion.zeros ? u'0' : u' ', padding);
    out.Put(text);
    if (conversion.left)
        out.Fill(u' ', padding);
}

template <class Char>
void PutText(BoundedText& out, const Conversion& conversion, const void* pointer)
{
    const Char* text = static_cast<const Char*>(pointer);
    const uint64_t most = conversion.precision < 0 ? UINT64_MAX : uint64_t(conversion.precision);
    size_t length = 0;
    while (text && length < most && text[length])
        ++length;
    PutPadded(out, conversion, std::basic_string_view<Char>(text, length));
}

void PutCharacter(BoundedText& out, const Conversion& conversion, uint64_t value)
{
    const char16_t unit = conversion.size <= Size::Short ? uint8_t(value) : uint16_t(value);
    PutPadded(out, conversion, std::u16string_view(&unit, unit != 0));
}

void PutValue(BoundedText& out, const Conversion& conversion, const VxFormatValue& value)
{
    if (value.kind == VxFormatKind_Double)
        PutDouble(out, conversion, value.as.number);
    else if (value.kind == VxFormatKind_Integer && conversion.letter == u'c')
        PutCharacter(out, conversion, value.as.integer);
    else if (value.kind == VxFormatKind_Integer)
        PutInteger(out, conversion, value.as.integer);
    else if (conversion.size <= Size::Short)
        PutText<char>(out, conversion, value.as.text);
    else
        PutText<char16_t>(out, conversion, value.as.text);
}

} // namespace
} // namespace vxplatform

int64_t VxPlatform_FormatValue(WCHAR* text, SIZE_T capacity, const WCHAR* conversion,
                               const VxFormatValue* value)
{
    vxplatform::Conversion parsed;
    if (!vxplatform::Parse(conversion, value->kind, parsed))
        return -1;
    const SIZE_T room = capacity > 0 ? capacity - 1 : 0;
    vxplatform::BoundedText out(text, room);
    vxplatform::PutValue(out, parsed, *value);
    if (capacity > 0)
        text[std::min<SIZE_T>(out.Length(), room)] = u'\0';
    return int64_t(out.Length());
}
