#pragma once

#include "vxtool/frame.h"

namespace vxtool {

// The middle of a picture that has the shape of the target, scaled to its size by averaging areas.
Frame Cover(const Frame& picture, int32_t width, int32_t height);

} // namespace vxtool
