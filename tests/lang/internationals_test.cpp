#include "vx/internationals.h"

#include "lang/internationals.h"
#include "support/locales.h"

#include <algorithm>
#include <cstring>
#include <string>

using namespace vxtest;

namespace {

void SetSeparators(VxInternationals& record, std::u16string thousands, std::u16string decimal)
{
    record.thousandsSeparator[thousands.copy(record.thousandsSeparator, 7)] = u'\0';
    record.thousandsSeparatorLength = uint32_t(thousands.size());
    record.decimalSeparator[decimal.copy(record.decimalSeparator, 7)] = u'\0';
    record.decimalSeparatorLength = uint32_t(decimal.size());
}

} // namespace

TEST(Internationals, ARebuildReadsTheUsersLocale)
{
    for (const char* name : kLocales) {
        SCOPED_TRACE(name);
        const OnlyLocale locale(name);
        VxInternationals r;
        EXPECT_EQ(VxLang_GetInternationals(&r, sizeof(r)), 0);
        EXPECT_EQ(r.size, 796u);
        EXPECT_EQ(r.lcid, GetSystemDefaultLCID());
        EXPECT_EQ(r.grouping, 3u); // the first group, also of 3;2;0
        EXPECT_EQ(r.digits, 2u);
        EXPECT_EQ(r.leadingZero, 1u);
        EXPECT_EQ(r.langIdReserved, 0u);
        const struct
        {
            const char16_t* text;
            uint32_t length;
        } texts[] = {{r.languageName, r.languageNameLength},
                     {r.languageEnglishName, r.languageEnglishNameLength},
                     {r.countryName, r.countryNameLength},
                     {r.countryEnglishName, r.countryEnglishNameLength},
                     {r.negativeSign, r.negativeSignLength},
                     {r.hyphen, r.hyphenLength},
                     {r.thousandsSeparator, r.thousandsSeparatorLength},
                     {r.decimalSeparator, r.decimalSeparatorLength},
                     {r.timeSeparator, r.timeSeparatorLength},
                     {r.listSeparator, r.listSeparatorLength},
                     {r.smpteWholeSeparator, r.smpteWholeSeparatorLength},
                     {r.musicBeatSeparator, r.musicBeatSeparatorLength}};
        for (const auto& text : texts) {
            EXPECT_GT(text.length, 0u) << &text - texts;
            EXPECT_EQ(std::u16string(text.text).size(), text.length) << &text - texts;
        }
    }
}

TEST(Internationals, ValuesOfOneLocale)
{
    const OnlyLocale german("de-DE");
    VxInternationals r;
    VxLang_GetInternationals(&r, sizeof(r));
    EXPECT_EQ(r.lcid, 0x0407u);
    EXPECT_EQ(r.language, 407u);
    EXPECT_EQ(r.languageName, std::u16string(u"Deutsch (Deutschland)"));
    EXPECT_EQ(r.languageEnglishName, std::u16string(u"German"));
    EXPECT_EQ(r.country, 49u);
    EXPECT_EQ(r.countryName, std::u16string(u"Deutschland"));
    EXPECT_EQ(r.countryEnglishName, std::u16string(u"Germany"));
    EXPECT_EQ(r.thousandsSeparator, std::u16string(u"."));
    EXPECT_EQ(r.decimalSeparator, std::u16string(u","));
    EXPECT_EQ(r.listSeparator, std::u16string(u";"));
    EXPECT_EQ(r.measure, 0u);
    const OnlyLocale english("en-US");
    VxLang_GetInternationals(&r, sizeof(r));
    EXPECT_EQ(r.measure, 1u);

    const OnlyLocale spanish("es-ES"); // 0x0c0a: no decimal digit in front of the letter but a zero
    VxLang_GetInternationals(&r, sizeof(r));
    EXPECT_EQ(r.language, 0u);
}

TEST(Internationals, ARebuildForgetsTheLanguageAbbreviation)
{
    vx::g_internationals.langId[0] = u'X';
    vx::g_internationals.langIdLength = 1;
    VxLang_GetInternationals(nullptr, 123);
    EXPECT_EQ(vx::g_internationals.langId[0], u'\0');
    EXPECT_EQ(vx::g_internationals.langIdLength, 0u);
}

TEST(Internationals, AShortCopySaysSoAndStaysInItsRoom)
{
    const OnlyLocale english("en-US");
    for (const uint32_t size : {0u, 4u, 5u, 12u, 795u, 796u, 900u}) {
        uint8_t bytes[1000];
        std::memset(bytes, 0xA5, sizeof(bytes));
        VxLang_GetInternationals(reinterpret_cast<VxInternationals*>(bytes), size);
        const uint32_t copied = std::min(size, 796u);
        VxInternationals want = vx::g_internationals;
        want.size = copied;
        EXPECT_EQ(std::memcmp(bytes, &want, copied), 0) << size;
        EXPECT_TRUE(std::all_of(bytes + copied, std::end(bytes), [](uint8_t b) { return b == 0xA5; }))
            << size;
    }
}

TEST(Internationals, TheDecimalSeparatorStaysApart)
{
    const struct
    {
        const char16_t *thousands, *decimal, *want;
    } cases[] = {{u".", u".", u","},  {u",", u",", u"."},    {u",", u".", u"."},  {u".", u",", u","},
                 {u" ", u" ", u"."},  {u"", u",", u","},     {u"", u"", u""},     {u".", u".x", u","},
                 {u".x", u".", u"."}, {u"ab", u"abc", u"."}, {u"ab", u"a", u"a"}, {u".b", u".b", u","}};
    for (const auto& c : cases) {
        VxInternationals record = {};
        SetSeparators(record, c.thousands, c.decimal);
        vx::KeepDecimalApartFromThousands(record);
        EXPECT_EQ(record.decimalSeparator, std::u16string(c.want)) << &c - cases;
        EXPECT_EQ(record.decimalSeparatorLength, std::u16string(c.want).size()) << &c - cases;
    }
}

TEST(Internationals, Keys)
{
    const OnlyLocale german("de-DE");
    const VxInternationals& r = vx::g_internationals;
    const struct
    {
        uint32_t key;
        uint32_t number;
        const char16_t* text;
    } cases[] = {{0, 0x0407, u""},    {1, 407, u""},  {2, r.languageNameLength, r.languageName},
                 {3, 6, u"German"},   {4, 49, u""},   {24, 1, u","},
                 {40, 1, u";"},       {60, 1, u":"},  {100, 1, u":"},
                 {101, 1, u"."},      {102, 1, u","}, {120, 1, u"."},
                 {121, 1, u"."},      {5, 0, u""},    {23, 0, u""},
                 {122, 0, u""},       {1000, 0, u""}, {0xFFFFFFFF, 0, u""},
                 {0x80000002, 0, u""}};
    for (const auto& c : cases) {
        char16_t text[64] = u"old";
        EXPECT_EQ(VxGetInat(int32_t(c.key), text), c.number) << c.key;
        EXPECT_EQ(std::u16string(text), c.text) << c.key;
        EXPECT_EQ(VxGetInat(int32_t(c.key), nullptr), c.number) << c.key;
        text[0] = u'o';
        EXPECT_EQ(VxGetInatN(c.key, text, 64), c.number) << c.key;
        EXPECT_EQ(std::u16string(text), c.text) << c.key;
    }
}

TEST(Internationals, KeysWithALimitAreCutAndTerminated)
{
    const OnlyLocale german("de-DE");
    const std::u16string whole = u"German";
    for (uint32_t room = 0; room <= 8; ++room) {
        std::u16string text(10, u'#');
        const uint32_t kept = room ? std::min(room - 1, 6u) : 0;
        EXPECT_EQ(VxGetInatN(VXINAT_LANGUAGE_ENGLISH_NAME, text.data(), room), kept) << room;
        std::u16string want(10, u'#');
        if (room)
            want.replace(0, kept + 1, whole.substr(0, kept) + u'\0');
        EXPECT_EQ(text, want) << room;
    }
}

TEST(Internationals, ConditionedLcids)
{
    const struct
    {
        uint32_t lcid, want;
    } cases[] = {{0x0809, 0x0409},   {0x0C0A, 0x040A},  {0x0C04, 0x0404},  {0x0404, 0x0404},
                 {0x1404, 0x0404},   {0x1004, 0x0804},  {0x1C04, 0x0804},  {0x0804, 0x0804},
                 {0x7C04, 0x0804},   {0x0004, 0x0804},  {0x0416, 0x0416},  {0x0816, 0x0816},
                 {0x10416, 0x10416}, {0x10407, 0x0407}, {0x20C04, 0x0404}, {0, 0x0400}};
    for (const auto& c : cases)
        EXPECT_EQ(VxLang_GetConditionedLCID(c.lcid), c.want) << std::hex << c.lcid;
    EXPECT_EQ(VxLang_IsLCIDEnglish(0x0C09), 1);
    EXPECT_EQ(VxLang_IsLCIDEnglish(0x0407), 0);
}
