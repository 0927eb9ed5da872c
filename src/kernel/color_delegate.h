// Colours that another module owns: the forwarding that a start with VXKERNEL_DELEGATE_COLORS asks for.
#pragma once

#include <cstdint>
#include <optional>

namespace vx {

enum class ColorLookup
{
    Absolute, // VxGetUIColorAbsolute
    Nearest,  // VxGetUIColor
};

// The colour of `id` (a COLORREF) from the module that the host executable's VxApp_GetAppKernel names;
// nothing where colours are not delegated. A host or module that lacks an export ends the delegation
// until the next start. Threads that come first together resolve the same functions twice.
std::optional<uint32_t> DelegatedColor(ColorLookup lookup, int32_t id);

} // namespace vx
