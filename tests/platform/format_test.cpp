#include "vx/platform/format.h"

#include "support/random.h"
#include "vx/platform/debug.h"
#include "vx/platform/lasterror.h"

#include <bit>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <vector>

using namespace vxtest;

namespace {

constexpr size_t kRoom = 2500;

std::u16string Wide(const std::string& text)
{
    return {text.begin(), text.end()};
}

std::string Narrow(const std::u16string& text)
{
    return {text.begin(), text.end()};
}

VxFormatValue Integer(uint64_t value)
{
    return {.kind = VxFormatKind_Integer, .as = {.integer = value}};
}

VxFormatValue Text(const void* text)
{
    return {.kind = VxFormatKind_Text, .as = {.text = text}};
}

// Whole, and at a random capacity with a guard behind it.
void ExpectFormats(Random& random, const std::string& conversion, const VxFormatValue& value,
                   const std::string& want)
{
    std::u16string text(kRoom, u'#');
    const std::u16string wide = Wide(conversion);
    ASSERT_EQ(VxPlatform_FormatValue(text.data(), kRoom, wide.c_str(), &value), int64_t(want.size()))
        << conversion;
    ASSERT_EQ(Narrow(text.c_str()), want) << conversion;
    const size_t capacity = size_t(random.Int(0, int32_t(want.size()) + 1));
    text.assign(kRoom, u'#');
    ASSERT_EQ(VxPlatform_FormatValue(text.data(), capacity, wide.c_str(), &value), int64_t(want.size()));
    ASSERT_EQ(text.find_first_not_of(u'#', capacity), text.npos) << conversion << ", capacity " << capacity;
    if (capacity > 0) {
        ASSERT_EQ(Narrow(text.c_str()), want.substr(0, capacity - 1)) << conversion;
    }
}

std::string RandomFlags(Random& random)
{
    std::string flags;
    while (random.Int(0, 2) != 0)
        flags += "-+ #0"[random.Int(0, 4)];
    return flags;
}

std::string RandomWidthAndPrecision(Random& random, int32_t mostPrecision)
{
    std::string text;
    if (random.Int(0, 1))
        text += std::to_string(random.Int(1, 40));
    if (random.Int(0, 1)) {
        text += '.';
        if (random.Int(0, 5) != 0)
            text += std::to_string(random.Int(0, mostPrecision));
    }
    return text;
}

template <class... Arguments>
std::string ByTheCLibrary(const std::string& conversion, Arguments... arguments)
{
    char text[kRoom];
    const int length = std::snprintf(text, sizeof(text), conversion.c_str(), arguments...);
    return {text, size_t(length)};
}

// Arbitrary bits; halves in every place, and 0.
double RandomDouble(Random& random)
{
    if (random.Int(0, 1))
        return std::bit_cast<double>(random.Next());
    const int32_t fives = random.Int(0, 3) ? random.Int(-99999, 99999) : random.Int(-1, 1);
    return double(fives) * 5 / double(uint64_t(1) << random.Int(0, 50));
}

} // namespace

TEST(FormatValue, IntegersAreThoseOfTheCLibrary)
{
    constexpr const char* kSizes[][2] = {{"", ""},      {"h", "h"},  {"hh", "hh"}, {"l", ""},   {"L", ""},
                                         {"I64", "ll"}, {"I32", ""}, {"I", "ll"},  {"ll", "ll"}}; // ours, its
    Random random;
    for (int i = 0; i < 100000; ++i) {
        const std::string front = "%" + RandomFlags(random) + RandomWidthAndPrecision(random, 45);
        const auto& [ours, its] = kSizes[random.Int(0, 8)];
        const char letter = "diuxXo"[random.Int(0, 5)];
        const uint64_t value = random.Int(0, 3) == 0 ? 0 : random.Next() >> random.Int(0, 63);
        const std::string want = ByTheCLibrary(front + its + letter, value);
        ASSERT_NO_FATAL_FAILURE(ExpectFormats(random, front + ours + letter, Integer(value), want));
    }
}

TEST(FormatValue, DoublesAreThoseOfTheCLibrary)
{
    Random random;
    for (int i = 0; i < 100000; ++i) {
        const int32_t mostPrecision = i % 100 == 0 ? 1500 : 25;
        const std::string conversion = "%" + RandomFlags(random) +
                                       RandomWidthAndPrecision(random, mostPrecision) +
                                       "eEfgG"[random.Int(0, 4)];
        const double value = RandomDouble(random);
        ASSERT_NO_FATAL_FAILURE(ExpectFormats(random, conversion,
                                              {.kind = VxFormatKind_Double, .as = {.number = value}},
                                              ByTheCLibrary(conversion, value)))
            << value;
    }
}

TEST(FormatValue, TextsAreThoseOfTheCLibrary)
{
    Random random;
    for (int i = 0; i < 20000; ++i) {
        std::string flags = RandomFlags(random);
        std::erase(flags, '0'); // pads texts with zeros here
        const std::string front = "%" + flags + RandomWidthAndPrecision(random, 20);
        const std::string text(size_t(random.Int(0, 30)), char(random.Int('a', 'z')));
        const std::string want = ByTheCLibrary(front + "s", text.c_str());
        const std::u16string wide = Wide(text);
        for (const char* size : {"", "l", "w"})
            ASSERT_NO_FATAL_FAILURE(ExpectFormats(random, front + size + "s", Text(wide.c_str()), want));
        ASSERT_NO_FATAL_FAILURE(ExpectFormats(random, front + "hs", Text(text.c_str()), want));
        ASSERT_NO_FATAL_FAILURE(
            ExpectFormats(random, front + "c", Integer('x'), ByTheCLibrary(front + "c", 'x')));
    }
}

TEST(FormatValue, TextsAreNotReadBehindTheirPrecision)
{
    const std::vector<char16_t> unterminated = {u'a', u'b', u'c'}; // at the end of its block
    char16_t text[8];
    const VxFormatValue value = Text(unterminated.data());
    EXPECT_EQ(VxPlatform_FormatValue(text, 8, u"%.3s", &value), 3);
    EXPECT_EQ(std::u16string(text), u"abc");
    const VxFormatValue null = Text(nullptr);
    EXPECT_EQ(VxPlatform_FormatValue(text, 8, u"%03hs", &null), 3);
    EXPECT_EQ(std::u16string(text), u"000");
}

TEST(FormatValue, WhatIsNoConversionWritesNothing)
{
    const VxFormatValue integer = Integer(5), text = Text(u"text"),
                        number{.kind = VxFormatKind_Double, .as = {.number = 1.5}};
    const struct
    {
        const char16_t* conversion;
        const VxFormatValue& value;
    } cases[] = {
        {u"", integer},     {u"%", integer},    {u"d", integer},  {u"%d ", integer}, {u"%5 d", integer},
        {u"%I6d", integer}, {u"%hld", integer}, {u"%n", integer}, {u"%s", integer},  {u"%f", integer},
        {u"%c", text},      {u"%g", text},      {u"%d", number},  {u"%s", number},   {u"%a", number},
    };
    for (const auto& c : cases) {
        char16_t out[] = u"####";
        EXPECT_EQ(VxPlatform_FormatValue(out, 4, c.conversion, &c.value), -1) << Narrow(c.conversion);
        EXPECT_EQ(std::u16string(out), u"####");
    }
}

namespace {

// A text, its length, the error.
using Message = std::tuple<std::u16string, DWORD, DWORD>;

Message Fill(DWORD size, const char16_t* source, ...)
{
    std::u16string text(100, u'#');
    SetLastError(ERROR_SUCCESS);
    va_list arguments;
    va_start(arguments, source);
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_FROM_STRING, source, 0, 0, text.data(), size, &arguments);
    va_end(arguments);
    EXPECT_EQ(text.find_first_not_of(u'#', size), text.npos);
    return {text.c_str(), length, GetLastError()};
}

Message Filled(const std::u16string& text)
{
    return {text, DWORD(text.size()), ERROR_SUCCESS};
}

Message Refused(DWORD error)
{
    return {u"", 0, error};
}

} // namespace

TEST(FormatMessage, Templates)
{
    const DWORD all = 100;
    EXPECT_EQ(Fill(all, u"%1 and %2, %1", u"one", u"two"), Filled(u"one and two, one"));
    EXPECT_EQ(
        Fill(all, u"%1!d!%2!I64x!%3!c!%4!hs!%5!.2s!", -5, INT64_C(0xABCDEF0123), u'c', "narrow", u"wide"),
        Filled(u"-5abcdef0123cnarrowwi"));
    EXPECT_EQ(Fill(all, u"%1!*d!|%1!-*.*s!|%4", 5, 3, u"text", u"4th"), Filled(u"    3|tex  |4th"));
    EXPECT_EQ(Fill(all, u"%12%11!u!", u"1", 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, u"twelve"), Filled(u"twelve11"));
    EXPECT_EQ(Fill(all, u"a%nb%rc%td%be%.%!%%% f%0g"), Filled(u"a\r\nb\rc\td e.!% f"));
    EXPECT_EQ(Fill(all, u"%1!s%", u"x"), Refused(ERROR_INVALID_PARAMETER));
    for (const char16_t* damaged : {u"%", u"a%1!d", u"%1!!", u"%1!f!", u"%99!*d!"})
        EXPECT_EQ(Fill(all, damaged, 1, 2), Refused(ERROR_INVALID_PARAMETER)) << Narrow(damaged);
}

TEST(FormatMessage, EveryCapacity)
{
    const std::u16string whole = u"a text, 00012\r\n";
    for (DWORD size = 0; size <= whole.size() + 1; ++size) {
        const Message cut(size ? u"" : std::u16string(100, u'#'), 0, ERROR_INSUFFICIENT_BUFFER);
        EXPECT_EQ(Fill(size, u"a %1, %2!05d!%n", u"text", 12), size > whole.size() ? Filled(whole) : cut)
            << size;
    }
}
