#include "vx/smpte.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

void PrintTo(const _smpteval& v, std::ostream* out)
{
    *out << v.hours << ":" << v.minutes << ":" << v.seconds << ":" << v.frames << " at format " << v.format;
}

bool operator==(const _smpteval& a, const _smpteval& b)
{
    return a.format == b.format && VXSMPTE_SMPTECompare(&a, &b) == 0;
}

namespace {

constexpr uint32_t kDrop = VXSMPTE_FORMAT_2997DROP;

_smpteval Label(uint32_t format, uint32_t hours, uint32_t minutes, uint32_t seconds, uint32_t frames)
{
    return {format, hours, minutes, seconds, frames, 0};
}

// All labels of a day in their order, made by writing out every clock reading and leaving out those
// that do not exist: no arithmetic of counts.
std::vector<_smpteval> LabelsOfADay(uint32_t format, uint32_t nominal)
{
    std::vector<_smpteval> labels;
    for (uint32_t h = 0; h < 24; ++h)
        for (uint32_t m = 0; m < 60; ++m)
            for (uint32_t s = 0; s < 60; ++s)
                for (uint32_t f = 0; f < nominal; ++f)
                    if (format != kDrop || s != 0 || m % 10 == 0 || f >= 2)
                        labels.push_back(Label(format, h, m, s, f));
    return labels;
}

TEST(Smpte, CountsLabelsTimesSumsAndStepsAgreeOverADay)
{
    constexpr struct
    {
        uint32_t format, nominal, day;
    } kFormats[] = {{1, 30, 2592000}, {2, 30, 2589408}, {3, 25, 2160000},
                    {4, 24, 2073600}, {5, 30, 2592000}, {6, 24, 2073600}};
    for (const auto [format, nominal, day] : kFormats) {
        const std::vector<_smpteval> labels = LabelsOfADay(format, nominal);
        ASSERT_EQ(labels.size(), day);
        for (uint32_t count = 0; count < day; ++count) {
            const _smpteval& label = labels[count];
            const _smpteval& next = labels[(count + 1) % day];
            ASSERT_EQ(VXSMPTE_SMPTEToFrameCount(&label), count);
            _smpteval made = Label(format, 9, 9, 9, 9);
            VXSMPTE_FrameCountToSMPTE(&made, count + count % 2 * day);
            ASSERT_EQ(made, label);
            VXSMPTE_IncrementByFrame(&made);
            ASSERT_EQ(made, next);
            VXSMPTE_DeccrementByFrame(&made, 7);
            ASSERT_EQ(made, label);
            VXSMPTE_NanoToSMPTE(VXSMPTE_SMPTEToNanos(&label), &made);
            ASSERT_EQ(made, label);
            ASSERT_EQ(VXSMPTE_SMPTECompare(&label, &next), count + 1 == day ? 1 : -1);
            const uint32_t other = uint32_t(count * UINT64_C(7919) % day);
            VXSMPTE_AddSMPTE(&made, &labels[other]);
            ASSERT_EQ(made, labels[(count + other) % day]);
            VXSMPTE_SubtractSMPTE(&made, &labels[other]);
            ASSERT_EQ(made, label);
        }
    }
}

TEST(Smpte, LabelsThatDropFrameLeavesOutCountAsTheFirstOfTheirMinute)
{
    for (const uint32_t frames : {0u, 1u, 2u}) {
        const _smpteval label = Label(kDrop, 0, 1, 0, frames);
        EXPECT_EQ(VXSMPTE_SMPTEToFrameCount(&label), 1800u);
        EXPECT_EQ(label.frames, frames) << "the record is not corrected";
    }
}

TEST(Smpte, SumsOfTwoFormatsAddFramesNotDurations)
{
    const struct
    {
        _smpteval a, b, sum, difference;
    } cases[] = {
        {Label(3, 0, 0, 1, 0), Label(1, 0, 0, 1, 0), Label(3, 0, 0, 2, 5), Label(3, 23, 59, 59, 20)},
        // a whole day of the other format
        {Label(4, 0, 0, 0, 0), Label(1, 19, 12, 0, 0), Label(4, 0, 0, 0, 0), Label(4, 0, 0, 0, 0)},
    };
    for (const auto& c : cases) {
        _smpteval a = c.a;
        VXSMPTE_AddSMPTE(&a, &c.b);
        EXPECT_EQ(a, c.sum);
        a = c.a;
        VXSMPTE_SubtractSMPTE(&a, &c.b);
        EXPECT_EQ(a, c.difference);
    }
}

TEST(Smpte, Times)
{
    const _smpteval frame = Label(3, 0, 0, 0, 1);
    EXPECT_EQ(VXSMPTE_SMPTEToNanos(&frame), 400'000);
    const _smpteval hour = Label(5, 1, 0, 0, 0);
    EXPECT_EQ(VXSMPTE_SMPTEToNanos(&hour), 36'036'000'000) << "an hour of labels lasts 3603.6 seconds";
    _smpteval shown = Label(1, 0, 0, 0, 9);
    VXSMPTE_NanoToSMPTE(333331, &shown);
    EXPECT_EQ(shown, Label(1, 0, 0, 0, 0));
    VXSMPTE_NanoToSMPTE(333332, &shown);
    EXPECT_EQ(shown, Label(1, 0, 0, 0, 1));
    EXPECT_EQ(VXSMPTE_SmpteLikeToNanos(7.0, &frame), 1'428'572);
    const _smpteval like = Label(99, 0, 1, 0, 6);
    EXPECT_EQ(VXSMPTE_SmpteLikeToNanos(12.0, &like), 605'000'000);
    EXPECT_EQ(VXSMPTE_SmpteLikeToNanos(0.0, &hour), INT64_MIN) << "no such rate, and no fault";
}

TEST(Smpte, TypedText)
{
    const struct
    {
        const char16_t* text;
        _smpteval want;
        char16_t stop;
    } cases[] = {
        {u"1:2:3:4", Label(1, 1, 2, 3, 4), 0},       {u"123456", Label(1, 0, 12, 35, 26), 0},
        {u"12345", Label(3, 0, 1, 24, 20), 0},       {u"12: ", Label(1, 0, 0, 12, 0), 0},
        {u"1:2::", Label(1, 1, 2, 0, 0), 0},         {u"12 : :", Label(1, 0, 12, 0, 0), 0},
        {u"  7  ", Label(1, 0, 0, 0, 7), 0},         {nullptr, Label(1, 0, 0, 0, 0), 0},
        {u"x1h2", Label(1, 0, 0, 1, 2), 0},          {u"23:59:59:30", Label(1, 0, 0, 0, 0), 0},
        {u"99:99:99:99", Label(4, 4, 40, 43, 3), 0}, {u"0:1:0:0", Label(2, 0, 1, 0, 0), 0},
        {u"1:2:3:4:", Label(1, 1, 2, 3, 4), u'0'},   {u"112233445", Label(1, 1, 12, 24, 4), u'4'},
        {u":::::", Label(1, 0, 0, 0, 0), u'0'},
    };
    for (const auto& c : cases) {
        _smpteval label = {c.want.format, 77, 77, 77, 77, 77};
        EXPECT_EQ(VXSMPTE_TextToSMPTE(c.text, &label), c.stop) << &c - cases;
        EXPECT_EQ(label, c.want) << &c - cases;
        EXPECT_EQ(label.reserved, 0u);
    }
}

} // namespace
