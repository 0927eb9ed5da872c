#include "kernel/characters.h"
#include "lang/internationals.h"
#include "vx/numbers.h"
#include "vx/platform/lasterror.h"
#include "vx/platform/locale.h"

#include <string>
#include <string_view>

namespace vx {
namespace {

constexpr uint32_t kSignInFront = 1; // of the negative orders

NUMBERFMTW PersonsFormat(uint32_t decimals, uint32_t grouping, const char16_t* decimalSeparator)
{
    const VxInternationals& locale = g_internationals;
    // The platform reads the separators only; its record has no const.
    return {decimals,
            locale.leadingZero,
            grouping,
            const_cast<char16_t*>(decimalSeparator),
            const_cast<char16_t*>(locale.thousandsSeparator),
            kSignInFront};
}

uint32_t CountDecimals(const char16_t* source)
{
    const std::u16string_view text(source);
    const size_t point = text.rfind(u'.');
    return point == text.npos ? 0 : uint32_t(text.size() - point - 1);
}

// Whether the part to be formatted begins here. Zeros in front of other digits are no part of it, a
// zero in front of the point is.
bool BeginsNumber(const char16_t* text)
{
    const char16_t c = *text;
    if (c == u'-' || c == u'.')
        return true;
    return c == u'0' ? text[1] == u'.' : IsDigit(c);
}

// Text for a person has a plain minus sign, whatever sign the locale has.
void MakeSignPlain(char16_t* text)
{
    const std::u16string_view sign(g_internationals.negativeSign, g_internationals.negativeSignLength);
    const std::u16string_view all(text);
    if (sign.empty() || !all.starts_with(sign))
        return;
    text[0] = u'-';
    std::char_traits<char16_t>::move(text + 1, text + sign.size(), all.size() - sign.size() + 1);
}

int32_t Format(const char16_t* source, char16_t* text, int32_t capacity, const NUMBERFMTW& format)
{
    if (capacity < 1)
        return 0;
    int32_t prefix = 0;
    for (; *source && !BeginsNumber(source) && prefix < capacity - 1; ++source)
        text[prefix++] = *source;
    text[prefix] = u'\0';
    if (!*source)
        return prefix;
    if (!BeginsNumber(source))
        return 0; // the room is used up
    char16_t* number = text + prefix;
    const bool written =
        GetNumberFormatW(LOCALE_USER_DEFAULT, 0, source, &format, number, capacity - prefix) != 0;
    if (!written && GetLastError() != ERROR_INSUFFICIENT_BUFFER)
        return prefix; // no number: nothing was written behind the prefix
    MakeSignPlain(number);
    return written ? prefix + int32_t(std::char_traits<char16_t>::length(number)) : 0;
}

} // namespace
} // namespace vx

using vx::g_internationals;

int32_t VxFormatNumber(const char16_t* source, char16_t* text, int32_t capacity)
{
    return vx::Format(source, text, capacity, vx::PersonsFormat(0, g_internationals.grouping, u""));
}

int32_t VxFormatDecimalNumber(const char16_t* source, char16_t* text, int32_t capacity)
{
    const uint32_t decimals = vx::CountDecimals(source);
    return vx::Format(source, text, capacity,
                      vx::PersonsFormat(decimals, 0, g_internationals.decimalSeparator));
}

int32_t VxFormatGroupDecimalNumber(const char16_t* source, char16_t* text, int32_t capacity,
                                   uint32_t decimals)
{
    if (decimals == VXNUM_COUNT_DECIMALS)
        decimals = vx::CountDecimals(source);
    return vx::Format(
        source, text, capacity,
        vx::PersonsFormat(decimals, g_internationals.grouping, g_internationals.decimalSeparator));
}
