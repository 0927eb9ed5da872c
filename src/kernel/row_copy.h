// Copying the bytes of a row by the widest vectors allowed.
#pragma once

#include <cstdint>

namespace vx {

// dst may be src; rows that overlap otherwise are not allowed.
using CopyRowFn = void (*)(uint8_t* dst, const uint8_t* src, int64_t bytes);

// The form to call; chosen once a call.
CopyRowFn SelectCopyRow();

} // namespace vx
