// timecode: SMPTE labels, their frame counts and times, in all frame formats.
#include "vx/print.h"
#include "vxtool/commands.h"
#include "vxtool/failure.h"
#include "vxtool/kernel_start.h"
#include "vxtool/labels.h"
#include "vxtool/reading.h"
#include "vxtool/unicode.h"

#include <iostream>

namespace vxtool {
namespace {

constexpr int32_t kMostSteps = 24 * 60 * 60 * 30;

// What --only leaves of a line.
enum Column : int32_t
{
    kAllColumns,
    kLabel,
    kFrames,
    kNanos,
};
constexpr Choice kColumns[] = {{"label", kLabel}, {"frames", kFrames}, {"nanos", kNanos}};

std::string NameOf(uint32_t format)
{
    for (const Choice& choice : kSmpteFormats)
        if (uint32_t(choice.value) == format)
            return choice.name;
    return {};
}

std::string Grouped(const char16_t* pattern, int64_t value)
{
    char16_t text[64];
    VxPrintF(text, pattern, value);
    return Utf8Of(text);
}

void ShowHead(Column only)
{
    if (only == kAllColumns)
        std::cout << "format     label             frames             nano time\n";
}

void ShowLine(const _smpteval& label, Column only)
{
    const uint32_t frames = VXSMPTE_SMPTEToFrameCount(&label);
    const int64_t nanos = VXSMPTE_SMPTEToNanos(&label);
    if (only == kLabel)
        std::cout << ShowLabel(label) << "\n";
    else if (only == kFrames)
        std::cout << frames << "\n";
    else if (only == kNanos)
        std::cout << nanos << "\n";
    else {
        std::cout << PaddedRight(NameOf(label.format), 11) << ShowLabel(label)
                  << PaddedLeft(Grouped(u"$I64u", frames), 13) << PaddedLeft(Grouped(u"$I64d", nanos), 22)
                  << "\n";
    }
}

_smpteval LabelOfNanos(int64_t nanos, uint32_t format)
{
    _smpteval label = {format, 0, 0, 0, 0, 0};
    VXSMPTE_NanoToSMPTE(nanos, &label);
    return label;
}

_smpteval LabelOfFrames(uint32_t count, uint32_t format)
{
    _smpteval label = {format, 0, 0, 0, 0, 0};
    VXSMPTE_FrameCountToSMPTE(&label, count);
    return label;
}

uint32_t LabelsOfDay(uint32_t format)
{
    _smpteval label = LabelOfFrames(0, format);
    VXSMPTE_DeccrementByFrame(&label, 0);
    return VXSMPTE_SMPTEToFrameCount(&label) + 1;
}

void Step(_smpteval& label, int32_t steps)
{
    for (; steps > 0; --steps)
        VXSMPTE_IncrementByFrame(&label);
    for (; steps < 0; ++steps)
        VXSMPTE_DeccrementByFrame(&label, 0);
}

int64_t ReadNanos(const std::string& text)
{
    const auto nanos = ReadPlain<int64_t>("a count of 100-nanosecond units", text);
    if (nanos < 0)
        FailArgument("a timecode has no negative times, as ", text);
    return nanos;
}

// The operand, in the format of --from.
_smpteval ReadValue(const Arguments& arguments, uint32_t format)
{
    const std::string& text = arguments.Operand(0);
    if (arguments.Has("--frames"))
        return LabelOfFrames(ReadPlain<uint32_t>("a count of frames", text), format);
    if (arguments.Has("--nanos"))
        return LabelOfNanos(ReadNanos(text), format);
    return ReadLabel(text, format);
}

// The label itself stays as it is: one that drop-frame leaves out shows as it was typed.
void ShowConversions(const Arguments& arguments, const _smpteval& label, Column only)
{
    const int64_t nanos = VXSMPTE_SMPTEToNanos(&label);
    const auto wanted = uint32_t(arguments.OneOf("--to", kSmpteFormats, 0));
    ShowHead(only);
    for (const Choice& choice : kSmpteFormats) {
        const auto format = uint32_t(choice.value);
        if (wanted == 0 || wanted == format)
            ShowLine(format == label.format ? label : LabelOfNanos(nanos, format), only);
    }
}

void Convert(const Arguments& arguments, uint32_t format, Column only)
{
    _smpteval label = ReadValue(arguments, format);
    for (const std::string& text : arguments.All("--add")) {
        const _smpteval other = ReadLabel(text, format);
        VXSMPTE_AddSMPTE(&label, &other);
    }
    for (const std::string& text : arguments.All("--subtract")) {
        const _smpteval other = ReadLabel(text, format);
        VXSMPTE_SubtractSMPTE(&label, &other);
    }
    Step(label, arguments.Integer("--step", 0, -kMostSteps, kMostSteps));
    ShowConversions(arguments, label, only);
}

// From label to label, through midnight where the first is the later one.
void ShowTable(const Arguments& arguments, uint32_t format, Column only)
{
    const std::string& range = *arguments.Text("--table");
    const size_t dots = range.find("..");
    if (dots == range.npos)
        FailArgument("--table takes two labels as 00:00:59:28..00:01:00:03, not '", range, "'");
    const auto countOf = [format](std::string_view text) {
        const _smpteval label = ReadLabel(text, format);
        return VXSMPTE_SMPTEToFrameCount(&label);
    };
    const uint32_t first = countOf(std::string_view(range).substr(0, dots));
    const uint32_t last = countOf(std::string_view(range).substr(dots + 2));
    const auto step = uint32_t(arguments.Integer("--step", 1, 1, kMostSteps));
    const uint32_t day = LabelsOfDay(format);
    ShowHead(only);
    for (uint32_t on = 0; on <= (last + day - first) % day; on += step)
        ShowLine(LabelOfFrames(first + on, format), only);
}

void RunTimecode(const Arguments& arguments)
{
    StartKernel(arguments);
    const auto format = uint32_t(arguments.OneOf("--from", kSmpteFormats, VXSMPTE_FORMAT_30));
    const auto only = Column(arguments.OneOf("--only", kColumns, kAllColumns));
    if (arguments.Has("--frames") && arguments.Has("--nanos"))
        FailArgument("--frames and --nanos exclude each other");
    if (arguments.Has("--table") == (arguments.OperandCount() == 1))
        FailArgument("either a value or --table is needed");
    if (!arguments.Has("--table"))
        return Convert(arguments, format, only);
    for (const char* option : {"--frames", "--nanos", "--to", "--add", "--subtract"})
        if (arguments.Has(option))
            FailArgument("--table excludes ", option);
    ShowTable(arguments, format, only);
}

constexpr Option kTimecodeOptions[] = {
    {"--from", "FORMAT",
     "format of the labels given: 30, 29.97drop, 25, 24, 29.97 or 23.976\n"
     "(default 30)"},
    {"--frames", nullptr, "VALUE is a count of frames from midnight"},
    {"--nanos", nullptr, "VALUE is a time in units of 100 nanoseconds"},
    {"--add", "LABEL", "add a label; may be given several times"},
    {"--subtract", "LABEL", "subtract a label, behind all that is added; likewise"},
    {"--step", "N",
     "then go N labels on, or back where N is below 0; with --table, show every\n"
     "N-th label"},
    {"--to", "FORMAT", "show that format alone (default: all six)"},
    {"--only", "COLUMN", "show label, frames or nanos alone, without grouping"},
    {"--table", "FROM..TO", "show all labels between two, through midnight where TO is the earlier one"},
    kLocaleOption,
};

} // namespace

const Command kTimecode = {
    "timecode",
    "convert SMPTE labels, frame counts and times, and calculate with them",
    "[VALUE]",
    0,
    1,
    kTimecodeOptions,
    "vxtool timecode '01:00:00;00' --from 29.97drop --to 25",
    RunTimecode,
};

} // namespace vxtool
