// multiply, mask: a picture scaled by a number, by another picture, or by a mask.
#include "vx/blend.h"
#include "vxtool/commands.h"
#include "vxtool/failure.h"

namespace vxtool {
namespace {

void RunMultiply(const Arguments& arguments)
{
    const std::string* by = arguments.Text("--by");
    if (by && (arguments.Has("--factor") || arguments.Has("--alpha")))
        FailArgument("--by excludes --factor and --alpha");
    const double factor = arguments.Number("--factor", 1.0, -1000.0, 1000.0);
    const Form form = by ? Form::Floats : FormOf(arguments);
    const Output output(arguments, 1, form);
    const std::string& path = arguments.Operand(0);
    Frame frame = LoadFrame(path, form);
    if (by) {
        // A float frame is a mask of four values a pixel: the product goes through all of them.
        const Frame other = LoadPartner(*by, form, frame, path);
        MultiplyMasks(frame.Data(), frame.Stride(), other.Data(), other.Stride(), frame.Width() * 4,
                      frame.Height());
    } else {
        Multiply(frame.Data(), frame.Stride(), frame.BytesPerPixel(), frame.Width(), frame.Height(), factor,
                 arguments.Has("--alpha") ? 0 : 1);
    }
    output.Write(frame);
}

constexpr Option kMultiplyOptions[] = {
    {"--factor", "F",
     "what every colour is multiplied by; -1000 to 1000 (default 1.0);\n"
     "colours are held to their alpha"},
    {"--alpha", nullptr, "multiply alpha too; nothing is held, so that 8-bit values above 255 wrap"},
    {"--by", "PICTURE", "multiply by this picture, value by value, on float frames"},
    kFloatOption,
    kTypeOption,
};

void RunMask(const Arguments& arguments)
{
    const Form form = FormOf(arguments);
    const int32_t channel = arguments.OneOf("--channel", kChannels, -1);
    const double scale = arguments.Number("--scale", 1.0, -8.0, 8.0);
    const double offset =
        arguments.Number("--offset", 0.0, -8.0, 8.0) * (form == Form::Bytes ? kWhite8 : 1.0);
    const Output output(arguments, 2, form);
    const std::string& path = arguments.Operand(0);
    Frame frame = LoadFrame(path, form);
    const Frame mask = LoadPartner(arguments.Operand(1), Form::Bytes, frame, path);
    MaskMultiply(frame.Data(), frame.Stride(), frame.BytesPerPixel(), mask.Data(), mask.Stride(),
                 frame.Width(), frame.Height(), channel, scale, offset);
    output.Write(frame);
}

constexpr Option kMaskOptions[] = {
    {"--channel", "CHANNEL",
     "weigh all of IN by this channel of MASK: blue, green, red or alpha\n"
     "(default: each channel by its own)"},
    {"--scale", "S", "what the mask is multiplied by first; -8 to 8 (default 1.0)"},
    {"--offset", "O",
     "what is then added to the mask, or with --float to the result; 1.0 is white;\n"
     "-8 to 8 (default 0.0); --scale -1 --offset 1 inverts the mask"},
    kFloatOption,
    kTypeOption,
};

} // namespace

const Command kMultiply = {
    "multiply",       "multiply a picture by a number or by another picture", "IN OUT",    2, 2,
    kMultiplyOptions, "vxtool multiply in.png dark.png --factor 0.5",         RunMultiply,
};
const Command kMask = {
    "mask",       "weigh a picture, alpha too, by the brightness of a mask", "IN MASK OUT", 3, 3,
    kMaskOptions, "vxtool mask in.png vignette.png out.png --channel green", RunMask,
};

} // namespace vxtool
