// What writing and reading of ruler formats share.
#pragma once

#include "vx/ruler.h"

namespace vx {

constexpr double kCdFramesPerSecond = 75.0;
constexpr double kNanoUnitsPerMinute = 600'000'000.0;

// The timecode format of a ruler format, 0 for one that shows no timecode.
constexpr uint32_t SmpteFormatOf(int32_t format)
{
    switch (format) {
    case VXPOSFMT_SMPTE_2997:
        return VXSMPTE_FORMAT_2997;
    case VXPOSFMT_SMPTE_30:
        return VXSMPTE_FORMAT_30;
    case VXPOSFMT_SMPTE_DROP:
        return VXSMPTE_FORMAT_2997DROP;
    case VXPOSFMT_SMPTE_25:
        return VXSMPTE_FORMAT_25;
    case VXPOSFMT_SMPTE_24:
        return VXSMPTE_FORMAT_24;
    case VXPOSFMT_SMPTE_23976:
        return VXSMPTE_FORMAT_23976;
    default:
        return 0;
    }
}

} // namespace vx
