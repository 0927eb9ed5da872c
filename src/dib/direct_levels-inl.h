// Levels of 8 bits out of vectors of floats, through a curve or not. Included once for each target, behind the plain
// forms of direct_rows.cpp.
#if defined(VX_DIB_DIRECT_LEVELS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VX_DIB_DIRECT_LEVELS_INL_H
#undef VX_DIB_DIRECT_LEVELS_INL_H
#else
#define VX_DIB_DIRECT_LEVELS_INL_H
#endif

#include "dib/join_bytes-inl.h"
#include "exchange/pixels24-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::CappedTag<float, 16>;
using Longs = hn::RebindToSigned<Floats>;
using Bytes16 = hn::Full128<uint8_t>;
constexpr int32_t kLanes = int32_t(HWY_MIN(HWY_MAX_BYTES / sizeof(float), 16));
constexpr int32_t kParts = 16 / kLanes; // vectors of four pixels

const float* FloatPointer(const uint8_t* p)
{
    return reinterpret_cast<const float*>(p); // for loads that take any address
}

float* FloatPointer(uint8_t* p)
{
    return reinterpret_cast<float*>(p);
}

// Makes lanes of y the curve's own value where x lies outside of the table.
template <class V, class Outside>
HWY_INLINE V EvaluateOutside(V x, V y, const Outside& isOutside, const VxTransferCurve& curve)
{
    const Floats d;
    alignas(64) float xs[kLanes], ys[kLanes];
    hn::Store(x, d, xs);
    hn::Store(y, d, ys);
    for (int32_t i = 0; i < kLanes; ++i)
        if (isOutside(xs[i]))
            ys[i] = EvaluateCurve(curve, xs[i]);
    return hn::Load(d, ys);
}

// Values held to 0.0 to 1.0, a NaN as 0.0.
template <class V>
HWY_INLINE V HeldToUnit(V x)
{
    const Floats d;
    return hn::Min(hn::IfThenElseZero(hn::Gt(x, hn::Zero(d)), x), hn::Set(d, 1.0f));
}

// The table's entries at each index and behind it, side by side. Loads one by one beat the processor's own
// gathering of them: half as many do.
template <class V>
HWY_INLINE hn::Vec<Floats> EntryPairs(V indexes, const VxTransferCurve& curve)
{
    const hn::Repartition<int64_t, Floats> pairs;
    alignas(64) int32_t at[kLanes / 2];
    alignas(64) int64_t entries[kLanes / 2];
    hn::Store(indexes, hn::Half<Longs>(), at);
    for (int32_t i = 0; i < kLanes / 2; ++i)
        std::memcpy(entries + i, curve.floatTable + at[i], sizeof(entries[i]));
    return hn::BitCast(Floats(), hn::Load(pairs, entries));
}

// Between entries of the table, for values already held.
template <class V>
HWY_INLINE V Interpolate(V held, const VxTransferCurve& curve)
{
    const Floats d;
    const Longs longs;
    const auto p = hn::Mul(held, hn::Set(d, float(curve.tableLast)));
    const auto index = hn::ConvertTo(longs, p);
    const auto f = hn::Sub(p, hn::ConvertTo(d, index));
    const auto low = EntryPairs(hn::LowerHalf(index), curve);
    const auto high = EntryPairs(hn::UpperHalf(hn::Half<Longs>(), index), curve);
    const auto here = hn::ConcatEven(d, high, low), next = hn::ConcatOdd(d, high, low);
    return hn::Add(hn::Mul(here, hn::Sub(hn::Set(d, 1.0f), f)), hn::Mul(next, f));
}

template <class V>
HWY_INLINE V LookUpFloats(V x, const VxTransferCurve& curve)
{
    const Floats d;
    const auto inside = Interpolate(HeldToUnit(x), curve);
    const auto outside = hn::Or(hn::Lt(x, hn::Zero(d)), hn::Gt(x, hn::Set(d, 1.0f)));
    if (HWY_UNLIKELY(!hn::AllFalse(d, outside)))
        return EvaluateOutside(
            x, inside, [](float v) { return v < 0.0f || v > 1.0f; }, curve);
    return inside;
}

// The same for what becomes 8 bits: below 0.0 the curve is no more than 0, and from a little above 1.0
// on it is above 1. Between, rounding may bring it below 1, and to level 254.
template <class V>
HWY_INLINE V LookUpLevels(V x, const VxTransferCurve& curve)
{
    constexpr float kSurelyAbove = 1.01f;
    const Floats d;
    const auto one = hn::Set(d, 1.0f);
    const auto inside = Interpolate(HeldToUnit(x), curve);
    const auto isAbove = hn::Ge(x, hn::Set(d, kSurelyAbove));
    const auto above = hn::Gt(x, one);
    auto levels = hn::IfThenElse(isAbove, hn::Set(d, 2.0f), inside);
    levels = hn::IfThenElse(hn::Lt(x, hn::Zero(d)), hn::Set(d, -1.0f), levels);
    if (HWY_UNLIKELY(!hn::AllTrue(d, hn::Or(isAbove, hn::Not(above)))))
        return EvaluateOutside(
            x, levels, [](float v) { return v > 1.0f && v < kSurelyAbove; }, curve);
    return levels;
}

// Numbers of the nearest entries of a byte table, halves upwards. What lies outside of the table has the
// level of its first entry or of its last: 0 and 255.
template <class V>
HWY_INLINE hn::Vec<Longs> PickedEntries(V x, const VxTransferCurve& curve)
{
    const Floats d;
    const Longs longs;
    const auto p = hn::Mul(HeldToUnit(x), hn::Set(d, float(curve.tableLast)));
    const auto below = hn::ConvertTo(longs, p);
    const auto f = hn::Sub(p, hn::ConvertTo(d, below));
    const auto goesUp = hn::RebindMask(longs, hn::Ge(f, hn::Set(d, 0.5f)));
    return hn::Add(below, hn::IfThenElseZero(goesUp, hn::Set(longs, 1)));
}

HWY_INLINE hn::Vec<Bytes16> PickedBytes(const float* from, const VxTransferCurve& curve)
{
    const Floats d;
    alignas(64) int32_t entries[16];
    alignas(16) uint8_t levels[16];
    for (int32_t k = 0; k < 16; k += kLanes)
        hn::Store(PickedEntries(hn::LoadU(d, from + k), curve), Longs(), entries + k);
    for (int32_t i = 0; i < 16; ++i)
        levels[i] = curve.byteTable[entries[i]];
    return hn::Load(Bytes16(), levels);
}

// Units times 255 as integers, which packing holds to bytes: on x86 a minimum keeps a NaN as its second operand, and
// converting takes it, as all that is far below 0, to the least integer.
HWY_INLINE hn::Vec<Longs> TruncatedLevels(hn::Vec<Floats> x)
{
    const Floats d;
    const auto scale = hn::Set(d, 255.0f);
#if HWY_ARCH_X86
    const auto levels = hn::Mul(hn::Min(hn::Set(d, 1.0f), x), scale);
#if HWY_TARGET <= HWY_AVX3
    return hn::Vec<Longs>{_mm512_cvttps_epi32(levels.raw)};
#elif HWY_TARGET == HWY_AVX2
    return hn::Vec<Longs>{_mm256_cvttps_epi32(levels.raw)};
#else
    return hn::Vec<Longs>{_mm_cvttps_epi32(levels.raw)};
#endif
#else
    return hn::ConvertTo(Longs(), hn::Mul(HeldToUnit(x), scale));
#endif
}

// The product of Levels::Truncated is one of floats: rounded, it reaches the next integer for no float from
// 0.0 to 1.0.
template <Levels levels, CurveUse use, class V>
HWY_INLINE auto LevelsOf(V x, const float* dither, const VxTransferCurve& curve)
{
    const Floats d;
    if constexpr (use == CurveUse::Table)
        x = LookUpLevels(x, curve);
    if constexpr (levels == Levels::Dithered)
        x = hn::Add(x, hn::Load(d, dither));
    else if constexpr (levels == Levels::Rounded)
        x = hn::Add(x, hn::Set(d, kHalfStep));
    return TruncatedLevels(x);
}

// 16 levels as bytes; level(k) gives those of vector k.
template <class Level>
HWY_INLINE hn::Vec<Bytes16> JoinLevels(const Level& level)
{
    const Bytes16 bytes;
    const hn::Half<Bytes16> half;
    if constexpr (kParts == 1) {
        return hn::DemoteTo(bytes, level(0));
    } else if constexpr (kParts == 2) {
        const auto low = hn::DemoteTo(half, level(0));
        return hn::Combine(bytes, hn::DemoteTo(half, level(1)), low);
    } else {
        const hn::Full64<int16_t> words;
        const hn::Full128<int16_t> pairs;
        const auto low0 = hn::DemoteTo(words, level(0));
        const auto low = hn::Combine(pairs, hn::DemoteTo(words, level(1)), low0);
        const auto high0 = hn::DemoteTo(words, level(2));
        const auto high = hn::Combine(pairs, hn::DemoteTo(words, level(3)), high0);
        return hn::Combine(bytes, hn::DemoteTo(half, high), hn::DemoteTo(half, low));
    }
}

template <Levels levels, CurveUse use>
HWY_INLINE hn::Vec<Bytes16> BytesOf(const float* from, const float* dither, const VxTransferCurve& curve)
{
    if constexpr (levels == Levels::Picked)
        return PickedBytes(from, curve);
    else
        return JoinLevels([&](int32_t k) HWY_ATTR {
            return LevelsOf<levels, use>(hn::LoadU(Floats(), from + k * kLanes), dither + k * kLanes, curve);
        });
}

// Four vectors of levels as bytes: of kLanes pixels. level(k) gives vector k.
template <class Level>
HWY_INLINE Vector8 JoinFourLevels(const Level& level)
{
    return BlocksInOrder(PackLongs(Lanes8(), level(0), level(1), level(2), level(3)));
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#endif
