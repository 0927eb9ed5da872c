// The sizes that a picture may have, checked before memory is taken for it.
#pragma once

#include <cstdint>

namespace vxtool {

constexpr int32_t kLargestSide = 32768;
constexpr int64_t kMostPixels = int64_t(1) << 28;
// The library addresses rows by 32-bit signed offsets.
constexpr int64_t kMostBytes = INT32_MAX;

inline bool SizeAllowed(int64_t width, int64_t height, int64_t bitsPerPixel)
{
    return width >= 1 && height >= 1 && width <= kLargestSide && height <= kLargestSide &&
           width * height <= kMostPixels && (width * bitsPerPixel + 31) / 32 * 4 * height <= kMostBytes;
}

} // namespace vxtool
