// ChannelMap and its kin: one value of each pixel chooses a whole pixel from a table.
#define HWY_WANT_AVX3_DL // for its permutations of bytes
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/channel_map.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#include "primitives/arithmetic-inl.h"
#include "primitives/byte_tables-inl.h"

#ifndef VX_CHANNEL_MAP_PLAIN
#define VX_CHANNEL_MAP_PLAIN

#include "kernel/vector_targets.h"
#include "primitives/rounding.h"
#include "primitives/rows.h"
#include "vx/channels.h"
#include "vx/platform/debug.h"

#include <algorithm>
#include <cstring>

namespace vx {
namespace {

// 256 pixels, at any address.
struct PixelTable
{
    explicit PixelTable(const uint32_t* table) : pixels(reinterpret_cast<const uint8_t*>(table)), bytes(table)
    {}

    uint32_t operator[](uint32_t index) const { return LoadElement<uint32_t>(pixels + 4 * index); }

    const uint8_t* pixels;
    ByteTables bytes; // the same
};

// Two pixels a store: the loop is bound by its stores.
HWY_NOINLINE void MapRow(uint8_t* dst, const uint8_t* src, int64_t width, int32_t channel,
                         const PixelTable& table)
{
    src += channel;
    for (; width >= 2; width -= 2, dst += 8, src += 8) {
        const uint32_t pixels[2] = {table[src[0]], table[src[4]]};
        std::memcpy(dst, pixels, sizeof(pixels));
    }
    if (width > 0)
        StoreElement(dst, table[*src]);
}

uint32_t SumOfBytes(uint32_t word)
{
    const uint32_t pairs = (word & 0x00FF00FFu) + (word >> 8 & 0x00FF00FFu);
    return (pairs + (pairs >> 16)) & 0xFFFFu;
}

// summed: a pixel with 0xFF in the channels that count
HWY_NOINLINE void MergeRow(uint8_t* row, int64_t width, uint32_t summed, const PixelTable& table)
{
    for (; width > 0; --width, row += 4)
        StoreElement(row, table[std::min(SumOfBytes(LoadElement<uint32_t>(row) & summed), 255u)]);
}

// Only the index needs arithmetic: a row is bound by its 16-byte pixels, so it has no vector form.
void MapFloatRow(uint8_t* dst, const uint8_t* src, int64_t width, int32_t channel, const uint8_t* table,
                 int32_t entries)
{
    const float scale = float(entries);
    for (; width > 0; --width, dst += 16, src += 16) {
        const float value = LoadElement<float>(src + 4 * channel);
        const int32_t index = std::clamp(BiasedRoundLow32(scale * value), 0, entries - 1);
        std::memcpy(dst, table + 16 * int64_t(index), 16);
    }
}

} // namespace
} // namespace vx

#endif // VX_CHANNEL_MAP_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

#if VX_WIDE_BYTE_TABLES
HWY_INLINE void StorePixels(const ColumnLookUps& lookUps, TableVec index, uint8_t* dst)
{
    PixelPlanes pixels;
    for (int c = 0; c < 4; ++c)
        pixels.channel[c] = lookUps.column[c](index);
    StorePlanes(pixels, dst);
}

// One of the planes of LoadPlanes.
HWY_INLINE TableVec LoadPlane(const uint8_t* from, int32_t channel)
{
    const hn::Repartition<int32_t, TableBytes> pixels;
    const auto load = [=](int i) VX_LANES {
        const auto group = LoadOnce(pixels, from + hn::Lanes(TableBytes()) * size_t(i));
        return hn::And(hn::ShiftRightSame(group, 8 * channel), hn::Set(pixels, 0xFF));
    };
    return PackLongs(TableBytes(), load(0), load(1), load(2), load(3));
}

// Each step of the sum is capped at 255, which caps the total alike.
HWY_INLINE TableVec SumOfChannels(const PixelPlanes& pixels, uint32_t summed)
{
    const TableBytes bytes;
    auto sum = hn::Zero(bytes);
    for (int c = 0; c < 4; ++c)
        sum = hn::SaturatedAdd(sum, hn::And(pixels.channel[c], hn::Set(bytes, uint8_t(summed >> (8 * c)))));
    return sum;
}
#endif

void MapRowVector(uint8_t* dst, const uint8_t* src, int64_t width, int32_t channel, const PixelTable& table)
{
#if VX_WIDE_BYTE_TABLES
    const int64_t step = int64_t(hn::Lanes(TableBytes()));
    const ColumnLookUps lookUps(table.bytes);
    for (; width >= step; width -= step, dst += 4 * step, src += 4 * step)
        StorePixels(lookUps, LoadPlane(src, channel), dst);
#endif
    MapRow(dst, src, width, channel, table);
}

void MergeRowVector(uint8_t* row, int64_t width, uint32_t summed, const PixelTable& table)
{
#if VX_WIDE_BYTE_TABLES
    const int64_t step = int64_t(hn::Lanes(TableBytes()));
    const ColumnLookUps lookUps(table.bytes);
    for (; width >= step; width -= step, row += 4 * step)
        StorePixels(lookUps, SumOfChannels(LoadPlanes(row), summed), row);
#endif
    MergeRow(row, width, summed, table);
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
namespace {

HWY_EXPORT(MapRowVector);
HWY_EXPORT(MergeRowVector);

// All forms of the map refuse a bad channel alike, before anything else is looked at.
bool AcceptChannel(int32_t channel)
{
    if (channel >= 0 && channel <= 3)
        return true;
    OutputDebugStringA("ChannelMap: invalid channel value");
    return false;
}

} // namespace
} // namespace vx

bool ChannelMap(void* buffer, int32_t stride, int32_t channel, int32_t width, int32_t height,
                const uint32_t* table)
{
    return ChannelMapEx(buffer, stride, buffer, stride, channel, width, height, table);
}

bool ChannelMapEx(void* dst, int32_t dstStride, const void* src, int32_t srcStride, int32_t channel,
                  int32_t width, int32_t height, const uint32_t* table)
{
    using namespace vx;
    if (!AcceptChannel(channel))
        return false;
    if (IsEmpty(width, height))
        return true;
    const PixelTable pixels(table);
    const auto row = VX_VECTOR_FORM(MapRowVector, MapRow);
    for (int32_t y = 0; y < height; ++y)
        row(RowAt(dst, dstStride, y), RowAt(src, srcStride, y), width, channel, pixels);
    return true;
}

bool ChannelMapExFloat(void* dst, int32_t dstStride, const void* src, int32_t srcStride, int32_t channel,
                       int32_t width, int32_t height, const float* table, int32_t tableEntries)
{
    using namespace vx;
    if (!AcceptChannel(channel))
        return false;
    if (tableEntries < 1 || IsEmpty(width, height))
        return true;
    const uint8_t* pixels = reinterpret_cast<const uint8_t*>(table);
    for (int32_t y = 0; y < height; ++y)
        MapFloatRow(RowAt(dst, dstStride, y), RowAt(src, srcStride, y), width, channel, pixels, tableEntries);
    return true;
}

bool ChannelMergeLut(void* buffer, int32_t stride, int32_t channelCount, int32_t width, int32_t height,
                     const uint32_t* table)
{
    using namespace vx;
    if (IsEmpty(width, height))
        return true;
    const PixelTable pixels(table);
    const uint32_t summed = uint32_t((uint64_t(1) << (8 * std::clamp(channelCount, 0, 4))) - 1);
    const auto row = VX_VECTOR_FORM(MergeRowVector, MergeRow);
    for (int32_t y = 0; y < height; ++y)
        row(RowAt(buffer, stride, y), width, summed, pixels);
    return true;
}

#endif // HWY_ONCE
