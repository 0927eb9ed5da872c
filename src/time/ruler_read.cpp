// Ruler text to nano time.
#include "time/fields.h"
#include "time/rounding.h"
#include "time/ruler.h"
#include "vx/numbers.h"

#include <algorithm>

namespace {

using namespace vx;

constexpr double kLowest = -0x1p62; // nano times that text is held to
constexpr double kHighest = 0x1p61;

// A number at so many units a second, held to the range of times.
double HeldToTimes(double value, double perSecond)
{
    const double low = kLowest * kSecondsPerNanoUnit * perSecond;
    const double high = kHighest * kSecondsPerNanoUnit * perSecond;
    return std::max(low, std::min(value, high));
}

int64_t ReadSamples(const char16_t* text, const _vxposfmt& format, const char16_t** end)
{
    const double rate = format.samplesPerSecond;
    const double samples = double(VxTextToLongLongToken(text, end));
    if (rate == 0.0)
        return 0;
    const double low = std::trunc(kLowest * kSecondsPerNanoUnit * rate + 0.5);
    const double high = std::trunc(kHighest * kSecondsPerNanoUnit * rate + 0.5);
    return Rounded(std::max(low, std::min(samples, high)) / rate * kNanoUnitsPerSecond);
}

int64_t ReadSeconds(const char16_t* text, const char16_t** end)
{
    const double seconds = VxTextToDoubleToken(text, end, 1);
    return Truncated(std::max(-461'168'601'842.0, std::min(seconds, 230'584'300'921.0)) *
                     kNanoUnitsPerSecond);
}

int64_t ReadFrames(const char16_t* text, const _vxposfmt& format, const char16_t** end)
{
    const double frames = HeldToTimes(VxTextToDoubleToken(text, end, 1), format.framesPerSecond);
    return Rounded(frames / format.framesPerSecond * kNanoUnitsPerSecond);
}

int64_t ReadSmpte(const char16_t* text, uint32_t smpteFormat)
{
    _smpteval label = {smpteFormat, 0, 0, 0, 0, 0};
    VXSMPTE_TextToSMPTE(text, &label);
    return VXSMPTE_SMPTEToNanos(&label);
}

// No format, so that frames are not carried by a rate that labels know.
int64_t ReadCd(const char16_t* text)
{
    _smpteval label = {0, 0, 0, 0, 0, 0};
    VXSMPTE_TextToSMPTE(text, &label);
    return VxHMSFToNanoTime(&label, kCdFramesPerSecond);
}

// `text` is neither empty nor does it begin with white space or a sign; *end lies at its end.
int64_t ReadByFormat(const char16_t* text, const _vxposfmt& format, uint32_t flags, const char16_t** end)
{
    const int32_t shortForm = flags & VXPOS_SHORT ? 1 : 0;
    switch (format.format) {
    case VXPOSFMT_SAMPLES:
        return ReadSamples(text, format, end);
    case VXPOSFMT_TIME:
        return int64_t(uint64_t(VxTextToTimeToken(text, &format, shortForm, end)) * 10'000);
    case VXPOSFMT_SECONDS:
        return ReadSeconds(text, end);
    case VXPOSFMT_TIME_FRAMES:
        return VxTextToHMSFToken(text, &format, shortForm, end);
    case VXPOSFMT_ABS_FRAMES:
        return ReadFrames(text, format, end);
    case VXPOSFMT_MEASURES:
    case VXPOSFMT_MEASURES_ZERO:
        return VxTextToMusicTimeToken(text, &format, flags, end);
    case VXPOSFMT_NANOS:
        return VxTextToLongLongToken(text, end);
    case VXPOSFMT_MICROS:
        return int64_t(uint64_t(VxTextToLongLongToken(text, end)) * 10);
    case VXPOSFMT_FEET_40:
    case VXPOSFMT_FEET_16:
        return VxTextToFeetAndFramesToken(text, &format, format.format == VXPOSFMT_FEET_40);
    case VXPOSFMT_CD:
        return ReadCd(text);
    default:
        break;
    }
    const uint32_t smpteFormat = SmpteFormatOf(format.format);
    return smpteFormat == 0 ? 0 : ReadSmpte(text, smpteFormat);
}

const char16_t* EndOf(const char16_t* text)
{
    while (*text)
        ++text;
    return text;
}

int64_t Negated(int64_t value)
{
    return int64_t(0u - uint64_t(value));
}

} // namespace

int64_t VxTextToNanoTimeToken(const char16_t* text, const _vxposfmt* format, int32_t shortForm,
                              const char16_t** outEnd)
{
    return VxTextToNanoTimeToken2(text, format, 0, 0, 0, shortForm ? VXPOS_SHORT : 0, outEnd);
}

int64_t VxTextToNanoTimeTokenEx(const char16_t* text, const _vxposfmt* format, int32_t shortForm,
                                int64_t defaultValue, int64_t minimum, int64_t maximum,
                                const char16_t** outEnd)
{
    const uint32_t flags = (shortForm ? VXPOS_SHORT : 0) | VXPOS_LIMITS;
    return VxTextToNanoTimeToken2(text, format, defaultValue, minimum, maximum, flags, outEnd);
}

int64_t VxTextToNanoTimeToken2(const char16_t* text, const _vxposfmt* format, int64_t defaultValue,
                               int64_t minimum, int64_t maximum, uint32_t flags, const char16_t** outEnd)
{
    text = SkipSpace(text);
    const char16_t* end = EndOf(text);
    int64_t value = defaultValue;
    if (*text) {
        const bool negative = *text == u'-';
        value = ReadByFormat(negative ? text + 1 : text, *format, flags, &end);
        if (negative)
            value = Negated(value);
    }
    if (!(flags & VXPOS_LENGTH))
        value = int64_t(uint64_t(value) + uint64_t(format->rulerOffset));
    if (flags & VXPOS_LIMITS) {
        if (value == 0 && *end && SkipSpace(end) == end)
            value = defaultValue;
        value = std::min(std::max(value, minimum), maximum);
    }
    if (outEnd)
        *outEnd = end;
    return value;
}

int64_t VxTextToTimeToken(const char16_t* text, const _vxposfmt*, int32_t shortForm, const char16_t** outEnd)
{
    const RightAligned fields = ReadRightAligned(text, shortForm ? 3 : 4);
    if (outEnd)
        *outEnd = fields.end;
    const uint32_t* places = fields.places;
    // A lone number is whole seconds; so the places of the long form begin one higher.
    const bool wholeSeconds = shortForm || fields.read == 1;
    const int64_t hours = wholeSeconds ? places[1] : places[0];
    const int64_t minutes = wholeSeconds ? places[2] : places[1];
    const int64_t seconds = wholeSeconds ? places[3] : places[2];
    int64_t fraction = 0; // the first three decimals of a second
    if (!wholeSeconds)
        for (int i = 0; i < 3; ++i)
            fraction = fraction * 10 + (i < fields.last.digits ? fields.last.first[i] - u'0' : 0);
    return ((hours * 60 + minutes) * 60 + seconds) * 1000 + fraction;
}

int64_t VxTextToHMSFToken(const char16_t* text, const _vxposfmt* format, int32_t shortForm,
                          const char16_t** outEnd)
{
    const RightAligned fields = ReadRightAligned(text, shortForm ? 3 : 4);
    if (outEnd)
        *outEnd = fields.end;
    const uint32_t* places = fields.places + (shortForm ? 1 : 0);
    const _smpteval label = {0, places[0], places[1], places[2], shortForm ? 0 : places[3], 0};
    return VxHMSFToNanoTime(&label, format->framesPerSecond);
}

int64_t VxTextToFeetAndFramesToken(const char16_t* text, const _vxposfmt* format, int32_t forty)
{
    const RightAligned fields = ReadRightAligned(text, 2);
    const double frames = double(fields.places[2]) * (forty ? 40.0 : 16.0) + fields.places[3];
    return Truncated(std::floor(frames * kNanoUnitsPerSecond / format->framesPerSecond + 0.000010015));
}
