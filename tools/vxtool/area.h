// Rectangles and places on the command line.
#pragma once

#include "vx/types.h"
#include "vxtool/options.h"

namespace vxtool {

constexpr int32_t kSubpixel = 16384; // the library's units a pixel

// A rectangle in the library's sub-pixel units.
struct Area
{
    RECT units;

    bool IsWhole() const { return ((units.left | units.top | units.right | units.bottom) % kSubpixel) == 0; }
    int32_t Width() const { return units.right - units.left; }
    int32_t Height() const { return units.bottom - units.top; }
    // The fractions cut off.
    RECT Pixels() const;
};

Area AreaOf(Extent whole);

// X,Y,WxH in pixels, with fractions, rounded to 1/16384; all of the extent where the option is not given.
// Fails where it is empty or reaches outside of the extent, that of `owner`.
Area AreaOr(const Arguments& arguments, std::string_view option, Extent extent, std::string_view owner);
// The same, and fails where it has fractions.
RECT PixelsOr(const Arguments& arguments, std::string_view option, Extent extent, std::string_view owner);

// X,Y inside the extent.
POINT ParsePlace(std::string_view option, std::string_view text, Extent extent, std::string_view owner);

} // namespace vxtool
