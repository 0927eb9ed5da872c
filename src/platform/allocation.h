// Where the bytes of every block of the platform layer come from, so that a test can make any of
// them fail (vx/platform/testing.h).
#pragma once

#include <cstddef>

namespace vxplatform {

constexpr size_t kBlockAlignment = 64; // a cache line, and the widest vector

// Bytes at a multiple of kBlockAlignment, given back with ReleaseBytes; null where there is no
// memory, with no last error set. 0 bytes give a pointer of their own.
void* AllocateBytes(size_t bytes, bool zeroed);
void ReleaseBytes(void* bytes);

// Counts an allocation that takes its bytes elsewhere; true where it is the one to fail.
bool AllocationMustFail();

} // namespace vxplatform
