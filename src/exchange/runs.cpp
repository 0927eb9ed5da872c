// Runs of pixels: the codecs in loops, compiled for each vector target, and the choice among them.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "exchange/runs.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#ifndef VX_RUNS_PLAIN
#define VX_RUNS_PLAIN

#include "exchange/filter.h"
#include "exchange/rows.h"
#include "exchange/run_bytes.h"
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
    std::array<ReadBytesFn, kTypes> readBytes{};
    std::array<std::array<WriteBytesFn, kTypes>, 2> writeBytes{}; // the second of bytes to be doubled
    std::array<std::array<ReadGrayFn, kTypes>, 2> readGray{};     // the second exact
    std::array<WriteGrayFn, kTypes> writeGray{};
};

// Kernels is KernelsBy the steps of a form.
template <class Kernels, int32_t kRow, int32_t kType>
constexpr void EnterRuns(RunTable& table)
{
    if constexpr (RowServes(kRow, kType)) {
        using TheCodec = Codec<kType, ChannelOfRow<kRow>>;
        table.read[kRow][kType - kFirstType] = Kernels::template Read<TheCodec, kRow % 2 == 1>;
        table.write[kRow][kType - kFirstType] = Kernels::template Write<TheCodec>;
    }
}

template <class Kernels, int32_t kType>
constexpr void EnterNarrowRuns(RunTable& table)
{
    using TheCodec = Codec<kType, uint16_t>;
    constexpr size_t kPlace = size_t(kType - kFirstType);
    if constexpr (kHasBytes<TheCodec>) {
        table.readBytes[kPlace] = Kernels::template ToBytes<TheCodec>;
        table.writeBytes[0][kPlace] = Kernels::template FromBytes<TheCodec, Widening::Shift>;
        table.writeBytes[1][kPlace] = Kernels::template FromBytes<TheCodec, Widening::Double>;
    }
    if constexpr (kHasGray<TheCodec>) {
        table.readGray[0][kPlace] = Kernels::template ToGray<TheCodec, false>;
        table.readGray[1][kPlace] = Kernels::template ToGray<TheCodec, true>;
        table.writeGray[kPlace] = Kernels::template FromGray<TheCodec>;
    }
}

template <class Kernels, int32_t... kIndex, int32_t... kPlace>
constexpr RunTable MakeRunTable(std::integer_sequence<int32_t, kIndex...>,
                                std::integer_sequence<int32_t, kPlace...>)
{
    RunTable table;
    (EnterRuns<Kernels, kIndex / kTypes, kFirstType + kIndex % kTypes>(table), ...);
    (EnterNarrowRuns<Kernels, kFirstType + kPlace>(table), ...);
    return table;
}

template <class Kernels>
constexpr RunTable
    kRunTable = MakeRunTable<Kernels>(std::make_integer_sequence<int32_t, kKernelRows * kTypes>(),
                                      std::make_integer_sequence<int32_t, kTypes>());

#include "exchange/run_kernels-inl.h"

const RunTable* PlainRuns()
{
    return &kRunTable<KernelsBy<PlainSteps>>;
}

} // namespace
} // namespace vx

#endif // VX_RUNS_PLAIN

#include "exchange/pixels24-inl.h"

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
    static void Load24(uint32_t* words, const uint8_t* p, int32_t, int32_t n)
    {
        const auto put = [words](Vector8 pixels, int32_t i) HWY_ATTR {
            const auto opaque = hn::BitCast(Lanes8(), hn::Set(Lanes32(), kOpaqueBytes));
            hn::StoreU(hn::Or(pixels, opaque), Lanes8(), reinterpret_cast<uint8_t*>(words + i));
        };
        const int32_t i = ForPixels24(
            n, [=](int32_t at) HWY_ATTR { put(LoadPixels24(p + 3 * at), at); },
            [=](int32_t at) HWY_ATTR { put(LoadLastPixels24(p + 3 * at), at); });
        PlainSteps::Load24(words, p, i, n);
    }
    static void Store24(uint8_t* p, const uint32_t* words, int32_t, int32_t n)
    {
        const auto get = [words](int32_t i) HWY_ATTR {
            return hn::LoadU(Lanes8(), reinterpret_cast<const uint8_t*>(words + i));
        };
        const int32_t i = ForPixels24(
            n, [=](int32_t at) HWY_ATTR { StorePixels24(get(at), p + 3 * at); },
            [=](int32_t at) HWY_ATTR { StoreLastPixels24(get(at), p + 3 * at); });
        PlainSteps::Store24(p, words, i, n);
    }
    template <class TheCodec>
    static void BytesOfFields(uint32_t* out, const uint8_t* p, int32_t, int32_t n)
    {
        const Lanes32 lanes;
        const hn::Rebind<uint16_t, Lanes32> halves;
        constexpr bool k565 = TheCodec::kType == VXPIXEL_RGB565;
        constexpr int kGreenUp = k565 ? 5 : 6, kRedUp = k565 ? 8 : 9;
        const auto blue = hn::Set(lanes, 0xF8u), green = hn::Set(lanes, k565 ? 0xFC00u : 0xF800u),
                   red = hn::Set(lanes, 0xF80000u), opaque = hn::Set(lanes, kOpaqueBytes);
        int32_t i = 0;
        for (; i + kLanes32 <= n; i += kLanes32) {
            const auto word =
                hn::PromoteTo(lanes, hn::LoadU(halves, reinterpret_cast<const uint16_t*>(p) + i));
            const auto low =
                hn::Or(hn::And(hn::ShiftLeft<3>(word), blue), hn::And(hn::ShiftLeft<kGreenUp>(word), green));
            const auto high = hn::Or(hn::And(hn::ShiftLeft<kRedUp>(word), red), opaque);
            hn::StoreU(hn::Or(low, high), lanes, out + i);
        }
        PlainSteps::BytesOfFields<TheCodec>(out, p, i, n);
    }
    template <class TheCodec, Widening kWidening>
    static void FieldsOfBytes(uint8_t* p, const uint32_t* in, int32_t, int32_t n)
    {
        const Lanes32 lanes;
        int32_t i = 0;
        for (; i + kLanes32 <= n; i += kLanes32) {
            const auto word = hn::LoadU(lanes, in + i);
            if constexpr (TheCodec::kType == VXPIXEL_RGB101010)
                hn::StoreU(Tens<kWidening>(word), lanes, reinterpret_cast<uint32_t*>(p) + i);
            else
                hn::StoreU(hn::DemoteTo(hn::Rebind<uint16_t, Lanes32>(),
                                        hn::BitCast(hn::RebindToSigned<Lanes32>(), Fields<TheCodec>(word))),
                           hn::Rebind<uint16_t, Lanes32>(), reinterpret_cast<uint16_t*>(p) + i);
        }
        PlainSteps::FieldsOfBytes<TheCodec, kWidening>(p, in, i, n);
    }
    template <Widening kWidening>
    static void MeansOfBytes(uint16_t* means, const uint32_t* in, int32_t, int32_t n)
    {
        const Lanes32 lanes;
        const auto byte = hn::Set(lanes, 255u), thirds = hn::Set(lanes, kThirdOfBytes<kWidening>);
        int32_t i = 0;
        for (; i + kLanes32 <= n; i += kLanes32) {
            const auto word = hn::LoadU(lanes, in + i);
            const auto sum = hn::Add(hn::Add(hn::And(word, byte), hn::And(hn::ShiftRight<8>(word), byte)),
                                     hn::And(hn::ShiftRight<16>(word), byte));
            const auto mean = hn::ShiftRight<16>(hn::Mul(sum, thirds));
            hn::StoreU(hn::DemoteTo(hn::Rebind<uint16_t, Lanes32>(),
                                    hn::BitCast(hn::RebindToSigned<Lanes32>(), mean)),
                       hn::Rebind<uint16_t, Lanes32>(), means + i);
        }
        PlainSteps::MeansOfBytes<kWidening>(means, in, i, n);
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

private:
    using Lanes32 = hn::ScalableTag<uint32_t>;
    using Vector32 = hn::Vec<Lanes32>;
    static constexpr int32_t kLanes32 = int32_t(hn::MaxLanes(Lanes32()));

    template <class TheCodec>
    HWY_INLINE static Vector32 Fields(Vector32 word)
    {
        constexpr bool k565 = TheCodec::kType == VXPIXEL_RGB565;
        constexpr int kGreenDown = k565 ? 5 : 6, kRedDown = k565 ? 8 : 9;
        const Lanes32 lanes;
        const auto blue = hn::And(hn::ShiftRight<3>(word), hn::Set(lanes, 0x1Fu));
        const auto green = hn::And(hn::ShiftRight<kGreenDown>(word), hn::Set(lanes, k565 ? 0x7E0u : 0x3E0u));
        const auto red = hn::And(hn::ShiftRight<kRedDown>(word), hn::Set(lanes, k565 ? 0xF800u : 0x7C00u));
        return hn::Or(hn::Or(blue, green), red);
    }
    // Fields of ten bits, and two of alpha. Colours are widened to 16 bits by putting their byte behind itself or behind
    // a 0; of blue and red the factors leave ten of these.
    template <Widening kWidening>
    HWY_INLINE static Vector32 Tens(Vector32 word)
    {
        constexpr bool kTwice = kWidening == Widening::Double;
        constexpr uint8_t kNone = 0x80, kBlue = kTwice ? 0 : kNone, kGreen = kTwice ? 1 : kNone,
                          kRed = kTwice ? 2 : kNone;
        alignas(16) static constexpr uint8_t kBlueRed[16] = {kBlue,      0,  kRed,      2, kBlue + 4, 4,
                                                             kRed + 4,   6,  kBlue + 8, 8, kRed + 8,  10,
                                                             kBlue + 12, 12, kRed + 12, 14};
        alignas(16) static constexpr uint8_t kGreens[16] = {
            kGreen,     1, kNone, kNone, kGreen + 4,  5,  kNone, kNone,
            kGreen + 8, 9, kNone, kNone, kGreen + 12, 13, kNone, kNone};
        const Lanes32 lanes;
        const hn::Repartition<uint16_t, Lanes32> halves;
        const hn::Repartition<uint8_t, Lanes32> bytes;
        const auto wide = [&](const uint8_t* places) HWY_ATTR {
            return hn::TableLookupBytesOr0(hn::BitCast(bytes, word), hn::LoadDup128(bytes, places));
        };
        const auto factors = hn::BitCast(halves, hn::Set(lanes, 1u << 10 | 1u << 30));
        const auto blueRed = hn::BitCast(lanes, hn::MulHigh(hn::BitCast(halves, wide(kBlueRed)), factors));
        const auto green = hn::ShiftLeft<4>(hn::BitCast(lanes, wide(kGreens)));
        return hn::Or(
            hn::Or(hn::And(blueRed, hn::Set(lanes, 0x3FF003FFu)), hn::And(green, hn::Set(lanes, 0xFFC00u))),
            hn::And(word, hn::Set(lanes, 3u << 30)));
    }
};

#include "exchange/run_kernels-inl.h"

const RunTable* VectorRuns()
{
    return &kRunTable<KernelsBy<VectorSteps>>;
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

// What a copy may leave out, by type; the two widenings are without and with VXXCHGF_INTERPOLATE.
struct TypeTraits
{
    bool holdsBytes, takesHighBytes, runsLong;
    Widening widening[2];
};

template <int32_t kType>
constexpr TypeTraits TraitsOf()
{
    using TheCodec = Codec<kType, uint16_t>;
    return {kHoldsBytes<TheCodec>,
            TakesHighBytes<TheCodec>(),
            TheCodec::kShape == Shape::Word, // which need no block of words between
            {WideningBy<TheCodec, false>(), WideningBy<TheCodec, true>()}};
}

template <int32_t... kPlace>
constexpr std::array<TypeTraits, kTypes> MakeTraits(std::integer_sequence<int32_t, kPlace...>)
{
    return {TraitsOf<kFirstType + kPlace>()...};
}

constexpr auto kTraits = MakeTraits(std::make_integer_sequence<int32_t, kTypes>());

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
    RunKernels kernels{.read = runs.read[row][source],
                       .sample = kSamples[row][source],
                       .write = runs.write[row][dest],
                       .sourceIsBytes = kTraits[source].holdsBytes,
                       .destIsBytes = kTraits[dest].holdsBytes,
                       .sourceIsWorking = HoldsWorking(int32_t(row), record.sourceType),
                       .destIsWorking = HoldsWorking(int32_t(row), record.destType),
                       .sourceRunsLong = kTraits[source].runsLong,
                       .destRunsLong = kTraits[dest].runsLong};
    const bool exact = row % 2 == 1;
    if (runs.readGray[exact][source] && runs.writeGray[dest]) {
        kernels.readGray = runs.readGray[exact][source];
        kernels.writeGray = runs.writeGray[dest];
    }
    const Widening widening = kTraits[source].widening[exact];
    const bool nothingLost = widening != Widening::None || kTraits[dest].takesHighBytes;
    if (nothingLost && runs.readBytes[source] && runs.writeBytes[0][dest]) {
        kernels.readBytes = runs.readBytes[source];
        kernels.writeBytes = runs.writeBytes[widening == Widening::Double][dest];
    }
    return kernels;
}

} // namespace vx

#endif // HWY_ONCE
