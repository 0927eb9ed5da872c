// Multiply: a frame scaled by one factor. MultiplyMasks: a float mask scaled by another.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/multiply.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#include "primitives/arithmetic-inl.h"
#include "primitives/row_loops-inl.h"

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
            StoreElement(row + 4 * c, EitherFloat(alpha > v, v, alpha));
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

constexpr uint32_t kOne = 256;
// Factors from 0 up to which 255 k + 127 is no negative number in 32 bits.
constexpr uint32_t kLargest = (0x7FFFFFFF - 127) / 255;

// Of a product that is not negative only bits 8 to 15 are stored: 16-bit lanes may wrap. The factors are
// those of the even and the odd bytes.
template <class D, class V>
HWY_INLINE hn::Vec<D> MultiplyLow(D bytes, hn::Vec<D> c, Halves<V> factor)
{
    const auto half = hn::Set(hn::DFromV<V>(), 127);
    const auto c16 = Split<uint16_t>(c);
    const auto even = hn::Add(hn::Mul(c16.even, factor.even), half);
    const auto odd = hn::Add(hn::Mul(c16.odd, factor.odd), half);
    return hn::OddEven(hn::BitCast(bytes, odd), hn::BitCast(bytes, hn::ShiftRight<8>(even)));
}

// Any other factor: op makes of a quotient the number whose low 8 bits are the result. The division
// truncates toward zero, where a shift would round down.
template <class D, class Op>
HWY_INLINE hn::Vec<D> MultiplyAny(D bytes, hn::Vec<D> c, hn::Vec<D> limit, uint32_t k, const Op& op)
{
    const hn::Repartition<int32_t, D> longs;
    const auto multiply = [=](auto c32, auto limit32) VX_LANES {
        const auto product = hn::Add(hn::Mul(c32, hn::Set(longs, int32_t(k))), hn::Set(longs, 127));
        const auto upward = hn::And(hn::BroadcastSignBit(product), hn::Set(longs, 255));
        const auto quotient = hn::ShiftRight<8>(hn::Add(product, upward));
        return hn::And(op(quotient, limit32), hn::Set(longs, 0xFF));
    };
    return OnLongs(bytes, multiply, c, limit);
}

void MultiplyRowVector(uint8_t* row, int32_t width, MultiplyWeights w)
{
    const hn::ScalableTag<uint8_t> bytes;
    const auto uncapped = [](auto quotient, auto) VX_LANES { return quotient; };
    const auto factor = hn::Set(hn::Repartition<uint16_t, decltype(bytes)>(), uint16_t(w.fixed));
    const auto multiply = [=](auto c) VX_LANES {
        return MultiplyLow(bytes, c, Halves<decltype(factor)>{factor, factor});
    };
    const auto multiplyAny = [=](auto c) VX_LANES { return MultiplyAny(bytes, c, c, w.fixed, uncapped); };
    const int64_t count = 4 * int64_t(width);
    const int64_t done = w.fixed <= kLargest ? ReplaceVectors(bytes, row, count, multiply)
                                             : ReplaceVectors(bytes, row, count, multiplyAny);
    MultiplyRow(row + done, width - int32_t(done / 4), w);
}

// A byte whose product does not fit 16 bits gives no less than any alpha. Alphas are multiplied by
// 256, which leaves them as they are.
void MultiplyPremultipliedRowVector(uint8_t* row, int32_t width, MultiplyWeights w)
{
    const hn::ScalableTag<uint8_t> bytes;
    const hn::Repartition<uint16_t, decltype(bytes)> words;
    const hn::Repartition<uint32_t, decltype(bytes)> pixels;
    const auto toAlpha = ChannelIndexes(bytes, 3);
    const auto isAlpha = AlphaLanes(bytes);
    const auto even = hn::Set(words, uint16_t(w.fixed));
    const auto odd = hn::BitCast(words, hn::Set(pixels, (w.fixed & 0xFFFF) | kOne << 16));
    const Halves<decltype(even)> factor{even, odd};
    const auto largest = hn::Set(bytes, uint8_t(std::min(255u, (65535u - 127u) / std::max(w.fixed, 1u))));
    const auto capped = [](auto quotient, auto alpha) VX_LANES { return hn::Min(quotient, alpha); };
    const auto multiply = [=](auto c) VX_LANES {
        return hn::Min(MultiplyLow(bytes, c, factor), hn::TableLookupBytes(c, toAlpha));
    };
    const auto multiplyLarge = [=](auto c) VX_LANES {
        const auto alpha = hn::TableLookupBytes(c, toAlpha);
        return hn::IfThenElse(hn::Gt(c, largest), alpha, hn::Min(MultiplyLow(bytes, c, factor), alpha));
    };
    const auto multiplyAny = [=](auto c) VX_LANES {
        const auto product = MultiplyAny(bytes, c, hn::TableLookupBytes(c, toAlpha), w.fixed, capped);
        return hn::IfThenElse(isAlpha, c, product);
    };
    const int64_t count = 4 * int64_t(width);
    const int64_t done = w.fixed <= kOne       ? ReplaceVectors(bytes, row, count, multiply)
                         : w.fixed <= kLargest ? ReplaceVectors(bytes, row, count, multiplyLarge)
                                               : ReplaceVectors(bytes, row, count, multiplyAny);
    MultiplyPremultipliedRow(row + done, width - int32_t(done / 4), w);
}

void MultiplyFloatRowVector(uint8_t* row, int32_t width, MultiplyWeights w)
{
    const hn::ScalableTag<float> floats;
    const auto factor = hn::Set(floats, w.real);
    const auto multiply = [=](auto c) VX_LANES { return hn::Mul(c, factor); };
    const int64_t done = ReplaceVectors(floats, row, 16 * int64_t(width), multiply);
    MultiplyFloatRow(row + done, width - int32_t(done / 16), w);
}

// A pixel is four lanes. Alpha, multiplied by 1, is not above itself: the last step gives it back.
void MultiplyPremultipliedFloatRowVector(uint8_t* row, int32_t width, MultiplyWeights w)
{
    const hn::ScalableTag<float> floats;
    const auto factor = hn::IfThenElse(AlphaLanes(floats), hn::Set(floats, 1.0f), hn::Set(floats, w.real));
    const auto multiply = [=](auto c) VX_LANES {
        const auto product = hn::Mul(c, factor), alpha = hn::Broadcast<3>(c);
        return EitherFloats(hn::Gt(alpha, product), product, alpha);
    };
    const int64_t done = ReplaceVectors(floats, row, 16 * int64_t(width), multiply);
    MultiplyPremultipliedFloatRow(row + done, width - int32_t(done / 16), w);
}

void MultiplyMasksRowVector(uint8_t* dst, const uint8_t* src, int32_t width)
{
    const hn::ScalableTag<float> floats;
    const auto multiply = [](auto d, auto s) VX_LANES { return hn::Mul(d, s); };
    const int64_t done = ReplaceVectors(floats, dst, 4 * int64_t(width), multiply, src);
    MultiplyMasksRow(dst + done, src + done, width - int32_t(done / 4));
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
    const MultiplyWeights weights{Truncated32(factor * 256.0 + 0.5), float(factor)};
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
