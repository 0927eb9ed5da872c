// Runs of pixels: the codecs in loops, compiled for each vector target, and the choice among them.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "exchange/runs.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#ifndef VX_RUNS_PLAIN
#define VX_RUNS_PLAIN

#include "exchange/filter.h"
#include "exchange/rows.h"
#include "exchange/run_steps.h"
#include "kernel/vector_targets.h"

#include <utility>

namespace vx {
namespace {

// The run kernels of all rows and types in one form; null where a row does not serve the type.
struct RunTable
{
    std::array<std::array<ReadRunFn, kTypes>, kKernelRows> read{};
    std::array<std::array<WriteRunFn, kTypes>, kKernelRows> write{};
    std::array<std::array<ReadPlanesFn, kTypes>, kKernelRows> readPlanes{};
    std::array<std::array<WritePlanesFn, kTypes>, kKernelRows> writePlanes{};
};

// Kernels has Read<codec, exact>, Write<codec> and the same for planes.
template <class Kernels, int32_t kRow, int32_t kType>
constexpr void EnterRuns(RunTable& table)
{
    if constexpr (RowServes(kRow, kType)) {
        using TheCodec = Codec<kType, ChannelOfRow<kRow>>;
        table.read[kRow][kType - kFirstType] = Kernels::template Read<TheCodec, kRow % 2 == 1>;
        table.write[kRow][kType - kFirstType] = Kernels::template Write<TheCodec>;
        if constexpr (kHasPlanes<TheCodec>) {
            table.readPlanes[kRow][kType - kFirstType] = Kernels::template ToPlanes<TheCodec, kRow % 2 == 1>;
            table.writePlanes[kRow][kType - kFirstType] = Kernels::template FromPlanes<TheCodec>;
        }
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
        WriteRun<TheCodec, PlainSteps>(row, bit, pixels, count, x);
    }
    template <class TheCodec, bool kExact>
    static void ToPlanes(RunPlanes& planes, const uint8_t* at, int32_t count, const tVXXCHG& x)
    {
        ReadPlanes<TheCodec, kExact, PlainSteps>(planes, at, count, x);
    }
    template <class TheCodec>
    static void FromPlanes(uint8_t* at, const RunPlanes& planes, int32_t count, const tVXXCHG& x)
    {
        WritePlanes<TheCodec, PlainSteps>(at, planes, count, x);
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

// At most 32 bytes: planes are written and read again at once, and a processor can hand on a load only
// what one store has written, which is no more where the compiler made the store.
using Lanes16 = hn::CappedTag<uint16_t, 16>;

// The steps of PlainSteps, which do what remains of a block. They begin at its first pixel.
struct VectorSteps
{
    static void Interleave(Pixel16* out, const RunPlanes& planes, int32_t, int32_t n)
    {
        const Lanes16 lanes;
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
        const Lanes16 lanes;
        const int32_t step = int32_t(hn::Lanes(lanes));
        const auto opaque = hn::Set(lanes, uint16_t(0xFFFF));
        int32_t i = 0;
        for (; i + step <= n; i += step) {
            const auto g = hn::Load(lanes, gray + i);
            hn::StoreInterleaved4(g, g, g, opaque, lanes, reinterpret_cast<uint16_t*>(out + i));
        }
        PlainSteps::InterleaveGray(out, gray, i, n);
    }
    static void Separate(RunPlanes& planes, const Pixel16* in, int32_t, int32_t n)
    {
        const Lanes16 lanes;
        const int32_t step = int32_t(hn::Lanes(lanes));
        int32_t i = 0;
        for (; i + step <= n; i += step) {
            hn::Vec<decltype(lanes)> blue, green, red, alpha;
            hn::LoadInterleaved4(lanes, reinterpret_cast<const uint16_t*>(in + i), blue, green, red, alpha);
            hn::Store(blue, lanes, planes.blue + i);
            hn::Store(green, lanes, planes.green + i);
            hn::Store(red, lanes, planes.red + i);
            hn::Store(alpha, lanes, planes.alpha + i);
        }
        PlainSteps::Separate(planes, in, i, n);
    }
    // Four pixels of 12 bytes by one shuffle of 16, of which the last 4 are the next pixels': the last
    // pixels of a block go one by one.
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
    // Each store leaves 4 bytes of zeros behind its pixels, which the next ones overwrite.
    static void Store24(uint8_t* p, const uint32_t* words, int32_t, int32_t n)
    {
        const hn::Full128<uint8_t> bytes;
        alignas(16) static constexpr uint8_t kClose[16] = {0,  1,  2,  4,  5,    6,    8,    9,
                                                           10, 12, 13, 14, 0x80, 0x80, 0x80, 0x80};
        const auto close = hn::Load(bytes, kClose);
        int32_t i = 0;
        for (; i + 6 <= n; i += 4) {
            const auto spread = hn::Load(bytes, reinterpret_cast<const uint8_t*>(words + i));
            hn::StoreU(hn::TableLookupBytesOr0(spread, close), bytes, p + 3 * i);
        }
        PlainSteps::Store24(p, words, i, n);
    }
    static void WordsOfFloats(uint16_t* words, const uint8_t* floats, int32_t, int32_t n)
    {
        const hn::CappedTag<float, 8> lanes;
        const hn::Rebind<int32_t, decltype(lanes)> integers;
        const hn::Rebind<uint16_t, decltype(lanes)> halves;
        const int32_t step = int32_t(hn::Lanes(lanes));
        const auto one = hn::Set(lanes, 1.0f), scale = hn::Set(lanes, 65535.0f), half = hn::Set(lanes, 0.5f);
        int32_t i = 0;
        for (; i + step <= n; i += step) {
            const auto bytes = hn::LoadU(hn::Repartition<uint8_t, decltype(lanes)>(), floats + 4 * i);
            const auto x = hn::BitCast(lanes, bytes);
            const auto positive = hn::IfThenElseZero(hn::Gt(x, hn::Zero(lanes)), x);
            const auto held = hn::IfThenElse(hn::Lt(positive, one), positive, one);
            const auto word = hn::ConvertTo(integers, hn::Add(hn::Mul(held, scale), half));
            hn::StoreU(hn::DemoteTo(halves, word), halves, words + i);
        }
        PlainSteps::WordsOfFloats(words, floats, i, n);
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
        WriteRun<TheCodec, VectorSteps>(row, bit, pixels, count, x);
    }
    template <class TheCodec, bool kExact>
    static void ToPlanes(RunPlanes& planes, const uint8_t* at, int32_t count, const tVXXCHG& x)
    {
        ReadPlanes<TheCodec, kExact, VectorSteps>(planes, at, count, x);
    }
    template <class TheCodec>
    static void FromPlanes(uint8_t* at, const RunPlanes& planes, int32_t count, const tVXXCHG& x)
    {
        WritePlanes<TheCodec, VectorSteps>(at, planes, count, x);
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

template <int32_t... kIndex>
constexpr auto MakeWorkingTable(std::integer_sequence<int32_t, kIndex...>)
{
    std::array<std::array<bool, kTypes>, kKernelRows> table{};
    ((table[kIndex / kTypes][kIndex % kTypes] =
          [] {
              if constexpr (RowServes(kIndex / kTypes, kFirstType + kIndex % kTypes))
                  return Codec<kFirstType + kIndex % kTypes, ChannelOfRow<kIndex / kTypes>>::kShape ==
                         Shape::Same;
              return false;
          }()),
     ...);
    return table;
}

bool HoldsWorking(int32_t row, int32_t type)
{
    static constexpr auto kTable =
        MakeWorkingTable(std::make_integer_sequence<int32_t, kKernelRows * kTypes>());
    return kTable[size_t(row)][size_t(type - kFirstType)];
}

} // namespace

HWY_EXPORT(VectorRuns);

RunKernels SelectRuns(const tVXXCHG& record)
{
    const RunTable& runs = *VX_VECTOR_FORM(VectorRuns, PlainRuns)();
    const size_t row = size_t(KernelRow(record.depth, record.flags));
    const size_t source = size_t(record.sourceType - kFirstType), dest = size_t(record.destType - kFirstType);
    return {runs.read[row][source],
            kSamples[row][source],
            runs.write[row][dest],
            runs.readPlanes[row][source],
            runs.writePlanes[row][dest],
            HoldsWorking(int32_t(row), record.sourceType),
            HoldsWorking(int32_t(row), record.destType)};
}

} // namespace vx

#endif // HWY_ONCE
