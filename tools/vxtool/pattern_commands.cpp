// bars, ramp, zone, checker: pictures out of nothing.
#include "vxtool/commands.h"
#include "vxtool/patterns.h"

namespace vxtool {
namespace {

void RunBars(const Arguments& arguments)
{
    const auto [width, height] = arguments.Size("--size", kDefaultSize);
    const Form form = FormOf(arguments);
    const Output output(arguments, 0, form);
    output.Write(Bars(width, height, form));
}

void RunZone(const Arguments& arguments)
{
    const auto [width, height] = arguments.Size("--size", kDefaultSize);
    const Form form = FormOf(arguments);
    const Output output(arguments, 0, form);
    output.Write(ZonePlate(width, height, form));
}

constexpr Option kPlainOptions[] = {kSizeOption, kFloatOption, kTypeOption};

void RunRamp(const Arguments& arguments)
{
    const auto [width, height] = arguments.Size("--size", kDefaultSize);
    const Colour from = arguments.ColourOr("--from", Gray(0.0f)), to = arguments.ColourOr("--to", Gray(1.0f));
    const Form form = FormOf(arguments);
    const Output output(arguments, 0, form);
    output.Write(Ramp(width, height, form, from, to, arguments.Has("--vertical")));
}

constexpr Option kRampOptions[] = {
    kSizeOption,
    {"--from", "COLOUR", "left or top, RRGGBB or RRGGBBAA (default 000000)"},
    {"--to", "COLOUR", "right or bottom (default ffffff)"},
    {"--vertical", nullptr, "from top to bottom"},
    kFloatOption,
    kTypeOption,
};

void RunChecker(const Arguments& arguments)
{
    const auto [width, height] = arguments.Size("--size", kDefaultSize);
    const int32_t cell = arguments.Integer("--cell", 40, 1, 32768);
    const Colour first = arguments.ColourOr("--from", Gray(0.0f)),
                 second = arguments.ColourOr("--to", Gray(1.0f));
    const Form form = FormOf(arguments);
    const Output output(arguments, 0, form);
    output.Write(Checker(width, height, form, cell, first, second));
}

constexpr Option kCheckerOptions[] = {
    kSizeOption,
    {"--cell", "N", "side of a square in pixels, 1 to 32768 (default 40)"},
    {"--from", "COLOUR", "the top-left square, RRGGBB or RRGGBBAA (default 000000)"},
    {"--to", "COLOUR", "the square beside it (default ffffff)"},
    kFloatOption,
    kTypeOption,
};

} // namespace

const Command kBars = {
    "bars",  "make SMPTE colour bars", "OUT", 1, 1, kPlainOptions, "vxtool bars bars.png --size 1920x1080",
    RunBars,
};
const Command kZone = {
    "zone", "make a zone plate", "OUT", 1, 1, kPlainOptions, "vxtool zone zone.png --size 1080x1080", RunZone,
};
const Command kRamp = {
    "ramp",
    "make a ramp between two colours",
    "OUT",
    1,
    1,
    kRampOptions,
    "vxtool ramp fade.png --from ff800000 --to ff8000ff",
    RunRamp,
};
const Command kChecker = {
    "checker",  "make a checkerboard", "OUT", 1, 1, kCheckerOptions, "vxtool checker board.png --cell 16",
    RunChecker,
};

} // namespace vxtool
