#include "vxtool/patterns.h"

#include "vx/channels.h"
#include "vx/composite.h"

#include <cmath>
#include <numbers>

namespace vxtool {
namespace {

constexpr float kBlack = 0.075f, kBar = 0.75f;

constexpr Colour Rgb(float red, float green, float blue)
{
    return {blue, green, red, 1.0f};
}

constexpr Colour kBars75[] = {
    Rgb(kBar, kBar, kBar), Rgb(kBar, kBar, 0.0f), Rgb(0.0f, kBar, kBar), Rgb(0.0f, kBar, 0.0f),
    Rgb(kBar, 0.0f, kBar), Rgb(kBar, 0.0f, 0.0f), Rgb(0.0f, 0.0f, kBar),
};
constexpr Colour kCastellations[] = {
    kBars75[6], Gray(kBlack), kBars75[4], Gray(kBlack), kBars75[2], Gray(kBlack), kBars75[0],
};

// In twelfths of a bar: four fields of 5/4 bars, the pluge in thirds of a bar, and black again.
struct Field
{
    int32_t twelfths;
    Colour colour;
};
constexpr Field kLowest[] = {
    {15, Rgb(0.0f, 0.129f, 0.298f)}, // -I
    {15, Gray(1.0f)},
    {15, Rgb(0.196f, 0.0f, 0.416f)}, // +Q
    {15, Gray(kBlack)},
    {4, Gray(kBlack - 0.04f)},
    {4, Gray(kBlack)},
    {4, Gray(kBlack + 0.04f)},
    {12, Gray(kBlack)},
};

int32_t Part(int32_t whole, int32_t index, int32_t parts)
{
    return int32_t(int64_t(whole) * index / parts);
}

void FillFields(Frame& frame, int32_t top, int32_t bottom, std::span<const Field> fields)
{
    int32_t at = 0;
    for (const Field& field : fields) {
        const int32_t left = Part(frame.Width(), at, 84),
                      right = Part(frame.Width(), at + field.twelfths, 84);
        FillArea(frame, left, top, right - left, bottom - top, field.colour);
        at += field.twelfths;
    }
}

void FillBars(Frame& frame, int32_t top, int32_t bottom, std::span<const Colour> colours)
{
    Field fields[7];
    for (size_t i = 0; i < 7; ++i)
        fields[i] = {12, colours[i]};
    FillFields(frame, top, bottom, fields);
}

// Every pixel from its place; x and y of the pixel's middle, from -1 to 1 along the shorter side.
template <class Paint>
Frame Painted(int32_t width, int32_t height, Form form, Paint paint)
{
    Frame frame(width, height, form);
    const float unit = 2.0f / float(std::min(width, height));
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
            frame.Set(x, y,
                      paint((float(x) + 0.5f - float(width) / 2) * unit,
                            (float(y) + 0.5f - float(height) / 2) * unit));
    return frame;
}

Colour Between(const Colour& a, const Colour& b, float t)
{
    t = std::clamp(t, 0.0f, 1.0f);
    const auto mix = [t](float from, float to) { return from + (to - from) * t; };
    return {mix(a.blue, b.blue), mix(a.green, b.green), mix(a.red, b.red), mix(a.alpha, b.alpha)};
}

// How far a place is inside an edge, softened over some distance: 0 outside, 1 inside.
float Inside(float distance, float softness)
{
    return std::clamp(distance / softness + 0.5f, 0.0f, 1.0f);
}

// y grows downwards.
Colour Sky(float x, float y)
{
    const Colour zenith = Rgb(0.10f, 0.13f, 0.38f), middle = Rgb(0.86f, 0.36f, 0.32f),
                 low = Rgb(1.0f, 0.78f, 0.36f);
    const Colour air =
        y < -0.1f ? Between(zenith, middle, (y + 1.0f) / 0.9f) : Between(middle, low, (y + 0.1f) / 0.5f);
    const float toSun = std::hypot(x - 0.55f, y - 0.05f);
    const Colour glowing = Between(air, Rgb(1.0f, 0.93f, 0.66f), 0.9f * std::exp(-toSun * toSun * 9.0f));
    return Between(glowing, Rgb(1.0f, 0.99f, 0.9f), Inside(0.17f - toSun, 0.012f));
}

struct Hill
{
    float height, waves, phase;
    Colour near, far; // at its foot and at its ridge
};
constexpr Hill kHills[] = {
    {0.16f, 1.9f, 0.4f, Rgb(0.50f, 0.27f, 0.36f), Rgb(0.62f, 0.34f, 0.38f)},
    {0.34f, 2.7f, 2.1f, Rgb(0.22f, 0.15f, 0.27f), Rgb(0.36f, 0.21f, 0.31f)},
    {0.62f, 1.6f, 4.4f, Rgb(0.03f, 0.10f, 0.08f), Rgb(0.13f, 0.25f, 0.16f)},
};

Colour Landscape(float x, float y)
{
    Colour colour = Sky(x, y);
    for (const Hill& hill : kHills) {
        const float ridge = hill.height - 0.10f * std::sin(x * hill.waves + hill.phase) -
                            0.035f * std::sin(x * hill.waves * 2.7f + hill.phase * 3.0f);
        colour = Between(colour, Between(hill.far, hill.near, (y - ridge) * 3.0f), Inside(y - ridge, 0.012f));
    }
    return colour;
}

} // namespace

void FillArea(Frame& frame, int32_t x, int32_t y, int32_t width, int32_t height, const Colour& c)
{
    Fill(frame.At(x, y), frame.Stride(), frame.BytesPerPixel(), width, height, c.alpha, c.red, c.green,
         c.blue);
}

Frame Bars(int32_t width, int32_t height, Form form)
{
    Frame frame(width, height, form);
    const int32_t castellations = Part(height, 2, 3), lowest = Part(height, 3, 4);
    FillBars(frame, 0, castellations, kBars75);
    FillBars(frame, castellations, lowest, kCastellations);
    FillFields(frame, lowest, height, kLowest);
    return frame;
}

Frame Ramp(int32_t width, int32_t height, Form form, const Colour& from, const Colour& to, bool vertical)
{
    Frame frame(width, height, form);
    const float last = float(std::max((vertical ? height : width) - 1, 1));
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
            frame.Set(x, y, Premultiplied(Between(from, to, float(vertical ? y : x) / last)));
    return frame;
}

Frame ZonePlate(int32_t width, int32_t height, Form form)
{
    Frame frame(width, height, form);
    const double radius = std::hypot(width, height) / 2.0;
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x) {
            const double dx = x + 0.5 - width / 2.0, dy = y + 0.5 - height / 2.0;
            // The phase grows by pi a pixel at the radius.
            const double phase = std::numbers::pi * (dx * dx + dy * dy) / (2.0 * radius);
            frame.Set(x, y, Gray(float(0.5 + 0.5 * std::cos(phase))));
        }
    return frame;
}

Frame Checker(int32_t width, int32_t height, Form form, int32_t cell, const Colour& first,
              const Colour& second)
{
    Frame frame(width, height, form);
    for (int32_t y = 0; y < height; y += cell)
        for (int32_t x = 0; x < width; x += cell)
            FillArea(frame, x, y, std::min(cell, width - x), std::min(cell, height - y),
                     Premultiplied((x / cell + y / cell) % 2 == 0 ? first : second));
    return frame;
}

Frame Scene(int32_t width, int32_t height, Form form)
{
    return Painted(width, height, form, Landscape);
}

Frame Discs(int32_t width, int32_t height, Form form)
{
    Frame frame(width, height, form);
    for (int i = 0; i < 3; ++i) {
        const float angle = float(i) * 2.0943951f - 1.5707963f;
        const float middleX = 0.36f * std::cos(angle), middleY = 0.36f * std::sin(angle);
        const Colour light = Rgb(i == 0 ? 1.0f : 0.0f, i == 1 ? 1.0f : 0.0f, i == 2 ? 1.0f : 0.0f);
        const Frame disc = Painted(width, height, form, [=](float x, float y) {
            const float in = 0.85f * Inside(0.5f - std::hypot(x - middleX, y - middleY), 0.015f);
            return Colour{light.blue * in, light.green * in, light.red * in, in};
        });
        Composite(frame.Data(), frame.Stride(), disc.Data(), disc.Stride(), frame.BytesPerPixel(), width,
                  height, VX_COMPOSITE_ADD, 1.0);
    }
    return frame;
}

Frame Vignette(int32_t width, int32_t height, Form form)
{
    return Painted(width, height, form, [](float x, float y) {
        const float r = std::hypot(x * 0.75f, y);
        return Gray(0.5f + 0.5f * std::cos(std::min(r, 1.0f) * std::numbers::pi_v<float>));
    });
}

} // namespace vxtool
