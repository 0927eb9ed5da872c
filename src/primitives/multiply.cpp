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

HWY_NOINLINE void MultiplyRow(uint8_t* row, int32_t width, MultiplyWeights w)
{
    for (int64_t i = 0; i < 4 * int64_t(width); ++i)
        row[i] = uint8_t(MultiplyByte(row[i], w.fixed));
}

HWY_NOINLINE void MultiplyPremultipliedRow(uint8_t* row, int32_t width, MultiplyWeights w)
{
    for (int32_t x = 0; x < width; ++x, row += 4)
        for (int c = 0; c < 3; ++c)
            row[c] = uint8_t(std::min<int32_t>(MultiplyByte(row[c], w.fixed), row[3]));
}

HWY_NOINLINE void MultiplyFloatRow(uint8_t* row, int32_t width, MultiplyWeights w)
{
    for (int64_t i = 0; i < 4 * int64_t(width); ++i, row += 4)
        StoreElement(row, LoadElement<float>(row) * w.real);
}

// A colour that is no number becomes the alpha.
HWY_NOINLINE void MultiplyPremultipliedFloatRow(uint8_t* row, int32_t width, MultiplyWeights w)
{
    for (int32_t x = 0; x < width; ++x, row += 16)
        for (int c = 0; c < 3; ++c) {
            const float v = LoadElement<float>(row + 4 * c) * w.real;
            const float alpha = LoadElement<float>(row + 12);
            StoreElement(row + 4 * c, alpha > v ? v : alpha);
        }
}

HWY_NOINLINE void MultiplyMasksRow(uint8_t* dst, const uint8_t* src, int32_t width)
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

// Factors up to 1.0: the product fits a 16-bit lane, and its quotient a byte.
constexpr uint32_t kOne = 256;

template <class D>
HWY_INLINE hn::Vec<D> MultiplyUpToOne(D bytes, hn::Vec<D> c, uint32_t k)
{
    const hn::Repartition<uint16_t, D> words;
    const auto multiply = [=](auto c16) HWY_ATTR {
        return hn::ShiftRight<8>(hn::Add(hn::Mul(c16, hn::Set(words, uint16_t(k))), hn::Set(words, 127)));
    };
    return OnWideLanes<uint16_t>(bytes, multiply, c);
}

// Any other factor: op makes of a quotient the number whose low 8 bits are the result. The division
// truncates toward zero, where a shift would round down.
template <class D, class Op>
HWY_INLINE hn::Vec<D> MultiplyAny(D bytes, hn::Vec<D> c, hn::Vec<D> limit, uint32_t k, const Op& op)
{
    const hn::Repartition<int32_t, D> longs;
    const auto multiply = [=](auto c32, auto limit32) HWY_ATTR {
        const auto product = hn::Add(hn::Mul(c32, hn::Set(longs, int32_t(k))), hn::Set(longs, 127));
        const auto upward = hn::And(hn::BroadcastSignBit(product), hn::Set(longs, 255));
        const auto quotient = hn::ShiftRight<8>(hn::Add(product, upward));
        return hn::And(op(quotient, limit32), hn::Set(longs, 0xFF));
    };
    return OnLongLanes(bytes, multiply, c, limit);
}

// Replaces each vector of a row's pixels by op of it. Returns how many pixels were done.
template <class D, class Op>
HWY_INLINE int64_t ReplacePixels(D bytes, uint8_t* row, int32_t width, const Op& op)
{
    const int64_t step = int64_t(hn::Lanes(bytes)) / 4;
    int64_t x = 0;
    for (; x + step <= width; x += step)
        hn::StoreU(op(hn::LoadU(bytes, row + 4 * x)), bytes, row + 4 * x);
    return x;
}

void MultiplyRowVector(uint8_t* row, int32_t width, MultiplyWeights w)
{
    const hn::ScalableTag<uint8_t> bytes;
    const auto uncapped = [](auto quotient, auto) HWY_ATTR { return quotient; };
    const auto multiply = [=](auto c) HWY_ATTR { return MultiplyUpToOne(bytes, c, w.fixed); };
    const auto multiplyAny = [=](auto c) HWY_ATTR { return MultiplyAny(bytes, c, c, w.fixed, uncapped); };
    const int64_t done = w.fixed <= kOne ? ReplacePixels(bytes, row, width, multiply)
                                         : ReplacePixels(bytes, row, width, multiplyAny);
    MultiplyRow(row + 4 * done, int32_t(width - done), w);
}

void MultiplyPremultipliedRowVector(uint8_t* row, int32_t width, MultiplyWeights w)
{
    const hn::ScalableTag<uint8_t> bytes;
    const auto toAlpha = ChannelIndexes(bytes, 3);
    const auto isAlpha = AlphaLanes(bytes);
    const auto capped = [](auto quotient, auto alpha) HWY_ATTR { return hn::Min(quotient, alpha); };
    const auto multiply = [=](auto c) HWY_ATTR {
        const auto product = MultiplyUpToOne(bytes, c, w.fixed);
        return hn::IfThenElse(isAlpha, c, hn::Min(product, hn::TableLookupBytes(c, toAlpha)));
    };
    const auto multiplyAny = [=](auto c) HWY_ATTR {
        const auto product = MultiplyAny(bytes, c, hn::TableLookupBytes(c, toAlpha), w.fixed, capped);
        return hn::IfThenElse(isAlpha, c, product);
    };
    const int64_t done = w.fixed <= kOne ? ReplacePixels(bytes, row, width, multiply)
                                         : ReplacePixels(bytes, row, width, multiplyAny);
    MultiplyPremultipliedRow(row + 4 * done, int32_t(width - done), w);
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

MultiplyRowFn SelectMultiplyRow(bool isFloat, bool premultiplied)
{
    if (isFloat && premultiplied)
        return VX_VECTOR_FORM(MultiplyPremultipliedFloatRowVector, MultiplyPremultipliedFloatRow);
    if (isFloat)
        return VX_VECTOR_FORM(MultiplyFloatRowVector, MultiplyFloatRow);
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
    const MultiplyRowFn row = SelectMultiplyRow(bytesPerPixel == 16, premultiplied != 0);
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
