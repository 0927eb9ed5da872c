#include "vx/ruler.h"

#include "support/locales.h"
#include "support/random.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace {

using namespace vxtest;

constexpr int64_t kSecond = 10'000'000;
constexpr int64_t kHourTwoMinutesThreeAndAHalf = 37'235'000'000;

_vxposfmt Format(int32_t format)
{
    return {format, 44'100, 30.0, 120.0, 0, 4, 4, 960};
}

std::u16string Text(const _vxposfmt& format, int64_t nanos, uint32_t flags = 0)
{
    char16_t text[128] = {};
    const int32_t length = VxNanoTimeToTextEx(text, &format, nanos, flags);
    EXPECT_EQ(size_t(length), std::u16string(text).size());
    return text;
}

int64_t Read(const char16_t* text, const _vxposfmt& format, uint32_t flags = 0)
{
    return VxTextToNanoTimeToken2(text, &format, 0, 0, 0, flags, nullptr);
}

class Ruler : public testing::Test
{
    OnlyLocale locale_{"en-US"};
};

TEST_F(Ruler, ShowsOneTimeInAllFormats)
{
    const struct
    {
        int32_t format;
        const char16_t *full, *shortForm;
    } cases[] = {
        {VXPOSFMT_SAMPLES, u"164,206,350", u"164,206,350"},
        {VXPOSFMT_TIME, u"01:02:03.500", u"01:02:03"},
        {VXPOSFMT_SECONDS, u"3,723.500", u"3,723"},
        {VXPOSFMT_TIME_FRAMES, u"01:02:03.15", u"01:02:03"},
        {VXPOSFMT_ABS_FRAMES, u"111,705.000", u"111,705"},
        {VXPOSFMT_MEASURES, u"1,862.4.000", u"1,862.4"},
        {VXPOSFMT_SMPTE_2997, u"01:01:59:23", u"01:01:59:23"},
        {VXPOSFMT_SMPTE_30, u"01:02:03:15", u"01:02:03:15"},
        {VXPOSFMT_SMPTE_DROP, u"01:02:03;15", u"01:02:03;15"},
        {VXPOSFMT_SMPTE_25, u"01:02:03:12", u"01:02:03:12"},
        {VXPOSFMT_SMPTE_24, u"01:02:03:12", u"01:02:03:12"},
        {VXPOSFMT_NANOS, u"37,235,000,000", u"37,235,000,000"},
        {VXPOSFMT_MICROS, u"3,723,500,000", u"3,723,500,000"},
        {VXPOSFMT_MEASURES_ZERO, u"1,861.3.000", u"1,861.3"},
        {VXPOSFMT_BEATS, u"7,447.000", u"7,447"},
        {VXPOSFMT_FEET_40, u"2,792+25", u"2,792+25"},
        {VXPOSFMT_FEET_16, u"6,981+9", u"6,981+9"},
        {VXPOSFMT_CD, u"01:02:03:38", u"01:02:03"},
        {VXPOSFMT_SMPTE_23976, u"01:01:59:18", u"01:01:59:18"},
        {VXPOSFMT_CLOCK, u"1:02:03", u"1:02:03"},
        {20, u"37,235,000,000", u"37,235,000,000"},
        {-1, u"37,235,000,000", u"37,235,000,000"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Text(Format(c.format), kHourTwoMinutesThreeAndAHalf), c.full) << c.format;
        EXPECT_EQ(Text(Format(c.format), kHourTwoMinutesThreeAndAHalf, VXPOS_SHORT), c.shortForm) << c.format;
        EXPECT_EQ(Text(Format(c.format), -kHourTwoMinutesThreeAndAHalf), u"-" + std::u16string(c.full));
    }
}

TEST_F(Ruler, RoundsEachFormatItsOwnWay)
{
    const struct
    {
        const char* name;
        int32_t format;
        int64_t nanos;
        uint32_t flags;
        const char16_t* want;
    } cases[] = {
        {"seconds round", VXPOSFMT_SECONDS, 2'999'999, 0, u"0.300"},
        {"short seconds truncate", VXPOSFMT_SECONDS, 9'999'999, VXPOS_SHORT, u"0"},
        {"half a millisecond is added", VXPOSFMT_TIME, 9'999'999, 0, u"00:00:01.000"},
        {"short frames are those begun", VXPOSFMT_ABS_FRAMES, 333'333, VXPOS_SHORT, u"1"},
        {"microseconds round", VXPOSFMT_MICROS, 15, 0, u"2"},
        {"hours wrap at a day", VXPOSFMT_TIME, 25 * 3600 * kSecond, VXPOS_SHORT, u"01:00:00"},
        {"minutes and seconds", VXPOSFMT_CLOCK, (9 * 60 + 5) * kSecond, 0, u"9:05"},
        {"one hour", VXPOSFMT_CLOCK, 3600 * kSecond, 0, u"1:00:00"},
        {"a length is not counted from 1", VXPOSFMT_MEASURES, 0, VXPOS_LENGTH, u"0.0.000"},
        {"a position is", VXPOSFMT_MEASURES, 0, 0, u"1.1.000"},
        {"the smallest time", VXPOSFMT_MICROS, INT64_MIN, 0, u"-922,337,203,685,477,581"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Text(Format(c.format), c.nanos, c.flags), c.want) << c.name;
}

// A grouped number that is cut stands without its groups; clock fields are cut where they stand.
TEST_F(Ruler, BoundedTextStaysInItsRoom)
{
    for (int32_t number = 0; number <= VXPOSFMT_CLOCK; ++number) {
        const _vxposfmt format = Format(number);
        const std::u16string whole = Text(format, -kHourTwoMinutesThreeAndAHalf);
        for (uint32_t capacity = 0; capacity <= whole.size() + 3; ++capacity) {
            std::u16string text(64, u'#');
            const int32_t length =
                VxNanoTimeToTextN(text.data(), capacity, &format, -kHourTwoMinutesThreeAndAHalf, 0);
            ASSERT_EQ(text[capacity], u'#') << "format " << number << ", capacity " << capacity;
            if (capacity == 0)
                continue;
            ASSERT_EQ(text.find(u'\0'), size_t(length));
            if (capacity > whole.size() || number == VXPOSFMT_SMPTE_25) {
                ASSERT_EQ(text.substr(0, size_t(length)), whole.substr(0, capacity - 1));
            }
        }
    }
}

// What a format shows, read and shown again, is the same text; and the time is off by less than one
// unit of the format's last place.
TEST_F(Ruler, TextReadsBack)
{
    const struct
    {
        int32_t format;
        int64_t unit;
        int64_t longest; // where fields wrap, doubles lose the last place, or feet are grouped
    } cases[] = {
        {VXPOSFMT_SAMPLES, kSecond / 44'100 + 1, kSecond * 1'000'000},
        {VXPOSFMT_TIME, 10'000, kSecond * 86'399},
        {VXPOSFMT_SECONDS, 10'000, kSecond * 1'000'000},
        {VXPOSFMT_TIME_FRAMES, kSecond / 30 + 1, kSecond * 86'399},
        {VXPOSFMT_ABS_FRAMES, kSecond / 30'000 + 1, kSecond * 1'000'000},
        {VXPOSFMT_SMPTE_2997, kSecond / 29 + 1, kSecond * 86'000},
        {VXPOSFMT_SMPTE_30, kSecond / 30 + 1, kSecond * 86'000},
        {VXPOSFMT_SMPTE_DROP, kSecond / 29 + 1, kSecond * 86'000},
        {VXPOSFMT_SMPTE_25, kSecond / 25 + 1, kSecond * 86'000},
        {VXPOSFMT_SMPTE_24, kSecond / 24 + 1, kSecond * 86'000},
        {VXPOSFMT_NANOS, 1, int64_t(1) << 61},
        {VXPOSFMT_MICROS, 10, int64_t(1) << 60},
        {VXPOSFMT_FEET_40, kSecond / 30 + 1, kSecond * 1'300},
        {VXPOSFMT_FEET_16, kSecond / 30 + 1, kSecond * 530},
        {VXPOSFMT_CD, kSecond / 75 + 1, kSecond * 86'399},
        {VXPOSFMT_SMPTE_23976, kSecond / 23 + 1, kSecond * 86'000},
    };
    Random random;
    for (const auto& c : cases) {
        const _vxposfmt format = Format(c.format);
        for (int i = 0; i < 500; ++i) {
            const int64_t nanos = int64_t(random.Unit() * double(c.longest));
            const std::u16string text = Text(format, nanos);
            const int64_t back = Read(text.c_str(), format);
            ASSERT_LE(std::abs(back - nanos), c.unit) << "format " << c.format << ", " << nanos;
            ASSERT_EQ(Text(format, back), text) << "format " << c.format;
            ASSERT_EQ(Read((u"-" + text).c_str(), format), -back) << "format " << c.format;
        }
    }
}

TEST_F(Ruler, ReadsWhatIsTyped)
{
    const struct
    {
        int32_t format;
        const char16_t* text;
        int64_t want; // nano time
        int32_t end;  // characters used
    } cases[] = {
        {VXPOSFMT_TIME, u"4294967295:59:59.999", int64_t(15'461'882'265'599'999u * 10'000u), 20}, // wraps
        {VXPOSFMT_TIME, u"5", 5 * kSecond, 1},
        {VXPOSFMT_TIME, u"5:", 5 * kSecond, 2},
        {VXPOSFMT_TIME, u"1:30", 13'000'000, 4},
        {VXPOSFMT_TIME, u"1:2:3:4", 3720 * kSecond + 34'000'000, 7},
        {VXPOSFMT_TIME, u"0:1.2345", 12'340'000, 8},
        {VXPOSFMT_TIME, u"1:2:3:4:5", 3720 * kSecond + 34'000'000, 7},
        {VXPOSFMT_TIME, u"0.123456789012345", 1'230'000, 17},
        {VXPOSFMT_TIME, u"  -5  ", -5 * kSecond, 4},
        {VXPOSFMT_TIME, u"abc", 0, 0},
        {VXPOSFMT_TIME_FRAMES, u"1:15", 15'000'000, 4},
        {VXPOSFMT_FEET_16, u"2+10", 14'000'000, 4},
        {VXPOSFMT_FEET_40, u"10", 3'333'333, 2},
        {VXPOSFMT_SECONDS, u"1.5x", 15'000'000, 3},
        {VXPOSFMT_SECONDS, u"999999999999999", 2'305'843'009'209'999'872, 15},
        {VXPOSFMT_MEASURES, u"3", 15'625, 1},
        {VXPOSFMT_MEASURES, u"2.1.0", 20'000'000, 5},
        {VXPOSFMT_MEASURES_ZERO, u"1.0.0", 20'000'000, 5},
        {VXPOSFMT_CD, u"1:75", 2 * kSecond, 4},
        {VXPOSFMT_CLOCK, u"5", 0, 1},
        {VXPOSFMT_TIME, u"-", 0, 1},
    };
    for (const auto& c : cases) {
        const _vxposfmt format = Format(c.format);
        const char16_t* end = nullptr;
        EXPECT_EQ(VxTextToNanoTimeToken(c.text, &format, 0, &end), c.want)
            << c.format << testing::PrintToString(std::u16string(c.text));
        EXPECT_EQ(end - c.text, c.end) << c.format << testing::PrintToString(std::u16string(c.text));
    }
    const _vxposfmt format = Format(VXPOSFMT_TIME);
    EXPECT_EQ(VxTextToNanoTimeToken(u"1:2:3:4", &format, 1, nullptr), (3600 + 120 + 3) * kSecond) << "short";
    _vxposfmt noRate = Format(VXPOSFMT_SAMPLES);
    noRate.samplesPerSecond = 0;
    EXPECT_EQ(Read(u"44100", noRate), 0);
}

TEST_F(Ruler, TicksToText)
{
    const struct
    {
        const char* name;
        int64_t ticks;
        uint16_t beatValue;
        int32_t oneBased, shortForm;
        uint32_t divisor;
        const char16_t* want;
    } cases[] = {
        {"no measure 0", -1, 4, 1, 0, 1, u"-1.4.959"}, {"from 0", -1, 4, 0, 0, 1, u"-1.3.959"},
        {"divided", -1, 4, 1, 0, 10, u"-1.4.095"},     {"short", 960, 4, 1, 1, 1, u"1.2"},
        {"eighths", 480, 8, 1, 0, 1, u"1.2.000"},
    };
    for (const auto& c : cases) {
        _vxposfmt format = Format(VXPOSFMT_MEASURES);
        format.beatValue = c.beatValue;
        char16_t text[64];
        VxTicksToText(text, &format, c.ticks, c.oneBased, c.shortForm, c.divisor);
        EXPECT_EQ(text, std::u16string(c.want)) << c.name;
    }
    const _vxposfmt format = Format(VXPOSFMT_MEASURES);
    EXPECT_EQ(VxMeasuresAndTicksToText(nullptr, &format, 0, 0, 1, 0, 1), 0);
    char16_t text[64];
    VxMeasuresAndTicksToText(text, &format, 5, -2 * 4 * 960 - 1, 0, 0, 1);
    EXPECT_EQ(text, std::u16string(u"2.3.959")) << "as many measures back as it takes";
}

TEST_F(Ruler, TicksFromText)
{
    const _vxposfmt format = Format(VXPOSFMT_MEASURES);
    const struct
    {
        const char16_t* text;
        int32_t base, multiplier;
        int64_t measures, beats, ticks, want;
    } cases[] = {
        {u"2.3.4", 1, 1, 1, 2, 4, 5764},
        {u"2.3.4", 0, 10, 2, 3, 40, 10'600},
        {u"-2", 1, 1, -2, 0, 0, -7680},
        {u"x", 1, 1, 0, 0, 0, 0},
    };
    for (const auto& c : cases) {
        int64_t measures, beats, ticks;
        EXPECT_EQ(
            VxTextToMeasuresBeatsTicks(c.text, &format, c.base, c.multiplier, &measures, &beats, &ticks),
            c.want);
        EXPECT_EQ(measures, c.measures);
        EXPECT_EQ(beats, c.beats);
        EXPECT_EQ(ticks, c.ticks);
        EXPECT_EQ(VxTextToTicks(c.text, &format, c.base, c.multiplier), c.want);
    }
    int64_t beats, ticks;
    EXPECT_EQ(VxTextToBeatsTicks(u"-3.4", &format, 2, &beats, &ticks), 3 * 960 + 8)
        << "the sign has no effect";
    EXPECT_EQ(beats, 3);
    EXPECT_EQ(ticks, 8);
}

TEST_F(Ruler, DefaultsAndLimits)
{
    const struct
    {
        const char* name;
        const char16_t* text;
        uint32_t flags;
        int64_t offset, want;
    } cases[] = {
        {"empty text gives the default, moved by the offset", u"", 0, 7, 12},
        {"a lone sign is 0", u"-", 0, 7, 7},
        {"no number gives the default under limits", u"abc", VXPOS_LIMITS, 0, 5},
        {"a 0 with something behind it too", u"0;", VXPOS_LIMITS, 0, 5},
        {"a 0 does not", u"0", VXPOS_LIMITS, 0, 0},
        {"the test sees the offset", u"abc", VXPOS_LIMITS, 7, 7},
        {"minimum", u"-1000", VXPOS_LIMITS, 0, -100},
        {"without limits", u"1000", 0, 0, 1000},
    };
    for (const auto& c : cases) {
        _vxposfmt format = Format(VXPOSFMT_NANOS);
        format.rulerOffset = c.offset;
        EXPECT_EQ(VxTextToNanoTimeToken2(c.text, &format, 5, -100, 100, c.flags, nullptr), c.want) << c.name;
    }
    const _vxposfmt format = Format(VXPOSFMT_TIME);
    EXPECT_EQ(VxTextToNanoTimeTokenEx(u"abc", &format, 0, 5, 0, 100, nullptr), 5)
        << "no field of a clock either";
    EXPECT_EQ(VxTextToNanoTimeTokenEx(u"9", &format, 0, 5, 200, 100, nullptr), 100) << "minimum first";
}

} // namespace
