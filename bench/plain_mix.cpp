#include "plain.h"

#include <algorithm>

namespace vxbench::plain {
namespace {

uint8_t Mixed(uint32_t s, uint32_t d, uint32_t w)
{
    return uint8_t((s * w + d * (255 - w)) / 255);
}

uint8_t Scaled(int32_t value, int32_t d, int32_t scale, int32_t offset)
{
    return uint8_t(std::clamp(((value * scale + offset) * d + 130560) / 261120, 0, 255));
}

int32_t Fixed1024(double value)
{
    return int32_t(value * 1024.0);
}

// Premultiplied frames: colours stay within their alpha, which stays.
void MultiplyColours(uint8_t* frame, size_t pixels, int32_t k)
{
    for (size_t i = 0; i < pixels; ++i, frame += 4)
        for (int c = 0; c < 3; ++c)
            frame[c] = uint8_t(std::min((frame[c] * k + 127) / 256, int(frame[3])));
}

void MultiplyColours(float* frame, size_t pixels, float f)
{
    for (size_t i = 0; i < pixels; ++i, frame += 4)
        for (int c = 0; c < 3; ++c) {
            const float v = frame[c] * f;
            frame[c] = frame[3] > v ? v : frame[3];
        }
}

} // namespace

void Blend(uint8_t* __restrict dst, const uint8_t* __restrict src, size_t pixels, double factor)
{
    const int32_t dstWeight = int32_t(factor * 4096.0);
    const int32_t srcWeight = int32_t((1.0 - factor) * 4096.0);
    for (size_t i = 0; i < pixels; ++i, dst += 4, src += 4)
        for (int c = 0; c < 3; ++c)
            dst[c] =
                uint8_t(std::clamp((dst[c] * dstWeight + src[c] * srcWeight + 2048) >> 12, 0, int(dst[3])));
}

void MaskedBlend(uint8_t* __restrict dst, const uint8_t* __restrict mask, const uint8_t* __restrict src,
                 size_t pixels)
{
    for (size_t i = 0; i < pixels; ++i, dst += 4, src += 4, mask += 4)
        for (int c = 0; c < 3; ++c)
            dst[c] = std::min(Mixed(src[c], dst[c], mask[c]), dst[3]);
}

void MaskedBlendWithTable(uint8_t* __restrict dst, const uint8_t* __restrict mask,
                          const uint8_t* __restrict src, size_t pixels, const uint8_t* __restrict table)
{
    for (size_t i = 0; i < pixels; ++i, dst += 4, src += 4, mask += 4)
        for (int c = 0; c < 3; ++c)
            dst[c] = std::min(Mixed(src[c], dst[c], table[4 * mask[c] + c]), dst[3]);
}

void MaskedFade(uint8_t* __restrict dst, const uint8_t* __restrict src, const uint8_t* __restrict mask,
                size_t pixels)
{
    for (size_t i = 0; i < pixels; ++i, dst += 4, src += 4, mask += 4) {
        const uint8_t alpha = Mixed(src[3], dst[3], mask[3]);
        for (int c = 0; c < 3; ++c)
            dst[c] = std::min(Mixed(src[c], dst[c], mask[c]), alpha);
        dst[3] = alpha;
    }
}

void MaskedFade(float* __restrict dst, const float* __restrict src, const uint8_t* __restrict mask,
                size_t pixels)
{
    const auto mixed = [](float s, float d, uint8_t m) {
        const float w = float(m) * 0.003921569f;
        return w * s + (1.0f - w) * d;
    };
    for (size_t i = 0; i < pixels; ++i, dst += 4, src += 4, mask += 4) {
        const float alpha = mixed(src[3], dst[3], mask[3]);
        for (int c = 0; c < 3; ++c) {
            const float v = mixed(src[c], dst[c], mask[c]);
            dst[c] = alpha > v ? v : alpha;
        }
        dst[3] = alpha;
    }
}

void Multiply(uint8_t* frame, size_t pixels, double factor, bool premultiplied)
{
    const int32_t k = int32_t(factor * 256.0 + 0.5);
    if (premultiplied)
        MultiplyColours(frame, pixels, k);
    else
        for (size_t i = 0; i < 4 * pixels; ++i)
            frame[i] = uint8_t((frame[i] * k + 127) / 256);
}

void Multiply(float* frame, size_t pixels, double factor, bool premultiplied)
{
    const float f = float(factor);
    if (premultiplied)
        MultiplyColours(frame, pixels, f);
    else
        for (size_t i = 0; i < 4 * pixels; ++i)
            frame[i] *= f;
}

void MultiplyChannel(uint8_t* __restrict dst, int dstChannel, const uint8_t* __restrict src, int srcChannel,
                     size_t pixels)
{
    for (size_t i = 0; i < pixels; ++i)
        dst[4 * i + dstChannel] = uint8_t((src[4 * i + srcChannel] * dst[4 * i + dstChannel] + 127) / 255);
}

void MultiplyChannelScaled(uint8_t* __restrict dst, int dstChannel, const uint8_t* __restrict src,
                           int srcChannel, size_t pixels, double scale, double offset)
{
    const int32_t k = Fixed1024(scale);
    const int32_t o = Fixed1024(offset);
    for (size_t i = 0; i < pixels; ++i)
        dst[4 * i + dstChannel] = Scaled(src[4 * i + srcChannel], dst[4 * i + dstChannel], k, o);
}

void MultiplyChannel(float* __restrict dst, int dstChannel, const uint8_t* __restrict src, int srcChannel,
                     size_t pixels, double scale, double offset)
{
    const float k = float(scale / 255.0);
    const float o = float(offset);
    for (size_t i = 0; i < pixels; ++i)
        dst[4 * i + dstChannel] = float(src[4 * i + srcChannel]) * k + o;
}

void MaskMultiply(uint8_t* __restrict dst, const uint8_t* __restrict mask, size_t pixels)
{
    for (size_t i = 0; i < 4 * pixels; ++i)
        dst[i] = uint8_t((mask[i] * dst[i] + 127u) / 255u);
}

void MaskMultiplyBy(int channel, uint8_t* __restrict dst, const uint8_t* __restrict mask, size_t pixels)
{
    for (size_t i = 0; i < pixels; ++i, dst += 4, mask += 4)
        for (int c = 0; c < 4; ++c)
            dst[c] = uint8_t((mask[channel] * dst[c] + 127u) / 255u);
}

void MaskMultiplyScaled(uint8_t* __restrict dst, const uint8_t* __restrict mask, size_t pixels, double scale,
                        double offset)
{
    const int32_t k = Fixed1024(scale);
    const int32_t o = Fixed1024(offset);
    for (size_t i = 0; i < 4 * pixels; ++i)
        dst[i] = Scaled(mask[i], dst[i], k, o);
}

void MaskMultiply(float* __restrict dst, const uint8_t* __restrict mask, size_t pixels, double scale,
                  double offset)
{
    const float k = float(scale / 255.0);
    const float o = float(offset);
    for (size_t i = 0; i < 4 * pixels; ++i)
        dst[i] = float(mask[i]) * dst[i] * k + o;
}

void MaskMultiplyBy(int channel, float* __restrict dst, const uint8_t* __restrict mask, size_t pixels,
                    double scale, double offset)
{
    const float k = float(scale / 255.0);
    const float o = float(offset);
    for (size_t i = 0; i < pixels; ++i, dst += 4, mask += 4)
        for (int c = 0; c < 4; ++c)
            dst[c] = (float(mask[channel]) * k) * dst[c] + o;
}

void MultiplyMasks(float* __restrict dst, const float* __restrict src, size_t count)
{
    for (size_t i = 0; i < count; ++i)
        dst[i] *= src[i];
}

} // namespace vxbench::plain
