#include "platform/locale_data.h"

#include <cstdio>
#include <iterator>
#include <string_view>
#include <unicode/udat.h>
#include <unicode/ulocdata.h>
#include <unicode/unum.h>

namespace vxplatform {
namespace {

// The digits that callers format are 0 to 9, so the separators and signs of those are the right ones,
// whatever digits the locale's readers prefer.
constexpr char kAsciiDigits[] = "@numbers=latn";

void Store(std::u16string_view text, char16_t (&symbol)[kSymbolRoom])
{
    if (text.size() < kSymbolRoom)
        symbol[text.copy(symbol, kSymbolRoom - 1)] = u'\0';
}

void ReadSymbol(const UNumberFormat* format, UNumberFormatSymbol which, char16_t (&symbol)[kSymbolRoom])
{
    char16_t text[32];
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = unum_getSymbol(format, which, text, int32_t(std::size(text)), &status);
    if (U_SUCCESS(status) && length > 0 && size_t(length) < std::size(text))
        Store({text, size_t(length)}, symbol);
}

// Where the sign stands is in the affixes of a negative number: one of the two holds it, and perhaps
// a blank between sign and number.
UINT NegativeOrder(const UNumberFormat* format)
{
    char16_t prefix[32], suffix[32];
    UErrorCode status = U_ZERO_ERROR;
    const int32_t before =
        unum_getTextAttribute(format, UNUM_NEGATIVE_PREFIX, prefix, int32_t(std::size(prefix)), &status);
    const int32_t behind =
        unum_getTextAttribute(format, UNUM_NEGATIVE_SUFFIX, suffix, int32_t(std::size(suffix)), &status);
    if (U_FAILURE(status))
        return 1;
    if (before > 0 && prefix[0] == u'(')
        return 0;
    if (before > 0)
        return prefix[before - 1] == u' ' || prefix[before - 1] == u'\u00A0' ? 2 : 1;
    if (behind > 0)
        return suffix[0] == u' ' || suffix[0] == u'\u00A0' ? 4 : 3;
    return 1;
}

UINT Grouping(const UNumberFormat* format)
{
    const UINT first = UINT(unum_getAttribute(format, UNUM_GROUPING_SIZE));
    const UINT others = UINT(unum_getAttribute(format, UNUM_SECONDARY_GROUPING_SIZE));
    if (first > 9 || others > 9)
        return LocaleFacts().grouping;
    return others == 0 || others == first ? first : first * 10 + others;
}

void ReadNumberFacts(LocaleFacts& facts)
{
    char id[kIdRoom + sizeof(kAsciiDigits)];
    std::snprintf(id, sizeof(id), "%s%s", facts.id, kAsciiDigits);
    UErrorCode status = U_ZERO_ERROR;
    UNumberFormat* format = unum_open(UNUM_DECIMAL, nullptr, 0, id, nullptr, &status);
    if (U_FAILURE(status))
        return;
    ReadSymbol(format, UNUM_DECIMAL_SEPARATOR_SYMBOL, facts.decimal);
    ReadSymbol(format, UNUM_GROUPING_SEPARATOR_SYMBOL, facts.thousands);
    ReadSymbol(format, UNUM_MINUS_SIGN_SYMBOL, facts.negative);
    ReadSymbol(format, UNUM_PLUS_SIGN_SYMBOL, facts.positive);
    facts.grouping = Grouping(format);
    facts.leadingZero = unum_getAttribute(format, UNUM_MIN_INTEGER_DIGITS) > 0;
    facts.negativeOrder = NegativeOrder(format);
    unum_close(format);
}

bool IsPatternLetter(char16_t c)
{
    return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
}

// The mark between the first field of a date or time pattern and the next one: "." of "d. M. y".
// Blanks and directional marks are not it, and words are none (the 'h' of "HH 'h' mm").
char16_t SeparatorOfPattern(std::u16string_view pattern, char16_t otherwise)
{
    size_t i = 0;
    while (i < pattern.size() && !IsPatternLetter(pattern[i]))
        ++i;
    for (const char16_t field = i < pattern.size() ? pattern[i] : u'\0';
         i < pattern.size() && pattern[i] == field;)
        ++i;
    for (; i < pattern.size() && !IsPatternLetter(pattern[i]) && pattern[i] != u'\''; ++i)
        if (pattern[i] > u' ' && pattern[i] < 0x7F)
            return pattern[i];
    return otherwise;
}

void ReadSeparator(const char* id, UDateFormatStyle time, UDateFormatStyle date,
                   char16_t (&symbol)[kSymbolRoom])
{
    char16_t pattern[64];
    UErrorCode status = U_ZERO_ERROR;
    UDateFormat* format = udat_open(time, date, id, u"UTC", 3, nullptr, 0, &status);
    if (U_FAILURE(status))
        return;
    const int32_t length = udat_toPattern(format, false, pattern, int32_t(std::size(pattern)), &status);
    udat_close(format);
    if (U_SUCCESS(status) && size_t(length) <= std::size(pattern))
        symbol[0] = SeparatorOfPattern({pattern, size_t(length)}, symbol[0]), symbol[1] = u'\0';
}

} // namespace

void ReadFacts(LocaleFacts& facts)
{
    ReadNumberFacts(facts);
    ReadSeparator(facts.id, UDAT_NONE, UDAT_SHORT, facts.date);
    ReadSeparator(facts.id, UDAT_SHORT, UDAT_NONE, facts.time);
    UErrorCode status = U_ZERO_ERROR;
    const UMeasurementSystem measure = ulocdata_getMeasurementSystem(facts.id, &status);
    if (U_SUCCESS(status))
        facts.measure = measure == UMS_US;
}

} // namespace vxplatform
