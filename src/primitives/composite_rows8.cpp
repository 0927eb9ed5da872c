// Composite on 8-bit frames: the mixing of one row.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/composite_rows8.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#include "primitives/arithmetic-inl.h"
#include "primitives/row_loops-inl.h"

#ifndef VX_COMPOSITE8_PLAIN
#define VX_COMPOSITE8_PLAIN

#include "kernel/vector_targets.h"
#include "primitives/composite_rows.h"

#include <algorithm>

namespace vx {
namespace {

constexpr uint32_t kFullOpacity = 255;
constexpr uint32_t kDarkBelow = 128; // overlay darkens where dst is below, else it lightens

// One channel of the two frames.
struct Pair
{
    uint32_t dst, src;
};

// `top`, of alpha `topAlpha`, laid over `below`. Up to 510 where top exceeds its alpha.
uint32_t Over(uint32_t below, uint32_t top, uint32_t topAlpha)
{
    return ((255 - topAlpha) * below + top * 255 + 127) / 255;
}

template <int32_t mode>
uint32_t Mixed(Pair c, Pair alpha)
{
    if constexpr (mode == VX_COMPOSITE_SOURCE_OVER)
        return Over(c.dst, c.src, alpha.src);
    else if constexpr (mode == VX_COMPOSITE_DESTINATION_OVER)
        return Over(c.src, c.dst, alpha.dst);
    else if constexpr (mode == VX_COMPOSITE_ADD)
        return std::min(c.dst + c.src, 255u);
    else if constexpr (mode == VX_COMPOSITE_MULTIPLY)
        return c.dst * c.src / 255;
    else if constexpr (mode == VX_COMPOSITE_OVERLAY)
        return c.dst < kDarkBelow ? 2 * c.dst * c.src / 255 : 255 - 2 * (255 - c.dst) * (255 - c.src) / 255;
    else if constexpr (mode == VX_COMPOSITE_SCREEN)
        return 255 - (255 - c.src) * (255 - c.dst) / 255;
    else
        return (c.dst + c.src) >> 1;
}

template <int32_t mode, bool full>
uint8_t AtStrength(uint32_t mixed, Pair c, uint32_t opacity)
{
    const uint32_t base = BaseIsSource(mode) ? c.src : c.dst;
    return uint8_t(full ? mixed : (mixed * opacity + base * (255 - opacity)) / 255);
}

template <int32_t mode, bool full>
HWY_NOINLINE void CompositeRow(uint8_t* dst, const uint8_t* src, int32_t width, uint32_t opacity)
{
    for (int32_t x = 0; x < width; ++x, dst += 4, src += 4) {
        const Pair alpha{dst[3], src[3]};
        for (int i = 0; i < 3; ++i) {
            const Pair c{dst[i], src[i]};
            dst[i] = AtStrength<mode, full>(Mixed<mode>(c, alpha), c, opacity);
        }
        dst[3] = AtStrength<mode, full>(Mixed<AlphaMode(mode)>(alpha, alpha), alpha, opacity);
    }
}

struct Rows8
{
    CompositeRow8 full, partial;
};

template <int32_t mode>
struct PlainRows
{
    static constexpr Rows8 kRows{CompositeRow<mode, true>, CompositeRow<mode, false>};
};

CompositeRow8 PlainRow(int32_t mode, uint32_t opacity)
{
    static constexpr auto kTable = TableByMode<PlainRows>();
    const Rows8& rows = kTable[size_t(mode - VX_COMPOSITE_SOURCE_OVER)];
    return opacity == kFullOpacity ? rows.full : rows.partial;
}

} // namespace
} // namespace vx

#endif // VX_COMPOSITE8_PLAIN

// The vector form keeps to bytes and 16-bit lanes. The modes whose R is a byte mix it with the base as
// bytes are mixed. Over, of which R may exceed a byte, gets by with identities of whole numbers:
//
// p = round(b ta / 255) has no ties, as 255 is odd, so ((255 - ta) b + 127) / 255 = b - p, and as 255 t
// divides evenly, Over(b, t, ta) = b + t - p. A change from p to t, therefore, put upon b.
//
// Partial strength. (R o + b (255 - o)) / 255 = b + floor(o (t - p) / 255). With m = 255 + t - p, 0 to
// 510, that is b - o + q, q = floor(o m / 255), and
//     q = m (257 o + 1) >> 16    for o = 0 and for 127 <= o <= 254:
// with o m = 255 q + r the product is 65536 q + (257 r + m - q), and what stands in brackets is not
// negative, as q <= m, and below 65536, as r <= 254 and m - q = (m (255 - o) + r) / 255 < 257. For
// o = 0 the product is m. Opacities 1 to 126 would break that bound: they go from R to b by 255 - o,
// which is the same sum.
//
// Sums and results are kept to their low 8 bits; so are they in the plain form at its end.
HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

using Bytes = hn::ScalableTag<uint8_t>;
using Words = hn::RepartitionToWide<Bytes>;
using Pixels = hn::RepartitionToWide<Words>;
using ByteVec = hn::Vec<Bytes>;
using WordVec = hn::Vec<Words>;

// Each channel times an alpha of its pixel, rounded.
HWY_INLINE ByteVec ProductWithAlpha(ByteVec channels, ByteVec alphaOf)
{
    const auto alpha = SpreadChannel(alphaOf, ChannelWordIndexes(Bytes(), 3));
    const auto multiply = [](auto c, auto a) VX_LANES { return MultiplyBytesVector(c, a); };
    return OnHalves(Bytes(), multiply, Split<uint16_t>(channels), alpha);
}

HWY_INLINE ByteVec FlooredProduct(ByteVec a, ByteVec b)
{
    const auto multiply = [](auto x, auto y) VX_LANES { return DivideBy255(hn::Mul(x, y), 0); };
    return OnWords(Bytes(), multiply, a, b);
}

// The same, but the products of alphas are rounded.
HWY_INLINE ByteVec ProductRoundedInAlpha(ByteVec a, ByteVec b)
{
    const auto a16 = Split<uint16_t>(a), b16 = Split<uint16_t>(b);
    const auto added = hn::BitCast(Words(), hn::Set(Pixels(), 127u << 16)); // of green and alpha
    return Join(Bytes(), Halves<WordVec>{DivideBy255(hn::Mul(a16.even, b16.even), 0),
                                         DivideBy255(hn::Mul(a16.odd, b16.odd), added)});
}

HWY_INLINE ByteVec AlphaBytes()
{
    return hn::BitCast(Bytes(), hn::Set(Pixels(), 0xFF000000u));
}

// The rounded products of the alphas in their place, and 0 in the others. The upper 16 bits of the
// product of two numbers 256 times too large are that of the numbers.
HWY_INLINE ByteVec ProductOfAlphas(ByteVec d, ByteVec s)
{
    const Words words;
    const auto da = hn::BitCast(words, hn::And(d, AlphaBytes()));
    const auto sa = hn::BitCast(words, hn::And(s, AlphaBytes()));
    return hn::BitCast(Bytes(), hn::ShiftLeft<8>(DivideBy255(hn::MulHigh(da, sa), 127)));
}

// R of the modes that look at no alpha for their colours. Where alpha covers as that of source over
// does, Over(b, t, ta) = 255 - round((255 - b) (255 - ta) / 255) with b and t = ta both alphas, which
// is screen, but rounded. Overlay is multiply or screen, of twice the value, by the side on which dst
// lies.
template <int32_t mode>
HWY_INLINE ByteVec MixedOf(ByteVec d, ByteVec s)
{
    const hn::RebindToSigned<Bytes> signedBytes;
    if constexpr (mode == VX_COMPOSITE_ADD) {
        return hn::SaturatedAdd(hn::Sub(d, ProductOfAlphas(d, s)), s);
    } else if constexpr (mode == VX_COMPOSITE_MULTIPLY) {
        return FlooredProduct(d, s);
    } else if constexpr (mode == VX_COMPOSITE_OVERLAY) {
        const auto light = hn::BitCast(Bytes(), hn::BroadcastSignBit(hn::BitCast(signedBytes, d)));
        const auto upside = hn::Or(light, AlphaBytes());
        const auto side = hn::Xor(d, upside); // 127 at most in colours
        const auto twice = hn::Add(side, hn::AndNot(AlphaBytes(), side));
        return hn::Xor(ProductRoundedInAlpha(twice, hn::Xor(s, upside)), upside);
    } else if constexpr (mode == VX_COMPOSITE_SCREEN) {
        return hn::Not(ProductRoundedInAlpha(hn::Not(s), hn::Not(d)));
    } else {
        return hn::Not(hn::AverageRound(hn::Not(d), hn::Not(s))); // rounds down
    }
}

// How far a mode goes. `High` is opacity 0 and 127 to 254, `Low` 1 to 126.
enum class Strength
{
    Full,
    High,
    Low,
};

// b moved by o / 255 of the way from p to t; o is high.
HWY_INLINE ByteVec MovedBy(ByteVec b, ByteVec p, ByteVec t, uint32_t o)
{
    const Words words;
    const auto factor = hn::Set(words, uint16_t(257 * o + 1)), lowByte = hn::Set(words, 0xFF);
    const auto part = [=](auto to, auto fromBelow255) VX_LANES {
        return hn::And(hn::MulHigh(hn::Add(to, fromBelow255), factor), lowByte);
    };
    return hn::Add(hn::Sub(b, hn::Set(Bytes(), uint8_t(o))), OnWords(Bytes(), part, t, hn::Not(p)));
}

// t, whose alphas are its own, over b.
template <Strength strength>
HWY_INLINE ByteVec OverAtStrength(ByteVec b, ByteVec t, uint32_t opacity)
{
    const auto p = ProductWithAlpha(b, t);
    if constexpr (strength == Strength::High)
        return MovedBy(b, p, t, opacity);
    const auto result = hn::Add(b, hn::Sub(t, p));
    return strength == Strength::Full ? result : MovedBy(result, t, p, 255 - opacity);
}

constexpr bool IsOver(int32_t mode)
{
    return mode == VX_COMPOSITE_SOURCE_OVER || mode == VX_COMPOSITE_DESTINATION_OVER;
}

template <int32_t mode, Strength strength>
HWY_INLINE ByteVec AtStrength(ByteVec d, ByteVec s, uint32_t opacity)
{
    if constexpr (mode == VX_COMPOSITE_SOURCE_OVER)
        return OverAtStrength<strength>(d, s, opacity);
    else if constexpr (mode == VX_COMPOSITE_DESTINATION_OVER)
        return OverAtStrength<strength>(s, d, opacity);
    else if constexpr (strength == Strength::Full)
        return MixedOf<mode>(d, s);
    else
        return MixBytesVector(Bytes(), d, MixedOf<mode>(d, s), hn::Set(Bytes(), uint8_t(opacity)));
}

template <int32_t mode, Strength strength>
void CompositeRowVector(uint8_t* dst, const uint8_t* src, int32_t width, uint32_t opacity)
{
    const auto composite = [=](auto d, auto s) VX_LANES { return AtStrength<mode, strength>(d, s, opacity); };
    const int64_t done = ReplaceVectors(Bytes(), dst, 4 * int64_t(width), composite, src);
    CompositeRow<mode, strength == Strength::Full>(dst + done, src + done, width - int32_t(done / 4),
                                                   opacity);
}

struct VectorRows8
{
    CompositeRow8 full, high, low;
};

template <int32_t mode>
struct VectorRows
{
    static constexpr VectorRows8 kRows{
        CompositeRowVector<mode, Strength::Full>, CompositeRowVector<mode, Strength::High>,
        CompositeRowVector<mode, IsOver(mode) ? Strength::Low : Strength::High>};
};

CompositeRow8 VectorRow(int32_t mode, uint32_t opacity)
{
    static constexpr auto kTable = TableByMode<VectorRows>();
    const VectorRows8& rows = kTable[size_t(mode - VX_COMPOSITE_SOURCE_OVER)];
    if (opacity == kFullOpacity)
        return rows.full;
    return opacity == 0 || opacity >= 127 ? rows.high : rows.low;
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
HWY_EXPORT(VectorRow);

CompositeRow8 ChooseCompositeRow8(int32_t mode, uint32_t opacity)
{
    return VX_VECTOR_FORM(VectorRow, PlainRow)(mode, opacity);
}

} // namespace vx

#endif // HWY_ONCE
