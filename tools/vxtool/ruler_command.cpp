// ruler: a time as rulers show it.
#include "vx/ruler.h"
#include "vxtool/commands.h"
#include "vxtool/failure.h"
#include "vxtool/kernel_start.h"
#include "vxtool/labels.h"
#include "vxtool/reading.h"
#include "vxtool/unicode.h"

#include <cstdio>
#include <iostream>

namespace vxtool {
namespace {

constexpr size_t kRoom = 128; // characters; 64 serve every format

constexpr Choice kFormats[] = {
    {"samples", VXPOSFMT_SAMPLES},
    {"time", VXPOSFMT_TIME},
    {"seconds", VXPOSFMT_SECONDS},
    {"time-frames", VXPOSFMT_TIME_FRAMES},
    {"frames", VXPOSFMT_ABS_FRAMES},
    {"measures", VXPOSFMT_MEASURES},
    {"smpte-29.97", VXPOSFMT_SMPTE_2997},
    {"smpte-30", VXPOSFMT_SMPTE_30},
    {"smpte-drop", VXPOSFMT_SMPTE_DROP},
    {"smpte-25", VXPOSFMT_SMPTE_25},
    {"smpte-24", VXPOSFMT_SMPTE_24},
    {"nanos", VXPOSFMT_NANOS},
    {"micros", VXPOSFMT_MICROS},
    {"measures-zero", VXPOSFMT_MEASURES_ZERO},
    {"beats", VXPOSFMT_BEATS},
    {"feet-40", VXPOSFMT_FEET_40},
    {"feet-16", VXPOSFMT_FEET_16},
    {"cd", VXPOSFMT_CD},
    {"smpte-23.976", VXPOSFMT_SMPTE_23976},
    {"clock", VXPOSFMT_CLOCK},
};

// The formats whose readers take up to four fields, as labels have them, and the text to its end.
bool HasLabelFields(int32_t format)
{
    return format == VXPOSFMT_CD || format == VXPOSFMT_SMPTE_23976 ||
           (format >= VXPOSFMT_SMPTE_2997 && format <= VXPOSFMT_SMPTE_24);
}

bool IsReadBack(int32_t format)
{
    return format != VXPOSFMT_BEATS && format != VXPOSFMT_CLOCK;
}

_vxposfmt SettingsOf(const Arguments& arguments)
{
    _vxposfmt settings{};
    settings.samplesPerSecond = uint32_t(arguments.Integer("--samples", 44100, 1, 10'000'000));
    settings.framesPerSecond = arguments.Number("--rate", 30.0, 1.0, 1000.0);
    settings.beatsPerMinute = arguments.Number("--tempo", 120.0, 1.0, 1000.0);
    settings.ticksPerBeat = uint32_t(arguments.Integer("--ticks", 960, 1, 1'000'000));
    const std::string* measure = arguments.Text("--measure");
    const auto parts = SplitAt(measure ? *measure : "4/4", '/');
    if (parts.size() != 2)
        FailArgument("--measure takes BEATS/VALUE as 3/4, not '", *measure, "'");
    settings.beatsPerMeasure = uint16_t(ParseInteger("--measure", parts[0], 1, 1000));
    settings.beatValue = uint16_t(ParseInteger("--measure", parts[1], 1, 64));
    if (const std::string* offset = arguments.Text("--offset"))
        settings.rulerOffset = ReadPlain<int64_t>("a time in units of 100 nanoseconds", *offset);
    return settings;
}

uint32_t FlagsOf(const Arguments& arguments)
{
    return (arguments.Has("--short") ? VXPOS_SHORT : 0) | (arguments.Has("--length") ? VXPOS_LENGTH : 0);
}

// Readers take what is no time for 0; here it is told.
int64_t ReadTime(const std::string& text, const _vxposfmt& settings, uint32_t flags)
{
    if (!IsReadBack(settings.format))
        FailArgument("beats and clock are not read back");
    constexpr std::string_view kWhat = "a time in that format";
    const std::u16string wide = Utf16Of(text);
    if (!HasDigit(wide))
        FailReading(kWhat, wide, 0);
    if (HasLabelFields(settings.format))
        ReadLabel(text, VXSMPTE_FORMAT_30);
    const char16_t* end = wide.c_str() + wide.size();
    const int64_t nanos = VxTextToNanoTimeToken2(wide.c_str(), &settings, 0, 0, 0, flags, &end);
    const size_t stop = size_t(end - wide.c_str());
    if (!OnlySpaceBehind(wide, stop))
        FailReading(kWhat, wide, stop);
    return nanos;
}

std::string Shown(_vxposfmt settings, int32_t format, int64_t nanos, uint32_t flags)
{
    char16_t text[kRoom];
    settings.format = format;
    VxNanoTimeToTextExN(text, kRoom, &settings, nanos, flags);
    return Utf8Of(text);
}

void ShowAll(const _vxposfmt& settings, int64_t nanos, uint32_t flags)
{
    std::cout << PaddedRight("format", 15) << PaddedLeft("long form", 32) << PaddedLeft("short form", 30)
              << "\n";
    for (const Choice& format : kFormats)
        std::cout << PaddedRight(format.name, 15)
                  << PaddedLeft(Shown(settings, format.value, nanos, flags), 32)
                  << PaddedLeft(Shown(settings, format.value, nanos, flags | VXPOS_SHORT), 30) << "\n";
}

void RunRuler(const Arguments& arguments)
{
    StartKernel(arguments);
    _vxposfmt settings = SettingsOf(arguments);
    const uint32_t flags = FlagsOf(arguments);
    const std::string& text = arguments.Operand(0);
    settings.format = arguments.OneOf("--read", kFormats, VXPOSFMT_NANOS);
    const int64_t nanos = arguments.Has("--read")
                              ? ReadTime(text, settings, flags)
                              : ReadPlain<int64_t>("a time in units of 100 nanoseconds", text);
    if (arguments.Has("--format"))
        std::cout << Shown(settings, arguments.OneOf("--format", kFormats, 0), nanos, flags) << "\n";
    else
        ShowAll(settings, nanos, flags & VXPOS_LENGTH);
}

constexpr Option kRulerOptions[] = {
    {"--read", "FORMAT",
     "TIME is text of that format (default: a plain count of 100-nanosecond\n"
     "units); formats: samples, time, seconds, time-frames, frames, measures,\n"
     "measures-zero, smpte-30, smpte-29.97, smpte-drop, smpte-25, smpte-24,\n"
     "smpte-23.976, nanos, micros, feet-16, feet-40, cd; beats and clock are\n"
     "only shown"},
    {"--format", "FORMAT", "show that format alone (default: all twenty)"},
    {"--short", nullptr, "the short form, for --read and --format"},
    {"--length", nullptr, "a length: without the offset, measures and beats not counted from 1"},
    {"--samples", "N", "samples a second (default 44100)"},
    {"--rate", "R", "frames a second, 1 to 1000 (default 30)"},
    {"--tempo", "T", "beats a minute, 1 to 1000 (default 120)"},
    {"--measure", "BEATS/VALUE", "beats in a measure, and the note that gets one (default 4/4)"},
    {"--ticks", "N", "ticks in a beat (default 960)"},
    {"--offset", "N", "the time that shows as zero, in units of 100 nanoseconds (default 0)"},
    kLocaleOption,
};

} // namespace

const Command kRuler = {
    "ruler",       "show a time in all ruler formats, or read it from one",      "TIME",   1, 1,
    kRulerOptions, "vxtool ruler 01:02:03.500 --read time --rate 25 --tempo 96", RunRuler,
};

} // namespace vxtool
