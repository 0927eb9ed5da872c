// scale: a part of a picture in another size, at any place of a new picture or of another one.
#include "vx/dib.h"
#include "vxtool/commands.h"
#include "vxtool/conversion.h"
#include "vxtool/failure.h"
#include "vxtool/placing.h"

namespace vxtool {
namespace {

constexpr int32_t kNearest = kFineQuality - 1; // the quality that picks pixels
constexpr Choice kFilters[] = {
    {"nearest", kNearest},
    {"bilinear", kFineQuality},
    {"bicubic", kFineQuality | int32_t(VXDIBF_BICUBIC)},
    {"area", kFineQuality | int32_t(VXDIBF_AREA)},
};
constexpr int32_t kSmallestTarget = kSubpixel / 16;

void CheckAreas(const Arguments& arguments, const Area& from, const Area& to, const Placement& how)
{
    const bool whole = from.IsWhole() && to.IsWhole();
    if (how.flags == kNearest && !whole)
        FailArgument("--filter nearest picks whole pixels; --from and --to must have no fractions");
    if (how.feather > 0 && !to.IsWhole())
        FailArgument("--feather needs a --to without fractions, not ", *arguments.Text("--to"));
    if (arguments.Has("--hard") && to.IsWhole())
        FailArgument("--hard goes with a --to that has fractions only");
    if (from.Width() < kSubpixel || from.Height() < kSubpixel)
        FailArgument("--from must be at least one pixel wide and high, unlike ", *arguments.Text("--from"));
    if (to.Width() < kSmallestTarget || to.Height() < kSmallestTarget)
        FailArgument("--to must be at least 1/16 pixel wide and high, unlike ", *arguments.Text("--to"));
}

Frame Ground(const Arguments& arguments, Extent size, Form form)
{
    const std::string* path = arguments.Text("--onto");
    if (path == nullptr)
        return Frame(size.width, size.height, form);
    Frame ground = LoadFrame(*path, form);
    if (ground.Width() != size.width || ground.Height() != size.height)
        FailArgument("OUT is to be ", arguments.Operand(2), " and ", *path, " is ", ground.Width(), "x",
                     ground.Height(), " pixels; they must be of one size");
    return ground;
}

void RunScale(const Arguments& arguments)
{
    const Extent size = ParseExtent("the size of OUT", arguments.Operand(2));
    Placement how{uint32_t(arguments.OneOf("--filter", kFilters, kFilters[1].value)),
                  arguments.Integer("--feather", 0, 1, Placement::kWidestFeather)};
    const Area to = AreaOr(arguments, "--to", size, "OUT");
    const Form form = FormOf(arguments);
    const Output output(arguments, 1, form);
    Frame picture = LoadFrame(arguments.Operand(0), form);
    const Area from = AreaOr(arguments, "--from", {picture.Width(), picture.Height()}, arguments.Operand(0));
    CheckAreas(arguments, from, to, how);
    if (arguments.Has("--hard"))
        how.flags |= VXDIBF_NOEDGEBLEND;
    Frame ground = Ground(arguments, size, form);
    Place(ground, to, picture, from, how);
    output.Write(ground);
}

constexpr Option kScaleOptions[] = {
    {"--filter", "FILTER",
     "nearest picks pixels, bilinear and bicubic look at 2x2 and 4x4 of them,\n"
     "area averages all that a smaller pixel covers (default bilinear)"},
    {"--from", "X,Y,WxH", "the part of IN to take, in pixels and fractions (default: all)"},
    {"--to", "X,Y,WxH", "where in OUT to put it, in pixels and fractions (default: all of OUT)"},
    {"--onto", "PICTURE", "what OUT is where IN does not lie, of the size of OUT (default: transparent)"},
    {"--feather", "N", "mix the outer N pixels of --to with what lies there, softly; 1 to 255"},
    {"--hard", nullptr, "write the pixels that --to covers in part whole, not mixed"},
    kFloatOption,
    kTypeOption,
};

} // namespace

const Command kScale = {
    "scale",
    "scale a picture or a part of it, to any place, also between pixels",
    "IN OUT WxH",
    3,
    3,
    kScaleOptions,
    "vxtool scale logo.png out.png 1280x720 --to 40.5,40.5,320x90 --onto scene.png",
    RunScale,
};

} // namespace vxtool
