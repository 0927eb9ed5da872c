#include "plain.h"

#include <algorithm>

namespace vxbench::plain {
namespace {

constexpr int kColours = 3;

uint32_t Over(uint32_t b, uint32_t t, uint32_t ta)
{
    return ((255 - ta) * b + t * 255 + 127) / 255;
}

float Over(float b, float t, float ta)
{
    return (1.0f - ta) * b + t;
}

uint32_t Overlay(uint32_t d, uint32_t s)
{
    return d < 128 ? 2 * d * s / 255 : 255 - 2 * (255 - d) * (255 - s) / 255;
}

float Overlay(float d, float s)
{
    return 0.5f > d ? d * s * 2.0f : 1.0f - (1.0f - d) * 2.0f * (1.0f - s);
}

template <int kMode>
uint32_t Mix(uint32_t d, uint32_t s, uint32_t da, uint32_t sa)
{
    if constexpr (kMode == 1)
        return Over(d, s, sa);
    else if constexpr (kMode == 2)
        return Over(s, d, da);
    else if constexpr (kMode == 3)
        return std::min(d + s, 255u);
    else if constexpr (kMode == 4)
        return d * s / 255;
    else if constexpr (kMode == 5)
        return Overlay(d, s);
    else if constexpr (kMode == 6)
        return 255 - (255 - s) * (255 - d) / 255;
    else
        return (d + s) >> 1;
}

template <int kMode>
float Mix(float d, float s, float da, float sa)
{
    if constexpr (kMode == 1)
        return Over(d, s, sa);
    else if constexpr (kMode == 2)
        return Over(s, d, da);
    else if constexpr (kMode == 3)
        return d + s;
    else if constexpr (kMode == 4)
        return d * s;
    else if constexpr (kMode == 5)
        return Overlay(d, s);
    else if constexpr (kMode == 6)
        return 1.0f - (1.0f - s) * (1.0f - d);
    else
        return (d + s) * 0.5f;
}

uint8_t Partial(uint32_t r, uint32_t base, uint32_t opacity)
{
    return uint8_t((r * opacity + base * (255 - opacity)) / 255);
}

float Partial(float r, float base, float opacity)
{
    return r * opacity + (1.0f - opacity) * base;
}

template <class Value>
struct WideOf
{
    using Type = uint32_t;
};
template <>
struct WideOf<float>
{
    using Type = float;
};

template <int kMode, bool kFull, class Value, class Opacity>
void Loop(Value* __restrict dst, const Value* __restrict src, size_t pixels, Opacity opacity)
{
    using Wide = typename WideOf<Value>::Type;
    constexpr bool kAlphaByMode = kMode == 1 || kMode == 2 || kMode == 4 || kMode == 7;
    for (size_t i = 0; i < pixels; ++i, dst += 4, src += 4) {
        const Wide da = dst[3], sa = src[3];
        for (int c = 0; c < 4; ++c) {
            const Wide d = dst[c], s = src[c];
            const Wide r = c < kColours || kAlphaByMode ? Mix<kMode>(d, s, da, sa) : Over(da, sa, sa);
            dst[c] = kFull ? Value(r) : Partial(r, kMode == 2 ? s : d, opacity);
        }
    }
}

template <bool kFull, class Value, class Opacity>
void LoopOfMode(int32_t mode, Value* dst, const Value* src, size_t pixels, Opacity opacity)
{
    constexpr decltype(&Loop<1, kFull, Value, Opacity>) kLoops[] = {
        Loop<1, kFull, Value, Opacity>, Loop<2, kFull, Value, Opacity>, Loop<3, kFull, Value, Opacity>,
        Loop<4, kFull, Value, Opacity>, Loop<5, kFull, Value, Opacity>, Loop<6, kFull, Value, Opacity>,
        Loop<7, kFull, Value, Opacity>};
    kLoops[mode - 1](dst, src, pixels, opacity);
}

} // namespace

void Composite(uint8_t* dst, const uint8_t* src, size_t pixels, int32_t mode, double opacity)
{
    const uint32_t byteOpacity = uint32_t(opacity * 255.0 + 0.5);
    if (byteOpacity == 255)
        LoopOfMode<true>(mode, dst, src, pixels, byteOpacity);
    else
        LoopOfMode<false>(mode, dst, src, pixels, byteOpacity);
}

void Composite(float* dst, const float* src, size_t pixels, int32_t mode, double opacity)
{
    if (opacity == 1.0)
        LoopOfMode<true>(mode, dst, src, pixels, float(opacity));
    else
        LoopOfMode<false>(mode, dst, src, pixels, float(opacity));
}

} // namespace vxbench::plain
