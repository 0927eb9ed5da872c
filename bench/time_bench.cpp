// Times to text and back, and timecode labels. Peers write and read narrow text.
#include "families.h"
#include "vx/ruler.h"
#include "vx/smpte.h"

#include "support/random.h"

#include <benchmark/benchmark.h>
#include <charconv>
#include <cstdio>
#include <string>
#include <vector>

namespace vxbench {
namespace {

constexpr Size kItems{1000, 0};
constexpr size_t kRoom = 64; // characters of one text
constexpr int64_t kSecond = 10'000'000;
constexpr int64_t kDay = 24 * 60 * 60 * kSecond;

struct NamedFormat
{
    int32_t format;
    const char* name;
};

constexpr NamedFormat kFormats[] = {
    {VXPOSFMT_SAMPLES, "samples"},
    {VXPOSFMT_TIME, "time"},
    {VXPOSFMT_SECONDS, "seconds"},
    {VXPOSFMT_TIME_FRAMES, "time and frames"},
    {VXPOSFMT_ABS_FRAMES, "frames"},
    {VXPOSFMT_MEASURES, "measures"},
    {VXPOSFMT_SMPTE_2997, "SMPTE 29.97"},
    {VXPOSFMT_SMPTE_30, "SMPTE 30"},
    {VXPOSFMT_SMPTE_DROP, "SMPTE drop"},
    {VXPOSFMT_SMPTE_25, "SMPTE 25"},
    {VXPOSFMT_SMPTE_24, "SMPTE 24"},
    {VXPOSFMT_NANOS, "nanos"},
    {VXPOSFMT_MICROS, "micros"},
    {VXPOSFMT_MEASURES_ZERO, "measures from 0"},
    {VXPOSFMT_BEATS, "beats"},
    {VXPOSFMT_FEET_40, "feet of 40"},
    {VXPOSFMT_FEET_16, "feet of 16"},
    {VXPOSFMT_CD, "CD"},
    {VXPOSFMT_SMPTE_23976, "SMPTE 23.976"},
    {VXPOSFMT_CLOCK, "clock"},
};

_vxposfmt Settings(int32_t format)
{
    return {format, 44'100, 30.0, 120.0, 0, 4, 4, 960};
}

std::vector<int64_t> RandomTimes(const Work& work)
{
    vxtest::Random random;
    std::vector<int64_t> times(size_t(work.size().width));
    for (int64_t& time : times)
        time = int64_t(random.Next() % uint64_t(kDay));
    return times;
}

template <class T>
std::span<uint8_t> BytesOf(std::vector<T>& values)
{
    return {reinterpret_cast<uint8_t*>(values.data()), values.size() * sizeof(T)};
}

// Hours, minutes, seconds and thousandths.
struct Clock
{
    uint32_t hours, minutes, seconds, thousandths;
};

Clock ClockOf(int64_t nanos)
{
    const auto thousandths = uint32_t(nanos / (kSecond / 1000));
    return {thousandths / 3'600'000, thousandths / 60'000 % 60, thousandths / 1000 % 60, thousandths % 1000};
}

void Show(Work& work, int32_t format)
{
    const std::vector<int64_t>& times = work.Own(RandomTimes(work));
    work.Vx([&times, settings = Settings(format)] {
        char16_t text[kRoom];
        for (const int64_t time : times) {
            VxNanoTimeToTextExN(text, kRoom, &settings, time, 0);
            benchmark::DoNotOptimize(text);
        }
    });
    work.Peer("snprintf of a clock's fields", [&] {
        char text[kRoom];
        for (const int64_t time : times) {
            const Clock c = ClockOf(time);
            std::snprintf(text, kRoom, "%02u:%02u:%02u.%03u", c.hours, c.minutes, c.seconds, c.thousandths);
            benchmark::DoNotOptimize(text);
        }
    });
    work.Floor("std::to_chars of the bare time", [&] {
        char text[kRoom];
        for (const int64_t time : times) {
            benchmark::DoNotOptimize(std::to_chars(text, text + kRoom, time).ptr);
            benchmark::DoNotOptimize(text);
        }
    });
}

struct TypedTimes
{
    std::vector<std::u16string> wide; // of the format
    std::vector<std::string> narrow;  // h:m:s:f, whatever the format
};

TypedTimes Typed(const Work& work, const _vxposfmt& settings)
{
    TypedTimes typed;
    for (const int64_t time : RandomTimes(work)) {
        char16_t wide[kRoom];
        VxNanoTimeToTextExN(wide, kRoom, &settings, time, 0);
        typed.wide.emplace_back(wide);
        const Clock c = ClockOf(time);
        char narrow[kRoom];
        std::snprintf(narrow, kRoom, "%02u:%02u:%02u:%03u", c.hours, c.minutes, c.seconds, c.thousandths);
        typed.narrow.emplace_back(narrow);
    }
    return typed;
}

int64_t NanosOf(const Clock& c)
{
    return (((c.hours * 60 + c.minutes) * 60 + c.seconds) * int64_t(1000) + c.thousandths) * (kSecond / 1000);
}

void Read(Work& work, int32_t format)
{
    const _vxposfmt& settings = work.Own(Settings(format));
    const TypedTimes& typed = work.Own(Typed(work, settings));
    work.Vx([&] {
        for (const std::u16string& text : typed.wide)
            benchmark::DoNotOptimize(VxTextToNanoTimeToken(text.c_str(), &settings, 0, nullptr));
    });
    work.Peer("sscanf of a clock's fields", [&] {
        for (const std::string& text : typed.narrow) {
            Clock c{};
            std::sscanf(text.c_str(), "%u:%u:%u:%u", &c.hours, &c.minutes, &c.seconds, &c.thousandths);
            benchmark::DoNotOptimize(NanosOf(c));
        }
    });
    work.Floor("std::from_chars of a clock's fields", [&] {
        for (const std::string& text : typed.narrow) {
            Clock c{};
            const char *at = text.data(), *end = at + text.size();
            for (uint32_t* field : {&c.hours, &c.minutes, &c.seconds, &c.thousandths})
                at = std::from_chars(at, end, *field).ptr + 1;
            benchmark::DoNotOptimize(NanosOf(c));
        }
    });
}

// ---- Labels

constexpr uint32_t kDropDay = 24 * 107'892;

std::vector<_smpteval> DropLabels(const Work& work)
{
    vxtest::Random random;
    std::vector<_smpteval> labels(size_t(work.size().width));
    for (_smpteval& label : labels) {
        label = {VXSMPTE_FORMAT_2997DROP, 0, 0, 0, 0, 0};
        VXSMPTE_FrameCountToSMPTE(&label, uint32_t(random.Next() % kDropDay));
    }
    return labels;
}

void SetPlainLabel(_smpteval& label, uint32_t position)
{
    const uint32_t seconds = position / 30;
    label.hours = seconds / 3600;
    label.minutes = seconds / 60 % 60;
    label.seconds = seconds % 60;
    label.frames = position % 30;
}

// Ten minutes have 17,982 labels: 1,800 in the first minute, 1,798 in each other.
uint32_t PositionOfDropCount(uint32_t count)
{
    const uint32_t tens = count / 17'982, rest = count % 17'982;
    return count + 18 * tens + (rest < 2 ? 0 : 2 * ((rest - 2) / 1'798));
}

void LabelsOfCounts(Work& work)
{
    std::vector<uint32_t>& counts = work.Own(std::vector<uint32_t>());
    std::vector<_smpteval>& labels = work.Own(DropLabels(work));
    for (const _smpteval& label : labels)
        counts.push_back(VXSMPTE_SMPTEToFrameCount(&label));
    work.Changes(BytesOf(labels));
    work.Vx([&] {
        for (size_t i = 0; i < counts.size(); ++i)
            VXSMPTE_FrameCountToSMPTE(&labels[i], counts[i]);
    });
    work.Peer(
        "a closed formula, inlined",
        [&] {
            for (size_t i = 0; i < counts.size(); ++i)
                SetPlainLabel(labels[i], PositionOfDropCount(counts[i]));
        },
        Answer::Same);
    work.Floor("a plain clock, inlined", [&] {
        for (size_t i = 0; i < counts.size(); ++i)
            SetPlainLabel(labels[i], counts[i]);
    });
}

uint32_t CountOfDropLabel(const _smpteval& label)
{
    const uint32_t minutes = label.hours * 60 + label.minutes;
    return (minutes * 60 + label.seconds) * 30 + label.frames - 2 * (minutes - minutes / 10);
}

void CountsOfLabels(Work& work)
{
    const std::vector<_smpteval>& labels = work.Own(DropLabels(work));
    std::vector<uint32_t>& counts = work.Own(std::vector<uint32_t>(labels.size()));
    work.Changes(BytesOf(counts));
    work.Vx([&] {
        for (size_t i = 0; i < labels.size(); ++i)
            counts[i] = VXSMPTE_SMPTEToFrameCount(&labels[i]);
    });
    work.Floor("its formula, inlined", [&] {
        for (size_t i = 0; i < labels.size(); ++i)
            counts[i] = CountOfDropLabel(labels[i]);
    });
}

void TimesOfLabels(Work& work)
{
    const std::vector<_smpteval>& labels = work.Own(DropLabels(work));
    std::vector<int64_t>& times = work.Own(std::vector<int64_t>(labels.size()));
    work.Changes(BytesOf(times));
    work.Vx([&] {
        for (size_t i = 0; i < labels.size(); ++i)
            times[i] = VXSMPTE_SMPTEToNanos(&labels[i]);
    });
    work.Floor("whole numbers, inlined", [&] {
        for (size_t i = 0; i < labels.size(); ++i)
            times[i] = (int64_t(CountOfDropLabel(labels[i])) * 1'001'000 + 2) / 3;
    });
}

void LabelsOfTimes(Work& work)
{
    const std::vector<int64_t>& times = work.Own(RandomTimes(work));
    std::vector<_smpteval>& labels = work.Own(DropLabels(work));
    work.Changes(BytesOf(labels));
    work.Vx([&] {
        for (size_t i = 0; i < times.size(); ++i)
            VXSMPTE_NanoToSMPTE(times[i], &labels[i]);
    });
    work.Floor("whole numbers, inlined", [&] {
        for (size_t i = 0; i < times.size(); ++i)
            SetPlainLabel(labels[i], PositionOfDropCount(uint32_t(times[i] * 3 / 1'001'000)));
    });
}

} // namespace

void AddTimeWorks(Suite& suite)
{
    for (const NamedFormat& f : kFormats)
        suite.Add(std::string("time: show ") + f.name, {kItems}, [&f](Work& work) { Show(work, f.format); });
    for (const NamedFormat& f : kFormats)
        if (f.format != VXPOSFMT_BEATS && f.format != VXPOSFMT_CLOCK)
            suite.Add(std::string("time: read ") + f.name, {kItems},
                      [&f](Work& work) { Read(work, f.format); });
    suite.Add("time: drop labels of counts", {kItems}, LabelsOfCounts);
    suite.Add("time: counts of drop labels", {kItems}, CountsOfLabels);
    suite.Add("time: times of drop labels", {kItems}, TimesOfLabels);
    suite.Add("time: drop labels of times", {kItems}, LabelsOfTimes);
}

} // namespace vxbench
