// Bitmaps for the tests of vxtool.
#pragma once

#include "support/random.h"
#include "vxtool/conversion.h"
#include "vxtool/failure.h"
#include "vxtool/picture.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace vxtest {

constexpr VxPixelType kFileTypes[] = {
    VXPIXEL_PAL1,  VXPIXEL_PAL4,   VXPIXEL_PAL8,      VXPIXEL_GRAY1,  VXPIXEL_GRAY2,   VXPIXEL_GRAY4,
    VXPIXEL_GRAY8, VXPIXEL_GRAY16, VXPIXEL_GRAY32,    VXPIXEL_RGB555, VXPIXEL_RGB565,  VXPIXEL_RGB24,
    VXPIXEL_RGB32, VXPIXEL_RGBA32, VXPIXEL_RGB101010, VXPIXEL_RGBA64, VXPIXEL_RGBA128,
};

// Random pixels that are valid values of the type, opaque where files keep no alpha, and a palette of random
// colours where it has one.
inline vxtool::Dib RandomDib(VxPixelType type, int32_t width, int32_t height, Random& random)
{
    std::vector<RGBQUAD> palette;
    if (vxtool::IsPaletteType(type))
        for (int i = 0; i < (type == VXPIXEL_PAL1 ? 2 : type == VXPIXEL_PAL4 ? 16 : 256); ++i)
            palette.push_back({random.Byte(), random.Byte(), random.Byte(), 0});
    vxtool::Dib dib(type, width, height, palette);
    const bool floats = type == VXPIXEL_GRAY32 || type == VXPIXEL_RGBA128;
    const uint8_t opaque = type == VXPIXEL_RGB32 ? 0xFF : type == VXPIXEL_RGB101010 ? 0xC0 : 0;
    const size_t used = (size_t(width) * size_t(dib.BitsPerPixel()) + 7) / 8;
    for (int32_t y = 0; y < height; ++y)
        for (size_t i = 0; i < used; i += floats ? 4 : 1) {
            const float value = random.Float(0.0f, 1.0f);
            if (floats)
                std::memcpy(dib.Row(y) + i, &value, sizeof(value));
            else
                dib.Row(y)[i] = uint8_t(random.Byte() | (i % 4 == 3 ? opaque : 0));
        }
    return dib;
}

// Channels of 16 bits: blue, green, red, alpha.
using Words = std::array<uint32_t, 4>;

// What is stored at a place, from the layouts and rules of vx/pixel.h and vx/xchg.h, by plain arithmetic:
// channels of 8 bits and of table entries spread over 0 to 65535, narrower ones in the top bits.
inline Words StoredWords(const vxtool::Dib& dib, int32_t x, int32_t y)
{
    const uint32_t bits = uint32_t(dib.BitsPerPixel()), at = uint32_t(x) * bits;
    const uint8_t* from = dib.Row(y) + at / 8;
    uint32_t word = 0;
    std::memcpy(&word, from, std::max(bits / 8, 1u) > 4 ? 4 : std::max(bits / 8, 1u));
    const auto field = [word](uint32_t shift, uint32_t width) {
        return (word >> shift & ((1u << width) - 1)) << (16 - width);
    };
    const auto float16 = [from](int i) {
        float value;
        std::memcpy(&value, from + 4 * i, sizeof(value));
        return uint32_t(std::clamp(value, 0.0f, 1.0f) * 65535.0f + 0.5f);
    };
    const auto word16 = [from](int i) { return uint32_t(from[2 * i] | from[2 * i + 1] << 8); };
    const uint32_t index = word >> (bits < 8 ? 8 - bits - at % 8 : 0) & ((1u << (bits & 31)) - 1);
    const auto gray = [](uint32_t v) { return Words{v, v, v, 65535}; };
    switch (dib.Type()) {
    case VXPIXEL_PAL1:
    case VXPIXEL_PAL4:
    case VXPIXEL_PAL8: {
        const RGBQUAD q = index < dib.Palette().size() ? dib.Palette()[index] : RGBQUAD{};
        return {q.rgbBlue * 257u, q.rgbGreen * 257u, q.rgbRed * 257u, 65535};
    }
    case VXPIXEL_GRAY16:
        return gray(word16(0));
    case VXPIXEL_GRAY32:
        return gray(float16(0));
    case VXPIXEL_RGB555:
        return {field(0, 5), field(5, 5), field(10, 5), 65535};
    case VXPIXEL_RGB565:
        return {field(0, 5), field(5, 6), field(11, 5), 65535};
    case VXPIXEL_RGB24:
        return {from[0] * 257u, from[1] * 257u, from[2] * 257u, 65535};
    case VXPIXEL_RGB32:
    case VXPIXEL_RGBA32:
        return {from[0] * 257u, from[1] * 257u, from[2] * 257u, from[3] * 257u};
    case VXPIXEL_RGB101010:
        return {field(0, 10), field(10, 10), field(20, 10), (word >> 30) * 0x5555};
    case VXPIXEL_RGBA64:
        return {word16(0), word16(1), word16(2), word16(3)};
    case VXPIXEL_RGBA128:
        return {float16(0), float16(1), float16(2), float16(3)};
    default: // gray of 1 to 8 bits
        return gray(index * 65535 / ((1u << bits) - 1));
    }
}

// Straight colours as pictures are worked on: types of at most 8 bits a channel count as bytes.
inline std::vector<vxtool::Colour> RowOf(const vxtool::Dib& dib, int32_t y)
{
    const bool bytes = vxtool::WorkingType(dib.Type()) == VXPIXEL_RGBA32;
    std::vector<vxtool::Colour> row;
    for (int32_t x = 0; x < dib.Width(); ++x) {
        const Words words = StoredWords(dib, x, y);
        const auto value = [&](size_t c) {
            return float(bytes ? (words[c] >> 8) * 257 : words[c]) / 65535.0f;
        };
        row.push_back({value(0), value(1), value(2), value(3)});
    }
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
