// Fill: every pixel of a frame set to one colour.
#include "primitives/rows.h"
#include "primitives/unit_byte.h"
#include "vx/channels.h"

#include <cstring>

namespace vx {
namespace {

// A plain loop over stores of a whole pixel: the compiler's vectors run it at the speed of memory.
template <class Pixel>
void FillRows(void* buffer, int32_t stride, int32_t width, int32_t height, Pixel pixel)
{
    for (int32_t y = 0; y < height; ++y) {
        uint8_t* row = RowAt(buffer, stride, y);
        for (int32_t x = 0; x < width; ++x)
            std::memcpy(row + sizeof(Pixel) * size_t(x), &pixel, sizeof(Pixel));
    }
}

struct FloatPixel
{
    float blue, green, red, alpha;
};

} // namespace
} // namespace vx

bool Fill(void* buffer, int32_t stride, int32_t bytesPerPixel, int32_t width, int32_t height, float alpha,
          float red, float green, float blue)
{
    using namespace vx;
    if (bytesPerPixel == 4) {
        const uint32_t word = uint32_t(UnitByte(alpha)) << 24 | uint32_t(UnitByte(red)) << 16 |
                              uint32_t(UnitByte(green)) << 8 | UnitByte(blue);
        FillRows(buffer, stride, width, height, word);
    } else if (bytesPerPixel == 16) {
        FillRows(buffer, stride, width, height, FloatPixel{blue, green, red, alpha});
    }
    return true;
}
