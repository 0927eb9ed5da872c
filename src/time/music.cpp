// Music time: measures, beats and ticks.
#include "time/fields.h"
#include "time/rounding.h"
#include "time/ruler.h"
#include "vx/print.h"

#include <algorithm>

namespace {

using namespace vx;

constexpr double kMinutesPerNanoUnit = 1.6666666666666665e-9;

// Up to three fields from the left; missing ones are 0.
struct LeftAligned
{
    int64_t values[3] = {};
};

LeftAligned ReadLeftAligned(const char16_t* text, int count)
{
    LeftAligned result;
    TextFields fields(text);
    TextField field;
    for (int i = 0; i < count && fields.Next(field); ++i)
        result.values[i] = field.value;
    return result;
}

void Give(int64_t* out, int64_t value)
{
    if (out)
        *out = value;
}

// Of `beats` whose note is beatValue, at ticksPerBeat for a quarter note; at least one.
int64_t TicksOfWrittenBeats(const _vxposfmt& format, int64_t beats)
{
    return std::max<int64_t>(1, beats * format.ticksPerBeat * 4 / format.beatValue);
}

// Fields of 32 bits can exceed 64 bits together: the count wraps.
int64_t TickCount(const _vxposfmt& format, int64_t measures, int64_t beats, int64_t ticks)
{
    const uint64_t allBeats = format.beatsPerMeasure * uint64_t(measures) + uint64_t(beats);
    return int64_t(allBeats * format.ticksPerBeat + uint64_t(ticks));
}

// As a 32-bit integer of the record's width: overflow wraps.
int32_t MeasureToShow(int64_t measure, int32_t oneBased)
{
    return int32_t(oneBased == 1 && measure >= 0 ? measure + 1 : measure);
}

int32_t PrintMeasure(char16_t* text, const _vxposfmt& format, int64_t measure, int64_t ticks,
                     int32_t oneBased, int32_t shortForm, uint32_t tickDivisor)
{
    const int64_t ticksPerMeasure = TicksOfWrittenBeats(format, format.beatsPerMeasure);
    if (ticks < 0) {
        const int64_t measures = (-ticks + ticksPerMeasure - 1) / ticksPerMeasure;
        ticks += measures * ticksPerMeasure;
        measure -= measures;
    }
    const int64_t ticksPerBeat = TicksOfWrittenBeats(format, 1);
    const uint32_t beat = uint32_t(ticks / ticksPerBeat % format.beatsPerMeasure) + (oneBased == 1);
    const uint32_t rest = uint32_t(ticks % ticksPerBeat / tickDivisor);
    const int32_t shown = MeasureToShow(measure, oneBased);
    const uint32_t length = shortForm ? VxPrintF(text, u"%d$&:%1u", shown, beat)
                                      : VxPrintF(text, u"%d$&:%u$&.%03u", shown, beat, rest);
    return int32_t(length);
}

} // namespace

void VxNanoTimeToMeasures(int64_t nanos, const _vxposfmt* format, uint32_t* outMeasures, uint32_t* outBeats,
                          uint32_t* outTicks)
{
    const double measures =
        double(nanos) * format->beatsPerMinute / format->beatsPerMeasure * kMinutesPerNanoUnit + 0.00005;
    const double beats = (measures - std::trunc(measures)) * format->beatsPerMeasure;
    const double ticks = (beats - std::trunc(beats)) * format->ticksPerBeat;
    *outMeasures = uint32_t(Truncated(measures));
    *outBeats = uint32_t(Truncated(beats));
    *outTicks = uint32_t(Truncated(ticks));
}

int32_t VxTicksToText(char16_t* text, const _vxposfmt* format, int64_t ticks, int32_t oneBased,
                      int32_t shortForm, uint32_t tickDivisor)
{
    const int64_t ticksPerMeasure = int64_t(format->beatsPerMeasure) * format->ticksPerBeat;
    int64_t measure = ticks / ticksPerMeasure;
    int64_t rest = ticks % ticksPerMeasure;
    if (rest < 0) {
        rest += ticksPerMeasure;
        --measure;
    }
    return VxMeasuresAndTicksToText(text, format, int32_t(measure), int32_t(rest), oneBased, shortForm,
                                    tickDivisor);
}

int32_t VxMeasuresAndTicksToText(char16_t* text, const _vxposfmt* format, int32_t measures, int32_t ticks,
                                 int32_t oneBased, int32_t shortForm, uint32_t tickDivisor)
{
    return text ? PrintMeasure(text, *format, measures, ticks, oneBased, shortForm, tickDivisor) : 0;
}

int64_t VxTextToMusicTimeToken(const char16_t* text, const _vxposfmt* format, uint32_t flags,
                               const char16_t**)
{
    const bool shortForm = flags & VXPOS_SHORT;
    const RightAligned fields = ReadRightAligned(text, shortForm ? 2 : 3);
    const uint32_t* places = fields.places + (shortForm ? 2 : 1);
    uint32_t measures = places[0], beats = places[1];
    const uint32_t ticks = shortForm ? 0 : places[2];
    if (format->format == VXPOSFMT_MEASURES && !(flags & VXPOS_LENGTH)) {
        measures -= measures != 0;
        beats -= beats != 0;
    }
    const double inBeats =
        double(ticks) / format->ticksPerBeat + uint32_t(format->beatsPerMeasure * measures) + beats;
    return Truncated(inBeats / format->beatsPerMinute * kNanoUnitsPerMinute);
}

int64_t VxTextToMeasuresBeatsTicks(const char16_t* text, const _vxposfmt* format, int32_t base,
                                   int32_t tickMultiplier, int64_t* outMeasures, int64_t* outBeats,
                                   int64_t* outTicks)
{
    text = SkipSpace(text);
    const bool negative = *text == u'-';
    auto [measures, beats, ticks] = ReadLeftAligned(negative ? text + 1 : text, 3).values;
    if (negative)
        measures = -measures;
    if (base == 1) {
        measures -= measures > 0;
        beats -= beats > 0;
    }
    ticks *= tickMultiplier;
    Give(outMeasures, measures);
    Give(outBeats, beats);
    Give(outTicks, ticks);
    return TickCount(*format, measures, beats, ticks);
}

int64_t VxTextToBeatsTicks(const char16_t* text, const _vxposfmt* format, int32_t tickMultiplier,
                           int64_t* outBeats, int64_t* outTicks)
{
    text = SkipSpace(text);
    auto [beats, ticks, unused] = ReadLeftAligned(*text == u'-' ? text + 1 : text, 2).values;
    ticks *= tickMultiplier;
    Give(outBeats, beats);
    Give(outTicks, ticks);
    return TickCount(*format, 0, beats, ticks);
}

int64_t VxTextToTicks(const char16_t* text, const _vxposfmt* format, int32_t base, int32_t tickMultiplier)
{
    return VxTextToMeasuresBeatsTicks(text, format, base, tickMultiplier, nullptr, nullptr, nullptr);
}
