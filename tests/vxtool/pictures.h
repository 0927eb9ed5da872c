// Bitmaps for the tests of vxtool.
#pragma once

#include "support/random.h"
#include "vxtool/failure.h"
#include "vxtool/picture.h"

#include <cstring>

namespace vxtest {

constexpr VxPixelType kFileTypes[] = {
    VXPIXEL_PAL1,  VXPIXEL_PAL4,   VXPIXEL_PAL8,      VXPIXEL_GRAY1,  VXPIXEL_GRAY2,   VXPIXEL_GRAY4,
    VXPIXEL_GRAY8, VXPIXEL_GRAY16, VXPIXEL_GRAY32,    VXPIXEL_RGB555, VXPIXEL_RGB565,  VXPIXEL_RGB24,
    VXPIXEL_RGB32, VXPIXEL_RGBA32, VXPIXEL_RGB101010, VXPIXEL_RGBA64, VXPIXEL_RGBA128,
};

// Random pixels that are valid values of the type, and a palette of random colours where it has one.
inline vxtool::Dib RandomDib(VxPixelType type, int32_t width, int32_t height, Random& random)
{
    std::vector<RGBQUAD> palette;
    if (vxtool::IsPaletteType(type))
        for (int i = 0; i < (type == VXPIXEL_PAL1 ? 2 : type == VXPIXEL_PAL4 ? 16 : 256); ++i)
            palette.push_back({random.Byte(), random.Byte(), random.Byte(), 0});
    vxtool::Dib dib(type, width, height, palette);
    const bool floats = type == VXPIXEL_GRAY32 || type == VXPIXEL_RGBA128;
    const size_t used = (size_t(width) * size_t(dib.BitsPerPixel()) + 7) / 8;
    for (int32_t y = 0; y < height; ++y)
        for (size_t i = 0; i < used; i += floats ? 4 : 1) {
            const float value = random.Float(0.0f, 1.0f);
            if (floats)
                std::memcpy(dib.Row(y) + i, &value, sizeof(value));
            else
                dib.Row(y)[i] = random.Byte();
        }
    return dib;
}

inline std::vector<vxtool::Colour> RowOf(const vxtool::Dib& dib, int32_t y)
{
    std::vector<vxtool::Colour> row(size_t(dib.Width()));
    vxtool::LoadRow(dib, y, row);
    return row;
}

// The nearest RRGGBBAA.
inline uint32_t ColourCode(const vxtool::Colour& c)
{
    using vxtool::Quantized;
    return Quantized(c.red, 255) << 24 | Quantized(c.green, 255) << 16 | Quantized(c.blue, 255) << 8 |
           Quantized(c.alpha, 255);
}

// The sentence with which bytes are refused; empty if they are a picture.
inline std::string Refusal(std::span<const uint8_t> bytes)
{
    try {
        vxtool::ParsePicture(bytes, "it");
        return "";
    } catch (const vxtool::Failure& failure) {
        return failure.code == vxtool::kBadFile ? failure.sentence : "wrong exit code";
    }
}

} // namespace vxtest
