// Frames for the works: rows without gaps, filled with the same random picture on every run.
#pragma once

#include "compare.h"
#include "memory.h"

#include <cstdint>
#include <vector>

namespace vxbench {

constexpr Size kFullHd{1920, 1080};
constexpr Size kTile{256, 256};
// A frame that only memory or the outer cache holds, and one that stays in the inner caches.
inline const std::vector<Size> kFrameSizes{kFullHd, kTile};

enum class Content
{
    Bytes,      // premultiplied 8-bit frame
    Floats,     // premultiplied float frame of 0.0 to 1.0
    BytePlane,  // any byte, one a pixel
    ByteMask,   // any byte, four a pixel
    FloatPlane, // 0.0 to 1.0, one a pixel
};

class Frame
{
public:
    Frame(Size size, Content content, uint64_t seed);

    Size size() const { return size_; }
    int32_t BytesPerPixel() const { return bytesPerPixel_; }
    int32_t Stride() const { return size_.width * bytesPerPixel_; }
    size_t Pixels() const { return size_t(size_.Pixels()); }

    uint8_t* Bytes() { return memory_.Bytes(); }
    const uint8_t* Bytes() const { return memory_.Bytes(); }
    float* Floats() { return reinterpret_cast<float*>(Bytes()); }
    const float* Floats() const { return reinterpret_cast<const float*>(Bytes()); }
    std::span<uint8_t> All() { return memory_.All(); }
    size_t ByteCount() const { return Pixels() * size_t(bytesPerPixel_); }

private:
    Size size_;
    int32_t bytesPerPixel_;
    Memory memory_;
};

// A frame that the calls change, and one that they read.
Frame& Destination(Work& work, Content content);
const Frame& Source(Work& work, Content content);

} // namespace vxbench
