// Copies between types that pass through less than working pixels with nothing lost: as words of four bytes, the high
// ones of the four channels, or as gray words alone.
#pragma once

#include "exchange/run_steps.h"

namespace vx {

template <class TheCodec, bool kExact>
constexpr Widening WideningBy()
{
    if constexpr (requires { TheCodec::template kWidening<kExact>; })
        return TheCodec::template kWidening<kExact>;
    return Widening::None;
}

template <class TheCodec>
constexpr bool TakesHighBytes()
{
    return requires
    {
        TheCodec::kTakesHighBytes;
    };
}

// Memory holds four bytes a pixel.
template <class TheCodec>
constexpr bool kHoldsBytes = std::is_same_v<typename TheCodec::Word, Pixel8>;

template <class TheCodec>
constexpr bool kHasGray = TheCodec::kShape == Shape::Gray;

template <class TheCodec>
constexpr bool kHasBytes = kHasGray<TheCodec> || kHoldsBytes<TheCodec> || TheCodec::kShape == Shape::Word ||
                           TheCodec::kShape == Shape::Palette;

// At most kBlock pixels, the first of which begins a byte; so in all that follow.
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
    WriteContext context = WriteContextOf(x);
    alignas(64) Word words[kBlock];
    const auto encode = [&] {
        for (int32_t i = 0; i < n; ++i)
            words[i] = Word(TheCodec::EncodeGray(in[i], context));
    };
    if (TheCodec::kIsFloat && context.curve) {
        encode();
    } else {
        context.curve = nullptr; // leaves a loop without a call
        encode();
    }
    StoreWords<TheCodec, Steps>(p, words, n);
}

// The high bytes do not depend on how bytes are widened.
template <class TheCodec, class Steps>
HWY_INLINE void ReadBytes(uint32_t* __restrict out, const uint8_t* __restrict p, int32_t n, const tVXXCHG& x)
{
    const ReadContext context = ReadContextOf(x);
    if constexpr (kHoldsBytes<TheCodec>) {
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
        alignas(64) uint16_t gray[kBlock];
        ReadGray<TheCodec, false, Steps>(gray, p, n, x);
        for (int32_t i = 0; i < n; ++i)
            out[i] = (gray[i] >> 8) * 0x010101u | kOpaqueBytes;
    }
}

template <class TheCodec, Widening kWidening, class Steps>
HWY_INLINE void WriteBytes(uint8_t* __restrict p, const uint32_t* __restrict in, int32_t n, const tVXXCHG& x)
{
    const WriteContext context = WriteContextOf(x);
    if constexpr (TheCodec::kBits == 24) {
        Steps::Store24(p, in, 0, n);
    } else if constexpr (kHoldsBytes<TheCodec>) {
        std::memcpy(p, in, size_t(n) * sizeof(*in));
    } else if constexpr (TheCodec::kShape == Shape::Palette) {
        alignas(64) uint8_t words[kBlock];
        alignas(64) uint16_t cells[kBlock];
        for (int32_t i = 0; i < n; ++i)
            cells[i] = TheCodec::CellOf(Bytes4Word::Decode<false>(in[i], {}));
        for (int32_t i = 0; i < n; ++i)
            words[i] = context.map[cells[i]];
        StoreWords<TheCodec, Steps>(p, words, n);
    } else if constexpr (kHasGray<TheCodec> && TheCodec::kBits == 1) {
        alignas(64) uint8_t words[kBlock];
        for (int32_t i = 0; i < n; ++i)
            words[i] = uint8_t(TheCodec::Encode(WidePixel<kWidening>(in[i]), context));
        StoreWords<TheCodec, Steps>(p, words, n);
    } else if constexpr (kHasGray<TheCodec>) {
        alignas(64) uint16_t means[kBlock];
        Steps::template MeansOfBytes<kWidening>(means, in, 0, n);
        WriteGray<TheCodec, Steps>(p, means, n, x);
    } else {
        Steps::template FieldsOfBytes<TheCodec, kWidening>(p, in, 0, n);
    }
}

} // namespace vx
