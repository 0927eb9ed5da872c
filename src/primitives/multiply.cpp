// Multiply: a frame scaled by one factor. MultiplyMasks: a float mask scaled by another.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/multiply.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#include "primitives/arithmetic-inl.h"

#ifndef VX_MULTIPLY_PLAIN
#define VX_MULTIPLY_PLAIN

#include "kernel/vector_targets.h"
#include "primitives/rows.h"
#include "primitives/weights.h"
#include "vx/blend.h"

#include <algorithm>

namespace vx {
namespace {

// One row worker serves each form; `premultiplied` caps colours at alpha, which then stays.
struct MultiplyWeights
{
    uint32_t fixed; // 8 fraction bits
    float real;
};

// Signed and truncated toward zero: a negative factor gives a negative number.
int32_t MultiplyByte(uint32_t c, uint32_t k)
{
    return int32_t(c * k + 127) / 256;
}

void MultiplyRow(uint8_t* row, int32_t width, MultiplyWeights w)
{
    for (int64_t i = 0; i < 4 * int64_t(width); ++i)
        row[i] = uint8_t(MultiplyByte(row[i], w.fixed));
}

void MultiplyPremultipliedRow(uint8_t* row, int32_t width, MultiplyWeights w)
{
    for (int32_t x = 0; x < width; ++x, row += 4)
        for (int c = 0; c < 3; ++c)
            row[c] = uint8_t(std::min<int32_t>(MultiplyByte(row[c], w.fixed), row[3]));
}

void MultiplyFloatRow(uint8_t* row, int32_t width, MultiplyWeights w)
{
    for (int64_t i = 0; i < 4 * int64_t(width); ++i, row += 4)
        StoreElement(row, LoadElement<float>(row) * w.real);
}

// A colour that is no number becomes the alpha.
void MultiplyPremultipliedFloatRow(uint8_t* row, int32_t width, MultiplyWeights w)
{
    for (int32_t x = 0; x < width; ++x, row += 16)
        for (int c = 0; c < 3; ++c) {
            const float v = LoadElement<float>(row + 4 * c) * w.real;
            const float alpha = LoadElement<float>(row + 12);
            StoreElement(row + 4 * c, alpha > v ? v : alpha);
        }
}

// 16-bit lanes hold what the 8-bit vector forms need of a product.
bool FitsVectorForm(MultiplyWeights w)
{
    return w.fixed <= 0xFFFF;
}

void MultiplyMasksRow(uint8_t* dst, const uint8_t* src, int32_t width)
{
    for (int32_t x = 0; x < width; ++x, dst += 4, src += 4)
        StoreElement(dst, LoadElement<float>(dst) * LoadElement<float>(src));
}

} // namespace
} // namespace vx

#endif // VX_MULTIPLY_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

// The byte that is stored is bits 8 to 15 of the sum, which 16-bit lanes keep, wrapped or not.
void MultiplyRowVector(uint8_t* row, int32_t width, MultiplyWeights w)
{
    const hn::ScalableTag<uint8_t> bytes;
    const hn::Repartition<uint16_t, decltype(bytes)> words;
    const int64_t step = int64_t(hn::Lanes(bytes)) / 4;
    const auto factor = hn::Set(words, uint16_t(w.fixed));
    const auto multiply = [=](auto c) HWY_ATTR {
        return hn::ShiftRight<8>(hn::Add(hn::Mul(c, factor), hn::Set(words, 127)));
    };
    int64_t x = 0;
    for (; x + step <= width; x += step) {
        const auto c = hn::LoadU(bytes, row + 4 * x);
        hn::StoreU(OnWideLanes<uint16_t>(bytes, multiply, c), bytes, row + 4 * x);
    }
    MultiplyRow(row + 4 * x, int32_t(width - x), w);
}

// Whole and fraction of the factor are multiplied apart, so that a lane holds the value before it is
// capped: at most 255 * 255 + 254.
void MultiplyPremultipliedRowVector(uint8_t* row, int32_t width, MultiplyWeights w)
{
    const hn::ScalableTag<uint8_t> bytes;
    const hn::Repartition<uint16_t, decltype(bytes)> words;
    const int64_t step = int64_t(hn::Lanes(bytes)) / 4;
    const auto whole = hn::Set(words, uint16_t(w.fixed >> 8));
    const auto fraction = hn::Set(words, uint16_t(w.fixed & 0xFF));
    const auto toAlpha = ChannelIndexes(bytes, 3);
    const auto isAlpha = AlphaLanes(bytes);
    const auto multiply = [=](auto c, auto alpha) HWY_ATTR {
        const auto part = hn::ShiftRight<8>(hn::Add(hn::Mul(c, fraction), hn::Set(words, 127)));
        return hn::Min(hn::Add(hn::Mul(c, whole), part), alpha);
    };
    int64_t x = 0;
    for (; x + step <= width; x += step) {
        const auto c = hn::LoadU(bytes, row + 4 * x);
        const auto product = OnWideLanes<uint16_t>(bytes, multiply, c, hn::TableLookupBytes(c, toAlpha));
        hn::StoreU(hn::IfThenElse(isAlpha, c, product), bytes, row + 4 * x);
    }
    MultiplyPremultipliedRow(row + 4 * x, int32_t(width - x), w);
}

void MultiplyFloatRowVector(uint8_t* row, int32_t width, MultiplyWeights w)
{
    const hn::ScalableTag<float> floats;
    const int64_t step = int64_t(hn::Lanes(floats)) / 4;
    const auto factor = hn::Set(floats, w.real);
    int64_t x = 0;
    for (; x + step <= width; x += step) {
        float* const at = reinterpret_cast<float*>(row + 16 * x);
        hn::StoreU(hn::Mul(hn::LoadU(floats, at), factor), floats, at);
    }
    MultiplyFloatRow(row + 16 * x, int32_t(width - x), w);
}

void MultiplyPremultipliedFloatRowVector(uint8_t* row, int32_t width, MultiplyWeights w)
{
    const hn::ScalableTag<float> floats;
    const int64_t step = int64_t(hn::Lanes(floats)) / 4;
    const auto factor = hn::Set(floats, w.real);
    const auto isAlpha = AlphaLanes(floats);
    int64_t x = 0;
    for (; x + step <= width; x += step) {
        float* const at = reinterpret_cast<float*>(row + 16 * x);
        const auto c = hn::LoadU(floats, at);
        const auto product = hn::Mul(c, factor);
        const auto alpha = hn::Broadcast<3>(c); // a pixel is four lanes
        const auto capped = hn::IfThenElse(hn::Gt(alpha, product), product, alpha);
        hn::StoreU(hn::IfThenElse(isAlpha, c, capped), floats, at);
    }
    MultiplyPremultipliedFloatRow(row + 16 * x, int32_t(width - x), w);
}

void MultiplyMasksRowVector(uint8_t* dst, const uint8_t* src, int32_t width)
{
    const hn::ScalableTag<float> floats;
    const int64_t step = int64_t(hn::Lanes(floats));
    int64_t x = 0;
    for (; x + step <= width; x += step) {
        float* const at = reinterpret_cast<float*>(dst + 4 * x);
        const auto s = hn::LoadU(floats, reinterpret_cast<const float*>(src + 4 * x));
        hn::StoreU(hn::Mul(hn::LoadU(floats, at), s), floats, at);
    }
    MultiplyMasksRow(dst + 4 * x, src + 4 * x, int32_t(width - x));
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
HWY_EXPORT(MultiplyRowVector);
HWY_EXPORT(MultiplyPremultipliedRowVector);
HWY_EXPORT(MultiplyFloatRowVector);
HWY_EXPORT(MultiplyPremultipliedFloatRowVector);
HWY_EXPORT(MultiplyMasksRowVector);

namespace {

using MultiplyRowFn = void (*)(uint8_t*, int32_t, MultiplyWeights);

MultiplyRowFn SelectMultiplyRow(bool isFloat, bool premultiplied, MultiplyWeights w)
{
    if (isFloat && premultiplied)
        return VX_VECTOR_FORM(MultiplyPremultipliedFloatRowVector, MultiplyPremultipliedFloatRow);
    if (isFloat)
        return VX_VECTOR_FORM(MultiplyFloatRowVector, MultiplyFloatRow);
    if (!FitsVectorForm(w))
        return premultiplied ? &MultiplyPremultipliedRow : &MultiplyRow;
    if (premultiplied)
        return VX_VECTOR_FORM(MultiplyPremultipliedRowVector, MultiplyPremultipliedRow);
    return VX_VECTOR_FORM(MultiplyRowVector, MultiplyRow);
}

} // namespace
} // namespace vx

bool Multiply(void* buffer, int32_t stride, int32_t bytesPerPixel, int32_t width, int32_t height,
              double factor, uint8_t premultiplied)
{
    using namespace vx;
    if (bytesPerPixel != 4 && bytesPerPixel != 16)
        return false;
    if (IsEmpty(width, height))
        return true;
    const MultiplyWeights weights{TruncatedWeight(factor * 256.0 + 0.5), float(factor)};
    const MultiplyRowFn row = SelectMultiplyRow(bytesPerPixel == 16, premultiplied != 0, weights);
    for (int32_t y = 0; y < height; ++y)
        row(RowAt(buffer, stride, y), width, weights);
    return true;
}

bool MultiplyMasks(void* dst, int32_t dstStride, const void* src, int32_t srcStride, int32_t width,
                   int32_t height)
{
    using namespace vx;
    if (IsEmpty(width, height))
        return true;
    const auto row = VX_VECTOR_FORM(MultiplyMasksRowVector, MultiplyMasksRow);
    for (int32_t y = 0; y < height; ++y)
        row(RowAt(dst, dstStride, y), RowAt(src, srcStride, y), width);
    return true;
}

#endif // HWY_ONCE
