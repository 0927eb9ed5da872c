// The capability block, as the library itself reads it.
#pragma once

#include <cstdint>

namespace vx {

// The CPU word that a full probe would give, AND the host's allow mask, without running the probe:
// asking leaves the thread's MXCSR alone, so that a pixel operation never changes the caller's
// float mode. VX_CPU_AVX is in it where the processor has AVX and the host allows it.
uint32_t AllowedCpuFeatures();

} // namespace vx
