#include "vx/print.h"

#include "lang/internationals.h"
#include "support/locales.h"
#include "text/print_support.h"
#include "text/tokens.h"

#include <climits>
#include <cmath>

using namespace vxtest;

namespace {

class PrintEngine : public testing::Test
{
protected:
    PrintEngine() { EXPECT_TRUE(vx::CreatePrintTokens()); }
    ~PrintEngine() override { vx::DestroyPrintTokens(); }

    const OnlyLocale locale_{"en-US"};
};

std::u16string Repeat(char16_t c, size_t count)
{
    return std::u16string(count, c);
}

TEST_F(PrintEngine, LimitsOfTheUnboundedEngine)
{
    const std::u16string text = Repeat(u's', 1500);
    EXPECT_EQ(Print({u"%s|", text.c_str()}), text.substr(0, 1024) + u"|");
    EXPECT_EQ(Print({u"%1100c|", u'c'}), Repeat(u' ', 1024) + u"|");
    EXPECT_EQ(Print({u"%783d|", 1}), Repeat(u' ', 782) + u"1|");
    EXPECT_EQ(Print({u"$(-)$-5d|%.16z", 42, 5}), u"-42   |0.0000000000000005");
    EXPECT_EQ(Print({u"%784d|", 1}), Repeat(u' ', 783) + u"|");
    EXPECT_EQ(Print({u"%.2000000000f|", 0.0}), u"0." + Repeat(u'0', 781) + u"|");
}

} // namespace

TEST_F(PrintEngine, Forms)
{
    const struct
    {
        Form form;
        std::u16string want;
    } cases[] = {
        {{u""}, u""},
        {{u"plain \x4E2D\xD83D\xDE00 $$d"}, u"plain \x4E2D\xD83D\xDE00 $d"},
        {{u"%"}, u"%"},
        {{u"$"}, u"%"},
        {{u"$-5.2 "}, u"%-5.2 "},
        {{u"$!x$&;%!$&"}, u"x;"},
        {{u"$!:$!.$!,|$&:$&.|%!:%&."}, u":.,|..|:."},
        {{u"$&,"}, u","},
        {{u"$*|$,|$:|%*|%,|%:|$5*"}, u".|,|:|.|,|:|."},
        {{u"$(1234)$(-5)$(.5)"}, u"1,234-50.5"},
        {{u"$(12x)$(1-)"}, u"$(12x)$(1-)"},
        {{u"$() $(\x4E2D)"}, u"$() $(\x4E2D)"},
        {{u"$("}, u"$("},
        {{u"%d|$d|%i|$i", -1234567, -1234567, 0, 1234}, u"-1234567|-1,234,567|0|1,234"},
        {{u"%u|$u", 4294967295u, 4294967295u}, u"4294967295|4,294,967,295"},
        {{u"%x|$X|%o|$#x", 255, 255, 8, 255}, u"ff|FF|10|0xff"},
        {{u"$8d|$.0d|%.0d|", 12345, 0, 0}, u"   12,345|||"},
        {{u"%hd|%hhu|%ld|%lld", 65537, 257, -1, -1}, u"1|1|-1|-1"},
        {{u"$I64d|%I64x|$Iu|%I64d", INT64_C(1234567890123), INT64_C(-1), INT64_C(5000000000), INT64_MIN},
         u"1,234,567,890,123|ffffffffffffffff|5,000,000,000|-9223372036854775808"},
        {{u"%I32d|$I32u|%lx", -1, 4000000000u, -1}, u"-1|4,000,000,000|ffffffff"},
        {{u"%.2f|$.2f|$f|%e|$E", 1234.5, 1234.5, 1234.5, 1234.5, 1234.5},
         u"1234.50|1,234.50|1,234.500000|1.234500e+03|1.234500E+03"},
        {{u"%g|$g|$g|$G|$g", 1234.5, 1234.5, 1e20, 1e-7, -0.25}, u"1234.5|1234.5|1e+20|1E-07|-0.25"},
        {{u"$f", HUGE_VAL}, u"inf"},
        {{u"$.1z|%.1z|$.2z|$.1z|$.9z|$.3z", 15, 123456, 12345, 12345, -1234567890, -5},
         u"1.5|12345.6|123.45|1,234.5|-1.234567890|-0.005"},
        {{u"$z|%z|$.0z|%5z|$5z", 1234, 1234, 1234, 12, 1234}, u"1,234|1234|1,234|   12| 1,234"},
        {{u"%c%3c|%hc|%-2c|[%c%3c]", u'a', u'b', 0x141, 0x4E2D, 0, 0}, u"a  b|A|\x4E2D |[   ]"},
        {{u"%s|%5s|%-5s|%.2s|$s|%hs|%ls|%s|", u"text", u"abc", u"abc", u"abc", u"abc", "8-bit\xE9", u"wide",
          nullptr},
         u"text|  abc|abc  |ab|abc|8-bit\x00E9|wide||"},
        {{u"%u$:%02u$:%02u$*%03u", 1, 2, 3, 4}, u"1:02:03.004"},
        {{u"%d%%|50% of %d", 1, 8, 2}, u"1%|5010f 2"},
        // What makes no sense stands as it is, and its argument is taken.
        {{u"%y d|$- 5 d|%p x|%n d|%S s|%I6d|% %d|%5-d|%d", 1, 2, 3, 4, u"5", INT64_C(6), 7, 8, 9},
         u"%y d|%- 5 d|%p x|%n d|%S s|%I6d|% %d|%5-d|9"},
    };
    for (const auto& c : cases)
        ExpectPrints(c.form, c.want);
}

// Every character is tried behind an introducer: those that end a conversion take an argument.
TEST_F(PrintEngine, NineteenCharactersEndAConversion)
{
    const std::u16string integers = u"Xcdiouxz", doubles = u"EGefg", separators = u"!&*,:%";
    for (char16_t c = 1; c < 0x180; ++c) {
        const char16_t bare[] = {u'%', u'-', c, u' ', 0}, full[] = {u'[', u'$', u'-', u'1', c, u']', 0};
        const bool isDouble = doubles.find(c) != doubles.npos;
        if (isDouble || c == u's' || integers.find(c) != integers.npos) {
            const std::u16string text = Print(isDouble    ? Form(full, 5.0)
                                              : c == u's' ? Form(full, u"5")
                                                          : Form(full, 5));
            EXPECT_TRUE(text.starts_with(u'[') && text.ends_with(u']') && text.find(u'%') == text.npos)
                << testing::PrintToString(text);
        } else if (separators.find(c) == separators.npos) {
            ExpectPrints({bare, 5}, bare);
        }
    }
}

TEST_F(PrintEngine, ACollectionEndsWithItsScratch)
{
    const std::u16string zeros = Repeat(u'0', 300), dots = Repeat(u'.', 400);
    // 260 characters with the introducer and the letter
    const std::u16string longest = u"%" + zeros.substr(0, 257) + u"3d|";
    ExpectPrints({longest.c_str(), 7}, u"007|");
    // One more, and the letter is text
    const std::u16string tooLong = u"$" + zeros.substr(0, 258) + u"3d|";
    ExpectPrints({tooLong.c_str(), 7}, u"%" + tooLong.substr(1));
    // The character that fills the scratch is not read twice, and those behind begin new forms.
    const std::u16string filled = u"%" + Repeat(u'y', 259) + u"%d";
    ExpectPrints({filled.c_str(), 7}, filled.substr(0, 260) + u"7");
    for (const size_t length : {258u, 259u, 260u, 261u, 400u}) {
        const std::u16string name = u"$(" + Repeat(u'n', length) + u")|%d";
        ExpectPrints({name.c_str(), 7}, name.substr(0, name.size() - 2) + u"7");
        const std::u16string literal = u"$(1" + dots.substr(0, length) + u"x%d";
        ExpectPrints({literal.c_str(), 7}, literal.substr(0, literal.size() - 2) + u"7");
    }
}

// Each way to be cut, at every capacity.
TEST_F(PrintEngine, WhatDoesNotFit)
{
    std::u16string(u"::=").copy(vx::g_internationals.timeSeparator, 4);
    vx::g_internationals.timeSeparatorLength = 3;
    VxPrintF_AddToken(u"Token", u"the value");
    VxPrintF_AddToken(u"One", u"1");
    VxPrintF_AddToken(u"None", u"");
    constexpr HRESULT kSmall = VX_E_BUFFERTOSMALL, kCut = VX_E_INSUFFICIENT_BUFFER;
    const struct
    {
        Form form;
        std::u16string whole;
        std::u16string cut; // stands, cut to the room, where the whole does not fit
        HRESULT status;     // of that
        int64_t spare = 0;  // room that is needed beyond the whole
    } cases[] = {
        {{u"$$%%$%$$"}, u"$%%$", u"$%%$", S_OK},
        {{u"$-+ 123"}, u"%-+ 123", u"%-+ 123", S_OK},
        {{u"$(Token)"}, u"the value", u"the value", S_OK},
        {{u"$(One)$(None)$(One)"}, u"11", u"11", S_OK},
        {{u"$:$:"}, u"::=::=", u"::=::=", S_OK},
        {{u"$(Unknown)"}, u"$(Unknown)", u"", kSmall, 2},
        {{u"$(Unknown"}, u"$(Unknown", u"", kSmall, 2},
        {{u"$(1234"}, u"$(1234", u"", kSmall},
        {{u"$(1234567.5)"}, u"1,234,567.5", u"1234567.5", kSmall},
        {{u"%d", 1234567}, u"1234567", u"1234567", kSmall},
        {{u"$d", -1234567}, u"-1,234,567", u"-1,234,567", kSmall},
        {{u"%08d", 1234567}, u"01234567", u"01234567", S_OK},
        {{u"%I64x", INT64_C(0x123456789A)}, u"123456789a", u"123456789a", S_OK},
        {{u"$e", 1234.5}, u"1.234500e+03", u"1.234500e+03", S_OK},
        {{u"$8d", 12345}, u"   12,345", u"   12345", kSmall},
        {{u"$I64d", INT64_C(1234567)}, u"1,234,567", u"1234567", kSmall},
        {{u"$.2f", 1234.5}, u"1,234.50", u"1234.50", kSmall},
        {{u"$g", 1234.5}, u"1234.5", u"1234.5", kSmall},
        {{u"$.2z", 123456}, u"1,234.56", u"1234.56", kSmall},
        {{u"%.2z", 123456}, u"1234.56", u"1234.56", kSmall},
        {{u"%s", u"abcdefgh"}, u"abcdefgh", u"abcdefgh", kCut},
        {{u"%-6hs", "abc"}, u"abc   ", u"abc   ", kCut},
        {{u"%4c", u'c'}, u"   c", u"   c", kCut},
        {{u"%y d", 5}, u"%y d", u"%y d", S_OK},
        {{u"%-+ s", u"5"}, u"5", u"5", kCut},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Print(c.form), c.whole);
        for (uint32_t capacity = 0; capacity <= c.whole.size() + 4; ++capacity) {
            const int64_t room = int64_t(capacity) - 1;
            Printed want{c.whole, S_OK};
            if (room < 1)
                want = {u"", capacity == 0 ? E_INVALIDARG : S_OK};
            else if (room < int64_t(c.whole.size()) + c.spare)
                want = {c.cut.substr(0, size_t(room)), c.status};
            EXPECT_EQ(PrintBounded(c.form, capacity), want) << &c - cases << ", capacity " << capacity;
        }
    }
}

// What happens behind a step that did not fit.
TEST_F(PrintEngine, StatusAndRoomAfterACut)
{
    constexpr HRESULT kSmall = VX_E_BUFFERTOSMALL, kCut = VX_E_INSUFFICIENT_BUFFER;
    const struct
    {
        Form form;
        uint32_t capacity;
        Printed want;
    } cases[] = {
        // Texts without a person's form stand as they are.
        {{u"$(-)x"}, 300, {u"-", kSmall}},
        {{u"$(1,234)x"}, 300, {u"1,234", kSmall}},
        {{u"$-5dx", 42}, 300, {u"42   ", kSmall}},
        {{u"$.12fx", 0.5}, 300, {u"0.500000000000", kSmall}},
        {{u"%.16zx", 5}, 300, {u"0.0000000000000005", kSmall}},
        // An unknown token of 10 characters takes its room even where it is left out.
        {{u"$(Unknown)abc"}, 12, {u"a", kSmall}},
        {{u"$(Unknown)abc"}, 13, {u"$(Unknown)ab", S_OK}},
        {{u"$(Unknown)abc"}, 11, {u"", kSmall}},
        {{u"$(Unknown)%d", 5}, 12, {u"5", kSmall}},
        {{u"$(Unknown)%s", u"s"}, 12, {u"s", S_OK}},
        {{u"$(Unknown)%s", u"st"}, 12, {u"s", kCut}},
        // A literal without end leaves the room as it is.
        {{u"$(1234x"}, 6, {u"x", kSmall}},
        // These use it up.
        {{u"%s$(", u"abcdef"}, 5, {u"abcd", kCut}},
        {{u"$d%x", 1234567, 1}, 8, {u"1,234,5", kSmall}},
        // What is wider than the scratch is left out and takes no room.
        {{u"%259d|", 1}, 300, {Repeat(u' ', 258) + u"1|", S_OK}},
        {{u"%260d|", 1}, 300, {u"|", kCut}},
        {{u"$260d%x", 1, 10}, 300, {u"a", S_OK}},
        {{u"%.400f|%d", 1.0, 3}, 1000, {u"|3", kCut}},
        {{u"%2147483647d%99999999999d|", 1, 2}, 100, {u"|", kCut}},
        {{u"%.4000000000z|", 1}, 100, {u"|", kCut}},
        {{u"%300s|", u"a"}, 1000, {Repeat(u' ', 299) + u"a|", S_OK}},
        {{u"%.3000000000s|", u"a"}, 1000, {u"a|", S_OK}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(PrintBounded(c.form, c.capacity), c.want) << &c - cases;
    char16_t text[] = u"####";
    uint32_t length = 9;
    EXPECT_EQ(VxCchPrintF(text, 0x80000000u, &length, u"abc"), E_INVALIDARG);
    EXPECT_EQ(std::u16string(text), u"");
    EXPECT_EQ(length, 0u);
    EXPECT_EQ(VxCchPrintF(text, 0x7FFFFFFFu, nullptr, u"abc"), S_OK);
}

TEST(ComposeStr, FillsInserts)
{
    char16_t text[] = u"###############";
    EXPECT_EQ(VxComposeStr(text, 16, u"%2!03d! of %1", u"12 KB", 7), 12);
    EXPECT_EQ(std::u16string(text), u"007 of 12 KB");
    EXPECT_EQ(VxComposeStr(text, 12, u"%2!03d! of %1", u"12 KB", 7), 0);
    EXPECT_EQ(std::u16string(text), u"");
    EXPECT_EQ(VxComposeStr(text, 0, u"x"), 0);
    EXPECT_EQ(VxComposeStr(text, -1, u"x"), 0);
}
