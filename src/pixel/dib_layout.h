// Where things lie in a bitmap that a header describes, and what is known of each pixel type. Every
// family that takes a header reads it through these.
//
// Sizes come in two kinds of arithmetic: in uint32_t they wrap, as the sizes in headers do; in
// uint64_t the sizes of any width and height from 0 to 2^31 - 1 are true.
#pragma once

#include "vx/pixel.h"
#include "vx/platform/rect.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace vx {

struct PixelTypeInfo
{
    int32_t bits = 0; // a pixel; 0 is a type that does not exist
    uint32_t compression = 0;
    std::array<uint8_t, 4> channelBits{}; // red, green, blue, alpha
    std::array<uint32_t, 3> masks{};      // red, green, blue, as they follow a BI_BITFIELDS header
    bool sizedAsYuv = false;              // the image's bytes follow its planes, not the row rule
};

constexpr auto kPixelTypes = [] {
    std::array<PixelTypeInfo, VXPIXEL_V210 + 1> types{};
    types[VXPIXEL_PAL1] = {1, BI_RGB, {0, 0, 0, 1}};
    types[VXPIXEL_GRAY1] = {1, VXCOMPRESSION_VXGS, {0, 0, 0, 1}};
    types[VXPIXEL_GRAY2] = {2, VXCOMPRESSION_VXGS, {0, 0, 0, 2}};
    types[VXPIXEL_GRAY4] = {4, VXCOMPRESSION_VXGS, {0, 0, 0, 4}};
    types[VXPIXEL_GRAY8] = {8, VXCOMPRESSION_VXGS, {0, 0, 0, 8}};
    types[VXPIXEL_GRAY16] = {16, VXCOMPRESSION_VXGS, {0, 0, 0, 16}};
    types[VXPIXEL_GRAY32] = {32, VXCOMPRESSION_VXGS, {0, 0, 0, 32}};
    types[VXPIXEL_PAL4] = {4, BI_RGB, {8, 8, 8, 0}};
    types[VXPIXEL_PAL8] = {8, BI_RGB, {8, 8, 8, 0}};
    types[VXPIXEL_RGB555] = {16, BI_RGB, {5, 5, 5, 1}};
    types[VXPIXEL_RGB565] = {16, BI_BITFIELDS, {5, 6, 5, 0}, {0xF800, 0x07E0, 0x001F}};
    types[VXPIXEL_RGB24] = {24, BI_RGB, {8, 8, 8, 0}};
    types[VXPIXEL_RGB32] = {32, BI_RGB, {8, 8, 8, 8}};
    types[VXPIXEL_RGBA32] = {32, VXCOMPRESSION_VXDB, {8, 8, 8, 8}};
    types[VXPIXEL_RGB101010] = {32, BI_BITFIELDS, {10, 10, 10, 2}, {0x3FF00000, 0x000FFC00, 0x000003FF}};
    types[VXPIXEL_RGBA64] = {64, VXCOMPRESSION_VXDB, {16, 16, 16, 16}};
    types[VXPIXEL_RGBA128] = {128, VXCOMPRESSION_VXDB, {32, 32, 32, 32}};
    types[VXPIXEL_UYVY] = {16, VXCOMPRESSION_UYVY, {}, {}, true};
    types[VXPIXEL_YUYV] = {16, VXCOMPRESSION_YUYV, {}, {}, true};
    types[VXPIXEL_Y41B] = {12, VXCOMPRESSION_Y41B};
    types[VXPIXEL_I420] = {12, VXCOMPRESSION_I420, {}, {}, true};
    types[VXPIXEL_V210] = {20, VXCOMPRESSION_V210, {}, {}, true};
    return types;
}();

// An unknown type gives a record of zeros.
constexpr const PixelTypeInfo& PixelTypeInfoOf(int32_t type)
{
    return kPixelTypes[uint32_t(type) < kPixelTypes.size() ? uint32_t(type) : 0];
}

constexpr bool IsKnownPixelType(int32_t type)
{
    return PixelTypeInfoOf(type).bits != 0;
}

// Headers may stand at any address: they are copied before a field is read.
inline BITMAPINFOHEADER ReadHeader(const BITMAPINFOHEADER* header)
{
    BITMAPINFOHEADER copy;
    std::memcpy(&copy, static_cast<const void*>(header), sizeof(copy));
    return copy;
}

constexpr uint32_t kMaskBytes = 3 * sizeof(uint32_t);

// Bytes from a header to its colour table, or with BI_BITFIELDS to its masks.
constexpr uint32_t TableOffset(const BITMAPINFOHEADER& header)
{
    return header.biCompression == BI_BITFIELDS ? uint32_t(sizeof(BITMAPINFOHEADER)) : header.biSize;
}

// Bytes from a header to the pixels that follow it.
constexpr uint64_t PixelOffset(const BITMAPINFOHEADER& header)
{
    if (header.biCompression == BI_BITFIELDS)
        return TableOffset(header) + kMaskBytes;
    const bool fullTable = header.biCompression == BI_RGB && header.biClrUsed == 0 &&
                           header.biBitCount >= 1 && header.biBitCount <= 8;
    const uint64_t entries = fullTable ? uint64_t(1) << header.biBitCount : header.biClrUsed;
    return TableOffset(header) + sizeof(RGBQUAD) * entries;
}

// Bytes from one row to the next, padded to a multiple of 4. The sum loses 3 bits to the shift, so
// that in 32 bits the mask clears nothing but the padding.
template <class Word>
constexpr Word PaddedRowBytes(int32_t bits, int32_t width)
{
    return ((Word(bits) * Word(width) + 31) >> 3) & ~Word(3);
}

// The pixels of a bitmap with the two defaults resolved.
template <class Byte>
struct DibRows
{
    Byte* pixels = nullptr; // null where the padded row does not fit 32 bits: there is no stride
    int32_t stride = 0;

    Byte* Row(int32_t y) const { return pixels + int64_t(stride) * y; }
};

namespace detail {
template <class Byte, class Header, class Pixels>
DibRows<Byte> RowsOf(Header* header, Pixels* pixels, int32_t stride)
{
    const BITMAPINFOHEADER h = ReadHeader(header);
    if (stride == 0) {
        stride = int32_t(PaddedRowBytes<uint32_t>(h.biBitCount, h.biWidth));
        if (uint64_t(stride) != PaddedRowBytes<uint64_t>(h.biBitCount, h.biWidth))
            return {};
    }
    Byte* const first =
        pixels ? static_cast<Byte*>(pixels) : reinterpret_cast<Byte*>(header) + PixelOffset(h);
    return {first, stride};
}
} // namespace detail

inline DibRows<uint8_t> RowsOf(BITMAPINFOHEADER* header, void* pixels, int32_t stride)
{
    return detail::RowsOf<uint8_t>(header, pixels, stride);
}

inline DibRows<const uint8_t> RowsOf(const BITMAPINFOHEADER* header, const void* pixels, int32_t stride)
{
    return detail::RowsOf<const uint8_t>(header, pixels, stride);
}

// The part of a rectangle inside the bitmap, or the whole bitmap for null; all zeros where it is
// empty, as it is for a header with a negative size.
inline RECT WorkingArea(const BITMAPINFOHEADER* header, const RECT* rect)
{
    const BITMAPINFOHEADER h = ReadHeader(header);
    const RECT whole{0, 0, h.biWidth, h.biHeight};
    RECT area;
    IntersectRect(&area, &whole, rect ? rect : &whole);
    return area;
}

} // namespace vx
