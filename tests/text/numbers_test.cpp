#include "vx/numbers.h"

#include "lang/internationals.h"
#include "support/locales.h"
#include "support/random.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <string>

using namespace vxtest;

namespace {

constexpr uint64_t kMax64 = std::numeric_limits<uint64_t>::max();
constexpr int64_t kMin64 = std::numeric_limits<int64_t>::min();
constexpr int32_t kMin32 = std::numeric_limits<int32_t>::min();

template <class T>
std::u16string Plain(T value)
{
    const std::string text = std::to_string(value);
    return {text.begin(), text.end()};
}

std::u16string Separator()
{
    return vx::g_internationals.thousandsSeparator;
}

// Groups of three by inserting from the right.
std::u16string Grouped(std::u16string text)
{
    const size_t first = text.starts_with(u'-') ? 1 : 0;
    for (size_t at = std::min(text.find(u'.'), text.size()); at > first + 3;)
        text.insert(at -= 3, Separator());
    return text;
}

std::string Ascii(const std::u16string& text)
{
    return {text.begin(), text.end()};
}

// Values of every length, and those beside powers of ten and at the ends of a range.
template <class T>
T RandomValue(Random& random)
{
    if (random.Int(0, 3) != 0)
        return T(random.Next() >> random.Int(0, 63));
    uint64_t end = random.Int(0, 1) ? uint64_t(std::numeric_limits<T>::max()) : 1;
    if (end == 1)
        for (int power = random.Int(0, 19); power > 0; --power)
            end *= 10;
    return T(end + uint64_t(int64_t(random.Int(-2, 2)))); // a step past an end wraps to the other one
}

enum class Cut
{
    GivesLength, // the cut text's length is the result
    GivesZero,
};

template <class T>
struct Functions
{
    int32_t (*toText)(T, char16_t*, int32_t);
    int32_t (*toTextN)(T, char16_t*, int32_t, int32_t);
    T (*read)(const char16_t*, const char16_t**);
    int32_t leastCapacity;
    Cut cut;
};
constexpr Functions<uint32_t> kDWord{VxDWordToText, VxDWordToTextN, VxTextToDWordToken, 2, Cut::GivesZero};
constexpr Functions<uint64_t> kDWordLong{VxDWordLongToText, VxDWordLongToTextN, VxTextToDWordLongToken, 1,
                                         Cut::GivesLength};
constexpr Functions<int32_t> kLong{VxLongToText, VxLongToTextN, VxTextToLongToken, 2, Cut::GivesZero};
constexpr Functions<int64_t> kLongLong{VxLongLongToText, VxLongLongToTextN, VxTextToLongLongToken, 2,
                                       Cut::GivesZero};

// Every capacity: what stands, what is returned, and nothing behind it. Below the least capacity
// nothing is written.
void ExpectBounded(const std::u16string& whole, int32_t leastCapacity, Cut cut,
                   const std::function<int32_t(char16_t*, int32_t)>& write)
{
    const int32_t length = int32_t(whole.size());
    for (int32_t capacity = -1; capacity <= length + 2; ++capacity) {
        SCOPED_TRACE(testing::Message() << Ascii(whole) << ", capacity " << capacity);
        std::u16string text(40, u'#'), want = text;
        const int32_t kept = std::max(0, std::min(length, capacity - 1));
        if (capacity >= leastCapacity)
            want.replace(0, size_t(kept) + 1, whole.substr(0, size_t(kept)) + u'\0');
        EXPECT_EQ(write(text.data(), capacity), capacity > length || cut == Cut::GivesLength ? kept : 0);
        EXPECT_EQ(text, want);
    }
}

template <class T>
void ExpectRoundTrip(const Functions<T>& f, T value)
{
    for (const int32_t group : {0, 1}) {
        const std::u16string want = group ? Grouped(Plain(value)) : Plain(value);
        char16_t text[64];
        ASSERT_EQ(f.toText(value, text, group), int32_t(want.size()));
        ASSERT_EQ(text, want);
        const char16_t* end = nullptr;
        ASSERT_EQ(f.read(text, &end), value) << Ascii(want);
        ASSERT_EQ(end, text + want.size());
        // A negative number's room is that of the locale's sign: only here the two are of one length.
        if (!group || value >= 0 || vx::g_internationals.negativeSignLength == 1)
            ExpectBounded(want, f.leastCapacity, f.cut, [&](char16_t* out, int32_t capacity) {
                return f.toTextN(value, out, capacity, group);
            });
    }
}

std::u16string Call(const std::function<int32_t(char16_t*)>& write)
{
    char16_t text[128];
    const int32_t length = write(text);
    EXPECT_EQ(std::u16string(text).size(), size_t(length));
    return text;
}

std::u16string Double(double value, uint32_t decimals, int32_t group = 0)
{
    return Call([=](char16_t* text) { return VxDoubleToText(text, value, decimals, group); });
}

std::u16string FormatNumber(const char16_t* source)
{
    return Call([=](char16_t* text) { return VxFormatNumber(source, text, 128); });
}

std::u16string FormatDecimal(const char16_t* source)
{
    return Call([=](char16_t* text) { return VxFormatDecimalNumber(source, text, 128); });
}

std::u16string FormatGroup(const char16_t* source, uint32_t decimals)
{
    return Call([=](char16_t* text) { return VxFormatGroupDecimalNumber(source, text, 128, decimals); });
}

// The rule is one; each function must hand it its own arguments in the right order.
template <class T, class ReadEx>
void ExpectDefaultAndLimits(ReadEx readEx)
{
    const struct
    {
        const char16_t* text;
        int defaultValue, minimum, maximum, want, end;
    } cases[] = {
        {u"0;", 7, 0, 50, 7, 1},  // a zero with something behind it is no number
        {u"0 ;", 7, 0, 50, 0, 1}, // but white space ends one
        {u"0\u3000", 7, 0, 50, 0, 1}, {u"  ", 7, 3, 50, 3, 2},
        {u"9;", 7, 0, 50, 9, 1},      {u"xyz", 7, 8, 50, 8, 0},  // the default has the limits too
        {u"xyz", 70, 0, 50, 50, 0},   {u"30", 7, 40, 20, 40, 2}, // crossed limits: the minimum is first
        {u"45", 7, 40, 20, 20, 2},
    };
    for (const auto& c : cases) {
        const char16_t* end = nullptr;
        EXPECT_EQ(readEx(c.text, T(c.defaultValue), T(c.minimum), T(c.maximum), &end), T(c.want))
            << &c - cases;
        EXPECT_EQ(end - c.text, c.end) << &c - cases;
        EXPECT_EQ(readEx(c.text, T(c.defaultValue), T(c.minimum), T(c.maximum), nullptr), T(c.want));
    }
}

TEST(Numbers, DefaultsAndLimits)
{
    const OnlyLocale locale("en-US");
    ExpectDefaultAndLimits<uint32_t>(VxTextToDWordTokenEx);
    ExpectDefaultAndLimits<uint64_t>(VxTextToDWordLongTokenEx);
    ExpectDefaultAndLimits<int32_t>(VxTextToLongTokenEx);
    ExpectDefaultAndLimits<int64_t>(VxTextToLongLongTokenEx);
    for (const int32_t localised : {0, 1})
        ExpectDefaultAndLimits<double>(
            [=](const char16_t* text, double value, double low, double high, const char16_t** end) {
                return VxTextToDoubleTokenEx(text, value, low, high, end, localised);
            });

    EXPECT_EQ(VxHexToDWordTokenEx(u"10", 7, 0, 50, nullptr), 16u);
    EXPECT_EQ(VxHexToDWordTokenEx(u"FF", 7, 0, 50, nullptr), 50u);
    EXPECT_EQ(VxHexToDWordLongTokenEx(u"0x1ffffffff", 7, 0, kMax64, nullptr), 0x1FFFFFFFFu);
    EXPECT_EQ(VxHexToDWordLongTokenEx(u"0;", 7, 8, 50, nullptr), 8u);
    EXPECT_EQ(VxTextToLongTokenEx(u"-9", 0, -5, 5, nullptr), -5);
    EXPECT_EQ(VxTextToDoubleTokenEx(u"-0;", 2.5, -1, 3, nullptr, 0), 2.5);
    EXPECT_EQ(VxTextToDoubleTokenEx(u"0.25", 2.5, 0.5, 3, nullptr, 0), 0.5);
}

TEST(Numbers, ALongTokenReadsAsItsFirst63Characters)
{
    const OnlyLocale locale("en-US");
    const std::u16string zeros(62, u'0'), tooLong = zeros + u"78,9.5;";
    const char16_t* end = nullptr;
    EXPECT_EQ(VxTextToLongToken(tooLong.c_str(), &end), 7);
    EXPECT_EQ(*end, u';');
    EXPECT_EQ(VxTextToLongToken((u"-" + zeros + u"7").c_str(), nullptr), 0);
    EXPECT_EQ(VxTextToDoubleToken(tooLong.c_str(), &end, 0), 7.0);
}

} // namespace

TEST(Numbers, IntegersGoToTextAndBackInEveryLocale)
{
    Random random;
    for (const char* name : kLocales) {
        SCOPED_TRACE(name);
        const OnlyLocale locale(name);
        for (int i = 0; i < 100; ++i) {
            ExpectRoundTrip(kDWord, RandomValue<uint32_t>(random));
            ExpectRoundTrip(kDWordLong, RandomValue<uint64_t>(random));
            ExpectRoundTrip(kLong, RandomValue<int32_t>(random));
            ExpectRoundTrip(kLongLong, RandomValue<int64_t>(random));
        }
    }
}

TEST(Numbers, DoublesToText)
{
    const OnlyLocale locale("en-US");
    const struct
    {
        double value;
        uint32_t decimals;
        const char16_t* want;
    } cases[] = {
        {0.999, 2, u"1.00"},
        {-0.001, 2, u"0.00"},
        {-0.006, 2, u"-0.01"},
        {-0.005, 2, u"0.00"}, // the float unit of two decimals is a little below 0.01
        {-2.5, 0, u"-3"},
        {1.05, 1, u"1.1"},
        {1234567.005, 3, u"1234567.005"},
        {0.1, 12, u"0.100000000"},
        {0.1, uint32_t(-1), u"0.100000000"},
        {18446744073709549568.0, 0, u"18446744073709549568"},
        {0x1p64, 0, u"18446744073709551615"},
        {-1e300, 2, u"-18446744073709551615.00"},
        {std::numeric_limits<double>::quiet_NaN(), 1, u"0.0"},
    };
    for (const auto& c : cases)
        for (const int32_t group : {0, 1}) {
            const std::u16string want = group ? Grouped(c.want) : c.want;
            EXPECT_EQ(Double(c.value, c.decimals, group), want);
            ExpectBounded(want, 1, Cut::GivesLength, [&](char16_t* text, int32_t capacity) {
                return VxDoubleToTextN(text, capacity, c.value, c.decimals, group);
            });
        }
}

TEST(Numbers, DoublesGoToTextAndBackInEveryLocale)
{
    Random random;
    for (const char* name : kLocales) {
        SCOPED_TRACE(name);
        const OnlyLocale locale(name);
        for (int i = 0; i < 2000; ++i) {
            const uint32_t decimals = uint32_t(random.Int(0, 9));
            const double value = (random.Unit() - 0.5) * std::pow(10.0, random.Int(0, 6));
            const double tolerance = 0.5001 * std::pow(10.0, -int(decimals)) + 1e-15 * std::fabs(value);
            for (const int32_t group : {0, 1}) {
                const std::u16string text = Double(value, decimals, group);
                const char16_t* end = nullptr;
                ASSERT_NEAR(VxTextToDoubleToken(text.c_str(), &end, group), value, tolerance) << Ascii(text);
                ASSERT_EQ(end, text.c_str() + text.size()) << Ascii(text);
            }
        }
    }
}

TEST(Numbers, TextForAPerson)
{
    const OnlyLocale locale("de-DE");
    const struct
    {
        const char16_t *source, *number, *decimal, *group;
    } cases[] = {
        // rounded and grouped; its decimals; both
        {u"1234567", u"1.234.567", u"1234567", u"1.234.567"},
        {u"1234.50", u"1.235", u"1234,50", u"1.234,50"},
        {u"-0.4", u"0", u"-0,4", u"-0,4"},
        {u".7", u"1", u"0,7", u"0,7"},
        {u"5.", u"5", u"5", u"5"},
        // what is in front is copied, with zeros
        {u"", u"", u"", u""},
        {u"   0012345", u"   0012.345", u"   0012345", u"   0012.345"},
        {u"000", u"000", u"000", u"000"},
        {u"00.5", u"01", u"00,5", u"00,5"},
        {u"-0012345", u"-12.345", u"-12345", u"-12.345"},
        // no number behind it
        {u"no number", u"no number", u"no number", u"no number"},
        {u"a-b", u"a", u"a", u"a"},
        {u"12x", u"", u"", u""},
        {u"1.0123456789", u"1", u"", u""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(FormatNumber(c.source), c.number) << &c - cases;
        EXPECT_EQ(FormatDecimal(c.source), c.decimal) << &c - cases;
        ExpectBounded(c.group, 1, Cut::GivesZero, [&](char16_t* text, int32_t capacity) {
            return VxFormatGroupDecimalNumber(c.source, text, capacity, VXNUM_COUNT_DECIMALS);
        });
    }
    EXPECT_EQ(FormatGroup(u"1234.50", 1), u"1.234,5");
    EXPECT_EQ(FormatGroup(u"1234.56", 0), u"1.235");
    EXPECT_EQ(FormatGroup(u"1234", 3), u"1.234,000");
    EXPECT_EQ(FormatGroup(u"1234", 10), u"");
}

// Though a plain one is delivered.
TEST(Numbers, TheRoomMustHoldTheLocalesOwnSign)
{
    for (const char* name : kLocales) {
        const OnlyLocale locale(name);
        const std::u16string want = u"x-1" + Separator() + u"234";
        const int32_t room = int32_t(want.size() + vx::g_internationals.negativeSignLength);
        char16_t text[16];
        EXPECT_EQ(VxFormatNumber(u"x-1234", text, room), int32_t(want.size())) << name;
        EXPECT_EQ(text, want);
        EXPECT_EQ(VxFormatNumber(u"x-1234", text, room - 1), 0) << name;
        EXPECT_EQ(text[1], u'-') << name;
    }
}

TEST(Numbers, TokensOfIntegers)
{
    const OnlyLocale locale("en-US");
    const struct
    {
        const char16_t* text;
        int end;
        uint64_t unsigned64;
        int64_t signed64;
    } cases[] = {
        {u"  ", 2, 0, 0},
        {u"  1,234abc", 7, 1234, 1234},
        {u"\t\u00A0\u3000\n7", 5, 7, 7},
        {u",,5,,", 5, 5, 5},
        {u"1.2.3x", 5, 1, 1},
        {u".5", 2, 0, 0},
        {u"-12", 3, 0, -12},
        {u"- 5", 1, 0, 0},
        {u"--5", 1, 0, 0},
        {u"+5", 0, 0, 0},
        {u"\u22125", 0, 0, 0},
        {u"\u0661\u0662", 0, 0, 0},
        {u"18446744073709551615", 20, kMax64, std::numeric_limits<int64_t>::max()},
        {u"18446744073709551617", 20, 1, std::numeric_limits<int64_t>::max()},
        {u"-9223372036854775808", 20, 0, kMin64},
        {u"-9223372036854775809", 20, 0, kMin64},
        {u"9223372036854775807", 19, uint64_t(std::numeric_limits<int64_t>::max()),
         std::numeric_limits<int64_t>::max()},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        const char16_t* end[4] = {};
        EXPECT_EQ(VxTextToDWordLongToken(c.text, &end[0]), c.unsigned64);
        EXPECT_EQ(VxTextToDWordToken(c.text, &end[1]), uint32_t(c.unsigned64));
        EXPECT_EQ(VxTextToLongLongToken(c.text, &end[2]), c.signed64);
        EXPECT_EQ(VxTextToLongToken(c.text, &end[3]),
                  int32_t(std::clamp<int64_t>(c.signed64, kMin32, std::numeric_limits<int32_t>::max())));
        for (const char16_t* e : end)
            EXPECT_EQ(e - c.text, c.end);
        EXPECT_EQ(VxTextToDWordLongToken(c.text, nullptr), c.unsigned64);
    }
}

TEST(Numbers, TokensOfDoubles)
{
    const OnlyLocale locale("de-DE");
    const struct
    {
        const char16_t* text;
        double plain, localised;
        int plainEnd, localisedEnd;
    } cases[] = {
        {u"1.234,5", 1.2345, 1234.5, 7, 7},
        {u"-1,5x", -15, -1.5, 4, 4},
        {u"1.2.3", 1.2, 123, 5, 5},
        {u",5", 5, 0.5, 2, 2},
        {u"1e5", 1, 1, 1, 1},
        {u"inf", 0, 0, 0, 0},
        {u"-.", 0, 0, 2, 2},
        {u"9007199254740993", 9007199254740992.0, 9007199254740992.0, 16, 16},
    };
    for (const auto& c : cases) {
        const char16_t* end = nullptr;
        EXPECT_EQ(VxTextToDoubleToken(c.text, &end, 0), c.plain) << &c - cases;
        EXPECT_EQ(end - c.text, c.plainEnd) << &c - cases;
        EXPECT_EQ(VxTextToDoubleToken(c.text, &end, 1), c.localised) << &c - cases;
        EXPECT_EQ(end - c.text, c.localisedEnd) << &c - cases;
    }
}

TEST(Numbers, TokensOfHexadecimals)
{
    const struct
    {
        const char16_t* text;
        int end;
        uint64_t value;
    } cases[] = {{u"ff", 2, 255},   {u" \t0XaBcDeF g", 10, 0xABCDEF},
                 {u"0x", 2, 0},     {u"-1", 0, 0},
                 {u"1,2", 1, 1},    {u"123456789ABCDEF01", 17, 0x23456789ABCDEF01},
                 {u"@G`g/:", 0, 0}, {u"0\u0141", 1, 0}}; // its low byte is an A
    for (const auto& c : cases) {
        const char16_t* end = nullptr;
        EXPECT_EQ(VxHexToDWordLongToken(c.text, &end), c.value) << &c - cases;
        EXPECT_EQ(end - c.text, c.end) << &c - cases;
        EXPECT_EQ(VxHexToDWordToken(c.text, nullptr), uint32_t(c.value)) << &c - cases;
    }
}
