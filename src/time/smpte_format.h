// The six timecode formats.
#pragma once

#include "vx/smpte.h"

namespace vx {

struct SmpteFormat
{
    uint32_t nominal; // frames a second as labels count them
    double rate;      // true frames a second
    bool drop;
    uint32_t day; // frames in 24 hours
};

inline constexpr SmpteFormat kSmpteFormats[] = {
    {0, 30.0, false, 0}, // stands for all unknown formats, which count nothing
    {30, 30.0, false, 2'592'000},
    {30, 30000.0 / 1001.0, true, 2'589'408},
    {25, 25.0, false, 2'160'000},
    {24, 24.0, false, 2'073'600},
    {30, 30000.0 / 1001.0, false, 2'592'000},
    {24, 24000.0 / 1001.0, false, 2'073'600},
};

inline const SmpteFormat& FormatOf(const _smpteval& label)
{
    return kSmpteFormats[label.format <= VXSMPTE_FORMAT_23976 ? label.format : 0];
}

} // namespace vx
