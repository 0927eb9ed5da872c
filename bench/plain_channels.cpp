#include "plain.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace vxbench::plain {

void ChannelCopy(uint8_t* __restrict dst, size_t dstStep, const uint8_t* __restrict src, size_t srcStep,
                 size_t count)
{
    for (size_t i = 0; i < count; ++i)
        dst[i * dstStep] = src[i * srcStep];
}

void Fill(uint32_t* frame, size_t pixels, uint32_t colour)
{
    std::fill_n(frame, pixels, colour);
}

void Fill(float* __restrict frame, size_t pixels, const float* __restrict colour)
{
    for (size_t i = 0; i < pixels; ++i)
        std::memcpy(frame + 4 * i, colour, 16);
}

void ChannelMap(uint8_t* frame, int channel, size_t pixels, const uint32_t* table)
{
    for (size_t i = 0; i < pixels; ++i)
        std::memcpy(frame + 4 * i, &table[frame[4 * i + channel]], 4);
}

void ChannelMapEx(uint8_t* __restrict dst, const uint8_t* __restrict src, int channel, size_t pixels,
                  const uint32_t* __restrict table)
{
    for (size_t i = 0; i < pixels; ++i)
        std::memcpy(dst + 4 * i, &table[src[4 * i + channel]], 4);
}

void ChannelMapExFloat(float* __restrict dst, const float* __restrict src, int channel, size_t pixels,
                       const float* __restrict table, int32_t entries)
{
    const float f = float(entries);
    for (size_t i = 0; i < pixels; ++i) {
        const double biased = double(f * src[4 * i + channel]) + 1.5e-8;
        const int32_t index = std::clamp(int32_t(std::lrint(biased)), 0, entries - 1);
        std::memcpy(dst + 4 * i, table + 4 * index, 16);
    }
}

void ChannelMergeLut(uint8_t* frame, int channels, size_t pixels, const uint32_t* table)
{
    for (size_t i = 0; i < pixels; ++i, frame += 4) {
        int sum = 0;
        for (int c = 0; c < channels; ++c)
            sum += frame[c];
        std::memcpy(frame, &table[std::min(sum, 255)], 4);
    }
}

void Lut(uint8_t* __restrict frame, size_t pixels, const uint8_t* __restrict table)
{
    for (size_t i = 0; i < pixels; ++i, frame += 4)
        for (int c = 0; c < 4; ++c)
            frame[c] = table[4 * frame[c] + c];
}

void LutWithAlphaClamp(uint8_t* __restrict frame, size_t pixels, const uint8_t* __restrict table)
{
    for (size_t i = 0; i < pixels; ++i, frame += 4) {
        const uint8_t alpha = table[4 * frame[3] + 3];
        for (int c = 0; c < 3; ++c)
            frame[c] = std::min(table[4 * frame[c] + c], alpha);
        frame[3] = alpha;
    }
}

void ClipRestore(float* frame, size_t pixels, double limit, double floor)
{
    const float l = float(limit * 255.0);
    const float f = float(floor * 255.0);
    for (size_t i = 0; i < pixels; ++i, frame += 4) {
        const float restored = f > frame[3] ? f : frame[3];
        for (int c = 0; c < 3; ++c)
            frame[c] = frame[c] > l ? restored : frame[c];
    }
}

void ThresholdFloat(float* frame, size_t pixels, double low, double high)
{
    const float gain = float(1.0 / std::max(high - low, 0.0001));
    const float lo = float(low);
    const float hi = float(high) - 0.00001f;
    for (size_t i = 0; i < 4 * pixels; ++i) {
        const float x = frame[i];
        const float top = x > 1.0f ? x : 1.0f;
        const float ramp = x < hi ? (x - lo) * gain : top;
        frame[i] = lo > x ? 0.0f : ramp;
    }
}

void ThresholdClear(uint8_t* frame, size_t pixels, float threshold)
{
    const uint8_t t = uint8_t(int32_t(threshold * 255.0f + 0.5f));
    for (size_t i = 0; i < 4 * pixels; ++i)
        frame[i] = frame[i] < t ? 0 : frame[i];
}

void ThresholdClear(float* frame, size_t pixels, float threshold)
{
    for (size_t i = 0; i < 4 * pixels; ++i)
        frame[i] = frame[i] < threshold ? 0.0f : frame[i];
}

} // namespace vxbench::plain
