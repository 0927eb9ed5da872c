// Copies between types that pass through less than 16-bit planes with nothing lost: as words of four bytes, the high
// ones of the four channels, or as gray words alone. What a pixel is, the codecs say; this is about which of it a copy
// can leave out.
#pragma once

#include "exchange/run_steps.h"

namespace vx {

constexpr Widening WideningOf(int32_t type, bool exact)
{
    switch (type) {
    case VXPIXEL_PAL4:
    case VXPIXEL_PAL8:
    case VXPIXEL_RGB555:
    case VXPIXEL_RGB565:
        return Widening::Shift;
    case VXPIXEL_GRAY8:
    case VXPIXEL_RGB24:
    case VXPIXEL_RGB32:
    case VXPIXEL_RGBA32:
        return exact ? Widening::Double : Widening::Shift;
    case VXPIXEL_PAL1: // is read as gray
    case VXPIXEL_GRAY1:
    case VXPIXEL_GRAY2:
    case VXPIXEL_GRAY4:
        return Widening::Double;
    default:
        return Widening::None;
    }
}

// Types that are written from the high bytes alone.
constexpr bool TakesHighBytes(int32_t type)
{
    return type == VXPIXEL_PAL4 || type == VXPIXEL_PAL8 || (type >= VXPIXEL_RGB555 && type <= VXPIXEL_RGBA32);
}

constexpr bool HoldsBytes(int32_t type)
{
    return type == VXPIXEL_RGB32 || type == VXPIXEL_RGBA32;
}

template <class TheCodec>
constexpr bool kReadsBytes = !TheCodec::kIsFloat && TheCodec::kShape != Shape::Same;

template <class TheCodec>
constexpr bool kWritesBytes = TakesHighBytes(TheCodec::kType) || TheCodec::kType == VXPIXEL_RGB101010 ||
                              (TheCodec::kShape == Shape::Gray && TheCodec::kBits <= 8);

template <class TheCodec>
constexpr bool kHasGray = TheCodec::kShape == Shape::Gray;

// At most kBlock pixels, the first of which begins a byte; so in all that follow. The high bytes do not depend on how
// bytes are widened.
template <class TheCodec, class Steps>
HWY_INLINE void ReadBytes(uint32_t* __restrict out, const uint8_t* __restrict p, int32_t n, const tVXXCHG& x)
{
    const ReadContext context = ReadContextOf(x);
    if constexpr (TheCodec::kShape == Shape::Channels) {
        std::memcpy(out, p, size_t(n) * sizeof(*out));
    } else if constexpr (TheCodec::kShape == Shape::Palette || TheCodec::kBits == 24) {
        ReadWords<TheCodec, Steps>(out, p, n, context); // which are opaque
    } else if constexpr (TheCodec::kShape == Shape::Word && TheCodec::kBits == 16) {
        Steps::template BytesOfFields<TheCodec>(out, p, 0, n);
    } else if constexpr (kWordsStand<TheCodec>) {
        for (int32_t i = 0; i < n; ++i) {
            const auto word = TheCodec::Place::Load(p + i * int32_t(sizeof(typename TheCodec::Word)), 0);
            out[i] = Bytes4Word::Encode(TheCodec::template Decode<false>(word, context), {});
        }
    } else {
        alignas(64) BlockWord<TheCodec> words[kBlock];
        ReadWords<TheCodec, Steps>(words, p, n, context);
        for (int32_t i = 0; i < n; ++i)
            out[i] =
                (TheCodec::template Decode<false>(words[i], context).blue >> 8) * 0x010101u | kOpaqueBytes;
    }
}

template <class TheCodec, Widening kWidening, class Steps>
HWY_INLINE void WriteBytes(uint8_t* __restrict p, const uint32_t* __restrict in, int32_t n, const tVXXCHG& x)
{
    const WriteContext context = WriteContextOf(x);
    if constexpr (TheCodec::kBits == 24) {
        Steps::Store24(p, in, 0, n);
    } else if constexpr (TheCodec::kShape == Shape::Channels) {
        std::memcpy(p, in, size_t(n) * sizeof(*in));
    } else if constexpr (TheCodec::kShape == Shape::Palette) {
        alignas(64) uint8_t words[kBlock];
        alignas(64) uint16_t cells[kBlock];
        for (int32_t i = 0; i < n; ++i)
            cells[i] = TheCodec::CellOf(Bytes4Word::Decode<false>(in[i], {}));
        for (int32_t i = 0; i < n; ++i)
            words[i] = context.map[cells[i]];
        StoreWords<TheCodec, Steps>(p, words, n);
    } else if constexpr (TheCodec::kShape == Shape::Gray) {
        alignas(64) uint8_t words[kBlock];
        alignas(64) uint16_t means[kBlock];
        if constexpr (TheCodec::kBits == 1) {
            for (int32_t i = 0; i < n; ++i)
                words[i] = uint8_t(TheCodec::Encode(WidePixel<kWidening>(in[i]), context));
        } else {
            Steps::template MeansOfBytes<kWidening>(means, in, 0, n);
            for (int32_t i = 0; i < n; ++i)
                words[i] = uint8_t(TheCodec::EncodeGray(means[i], context));
        }
        StoreWords<TheCodec, Steps>(p, words, n);
    } else {
        Steps::template FieldsOfBytes<TheCodec, kWidening>(p, in, 0, n);
    }
}

template <class TheCodec, bool kExact, class Steps>
HWY_INLINE void ReadGray(uint16_t* __restrict out, const uint8_t* __restrict p, int32_t n, const tVXXCHG& x)
{
    const ReadContext context = ReadContextOf(x);
    if constexpr (TheCodec::kIsFloat)
        if (!context.curve)
            return Steps::WordsOfFloats(out, p, 0, n);
    alignas(64) BlockWord<TheCodec> words[kBlock];
    ReadWords<TheCodec, Steps>(words, p, n, context);
    for (int32_t i = 0; i < n; ++i)
        out[i] = TheCodec::template Decode<kExact>(words[i], context).blue;
}

template <class TheCodec, class Steps>
HWY_INLINE void WriteGray(uint8_t* __restrict p, const uint16_t* __restrict in, int32_t n, const tVXXCHG& x)
{
    using Word = std::conditional_t<TheCodec::kBits <= 8, uint8_t, typename TheCodec::Word>;
    const WriteContext context = WriteContextOf(x);
    alignas(64) Word words[kBlock];
    for (int32_t i = 0; i < n; ++i)
        words[i] = Word(TheCodec::EncodeGray(in[i], context));
    StoreWords<TheCodec, Steps>(p, words, n);
}

} // namespace vx
