// VxDibFadeToColor: a rectangle moved towards a colour, with exact coverage at its edges.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "dib/fade.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#ifndef VX_FADE_PLAIN
#define VX_FADE_PLAIN

#include "dib/copy_job.h"
#include "kernel/vector_targets.h"
#include "vx/dibcopy.h"

namespace vx {
namespace {

// What a row is moved towards: four channels, of which all move, or the first three.
struct FadeColour
{
    uint8_t bytes[4];
    float floats[4];
    int32_t channels;
};

// a in 1/255.
HWY_NOINLINE void FadeBytes(uint8_t* row, int64_t width, const FadeColour& to, uint8_t a)
{
    for (int64_t x = 0; x < width; ++x, row += 4)
        for (int32_t c = 0; c < to.channels; ++c)
            row[c] = BlendByte(row[c], to.bytes[c], a);
}

HWY_NOINLINE void FadeFloats(uint8_t* row, int64_t width, const FadeColour& to, float f)
{
    for (int64_t x = 0; x < width; ++x, row += 16) {
        float p[4];
        std::memcpy(p, row, sizeof(p));
        for (int32_t c = 0; c < to.channels; ++c)
            p[c] = p[c] + (to.floats[c] - p[c]) * f;
        std::memcpy(row, p, sizeof(p));
    }
}

} // namespace
} // namespace vx

#endif // VX_FADE_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// The blend of a byte v towards c in 16 bits. With x = (c - v) a + 128, the sum s = v (255 - a) + c a + 128
// is x + 255 v and never negative; (s + v) / 256 is x / 256 + v, both rounded down, and s with that added
// is x + x / 256 + 256 v: 65,408 at most. A channel that stays has the weights 255 and 0.
void FadeBytesVector(uint8_t* row, int64_t width, const FadeColour& to, uint8_t a)
{
    const hn::ScalableTag<uint16_t> words;
    const hn::Rebind<uint8_t, decltype(words)> bytes;
    const int64_t step = int64_t(hn::Lanes(words)) / 4;
    alignas(64) uint16_t keep[hn::MaxLanes(words)], add[hn::MaxLanes(words)];
    for (size_t i = 0; i < hn::Lanes(words); ++i) {
        const bool moves = int32_t(i % 4) < to.channels;
        keep[i] = moves ? uint16_t(255 - a) : 255;
        add[i] = moves ? uint16_t(to.bytes[i % 4] * a + 128) : 128;
    }
    const auto weight = hn::Load(words, keep), addend = hn::Load(words, add);
    int64_t x = 0;
    for (; x + step <= width; x += step) {
        const auto v = hn::PromoteTo(words, hn::LoadU(bytes, row + 4 * x));
        const auto sum = hn::Add(hn::Mul(v, weight), addend);
        const auto mixed = hn::ShiftRight<8>(hn::Add(sum, hn::ShiftRight<8>(hn::Add(sum, v))));
        const hn::RebindToSigned<decltype(words)> numbers;
        hn::StoreU(hn::DemoteTo(bytes, hn::BitCast(numbers, mixed)), bytes, row + 4 * x);
    }
    FadeBytes(row + 4 * x, width - x, to, a);
}

void FadeFloatsVector(uint8_t* row, int64_t width, const FadeColour& to, float f)
{
    const hn::ScalableTag<float> lanes;
    const hn::RebindToSigned<decltype(lanes)> numbers;
    const int64_t step = int64_t(hn::Lanes(lanes)) / 4;
    const auto colour = hn::LoadDup128(lanes, to.floats);
    const auto factor = hn::Set(lanes, f);
    const auto channel = hn::And(hn::Iota(numbers, 0), hn::Set(numbers, 3));
    const auto moves = hn::RebindMask(lanes, hn::Lt(channel, hn::Set(numbers, to.channels)));
    int64_t x = 0;
    for (; x + step <= width; x += step) {
        auto* const at = reinterpret_cast<float*>(row + 16 * x); // for loads that take any address
        const auto p = hn::LoadU(lanes, at);
        const auto moved = hn::Add(p, hn::Mul(hn::Sub(colour, p), factor));
        hn::StoreU(hn::IfThenElse(moves, moved, p), lanes, at);
    }
    FadeFloats(row + 16 * x, width - x, to, f);
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {

HWY_EXPORT(FadeBytesVector);
HWY_EXPORT(FadeFloatsVector);

namespace {

// A side of the rectangle in sub-pixel units. Sides of pixels do not fit 32 bits there.
struct Side
{
    int64_t first, last;

    bool IsEmpty() const { return first >= last; }
    int64_t FirstPixel() const { return first / kSubpixelOne; }
    int64_t Pixels() const { return (last + kSubpixelOne - 1) / kSubpixelOne - FirstPixel(); }
    // Of the i-th pixel, in 1/16384.
    int32_t Coverage(int64_t i) const
    {
        const int64_t begin = (FirstPixel() + i) * kSubpixelOne;
        return int32_t(std::min(last, begin + kSubpixelOne) - std::max(first, begin));
    }
};

Side SideOf(int32_t first, int32_t last, int32_t size, bool subpixel)
{
    const int64_t unit = subpixel ? 1 : kSubpixelOne;
    return {std::max<int64_t>(first * unit, 0), std::min(last * unit, int64_t(size) * kSubpixelOne)};
}

// How far pixels are moved; bytes and floats each have their own rounding of it.
struct FadeAmount
{
    float amount; // 0.0 to 1.0
    int32_t fixed;

    explicit FadeAmount(float wanted)
        : amount(wanted > 0.0f ? std::min(wanted, 1.0f) : 0.0f), fixed(int32_t(amount * 16384.0f))
    {}
    uint8_t ByteWeight(int32_t rowCoverage, int32_t columnCoverage) const
    {
        const int32_t weight =
            int32_t(int64_t(fixed) * rowCoverage / kSubpixelOne * columnCoverage / kSubpixelOne);
        return uint8_t(weight == fixed ? int32_t(amount * 255.0f) : weight * 255 / kSubpixelOne);
    }
    float FloatWeight(int32_t rowCoverage, int32_t columnCoverage) const
    {
        constexpr float kUnit = 1.0f / kSubpixelOne;
        return amount * (float(rowCoverage) * kUnit) * (float(columnCoverage) * kUnit);
    }
};

// The first and the last pixel of a row, which may be covered in part, and those between.
template <class RowFn, class Weight>
void FadeRow(uint8_t* row, int32_t pixelBytes, const Side& columns, const FadeColour& to, RowFn fade,
             const Weight& weight)
{
    const int64_t last = columns.Pixels() - 1;
    fade(row, 1, to, weight(columns.Coverage(0)));
    if (last > 1)
        fade(row + pixelBytes, last - 1, to, weight(kSubpixelOne));
    if (last > 0)
        fade(row + last * pixelBytes, 1, to, weight(columns.Coverage(last)));
}

FadeColour ColourOf(const float* colour, bool keepAlpha)
{
    FadeColour to{};
    to.channels = keepAlpha ? 3 : 4;
    for (int32_t c = 0; c < 4; ++c) {
        to.floats[c] = colour[c];
        to.bytes[c] = uint8_t(CutTo32(colour[c] * 255.0f));
    }
    return to;
}

} // namespace
} // namespace vx

HRESULT VxDibFadeToColor(const BITMAPINFOHEADER* header, void* pixels, const RECT* rect, int32_t stride,
                         const float* colour, float amount, int32_t keepAlpha, uint32_t flags)
{
    using namespace vx;
    const int32_t type = VxGetPixelType(header);
    const bool isFloat = type == VXPIXEL_RGBA128;
    if (!isFloat && type != VXPIXEL_RGB32 && type != VXPIXEL_RGBA32)
        return E_NOTIMPL;
    const BITMAPINFOHEADER h = ReadHeader(header);
    const bool subpixel = rect && (flags & VXDIBF_SUBPIXEL);
    const RECT wanted = rect ? *rect : WholeBitmap(header);
    const Side columns = SideOf(wanted.left, wanted.right, h.biWidth, subpixel);
    const Side lines = SideOf(wanted.top, wanted.bottom, h.biHeight, subpixel);
    if (columns.IsEmpty() || lines.IsEmpty())
        return S_OK;
    const DibRows<uint8_t> rows = WritableRowsOf(header, pixels, stride);
    if (!rows.pixels)
        return E_INVALIDARG;

    const FadeColour to = ColourOf(colour, keepAlpha != 0);
    const FadeAmount by(amount);
    const auto fadeBytes = VX_VECTOR_FORM(FadeBytesVector, FadeBytes);
    const auto fadeFloats = VX_VECTOR_FORM(FadeFloatsVector, FadeFloats);
    const int32_t pixelBytes = isFloat ? 16 : 4;
    for (int64_t i = 0; i < lines.Pixels(); ++i) {
        uint8_t* const row =
            rows.Row(int32_t(h.biHeight - 1 - lines.FirstPixel() - i)) + columns.FirstPixel() * pixelBytes;
        const int32_t covered = lines.Coverage(i);
        if (isFloat)
            FadeRow(row, pixelBytes, columns, to, fadeFloats,
                    [&](int32_t column) { return by.FloatWeight(covered, column); });
        else
            FadeRow(row, pixelBytes, columns, to, fadeBytes,
                    [&](int32_t column) { return by.ByteWeight(covered, column); });
    }
    return S_OK;
}

#endif // HWY_ONCE
