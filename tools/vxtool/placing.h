// A rectangle of one frame scaled into a rectangle of another.
#pragma once

#include "vxtool/area.h"
#include "vxtool/frame.h"

namespace vxtool {

struct Placement
{
    uint32_t flags;      // of VxDibCopy: quality, kind of scaling, edges
    int32_t feather = 0; // width of soft edges in pixels of the destination, to 255
    static constexpr int32_t kWidestFeather = 255;
};

// `to` replaces what it covers; a pixel that it covers in part is mixed, and so are soft edges. With
// soft edges `to` must be whole pixels. Both frames are of one form.
void Place(Frame& onto, const Area& to, Frame& picture, const Area& from, const Placement& how);

// The middle of a picture that has the shape of the target, scaled to its size.
Frame Cover(Frame picture, int32_t width, int32_t height);

} // namespace vxtool
