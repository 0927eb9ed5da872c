#include "vxtool/placing.h"

#include "vx/dib.h"
#include "vx/dibcopy.h"
#include "vxtool/conversion.h"

#include <algorithm>

namespace vxtool {
namespace {

constexpr uint32_t kFine = uint32_t(kFineQuality);
constexpr uint32_t kAllEdges =
    VXDIBF_FEATHER_LASTROWS | VXDIBF_FEATHER_FIRSTROWS | VXDIBF_FEATHER_LEFT | VXDIBF_FEATHER_RIGHT;

void Copy(Frame& onto, const Area& to, Frame& picture, const Area& from, uint32_t flags)
{
    const FrameBitmap dest(onto), source(picture);
    CheckStatus(VxDibCopy(&dest.header, dest.pixels, &to.units, dest.stride, &source.header, source.pixels,
                          &from.units, source.stride, flags | VXDIBF_SUBPIXEL, 0.0, 0.0));
}

} // namespace

void Place(Frame& onto, const Area& to, Frame& picture, const Area& from, const Placement& how)
{
    if (how.feather == 0)
        return Copy(onto, to, picture, from, how.flags);
    // The scaling functions know no soft edges: these are made when the scaled picture is laid down.
    const Extent size = {to.Width() / kSubpixel, to.Height() / kSubpixel};
    Frame scaled(size.width, size.height, picture.PixelForm());
    Copy(scaled, AreaOf(size), picture, from, how.flags);
    Copy(onto, to, scaled, AreaOf(size),
         kFine | kAllEdges | uint32_t(how.feather) << VXDIBF_FEATHER_WIDTH_SHIFT);
}

Frame Cover(Frame picture, int32_t width, int32_t height)
{
    const double scale = std::min(double(picture.Width()) / width, double(picture.Height()) / height);
    // The library takes no less than a pixel.
    const auto used = [scale](int32_t target, int32_t side) {
        return std::clamp(int32_t(target * scale * kSubpixel), kSubpixel, side * kSubpixel);
    };
    const int32_t usedWidth = used(width, picture.Width()), usedHeight = used(height, picture.Height());
    const int32_t left = (picture.Width() * kSubpixel - usedWidth) / 2,
                  top = (picture.Height() * kSubpixel - usedHeight) / 2;
    Frame result(width, height, picture.PixelForm());
    Place(result, AreaOf({width, height}), picture, {{left, top, left + usedWidth, top + usedHeight}},
          {kFine | VXDIBF_AREA | VXDIBF_BICUBIC});
    return result;
}

} // namespace vxtool
