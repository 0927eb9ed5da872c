// A run of pixels in steps that vectors do well: words out of memory, channels out of words into planes,
// working pixels out of planes; written it goes the other way, a block of pixels at a time.
//
// All is inlined by force into functions of runs.cpp, which are compiled for each vector target; only
// the steps, which a target has its own form of, are called.
#pragma once

#include "exchange/codec.h"
#include "exchange/rows.h"

#include <algorithm>
#include <array>

namespace vx {

constexpr int32_t kBlock = kRunPixels; // a multiple of what any vector holds

// The 16-bit channels of a block apart from each other, which vectors take as they are.
struct RunPlanes
{
    alignas(64) uint16_t blue[kBlock], green[kBlock], red[kBlock], alpha[kBlock];
};

HWY_INLINE void SetPixel(RunPlanes& planes, int32_t i, const Pixel16& pixel)
{
    planes.blue[i] = pixel.blue;
    planes.green[i] = pixel.green;
    planes.red[i] = pixel.red;
    planes.alpha[i] = pixel.alpha;
}

HWY_INLINE Pixel16 PixelAt(const RunPlanes& planes, int32_t i)
{
    return {planes.blue[i], planes.green[i], planes.red[i], planes.alpha[i]};
}

template <Widening kWidening>
HWY_INLINE Pixel16 WidePixel(uint32_t bytes)
{
    return Bytes4Word::Decode<kWidening == Widening::Double>(bytes, {});
}

// ColourMean of widened bytes is this times their sum, without the low 16 bits. The factor is too large by less than a
// unit, which of a sum of at most 765 makes less than a third of the unit above.
template <Widening kWidening>
constexpr uint32_t kThirdOfBytes = ((kWidening == Widening::Double ? 257u : 256u) * 65536 + 2) / 3;

// The steps that no compiler makes good vectors of. They do the pixels from first to n, which is at
// most kBlock, and touch no byte of others.
struct PlainSteps
{
    static void Interleave(Pixel16* out, const RunPlanes& planes, int32_t first, int32_t n)
    {
        for (int32_t i = first; i < n; ++i)
            out[i] = PixelAt(planes, i);
    }
    static void InterleaveGray(Pixel16* out, const uint16_t* gray, int32_t first, int32_t n)
    {
        for (int32_t i = first; i < n; ++i)
            out[i] = GrayPixel(gray[i]);
    }
    static void Separate(RunPlanes& planes, const Pixel16* in, int32_t first, int32_t n)
    {
        for (int32_t i = first; i < n; ++i)
            SetPixel(planes, i, in[i]);
    }
    static void Load24(uint32_t* words, const uint8_t* p, int32_t first, int32_t n)
    {
        for (int32_t i = first; i < n; ++i)
            words[i] = Memory<24, uint32_t>::Load(p + 3 * i, 0) | kOpaqueBytes;
    }
    static void Store24(uint8_t* p, const uint32_t* words, int32_t first, int32_t n)
    {
        for (int32_t i = first; i < n; ++i)
            Memory<24, uint32_t>::Store(p + 3 * i, 0, words[i]);
    }
    static void WordsOfFloats(uint16_t* words, const uint8_t* floats, int32_t first, int32_t n)
    {
        for (int32_t i = first; i < n; ++i) {
            float x;
            std::memcpy(&x, floats + 4 * i, sizeof(x));
            words[i] = WordOfFloat(x);
        }
    }
    template <class TheCodec>
    static void BytesOfFields(uint32_t* out, const uint8_t* p, int32_t first, int32_t n)
    {
        for (int32_t i = first; i < n; ++i)
            out[i] = Bytes4Word::Encode(
                TheCodec::template Decode<false>(TheCodec::Place::Load(p + 2 * i, 0), {}), {});
    }
    template <class TheCodec, Widening kWidening>
    static void FieldsOfBytes(uint8_t* p, const uint32_t* in, int32_t first, int32_t n)
    {
        using Word = typename TheCodec::Word;
        for (int32_t i = first; i < n; ++i)
            TheCodec::Place::Store(p + i * int32_t(sizeof(Word)), 0,
                                   Word(TheCodec::Encode(WidePixel<kWidening>(in[i]), {})));
    }
    template <Widening kWidening>
    static void MeansOfBytes(uint16_t* means, const uint32_t* in, int32_t first, int32_t n)
    {
        for (int32_t i = first; i < n; ++i)
            means[i] = ColourMean(WidePixel<kWidening>(in[i]));
    }
};

// The pixels of a byte, for types below a byte, by one multiplication. In a Lanes word the first pixel
// takes the lowest byte.
template <int32_t kBits>
struct InByte
{
    static constexpr int32_t kPixels = 8 / kBits;
    static constexpr uint32_t kMask = (1u << kBits) - 1;
    using Lanes =
        std::conditional_t<kBits == 1, uint64_t, std::conditional_t<kBits == 2, uint32_t, uint16_t>>;

    // Pixel k, at bit 8 k of the lanes, comes to its place in the highest byte: no two products meet.
    static constexpr Lanes kGather = [] {
        Lanes factor = 0;
        for (int32_t k = 0; k < kPixels; ++k)
            factor = Lanes(factor | Lanes(1) << (8 * kPixels - (k + 1) * kBits - 8 * k));
        return factor;
    }();
    static constexpr Lanes kRepeat = Lanes(~Lanes(0)) / 255;

    HWY_INLINE static void Unpack(uint16_t* __restrict words, const uint8_t* __restrict p, int32_t bytes)
    {
        alignas(64) uint8_t repeated[kBlock];
        for (int32_t i = 0; i < bytes; ++i) {
            const auto lanes = Lanes(p[i] * kRepeat);
            std::memcpy(repeated + i * kPixels, &lanes, sizeof(lanes));
        }
        // A factor shifts a pixel to the byte's highest bits.
        static constexpr auto kFactors = [] {
            std::array<uint16_t, kBlock> factors{};
            for (int32_t i = 0; i < kBlock; ++i)
                factors[size_t(i)] = uint16_t(1 << (i % kPixels * kBits));
            return factors;
        }();
        for (int32_t i = 0; i < bytes * kPixels; ++i)
            words[i] = uint16_t(uint16_t(repeated[i] * kFactors[size_t(i)]) & 0xFF) >> (8 - kBits);
    }
    HWY_INLINE static void Pack(uint8_t* __restrict p, const uint8_t* __restrict words, int32_t bytes)
    {
        for (int32_t i = 0; i < bytes; ++i) {
            Lanes lanes;
            std::memcpy(&lanes, words + i * kPixels, sizeof(lanes));
            p[i] =
                uint8_t(Lanes((lanes & Lanes(kMask * kRepeat)) * uint64_t(kGather)) >> (8 * (kPixels - 1)));
        }
    }
};

// As wide as the block's words need be: narrow gray stays narrow.
template <class TheCodec>
using BlockWord = std::conditional_t<TheCodec::kShape == Shape::Gray && TheCodec::kBits <= 16, uint16_t,
                                     typename TheCodec::Word>;

// Never inlined, and so not compiled for vector targets: loads one by one beat the processors' own
// gathering. Entries are opaque, whatever their fourth byte.
template <class Index>
HWY_NOINLINE void LoadEntries(uint32_t* __restrict entries, const Index* __restrict indexes, int32_t n,
                              const ReadContext& context)
{
    const uint8_t* const palette = context.palette;
    for (int32_t i = 0; i < n; ++i)
        entries[i] = Memory<32, uint32_t>::Load(palette + 4 * size_t(indexes[i]), 0) | kOpaqueBytes;
}

// Words of a block of pixels; palette types give the table's entries.
template <class TheCodec, class Steps>
HWY_INLINE void LoadWords(BlockWord<TheCodec>* __restrict words, const uint8_t* __restrict p, int32_t n,
                          const ReadContext& context)
{
    constexpr int32_t kBits = TheCodec::kBits;
    if constexpr (kBits == 24)
        Steps::Load24(words, p, 0, n);
    else if constexpr (TheCodec::kShape == Shape::Palette)
        LoadEntries(words, p, n, context);
    else
        for (int32_t i = 0; i < n; ++i)
            words[i] = BlockWord<TheCodec>(TheCodec::Place::Load(p + i * (kBits / 8), 0));
}

// The same for types below a byte.
template <class TheCodec>
HWY_INLINE void UnpackWords(BlockWord<TheCodec>* __restrict words, const uint8_t* __restrict p, int32_t n,
                            const ReadContext& context)
{
    using Bits = InByte<TheCodec::kBits>;
    alignas(64) uint16_t fields[kBlock];
    const int32_t bytes = n / Bits::kPixels;
    Bits::Unpack(fields, p, bytes);
    for (int32_t i = bytes * Bits::kPixels; i < n; ++i)
        fields[i] = uint16_t(TheCodec::Place::Load(p + bytes, uint32_t(i % Bits::kPixels * TheCodec::kBits)));
    if constexpr (TheCodec::kShape == Shape::Palette)
        LoadEntries(words, fields, n, context);
    else
        std::copy_n(fields, n, words);
}

// Types whose words memory holds as they are.
template <class TheCodec>
constexpr bool kWordsStand = (TheCodec::kShape == Shape::Word || TheCodec::kShape == Shape::Gray) &&
                             (TheCodec::kBits == 16 || TheCodec::kBits == 32);

template <class TheCodec, class Steps>
HWY_INLINE void ReadWords(BlockWord<TheCodec>* __restrict words, const uint8_t* __restrict p, int32_t n,
                          const ReadContext& context)
{
    if constexpr (TheCodec::kBits < 8)
        UnpackWords<TheCodec>(words, p, n, context);
    else
        LoadWords<TheCodec, Steps>(words, p, n, context);
}

template <class TheCodec, bool kExact, class Word>
HWY_INLINE typename TheCodec::Working DecodeWord(const Word& word, const ReadContext& context)
{
    if constexpr (TheCodec::kShape == Shape::Palette)
        return TheCodec::DecodeEntry(word);
    else
        return TheCodec::template Decode<kExact>(word, context);
}

// All bytes in turn, and alpha afterwards.
template <class TheCodec, bool kExact>
HWY_INLINE void DecodeOpaqueBytes(Pixel16* __restrict out, const uint32_t* __restrict words, int32_t n)
{
    const auto* const bytes = reinterpret_cast<const uint8_t*>(words);
    auto* const channels = reinterpret_cast<uint16_t*>(out);
    for (int32_t i = 0; i < 4 * n; ++i)
        channels[i] = TheCodec::template DecodeByte<kExact>(bytes[i]);
    for (int32_t i = 0; i < n; ++i) {
        uint64_t pixel;
        std::memcpy(&pixel, out + i, sizeof(pixel));
        pixel |= uint64_t(0xFFFF) << 48;
        std::memcpy(out + i, &pixel, sizeof(pixel));
    }
}

template <class TheCodec, bool kExact, class Steps, class Word>
HWY_INLINE void DecodeWords(typename TheCodec::Working* __restrict out, const Word* __restrict words,
                            int32_t n, const ReadContext& context)
{
    if constexpr (std::is_same_v<typename TheCodec::Working, Pixel8>) {
        for (int32_t i = 0; i < n; ++i) {
            const uint32_t bytes = BytesOfPixel(DecodeWord<TheCodec, kExact>(words[i], context));
            std::memcpy(out + i, &bytes, sizeof(bytes));
        }
    } else if constexpr (TheCodec::kShape == Shape::Gray) {
        alignas(64) uint16_t gray[kBlock];
        for (int32_t i = 0; i < n; ++i)
            gray[i] = DecodeWord<TheCodec, kExact>(words[i], context).blue;
        Steps::InterleaveGray(out, gray, 0, n);
    } else if constexpr (kHasOpaqueBytes<TheCodec>) {
        DecodeOpaqueBytes<TheCodec, kExact>(out, words, n);
    } else {
        RunPlanes planes;
        for (int32_t i = 0; i < n; ++i)
            SetPixel(planes, i, DecodeWord<TheCodec, kExact>(words[i], context));
        Steps::Interleave(out, planes, 0, n);
    }
}

template <class TheCodec, bool kExact, class Steps>
HWY_INLINE void ReadBlock(typename TheCodec::Working* __restrict out, const uint8_t* __restrict p, int32_t n,
                          const ReadContext& context)
{
    alignas(64) BlockWord<TheCodec> words[kBlock];
    ReadWords<TheCodec, Steps>(words, p, n, context);
    DecodeWords<TheCodec, kExact, Steps>(out, words, n, context);
}

template <class TheCodec, bool kExact, class Steps>
HWY_INLINE void ReadBlocks(typename TheCodec::Working* __restrict out, const uint8_t* __restrict p,
                           int32_t count, const ReadContext& context)
{
    for (int32_t i = 0; i < count; i += kBlock)
        ReadBlock<TheCodec, kExact, Steps>(out + i, p + int64_t(i) * TheCodec::kBits / 8,
                                           std::min(kBlock, count - i), context);
}

// Float channels without a curve.
template <class TheCodec, class Steps>
HWY_INLINE void ReadFloats(Pixel16* out, const uint8_t* p, int32_t count)
{
    for (int32_t i = 0; i < count; i += kBlock) {
        const uint8_t* const block = p + int64_t(i) * TheCodec::kBits / 8;
        const int32_t n = std::min(kBlock, count - i);
        if constexpr (TheCodec::kShape == Shape::Gray) {
            alignas(64) uint16_t gray[kBlock];
            Steps::WordsOfFloats(gray, block, 0, n);
            Steps::InterleaveGray(out + i, gray, 0, n);
        } else {
            Steps::WordsOfFloats(reinterpret_cast<uint16_t*>(out + i), block, 0, 4 * n);
        }
    }
}

template <class TheCodec, bool kExact>
HWY_INLINE void ReadChannels(Pixel16* __restrict out, const uint8_t* __restrict p, int32_t count,
                             const ReadContext& context)
{
    auto* const channels = reinterpret_cast<uint16_t*>(out);
    for (int32_t i = 0; i < 4 * count; ++i) {
        typename TheCodec::Element element;
        std::memcpy(&element, p + size_t(i) * sizeof(element), sizeof(element));
        channels[i] = TheCodec::template DecodeElement<kExact>(element, context);
    }
}

// A run whose first pixel begins a byte.
template <class TheCodec, bool kExact, class Steps>
HWY_INLINE void ReadAligned(typename TheCodec::Working* __restrict out, const uint8_t* __restrict p,
                            int32_t count, const ReadContext& context)
{
    if constexpr (TheCodec::kShape == Shape::Same) {
        std::memcpy(out, p, size_t(count) * sizeof(*out));
        return;
    } else if constexpr (TheCodec::kIsFloat) {
        if (!context.curve)
            return ReadFloats<TheCodec, Steps>(out, p, count);
    }
    if constexpr (TheCodec::kShape == Shape::Channels)
        ReadChannels<TheCodec, kExact>(out, p, count, context);
    else if constexpr (TheCodec::kShape != Shape::Same)
        ReadBlocks<TheCodec, kExact, Steps>(out, p, count, context);
}

// Pixels of a run before its first whole byte.
template <int32_t kBits>
HWY_INLINE int32_t HeadPixels(int64_t bit, int32_t count)
{
    return std::min(int32_t((8 - bit % 8) % 8) / kBits, count);
}

template <class TheCodec, bool kExact, class Steps>
HWY_INLINE void ReadRun(void* pixels, const uint8_t* row, int64_t bit, int32_t count, const tVXXCHG& x)
{
    auto* out = static_cast<typename TheCodec::Working*>(pixels);
    const ReadContext context = ReadContextOf(x);
    const uint8_t* p = row + bit / 8;
    if constexpr (TheCodec::kBits < 8) {
        const int32_t head = HeadPixels<TheCodec::kBits>(bit, count);
        for (int32_t i = 0; i < head; ++i)
            *out++ = TheCodec::template Load<kExact>(p, uint32_t(bit % 8 + i * TheCodec::kBits), context);
        p += bit % 8 != 0;
        count -= head;
    }
    ReadAligned<TheCodec, kExact, Steps>(out, p, count, context);
}

HWY_INLINE const Pixel8& PixelAt(const Pixel8* pixels, int32_t i)
{
    return pixels[i];
}

// Words of a block of pixels that PixelAt gives.
template <class TheCodec, class Word, class Pixels>
HWY_INLINE void EncodeWords(Word* __restrict words, const Pixels& pixels, int32_t n,
                            const WriteContext& context)
{
    if constexpr (TheCodec::kShape == Shape::Palette) {
        alignas(64) uint16_t cells[kBlock];
        for (int32_t i = 0; i < n; ++i)
            cells[i] = TheCodec::CellOf(PixelAt(pixels, i));
        for (int32_t i = 0; i < n; ++i)
            words[i] = context.map[cells[i]];
    } else {
        for (int32_t i = 0; i < n; ++i)
            words[i] = Word(TheCodec::Encode(PixelAt(pixels, i), context));
    }
}

// Words of a block to memory, from the start of a byte on.
template <class TheCodec, class Steps, class Word>
HWY_INLINE void StoreWords(uint8_t* __restrict p, const Word* __restrict words, int32_t n)
{
    constexpr int32_t kBits = TheCodec::kBits;
    if constexpr (kBits < 8) {
        using Bits = InByte<kBits>;
        const int32_t bytes = n / Bits::kPixels;
        Bits::Pack(p, words, bytes);
        for (int32_t i = bytes * Bits::kPixels; i < n; ++i)
            TheCodec::Place::Store(p + bytes, uint32_t(i % Bits::kPixels * kBits), words[i]);
    } else if constexpr (kBits == 24) {
        Steps::Store24(p, words, 0, n);
    } else {
        std::memcpy(p, words, size_t(n) * (kBits / 8));
    }
}

// Pixels that PixelAt gives, as words to memory.
template <class TheCodec, class Steps, class Pixels>
HWY_INLINE void WriteWords(uint8_t* __restrict p, const Pixels& pixels, int32_t n,
                           const WriteContext& context)
{
    if constexpr (kWordsStand<TheCodec>) {
        using Word = typename TheCodec::Word;
        for (int32_t i = 0; i < n; ++i)
            TheCodec::Place::Store(p + i * int32_t(sizeof(Word)), 0,
                                   Word(TheCodec::Encode(PixelAt(pixels, i), context)));
    } else {
        using Word = std::conditional_t<TheCodec::kBits <= 8, uint8_t, typename TheCodec::Word>;
        alignas(64) Word words[kBlock];
        EncodeWords<TheCodec>(words, pixels, n, context);
        StoreWords<TheCodec, Steps>(p, words, n);
    }
}

template <class TheCodec, class Steps>
HWY_INLINE void WriteBlock(uint8_t* __restrict p, const typename TheCodec::Working* __restrict in, int32_t n,
                           const WriteContext& context)
{
    if constexpr (std::is_same_v<typename TheCodec::Working, Pixel8>) {
        WriteWords<TheCodec, Steps>(p, in, n, context);
    } else {
        RunPlanes planes;
        Steps::Separate(planes, in, 0, n);
        WriteWords<TheCodec, Steps>(p, planes, n, context);
    }
}

template <class TheCodec>
HWY_INLINE void WriteChannels(uint8_t* __restrict p, const Pixel16* __restrict in, int32_t count,
                              const WriteContext& context)
{
    const auto* const channels = reinterpret_cast<const uint16_t*>(in);
    for (int32_t i = 0; i < 4 * count; ++i) {
        const typename TheCodec::Element element = TheCodec::EncodeElement(channels[i], context);
        std::memcpy(p + size_t(i) * sizeof(element), &element, sizeof(element));
    }
}

template <class TheCodec, class Steps>
HWY_INLINE void WriteAligned(uint8_t* __restrict p, const typename TheCodec::Working* __restrict in,
                             int32_t count, const WriteContext& context)
{
    if constexpr (TheCodec::kShape == Shape::Same)
        std::memcpy(p, in, size_t(count) * sizeof(*in));
    else if constexpr (TheCodec::kShape == Shape::Channels)
        WriteChannels<TheCodec>(p, in, count, context);
    else
        for (int32_t i = 0; i < count; i += kBlock)
            WriteBlock<TheCodec, Steps>(p + int64_t(i) * TheCodec::kBits / 8, in + i,
                                        std::min(kBlock, count - i), context);
}

template <class TheCodec, class Steps>
HWY_INLINE void WriteRun(uint8_t* row, int64_t bit, const void* pixels, int32_t count, const tVXXCHG& x)
{
    const auto* in = static_cast<const typename TheCodec::Working*>(pixels);
    WriteContext context = WriteContextOf(x);
    uint8_t* p = row + bit / 8;
    if constexpr (TheCodec::kBits < 8) {
        const int32_t head = HeadPixels<TheCodec::kBits>(bit, count);
        for (int32_t i = 0; i < head; ++i)
            TheCodec::Store(p, uint32_t(bit % 8 + i * TheCodec::kBits), *in++, context);
        p += bit % 8 != 0;
        count -= head;
    }
    // Two loops, of which the one without a curve has no call in it.
    if (TheCodec::kIsFloat && context.curve) {
        WriteAligned<TheCodec, Steps>(p, in, count, context);
    } else {
        context.curve = nullptr;
        WriteAligned<TheCodec, Steps>(p, in, count, context);
    }
}

} // namespace vx
