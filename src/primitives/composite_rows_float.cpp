// Composite on float frames: the mixing of one row.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/composite_rows_float.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#include "primitives/arithmetic-inl.h"
#include "primitives/row_loops-inl.h"

#ifndef VX_COMPOSITE_FLOAT_PLAIN
#define VX_COMPOSITE_FLOAT_PLAIN

#include "kernel/vector_targets.h"
#include "primitives/composite_rows.h"

#include <cstring>

namespace vx {
namespace {

constexpr int32_t kPixelBytes = 16;

// Above it the opacity counts as full.
constexpr float FullAbove(int32_t mode)
{
    return mode == VX_COMPOSITE_ADD || mode == VX_COMPOSITE_OVERLAY ? 0.9999f : 0.999f;
}

// One channel of the two frames.
struct Pair
{
    float dst, src;
};

template <int32_t mode>
float Mixed(Pair c, Pair alpha)
{
    if constexpr (mode == VX_COMPOSITE_SOURCE_OVER)
        return (1.0f - alpha.src) * c.dst + c.src;
    else if constexpr (mode == VX_COMPOSITE_DESTINATION_OVER)
        return (1.0f - alpha.dst) * c.src + c.dst;
    else if constexpr (mode == VX_COMPOSITE_ADD)
        return c.dst + c.src;
    else if constexpr (mode == VX_COMPOSITE_MULTIPLY)
        return c.dst * c.src;
    else if constexpr (mode == VX_COMPOSITE_OVERLAY)
        return 0.5f > c.dst ? c.dst * c.src * 2.0f : 1.0f - (1.0f - c.dst) * 2.0f * (1.0f - c.src);
    else if constexpr (mode == VX_COMPOSITE_SCREEN)
        return 1.0f - (1.0f - c.src) * (1.0f - c.dst);
    else
        return (c.dst + c.src) * 0.5f;
}

template <int32_t mode, bool full>
float AtStrength(float mixed, Pair c, float opacity)
{
    const float base = BaseIsSource(mode) ? c.src : c.dst;
    return full ? mixed : mixed * opacity + (1.0f - opacity) * base;
}

// Floats are read and written by copy, as rows may be misaligned.
template <int32_t mode, bool full>
HWY_NOINLINE void CompositeRow(uint8_t* dst, const uint8_t* src, int32_t width, float opacity)
{
    for (int32_t x = 0; x < width; ++x, dst += kPixelBytes, src += kPixelBytes) {
        float d[4], s[4];
        std::memcpy(d, dst, sizeof(d));
        std::memcpy(s, src, sizeof(s));
        const Pair alpha{d[3], s[3]};
        for (int i = 0; i < 3; ++i)
            d[i] = AtStrength<mode, full>(Mixed<mode>({d[i], s[i]}, alpha), {d[i], s[i]}, opacity);
        d[3] = AtStrength<mode, full>(Mixed<AlphaMode(mode)>(alpha, alpha), alpha, opacity);
        std::memcpy(dst, d, sizeof(d));
    }
}

struct RowsFloat
{
    CompositeRowFloat full, partial;
};

template <int32_t mode>
struct PlainRows
{
    static constexpr RowsFloat kRows{CompositeRow<mode, true>, CompositeRow<mode, false>};
};

// A NaN is not above the limit.
template <size_t modes>
CompositeRowFloat RowOf(const std::array<RowsFloat, modes>& table, int32_t mode, float opacity)
{
    const RowsFloat& rows = table[size_t(mode - VX_COMPOSITE_SOURCE_OVER)];
    return opacity > FullAbove(mode) ? rows.full : rows.partial;
}

CompositeRowFloat PlainRow(int32_t mode, float opacity)
{
    static constexpr auto kTable = TableByMode<PlainRows>();
    return RowOf(kTable, mode, opacity);
}

} // namespace
} // namespace vx

#endif // VX_COMPOSITE_FLOAT_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

using Floats = hn::ScalableTag<float>;
using FloatVec = hn::Vec<Floats>;

// Whole pixels, four lanes each: lane 3 of a pixel gets the R of alpha where that goes by the mode's
// own rule, which holds of source over too. Broadcast<3> spreads a pixel's alpha.
template <int32_t mode>
HWY_INLINE FloatVec MixedLanes(FloatVec d, FloatVec s)
{
    const auto one = hn::Set(Floats(), 1.0f), two = hn::Set(Floats(), 2.0f), half = hn::Set(Floats(), 0.5f);
    if constexpr (mode == VX_COMPOSITE_SOURCE_OVER) {
        return hn::Add(hn::Mul(hn::Sub(one, hn::Broadcast<3>(s)), d), s);
    } else if constexpr (mode == VX_COMPOSITE_DESTINATION_OVER) {
        return hn::Add(hn::Mul(hn::Sub(one, hn::Broadcast<3>(d)), s), d);
    } else if constexpr (mode == VX_COMPOSITE_ADD) {
        return hn::Add(d, s);
    } else if constexpr (mode == VX_COMPOSITE_MULTIPLY) {
        return hn::Mul(d, s);
    } else if constexpr (mode == VX_COMPOSITE_OVERLAY) {
        const auto dark = hn::Mul(hn::Mul(d, s), two);
        const auto light = hn::Sub(one, hn::Mul(hn::Mul(hn::Sub(one, d), two), hn::Sub(one, s)));
        return hn::IfThenElse(hn::Gt(half, d), dark, light);
    } else if constexpr (mode == VX_COMPOSITE_SCREEN) {
        return hn::Sub(one, hn::Mul(hn::Sub(one, s), hn::Sub(one, d)));
    } else {
        return hn::Mul(hn::Add(d, s), half);
    }
}

template <int32_t mode>
HWY_INLINE FloatVec MixedPixels(FloatVec d, FloatVec s)
{
    if constexpr (AlphaMode(mode) == mode)
        return MixedLanes<mode>(d, s);
    return hn::IfThenElse(AlphaLanes(Floats()), MixedLanes<AlphaMode(mode)>(d, s), MixedLanes<mode>(d, s));
}

template <int32_t mode, bool full>
void CompositeRowVector(uint8_t* dst, const uint8_t* src, int32_t width, float opacity)
{
    const auto strength = hn::Set(Floats(), opacity), rest = hn::Set(Floats(), 1.0f - opacity);
    const auto composite = [=](auto d, auto s) VX_LANES {
        const auto mixed = MixedPixels<mode>(d, s);
        return full ? mixed : hn::Add(hn::Mul(mixed, strength), hn::Mul(rest, BaseIsSource(mode) ? s : d));
    };
    const int64_t done = ReplaceVectors(Floats(), dst, int64_t(width) * kPixelBytes, composite, src);
    CompositeRow<mode, full>(dst + done, src + done, width - int32_t(done / kPixelBytes), opacity);
}

template <int32_t mode>
struct VectorRows
{
    static constexpr RowsFloat kRows{CompositeRowVector<mode, true>, CompositeRowVector<mode, false>};
};

CompositeRowFloat VectorRow(int32_t mode, float opacity)
{
    static constexpr auto kTable = TableByMode<VectorRows>();
    return RowOf(kTable, mode, opacity);
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
HWY_EXPORT(VectorRow);

CompositeRowFloat ChooseCompositeRowFloat(int32_t mode, float opacity)
{
    return VX_VECTOR_FORM(VectorRow, PlainRow)(mode, opacity);
}

} // namespace vx

#endif // HWY_ONCE
