// Walking the rows of raw frames. A row worker knows no frame: it gets row pointers and a width.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vx {

// Row y of a frame; the stride is signed and the product 64 bits wide.
template <class T = uint8_t>
T* RowAt(void* frame, int32_t stride, int32_t y)
{
    return reinterpret_cast<T*>(static_cast<uint8_t*>(frame) + int64_t(stride) * y);
}

template <class T = uint8_t>
const T* RowAt(const void* frame, int32_t stride, int32_t y)
{
    return reinterpret_cast<const T*>(static_cast<const uint8_t*>(frame) + int64_t(stride) * y);
}

} // namespace vx
