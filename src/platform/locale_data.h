// What the files of the locale topic share: the facts of a locale, looked up by LCID.
#pragma once

#include "vx/platform/lasterror.h"
#include "vx/platform/locale.h"

#include <cstddef>
#include <string_view>

namespace vxplatform {

constexpr size_t kIdRoom = 64; // of an ICU locale id, terminator included
constexpr size_t kSymbolRoom = 8;
constexpr UINT kLocaleDecimals = 2; // CLDR has no number of decimals for a plain number

// The values that formatting needs, read from ICU once for each locale. A record never changes after
// it was published and is never freed, so a pointer to it may be kept.
struct LocaleFacts
{
    char id[kIdRoom] = "en_US"; // as ICU writes it; empty for the invariant locale
    LCID lcid = 0x0409;
    char16_t decimal[kSymbolRoom] = u".";
    char16_t thousands[kSymbolRoom] = u",";
    char16_t negative[kSymbolRoom] = u"-";
    char16_t positive[kSymbolRoom] = u"+";
    char16_t date[kSymbolRoom] = u"/";
    char16_t time[kSymbolRoom] = u":";
    UINT grouping = 3; // as in NUMBERFMTW
    UINT leadingZero = 1;
    UINT negativeOrder = 1;
    UINT measure = 1;
    const LocaleFacts* next = nullptr;
};

// The user's locale; reads the environment the first time.
const LocaleFacts& UserFacts();

bool MeansUserDefault(LCID lcid);

// Null for an unknown LCID, and without memory.
const LocaleFacts* FactsOf(LCID lcid);

// Fills all but id, lcid and next. What ICU does not tell stays as it is.
void ReadFacts(LocaleFacts& facts);

// A locale id with a country; empty where the LCID is unknown. id has kIdRoom characters.
bool IdOfLcid(LCID lcid, char* id);
// From a BCP 47 or POSIX name (de-DE, de_DE.UTF-8). False where the language is unknown.
bool IdOfName(std::string_view name, char* id);
// LOCALE_CUSTOM_UNSPECIFIED where that language in that country has none.
LCID LcidOfId(const char* id);
// The LCID of the same language in its most usual country, where the id has none of its own.
LCID NearestLcidOfId(const char* id);

// The result of a call that fails with that code.
inline int Fail(DWORD code)
{
    SetLastError(code);
    return 0;
}

// Telephone code of an ISO 3166 country, 0 where it has none.
UINT DialingCode(std::string_view country);
// Three letters, as ENU; null where ISO 639-2 in capitals is right.
const char16_t* LanguageAbbreviation(LCID lcid);

} // namespace vxplatform
