// The primitives as plain loops over pixels without gaps, built for the machine that they run on: what
// the compiler makes of the formulas alone. They stand in for a peer library where none has the job,
// and leave the library's bytes.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vxbench::plain {

// Reads `read` bytes a pixel from src and, in place, `written` bytes a pixel from dst; writes these.
// Pixels are a multiple of 128.
void Copy(uint8_t* dst, size_t written, bool inPlace, const uint8_t* src, size_t read, size_t pixels);

// Mixing and multiplying
void Blend(uint8_t* dst, const uint8_t* src, size_t pixels, double factor);
void MaskedBlend(uint8_t* dst, const uint8_t* mask, const uint8_t* src, size_t pixels);
void MaskedBlendWithTable(uint8_t* dst, const uint8_t* mask, const uint8_t* src, size_t pixels,
                          const uint8_t* table);
void MaskedFade(uint8_t* dst, const uint8_t* src, const uint8_t* mask, size_t pixels);
void MaskedFade(float* dst, const float* src, const uint8_t* mask, size_t pixels);
void Multiply(uint8_t* frame, size_t pixels, double factor, bool premultiplied);
void Multiply(float* frame, size_t pixels, double factor, bool premultiplied);
void MultiplyChannel(uint8_t* dst, int dstChannel, const uint8_t* src, int srcChannel, size_t pixels);
void MultiplyChannelScaled(uint8_t* dst, int dstChannel, const uint8_t* src, int srcChannel, size_t pixels,
                           double scale, double offset);
void MultiplyChannel(float* dst, int dstChannel, const uint8_t* src, int srcChannel, size_t pixels,
                     double scale, double offset);
void MaskMultiply(uint8_t* dst, const uint8_t* mask, size_t pixels);
void MaskMultiplyBy(int channel, uint8_t* dst, const uint8_t* mask, size_t pixels);
void MaskMultiplyScaled(uint8_t* dst, const uint8_t* mask, size_t pixels, double scale, double offset);
void MaskMultiply(float* dst, const uint8_t* mask, size_t pixels, double scale, double offset);
void MaskMultiplyBy(int channel, float* dst, const uint8_t* mask, size_t pixels, double scale, double offset);
void MultiplyMasks(float* dst, const float* src, size_t count);

// Channels, tables and thresholds
void ChannelCopy(uint8_t* dst, size_t dstStep, const uint8_t* src, size_t srcStep, size_t count);
void Fill(uint32_t* frame, size_t pixels, uint32_t colour);
void Fill(float* frame, size_t pixels, const float* colour);
void ChannelMap(uint8_t* frame, int channel, size_t pixels, const uint32_t* table);
void ChannelMapEx(uint8_t* dst, const uint8_t* src, int channel, size_t pixels, const uint32_t* table);
void ChannelMapExFloat(float* dst, const float* src, int channel, size_t pixels, const float* table,
                       int32_t entries);
void ChannelMergeLut(uint8_t* frame, int channels, size_t pixels, const uint32_t* table);
void Lut(uint8_t* frame, size_t pixels, const uint8_t* table);
void LutWithAlphaClamp(uint8_t* frame, size_t pixels, const uint8_t* table);
void ClipRestore(float* frame, size_t pixels, double limit, double floor);
void ThresholdFloat(float* frame, size_t pixels, double low, double high);
void ThresholdClear(uint8_t* frame, size_t pixels, float threshold);
void ThresholdClear(float* frame, size_t pixels, float threshold);

// Mode as the library's: 1 source over, 2 destination over, 3 add, 4 multiply, 5 overlay, 6 screen,
// 7 average. An opacity of 1.0 or of a half.
void Composite(uint8_t* dst, const uint8_t* src, size_t pixels, int32_t mode, double opacity);
void Composite(float* dst, const float* src, size_t pixels, int32_t mode, double opacity);

} // namespace vxbench::plain
