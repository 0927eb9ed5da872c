// Bitmaps of the types that only the exchange knows.
#pragma once

#include "support/random.h"
#include "vx/pixel.h"

#include <vector>

namespace vxbench {

// A bitmap of random bytes and table, behind its header in one block.
class Bitmap
{
public:
    Bitmap(int32_t type, int32_t width, int32_t height, uint32_t entries, vxtest::Random& random)
    {
        std::vector<RGBQUAD> table(entries);
        for (RGBQUAD& entry : table)
            entry = {random.Byte(), random.Byte(), random.Byte(), 0};
        VxDibAlloc(&dib_, type, width, height, table.data(), int32_t(entries), VXDIBALLOC_ZERO, 0);
        uint32_t front, bytes;
        BITMAPINFOHEADER info[30]; // with the largest table
        VxDibInfo(&front, &bytes, info, type, width, height, table.data(), int32_t(entries));
        pixels_ = reinterpret_cast<uint8_t*>(dib_) + front;
        stride_ = int32_t(bytes) / height;
        for (uint32_t i = 0; i < bytes; ++i)
            pixels_[i] = random.Byte();
    }
    ~Bitmap() { VxDibFree(dib_, 0); }
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;

    BITMAPINFOHEADER* Header() { return dib_; }
    uint8_t* Pixels() { return pixels_; }
    int32_t Stride() const { return stride_; }

private:
    BITMAPINFOHEADER* dib_ = nullptr;
    uint8_t* pixels_ = nullptr;
    int32_t stride_ = 0;
};

} // namespace vxbench
