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
        const std::pair<const char16_t*, uint32_t> texts[] = {
            {r.languageName, r.languageNameLength},
            {r.languageEnglishName, r.languageEnglishNameLength},
            {r.countryName, r.countryNameLength},
            {r.countryEnglishName, r.countryEnglishNameLength},
            {r.negativeSign, r.negativeSignLength},
            {r.hyphen, r.hyphenLength},
            {r.thousandsSeparator, r.thousandsSeparatorLength}};
        for (const auto& [text, length] : texts) {
            EXPECT_GT(length, 0u);
            EXPECT_EQ(std::u16string_view(text).size(), length);
        }
    }
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

TEST(Internationals, KeysAreReadWithAndWithoutALimit)
{
    const OnlyLocale german("de-DE");
    const struct
    {
        uint32_t key;
        uint32_t number;
        std::u16string text;
    } cases[] = {{0, 0x0407, u""},    {1, 407, u""},  {2, 21, u"Deutsch (Deutschland)"},
                 {3, 6, u"German"},   {4, 49, u""},   {24, 1, u","},
                 {40, 1, u";"},       {60, 1, u":"},  {100, 1, u":"},
                 {101, 1, u"."},      {102, 1, u","}, {120, 1, u"."},
                 {121, 1, u"."},      {5, 0, u""},    {122, 0, u""},
                 {0x80000002, 0, u""}};
    for (const auto& c : cases) {
        char16_t all[64] = u"old";
        EXPECT_EQ(VxGetInat(int32_t(c.key), all), c.number) << c.key;
        EXPECT_EQ(all, c.text) << c.key;
        EXPECT_EQ(VxGetInat(int32_t(c.key), nullptr), c.number) << c.key;
        for (uint32_t room = 0; room <= 23; ++room) {
            std::u16string text(24, u'#'), want = text;
            const std::u16string kept = c.text.substr(0, std::max(room, 1u) - 1);
            if (room)
                want.replace(0, kept.size() + 1, kept + u'\0');
            EXPECT_EQ(VxGetInatN(c.key, text.data(), room), c.text.empty() ? c.number : kept.size()) << c.key;
            EXPECT_EQ(text, want) << c.key << ", room " << room;
        }
    }
}
