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
    DirectRowFn toFloat[2], bytes3ToFloatByTable;
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
    {Rows::template kToFloat<CurveUse::None, 3>, Rows::template kToFloat<CurveUse::None, 4>},
    Rows::template kToFloat<CurveUse::Table, 3>,
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

#include "dib/direct_levels-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// Pixels of three bytes are read and written 16 bytes at a time, two pixels beyond the four that count.
constexpr int32_t kPixelsOf16Bytes = 6;

constexpr uint8_t kNone = 0x80; // a byte of a shuffle that becomes 0
alignas(16) constexpr uint8_t kPack24[16] = {0,  1,  2,  4,  5,     6,     8,     9,
                                             10, 12, 13, 14, kNone, kNone, kNone, kNone};
alignas(16) constexpr uint8_t kSpread24[16] = {0, 1, 2, kNone, 3, 4,  5,  kNone,
                                               6, 7, 8, kNone, 9, 10, 11, kNone};

// Calls block(x) for every fourth pixel from `x` on that has `reach` more with it, four times a turn while it can;
// returns the pixel that comes next.
template <class Block>
HWY_INLINE int32_t ForBlocks(int32_t x, int32_t width, int32_t reach, const Block& block)
{
    for (; x + 12 + reach <= width; x += 16)
        for (int32_t k = 0; k < 16; k += 4)
            block(x + k);
    for (; x + reach <= width; x += 4)
        block(x);
    return x;
}

// Writes the pixels of whole vectors; returns the one that comes next. Four vectors at a time: the dither of a vector is
// that of the columns it has.
template <Levels levels, CurveUse use, int32_t channels>
HWY_INLINE int32_t WriteWholeLevels(uint8_t* dest, const uint8_t* source, int32_t width, const float* dither,
                                    const VxTransferCurve& curve)
{
    static_assert(kPixels24 == kLanes, "a vector of pixels has as many as one of floats has floats");
    constexpr int32_t kReach = channels == 3 ? kReach24 : kLanes;
    int32_t x = 0;
    for (; x + kReach <= width; x += kLanes) {
        const float* const from = FloatPointer(source + int64_t(x) * 16);
        const auto pixels = JoinFourLevels([&](int32_t k) HWY_ATTR {
            return LevelsOf<levels, use>(hn::LoadU(Floats(), from + k * kLanes), dither + k * kLanes % 16,
                                         curve);
        });
        if constexpr (channels == 3)
            StorePixels24(pixels, dest + int64_t(x) * 3);
        else
            hn::StoreU(pixels, Lanes8(), dest + int64_t(x) * 4);
    }
    return x;
}

template <Levels levels, CurveUse use, int32_t channels>
void FloatToBytesRowVector(uint8_t* dest, const uint8_t* source, int32_t width, int32_t y,
                           const VxTransferCurve& curve)
{
    const Bytes16 bytes;
    const float* const dither = DitherOf(y);
    int32_t x = 0;
    if constexpr (use == CurveUse::None) // tables are looked up for fewer lanes at a time
        x = WriteWholeLevels<levels, use, channels>(dest, source, width, dither, curve);
    constexpr int32_t kReach = channels == 3 ? kPixelsOf16Bytes : 4;
    const auto block = [&](int64_t at) HWY_ATTR {
        const float* const from = FloatPointer(source + at * 16);
        auto pixels = BytesOf<levels, use>(from, dither, curve);
        if constexpr (channels == 3)
            pixels = hn::TableLookupBytesOr0(pixels, hn::Load(bytes, kPack24));
        hn::StoreU(pixels, bytes, dest + at * channels);
    };
    x = ForBlocks(x, width, kReach, block);
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
    const int32_t x = ForBlocks(0, width, kReach, [&](int64_t at) HWY_ATTR {
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
    const auto put = [dest](Vector8 pixels, int64_t x) HWY_ATTR {
        const auto opaque = hn::BitCast(Lanes8(), hn::Set(hn::Repartition<uint32_t, Lanes8>(), 0xFF000000u));
        hn::StoreU(hn::Or(pixels, opaque), Lanes8(), dest + x * 4);
    };
    const int32_t x = ForPixels24(
        width, [=](int64_t at) HWY_ATTR { put(LoadPixels24(source + at * 3), at); },
        [=](int64_t at) HWY_ATTR { put(LoadLastPixels24(source + at * 3), at); });
    Bytes3To4Row(dest + int64_t(x) * 4, source + int64_t(x) * 3, width - x, y, curve);
}

void Bytes4To3RowVector(uint8_t* dest, const uint8_t* source, int32_t width, int32_t y,
                        const VxTransferCurve& curve)
{
    const auto get = [source](int64_t x) HWY_ATTR { return hn::LoadU(Lanes8(), source + x * 4); };
    const int32_t x = ForPixels24(
        width, [=](int64_t at) HWY_ATTR { StorePixels24(get(at), dest + at * 3); },
        [=](int64_t at) HWY_ATTR { StoreLastPixels24(get(at), dest + at * 3); });
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
    return use == CurveUse::Direct ? kToFloatDirectly[four] : Forms().toFloat[four];
}

DirectRowFn SelectBytes3ToFloatByTable()
{
    return Forms().bytes3ToFloatByTable;
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
