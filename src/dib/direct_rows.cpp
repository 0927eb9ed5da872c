// Four pixels are 16 channels, and are what the vector forms work on at a time: the dither has four
// columns, and pixels of three bytes go through one shuffle of 16.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "dib/direct_rows.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#ifndef VX_DIRECT_ROWS_PLAIN
#define VX_DIRECT_ROWS_PLAIN

#include "dib/curves.h"
#include "dib/direct_rows.h"
#include "kernel/vector_targets.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace vx {
namespace {

constexpr float kUnitOfByte = 0.003921569f; // 1 / 255
constexpr float kHalfStep = 0.0019607844f;  // 0.5 / 255

// Ordered dither (Bayer, "An optimum method for two-level rendition of continuous-tone pictures", 1973)
// in sixteenths of an 8-bit step, each for the four channels of a pixel.
alignas(64) constexpr auto kDither = [] {
    constexpr int32_t kSixteenths[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};
    std::array<std::array<float, 16>, 4> dither{};
    for (size_t y = 0; y < 4; ++y)
        for (size_t i = 0; i < 16; ++i)
            dither[y][i] = float(kSixteenths[y][i / 4] / (16.0 * 255.0));
    return dither;
}();

const float* DitherOf(int32_t y)
{
    return kDither[size_t(y) % 4].data();
}

template <CurveUse use>
float Curved(float x, const VxTransferCurve& curve)
{
    if constexpr (use == CurveUse::None)
        return x;
    else if constexpr (use == CurveUse::Table)
        return LookUpFloat(curve, x);
    else
        return std::isnan(x) ? 0.0f : EvaluateCurve(curve, x);
}

// Comparisons in this order take a NaN to 0.
uint8_t ByteOfUnit(float x)
{
    if (!(x > 0.0f))
        return 0;
    return x > 1.0f ? 255 : uint8_t(x * 255.0f);
}

uint8_t TruncatedByte(float x)
{
    const double scaled = double(x) * 255.0;
    if (!(scaled > 0.0))
        return 0;
    return scaled >= 255.0 ? 255 : uint8_t(scaled);
}

// What the byte table would hold, at the value itself.
uint8_t EvaluatedByte(float x, const VxTransferCurve& curve)
{
    if (!(x >= 0.0f))
        return 0;
    if (x > 1.0f)
        return 255;
    const double level = double(EvaluateCurve(curve, x) * 255.0f) + 0.5;
    return uint8_t(std::min(level, 255.0));
}

template <Levels levels, CurveUse use>
uint8_t ByteOfFloat(float x, float dither, const VxTransferCurve& curve)
{
    if constexpr (levels == Levels::Dithered)
        return ByteOfUnit(Curved<use>(x, curve) + dither);
    else if constexpr (levels == Levels::Rounded)
        return ByteOfUnit(x + kHalfStep);
    else if constexpr (levels == Levels::Truncated)
        return TruncatedByte(x);
    else
        return use == CurveUse::Table ? LookUpByte(curve, x) : EvaluatedByte(x, curve);
}

template <Levels levels, CurveUse use, int32_t channels>
HWY_NOINLINE void FloatToBytesRow(uint8_t* dest, const uint8_t* source, int32_t width, int32_t y,
                                  const VxTransferCurve& curve)
{
    const float* const dither = DitherOf(y);
    for (int32_t x = 0; x < width; ++x, dest += channels, source += 16) {
        float pixel[4];
        std::memcpy(pixel, source, sizeof(pixel));
        for (int32_t c = 0; c < channels; ++c)
            dest[c] = ByteOfFloat<levels, use>(pixel[c], dither[x % 4 * 4], curve);
    }
}

template <CurveUse use>
HWY_NOINLINE void FloatToFloatRow(uint8_t* dest, const uint8_t* source, int32_t width, int32_t,
                                  const VxTransferCurve& curve)
{
    for (int32_t i = 0; i < 4 * width; ++i) {
        float x;
        std::memcpy(&x, source + size_t(i) * sizeof(x), sizeof(x));
        x = Curved<use>(x, curve);
        std::memcpy(dest + size_t(i) * sizeof(x), &x, sizeof(x));
    }
}

template <CurveUse use>
float FloatOfByte(uint8_t c, const VxTransferCurve& curve)
{
    if constexpr (use == CurveUse::None)
        return float(int32_t(c)) * kUnitOfByte;
    else if constexpr (use == CurveUse::Table)
        return curve.floatTable[c];
    else
        return EvaluateCurve(curve, float(int32_t(c)) / 255.0f);
}

template <CurveUse use, int32_t channels>
HWY_NOINLINE void BytesToFloatRow(uint8_t* dest, const uint8_t* source, int32_t width, int32_t,
                                  const VxTransferCurve& curve)
{
    for (int32_t x = 0; x < width; ++x, dest += 16, source += channels) {
        float pixel[4] = {0.0f, 0.0f, 0.0f, 1.0f};
        for (int32_t c = 0; c < channels; ++c)
            pixel[c] = FloatOfByte<use>(source[c], curve);
        std::memcpy(dest, pixel, sizeof(pixel));
    }
}

HWY_NOINLINE void Bytes3To4Row(uint8_t* dest, const uint8_t* source, int32_t width, int32_t,
                               const VxTransferCurve&)
{
    for (int32_t x = 0; x < width; ++x, dest += 4, source += 3) {
        std::memcpy(dest, source, 3);
        dest[3] = 255;
    }
}

HWY_NOINLINE void Bytes4To3Row(uint8_t* dest, const uint8_t* source, int32_t width, int32_t,
                               const VxTransferCurve&)
{
    for (int32_t x = 0; x < width; ++x, dest += 3, source += 4)
        std::memcpy(dest, source, 3);
}

// The workers of one form. Indexes: 1 for four channels, not three; 1 for a table, not no curve.
struct DirectForms
{
    DirectRowFn dithered[2][2];
    DirectRowFn rounded[2], truncated[2], picked[2];
    DirectRowFn toFloat[2][2];
    DirectRowFn floats, bytes3To4, bytes4To3;
};

template <class Rows>
constexpr DirectForms kDirectForms{
    {{Rows::template kToBytes<Levels::Dithered, CurveUse::None, 3>,
      Rows::template kToBytes<Levels::Dithered, CurveUse::Table, 3>},
     {Rows::template kToBytes<Levels::Dithered, CurveUse::None, 4>,
      Rows::template kToBytes<Levels::Dithered, CurveUse::Table, 4>}},
    {Rows::template kToBytes<Levels::Rounded, CurveUse::None, 3>,
     Rows::template kToBytes<Levels::Rounded, CurveUse::None, 4>},
    {Rows::template kToBytes<Levels::Truncated, CurveUse::None, 3>,
     Rows::template kToBytes<Levels::Truncated, CurveUse::None, 4>},
    {Rows::template kToBytes<Levels::Picked, CurveUse::Table, 3>,
     Rows::template kToBytes<Levels::Picked, CurveUse::Table, 4>},
    {{Rows::template kToFloat<CurveUse::None, 3>, Rows::template kToFloat<CurveUse::Table, 3>},
     {Rows::template kToFloat<CurveUse::None, 4>, Rows::template kToFloat<CurveUse::Table, 4>}},
    Rows::kFloats,
    Rows::kBytes3To4,
    Rows::kBytes4To3,
};

struct PlainRows
{
    template <Levels levels, CurveUse use, int32_t channels>
    static constexpr DirectRowFn kToBytes = FloatToBytesRow<levels, use, channels>;
    template <CurveUse use, int32_t channels>
    static constexpr DirectRowFn kToFloat = BytesToFloatRow<use, channels>;
    static constexpr DirectRowFn kFloats = FloatToFloatRow<CurveUse::Table>;
    static constexpr DirectRowFn kBytes3To4 = Bytes3To4Row;
    static constexpr DirectRowFn kBytes4To3 = Bytes4To3Row;
};

const DirectForms* PlainForms()
{
    return &kDirectForms<PlainRows>;
}

// A power a channel takes so long that vectors around it would save nothing.
constexpr DirectRowFn kDitheredDirectly[] = {FloatToBytesRow<Levels::Dithered, CurveUse::Direct, 3>,
                                             FloatToBytesRow<Levels::Dithered, CurveUse::Direct, 4>};
constexpr DirectRowFn kPickedDirectly[] = {FloatToBytesRow<Levels::Picked, CurveUse::Direct, 3>,
                                           FloatToBytesRow<Levels::Picked, CurveUse::Direct, 4>};
constexpr DirectRowFn kToFloatDirectly[] = {BytesToFloatRow<CurveUse::Direct, 3>,
                                            BytesToFloatRow<CurveUse::Direct, 4>};

} // namespace
} // namespace vx

#endif // VX_DIRECT_ROWS_PLAIN

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

// Pixels of three bytes are read and written 16 bytes at a time, two pixels beyond the four that count.
constexpr int32_t kPixelsOf16Bytes = 6;

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

// The product of Levels::Truncated is one of floats: rounded, it reaches the next integer for no float from
// 0.0 to 1.0.
template <Levels levels, CurveUse use, class V>
HWY_INLINE auto LevelsOf(V x, const float* dither, const VxTransferCurve& curve)
{
    const Floats d;
    const Longs longs;
    if constexpr (use == CurveUse::Table)
        x = LookUpLevels(x, curve);
    if constexpr (levels == Levels::Dithered)
        x = hn::Add(x, hn::Load(d, dither));
    else if constexpr (levels == Levels::Rounded)
        x = hn::Add(x, hn::Set(d, kHalfStep));
    return hn::ConvertTo(longs, hn::Mul(HeldToUnit(x), hn::Set(d, 255.0f)));
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

constexpr uint8_t kNone = 0x80; // a byte of a shuffle that becomes 0
alignas(16) constexpr uint8_t kPack24[16] = {0,  1,  2,  4,  5,     6,     8,     9,
                                             10, 12, 13, 14, kNone, kNone, kNone, kNone};
alignas(16) constexpr uint8_t kSpread24[16] = {0, 1, 2, kNone, 3, 4,  5,  kNone,
                                               6, 7, 8, kNone, 9, 10, 11, kNone};

// Calls block(x) for every fourth pixel from which on a row has `reach` more, four times a turn while it
// can; returns the pixel that comes next.
template <class Block>
HWY_INLINE int32_t ForBlocks(int32_t width, int32_t reach, const Block& block)
{
    int32_t x = 0;
    for (; x + 12 + reach <= width; x += 16)
        for (int32_t k = 0; k < 16; k += 4)
            block(x + k);
    for (; x + reach <= width; x += 4)
        block(x);
    return x;
}

template <Levels levels, CurveUse use, int32_t channels>
void FloatToBytesRowVector(uint8_t* dest, const uint8_t* source, int32_t width, int32_t y,
                           const VxTransferCurve& curve)
{
    const Bytes16 bytes;
    const float* const dither = DitherOf(y);
    constexpr int32_t kReach = channels == 3 ? kPixelsOf16Bytes : 4;
    const auto block = [&](int64_t x) HWY_ATTR {
        const float* const from = FloatPointer(source + x * 16);
        auto pixels = BytesOf<levels, use>(from, dither, curve);
        if constexpr (channels == 3)
            pixels = hn::TableLookupBytesOr0(pixels, hn::Load(bytes, kPack24));
        hn::StoreU(pixels, bytes, dest + x * channels);
    };
    const int32_t x = ForBlocks(width, kReach, block);
    FloatToBytesRow<levels, use, channels>(dest + int64_t(x) * channels, source + int64_t(x) * 16, width - x,
                                           y, curve);
}

void FloatToFloatRowVector(uint8_t* dest, const uint8_t* source, int32_t width, int32_t y,
                           const VxTransferCurve& curve)
{
    const Floats d;
    int32_t x = 0;
    for (; x + 4 <= width; x += 4)
        for (int32_t k = 0; k < kParts; ++k) {
            const int64_t at = int64_t(x) * 16 + k * kLanes * 4;
            const auto curved = LookUpFloats(hn::LoadU(d, FloatPointer(source + at)), curve);
            hn::StoreU(curved, d, FloatPointer(dest + at));
        }
    FloatToFloatRow<CurveUse::Table>(dest + int64_t(x) * 16, source + int64_t(x) * 16, width - x, y, curve);
}

// Vector k of 16 bytes, as 32-bit lanes.
template <int32_t k, class V>
HWY_INLINE hn::Vec<Longs> PartOf(V pixels)
{
    const Longs longs;
    const hn::Half<Bytes16> half;
    const Bytes16 bytes;
    if constexpr (kParts == 1) {
        return hn::PromoteTo(longs, pixels);
    } else if constexpr (kParts == 2) {
        return hn::PromoteTo(longs, hn::LowerHalf(half, hn::ShiftRightBytes<8 * k>(bytes, pixels)));
    } else {
        const hn::Half<decltype(half)> quarter;
        const auto shifted = hn::ShiftRightBytes<4 * k>(bytes, pixels);
        return hn::PromoteTo(longs, hn::LowerHalf(quarter, hn::LowerHalf(half, shifted)));
    }
}

template <CurveUse use, int32_t channels, int32_t k>
HWY_INLINE void StoreFloats(float* dest, hn::Vec<Bytes16> pixels, hn::Mask<Floats> isAlpha,
                            const VxTransferCurve& curve)
{
    if constexpr (k < kParts) {
        const Floats d;
        const auto levels = PartOf<k>(pixels);
        hn::Vec<Floats> floats;
        if constexpr (use == CurveUse::Table)
            floats = hn::GatherIndex(d, curve.floatTable, levels);
        else
            floats = hn::Mul(hn::ConvertTo(d, levels), hn::Set(d, kUnitOfByte));
        if constexpr (channels == 3)
            floats = hn::IfThenElse(isAlpha, hn::Set(d, 1.0f), floats);
        hn::StoreU(floats, d, dest + k * kLanes);
        StoreFloats<use, channels, k + 1>(dest, pixels, isAlpha, curve);
    }
}

template <CurveUse use, int32_t channels>
void BytesToFloatRowVector(uint8_t* dest, const uint8_t* source, int32_t width, int32_t y,
                           const VxTransferCurve& curve)
{
    const Longs longs;
    const Bytes16 bytes;
    const auto channel = hn::And(hn::Iota(longs, 0), hn::Set(longs, 3));
    const auto isAlpha = hn::RebindMask(Floats(), hn::Eq(channel, hn::Set(longs, 3)));
    constexpr int32_t kReach = channels == 3 ? kPixelsOf16Bytes : 4;
    const int32_t x = ForBlocks(width, kReach, [&](int64_t at) HWY_ATTR {
        auto pixels = hn::LoadU(bytes, source + at * channels);
        if constexpr (channels == 3)
            pixels = hn::TableLookupBytesOr0(pixels, hn::Load(bytes, kSpread24));
        StoreFloats<use, channels, 0>(FloatPointer(dest + at * 16), pixels, isAlpha, curve);
    });
    BytesToFloatRow<use, channels>(dest + int64_t(x) * 16, source + int64_t(x) * channels, width - x, y,
                                   curve);
}

void Bytes3To4RowVector(uint8_t* dest, const uint8_t* source, int32_t width, int32_t y,
                        const VxTransferCurve& curve)
{
    const Bytes16 bytes;
    const auto spread = hn::Load(bytes, kSpread24);
    const auto opaque = hn::BitCast(bytes, hn::Set(hn::Full128<uint32_t>(), 0xFF000000u));
    const int32_t x = ForBlocks(width, kPixelsOf16Bytes, [&](int64_t at) HWY_ATTR {
        const auto packed = hn::LoadU(bytes, source + at * 3);
        hn::StoreU(hn::Or(hn::TableLookupBytesOr0(packed, spread), opaque), bytes, dest + at * 4);
    });
    Bytes3To4Row(dest + int64_t(x) * 4, source + int64_t(x) * 3, width - x, y, curve);
}

void Bytes4To3RowVector(uint8_t* dest, const uint8_t* source, int32_t width, int32_t y,
                        const VxTransferCurve& curve)
{
    const Bytes16 bytes;
    const auto pack = hn::Load(bytes, kPack24);
    const int32_t x = ForBlocks(width, kPixelsOf16Bytes, [&](int64_t at) HWY_ATTR {
        hn::StoreU(hn::TableLookupBytesOr0(hn::LoadU(bytes, source + at * 4), pack), bytes, dest + at * 3);
    });
    Bytes4To3Row(dest + int64_t(x) * 3, source + int64_t(x) * 4, width - x, y, curve);
}

struct VectorRows
{
    template <Levels levels, CurveUse use, int32_t channels>
    static constexpr DirectRowFn kToBytes = FloatToBytesRowVector<levels, use, channels>;
    template <CurveUse use, int32_t channels>
    static constexpr DirectRowFn kToFloat = BytesToFloatRowVector<use, channels>;
    static constexpr DirectRowFn kFloats = FloatToFloatRowVector;
    static constexpr DirectRowFn kBytes3To4 = Bytes3To4RowVector;
    static constexpr DirectRowFn kBytes4To3 = Bytes4To3RowVector;
};

const DirectForms* VectorForms()
{
    return &kDirectForms<VectorRows>;
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {

HWY_EXPORT(VectorForms);

namespace {

const DirectForms& Forms()
{
    return *VX_VECTOR_FORM(VectorForms, PlainForms)();
}

} // namespace

DirectRowFn SelectFloatToBytes(Levels levels, CurveUse use, int32_t channels)
{
    const size_t four = channels == 4;
    const bool direct = use == CurveUse::Direct;
    switch (levels) {
    case Levels::Dithered:
        return direct ? kDitheredDirectly[four] : Forms().dithered[four][use == CurveUse::Table];
    case Levels::Rounded:
        return Forms().rounded[four];
    case Levels::Truncated:
        return Forms().truncated[four];
    default:
        return direct ? kPickedDirectly[four] : Forms().picked[four];
    }
}

DirectRowFn SelectFloatToFloat(CurveUse use)
{
    return use == CurveUse::Table ? Forms().floats : FloatToFloatRow<CurveUse::Direct>;
}

DirectRowFn SelectBytesToFloat(CurveUse use, int32_t channels)
{
    const size_t four = channels == 4;
    return use == CurveUse::Direct ? kToFloatDirectly[four] : Forms().toFloat[four][use == CurveUse::Table];
}

DirectRowFn SelectBytes3To4()
{
    return Forms().bytes3To4;
}

DirectRowFn SelectBytes4To3()
{
    return Forms().bytes4To3;
}

} // namespace vx

#endif // HWY_ONCE
