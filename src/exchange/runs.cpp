// Runs of pixels: the codecs in loops, compiled for each vector target.
//
// A run is read in blocks, in steps that vectors do well: words out of memory, channels out of words
// into planes, working pixels out of planes. Written it goes the other way.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "exchange/runs.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#ifndef VX_RUNS_PLAIN
#define VX_RUNS_PLAIN

#include "exchange/filter.h"
#include "exchange/rows.h"
#include "kernel/vector_targets.h"

#include <algorithm>
#include <array>
#include <utility>

namespace vx {
namespace {

constexpr int32_t kBlock = 64; // pixels; a multiple of what any vector holds

struct Planes
{
    alignas(64) uint16_t blue[kBlock], green[kBlock], red[kBlock], alpha[kBlock];
};

// The steps that no compiler makes vectors of. Where a step takes n pixels, n is at most kBlock, and
// only those n are read and written.
struct PlainSteps
{
    HWY_INLINE static void Interleave(Pixel16* out, const Planes& planes, int32_t first, int32_t n)
    {
        for (int32_t i = first; i < n; ++i)
            out[i] = {planes.blue[i], planes.green[i], planes.red[i], planes.alpha[i]};
    }
    HWY_INLINE static void InterleaveGray(Pixel16* out, const uint16_t* gray, int32_t first, int32_t n)
    {
        for (int32_t i = first; i < n; ++i)
            out[i] = GrayPixel(gray[i]);
    }
    HWY_INLINE static void Load24(uint32_t* words, const uint8_t* p, int32_t first, int32_t n)
    {
        for (int32_t i = first; i < n; ++i)
            words[i] = Memory<24, uint32_t>::Load(p + 3 * i, 0);
    }
};

// n words of a block, whose first begins a byte; palette types give the entries.
template <class TheCodec, class Steps, class Word>
HWY_INLINE void LoadWords(Word* __restrict words, const uint8_t* __restrict p, int32_t n,
                          const ReadContext& context)
{
    constexpr int32_t kBits = TheCodec::kBits;
    if constexpr (kBits < 8) {
        constexpr int32_t kInByte = 8 / kBits;
        for (int32_t i = 0; i < n / kInByte; ++i)
            for (int32_t k = 0; k < kInByte; ++k)
                words[i * kInByte + k] = TheCodec::Place::Load(p + i, uint32_t(k * kBits));
        for (int32_t i = n / kInByte * kInByte; i < n; ++i)
            words[i] = TheCodec::Place::Load(p + n / kInByte, uint32_t(i % kInByte * kBits));
    } else if constexpr (kBits == 24) {
        Steps::Load24(words, p, 0, n);
    } else {
        for (int32_t i = 0; i < n; ++i)
            words[i] = TheCodec::Place::Load(p + i * (kBits / 8), 0);
    }
    if constexpr (TheCodec::kShape == Shape::Palette)
        for (int32_t i = 0; i < n; ++i)
            words[i] = EntryOf(words[i], context);
}

template <class TheCodec, bool kExact, class Word>
HWY_INLINE typename TheCodec::Working DecodeWord(const Word& word, const ReadContext& context)
{
    if constexpr (TheCodec::kShape == Shape::Palette)
        return TheCodec::DecodeEntry(word);
    else
        return TheCodec::template Decode<kExact>(word, context);
}

template <class TheCodec, bool kExact, class Steps>
HWY_INLINE void ReadBlock(typename TheCodec::Working* __restrict out, const uint8_t* __restrict p, int32_t n,
                          const ReadContext& context)
{
    alignas(64) typename TheCodec::Word words[kBlock];
    LoadWords<TheCodec, Steps>(words, p, n, context);
    if constexpr (std::is_same_v<typename TheCodec::Working, Pixel8>) {
        for (int32_t i = 0; i < n; ++i) {
            const Pixel8 pixel = DecodeWord<TheCodec, kExact>(words[i], context);
            std::memcpy(out + i, &pixel, sizeof(pixel));
        }
    } else if constexpr (TheCodec::kShape == Shape::Gray) {
        alignas(64) uint16_t gray[kBlock];
        for (int32_t i = 0; i < n; ++i)
            gray[i] = DecodeWord<TheCodec, kExact>(words[i], context).blue;
        Steps::InterleaveGray(out, gray, 0, n);
    } else {
        Planes planes;
        for (int32_t i = 0; i < n; ++i) {
            const Pixel16 pixel = DecodeWord<TheCodec, kExact>(words[i], context);
            planes.blue[i] = pixel.blue;
            planes.green[i] = pixel.green;
            planes.red[i] = pixel.red;
            planes.alpha[i] = pixel.alpha;
        }
        Steps::Interleave(out, planes, 0, n);
    }
}

template <class TheCodec, bool kExact, class Steps>
HWY_INLINE void ReadAligned(typename TheCodec::Working* __restrict out, const uint8_t* __restrict p,
                            int32_t count, const ReadContext& context)
{
    if constexpr (TheCodec::kShape == Shape::Same) {
        std::memcpy(out, p, size_t(count) * sizeof(*out));
    } else if constexpr (TheCodec::kShape == Shape::Channels) {
        using Element = typename TheCodec::Element;
        auto* const channels = reinterpret_cast<uint16_t*>(out);
        for (int32_t i = 0; i < 4 * count; ++i) {
            Element element;
            std::memcpy(&element, p + size_t(i) * sizeof(element), sizeof(element));
            channels[i] = TheCodec::template DecodeElement<kExact>(element, context);
        }
    } else {
        for (int32_t i = 0; i < count; i += kBlock)
            ReadBlock<TheCodec, kExact, Steps>(out + i, p + int64_t(i) * TheCodec::kBits / 8,
                                               std::min(kBlock, count - i), context);
    }
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
    ReadContext context = ReadContextOf(x);
    const uint8_t* p = row + bit / 8;
    if constexpr (TheCodec::kBits < 8) {
        const int32_t head = HeadPixels<TheCodec::kBits>(bit, count);
        for (int32_t i = 0; i < head; ++i)
            *out++ = TheCodec::template Load<kExact>(p, uint32_t(bit % 8 + i * TheCodec::kBits), context);
        p += bit % 8 != 0;
        count -= head;
    }
    // Two loops, of which the one without a curve has no call in it.
    if (TheCodec::kIsFloat && context.curve) {
        ReadAligned<TheCodec, kExact, Steps>(out, p, count, context);
    } else {
        context.curve = nullptr;
        ReadAligned<TheCodec, kExact, Steps>(out, p, count, context);
    }
}

// Words of n pixels of a block; palette types give indices.
template <class TheCodec, class Word>
HWY_INLINE void EncodeWords(Word* __restrict words, const typename TheCodec::Working* __restrict in,
                            int32_t n, const WriteContext& context)
{
    if constexpr (TheCodec::kShape == Shape::Palette) {
        alignas(64) uint16_t cells[kBlock];
        for (int32_t i = 0; i < n; ++i)
            cells[i] = TheCodec::CellOf(in[i]);
        for (int32_t i = 0; i < n; ++i)
            words[i] = context.map[cells[i]];
    } else {
        for (int32_t i = 0; i < n; ++i)
            words[i] = Word(TheCodec::Encode(in[i], context));
    }
}

// n words below a byte, from the start of a byte on; a byte that they do not fill keeps its rest.
template <class Place, int32_t kBits>
HWY_INLINE void PackWords(uint8_t* __restrict p, const uint8_t* __restrict words, int32_t n)
{
    constexpr int32_t kInByte = 8 / kBits;
    for (int32_t i = 0; i < n / kInByte; ++i) {
        uint32_t byte = 0;
        for (int32_t k = 0; k < kInByte; ++k)
            byte |= (words[i * kInByte + k] & Place::kMask) << Place::Shift(uint32_t(k * kBits));
        p[i] = uint8_t(byte);
    }
    for (int32_t i = n / kInByte * kInByte; i < n; ++i)
        Place::Store(p + n / kInByte, uint32_t(i % kInByte * kBits), words[i]);
}

template <class TheCodec>
HWY_INLINE void WriteAligned(uint8_t* __restrict p, const typename TheCodec::Working* __restrict in,
                             int32_t count, const WriteContext& context)
{
    constexpr int32_t kBits = TheCodec::kBits;
    if constexpr (TheCodec::kShape == Shape::Same) {
        std::memcpy(p, in, size_t(count) * sizeof(*in));
    } else if constexpr (TheCodec::kShape == Shape::Channels) {
        using Element = typename TheCodec::Element;
        const auto* const channels = reinterpret_cast<const uint16_t*>(in);
        for (int32_t i = 0; i < 4 * count; ++i) {
            const Element element = TheCodec::EncodeElement(channels[i], context);
            std::memcpy(p + size_t(i) * sizeof(element), &element, sizeof(element));
        }
    } else if constexpr (kBits <= 8) {
        for (int32_t i = 0; i < count; i += kBlock) {
            alignas(64) uint8_t words[kBlock];
            const int32_t n = std::min(kBlock, count - i);
            EncodeWords<TheCodec>(words, in + i, n, context);
            PackWords<typename TheCodec::Place, kBits>(p + int64_t(i) * kBits / 8, words, n);
        }
    } else {
        for (int32_t i = 0; i < count; ++i)
            TheCodec::Store(p + int64_t(i) * (kBits / 8), 0, in[i], context);
    }
}

template <class TheCodec>
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
    if (TheCodec::kIsFloat && context.curve) {
        WriteAligned<TheCodec>(p, in, count, context);
    } else {
        context.curve = nullptr;
        WriteAligned<TheCodec>(p, in, count, context);
    }
}

// The run kernels of all rows and types in one form; null where a row does not serve the type.
struct RunTable
{
    std::array<std::array<ReadRunFn, kTypes>, kKernelRows> read{};
    std::array<std::array<WriteRunFn, kTypes>, kKernelRows> write{};
};

// Kernels has Read<codec, exact> and Write<codec>.
template <class Kernels, int32_t kRow, int32_t kType>
constexpr void EnterRuns(RunTable& table)
{
    if constexpr (RowServes(kRow, kType)) {
        using TheCodec = Codec<kType, ChannelOfRow<kRow>>;
        table.read[kRow][kType - kFirstType] = Kernels::template Read<TheCodec, kRow % 2 == 1>;
        table.write[kRow][kType - kFirstType] = Kernels::template Write<TheCodec>;
    }
}

template <class Kernels, int32_t... kIndex>
constexpr RunTable MakeRunTable(std::integer_sequence<int32_t, kIndex...>)
{
    RunTable table;
    (EnterRuns<Kernels, kIndex / kTypes, kFirstType + kIndex % kTypes>(table), ...);
    return table;
}

template <class Kernels>
constexpr RunTable
    kRunTable = MakeRunTable<Kernels>(std::make_integer_sequence<int32_t, kKernelRows * kTypes>());

struct PlainKernels
{
    template <class TheCodec, bool kExact>
    static void Read(void* pixels, const uint8_t* row, int64_t bit, int32_t count, const tVXXCHG& x)
    {
        ReadRun<TheCodec, kExact, PlainSteps>(pixels, row, bit, count, x);
    }
    template <class TheCodec>
    static void Write(uint8_t* row, int64_t bit, const void* pixels, int32_t count, const tVXXCHG& x)
    {
        WriteRun<TheCodec>(row, bit, pixels, count, x);
    }
};

const RunTable* PlainRuns()
{
    return &kRunTable<PlainKernels>;
}

} // namespace
} // namespace vx

#endif // VX_RUNS_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// Not inlined by force: what calls them is compiled for this target only once it is inlined itself.
struct VectorSteps
{
    static void Interleave(Pixel16* out, const Planes& planes, int32_t, int32_t n)
    {
        const hn::ScalableTag<uint16_t> lanes;
        const int32_t step = int32_t(hn::Lanes(lanes));
        int32_t i = 0;
        for (; i + step <= n; i += step)
            hn::StoreInterleaved4(hn::Load(lanes, planes.blue + i), hn::Load(lanes, planes.green + i),
                                  hn::Load(lanes, planes.red + i), hn::Load(lanes, planes.alpha + i), lanes,
                                  reinterpret_cast<uint16_t*>(out + i));
        PlainSteps::Interleave(out, planes, i, n);
    }
    static void InterleaveGray(Pixel16* out, const uint16_t* gray, int32_t, int32_t n)
    {
        const hn::ScalableTag<uint16_t> lanes;
        const int32_t step = int32_t(hn::Lanes(lanes));
        const auto opaque = hn::Set(lanes, uint16_t(0xFFFF));
        int32_t i = 0;
        for (; i + step <= n; i += step) {
            const auto g = hn::Load(lanes, gray + i);
            hn::StoreInterleaved4(g, g, g, opaque, lanes, reinterpret_cast<uint16_t*>(out + i));
        }
        PlainSteps::InterleaveGray(out, gray, i, n);
    }
    // Four pixels of 12 bytes by one shuffle of 16, of which the last 4 belong to the next pixels: the
    // last pixels of a block are loaded one by one.
    static void Load24(uint32_t* words, const uint8_t* p, int32_t, int32_t n)
    {
        const hn::Full128<uint8_t> bytes;
        alignas(16) static constexpr uint8_t kSpread[16] = {0, 1, 2, 0x80, 3, 4,  5,  0x80,
                                                            6, 7, 8, 0x80, 9, 10, 11, 0x80};
        const auto spread = hn::Load(bytes, kSpread);
        int32_t i = 0;
        for (; i + 6 <= n; i += 4) {
            const auto packed = hn::LoadU(bytes, p + 3 * i);
            hn::StoreU(hn::TableLookupBytesOr0(packed, spread), bytes, reinterpret_cast<uint8_t*>(words + i));
        }
        PlainSteps::Load24(words, p, i, n);
    }
};

struct VectorKernels
{
    template <class TheCodec, bool kExact>
    static void Read(void* pixels, const uint8_t* row, int64_t bit, int32_t count, const tVXXCHG& x)
    {
        ReadRun<TheCodec, kExact, VectorSteps>(pixels, row, bit, count, x);
    }
    template <class TheCodec>
    static void Write(uint8_t* row, int64_t bit, const void* pixels, int32_t count, const tVXXCHG& x)
    {
        WriteRun<TheCodec>(row, bit, pixels, count, x);
    }
};

const RunTable* VectorRuns()
{
    return &kRunTable<VectorKernels>;
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
namespace {

// Pixels of a scaled run are far apart, so that one form serves all processors.
template <class TheCodec, bool kInterpolate>
void SampleRun(void* pixels, const SampleRow& from, int32_t count, const tVXXCHG& x)
{
    using Working = typename TheCodec::Working;
    auto* const out = static_cast<Working*>(pixels);
    const ReadContext context = ReadContextOf(x);
    int64_t position = from.position;
    for (int32_t i = 0; i < count; ++i, position += from.step) {
        const int64_t column = std::min(position / kOnePixel, from.last);
        const int64_t bit = from.bit + column * TheCodec::kBits;
        const uint8_t* const p = from.row + bit / 8;
        const uint32_t inByte = uint32_t(bit % 8);
        if constexpr (!kInterpolate)
            out[i] = TheCodec::template Load<false>(p, inByte, context);
        else if (column == from.last)
            out[i] = LoadLine<TheCodec>(p, inByte, from.rowOffset, from.fractionY, context);
        else
            out[i] = LoadFiltered<TheCodec>(p, inByte, from.rowOffset, uint32_t(position % kOnePixel),
                                            from.fractionY, context);
    }
}

using SampleTable = std::array<std::array<SampleRunFn, kTypes>, kKernelRows>;

template <int32_t kRow, int32_t kType>
constexpr void EnterSample(SampleTable& table)
{
    if constexpr (RowServes(kRow, kType))
        table[kRow][kType - kFirstType] = SampleRun<Codec<kType, ChannelOfRow<kRow>>, kRow % 2 == 1>;
}

template <int32_t... kIndex>
constexpr SampleTable MakeSampleTable(std::integer_sequence<int32_t, kIndex...>)
{
    SampleTable table{};
    (EnterSample<kIndex / kTypes, kFirstType + kIndex % kTypes>(table), ...);
    return table;
}

constexpr SampleTable kSamples = MakeSampleTable(std::make_integer_sequence<int32_t, kKernelRows * kTypes>());

} // namespace

HWY_EXPORT(VectorRuns);

RunKernels SelectRuns(const tVXXCHG& record)
{
    const RunTable& runs = *VX_VECTOR_FORM(VectorRuns, PlainRuns)();
    const size_t row = size_t(KernelRow(record.depth, record.flags));
    const size_t source = size_t(record.sourceType - kFirstType), dest = size_t(record.destType - kFirstType);
    return {runs.read[row][source], kSamples[row][source], runs.write[row][dest]};
}

} // namespace vx

#endif // HWY_ONCE
