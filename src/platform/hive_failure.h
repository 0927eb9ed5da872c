// How the registry's storage gives up: an error code, thrown where it arises and returned by the exported
// function.
#pragma once

#include "vx/platform/registry.h"

namespace vxplatform {

struct HiveFailure
{
    LSTATUS code;
};

} // namespace vxplatform
