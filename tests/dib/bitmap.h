// Bitmaps for tests.
#pragma once

#include "support/random.h"
#include "vx/pixel.h"

#include <cstring>
#include <vector>

namespace vxtest {

// A bitmap of random pixels and table, behind its header in one block.
class Bitmap
{
public:
    Bitmap(int32_t type, int32_t width, int32_t height, uint32_t entries, Random& random)
    {
        std::vector<RGBQUAD> table(entries);
        for (RGBQUAD& entry : table)
            entry = {random.Byte(), random.Byte(), random.Byte(), 0};
        VxDibAlloc(&dib_, type, width, height, table.data(), int32_t(entries), VXDIBALLOC_ZERO, 0);
        uint32_t front, bytes;
        BITMAPINFOHEADER info[30];
        VxDibInfo(&front, &bytes, info, type, width, height, table.data(), int32_t(entries));
        pixels_ = reinterpret_cast<uint8_t*>(dib_) + front;
        stride_ = height ? int32_t(bytes) / height : 0;
        for (uint32_t i = 0; i < bytes; ++i)
            pixels_[i] = random.Byte();
    }
    ~Bitmap() { VxDibFree(dib_, 0); }
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;

    BITMAPINFOHEADER* Header() { return dib_; }
    uint8_t* Pixels() { return pixels_; }
    int32_t Stride() const { return stride_; }
    RGBQUAD* Table() { return reinterpret_cast<RGBQUAD*>(dib_ + 1); }
    // y counts from the top of the picture.
    uint8_t* Row(int32_t y) { return pixels_ + int64_t(stride_) * (dib_->biHeight - 1 - y); }

private:
    BITMAPINFOHEADER* dib_ = nullptr;
    uint8_t* pixels_ = nullptr;
    int32_t stride_ = 0;
};

} // namespace vxtest
