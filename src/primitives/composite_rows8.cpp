// Composite on 8-bit frames: the mixing of one row.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/composite_rows8.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

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
void CompositeRow(uint8_t* dst, const uint8_t* src, int32_t width, uint32_t opacity)
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

// The vector form keeps to bytes and 16-bit lanes. The two values of 17 bits that the formulas hold
// are avoided by identities of whole numbers:
//
// Over. p = round(b ta / 255) has no ties, as 255 is odd, so ((255 - ta) b + 127) / 255 = b - p, and
// as 255 t divides evenly, Over(b, t, ta) = b + t - p. A change from p to t, therefore, put upon b.
// The other modes are changes from the base to R. So R = base + to - from, of three bytes.
//
// Partial strength. (R o + base (255 - o)) / 255 = base + floor(o (to - from) / 255). With
// m = 255 + to - from, 0 to 510, that is base - o + q, q = floor(o m / 255), and
//     q = m (257 o + 1) >> 16    for o = 0 and for 127 <= o <= 254:
// with o m = 255 q + r the product is 65536 q + (257 r + m - q), and what stands in brackets is not
// negative, as q <= m, and below 65536, as r <= 254 and m - q = (m (255 - o) + r) / 255 < 257. For
// o = 0 the product is m. Opacities 1 to 126 would break that bound: they go from R to the base
// by 255 - o, which is the same sum.
//
// Sums and results are kept to their low 8 bits; so are they in the plain form at its end.
HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;
using Bytes = hn::ScalableTag<uint8_t>;
using Words = hn::RepartitionToWide<Bytes>;
using ByteVec = hn::Vec<Bytes>;
using WordVec = hn::Vec<Words>;

// The even and the odd bytes of a vector, in lanes of 16 bits: blue and red, green and alpha.
struct Halves
{
    WordVec even, odd;
};

HWY_INLINE Halves Split(ByteVec v)
{
    const Words words;
    const auto w = hn::BitCast(words, v);
    return {hn::And(w, hn::Set(words, 0xFF)), hn::ShiftRight<8>(w)};
}

// Even lanes must not exceed 255; odd ones lose what does.
HWY_INLINE ByteVec Join(Halves h)
{
    return hn::BitCast(Bytes(), hn::Or(h.even, hn::ShiftLeft<8>(h.odd)));
}

// (x + added) / 255, where x + added is below 65535: with x + added = 255 q + r the product is
// 65536 q + (257 (r + 1) - q), and what stands in brackets is from 0 to 65535.
HWY_INLINE WordVec DividedBy255(WordVec x, uint16_t added)
{
    const Words words;
    return hn::MulHigh(hn::Add(x, hn::Set(words, uint16_t(added + 1))), hn::Set(words, 257));
}

HWY_INLINE ByteVec Product(Halves a, Halves b, uint16_t added)
{
    return Join({DividedBy255(hn::Mul(a.even, b.even), added), DividedBy255(hn::Mul(a.odd, b.odd), added)});
}

HWY_INLINE ByteVec FlooredProduct(ByteVec a, ByteVec b)
{
    return Product(Split(a), Split(b), 0);
}

// Each channel times an alpha of its pixel, rounded.
HWY_INLINE ByteVec ProductWithAlpha(ByteVec channels, ByteVec alphaOf)
{
    alignas(16) static constexpr uint8_t kAlphaOfPixel[16] = {3,  0x80, 3,  0x80, 7,  0x80, 7,  0x80,
                                                              11, 0x80, 11, 0x80, 15, 0x80, 15, 0x80};
    const auto spread = hn::TableLookupBytesOr0(alphaOf, hn::LoadDup128(Bytes(), kAlphaOfPixel));
    const auto alpha = hn::BitCast(Words(), spread);
    return Product(Split(channels), {alpha, alpha}, 127);
}

HWY_INLINE ByteVec WithAlphaOver(ByteVec colours, ByteVec d, ByteVec s)
{
    const hn::RepartitionToWide<Words> pixels;
    const auto da = hn::BitCast(Words(), hn::ShiftRight<24>(hn::BitCast(pixels, d)));
    const auto sa = hn::BitCast(Words(), hn::ShiftRight<24>(hn::BitCast(pixels, s)));
    const auto over = hn::Sub(hn::Add(da, sa), DividedBy255(hn::Mul(da, sa), 127));
    const auto placed = hn::BitCast(Bytes(), hn::ShiftLeft<24>(hn::BitCast(pixels, over)));
    return hn::IfVecThenElse(hn::BitCast(Bytes(), hn::Set(pixels, 0xFF000000u)), placed, colours);
}

// R of the colours, for the modes that look at no alpha. Screen is multiply on both complements, and
// overlay is either, of twice the value, by the side on which dst lies.
template <int32_t mode>
HWY_INLINE ByteVec MixedColours(ByteVec d, ByteVec s)
{
    const hn::RebindToSigned<Bytes> signedBytes;
    if constexpr (mode == VX_COMPOSITE_ADD) {
        return hn::SaturatedAdd(d, s);
    } else if constexpr (mode == VX_COMPOSITE_MULTIPLY) {
        return FlooredProduct(d, s);
    } else if constexpr (mode == VX_COMPOSITE_OVERLAY) {
        const auto light = hn::BitCast(Bytes(), hn::BroadcastSignBit(hn::BitCast(signedBytes, d)));
        const auto side = hn::Xor(d, light); // 127 at most
        return hn::Xor(FlooredProduct(hn::Add(side, side), hn::Xor(s, light)), light);
    } else if constexpr (mode == VX_COMPOSITE_SCREEN) {
        return hn::Not(FlooredProduct(hn::Not(s), hn::Not(d)));
    } else {
        return hn::Not(hn::AverageRound(hn::Not(d), hn::Not(s))); // rounds down
    }
}

// R is base + to - from, each of them a byte.
struct Change
{
    ByteVec base, from, to;
};

HWY_INLINE ByteVec Result(const Change& c)
{
    return hn::Add(c.base, hn::Sub(c.to, c.from));
}

template <int32_t mode>
HWY_INLINE Change ChangeOf(ByteVec d, ByteVec s)
{
    if constexpr (mode == VX_COMPOSITE_SOURCE_OVER) {
        return {d, ProductWithAlpha(d, s), s};
    } else if constexpr (mode == VX_COMPOSITE_DESTINATION_OVER) {
        return {s, ProductWithAlpha(s, d), d};
    } else {
        const auto colours = MixedColours<mode>(d, s);
        return {d, d, AlphaMode(mode) == mode ? colours : WithAlphaOver(colours, d, s)};
    }
}

// How far the change goes. `High` is opacity 0 and 127 to 254, `Low` 1 to 126.
enum class Strength
{
    Full,
    High,
    Low,
};

// The change by o / 255 of its length.
HWY_INLINE ByteVec PartOf(const Change& c, uint32_t o)
{
    const Words words;
    const auto factor = hn::Set(words, uint16_t(257 * o + 1));
    const Halves to = Split(c.to), fromBelow255 = Split(hn::Not(c.from));
    const auto even = hn::MulHigh(hn::Add(to.even, fromBelow255.even), factor);
    const auto odd = hn::MulHigh(hn::Add(to.odd, fromBelow255.odd), factor);
    const auto part = Join({hn::And(even, hn::Set(words, 0xFF)), odd});
    return hn::Add(hn::Sub(c.base, hn::Set(Bytes(), uint8_t(o))), part);
}

template <Strength strength>
HWY_INLINE ByteVec AtStrength(const Change& c, uint32_t opacity)
{
    if constexpr (strength == Strength::Full)
        return Result(c);
    else if constexpr (strength == Strength::High)
        return PartOf(c, opacity);
    else
        return PartOf({Result(c), c.to, c.from}, 255 - opacity);
}

template <int32_t mode, Strength strength>
void CompositeRowVector(uint8_t* dst, const uint8_t* src, int32_t width, uint32_t opacity)
{
    const Bytes bytes;
    const int32_t step = int32_t(hn::Lanes(bytes)) / 4;
    for (; width >= step; width -= step, dst += 4 * step, src += 4 * step) {
        const auto change = ChangeOf<mode>(hn::LoadU(bytes, dst), hn::LoadU(bytes, src));
        hn::StoreU(AtStrength<strength>(change, opacity), bytes, dst);
    }
    CompositeRow<mode, strength == Strength::Full>(dst, src, width, opacity);
}

struct VectorRows8
{
    CompositeRow8 full, high, low;
};

template <int32_t mode>
struct VectorRows
{
    static constexpr VectorRows8 kRows{CompositeRowVector<mode, Strength::Full>,
                                       CompositeRowVector<mode, Strength::High>,
                                       CompositeRowVector<mode, Strength::Low>};
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
