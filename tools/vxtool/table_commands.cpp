// lut, map, threshold: every pixel goes through a table or a step.
#include "vx/channels.h"
#include "vxtool/commands.h"
#include "vxtool/curves.h"
#include "vxtool/failure.h"

#include <cstring>

namespace vxtool {
namespace {

void RunLut(const Arguments& arguments)
{
    if (!arguments.Has("--curve"))
        FailArgument("--curve is missing, as --curve 0,0:128,180:255,255");
    const CurveTable table = CurvesOf(arguments);
    const Output output(arguments, 1);
    Frame frame = LoadFrame(arguments.Operand(0), Form::Bytes);
    const auto lut = arguments.Has("--no-clamp") ? Lut : LutWithAlphaClamp;
    lut(frame.Data(), frame.Stride(), frame.Width(), frame.Height(), table.data());
    output.Write(frame);
}

constexpr Option kLutOptions[] = {
    {"--curve", "[CH=]X,Y:X,Y...",
     "new value Y for each value X, both 0 to 255, straight lines between the\n"
     "points; CH is red, green, blue or alpha (default: the three colours);\n"
     "may be given several times"},
    {"--no-clamp", nullptr, "let colours exceed their alpha"},
    kTypeOption,
};

uint32_t WordOf(const Colour& c)
{
    return Quantized(c.alpha, 255) << 24 | Quantized(c.red, 255) << 16 | Quantized(c.green, 255) << 8 |
           Quantized(c.blue, 255);
}

void MapBytes(Frame& frame, const std::vector<Colour>& colours, int32_t channel, int32_t sumOf)
{
    uint32_t table[256];
    for (size_t i = 0; i < 256; ++i)
        table[i] = WordOf(colours[i]);
    if (sumOf > 0)
        ChannelMergeLut(frame.Data(), frame.Stride(), sumOf, frame.Width(), frame.Height(), table);
    else
        ChannelMap(frame.Data(), frame.Stride(), channel, frame.Width(), frame.Height(), table);
}

void MapFloats(Frame& frame, const std::vector<Colour>& colours, int32_t channel)
{
    static_assert(sizeof(Colour) == 16, "a table entry is a float pixel");
    ChannelMapExFloat(frame.Data(), frame.Stride(), frame.Data(), frame.Stride(), channel, frame.Width(),
                      frame.Height(), &colours[0].blue, int32_t(colours.size()));
}

void RunMap(const Arguments& arguments)
{
    const Form form = FormOf(arguments);
    const int32_t channel = arguments.OneOf("--channel", kChannels, 1);
    const int32_t sumOf = arguments.Integer("--sum", 0, 1, 4);
    if (sumOf > 0 && (form == Form::Floats || arguments.Has("--channel")))
        FailArgument("--sum excludes --channel and --float");
    const std::string* gradient = arguments.Text("--gradient");
    const auto colours = Gradient("--gradient", gradient ? *gradient : "0,000000:0.5,ff6000:1,ffffe0",
                                  form == Form::Floats ? 4096 : 256);
    const Output output(arguments, 1, form);
    Frame frame = LoadFrame(arguments.Operand(0), form);
    if (form == Form::Floats)
        MapFloats(frame, colours, channel);
    else
        MapBytes(frame, colours, channel, sumOf);
    output.Write(frame);
}

constexpr Option kMapOptions[] = {
    {"--channel", "CHANNEL", "what chooses the colour: blue, green, red or alpha (default green)"},
    {"--gradient", "V,COLOUR:V,COLOUR...",
     "the colours, RRGGBB or RRGGBBAA, at values V of 0 to 1\n(default 0,000000:0.5,ff6000:1,ffffe0)"},
    {"--sum", "N", "the sum of the first N channels, blue first, chooses; 1 to 4"},
    kFloatOption,
    kTypeOption,
};

// ClipRestore works on a scale of 0 to 255.
void ScaleFloats(Frame& frame, float factor)
{
    for (int32_t y = 0; y < frame.Height(); ++y)
        for (int32_t x = 0; x < frame.Width(); ++x) {
            const Colour c = frame.Get(x, y);
            frame.Set(x, y, {c.blue * factor, c.green * factor, c.red * factor, c.alpha * factor});
        }
}

void RunThreshold(const Arguments& arguments)
{
    const bool clears = arguments.Has("--clear"), clips = arguments.Has("--clip");
    const bool steps = arguments.Has("--low") || arguments.Has("--high");
    if (clears + clips + steps > 1)
        FailArgument("--low and --high, --clear, and --clip exclude each other");
    if (arguments.Has("--floor") && !clips)
        FailArgument("--floor goes with --clip only");
    const double low = arguments.Number("--low", 0.5, -1000.0, 1000.0);
    const double high = arguments.Number("--high", low, -1000.0, 1000.0);
    const double clear = arguments.Number("--clear", 0.0, 0.0, 1.0);
    const double clip = arguments.Number("--clip", 1.0, 0.0, 1000.0);
    const double floor = arguments.Number("--floor", 0.0, 0.0, 1000.0);
    const Form form = clears ? FormOf(arguments) : Form::Floats;
    const Output output(arguments, 1, FormOf(arguments));
    Frame frame = LoadFrame(arguments.Operand(0), form);
    if (clears) {
        ThresholdClear(frame.Data(), frame.Stride(), frame.BytesPerPixel(), frame.Width(), frame.Height(),
                       float(clear));
    } else if (clips) {
        ScaleFloats(frame, 255.0f);
        ClipRestore(frame.Data(), frame.Stride(), frame.Width(), frame.Height(), clip, floor);
        ScaleFloats(frame, 1.0f / 255.0f);
    } else {
        ThresholdFloat(frame.Data(), frame.Stride(), frame.Width(), frame.Height(), low, high);
    }
    output.Write(frame);
}

constexpr Option kThresholdOptions[] = {
    {"--low", "V", "values below become 0.0; -1000 to 1000 (default 0.5)"},
    {"--high", "V",
     "values from here on become 1.0, with a ramp between the two;\n"
     "-1000 to 1000 (default: as --low, a hard step)"},
    {"--clear", "V", "only clear what lies below V; 0 to 1"},
    {"--clip", "V", "only take colours above V back to their alpha; 0 to 1000"},
    {"--floor", "V", "with --clip: take them back to V where the alpha is less; 0 to 1000 (default 0)"},
    kFloatOption,
    kTypeOption,
};

} // namespace

const Command kLut = {
    "lut",
    "send the colours of a picture through curves",
    "IN OUT",
    2,
    2,
    kLutOptions,
    "vxtool lut in.png out.png --curve 0,0:128,180:255,255 --curve red=0,20:255,255",
    RunLut,
};
const Command kMap = {
    "map",       "give a picture new colours, chosen by one channel", "IN OUT", 2, 2,
    kMapOptions, "vxtool map in.png heat.png --channel red",          RunMap,
};
const Command kThreshold = {
    "threshold",       "cut values off at a threshold, hard or soft, in all channels", "IN OUT",     2, 2,
    kThresholdOptions, "vxtool threshold in.png out.png --low 0.4 --high 0.6",         RunThreshold,
};

} // namespace vxtool
