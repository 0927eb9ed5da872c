#include "platform/locale_data.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <unicode/uloc.h>

namespace vxplatform {
namespace {

constexpr unsigned kLastCountrySublanguage = 0x18; // those above name a script without a country

unsigned Sublanguage(LCID lcid)
{
    return (lcid & 0xFFFF) >> 10;
}

bool HasCountry(LCID lcid)
{
    return Sublanguage(lcid) >= 1 && Sublanguage(lcid) <= kLastCountrySublanguage;
}

// An id that was cut is no id: U_STRING_NOT_TERMINATED_WARNING is a failure here.
bool IsWhole(UErrorCode status)
{
    return U_SUCCESS(status) && status != U_STRING_NOT_TERMINATED_WARNING;
}

bool AddLikelySubtags(const char* id, char* full)
{
    UErrorCode status = U_ZERO_ERROR;
    uloc_addLikelySubtags(id, full, kIdRoom, &status);
    return IsWhole(status);
}

// Part is one of ICU's readers of an id's parts.
using ReadPart = int32_t (*)(const char*, char*, int32_t, UErrorCode*);
bool Part(ReadPart read, const char* id, char* part)
{
    UErrorCode status = U_ZERO_ERROR;
    return read(id, part, kIdRoom, &status) > 0 && IsWhole(status);
}

// Brings an id to the form by which facts are looked up: language and country, the script only where
// the two do not imply it (de to de_DE, zh_Hant_TW to zh_TW, sr_Latn_RS stays); no keywords.
bool MakeCanonical(char* id)
{
    char base[kIdRoom], full[kIdRoom], part[kIdRoom], shortId[kIdRoom], shortFull[kIdRoom];
    if (!Part(uloc_getBaseName, id, base) || !AddLikelySubtags(base, full) ||
        !Part(uloc_getLanguage, full, shortId) || !Part(uloc_getCountry, full, part) ||
        std::strlen(shortId) + 1 + std::strlen(part) >= kIdRoom)
        return false;
    std::strcat(shortId, "_");
    std::strcat(shortId, part);
    const bool implied = AddLikelySubtags(shortId, shortFull) && std::strcmp(shortFull, full) == 0;
    std::strcpy(id, implied ? shortId : full);
    return true;
}

// Everything from the first of these on is not the name: de_DE.UTF-8@euro.
std::string_view WithoutPosixSuffix(std::string_view name)
{
    return name.substr(0, std::min(name.size(), name.find_first_of(".@")));
}

struct Locales
{
    std::atomic<const LocaleFacts*> current{nullptr}; // the user's; null until it was read
    std::mutex growing;                               // of the list below
    std::atomic<const LocaleFacts*> known{nullptr};   // every locale used so far, the newest first
};
Locales g_locales;
const LocaleFacts kEnglish;

const LocaleFacts* FindKnown(const char* id)
{
    for (const LocaleFacts* facts = g_locales.known; facts; facts = facts->next)
        if (std::strcmp(facts->id, id) == 0)
            return facts;
    return nullptr;
}

// Null without memory.
const LocaleFacts* FactsOfId(const char* id)
{
    if (const LocaleFacts* known = FindKnown(id))
        return known;
    const std::lock_guard lock(g_locales.growing);
    if (const LocaleFacts* known = FindKnown(id))
        return known;
    LocaleFacts* facts = new (std::nothrow) LocaleFacts;
    if (!facts)
        return nullptr;
    std::strcpy(facts->id, id);
    facts->lcid = *id ? NearestLcidOfId(id) : LOCALE_INVARIANT;
    ReadFacts(*facts);
    facts->next = g_locales.known;
    g_locales.known = facts;
    return facts;
}

const LocaleFacts& FactsFromEnvironment()
{
    char id[kIdRoom];
    bool found = false;
    for (const char* variable : {"VX_LOCALE", "LC_ALL", "LC_NUMERIC", "LANG"}) {
        const char* name = std::getenv(variable);
        if (!name || !*name)
            continue;
        found = IdOfName(name, id);
        break; // the first that is set decides, good or bad
    }
    const LocaleFacts* facts = FactsOfId(found ? id : kEnglish.id);
    return facts ? *facts : kEnglish;
}

thread_local LCID t_locale = LOCALE_NEUTRAL;

} // namespace

bool MeansUserDefault(LCID lcid)
{
    return lcid == LOCALE_NEUTRAL || lcid == LOCALE_USER_DEFAULT || lcid == LOCALE_SYSTEM_DEFAULT;
}

bool IdOfName(std::string_view name, char* id)
{
    name = WithoutPosixSuffix(name);
    if (name == "C" || name == "POSIX")
        name = "en-US";
    char tag[kIdRoom];
    if (name.empty() || name.size() >= sizeof(tag))
        return false;
    *std::replace_copy(name.begin(), name.end(), tag, '_', '-') = '\0';
    UErrorCode status = U_ZERO_ERROR;
    int32_t parsed = 0;
    uloc_forLanguageTag(tag, id, kIdRoom, &parsed, &status);
    return IsWhole(status) && size_t(parsed) == name.size() && *uloc_getISO3Language(id) && MakeCanonical(id);
}

bool IdOfLcid(LCID lcid, char* id)
{
    *id = '\0';
    if (lcid == LOCALE_INVARIANT)
        return true;
    UErrorCode status = U_ZERO_ERROR;
    uloc_getLocaleForLCID(lcid, id, kIdRoom, &status);
    char country[kIdRoom];
    // ICU answers a country that it does not know with the language alone.
    const bool known = IsWhole(status) && *uloc_getISO3Language(id) &&
                       (!HasCountry(lcid) || Part(uloc_getCountry, id, country));
    return known && MakeCanonical(id);
}

LCID LcidOfId(const char* id)
{
    const LCID lcid = uloc_getLCID(id);
    if (HasCountry(lcid))
        return lcid;
    char full[kIdRoom]; // sr_RS has an LCID as sr_Cyrl_RS only
    const LCID fullLcid = AddLikelySubtags(id, full) ? uloc_getLCID(full) : 0;
    return HasCountry(fullLcid) ? fullLcid : LOCALE_CUSTOM_UNSPECIFIED;
}

LCID NearestLcidOfId(const char* id)
{
    const LCID lcid = LcidOfId(id);
    char language[kIdRoom];
    if (lcid != LOCALE_CUSTOM_UNSPECIFIED || !Part(uloc_getLanguage, id, language) ||
        !MakeCanonical(language))
        return lcid;
    return LcidOfId(language);
}

const LocaleFacts& UserFacts()
{
    const LocaleFacts* facts = g_locales.current.load(std::memory_order_acquire);
    if (facts)
        return *facts;
    const LocaleFacts& read = FactsFromEnvironment();
    // A locale that was set meanwhile stays.
    return g_locales.current.compare_exchange_strong(facts, &read) ? read : *facts;
}

const LocaleFacts* FactsOf(LCID lcid)
{
    if (MeansUserDefault(lcid))
        return &UserFacts();
    char id[kIdRoom];
    return IdOfLcid(lcid, id) ? FactsOfId(id) : nullptr;
}

} // namespace vxplatform

using namespace vxplatform;

LCID GetUserDefaultLCID()
{
    return UserFacts().lcid;
}

LCID GetSystemDefaultLCID()
{
    return UserFacts().lcid;
}

LANGID GetUserDefaultUILanguage()
{
    return LANGID(UserFacts().lcid);
}

LCID GetThreadLocale()
{
    return MeansUserDefault(t_locale) ? GetUserDefaultLCID() : t_locale;
}

BOOL SetThreadLocale(LCID locale)
{
    if (!FactsOf(locale))
        return Fail(ERROR_INVALID_PARAMETER);
    t_locale = locale;
    return TRUE;
}

LCID LocaleNameToLCID(const WCHAR* name, DWORD flags)
{
    if (flags != 0)
        return Fail(ERROR_INVALID_FLAGS);
    if (!name)
        return GetUserDefaultLCID();
    if (!*name)
        return LOCALE_INVARIANT;
    char ascii[kIdRoom], id[kIdRoom];
    size_t length = 0;
    while (name[length] && name[length] < 0x80 && length < sizeof(ascii)) {
        ascii[length] = char(name[length]);
        ++length;
    }
    if (length == sizeof(ascii) || name[length] || !IdOfName({ascii, length}, id))
        return Fail(ERROR_INVALID_PARAMETER);
    return LcidOfId(id);
}

BOOL VxPlatform_SetUserLocale(const char* name)
{
    char id[kIdRoom];
    const LocaleFacts* facts = nullptr;
    if (!name)
        facts = &FactsFromEnvironment();
    else if (IdOfName(name, id))
        facts = FactsOfId(id);
    if (!facts)
        return Fail(ERROR_INVALID_PARAMETER);
    g_locales.current.store(facts, std::memory_order_release);
    return TRUE;
}
