// Any text into all that reads times, and any time into all that writes them.
//
// Input: the settings below as they lie in memory, then UTF-16 text. Text, records and results lie in
// memory of exactly their size, so that the sanitizer sees any access behind them.
#include "text_fuzz.h"
#include "vx/ruler.h"
#include "vx/smpte.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>

namespace {

using namespace vxfuzz;

struct Input
{
    int64_t nanos, offset;
    uint32_t ticks;
    uint16_t beatsPerMeasure;
    uint8_t locale, beatValue, rate, samples, tempo, capacity;
    uint8_t unused[4];
};
static_assert(sizeof(Input) == 32);

constexpr double kRates[] = {30.0, 30000.0 / 1001.0, 25.0, 24.0, 0.005, 1e9};
constexpr uint32_t kSamples[] = {44'100, 48'000, 192'000, 1, 0xFFFFFFFFu, 0};
constexpr size_t kFullRoom = 64;  // that serves every format
constexpr uint32_t kMostSign = 7; // characters

template <class T, size_t Count>
T Choose(const T (&values)[Count], uint8_t choice)
{
    return values[choice % Count];
}

_vxposfmt SettingsOf(const Input& input)
{
    _vxposfmt settings{};
    settings.samplesPerSecond = Choose(kSamples, input.samples);
    settings.framesPerSecond = Choose(kRates, input.rate);
    settings.beatsPerMinute = 1.0 + input.tempo;
    settings.rulerOffset = input.offset;
    settings.beatValue = std::max<uint16_t>(1, input.beatValue);
    settings.beatsPerMeasure = std::max<uint16_t>(1, input.beatsPerMeasure);
    settings.ticksPerBeat = std::max(1u, input.ticks);
    return settings;
}

// A label of a real format is whole, lies within its day, and its time is that of no other label.
void ReadLabels(const char16_t* text)
{
    constexpr uint32_t kNominal[] = {0, 30, 30, 25, 24, 30, 24};
    for (uint32_t format = VXSMPTE_FORMAT_30; format <= VXSMPTE_FORMAT_23976; ++format) {
        const auto label = std::make_unique<_smpteval>();
        label->format = format;
        VXSMPTE_TextToSMPTE(text, label.get());
        Require(label->format == format && label->hours < 24 && label->minutes < 60 && label->seconds < 60 &&
                label->frames < kNominal[format]);
        const uint32_t count = VXSMPTE_SMPTEToFrameCount(label.get());
        _smpteval again = {format, 0, 0, 0, 0, 0};
        VXSMPTE_NanoToSMPTE(VXSMPTE_SMPTEToNanos(label.get()), &again);
        Require(VXSMPTE_SMPTEToFrameCount(&again) == count);
    }
}

void ReadRuler(const char16_t* text, const char16_t* textEnd, _vxposfmt settings)
{
    constexpr int64_t kLow = -1'000'000, kHigh = 5'000'000'000;
    for (uint32_t flags = 0; flags < 8; ++flags) {
        const char16_t* end = nullptr;
        const int64_t value = VxTextToNanoTimeToken2(text, &settings, kLow, kLow, kHigh, flags, &end);
        Require(end >= text && end <= textEnd);
        Require(!(flags & VXPOS_LIMITS) || (value >= kLow && value <= kHigh));
    }
    for (const int32_t shortForm : {0, 1}) {
        const char16_t *plainEnd = nullptr, *limitedEnd = nullptr;
        VxTextToNanoTimeToken(text, &settings, shortForm, &plainEnd);
        VxTextToNanoTimeTokenEx(text, &settings, shortForm, 0, kLow, kHigh, &limitedEnd);
        Require(plainEnd == limitedEnd);
    }
}

void ReadParts(const char16_t* text, const char16_t* textEnd, const _vxposfmt& settings)
{
    for (const int32_t choice : {0, 1}) {
        const char16_t* end = nullptr;
        VxTextToTimeToken(text, &settings, choice, &end);
        Require(end >= text && end <= textEnd);
        VxTextToHMSFToken(text, &settings, choice, &end);
        Require(end >= text && end <= textEnd);
        VxTextToFeetAndFramesToken(text, &settings, choice);
        VxTextToMusicTimeToken(text, &settings, choice ? VXPOS_SHORT : 0, nullptr);
        int64_t measures, beats, ticks;
        const int64_t all = VxTextToMeasuresBeatsTicks(text, &settings, choice, 3, &measures, &beats, &ticks);
        Require(VxTextToTicks(text, &settings, choice, 3) == all);
        VxTextToBeatsTicks(text, &settings, 3, &beats, &ticks);
    }
}

// What has room is written the same with a capacity. A number also needs room for the locale's own minus,
// which the plain one then replaces.
void Write(const _vxposfmt& settings, int64_t nanos, uint32_t capacity)
{
    const auto whole = std::make_unique<char16_t[]>(kFullRoom);
    const auto cut = std::make_unique<char16_t[]>(capacity);
    for (uint32_t flags = 0; flags < 4; ++flags) {
        const int32_t length = VxNanoTimeToTextEx(whole.get(), &settings, nanos, flags);
        Require(length > 0 && size_t(length) < kFullRoom && whole[size_t(length)] == 0);
        const int32_t kept = VxNanoTimeToTextExN(cut.get(), capacity, &settings, nanos, flags);
        Require(kept >= 0 && uint32_t(kept) < std::max(1u, capacity));
        Require(capacity == 0 || cut[size_t(kept)] == 0);
        Require(uint32_t(length) + kMostSign >= capacity ||
                (kept == length && std::equal(&cut[0], &cut[kept], &whole[0])));
    }
}

void WriteTicks(const _vxposfmt& settings, int64_t ticks)
{
    const auto text = std::make_unique<char16_t[]>(kFullRoom);
    for (const int32_t choice : {0, 1}) {
        Require(size_t(VxTicksToText(text.get(), &settings, ticks, choice, choice, 1)) < kFullRoom);
        Require(size_t(VxMeasuresAndTicksToText(text.get(), &settings, int32_t(ticks), int32_t(ticks >> 32),
                                                choice, !choice, 7)) < kFullRoom);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input input;
    if (size < sizeof(input))
        return 0;
    std::memcpy(&input, data, sizeof(input));
    const size_t length = (size - sizeof(input)) / sizeof(char16_t);
    const auto text = std::make_unique<char16_t[]>(length + 1); // its last character is the terminator
    std::memcpy(text.get(), data + sizeof(input), length * sizeof(char16_t));

    ChooseLocale(input.locale);
    _vxposfmt settings = SettingsOf(input);
    ReadLabels(text.get());
    ReadParts(text.get(), text.get() + length, settings);
    for (settings.format = -1; settings.format <= VXPOSFMT_CLOCK + 1; ++settings.format) {
        ReadRuler(text.get(), text.get() + length, settings);
        Write(settings, input.nanos, input.capacity);
    }
    WriteTicks(settings, input.nanos);
    return 0;
}
