// The vector forms of arithmetic.h, and lanes of pixels. Included once for each target.
//
// A vector of bytes holds whole 8-bit pixels. Work that needs more bits is done in 16-bit lanes, in one
// of two ways:
// - Halves: the even bytes (blue, red) and the odd ones (green, alpha) as two vectors, and if 16 bits are
//   not enough, the even and odd lanes of these as 32-bit ones. No lane moves on the way there or back.
// - Pairs: the bytes of two vectors beside each other, for sums of two products in one operation.
#if defined(VX_PRIMITIVES_ARITHMETIC_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VX_PRIMITIVES_ARITHMETIC_INL_H
#undef VX_PRIMITIVES_ARITHMETIC_INL_H
#else
#define VX_PRIMITIVES_ARITHMETIC_INL_H
#endif

#include "kernel/pack_lanes-inl.h"
#include "primitives/row_loops-inl.h"
#include "primitives/weights.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// The even and the odd lanes of a vector, each in a lane twice as wide.
template <class V>
struct Halves
{
    V even, odd;
};

// T: the type of the wide lanes
template <class T, class V>
HWY_INLINE auto Split(V v)
{
    using Narrow = hn::DFromV<V>;
    constexpr int kBits = 8 * sizeof(hn::TFromD<Narrow>);
    static_assert(8 * sizeof(T) == 2 * kBits, "wide lanes are twice as wide");
    const hn::Repartition<T, Narrow> wide;
    const hn::RebindToUnsigned<decltype(wide)> numbers;
    const auto low = hn::Set(numbers, hn::TFromD<decltype(numbers)>((uint64_t(1) << kBits) - 1));
    const auto both = hn::BitCast(numbers, v);
    return Halves<hn::Vec<decltype(wide)>>{hn::BitCast(wide, hn::And(both, low)),
                                           hn::BitCast(wide, hn::ShiftRight<kBits>(both))};
}

// Even lanes must fit narrow ones; odd lanes lose what does not.
template <class D, class V>
HWY_INLINE hn::Vec<D> Join(D narrow, Halves<V> h)
{
    constexpr int kBits = 8 * sizeof(hn::TFromD<D>);
    const hn::RebindToUnsigned<hn::DFromV<V>> numbers;
    const auto odd = hn::ShiftLeft<kBits>(hn::BitCast(numbers, h.odd));
    return hn::BitCast(narrow, hn::Or(hn::BitCast(numbers, h.even), odd));
}

template <class D, class Op, class... H>
HWY_INLINE hn::Vec<D> OnHalves(D narrow, const Op& op, H... h)
{
    return Join(narrow, Halves<decltype(op(h.even...))>{op(h.even...), op(h.odd...)});
}

// Applies op to the bytes of v in 16-bit lanes; what it returns must fit bytes.
template <class D, class Op, class... V>
HWY_INLINE hn::Vec<D> OnWords(D bytes, const Op& op, V... v)
{
    return OnHalves(bytes, op, Split<uint16_t>(v)...);
}

// The same in lanes of 32 bits.
template <class D, class Op, class... V>
HWY_INLINE hn::Vec<D> OnLongs(D bytes, const Op& op, V... v)
{
    const auto onWords = [&op](auto... words) VX_LANES {
        return OnHalves(hn::Repartition<uint16_t, D>(), op, Split<int32_t>(words)...);
    };
    return OnWords(bytes, onWords, v...);
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

// Applies op to pairs of the bytes of low and high, as signed 16-bit lanes; it returns 0 to 255.
template <class D, class Op>
HWY_INLINE hn::Vec<D> OnPairs(D bytes, hn::Vec<D> low, hn::Vec<D> high, const Op& op)
{
    const hn::Repartition<int16_t, D> words;
    return PackPairs(bytes, op(hn::BitCast(words, hn::InterleaveLower(bytes, low, high))),
                     op(hn::BitCast(words, hn::InterleaveUpper(bytes, low, high))));
}

// (x + added) / 255 in unsigned 16-bit lanes, for sums up to 65534: with x + added = 255 q + r the product
// is 65536 q + (257 (r + 1) - q), and what stands in brackets is from 0 to 65535 as q is at most 256.
template <class V>
HWY_INLINE V DivideBy255(V x, V added)
{
    const hn::DFromV<V> words;
    return hn::MulHigh(hn::Add(x, hn::Add(added, hn::Set(words, 1))), hn::Set(words, 257));
}

template <class V>
HWY_INLINE V DivideBy255(V x, uint16_t added)
{
    return DivideBy255(x, hn::Set(hn::DFromV<V>(), added));
}

// d moved toward s by w / 255; all are bytes. The sum of products, up to 65025, fits signed lanes with
// d and s moved to -128 to 127, which takes 128 * 255 from it.
template <class D>
HWY_INLINE hn::Vec<D> MixBytesVector(D bytes, hn::Vec<D> d, hn::Vec<D> s, hn::Vec<D> w)
{
    const hn::Repartition<int16_t, D> words;
    const hn::Repartition<uint16_t, D> numbers;
    const auto rest = hn::Not(w), half = hn::Set(bytes, 0x80);
    const auto s8 = hn::Xor(s, half), d8 = hn::Xor(d, half);
    const auto mix = [=](auto weights, auto values) VX_LANES {
        const auto sum = SumOfPair(hn::BitCast(words, weights), hn::BitCast(words, values));
        return DivideBy255(hn::BitCast(numbers, sum), 128 * 255);
    };
    return PackPairs(bytes, mix(hn::InterleaveLower(bytes, w, rest), hn::InterleaveLower(bytes, s8, d8)),
                     mix(hn::InterleaveUpper(bytes, w, rest), hn::InterleaveUpper(bytes, s8, d8)));
}

// d times w / 255; all are bytes in 16-bit lanes.
template <class V>
HWY_INLINE V MultiplyBytesVector(V d, V w)
{
    return DivideBy255(hn::Mul(d, w), 127);
}

// d times the scaled weight of w; all are bytes in 32-bit lanes. What exceeds 255 * 255 would be clamped to
// 255 after the division: cutting it here makes the quotient a 16-bit one. The division finds zeros, and
// makes zeros, in the upper 16 bits.
template <class V>
HWY_INLINE V MultiplyScaledVector(V d, V w, ScaleOffset weight)
{
    const hn::DFromV<V> longs;
    const hn::Repartition<uint16_t, decltype(longs)> words;
    const auto scaled = hn::Mul(w, hn::Set(longs, int32_t(weight.scale)));
    const auto weighted = hn::Add(scaled, hn::Set(longs, int32_t(weight.offset)));
    const auto product = hn::Add(hn::Mul(weighted, d), hn::Set(longs, 130560));
    const auto times255 = hn::Clamp(hn::ShiftRight<10>(product), hn::Zero(longs), hn::Set(longs, 255 * 255));
    return hn::BitCast(longs, DivideBy255(hn::BitCast(words, times255), 0));
}

// Indexes for TableLookupBytes that spread one channel over its pixel.
template <class D>
HWY_INLINE hn::Vec<D> ChannelIndexes(D bytes, int32_t channel)
{
    const auto pixel = hn::And(hn::Iota(bytes, 0), hn::Set(bytes, 12));
    return hn::Or(pixel, hn::Set(bytes, uint8_t(channel)));
}

// Indexes for SpreadChannel: in words, whose upper bytes become 0.
template <class D>
HWY_INLINE hn::Vec<D> ChannelWordIndexes(D bytes, int32_t channel)
{
    const hn::Repartition<uint16_t, D> words;
    return hn::Or(ChannelIndexes(bytes, channel), hn::BitCast(bytes, hn::Set(words, 0x8000)));
}

// The halves of v with each channel replaced by one of its pixel: they are the same.
template <class V>
HWY_INLINE auto SpreadChannel(V v, V wordIndexes)
{
    const hn::Repartition<uint16_t, hn::DFromV<V>> words;
    const auto spread = hn::BitCast(words, hn::TableLookupBytesOr0(v, wordIndexes));
    return Halves<hn::Vec<decltype(words)>>{spread, spread};
}

// The lanes of the alpha channel, where a pixel is four lanes.
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
