// Nano time to text. The values of a format are found here; the print engine writes them.
#include "time/rounding.h"
#include "time/ruler.h"
#include "vx/print.h"
#include "vx/ruler.h"

#include <cstdarg>
#include <limits>
#include <string_view>

namespace {

using namespace vx;

constexpr char16_t kWholeNumber[] = u"$I64d";

struct Patterns
{
    const char16_t* full;
    const char16_t* shortForm;
};

constexpr Patterns kSmptePatterns = {u"%02u:%02u:%02u:%02u", u"%02u:%02u:%02u:%02u"};
constexpr Patterns kMeasurePatterns = {u"$u$&:%u$&.%03u", u"$u$&:%u"};
constexpr Patterns kDoublePatterns = {u"$.3f", u"$.0f"};
constexpr Patterns kFeetPatterns = {u"$I64d+$I64d", u"$I64d+$I64d"};
constexpr Patterns kWholePatterns = {kWholeNumber, kWholeNumber};

// By format.
constexpr Patterns kPatterns[] = {
    kWholePatterns,
    {u"%02u$:%02u$:%02u$*%03u", u"%02u$:%02u$:%02u"},
    kDoublePatterns,
    {u"%02u$:%02u$:%02u$*%02u", u"%02u$:%02u$:%02u"},
    kDoublePatterns,
    kMeasurePatterns,
    kSmptePatterns,
    kSmptePatterns,
    {u"%02u:%02u:%02u;%02u", u"%02u:%02u:%02u;%02u"},
    kSmptePatterns,
    kSmptePatterns,
    kWholePatterns,
    kWholePatterns,
    kMeasurePatterns,
    kDoublePatterns,
    kFeetPatterns,
    kFeetPatterns,
    {u"%02u:%02u:%02u:%02u", u"%02u$:%02u$:%02u"},
    kSmptePatterns,
    {u"%u$:%02u$:%02u", u"%u$:%02u$:%02u"},
};
static_assert(std::size(kPatterns) == VXPOSFMT_CLOCK + 1);

const char16_t* PatternOf(const _vxposfmt& format, uint32_t flags)
{
    if (format.format < 0 || format.format > VXPOSFMT_CLOCK)
        return kWholeNumber;
    const Patterns& patterns = kPatterns[format.format];
    return flags & VXPOS_SHORT ? patterns.shortForm : patterns.full;
}

// Where the text goes: a buffer of that capacity, or one that the caller made large enough.
class Output
{
public:
    explicit Output(char16_t* text) : text_(text) {}
    Output(char16_t* text, uint32_t capacity) : text_(text), capacity_(capacity), bounded_(true) {}

    void PutMinus()
    {
        if (bounded_ && capacity_ <= 1)
            return;
        *text_++ = u'-';
        *text_ = 0;
        --capacity_;
        ++length_;
    }

    void Print(const char16_t* pattern, ...)
    {
        va_list arguments;
        va_start(arguments, pattern);
        uint32_t printed = 0;
        if (bounded_)
            VxNVPrintF(text_, capacity_, &printed, pattern, arguments);
        else
            printed = VxVPrintF(text_, pattern, arguments);
        va_end(arguments);
        length_ += printed;
    }

    int32_t Length() const { return int32_t(length_); }

private:
    char16_t* text_;
    uint32_t capacity_ = 0; // of what is left
    uint32_t length_ = 0;
    bool bounded_ = false;
};

_smpteval FieldsOf(int64_t t, uint32_t smpteFormat, double rate)
{
    _smpteval fields = {smpteFormat, 0, 0, 0, 0, 0};
    VxNanoTimeToHMSF(t, &fields, rate);
    return fields;
}

void PrintFields(Output& out, const char16_t* pattern, const _smpteval& f)
{
    out.Print(pattern, f.hours, f.minutes, f.seconds, f.frames);
}

// A pattern that asks for no decimals gets a whole number made by the format's own rule.
void PrintDouble(Output& out, const char16_t* pattern, double value, int64_t whole)
{
    if (std::u16string_view(pattern) == kDoublePatterns.shortForm)
        out.Print(kWholeNumber, whole);
    else
        out.Print(pattern, value);
}

void PrintMeasures(Output& out, const char16_t* pattern, int64_t t, const _vxposfmt& format, uint32_t flags)
{
    uint32_t measures, beats, ticks;
    VxNanoTimeToMeasures(t, &format, &measures, &beats, &ticks);
    const bool fromOne = format.format == VXPOSFMT_MEASURES && !(flags & VXPOS_LENGTH);
    out.Print(pattern, measures + fromOne, beats + fromOne, ticks);
}

void PrintFeet(Output& out, const char16_t* pattern, double seconds, double rate, int64_t framesPerFoot)
{
    const int64_t frames = Truncated(std::floor(seconds * rate + 0.000010015));
    out.Print(pattern, frames / framesPerFoot, frames % framesPerFoot);
}

void PrintClock(Output& out, const _smpteval& f)
{
    if (f.hours != 0)
        out.Print(u"%u$:%02u$:%02u", f.hours, f.minutes, f.seconds);
    else
        out.Print(f.minutes >= 10 ? u"%02u$:%02u" : u"%u$:%02u", f.minutes, f.seconds);
}

// The magnitude of a time, by its format.
void PrintTime(Output& out, const char16_t* pattern, int64_t t, const _vxposfmt& format, uint32_t flags)
{
    const double seconds = double(t) * kSecondsPerNanoUnit;
    switch (format.format) {
    case VXPOSFMT_SAMPLES:
        return out.Print(pattern, Rounded(seconds * format.samplesPerSecond));
    case VXPOSFMT_TIME:
        return PrintFields(out, pattern, FieldsOf(t, 0, 1000.0));
    case VXPOSFMT_SECONDS:
        return PrintDouble(out, pattern, seconds, Truncated(seconds));
    case VXPOSFMT_TIME_FRAMES:
        return PrintFields(out, pattern, FieldsOf(t, 0, format.framesPerSecond));
    case VXPOSFMT_ABS_FRAMES: {
        const double frames = seconds * format.framesPerSecond + 0.00001;
        return PrintDouble(out, pattern, frames, FlooredWithSlack(frames));
    }
    case VXPOSFMT_MEASURES:
    case VXPOSFMT_MEASURES_ZERO:
        return PrintMeasures(out, pattern, t, format, flags);
    case VXPOSFMT_MICROS:
        return out.Print(pattern, t / 10 + (t % 10 >= 5));
    case VXPOSFMT_BEATS: {
        const double beats = double(t) * format.beatsPerMinute / 60.0 * kSecondsPerNanoUnit;
        return PrintDouble(out, pattern, beats, Truncated(beats));
    }
    case VXPOSFMT_FEET_40:
        return PrintFeet(out, pattern, seconds, format.framesPerSecond, 40);
    case VXPOSFMT_FEET_16:
        return PrintFeet(out, pattern, seconds, format.framesPerSecond, 16);
    case VXPOSFMT_CD:
        return PrintFields(out, pattern, FieldsOf(t, 0, kCdFramesPerSecond));
    case VXPOSFMT_CLOCK:
        return PrintClock(out, FieldsOf(t, 0, 1000.0));
    default:
        break;
    }
    if (const uint32_t smpteFormat = SmpteFormatOf(format.format))
        PrintFields(out, pattern, FieldsOf(t, smpteFormat, 0.0));
    else
        out.Print(pattern, t);
}

int32_t WriteTime(Output out, const _vxposfmt& format, int64_t nanos, const char16_t* pattern, uint32_t flags)
{
    int64_t t = flags & VXPOS_LENGTH ? nanos : int64_t(uint64_t(nanos) - uint64_t(format.rulerOffset));
    if (t < 0) {
        out.PutMinus();
        t = t == std::numeric_limits<int64_t>::min() ? std::numeric_limits<int64_t>::max() : -t;
    }
    PrintTime(out, pattern, t, format, flags);
    return out.Length();
}

} // namespace

int32_t VxNanoTimeToText(char16_t* text, const _vxposfmt* format, int64_t nanos, int32_t shortForm)
{
    return VxNanoTimeToTextEx(text, format, nanos, shortForm ? VXPOS_SHORT : 0);
}

int32_t VxNanoTimeToTextEx(char16_t* text, const _vxposfmt* format, int64_t nanos, uint32_t flags)
{
    return VxNanoTimeToTextFormat(text, format, nanos, PatternOf(*format, flags), flags);
}

int32_t VxNanoTimeToTextFormat(char16_t* text, const _vxposfmt* format, int64_t nanos,
                               const char16_t* pattern, uint32_t flags)
{
    return WriteTime(Output(text), *format, nanos, pattern, flags);
}

int32_t VxNanoTimeToTextN(char16_t* text, uint32_t capacity, const _vxposfmt* format, int64_t nanos,
                          int32_t shortForm)
{
    return VxNanoTimeToTextExN(text, capacity, format, nanos, shortForm ? VXPOS_SHORT : 0);
}

int32_t VxNanoTimeToTextExN(char16_t* text, uint32_t capacity, const _vxposfmt* format, int64_t nanos,
                            uint32_t flags)
{
    return VxNanoTimeToTextFormatN(text, capacity, format, nanos, PatternOf(*format, flags), flags);
}

int32_t VxNanoTimeToTextFormatN(char16_t* text, uint32_t capacity, const _vxposfmt* format, int64_t nanos,
                                const char16_t* pattern, uint32_t flags)
{
    return WriteTime(Output(text, capacity), *format, nanos, pattern, flags);
}
