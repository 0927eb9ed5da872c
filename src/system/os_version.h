// The rules about versions, on any system's record.
#pragma once

#include "vx/platform/version.h"

namespace vx {

// At least the level and service pack of VxOSVersionOK.
bool IsAtLeast(const OSVERSIONINFOEXW& system, int32_t level, uint16_t servicePack);

// The name without the width of its addresses; null for an unknown system.
const char16_t* NameOf(const OSVERSIONINFOEXW& system);

} // namespace vx
