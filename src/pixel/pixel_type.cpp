// Pixel types: found from a header, and told to hosts.
#include "pixel/dib_layout.h"
#include "pixel/yuv_layout.h"
#include "vx/pixel.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace vx {
namespace {

struct DepthRule
{
    uint32_t compression;
    uint16_t bitCount;
    int32_t type;
};

constexpr DepthRule kDepthRules[] = {
    {BI_RGB, 1, VXPIXEL_PAL1},
    {BI_RGB, 4, VXPIXEL_PAL4},
    {BI_RGB, 8, VXPIXEL_PAL8},
    {BI_RGB, 16, VXPIXEL_RGB555},
    {BI_RGB, 24, VXPIXEL_RGB24},
    {BI_RGB, 32, VXPIXEL_RGB32},
    {VXCOMPRESSION_VXDB, 24, VXPIXEL_RGB24},
    {VXCOMPRESSION_VXDB, 32, VXPIXEL_RGBA32},
    {VXCOMPRESSION_VXDB, 64, VXPIXEL_RGBA64},
    {VXCOMPRESSION_VXDB, 128, VXPIXEL_RGBA128},
    {VXCOMPRESSION_VXGS, 1, VXPIXEL_GRAY1},
    {VXCOMPRESSION_VXGS, 2, VXPIXEL_GRAY2},
    {VXCOMPRESSION_VXGS, 4, VXPIXEL_GRAY4},
    {VXCOMPRESSION_VXGS, 8, VXPIXEL_GRAY8},
    {VXCOMPRESSION_VXGS, 16, VXPIXEL_GRAY16},
    {VXCOMPRESSION_VXGS, 32, VXPIXEL_GRAY32},
};

struct MaskRule
{
    uint16_t bitCount;
    std::array<int32_t, 3> widths; // set bits of the masks red, green, blue
    int32_t type;
};

constexpr MaskRule kMaskRules[] = {
    {16, {5, 5, 5}, VXPIXEL_RGB555},
    {16, {5, 6, 5}, VXPIXEL_RGB565},
    {32, {8, 8, 8}, VXPIXEL_RGB32},
    {32, {10, 10, 10}, VXPIXEL_RGB101010},
};

int32_t TypeOfMasks(uint16_t bitCount, const uint8_t* masks)
{
    std::array<uint32_t, 3> values;
    std::memcpy(values.data(), masks, kMaskBytes);
    for (const MaskRule& rule : kMaskRules)
        if (rule.bitCount == bitCount &&
            std::equal(values.begin(), values.end(), rule.widths.begin(),
                       [](uint32_t mask, int32_t width) { return std::popcount(mask) == width; }))
            return rule.type;
    return VXPIXEL_UNKNOWN;
}

int32_t TypeOfYuv(uint32_t compression)
{
    for (int32_t type = VXPIXEL_UYVY; type <= VXPIXEL_V210; ++type)
        if (PixelTypeInfoOf(type).compression == compression)
            return type;
    return VXPIXEL_UNKNOWN;
}

VxBitAttribs BitAttribsOf(int32_t type)
{
    const bool gray = type >= VXPIXEL_GRAY1 && type <= VXPIXEL_GRAY32;
    return {.size = sizeof(VxBitAttribs),
            .attributes = gray ? VXBITATTRIBS_GRAY : VXBITATTRIBS_OTHER,
            .lowest = 0,
            .highest = 0xFFFFFFFF,
            .lowestFloat = 0.0,
            .highestFloat = 1.0,
            .reserved = {}};
}

// RGBQUAD and PALETTEENTRY have red and blue in each other's place, so one loop serves both ways.
void ExchangeTableOrder(uint8_t* dst, const uint8_t* src, int32_t count)
{
    for (int64_t i = 0; i < int64_t(count) * 4; i += 4) {
        const uint8_t first = src[i];
        dst[i] = src[i + 2];
        dst[i + 1] = src[i + 1];
        dst[i + 2] = first;
        dst[i + 3] = 0;
    }
}

} // namespace
} // namespace vx

using namespace vx;

int32_t VxGetPixelType(const BITMAPINFOHEADER* header)
{
    if (!header)
        return VXPIXEL_UNKNOWN;
    const BITMAPINFOHEADER h = ReadHeader(header);
    if (h.biCompression == BI_BITFIELDS)
        return TypeOfMasks(h.biBitCount, reinterpret_cast<const uint8_t*>(header) + TableOffset(h));
    for (const DepthRule& rule : kDepthRules)
        if (rule.compression == h.biCompression && rule.bitCount == h.biBitCount)
            return rule.type;
    return TypeOfYuv(h.biCompression);
}

int32_t VxPixelTypeToBitAttribs(int32_t type, uint32_t* outCompression, VxBitAttribs* outRecord,
                                int32_t recordBytes, uint32_t* outMasks)
{
    if (outRecord && recordBytes < int32_t(sizeof(VxBitAttribs)))
        return 0;
    const PixelTypeInfo& info = PixelTypeInfoOf(type);
    if (outCompression)
        *outCompression = info.compression;
    if (outRecord)
        *outRecord = BitAttribsOf(type);
    if (outMasks)
        std::copy(info.masks.begin(), info.masks.end(), outMasks);
    return info.bits;
}

int32_t VxGetPixelBitsPerChannel(int32_t type, uint8_t* out)
{
    const PixelTypeInfo& info = PixelTypeInfoOf(type);
    std::copy(info.channelBits.begin(), info.channelBits.end(), out);
    const bool hasChannels = info.channelBits != std::array<uint8_t, 4>{};
    return hasChannels ? info.bits : 0;
}

uint32_t VxYUVImageBytesAndOffsets(const BITMAPINFOHEADER* header, VxYuvPlanes* outPlanes)
{
    const BITMAPINFOHEADER h = ReadHeader(header);
    const auto layout = YuvLayoutOf(h.biCompression, uint32_t(h.biWidth), uint32_t(h.biHeight));
    if (outPlanes)
        *outPlanes = {int32_t(layout.lumaStride), int32_t(layout.uOffset), int32_t(layout.uStride),
                      int32_t(layout.vOffset), int32_t(layout.vStride)};
    return layout.bytes;
}

int32_t VxCountBits(uint32_t value)
{
    return std::popcount(value);
}

uint32_t VxCreateBitMask(int32_t firstBit, int32_t count)
{
    const int64_t first = std::clamp<int64_t>(firstBit, 0, 32);
    const int64_t last = std::clamp<int64_t>(int64_t(firstBit) + count, first, 32);
    return uint32_t((uint64_t(1) << last) - (uint64_t(1) << first));
}

int32_t VxVideo_IsCompressed(const BITMAPINFOHEADER* header)
{
    switch (ReadHeader(header).biCompression) {
    case BI_RGB:
    case BI_BITFIELDS:
    case VXCOMPRESSION_VXDB:
    case VXCOMPRESSION_VXGS:
        return VxGetPixelType(header) == VXPIXEL_UNKNOWN;
    default:
        return 1;
    }
}

void VxVideo_PaletteRGBAFromEntry(RGBQUAD* dst, const PALETTEENTRY* src, int32_t count)
{
    ExchangeTableOrder(reinterpret_cast<uint8_t*>(dst), reinterpret_cast<const uint8_t*>(src), count);
}

void VxVideo_PaletteEntryFromRGBA(PALETTEENTRY* dst, const RGBQUAD* src, int32_t count)
{
    ExchangeTableOrder(reinterpret_cast<uint8_t*>(dst), reinterpret_cast<const uint8_t*>(src), count);
}
