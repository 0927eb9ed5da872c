#include "exchange/kernels.h"

#include <array>
#include <utility>

namespace vx {
namespace {

constexpr size_t kGroup = 4;

// Moves on by a pixel. Only types below a byte have a bit to move.
template <int32_t kBits, class Byte>
void Advance(Byte*& p, uint32_t& bit)
{
    if constexpr (kBits >= 8) {
        p += kBits / 8;
    } else {
        bit += kBits;
        p += bit / 8;
        bit %= 8;
    }
}

template <class TheCodec, bool kExact, size_t kCount>
void ReadPixels(tVXXCHG* x)
{
    const ReadContext context = ReadContextOf(*x);
    auto* source = static_cast<const uint8_t*>(x->source);
    for (size_t i = 0; i < kCount; ++i) {
        StoreSlot(*x, i, TheCodec::template Load<kExact>(source, x->sourceBit, context));
        Advance<TheCodec::kBits>(source, x->sourceBit);
    }
    x->source = source;
}

template <class TheCodec, size_t kCount>
void WritePixels(tVXXCHG* x)
{
    const WriteContext context = WriteContextOf(*x);
    auto* dest = static_cast<uint8_t*>(x->dest);
    for (size_t i = 0; i < kCount; ++i) {
        TheCodec::Store(dest, x->destBit, LoadSlot<typename TheCodec::Working>(*x, i), context);
        Advance<TheCodec::kBits>(dest, x->destBit);
    }
    x->dest = dest;
}

template <class TheCodec>
void ReadFiltered(tVXXCHG* x)
{
    const auto* source = static_cast<const uint8_t*>(x->source);
    StoreSlot(*x, 0,
              LoadFiltered<TheCodec>(source, x->sourceBit, x->rowOffset, x->fractionX, x->fractionY,
                                     ReadContextOf(*x)));
}

template <class TheCodec>
void ReadLine(tVXXCHG* x)
{
    const auto* source = static_cast<const uint8_t*>(x->source);
    StoreSlot(*x, 0, LoadLine<TheCodec>(source, x->sourceBit, x->rowOffset, x->fractionY, ReadContextOf(*x)));
}

template <class TheCodec>
void ReadBlock(tVXXCHG* x)
{
    const auto* source = static_cast<const uint8_t*>(x->source);
    const Block<TheCodec, true> block(source, x->sourceBit, x->rowOffset, ReadContextOf(*x));
    StoreSlot(*x, 0, block.p00);
    StoreSlot(*x, 1, block.p10);
    StoreSlot(*x, 2, block.p01);
    StoreSlot(*x, 3, block.p11);
}

// Whole pixels of a box along one axis: from the ceiling of its start to the floor of its end.
struct Span
{
    int64_t first, last;

    Span(uint32_t start, uint32_t length)
        : first((int64_t(start) + kOnePixel - 1) / kOnePixel),
          last((int64_t(start) + int64_t(length)) / kOnePixel)
    {}
    int64_t Length() const { return last > first ? last - first : 0; }
};

// The mean of a box of three-byte pixels; rowOffset counts pixels here, from the image's first one.
void ReadBoxAverage(tVXXCHG* x)
{
    const auto* const image = static_cast<const uint8_t*>(x->source);
    const Span columns(x->fractionX, x->reduceWidth), rows(x->fractionY, x->reduceHeight);
    const uint64_t count = uint64_t(columns.Length()) * uint64_t(rows.Length());
    uint64_t blue = 0, green = 0, red = 0;
    if (columns.Length() > 0)
        for (int64_t row = rows.first; row < rows.last; ++row) {
            const uint8_t* pixel = image + 3 * (row * x->rowOffset + columns.first);
            for (int64_t column = columns.first; column < columns.last; ++column, pixel += 3) {
                blue += pixel[0];
                green += pixel[1];
                red += pixel[2];
            }
        }
    const uint64_t divisor = count ? count : 1;
    StoreSlot(*x, 0, Pixel8{uint8_t(blue / divisor), uint8_t(green / divisor), uint8_t(red / divisor), 0});
}

template <int32_t kRow, int32_t kType>
constexpr ReadKernels MakeReadKernels()
{
    if constexpr (!RowServes(kRow, kType)) {
        return {};
    } else {
        using TheCodec = Codec<kType, ChannelOfRow<kRow>>;
        constexpr bool kInterpolate = kRow % 2 == 1;
        ReadKernels kernels{};
        kernels.pixel = ReadPixels<TheCodec, kInterpolate, 1>;
        kernels.quad = ReadPixels<TheCodec, kInterpolate, kGroup>;
        kernels.block = ReadBlock<TheCodec>;
        kernels.filtered = kInterpolate ? ReadFiltered<TheCodec> : kernels.pixel;
        kernels.line = kInterpolate ? ReadLine<TheCodec> : kernels.pixel;
        kernels.reduce = kRow == 3 && kType == VXPIXEL_RGB24 ? ReadBoxAverage : kernels.filtered;
        return kernels;
    }
}

template <int32_t kRow, int32_t kType>
constexpr WriteKernels MakeWriteKernels()
{
    if constexpr (!RowServes(kRow, kType)) {
        return {};
    } else {
        using TheCodec = Codec<kType, ChannelOfRow<kRow>>;
        return {WritePixels<TheCodec, 1>, WritePixels<TheCodec, kGroup>};
    }
}

template <class Kernels>
using KernelTable = std::array<std::array<Kernels, kTypes>, kKernelRows>;

template <int32_t kRow, int32_t... kIndex>
constexpr auto ReadRowOf(std::integer_sequence<int32_t, kIndex...>)
{
    return std::array{MakeReadKernels<kRow, kFirstType + kIndex>()...};
}

template <int32_t kRow, int32_t... kIndex>
constexpr auto WriteRowOf(std::integer_sequence<int32_t, kIndex...>)
{
    return std::array{MakeWriteKernels<kRow, kFirstType + kIndex>()...};
}

template <int32_t... kRow>
constexpr KernelTable<ReadKernels> ReadTable(std::integer_sequence<int32_t, kRow...>)
{
    return {ReadRowOf<kRow>(std::make_integer_sequence<int32_t, kTypes>())...};
}

template <int32_t... kRow>
constexpr KernelTable<WriteKernels> WriteTable(std::integer_sequence<int32_t, kRow...>)
{
    return {WriteRowOf<kRow>(std::make_integer_sequence<int32_t, kTypes>())...};
}

constexpr auto kRead = ReadTable(std::make_integer_sequence<int32_t, kKernelRows>());
constexpr auto kWrite = WriteTable(std::make_integer_sequence<int32_t, kKernelRows>());

} // namespace

const ReadKernels& ReadKernelsOf(int32_t row, int32_t type)
{
    return kRead[size_t(row)][size_t(type - kFirstType)];
}

const WriteKernels& WriteKernelsOf(int32_t row, int32_t type)
{
    return kWrite[size_t(row)][size_t(type - kFirstType)];
}

} // namespace vx
