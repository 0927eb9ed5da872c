#include "vxtool/area.h"

#include "vxtool/failure.h"
#include "vxtool/size_limits.h"

#include <cmath>

namespace vxtool {
namespace {

int32_t Units(double pixels)
{
    return int32_t(std::lround(pixels * kSubpixel));
}

RECT ParseArea(std::string_view option, std::string_view text)
{
    const auto parts = SplitAt(text, ',');
    const auto size = parts.size() == 3 ? SplitAt(parts[2], 'x') : std::vector<std::string>();
    if (size.size() != 2)
        FailArgument(option, " takes a rectangle as X,Y,WxH, not '", text, "'");
    const auto number = [option](const std::string& part) {
        return ParseNumber(option, part, 0.0, kLargestSide);
    };
    // Sides are rounded, not sizes: what ends on a whole pixel stays there.
    const double x = number(parts[0]), y = number(parts[1]);
    return {Units(x), Units(y), Units(x + number(size[0])), Units(y + number(size[1]))};
}

} // namespace

RECT Area::Pixels() const
{
    return {units.left / kSubpixel, units.top / kSubpixel, units.right / kSubpixel, units.bottom / kSubpixel};
}

Area AreaOf(Extent whole)
{
    return {{0, 0, whole.width * kSubpixel, whole.height * kSubpixel}};
}

Area AreaOr(const Arguments& arguments, std::string_view option, Extent extent, std::string_view owner)
{
    const std::string* text = arguments.Text(option);
    if (text == nullptr)
        return AreaOf(extent);
    const Area area{ParseArea(option, *text)};
    if (area.Width() == 0 || area.Height() == 0)
        FailArgument(option, " is empty: ", *text);
    const RECT whole = AreaOf(extent).units;
    if (area.units.right > whole.right || area.units.bottom > whole.bottom)
        FailArgument(option, " reaches to ", double(area.units.right) / kSubpixel, ",",
                     double(area.units.bottom) / kSubpixel, ", outside of ", owner, " with its ",
                     extent.width, "x", extent.height, " pixels");
    return area;
}

RECT PixelsOr(const Arguments& arguments, std::string_view option, Extent extent, std::string_view owner)
{
    const Area area = AreaOr(arguments, option, extent, owner);
    if (!area.IsWhole())
        FailArgument(option, " takes whole pixels here, not ", *arguments.Text(option));
    return area.Pixels();
}

POINT ParsePlace(std::string_view option, std::string_view text, Extent extent, std::string_view owner)
{
    const auto parts = SplitAt(text, ',');
    if (parts.size() != 2)
        FailArgument(option, " takes a place as X,Y, not '", text, "'");
    const int32_t x = ParseInteger(option, parts[0], 0, kLargestSide),
                  y = ParseInteger(option, parts[1], 0, kLargestSide);
    if (x >= extent.width || y >= extent.height)
        FailArgument(option, " is outside of ", owner, " with its ", extent.width, "x", extent.height,
                     " pixels: ", text);
    return {x, y};
}

} // namespace vxtool
