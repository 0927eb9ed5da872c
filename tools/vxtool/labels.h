// SMPTE labels as the command line names, reads and shows them.
#pragma once

#include "vx/smpte.h"
#include "vxtool/options.h"

namespace vxtool {

inline constexpr Choice kSmpteFormats[] = {
    {"30", VXSMPTE_FORMAT_30}, {"29.97drop", VXSMPTE_FORMAT_2997DROP}, {"25", VXSMPTE_FORMAT_25},
    {"24", VXSMPTE_FORMAT_24}, {"29.97", VXSMPTE_FORMAT_2997},         {"23.976", VXSMPTE_FORMAT_23976},
};

// Fails with a caret where more than the four fields of a label, or none, were typed.
_smpteval ReadLabel(std::string_view text, uint32_t format);

// As 01:02:03:15, with a semicolon before the frames of drop-frame.
std::string ShowLabel(const _smpteval& label);

} // namespace vxtool
