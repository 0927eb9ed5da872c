#pragma once

#include <cstdlib>

namespace vxfuzz {

// What must hold for any input. Stops the run with the input kept.
inline void Require(bool condition)
{
    if (!condition)
        std::abort();
}

} // namespace vxfuzz
