// Walking the rows of raw frames. A row worker knows no frame: it gets row pointers and a width.
//
// A plain row worker whose vector form runs it for the rest of a row is HWY_NOINLINE: the compiler would
// else unroll and vectorise a copy of it for each target, many times the code, for a few pixels.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vx {

// An empty frame is left alone before any address is computed: its pointers may be null.
inline bool IsEmpty(int32_t width, int32_t height)
{
    return width <= 0 || height <= 0;
}

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

// Elements of a row may lie at any byte.
template <class T>
T LoadElement(const void* at)
{
    T value;
    std::memcpy(&value, at, sizeof(T));
    return value;
}

template <class T>
void StoreElement(void* at, T value)
{
    std::memcpy(at, &value, sizeof(T));
}

// One of two floats, bit for bit. Of a choice between the floats that were compared a compiler makes the
// processor's minimum or maximum, which loses denormals where a thread flushes them. It may not where it
// cannot know that the float chosen is one that was compared.
inline float EitherFloat(bool first, float a, float b)
{
    asm("" : "+x"(a));
    return first ? a : b;
}

} // namespace vx
