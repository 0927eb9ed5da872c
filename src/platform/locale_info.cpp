#include "platform/locale_data.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <unicode/uloc.h>

namespace vxplatform {
namespace {

constexpr DWORD kTypeMask = 0x0000FFFF;
constexpr DWORD kKnownFlags = LOCALE_RETURN_NUMBER | LOCALE_USE_CP_ACP | LOCALE_NOUSEROVERRIDE;

// A value on its way to the caller: a text, or a number that becomes one.
struct Value
{
    char16_t text[160] = {};
    size_t length = 0;
    bool isNumber = false;
    DWORD number = 0;

    void Set(std::u16string_view from) { length = from.copy(text, std::size(text) - 1); }
    void SetAscii(const char* from)
    {
        length = std::min(std::strlen(from), std::size(text) - 1);
        std::copy_n(from, length, text);
    }
    void SetNumber(DWORD value, const char* format = "%u")
    {
        char digits[12];
        std::snprintf(digits, sizeof(digits), format, unsigned(value));
        SetAscii(digits);
        isNumber = true;
        number = value;
    }
};

using DisplayPart = int32_t (*)(const char*, const char*, UChar*, int32_t, UErrorCode*);
void SetDisplayName(Value& value, DisplayPart read, const char* id, const char* inLanguage)
{
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = read(id, inLanguage, value.text, int32_t(std::size(value.text)) - 1, &status);
    value.length = U_SUCCESS(status) ? std::min(size_t(length), std::size(value.text) - 1) : 0;
}

void SetPart(Value& value, int32_t (*read)(const char*, char*, int32_t, UErrorCode*), const char* id)
{
    char part[kIdRoom] = "";
    UErrorCode status = U_ZERO_ERROR;
    read(id, part, sizeof(part), &status);
    value.SetAscii(U_SUCCESS(status) ? part : "");
}

void SetName(Value& value, const char* id)
{
    char tag[LOCALE_NAME_MAX_LENGTH] = "";
    UErrorCode status = U_ZERO_ERROR;
    if (*id)
        uloc_toLanguageTag(id, tag, sizeof(tag), false, &status);
    value.SetAscii(U_SUCCESS(status) ? tag : "");
}

// 3;0 for 3, 3;2;0 for 32, 3 for 30.
void SetGrouping(Value& value, UINT grouping)
{
    char digits[12], text[32];
    const int count = std::snprintf(digits, sizeof(digits), "%u", unsigned(grouping));
    int length = 0;
    for (int i = 0; i < count && digits[i] != '0'; ++i) {
        text[length++] = digits[i];
        text[length++] = ';';
    }
    text[length++] = '0';
    text[length] = '\0';
    value.SetAscii(text);
}

void SetAbbreviation(Value& value, LCID lcid, const LocaleFacts& facts)
{
    const char16_t* letters = LanguageAbbreviation(lcid);
    if (!letters)
        letters = LanguageAbbreviation(facts.lcid);
    if (letters)
        return value.Set(letters);
    value.SetAscii(uloc_getISO3Language(facts.id));
    for (size_t i = 0; i < value.length; ++i)
        value.text[i] = char16_t(value.text[i] - u'a' + u'A');
}

void SetDialingCode(Value& value, const char* id)
{
    char country[kIdRoom] = "";
    UErrorCode status = U_ZERO_ERROR;
    uloc_getCountry(id, country, sizeof(country), &status);
    value.SetNumber(*id ? DialingCode(country) : 1);
}

bool SetNumberValue(Value& value, DWORD type, LCID lcid, const LocaleFacts& facts)
{
    switch (type) {
    case LOCALE_ILANGUAGE:
        return value.SetNumber(lcid & 0xFFFF, "%04x"), true;
    case LOCALE_ICOUNTRY:
        return SetDialingCode(value, facts.id), true;
    case LOCALE_IMEASURE:
        return value.SetNumber(facts.measure), true;
    case LOCALE_IDIGITS:
        return value.SetNumber(kLocaleDecimals), true;
    case LOCALE_ILZERO:
        return value.SetNumber(facts.leadingZero), true;
    case LOCALE_INEGNUMBER:
        return value.SetNumber(facts.negativeOrder), true;
    default:
        return false;
    }
}

bool SetSymbolValue(Value& value, DWORD type, const LocaleFacts& facts)
{
    switch (type) {
    case LOCALE_SDECIMAL:
        return value.Set(facts.decimal), true;
    case LOCALE_STHOUSAND:
        return value.Set(facts.thousands), true;
    case LOCALE_SGROUPING:
        return SetGrouping(value, facts.grouping), true;
    case LOCALE_SPOSITIVESIGN:
        return value.Set(facts.positive), true;
    case LOCALE_SNEGATIVESIGN:
        return value.Set(facts.negative), true;
    case LOCALE_SDATE:
        return value.Set(facts.date), true;
    case LOCALE_STIME:
        return value.Set(facts.time), true;
    case LOCALE_SLIST: // CLDR has none: a list of numbers must not use the decimal separator
        return value.Set(facts.decimal[0] == u',' ? u";" : u","), true;
    default:
        return false;
    }
}

bool SetNameValue(Value& value, DWORD type, LCID lcid, const LocaleFacts& facts)
{
    const char* id = facts.id;
    switch (type) {
    case LOCALE_SLANGUAGE:
        return SetDisplayName(value, uloc_getDisplayName, id, UserFacts().id), true;
    case LOCALE_SENGLANGUAGE:
        return SetDisplayName(value, uloc_getDisplayLanguage, id, "en"), true;
    case LOCALE_SNATIVELANGNAME:
        return SetDisplayName(value, uloc_getDisplayLanguage, id, id), true;
    case LOCALE_SCOUNTRY:
        return SetDisplayName(value, uloc_getDisplayCountry, id, UserFacts().id), true;
    case LOCALE_SENGCOUNTRY:
        return SetDisplayName(value, uloc_getDisplayCountry, id, "en"), true;
    case LOCALE_SNATIVECTRYNAME:
        return SetDisplayName(value, uloc_getDisplayCountry, id, id), true;
    case LOCALE_SABBREVLANGNAME:
        return SetAbbreviation(value, lcid, facts), true;
    case LOCALE_SABBREVCTRYNAME:
        return value.SetAscii(uloc_getISO3Country(id)), true;
    case LOCALE_SISO639LANGNAME:
        return SetPart(value, uloc_getLanguage, id), true;
    case LOCALE_SISO3166CTRYNAME:
        return SetPart(value, uloc_getCountry, id), true;
    case LOCALE_SNAME:
        return SetName(value, id), true;
    default:
        return false;
    }
}

int Deliver(const void* value, size_t bytes, WCHAR* data, int dataChars)
{
    const int chars = int(bytes / sizeof(WCHAR));
    if (dataChars == 0)
        return chars;
    if (dataChars < chars)
        return Fail(ERROR_INSUFFICIENT_BUFFER);
    std::memcpy(data, value, bytes);
    return chars;
}

} // namespace
} // namespace vxplatform

using namespace vxplatform;

int GetLocaleInfoW(LCID locale, LCTYPE type, WCHAR* data, int dataChars)
{
    const LocaleFacts* facts = FactsOf(locale);
    if (!facts || dataChars < 0 || (dataChars > 0 && !data))
        return Fail(ERROR_INVALID_PARAMETER);
    const LCID lcid = MeansUserDefault(locale) ? facts->lcid : locale;
    const DWORD plainType = type & kTypeMask;
    Value value;
    if ((type & ~kTypeMask & ~kKnownFlags) != 0 ||
        (!SetNumberValue(value, plainType, lcid, *facts) && !SetSymbolValue(value, plainType, *facts) &&
         !SetNameValue(value, plainType, lcid, *facts)))
        return Fail(ERROR_INVALID_FLAGS);
    if (!(type & LOCALE_RETURN_NUMBER))
        return Deliver(value.text, (value.length + 1) * sizeof(WCHAR), data, dataChars);
    if (!value.isNumber)
        return Fail(ERROR_INVALID_FLAGS);
    return Deliver(&value.number, sizeof(value.number), data, dataChars);
}

int LCIDToLocaleName(LCID locale, WCHAR* name, int nameChars, DWORD flags)
{
    if (flags != 0)
        return Fail(ERROR_INVALID_FLAGS);
    return GetLocaleInfoW(locale, LOCALE_SNAME, name, nameChars);
}
