#include "kernel/characters.h"
#include "lang/internationals.h"
#include "vx/numbers.h"

#include <charconv>
#include <limits>
#include <string_view>
#include <type_traits>

namespace vx {
namespace {

constexpr int kTokenChars = 63;

// A number cut out of a text: an optional '-', then digits and points.
struct NumberToken
{
    char text[kTokenChars];
    int length = 0;
    const char16_t* end = nullptr; // in the source: the first character that is no part of the number

    void Keep(char c)
    {
        if (length < kTokenChars)
            text[length++] = c;
    }
    std::string_view View() const { return {text, size_t(length)}; }
};

struct Separators
{
    std::u16string_view sign, thousands, decimal;
};

Separators PlainSeparators()
{
    return {u"-", u",", u"."};
}

Separators LocaleSeparators()
{
    const VxInternationals& r = g_internationals;
    return {{r.hyphen, r.hyphenLength},
            {r.thousandsSeparator, r.thousandsSeparatorLength},
            {r.decimalSeparator, r.decimalSeparatorLength}};
}

// Steps over a separator; an empty one is nowhere.
bool Skip(const char16_t*& text, std::u16string_view separator)
{
    if (separator.empty())
        return false;
    for (size_t i = 0; i < separator.size(); ++i)
        if (text[i] != separator[i]) // the terminator differs too
            return false;
    text += separator.size();
    return true;
}

NumberToken ExtractNumberToken(const char16_t* text, const Separators& separators)
{
    NumberToken token;
    while (IsSpace(*text))
        ++text;
    if (Skip(text, separators.sign))
        token.Keep('-');
    for (;;) {
        if (IsDigit(*text))
            token.Keep(char(*text++));
        else if (Skip(text, separators.thousands))
            continue;
        else if (Skip(text, separators.decimal))
            token.Keep('.');
        else
            break;
    }
    token.end = text;
    return token;
}

template <class T>
T UnsignedValue(std::string_view token)
{
    T value = 0;
    for (const char c : token) {
        if (!IsDigit(char16_t(c)))
            break;
        value = T(value * 10 + T(c - '0'));
    }
    return value;
}

template <class T>
T SignedValue(std::string_view token)
{
    using Unsigned = std::make_unsigned_t<T>;
    const bool negative = token.starts_with('-');
    token.remove_prefix(negative);
    const Unsigned limit = Unsigned(std::numeric_limits<T>::max()) + negative;
    Unsigned magnitude = 0;
    for (const char c : token) {
        if (!IsDigit(char16_t(c)))
            break;
        const Unsigned digit = Unsigned(c - '0');
        if (magnitude > (limit - digit) / 10) {
            magnitude = limit;
            break;
        }
        magnitude = magnitude * 10 + digit;
    }
    return T(negative ? Unsigned(0) - magnitude : magnitude);
}

double DoubleValue(std::string_view token)
{
    double value = 0.0;
    std::from_chars(token.data(), token.data() + token.size(), value, std::chars_format::fixed);
    return value;
}

// What a token function found: the value, and where it stopped.
template <class T>
struct Reading
{
    T value;
    const char16_t* end;
};

template <class T>
Reading<T> ReadInteger(const char16_t* text)
{
    const NumberToken token = ExtractNumberToken(text, LocaleSeparators());
    if constexpr (std::is_signed_v<T>)
        return {SignedValue<T>(token.View()), token.end};
    else
        return {UnsignedValue<T>(token.View()), token.end};
}

Reading<double> ReadDouble(const char16_t* text, int32_t localised)
{
    const NumberToken token = ExtractNumberToken(text, localised ? LocaleSeparators() : PlainSeparators());
    return {DoubleValue(token.View()), token.end};
}

// -1 for what is no hexadecimal digit.
int HexDigit(char16_t c)
{
    if (IsDigit(c))
        return c - u'0';
    const char16_t lower = c | 0x20;
    return lower >= u'a' && lower <= u'f' ? lower - u'a' + 10 : -1;
}

template <class T>
Reading<T> ReadHex(const char16_t* text)
{
    while (IsSpace(*text))
        ++text;
    if (text[0] == u'0' && (text[1] == u'x' || text[1] == u'X'))
        text += 2;
    T value = 0;
    for (int digit; (digit = HexDigit(*text)) >= 0; ++text)
        value = T(value << 4 | T(digit));
    return {value, text};
}

template <class T>
T Deliver(const Reading<T>& reading, const char16_t** outEnd)
{
    if (outEnd)
        *outEnd = reading.end;
    return reading.value;
}

// A zero with something behind it is taken for text that is no number.
template <class T>
T DeliverLimited(Reading<T> reading, std::type_identity_t<T> defaultValue, std::type_identity_t<T> minimum,
                 std::type_identity_t<T> maximum, const char16_t** outEnd)
{
    if (reading.value == 0 && *reading.end && !IsSpace(*reading.end))
        reading.value = defaultValue;
    const T value = Deliver(reading, outEnd);
    if (value < minimum)
        return minimum;
    return value > maximum ? maximum : value;
}

} // namespace
} // namespace vx

uint32_t VxTextToDWordToken(const char16_t* text, const char16_t** outEnd)
{
    return vx::Deliver(vx::ReadInteger<uint32_t>(text), outEnd);
}

uint32_t VxTextToDWordTokenEx(const char16_t* text, uint32_t defaultValue, uint32_t minimum, uint32_t maximum,
                              const char16_t** outEnd)
{
    return vx::DeliverLimited(vx::ReadInteger<uint32_t>(text), defaultValue, minimum, maximum, outEnd);
}

uint64_t VxTextToDWordLongToken(const char16_t* text, const char16_t** outEnd)
{
    return vx::Deliver(vx::ReadInteger<uint64_t>(text), outEnd);
}

uint64_t VxTextToDWordLongTokenEx(const char16_t* text, uint64_t defaultValue, uint64_t minimum,
                                  uint64_t maximum, const char16_t** outEnd)
{
    return vx::DeliverLimited(vx::ReadInteger<uint64_t>(text), defaultValue, minimum, maximum, outEnd);
}

int32_t VxTextToLongToken(const char16_t* text, const char16_t** outEnd)
{
    return vx::Deliver(vx::ReadInteger<int32_t>(text), outEnd);
}

int32_t VxTextToLongTokenEx(const char16_t* text, int32_t defaultValue, int32_t minimum, int32_t maximum,
                            const char16_t** outEnd)
{
    return vx::DeliverLimited(vx::ReadInteger<int32_t>(text), defaultValue, minimum, maximum, outEnd);
}

int64_t VxTextToLongLongToken(const char16_t* text, const char16_t** outEnd)
{
    return vx::Deliver(vx::ReadInteger<int64_t>(text), outEnd);
}

int64_t VxTextToLongLongTokenEx(const char16_t* text, int64_t defaultValue, int64_t minimum, int64_t maximum,
                                const char16_t** outEnd)
{
    return vx::DeliverLimited(vx::ReadInteger<int64_t>(text), defaultValue, minimum, maximum, outEnd);
}

uint32_t VxHexToDWordToken(const char16_t* text, const char16_t** outEnd)
{
    return vx::Deliver(vx::ReadHex<uint32_t>(text), outEnd);
}

uint32_t VxHexToDWordTokenEx(const char16_t* text, uint32_t defaultValue, uint32_t minimum, uint32_t maximum,
                             const char16_t** outEnd)
{
    return vx::DeliverLimited(vx::ReadHex<uint32_t>(text), defaultValue, minimum, maximum, outEnd);
}

uint64_t VxHexToDWordLongToken(const char16_t* text, const char16_t** outEnd)
{
    return vx::Deliver(vx::ReadHex<uint64_t>(text), outEnd);
}

uint64_t VxHexToDWordLongTokenEx(const char16_t* text, uint64_t defaultValue, uint64_t minimum,
                                 uint64_t maximum, const char16_t** outEnd)
{
    return vx::DeliverLimited(vx::ReadHex<uint64_t>(text), defaultValue, minimum, maximum, outEnd);
}

double VxTextToDoubleToken(const char16_t* text, const char16_t** outEnd, int32_t localised)
{
    return vx::Deliver(vx::ReadDouble(text, localised), outEnd);
}

double VxTextToDoubleTokenEx(const char16_t* text, double defaultValue, double minimum, double maximum,
                             const char16_t** outEnd, int32_t localised)
{
    return vx::DeliverLimited(vx::ReadDouble(text, localised), defaultValue, minimum, maximum, outEnd);
}
