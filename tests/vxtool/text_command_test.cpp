// What the commands of text and time print, and how they tell what cannot be read.
#include "run_tool.h"
#include "support/random.h"
#include "vxtool/print_call.h"

#include <gmock/gmock.h>

namespace {

using namespace vxtest;
using namespace vxtool;
using testing::HasSubstr;

struct Case
{
    const char* arguments; // English unless they name another locale
    const char* text;      // all that is printed; or a refusal, without the command's name
};

class TextCommand : public testing::Test
{
protected:
    Outcome Run(const char* arguments) const { return folder_.Run(arguments, "VX_LOCALE=en-US"); }

    void Expect(int exitCode, std::span<const Case> cases) const
    {
        for (const Case& c : cases) {
            const Outcome outcome = Run(c.arguments);
            EXPECT_EQ(outcome.exitCode, exitCode) << c.arguments << ": " << outcome.error;
            EXPECT_EQ(outcome.out, exitCode == 0 ? c.text : "") << c.arguments;
            EXPECT_THAT(outcome.error, HasSubstr(exitCode == 0 ? "" : c.text)) << c.arguments;
        }
    }

private:
    ToolFolder folder_;
};

TEST_F(TextCommand, PrintFillsFormats)
{
    constexpr Case kCases[] = {
        {"print '$d $.2f' 1234567 1234.5 --locale de-DE", "1.234.567 1.234,50\n"},
        // Words and doubles in any order: each takes its own.
        {"print '%.1f %d %s %.1f %I64d %c %.1f' 1.5 -2 three 4.5 -5000000000 x 7.5",
         "1.5 -2 three 4.5 -5000000000 x 7.5\n"},
        {"print '%d%d%d%d%d%d%d%d' 1 2 3 4 5 6 7 8", "12345678\n"},
        {"print '%g%g%g%g%g%g%g%g' 1 2 3 4 5 6 7 8", "12345678\n"},
        {"print '%u %x %I64u %I32x' -1 4294967295 -1 0", "4294967295 ffffffff 18446744073709551615 0\n"},
        {"print '%s|%5s|%hs' 'naïve 😀' ж plain", "naïve 😀|    ж|plain\n"},
        {"print '%5q %d' 3", "%5q %d\n"}, // q ends nothing: one form, up to the d, that makes no sense
        {"print '$(App) $(APP) $(No)' --token App=Demo", "Demo Demo $(No)\n"},
        {"print '$(A)$(B)' --token A=1 --token B=2=3 --token a=4", "42=3\n"},
        {"print '$d' 1234567 --capacity 10", "1,234,567\nlength  9\nstatus  00000000\n"},
        {"print '%s' longer --capacity 4",
         "lon\nlength  3\nstatus  8007007A  another conversion did not fit\n"},
    };
    Expect(0, kCases);
}

TEST_F(TextCommand, NumbersGoByTheLocale)
{
    constexpr Case kCases[] = {
        {"number 1234567.891 --group --decimals 2 --locale de-DE", "1.234.567,89\n"},
        {"number -1234567 12 --group --locale de-DE", "-1.234.567\n12\n"},
        {"number 18446744073709551615 --kind u64", "18446744073709551615\n"},
        {"number --parse 1.234.567,5 --locale de-DE", "1234567.5\n"},
        {"number --parse 99999999999 --kind i32", "2147483647\n"},
        {"number --parse -- -99999999999 7", "-99999999999\n7\n"},
        {"number --parse --hex 1FFFFFFFF --kind u32", "4294967295\n"},
    };
    Expect(0, kCases);
}

TEST_F(TextCommand, NumbersThatALocaleWritesItReadsBack)
{
    for (const char* locale : {"en-US", "de-DE", "fr-FR", "de-CH", "hi-IN", "ar-SA", "sv-SE", "fa-IR"}) {
        const std::string option = std::string(" --locale ") + locale;
        std::string written = Run(("number -9876543210.25 --group --decimals 2" + option).c_str()).out;
        written.pop_back();
        EXPECT_EQ(Run(("number --parse '" + written + "'" + option).c_str()).out, "-9876543210.25\n")
            << locale;
    }
}

TEST_F(TextCommand, TimecodesConvertAndCount)
{
    constexpr Case kCases[] = {
        {"timecode 01:02:03:15", "format     label             frames             nano time\n"
                                 "30         01:02:03:15      111,705        37,235,000,000\n"
                                 "29.97drop  01:02:03;15      111,593        37,234,864,334\n"
                                 "25         01:02:03:12       93,087        37,234,800,000\n"
                                 "24         01:02:03:12       89,364        37,235,000,000\n"
                                 "29.97      01:01:59:23      111,593        37,234,864,334\n"
                                 "23.976     01:01:59:18       89,274        37,234,697,500\n"},
        {"timecode 1800 --frames --from 29.97drop --to 29.97drop --only label", "00:01:00;02\n"},
        {"timecode 00:01:00:00 --from 29.97drop --to 29.97drop --only frames", "1800\n"},
        {"timecode 600600000 --nanos --from 29.97drop --to 30 --only label", "00:01:00:01\n"},
        {"timecode 0:10:0 --add 5 --subtract 1:0 --step -1 --from 25 --to 25 --only label", "00:00:09:04\n"},
        {"timecode --table 00:00:59:28..00:01:00:03 --from 29.97drop --only label",
         "00:00:59;28\n00:00:59;29\n00:01:00;02\n00:01:00;03\n"},
        {"timecode --table 23:59:59:26..1 --step 5 --only frames", "2591996\n1\n"},
    };
    Expect(0, kCases);
}

TEST_F(TextCommand, MessagesAndTheirTexts)
{
    constexpr Case kCases[] = {
        {"lang Retry --lang de --lang ja", "Retry\n  de     &Wiederholen\n  ja     再試行(&R)\n"},
        {"lang Retry --lang nb --missing", "nb: 1 of 1 texts are translated\n"},
        {"error 5 0x8004E00A --insert a.prj",
         "An error occurred while loading the project file a.prj.\n\nThe item was not found.\n"},
        {"error 'No %s' 2 --insert disk --system --warning --details '100% $'",
         "Warning: No disk\n\nThe item was not found.\n<Details>\n100% $\n\n</Details>\n"},
        {"error 7 -2147163804 --app Demo",
         "An error occurred while creating the media file .\n\n file type is "
         "unsupported in this version of Demo.\n"},
        {"error 3 0x8004E00C", "(nothing is shown: the user cancelled)\n"},
        {"prompt yes-no-delete 'Now?' --default 1 --icon question --check",
         "text       Now?\nicon       question\nbuttons      6  &Yes\n             7  &No  (default)\n"
         "           101  D&elete\nclosing    not possible\ncheck box  Do no&t show this message again.\n"
         "no screen  7\n"},
        {"prompt 0xF05 --lang de", "text       \nicon       none\nbuttons      4  &Wiederholen\n"
                                   "             2  Cancel  (default)\nclosing    2\n"
                                   "no screen  no answer: there are fewer buttons\n"},
    };
    Expect(0, kCases);
}

TEST_F(TextCommand, RulersShowAndRead)
{
    constexpr Case kCases[] = {
        {"ruler 37235000000 --format measures --measure 3/4 --tempo 60 --short", "1,242.1\n"},
        {"ruler 37235000000 --format measures --length", "1,861.3.000\n"},
        {"ruler 37235000000 --format samples --samples 48000 --locale de-DE", "178.728.000\n"},
        {"ruler 37235000000 --format time --offset 35000000", "01:02:00.000\n"},
        {"ruler 01:02:03 --read time --short --format time", "01:02:03\n"},
        {"ruler 2+25 --read feet-40 --rate 25 --format seconds", "4.200\n"},
        {"ruler 3.723,5 --read seconds --format clock --locale de-DE", "1:02:03\n"},
    };
    Expect(0, kCases);
    EXPECT_THAT(
        Run("ruler 37235000000").out,
        HasSubstr("\nsmpte-drop                          01:02:03;15                   01:02:03;15\n"));
}

TEST_F(TextCommand, PathsComeApartAndAreRelated)
{
    constexpr Case kCases[] = {
        {"path 'Q:\\a b\\x.tar.gz' 'Q:\\'", "Q:\\a b\\x.tar.gz\n"
                                            "  root       Q:\\\n"
                                            "  folder     Q:\\a b\\\n"
                                            "  name       x.tar.gz\n"
                                            "  stem       x.tar\n"
                                            "  extension  .gz\n"
                                            "  full       Q:\\a b\\x.tar.gz\n"
                                            "Q:\\\n"
                                            "  root       Q:\\\n"
                                            "  folder     Q:\\\n"
                                            "  full       Q:\\\n"},
        {"path 'Q:\\t10.wav' T9.wav b.txt --match '*.wav' --sort", "Q:\\t10.wav\nT9.wav\n"},
        {"path t10.wav T9.wav --sort --only stem", "T9\nt10\n"},
        {"path é.txt --match '*.wav'", ""},
        {"path 'D:\\É\\b\\c.txt' --against 'Q:\\é\\b\\c.txt'",
         "D:\\É\\b\\c.txt\n  own        D:\\\n  common     É\\b\\c.txt\n"},
        {"path 'C:\\Old\\x' --from 'c:\\old' --to ''", "\\x\n"},
    };
    Expect(0, kCases);
}

TEST_F(TextCommand, WhatCannotBeReadIsShownWithACaret)
{
    constexpr Case kCases[] = {
        {"number ''", "a whole number of 64 bits with a sign:\n  \n  ^\n"},
        {"number 1.5 --kind i32", "2147483647:\n  1.5\n   ^\n"},
        {"number --parse 1,5é", "a number:\n  1,5é\n     ^\n"},
        {"number --parse '5 😀é 7'", "a number:\n  5 😀é 7\n   ^\n"},
        {"number --parse ' '", "a number:\n   \n  ^\n"},
        {"timecode abc", "timecode of at most four fields:\n  abc\n  ^\n"},
        {"timecode 1:2:3:4567", "\n  1:2:3:4567\n          ^\n"}, // 45 and 67 are pairs
        {"timecode 1:2:3:4:", "\n  1:2:3:4:\n         ^\n"},
        {"timecode 0 --add é", "\n  é\n  ^\n"},
        {"ruler 1:2:3:4:5 --read cd", "\n  1:2:3:4:5\n          ^\n"},
        {"print %d 4294967296", "\n  4294967296\n  ^\n"},
    };
    Expect(2, kCases);
}

TEST_F(TextCommand, RequestsThatContradictAreRefused)
{
    constexpr Case kCases[] = {
        {"number 1 --locale xx-YY", "--locale takes a name as de-DE, not 'xx-YY'"},
        {"number 1 --hex", "--hex needs --parse"},
        {"number 1 --parse --hex --kind i64", "--hex reads u32 and u64 only"},
        {"timecode", "either a value or --table is needed"},
        {"timecode --table 1..2 --to 25", "--table excludes --to"},
        {"timecode 1 --frames --nanos", "--frames and --nanos exclude each other"},
        {"timecode -1 --nanos", "a timecode has no negative times, as -1"},
        {"ruler 1 --read clock", "beats and clock are not read back"},
        {"ruler 1 --measure 4", "--measure takes BEATS/VALUE as 3/4, not '4'"},
        {"print '%s %s' one", "the format takes 2 arguments, and 1 are given"},
        {"print '%d%d%d%d%d%d%d%d%d' 1 2 3 4 5 6 7 8 9", "passes at most 8 arguments"},
        {"print %c ab", "a %c takes one character, not 'ab'"},
        {"print \"$(printf '\\355\\240\\200')\"", "is not UTF-8"}, // half a pair of surrogates
        {"print \"$(printf '\\300\\257')\"", "is not UTF-8"},      // a slash in two bytes
        {"print \"$(printf 'a\\303')\"", "is not UTF-8"},
        {"error 1 many", "CODE is a status as 0x8004E00A, or a decimal number, not 'many'"},
        {"error 1 0x123456789", "CODE is a status"},
        {"error '%s and %s' 2", "a text with one %s at most"},
        {"error 'line %d' 2", "a text with one %s at most"},
        {"error 1 2 --lang tlh", "--lang takes one of en, ja, de,"},
        {"prompt 0x4001 x", "flags with bits of 0xC000 need --details"},
        {"prompt maybe", "BUTTONS takes ok, ok-cancel,"},
        {"path x --from y", "--from and --to go together"},
        {"path x --from y --to z", "'x' does not begin with 'y'"},
        {"path x --only name --against y", "exclude each other"},
        {"path ''", "a path is empty"},
        {"path $(printf '%0260d' 0)", "a path has at most 259 characters"},
        {"print x --token =v", "--token takes NAME=VALUE, not '=v'"},
    };
    Expect(2, kCases);
}

std::u16string RandomFormat(Random& random)
{
    constexpr std::u16string_view kPieces[] = {
        u"%",  u"%", u"$",    u"$", u"$(", u"$(", u")", u")",  u"(", u"!", u"&", u"*", u",", u":", u".",
        u"-",  u"#", u"0",    u"5", u"32", u"64", u"I", u"I3", u"l", u"h", u"w", u"q", u"s", u"s", u"s",
        u"hs", u"d", u"I64d", u"g", u"f",  u"e",  u"z", u"c",  u"x", u"X", u"u", u"o", u"E", u"G", u"i"};
    std::u16string format;
    for (uint64_t count = random.Next() % 16; count > 0; --count)
        format += kPieces[random.Next() % std::size(kPieces)];
    if (random.Next() % 8 == 0) // around the longest form
        format.insert(random.Next() % (format.size() + 1), 255 + random.Next() % 7, u'1');
    return format;
}

// Were a form misjudged, a later %s would take a 1 for its text.
TEST(PrintCall, ScansFormatsAsTheEngineDoes)
{
    Random random;
    size_t conversions = 0;
    for (int round = 0; round < 100'000; ++round) {
        const std::u16string format = RandomFormat(random);
        auto kinds = ArgumentsOfFormat(format);
        if (kinds.size() > kMostPrintArguments)
            continue;
        conversions += kinds.size();
        kinds.resize(kMostPrintArguments, ArgumentKind::Integer32);
        const std::vector<std::string> words(kinds.size(), "1");
        std::vector<char16_t> text(4096);
        uint32_t length = 0;
        PrintArguments(kinds, words).PrintBounded(text, length, format);
        ASSERT_LT(length, text.size());
    }
    EXPECT_GT(conversions, 20'000u);
}

} // namespace
