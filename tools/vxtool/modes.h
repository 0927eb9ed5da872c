// The seven modes of Composite by their names on the command line.
#pragma once

#include "vx/composite.h"
#include "vxtool/options.h"

namespace vxtool {

inline constexpr Choice kModes[] = {
    {"source-over", VX_COMPOSITE_SOURCE_OVER},
    {"destination-over", VX_COMPOSITE_DESTINATION_OVER},
    {"add", VX_COMPOSITE_ADD},
    {"multiply", VX_COMPOSITE_MULTIPLY},
    {"overlay", VX_COMPOSITE_OVERLAY},
    {"screen", VX_COMPOSITE_SCREEN},
    {"average", VX_COMPOSITE_AVERAGE},
};

} // namespace vxtool
