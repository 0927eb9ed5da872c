// The library's own reasons and contexts.
#pragma once

#include "vx/lang.h"

#include <span>

namespace vx {

struct Reason
{
    uint32_t status;
    vxlang_t* text;
};

std::span<const Reason> BuiltInReasons();

// Context 0 for a number that has none of its own.
vxlang_t* BuiltInContext(uintptr_t context);

} // namespace vx
