#include "vx/platform/locale.h"

#include "support/locales.h"
#include "support/random.h"
#include "vx/platform/lasterror.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string>
#include <thread>
#include <vector>

using namespace vxtest;

namespace {

std::u16string Info(LCID lcid, LCTYPE type)
{
    char16_t text[128];
    const int chars = GetLocaleInfoW(lcid, type, text, 128);
    return chars > 0 ? std::u16string(text, size_t(chars) - 1) : u"failed";
}

std::u16string Name(LCID lcid)
{
    char16_t name[LOCALE_NAME_MAX_LENGTH];
    return LCIDToLocaleName(lcid, name, LOCALE_NAME_MAX_LENGTH, 0) ? name : u"failed";
}

NUMBERFMTW Format(UINT decimals, UINT leadingZero, UINT grouping, UINT order)
{
    static char16_t point[] = u".", comma[] = u",";
    return {decimals, leadingZero, grouping, point, comma, order};
}

std::u16string Formatted(const std::u16string& value, const NUMBERFMTW& format, LCID lcid = 0x0409)
{
    char16_t text[256];
    const int chars = GetNumberFormatW(lcid, 0, value.c_str(), &format, text, 256);
    EXPECT_EQ(chars, GetNumberFormatW(lcid, 0, value.c_str(), &format, nullptr, 0));
    return chars > 0 ? std::u16string(text, size_t(chars) - 1) : u"failed";
}

// The user's locale as the environment gives it, with only these variables set.
struct Environment
{
    explicit Environment(std::vector<std::pair<const char*, const char*>> variables)
    {
        for (const char* name : kNames)
            old_.push_back(getenv(name) ? std::optional<std::string>(getenv(name)) : std::nullopt);
        for (const char* name : kNames)
            unsetenv(name);
        for (const auto& [name, value] : variables)
            setenv(name, value, 1);
        VxPlatform_SetUserLocale(nullptr);
    }
    ~Environment()
    {
        for (size_t i = 0; i < std::size(kNames); ++i)
            old_[i] ? setenv(kNames[i], old_[i]->c_str(), 1) : unsetenv(kNames[i]);
        VxPlatform_SetUserLocale(nullptr);
    }
    static constexpr const char* kNames[] = {"VX_LOCALE", "LC_ALL", "LC_NUMERIC", "LANG"};
    std::vector<std::optional<std::string>> old_;
};

} // namespace

TEST(Locale, TheEnvironmentNamesTheUsersLocale)
{
    const struct
    {
        std::vector<std::pair<const char*, const char*>> variables;
        LCID want;
    } cases[] = {
        {{{"VX_LOCALE", "de-DE"}, {"LC_ALL", "fr_FR.UTF-8"}}, 0x0407},
        {{{"VX_LOCALE", ""}, {"LC_ALL", "fr_FR.UTF-8"}, {"LANG", "pl_PL"}}, 0x040C},
        {{{"LC_NUMERIC", "pl_PL@euro"}, {"LANG", "ja_JP"}}, 0x0415},
        {{{"LANG", "ja_JP.eucJP"}}, 0x0411},
        {{{"LC_ALL", "C.UTF-8"}, {"LANG", "de_DE"}}, 0x0409},
        {{{"VX_LOCALE", "xx-YY"}, {"LANG", "de_DE"}}, 0x0409},
        {{{"VX_LOCALE", "de-DE-u-co-phonebk"}}, 0x0407},
    };
    for (const auto& c : cases) {
        const Environment environment(c.variables);
        EXPECT_EQ(GetUserDefaultLCID(), c.want) << &c - cases;
        EXPECT_EQ(GetSystemDefaultLCID(), c.want) << &c - cases;
        EXPECT_EQ(GetUserDefaultUILanguage(), c.want) << &c - cases;
    }
}

TEST(Locale, NamesAndLcidsGoBothWays)
{
    const struct
    {
        LCID lcid;
        const char16_t* name;
    } cases[] = {{0x0409, u"en-US"}, {0x100C, u"fr-CH"}, {0x0404, u"zh-TW"},      {0x0C0A, u"es-ES"},
                 {0x0414, u"nb-NO"}, {0x281A, u"sr-RS"}, {0x241A, u"sr-Latn-RS"}, {0x007F, u""}};
    for (const auto& c : cases) {
        EXPECT_EQ(Name(c.lcid), c.name) << std::hex << c.lcid;
        EXPECT_EQ(LocaleNameToLCID(c.name, 0), c.lcid) << std::hex << c.lcid;
    }
    // one way only
    EXPECT_EQ(LocaleNameToLCID(u"zh-Hant-TW", 0), 0x0404u);
    EXPECT_EQ(LocaleNameToLCID(u"de", 0), 0x0407u);
    EXPECT_EQ(LocaleNameToLCID(u"en-DE", 0), LOCALE_CUSTOM_UNSPECIFIED);
    EXPECT_EQ(Name(0x7C04), u"zh-TW");
    EXPECT_EQ(Name(0x040A), u"es-ES");

    for (const char16_t* bad :
         {u"xx-YY", u"en-", u"é",
          u"a-name-that-is-far-too-long-to-be-the-name-of-any-locale-in-the-world-at-all"}) {
        SetLastError(0);
        EXPECT_EQ(LocaleNameToLCID(bad, 0), 0u);
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    }
    for (const LCID bad : {0x1000u, 0x0C00u, 0x5FE3u, 0x40409u, 0x5C09u}) {
        SetLastError(0);
        EXPECT_EQ(Name(bad), u"failed") << std::hex << bad;
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    }
}

TEST(Locale, InfoKeepsToItsRoom)
{
    char16_t text[8] = u"#######";
    EXPECT_EQ(GetLocaleInfoW(0x0407, LOCALE_SENGLANGUAGE, nullptr, 0), 7);
    EXPECT_EQ(GetLocaleInfoW(0x0407, LOCALE_SENGLANGUAGE, text, 6), 0);
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(std::u16string(text, 7), u"#######");
    EXPECT_EQ(GetLocaleInfoW(0x0407, LOCALE_SENGLANGUAGE, text, 7), 7);
    EXPECT_EQ(std::u16string(text, 6), u"German");

    const struct
    {
        LCID lcid;
        LCTYPE type;
        char16_t* data;
        int chars;
        DWORD error;
    } bad[] = {{0x5FE3, LOCALE_SDECIMAL, text, 8, ERROR_INVALID_PARAMETER},
               {0x0409, LOCALE_SDECIMAL, text, -1, ERROR_INVALID_PARAMETER},
               {0x0409, LOCALE_SDECIMAL, nullptr, 8, ERROR_INVALID_PARAMETER},
               {0x0409, 0x7777, text, 8, ERROR_INVALID_FLAGS},
               {0x0409, LOCALE_SDECIMAL | 0x00010000, text, 8, ERROR_INVALID_FLAGS},
               {0x0409, LOCALE_SDECIMAL | LOCALE_RETURN_NUMBER, text, 8, ERROR_INVALID_FLAGS},
               {0x0409, LOCALE_IDIGITS | LOCALE_RETURN_NUMBER, text, 1, ERROR_INSUFFICIENT_BUFFER}};
    for (const auto& c : bad) {
        SetLastError(0);
        EXPECT_EQ(GetLocaleInfoW(c.lcid, c.type, c.data, c.chars), 0) << &c - bad;
        EXPECT_EQ(GetLastError(), c.error) << &c - bad;
    }
}

TEST(Locale, ThreadsHaveTheirOwn)
{
    const OnlyLocale user("de-DE");
    EXPECT_TRUE(SetThreadLocale(0x0411));
    EXPECT_FALSE(SetThreadLocale(0x5FE3));
    EXPECT_EQ(GetThreadLocale(), 0x0411u);
    LCID other = 0;
    std::thread([&] { other = GetThreadLocale(); }).join();
    EXPECT_EQ(other, 0x0407u);
    EXPECT_TRUE(SetThreadLocale(LOCALE_USER_DEFAULT));
    EXPECT_EQ(GetThreadLocale(), 0x0407u);
}

TEST(Locale, ManyThreadsMayAskFirst)
{
    std::vector<std::u16string> separators(8);
    std::vector<std::jthread> threads;
    for (std::u16string& separator : separators)
        threads.emplace_back([&] { separator = Info(0x0424, LOCALE_STHOUSAND); });
    threads.clear();
    EXPECT_EQ(separators, std::vector<std::u16string>(8, u"."));
}

TEST(NumberFormat, Forms)
{
    const struct
    {
        const char16_t* value;
        NUMBERFMTW format;
        const char16_t* want;
    } cases[] = {
        {u"1234567", Format(0, 1, 3, 1), u"1,234,567"},
        {u"123456789", Format(0, 1, 32, 1), u"12,34,56,789"},
        {u"123456789", Format(0, 1, 320, 1), u"1234,56,789"},
        {u"12345678912", Format(0, 1, 4321, 1), u"1,2,34,567,8912"},
        // decimals: padded, rounded away from zero on halves, carried through
        {u".5", Format(1, 1, 3, 1), u"0.5"},
        {u"0", Format(0, 0, 3, 1), u"0"},
        {u"0", Format(2, 0, 3, 1), u".00"},
        {u"-0.5", Format(0, 1, 3, 1), u"-1"},
        {u"999.995", Format(2, 1, 3, 1), u"1,000.00"},
        // zeros in front have no place, and no sign stands before a zero
        {u"-0.004", Format(2, 1, 3, 0), u"0.00"},
        {u"-0.005", Format(2, 0, 3, 1), u"-.01"},
        {u"-1234", Format(0, 1, 3, 0), u"(1,234)"},
        {u"-1234", Format(0, 1, 3, 2), u"- 1,234"},
        {u"-1234", Format(0, 1, 3, 3), u"1,234-"},
        {u"-1234", Format(1, 1, 3, 4), u"1,234.0 -"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Formatted(c.value, c.format), c.want) << &c - cases;
}

TEST(NumberFormat, ALocalesOwnFormatAndSign)
{
    char16_t text[64];
    const struct
    {
        LCID lcid;
        const char16_t* want;
    } cases[] = {{0x0409, u"-12,345,678.50"},
                 {0x040C, u"-12\u202F345\u202F678,50"},
                 {0x0439, u"-1,23,45,678.50"},
                 {0x041D, u"\u221212\u00A0345\u00A0678,50"},
                 {0x0401, u"\u200E-12,345,678.50"}};
    for (const auto& c : cases) {
        ASSERT_GT(GetNumberFormatW(c.lcid, LOCALE_NOUSEROVERRIDE, u"-12345678.5", nullptr, text, 64), 0);
        EXPECT_EQ(std::u16string(text), c.want) << std::hex << c.lcid;
    }
    EXPECT_EQ(Formatted(u"-1", Format(0, 1, 3, 3), 0x041D), u"1\u2212");
}

TEST(NumberFormat, CutsToTheRoom)
{
    const NUMBERFMTW format = Format(1, 1, 3, 1);
    const std::u16string whole = u"-1,234,567.9";
    for (int room = 1; room <= 14; ++room) {
        std::u16string text(16, u'#'), want = text;
        want.replace(0, std::min(size_t(room), whole.size() + 1), whole.substr(0, size_t(room) - 1) + u'\0');
        SetLastError(0);
        const bool fits = size_t(room) > whole.size();
        EXPECT_EQ(GetNumberFormatW(0x0409, 0, u"-1234567.89", &format, text.data(), room), fits ? 13 : 0);
        EXPECT_EQ(GetLastError(), fits ? 0 : ERROR_INSUFFICIENT_BUFFER) << room;
        EXPECT_EQ(text, want) << room;
    }
}

// Adds half a unit of the last decimal by schoolbook addition on the padded digits, then cuts.
static std::u16string RoundedSlowly(std::u16string integer, std::u16string fraction, size_t decimals)
{
    fraction.resize(std::max(fraction.size(), decimals + 1), u'0');
    std::u16string digits = u"0" + integer + fraction;
    int carry = 5;
    for (size_t i = 1 + integer.size() + decimals + 1; i-- > 0;) {
        const int sum = digits[i] - u'0' + carry;
        digits[i] = char16_t(u'0' + sum % 10);
        carry = sum / 10;
    }
    std::u16string whole = digits.substr(0, 1 + integer.size());
    whole.erase(0, std::min(whole.find_first_not_of(u'0'), whole.size() - 1));
    return whole + (decimals ? u"." + digits.substr(1 + integer.size(), decimals) : u"");
}

TEST(NumberFormat, RoundsLikeTheSchoolbook)
{
    Random random;
    const auto randomDigits = [&](int32_t count) {
        std::u16string digits;
        for (int32_t i = 0; i < count; ++i) // many nines and fives, for carries and halves
            digits += u"0123456789999955"[random.Int(0, 15)];
        return digits;
    };
    for (int i = 0; i < 20000; ++i) {
        const std::u16string integer = randomDigits(random.Int(1, 22)),
                             fraction = randomDigits(random.Int(0, 14));
        const UINT decimals = UINT(random.Int(0, 9));
        const std::u16string value = integer + (fraction.empty() ? u"" : u"." + fraction);
        ASSERT_EQ(Formatted(value, Format(decimals, 1, 0, 1)), RoundedSlowly(integer, fraction, decimals))
            << std::string(value.begin(), value.end()) << " to " << decimals;
    }
}
