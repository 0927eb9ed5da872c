// The vector forms of arithmetic.h, and lanes of pixels. Included once for each target.
//
// A vector of bytes holds whole 8-bit pixels. Work that needs more bits is done on its even bytes (blue,
// red) and its odd ones (green, alpha) as two vectors of 16-bit lanes, and if that is not enough, on the
// even and odd lanes of these as 32-bit ones: no lane moves on the way there or back.
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

// Applies op to vectors of narrow lanes widened to type T, twice as wide, even lanes and then odd ones,
// and joins what it returns, which must fit narrow lanes.
template <class T, class D, class Op, class... V>
HWY_INLINE hn::Vec<D> OnWideLanes(D narrow, const Op& op, V... v)
{
    constexpr int kBits = 8 * sizeof(hn::TFromD<D>);
    static_assert(8 * sizeof(T) == 2 * kBits, "wide lanes are twice as wide");
    const hn::Repartition<T, D> wide;
    const hn::RebindToUnsigned<decltype(wide)> numbers;
    const auto low = hn::Set(numbers, hn::TFromD<decltype(numbers)>((uint64_t(1) << kBits) - 1));
    const auto even = op(hn::BitCast(wide, hn::And(hn::BitCast(numbers, v), low))...);
    const auto odd = op(hn::BitCast(wide, hn::ShiftRight<kBits>(hn::BitCast(numbers, v)))...);
    return hn::BitCast(narrow,
                       hn::Or(hn::BitCast(numbers, even), hn::ShiftLeft<kBits>(hn::BitCast(numbers, odd))));
}

// The same from bytes to 32-bit lanes.
template <class D, class Op, class... V>
HWY_INLINE hn::Vec<D> OnLongLanes(D bytes, const Op& op, V... v)
{
    const auto onWords = [&op](auto... words) HWY_ATTR {
        return OnWideLanes<int32_t>(hn::Repartition<uint16_t, D>(), op, words...);
    };
    return OnWideLanes<uint16_t>(bytes, onWords, v...);
}

// In each lane, the unsigned low and high bytes of v times the signed ones of w, added up. The sum must fit
// the lane: the processor's own operation saturates.
template <class V>
HWY_INLINE V SumOfPair(V v, V w)
{
#if HWY_TARGET <= HWY_SSSE3 && HWY_ARCH_X86
    if constexpr (sizeof(V) == 16)
        return V{_mm_maddubs_epi16(v.raw, w.raw)};
#if HWY_TARGET <= HWY_AVX2
    else if constexpr (sizeof(V) == 32)
        return V{_mm256_maddubs_epi16(v.raw, w.raw)};
#endif
#if HWY_TARGET <= HWY_AVX3
    else
        return V{_mm512_maddubs_epi16(v.raw, w.raw)};
#endif
#else
    const auto low = hn::Set(hn::DFromV<V>(), 0xFF);
    const auto lowProduct = hn::Mul(hn::And(v, low), hn::ShiftRight<8>(hn::ShiftLeft<8>(w)));
    const auto highProduct = hn::Mul(hn::And(hn::ShiftRight<8>(v), low), hn::ShiftRight<8>(w));
    return hn::Add(lowProduct, highProduct);
#endif
}

// Quotients by 255 of 16-bit lanes, for every value: 0x8081 is 2^23 / 255 rounded up, and its error
// stays below 1 / 255 up to 65535.
template <class V>
HWY_INLINE V DivideBy255(V words)
{
    return hn::ShiftRight<7>(hn::MulHigh(words, hn::Set(hn::DFromV<V>(), 0x8081)));
}

// d moved toward s by w / 255; all are bytes.
template <class D>
HWY_INLINE hn::Vec<D> MixBytesVector(D bytes, hn::Vec<D> d, hn::Vec<D> s, hn::Vec<D> w)
{
    const auto mix = [](auto d16, auto s16, auto w16, auto rest16)
                         HWY_ATTR { return DivideBy255(hn::Add(hn::Mul(s16, w16), hn::Mul(d16, rest16))); };
    return OnWideLanes<uint16_t>(bytes, mix, d, s, w, hn::Not(w));
}

// d times w / 255, times 255; all are bytes in 16-bit or 32-bit lanes. The term rounds the division.
template <class V>
HWY_INLINE V MultiplyBytesTimes255(V d, V w)
{
    return hn::Add(hn::Mul(d, w), hn::Set(hn::DFromV<V>(), 127));
}

// d times the scaled weight of w, times 255; all are bytes in 32-bit lanes. What exceeds 255 * 255 would
// be clamped to 255 after the division: cutting it here makes the quotient a 16-bit one.
template <class V>
HWY_INLINE V MultiplyScaledTimes255(V d, V w, ScaleOffset weight)
{
    const hn::DFromV<V> longs;
    const auto scaled = hn::Mul(w, hn::Set(longs, int32_t(weight.scale)));
    const auto weighted = hn::Add(scaled, hn::Set(longs, int32_t(weight.offset)));
    const auto product = hn::Add(hn::Mul(weighted, d), hn::Set(longs, 130560));
    return hn::Clamp(hn::ShiftRight<10>(product), hn::Zero(longs), hn::Set(longs, 255 * 255));
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
