// The vector forms of arithmetic.h, and lanes of pixels. Included once for each target.
//
// A vector of bytes holds whole 8-bit pixels. Work that needs more than 8 bits is done on its even
// bytes (blue, red) and its odd ones (green, alpha) as two vectors of 16-bit lanes, so that no lane
// moves on the way there or back.
#if defined(VX_PRIMITIVES_ARITHMETIC_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VX_PRIMITIVES_ARITHMETIC_INL_H
#undef VX_PRIMITIVES_ARITHMETIC_INL_H
#else
#define VX_PRIMITIVES_ARITHMETIC_INL_H
#endif

#include "primitives/weights.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Applies op to the bytes of each vector widened to lanes of type T (16 bits), even bytes and then odd
// ones, and joins what it returns, which must lie in 0 to 255.
template <class T, class D, class Op, class... V>
HWY_INLINE hn::Vec<D> OnWideLanes(D bytes, const Op& op, V... v)
{
    const hn::Repartition<T, D> wide;
    const hn::Repartition<uint16_t, D> words;
    const auto low = hn::Set(words, 0xFF);
    const auto even = op(hn::BitCast(wide, hn::And(hn::BitCast(words, v), low))...);
    const auto odd = op(hn::BitCast(wide, hn::ShiftRight<8>(hn::BitCast(words, v)))...);
    return hn::BitCast(bytes, hn::Or(hn::BitCast(words, even), hn::ShiftLeft<8>(hn::BitCast(words, odd))));
}

// Quotients by 255 of 16-bit lanes, for every value: 0x8081 is 2^23 / 255 rounded up, and its error
// stays below 1 / 255 up to 65535.
template <class V>
HWY_INLINE V DivideBy255(V v)
{
    const hn::DFromV<V> words;
    return hn::ShiftRight<7>(hn::MulHigh(v, hn::Set(words, 0x8081)));
}

template <class D>
HWY_INLINE hn::Vec<D> MixBytesVector(D bytes, hn::Vec<D> d, hn::Vec<D> s, hn::Vec<D> w)
{
    const auto mix = [](auto d16, auto s16, auto w16, auto rest16)
                         HWY_ATTR { return DivideBy255(hn::Add(hn::Mul(s16, w16), hn::Mul(d16, rest16))); };
    return OnWideLanes<uint16_t>(bytes, mix, d, s, w, hn::Not(w));
}

// Here a lane is a whole number 0 to 65535 of 16 or 32 bits, the product of two bytes.
template <class V>
HWY_INLINE V RoundBy255(V product)
{
    const hn::DFromV<V> lanes;
    const hn::Repartition<uint16_t, decltype(lanes)> words;
    const auto biased = hn::Add(product, hn::Set(lanes, 127));
    return hn::BitCast(lanes, DivideBy255(hn::BitCast(words, biased)));
}

// d and w are bytes in 32-bit lanes, and so is the result. What exceeds 255 * 255 * 1024 would be
// clamped to 255: cutting it there makes the quotient a 16-bit one.
template <class V>
HWY_INLINE V MultiplyScaledVector(V d, V w, ScaleOffset weight)
{
    const hn::DFromV<V> lanes;
    const hn::Repartition<uint16_t, decltype(lanes)> words;
    const auto weighted =
        hn::Add(hn::Mul(w, hn::Set(lanes, int32_t(weight.scale))), hn::Set(lanes, int32_t(weight.offset)));
    const auto product = hn::Add(hn::Mul(weighted, d), hn::Set(lanes, 130560));
    const auto cut = hn::Clamp(hn::ShiftRight<10>(product), hn::Zero(lanes), hn::Set(lanes, 255 * 255));
    return hn::BitCast(lanes, DivideBy255(hn::BitCast(words, cut)));
}

// Indexes for TableLookupBytes that spread one channel over its pixel; below 0 each byte stays.
template <class D>
HWY_INLINE hn::Vec<D> ChannelIndexes(D bytes, int32_t channel)
{
    const auto own = hn::And(hn::Iota(bytes, 0), hn::Set(bytes, 15));
    if (channel < 0)
        return own;
    return hn::Or(hn::And(own, hn::Set(bytes, 12)), hn::Set(bytes, uint8_t(channel)));
}

// The lanes of the alpha channel, in bytes or in floats.
template <class D>
HWY_INLINE auto AlphaLanes(D lanes)
{
    const hn::RebindToUnsigned<D> numbers;
    const auto three = hn::Set(numbers, 3);
    return hn::RebindMask(lanes, hn::Eq(hn::And(hn::Iota(numbers, 0), three), three));
}

} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#endif
