// How a pixel of each type stands in memory and what it is as a working pixel: stated once, for the
// published kernels and for the row kernels.
//
// Codec<type, channel> serves a pixel type at a working depth, which its channel names: uint8_t,
// uint16_t or float. Word is a pixel as an integer, or as itself where no integer holds it;
//   Decode<exact>(word, context)   working pixel; exact makes 8-bit channels c 257 c instead of 256 c
//   Encode(pixel, context)         word
//   kWidening<exact>               how Decode widens bytes; absent where channels hold more
//   kTakesHighBytes                Encode reads the high bytes of 16-bit channels alone
// and Memory<bits> moves words to and from memory. A codec's shape tells the row kernels what they may
// do with many pixels at once. All is inlined into its callers, and so compiled for their vector target.
#pragma once

#include "dib/curves.h"
#include "pixel/dib_layout.h"
#include "vx/xchg.h"

#include <cstring>
#include <hwy/base.h>
#include <type_traits>

namespace vx {

template <class Channel>
struct Pixel
{
    Channel blue, green, red, alpha;
};
using Pixel8 = Pixel<uint8_t>;
using Pixel16 = Pixel<uint16_t>;
using PixelFloat = Pixel<float>;

enum class Shape
{
    Word,     // Decode and Encode are all there is to it
    Gray,     // Word, and the three colours read alike
    Palette,  // Decode is DecodeEntry of EntryOf, Encode is the map at CellOf
    Channels, // each channel is an Element of its own: DecodeElement and EncodeElement do all four
    Same,     // memory holds working pixels
};

// How 16-bit channels are made of bytes.
enum class Widening : uint8_t
{
    None,   // not: they hold more
    Shift,  // 256 c
    Double, // 257 c
};

constexpr Widening WideningOfBytes(bool exact)
{
    return exact ? Widening::Double : Widening::Shift;
}

// Three 8-bit channels, blue in the low byte of the word, made wider one by one; alpha is full.
template <class Form>
struct OpaqueBytes
{
    template <bool kExact>
    HWY_INLINE static Pixel16 DecodeBytes(uint32_t word)
    {
        return {Form::template DecodeByte<kExact>(word & 255),
                Form::template DecodeByte<kExact>((word >> 8) & 255),
                Form::template DecodeByte<kExact>((word >> 16) & 255), 0xFFFF};
    }
};

template <class TheCodec>
constexpr bool kHasOpaqueBytes = requires
{
    TheCodec::template DecodeByte<true>(0u);
};

struct ReadContext
{
    const uint8_t* palette;
    const VxTransferCurve* curve; // null where it counts as the identity
};

struct WriteContext
{
    const uint8_t* map;
    const VxTransferCurve* curve;
};

HWY_INLINE ReadContext ReadContextOf(const tVXXCHG& x)
{
    return {reinterpret_cast<const uint8_t*>(x.sourcePalette),
            IsNearIdentity(x.sourceCurve.exponent) ? nullptr : &x.sourceCurve};
}

HWY_INLINE WriteContext WriteContextOf(const tVXXCHG& x)
{
    return {x.inverseMap, IsNearIdentity(x.destCurve.exponent) ? nullptr : &x.destCurve};
}

// Words of less than a byte count from the byte's highest bit; `bit` says where. Others ignore it.
template <int32_t kBits, class TheWord>
struct Memory
{
    using Word = TheWord;

    HWY_INLINE static Word Load(const uint8_t* p, uint32_t)
    {
        Word word;
        std::memcpy(&word, p, sizeof(word));
        return word;
    }
    HWY_INLINE static void Store(uint8_t* p, uint32_t, const Word& word)
    {
        std::memcpy(p, &word, sizeof(word));
    }
};

template <int32_t kBits>
requires(kBits <= 8) struct Memory<kBits, uint32_t>
{
    using Word = uint32_t;
    static constexpr uint32_t kMask = (1u << kBits) - 1;

    // The mask keeps the shift defined where a caller's bit is no multiple of kBits.
    HWY_INLINE static uint32_t Shift(uint32_t bit) { return (8 - kBits - bit) & 7; }
    HWY_INLINE static Word Load(const uint8_t* p, uint32_t bit) { return (*p >> Shift(bit)) & kMask; }
    HWY_INLINE static void Store(uint8_t* p, uint32_t bit, Word word)
    {
        *p = uint8_t((*p & ~(kMask << Shift(bit))) | (word & kMask) << Shift(bit));
    }
};

template <>
struct Memory<24, uint32_t>
{
    using Word = uint32_t;

    HWY_INLINE static Word Load(const uint8_t* p, uint32_t)
    {
        return p[0] | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16;
    }
    HWY_INLINE static void Store(uint8_t* p, uint32_t, Word word)
    {
        p[0] = uint8_t(word);
        p[1] = uint8_t(word >> 8);
        p[2] = uint8_t(word >> 16);
    }
};

HWY_INLINE uint32_t ColourSum(const Pixel16& p)
{
    return uint32_t(p.blue) + p.green + p.red;
}

// A third of the sum, truncated, in steps that stay within 16 bits, of which vectors hold most.
HWY_INLINE uint16_t ColourMean(const Pixel16& p)
{
    const auto blue = uint16_t(p.blue / 3), green = uint16_t(p.green / 3), red = uint16_t(p.red / 3);
    const auto rest = uint16_t((p.blue - 3 * blue) + (p.green - 3 * green) + (p.red - 3 * red)); // 0 to 6
    return uint16_t(blue + green + red + uint16_t(rest * 11) / 32);
}

HWY_INLINE Pixel16 GrayPixel(uint32_t value)
{
    return {uint16_t(value), uint16_t(value), uint16_t(value), 0xFFFF};
}

template <bool kExact>
HWY_INLINE uint16_t WidenByte(uint32_t c)
{
    return uint16_t(c * (kExact ? 257 : 256));
}

// Comparisons in this order take a NaN to 0.
HWY_INLINE uint16_t WordOfFloat(float x)
{
    const float positive = x > 0.0f ? x : 0.0f;
    const float held = positive < 1.0f ? positive : 1.0f;
    return uint16_t(int32_t(held * 65535.0f + 0.5f));
}

HWY_INLINE uint16_t WordOfFloat(float x, const ReadContext& context)
{
    return WordOfFloat(context.curve ? EvaluateCurve(*context.curve, x) : x);
}

HWY_INLINE float FloatOfWord(uint32_t m, const WriteContext& context)
{
    const float x = float(int32_t(m)) * 1.5259022e-5f; // 1 / 65535; from int32_t, which vectors convert
    return context.curve ? EvaluateCurve(*context.curve, x) : x;
}

// Gray of 1 to 16 bits: fields spread over 0 to 65535, but for 8 bits that are not read exactly.
template <int32_t kBits>
struct GrayCodec
{
    static constexpr Shape kShape = Shape::Gray;
    template <bool kExact>
    static constexpr Widening kWidening = kBits == 8  ? WideningOfBytes(kExact)
                                          : kBits < 8 ? Widening::Double
                                                      : Widening::None;

    template <bool kExact>
    HWY_INLINE static Pixel16 Decode(uint32_t word, const ReadContext&)
    {
        if constexpr (kBits == 8)
            return GrayPixel(WidenByte<kExact>(word));
        return GrayPixel(word * (65535u / ((1u << kBits) - 1)));
    }
    HWY_INLINE static uint32_t Encode(const Pixel16& p, const WriteContext& context)
    {
        if constexpr (kBits == 1)
            return ColourSum(p) >= kHalfOfColours;
        return EncodeGray(ColourMean(p), context);
    }
    // The same of a pixel whose colours are alike.
    HWY_INLINE static uint32_t EncodeGray(uint32_t value, const WriteContext&)
    {
        if constexpr (kBits == 1)
            return 3 * value >= kHalfOfColours;
        return value >> (16 - kBits);
    }

private:
    static constexpr uint32_t kHalfOfColours = 0x17FFF; // three colours of one half sum to 98,303.5
};

struct GrayFloatCodec
{
    static constexpr Shape kShape = Shape::Gray;

    template <bool kExact>
    HWY_INLINE static Pixel16 Decode(uint32_t word, const ReadContext& context)
    {
        float x;
        std::memcpy(&x, &word, sizeof(x));
        return GrayPixel(WordOfFloat(x, context));
    }
    HWY_INLINE static uint32_t Encode(const Pixel16& p, const WriteContext& context)
    {
        return EncodeGray(ColourMean(p), context);
    }
    HWY_INLINE static uint32_t EncodeGray(uint32_t value, const WriteContext& context)
    {
        const float x = FloatOfWord(value, context);
        uint32_t word;
        std::memcpy(&word, &x, sizeof(word));
        return word;
    }
};

// A table entry as it stands in memory: blue in the low byte.
HWY_INLINE uint32_t EntryOf(uint32_t index, const ReadContext& context)
{
    uint32_t entry;
    std::memcpy(&entry, context.palette + 4 * index, sizeof(entry));
    return entry;
}

// Entries are 8-bit channels that are never read exactly: 255 is 65280.
struct PaletteCodec : OpaqueBytes<PaletteCodec>
{
    static constexpr Shape kShape = Shape::Palette;
    static constexpr bool kTakesHighBytes = true;
    template <bool>
    static constexpr Widening kWidening = Widening::Shift;

    template <bool kExact>
    HWY_INLINE static uint16_t DecodeByte(uint32_t c)
    {
        return WidenByte<false>(c);
    }
    HWY_INLINE static Pixel16 DecodeEntry(uint32_t entry) { return DecodeBytes<false>(entry); }
    HWY_INLINE static uint16_t CellOf(const Pixel16& p)
    {
        return uint16_t((p.red >> 11) * 1024 + (p.green >> 11) * 32 + (p.blue >> 11));
    }
    template <bool kExact>
    HWY_INLINE static Pixel16 Decode(uint32_t index, const ReadContext& context)
    {
        return DecodeEntry(EntryOf(index, context));
    }
    HWY_INLINE static uint32_t Encode(const Pixel16& p, const WriteContext& context)
    {
        return context.map[CellOf(p)];
    }
};

HWY_INLINE Pixel8 PixelOfBytes(uint32_t bytes)
{
    Pixel8 pixel;
    std::memcpy(&pixel, &bytes, sizeof(pixel));
    return pixel;
}

HWY_INLINE uint32_t BytesOfPixel(const Pixel8& pixel)
{
    uint32_t bytes;
    std::memcpy(&bytes, &pixel, sizeof(bytes));
    return bytes;
}

constexpr uint32_t kOpaqueBytes = 0xFF000000;

struct Palette8Codec
{
    static constexpr Shape kShape = Shape::Palette;

    HWY_INLINE static Pixel8 DecodeEntry(uint32_t entry) { return PixelOfBytes(entry | kOpaqueBytes); }
    HWY_INLINE static uint16_t CellOf(const Pixel8& p)
    {
        const uint32_t bytes = BytesOfPixel(p);
        return uint16_t(((bytes >> 9) & 0x7C00) | ((bytes >> 6) & 0x3E0) | ((bytes >> 3) & 0x1F));
    }
    template <bool kExact>
    HWY_INLINE static Pixel8 Decode(uint32_t index, const ReadContext& context)
    {
        return DecodeEntry(EntryOf(index, context));
    }
    HWY_INLINE static uint32_t Encode(const Pixel8& p, const WriteContext& context)
    {
        return context.map[CellOf(p)];
    }
};

struct Rgb555Codec
{
    static constexpr Shape kShape = Shape::Word;
    static constexpr bool kTakesHighBytes = true;
    template <bool>
    static constexpr Widening kWidening = Widening::Shift;

    template <bool kExact>
    HWY_INLINE static Pixel16 Decode(uint16_t p, const ReadContext&)
    {
        return {uint16_t(p << 11), uint16_t((p >> 5) << 11), uint16_t((p & 0xFC00) << 1), 0xFFFF};
    }
    HWY_INLINE static uint16_t Encode(const Pixel16& p, const WriteContext&)
    {
        return uint16_t(((p.red >> 1) & 0x7C00) | ((p.green >> 6) & 0x3E0) | (p.blue >> 11));
    }
};

struct Rgb565Codec
{
    static constexpr Shape kShape = Shape::Word;
    static constexpr bool kTakesHighBytes = true;
    template <bool>
    static constexpr Widening kWidening = Widening::Shift;

    template <bool kExact>
    HWY_INLINE static Pixel16 Decode(uint16_t p, const ReadContext&)
    {
        return {uint16_t(p << 11), uint16_t((p >> 5) << 10), uint16_t(p & 0xF800), 0xFFFF};
    }
    HWY_INLINE static uint16_t Encode(const Pixel16& p, const WriteContext&)
    {
        return uint16_t((p.red & 0xF800) | ((p.green >> 5) & 0x7E0) | (p.blue >> 11));
    }
};

// A word of two halves, so that vectors work on 16 bits up to here.
HWY_INLINE uint32_t WordOfHalves(int32_t low, int32_t high)
{
    return uint16_t(low) | uint32_t(uint16_t(high)) << 16;
}

struct Rgb101010Codec
{
    static constexpr Shape kShape = Shape::Word;

    template <bool kExact>
    HWY_INLINE static Pixel16 Decode(uint32_t p, const ReadContext&)
    {
        return {uint16_t(p << 6), uint16_t((p >> 4) & 0xFFC0), uint16_t((p >> 20) << 6),
                uint16_t((p >> 30) * (65535 / 3))};
    }
    HWY_INLINE static uint32_t Encode(const Pixel16& p, const WriteContext&)
    {
        return WordOfHalves(p.blue >> 6 | (p.green << 4 & 0xFC00),
                            p.green >> 12 | (p.red >> 2 & 0x3FF0) | (p.alpha & 0xC000));
    }
};

// Blue, green and red bytes.
struct Bytes3Codec : OpaqueBytes<Bytes3Codec>
{
    static constexpr Shape kShape = Shape::Word;
    static constexpr bool kTakesHighBytes = true;
    template <bool kExact>
    static constexpr Widening kWidening = WideningOfBytes(kExact);

    template <bool kExact>
    HWY_INLINE static uint16_t DecodeByte(uint32_t c)
    {
        return WidenByte<kExact>(c);
    }
    template <bool kExact>
    HWY_INLINE static Pixel16 Decode(uint32_t p, const ReadContext&)
    {
        return DecodeBytes<kExact>(p);
    }
    HWY_INLINE static uint32_t Encode(const Pixel16& p, const WriteContext&)
    {
        return WordOfHalves(p.blue >> 8 | (p.green & 0xFF00), p.red >> 8);
    }
};

struct Bytes3At8Codec
{
    static constexpr Shape kShape = Shape::Word;

    template <bool kExact>
    HWY_INLINE static Pixel8 Decode(uint32_t p, const ReadContext&)
    {
        return PixelOfBytes(p | kOpaqueBytes);
    }
    HWY_INLINE static uint32_t Encode(const Pixel8& p, const WriteContext&)
    {
        return BytesOfPixel(p); // alpha is not stored
    }
};

// Blue, green, red and alpha bytes, as a word.
struct Bytes4Word
{
    template <bool kExact>
    HWY_INLINE static Pixel16 Decode(uint32_t p, const ReadContext& context)
    {
        Pixel16 pixel = Bytes3Codec::Decode<kExact>(p, context);
        pixel.alpha = WidenByte<kExact>(p >> 24);
        return pixel;
    }
    HWY_INLINE static uint32_t Encode(const Pixel16& p, const WriteContext&)
    {
        return WordOfHalves(p.blue >> 8 | (p.green & 0xFF00), p.red >> 8 | (p.alpha & 0xFF00));
    }
};

// Four channels of a kind, alpha like the colours.
template <class TheElement, class Form>
struct ChannelsCodec : Form
{
    static constexpr Shape kShape = Shape::Channels;
    using Element = TheElement;

    template <bool kExact>
    HWY_INLINE static Pixel16 Decode(const Pixel<Element>& p, const ReadContext& context)
    {
        return {Form::template DecodeElement<kExact>(p.blue, context),
                Form::template DecodeElement<kExact>(p.green, context),
                Form::template DecodeElement<kExact>(p.red, context),
                Form::template DecodeElement<kExact>(p.alpha, context)};
    }
    HWY_INLINE static Pixel<Element> Encode(const Pixel16& p, const WriteContext& context)
    {
        return {Form::EncodeElement(p.blue, context), Form::EncodeElement(p.green, context),
                Form::EncodeElement(p.red, context), Form::EncodeElement(p.alpha, context)};
    }
};

struct ByteElement
{
    static constexpr bool kTakesHighBytes = true;
    template <bool kExact>
    static constexpr Widening kWidening = WideningOfBytes(kExact);

    template <bool kExact>
    HWY_INLINE static uint16_t DecodeElement(uint8_t c, const ReadContext&)
    {
        return WidenByte<kExact>(c);
    }
    HWY_INLINE static uint8_t EncodeElement(uint16_t c, const WriteContext&) { return uint8_t(c >> 8); }
};
using Bytes4Codec = ChannelsCodec<uint8_t, ByteElement>;

struct FloatElement
{
    template <bool kExact>
    HWY_INLINE static uint16_t DecodeElement(float c, const ReadContext& context)
    {
        return WordOfFloat(c, context);
    }
    HWY_INLINE static float EncodeElement(uint16_t c, const WriteContext& context)
    {
        return FloatOfWord(c, context);
    }
};
using FloatsCodec = ChannelsCodec<float, FloatElement>;

template <class Working>
struct SameCodec
{
    static constexpr Shape kShape = Shape::Same;

    template <bool kExact>
    HWY_INLINE static Working Decode(const Working& p, const ReadContext&)
    {
        return p;
    }
    HWY_INLINE static Working Encode(const Working& p, const WriteContext&) { return p; }
};

template <int32_t kPixelType, class Form, class TheWord = uint32_t, class TheChannel = uint16_t>
struct CodecOf : Form
{
    static constexpr int32_t kType = kPixelType;
    static constexpr int32_t kBits = PixelTypeInfoOf(kPixelType).bits;
    static constexpr bool kIsFloat = kPixelType == VXPIXEL_GRAY32 || kPixelType == VXPIXEL_RGBA128;
    static constexpr bool kHasAlpha = kPixelType >= VXPIXEL_RGB32; // from there on all have
    using Channel = TheChannel;
    using Working = Pixel<Channel>;
    using Word = TheWord;
    using Place = Memory<kBits, Word>;
    static_assert(kBits < 16 || kBits == 24 || kBits == 8 * sizeof(Word));

    template <bool kExact>
    HWY_INLINE static Working Load(const uint8_t* p, uint32_t bit, const ReadContext& context)
    {
        return Form::template Decode<kExact>(Place::Load(p, bit), context);
    }
    HWY_INLINE static void Store(uint8_t* p, uint32_t bit, const Working& pixel, const WriteContext& context)
    {
        Place::Store(p, bit, Word(Form::Encode(pixel, context)));
    }
};

template <int32_t kType, class Channel>
struct Codec; // of no pair that the exchange does not have

// clang-format off
template <> struct Codec<VXPIXEL_PAL1, uint16_t> : CodecOf<VXPIXEL_PAL1, GrayCodec<1>> {}; // without its table
template <> struct Codec<VXPIXEL_GRAY1, uint16_t> : CodecOf<VXPIXEL_GRAY1, GrayCodec<1>> {};
template <> struct Codec<VXPIXEL_GRAY2, uint16_t> : CodecOf<VXPIXEL_GRAY2, GrayCodec<2>> {};
template <> struct Codec<VXPIXEL_GRAY4, uint16_t> : CodecOf<VXPIXEL_GRAY4, GrayCodec<4>> {};
template <> struct Codec<VXPIXEL_GRAY8, uint16_t> : CodecOf<VXPIXEL_GRAY8, GrayCodec<8>> {};
template <> struct Codec<VXPIXEL_GRAY16, uint16_t> : CodecOf<VXPIXEL_GRAY16, GrayCodec<16>, uint16_t> {};
template <> struct Codec<VXPIXEL_GRAY32, uint16_t> : CodecOf<VXPIXEL_GRAY32, GrayFloatCodec> {};
template <> struct Codec<VXPIXEL_PAL4, uint16_t> : CodecOf<VXPIXEL_PAL4, PaletteCodec> {};
template <> struct Codec<VXPIXEL_PAL8, uint16_t> : CodecOf<VXPIXEL_PAL8, PaletteCodec> {};
template <> struct Codec<VXPIXEL_RGB555, uint16_t> : CodecOf<VXPIXEL_RGB555, Rgb555Codec, uint16_t> {};
template <> struct Codec<VXPIXEL_RGB565, uint16_t> : CodecOf<VXPIXEL_RGB565, Rgb565Codec, uint16_t> {};
template <> struct Codec<VXPIXEL_RGB24, uint16_t> : CodecOf<VXPIXEL_RGB24, Bytes3Codec> {};
template <> struct Codec<VXPIXEL_RGB32, uint16_t> : CodecOf<VXPIXEL_RGB32, Bytes4Codec, Pixel8> {};
template <> struct Codec<VXPIXEL_RGBA32, uint16_t> : CodecOf<VXPIXEL_RGBA32, Bytes4Codec, Pixel8> {};
template <> struct Codec<VXPIXEL_RGB101010, uint16_t> : CodecOf<VXPIXEL_RGB101010, Rgb101010Codec> {};
template <> struct Codec<VXPIXEL_RGBA64, uint16_t> : CodecOf<VXPIXEL_RGBA64, SameCodec<Pixel16>, Pixel16> {};
template <> struct Codec<VXPIXEL_RGBA128, uint16_t> : CodecOf<VXPIXEL_RGBA128, FloatsCodec, PixelFloat> {};

template <> struct Codec<VXPIXEL_PAL8, uint8_t> : CodecOf<VXPIXEL_PAL8, Palette8Codec, uint32_t, uint8_t> {};
template <> struct Codec<VXPIXEL_RGB24, uint8_t> : CodecOf<VXPIXEL_RGB24, Bytes3At8Codec, uint32_t, uint8_t> {};
template <> struct Codec<VXPIXEL_RGB32, uint8_t> : CodecOf<VXPIXEL_RGB32, SameCodec<Pixel8>, Pixel8, uint8_t> {};
template <> struct Codec<VXPIXEL_RGBA32, uint8_t> : CodecOf<VXPIXEL_RGBA32, SameCodec<Pixel8>, Pixel8, uint8_t> {};

template <> struct Codec<VXPIXEL_RGBA128, float>
    : CodecOf<VXPIXEL_RGBA128, SameCodec<PixelFloat>, PixelFloat, float> {};
// clang-format on

// Kernels stand in six rows: two a depth, the second of them with VXXCHGF_INTERPOLATE.
constexpr int32_t kKernelRows = 6;
constexpr int32_t kFirstType = VXPIXEL_PAL1;
constexpr int32_t kLastType = VXPIXEL_RGBA128;
constexpr int32_t kTypes = kLastType - kFirstType + 1;

constexpr bool IsExchangeType(int32_t type)
{
    return type >= kFirstType && type <= kLastType;
}

constexpr bool HasDepth8(int32_t type)
{
    return type == VXPIXEL_PAL8 || type == VXPIXEL_RGB24 || type == VXPIXEL_RGB32 || type == VXPIXEL_RGBA32;
}

constexpr bool HasDepthFloat(int32_t type)
{
    return type == VXPIXEL_RGBA128;
}

constexpr int32_t DepthOfRow(int32_t row)
{
    constexpr int32_t kDepths[] = {VXXCHG_DEPTH_16, VXXCHG_DEPTH_8, VXXCHG_DEPTH_FLOAT};
    return kDepths[row / 2];
}

constexpr int32_t KernelRow(int32_t depth, uint32_t flags)
{
    constexpr int32_t kFirstRows[] = {2, 0, 4};
    return kFirstRows[depth] + ((flags & VXXCHGF_INTERPOLATE) ? 1 : 0);
}

constexpr bool RowServes(int32_t row, int32_t type)
{
    const int32_t depth = DepthOfRow(row);
    return depth == VXXCHG_DEPTH_16 || (depth == VXXCHG_DEPTH_8 ? HasDepth8(type) : HasDepthFloat(type));
}

template <int32_t kRow>
using ChannelOfRow =
    std::conditional_t<DepthOfRow(kRow) == VXXCHG_DEPTH_16, uint16_t,
                       std::conditional_t<DepthOfRow(kRow) == VXXCHG_DEPTH_8, uint8_t, float>>;

} // namespace vx
