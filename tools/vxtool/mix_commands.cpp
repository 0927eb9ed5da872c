// blend, composite: two pictures become one.
#include "vx/blend.h"
#include "vx/composite.h"
#include "vxtool/commands.h"
#include "vxtool/curves.h"
#include "vxtool/failure.h"
#include "vxtool/modes.h"

namespace vxtool {
namespace {

void RunBlend(const Arguments& arguments)
{
    const double factor = arguments.Number("--factor", 0.5, -1000.0, 1000.0);
    const std::string* maskPath = arguments.Text("--mask");
    if (maskPath && arguments.Has("--factor"))
        FailArgument("--factor and --mask exclude each other");
    const CurveTable curves = CurvesOf(arguments);
    const Output output(arguments, 2);
    const std::string& path = arguments.Operand(0);
    Frame dst = LoadFrame(path, Form::Bytes);
    const Frame src = LoadPartner(arguments.Operand(1), Form::Bytes, dst, path);
    if (maskPath) {
        const Frame mask = LoadPartner(*maskPath, Form::Bytes, dst, path);
        MaskedBlend(dst.Data(), dst.Stride(), mask.Data(), mask.Stride(), src.Data(), src.Stride(),
                    dst.Width(), dst.Height(), arguments.Has("--curve") ? curves.data() : nullptr);
    } else {
        Blend(dst.Data(), dst.Stride(), src.Data(), src.Stride(), dst.Width(), dst.Height(), factor);
    }
    output.Write(dst);
}

constexpr Option kBlendOptions[] = {
    {"--factor", "F", "weight of A: 1.0 keeps A, 0.0 takes the colours of B; -1000 to 1000 (default 0.5)"},
    {"--mask", "PICTURE", "weigh B channel by channel by this picture instead: white takes B"},
    {"--curve", "[CH=]X,Y:X,Y...", "send the mask through a curve; see vxtool lut --help"},
    kTypeOption,
};

void RunComposite(const Arguments& arguments)
{
    const Form form = FormOf(arguments);
    const int32_t mode = arguments.OneOf("--mode", kModes, VX_COMPOSITE_SOURCE_OVER);
    const double opacity = arguments.Number("--opacity", 1.0, -1000.0, 1000.0);
    const Output output(arguments, 2, form);
    const std::string& path = arguments.Operand(0);
    Frame dst = LoadFrame(path, form);
    const Frame src = LoadPartner(arguments.Operand(1), form, dst, path);
    Composite(dst.Data(), dst.Stride(), src.Data(), src.Stride(), dst.BytesPerPixel(), dst.Width(),
              dst.Height(), mode, opacity);
    output.Write(dst);
}

constexpr Option kCompositeOptions[] = {
    {"--mode", "MODE",
     "source-over, destination-over, add, multiply, overlay, screen or average\n(default source-over)"},
    {"--opacity", "O",
     "strength of the mode; 0.0 to 1.0, 8-bit work is kept within that,\n"
     "float work is not; -1000 to 1000 (default 1.0)"},
    kFloatOption,
    kTypeOption,
};

} // namespace

const Command kBlend = {
    "blend",       "mix the colours of two pictures by a factor or a mask", "A B OUT", 3, 3,
    kBlendOptions, "vxtool blend day.png night.png dusk.png --factor 0.3",  RunBlend,
};
const Command kComposite = {
    "composite",
    "lay one picture onto another in one of seven modes",
    "BACK FRONT OUT",
    3,
    3,
    kCompositeOptions,
    "vxtool composite scene.png title.png out.png --mode screen --opacity 0.8",
    RunComposite,
};

} // namespace vxtool
