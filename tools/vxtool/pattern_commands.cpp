// bars, ramp, zone, checker, fill: pictures out of nothing.
#include "vxtool/commands.h"
#include "vxtool/failure.h"
#include "vxtool/patterns.h"

namespace vxtool {
namespace {

constexpr Extent kDefaultSize = {1280, 720};
constexpr Option kSizeOption = {"--size", "WxH", "pixels, up to 32768 a side (default 1280x720)"};

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

RECT ParseArea(const std::string& text)
{
    const auto parts = SplitAt(text, ',');
    if (parts.size() != 3)
        FailArgument("--area takes X,Y,WxH, not '", text, "'");
    const auto [width, height] = ParseExtent("--area", parts[2]);
    const int32_t x = ParseInteger("--area", parts[0], 0, 32767),
                  y = ParseInteger("--area", parts[1], 0, 32767);
    return {x, y, x + width, y + height};
}

void FillInside(Frame& frame, const RECT& area, const std::string& path, const Colour& colour)
{
    if (area.right > frame.Width() || area.bottom > frame.Height())
        FailArgument("--area reaches to ", area.right, ",", area.bottom, ", outside of ", path, " with its ",
                     frame.Width(), "x", frame.Height(), " pixels");
    FillArea(frame, area.left, area.top, area.right - area.left, area.bottom - area.top, colour);
}

void RunFill(const Arguments& arguments)
{
    const bool fresh = arguments.OperandCount() == 1;
    if (arguments.Has(fresh ? "--area" : "--size"))
        FailArgument(fresh ? "--area needs a picture to fill" : "--size is for new pictures only");
    const auto [width, height] = arguments.Size("--size", kDefaultSize);
    const Colour colour = Premultiplied(arguments.ColourOr("--colour", Gray(0.0f)));
    const std::string* areaText = arguments.Text("--area");
    const RECT area = areaText ? ParseArea(*areaText) : RECT{};
    const Form form = FormOf(arguments);
    const Output output(arguments, fresh ? 0 : 1, form);
    Frame frame = fresh ? Frame(width, height, form) : LoadFrame(arguments.Operand(0), form);
    FillInside(frame, areaText ? area : RECT{0, 0, frame.Width(), frame.Height()}, arguments.Operand(0),
               colour);
    output.Write(frame);
}

constexpr Option kFillOptions[] = {
    {"--colour", "COLOUR", "RRGGBB or RRGGBBAA in hexadecimal (default 000000)"},
    {"--area", "X,Y,WxH", "only these pixels of IN, counted from the top left"},
    kSizeOption,
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
const Command kFill = {
    "fill",
    "fill a picture, part of one, or a new one with a colour",
    "[IN] OUT",
    1,
    2,
    kFillOptions,
    "vxtool fill in.png out.png --colour 00000080 --area 40,600,1200x80",
    RunFill,
};

} // namespace vxtool
