// One pixel value. Components are floats on a scale of 0.0 to 1.0 in the order of a float frame. Whether
// the colours are multiplied by alpha follows from where the value comes from: never in a Dib (files
// hold straight alpha), always in a Frame (the library's pixel operations want it so).
#pragma once

#include <algorithm>
#include <cstdint>

namespace vxtool {

struct Colour
{
    float blue = 0.0f, green = 0.0f, red = 0.0f, alpha = 0.0f;

    friend bool operator==(const Colour&, const Colour&) = default;
};

constexpr Colour Gray(float value)
{
    return {value, value, value, 1.0f};
}

// These two are the only place where straight and premultiplied pixels meet. Opaque pixels pass
// unchanged both ways; a colour under alpha 0 is lost, as premultiplied frames cannot hold it.
constexpr Colour Premultiplied(const Colour& c)
{
    return {c.blue * c.alpha, c.green * c.alpha, c.red * c.alpha, c.alpha};
}

constexpr Colour Straight(const Colour& c)
{
    if (c.alpha == 1.0f || c.alpha == 0.0f)
        return c;
    // Multiplying and dividing may end an ulp or two below a byte's level, and the library cuts what is
    // below to the next byte down.
    const float scale = (1.0f + 0x1p-21f) / c.alpha;
    return {c.blue * scale, c.green * scale, c.red * scale, c.alpha};
}

// The nearest integer of 0 to top; a NaN gives 0.
inline uint32_t Quantized(float value, uint32_t top)
{
    return uint32_t(double(value > 0.0f ? std::min(value, 1.0f) : 0.0f) * top + 0.5);
}

} // namespace vxtool
