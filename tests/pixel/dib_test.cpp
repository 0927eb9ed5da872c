#include "vx/pixel.h"

#include "pixel/dib_layout.h"
#include "vx/platform/memory.h"
#include "vx/platform/testing.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <vector>

namespace {

const RGBQUAD kPalette[3] = {{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}};

struct DibCase
{
    const char* name;
    int32_t type, width, height;
    const RGBQUAD* palette;
    int32_t paletteCount;
    uint32_t coloursUsed, frontBytes, imageBytes;
};

constexpr DibCase kDibCases[] = {
    {"padded rows", VXPIXEL_RGB24, 3, 2, nullptr, 0, 0, 40, 24},
    {"1 bit, default table", VXPIXEL_PAL1, 33, 2, nullptr, 0, 1, 44, 16},
    {"gray has a default table too", VXPIXEL_GRAY8, 5, 1, nullptr, 0, 255, 1060, 8},
    {"a negative count is none", VXPIXEL_PAL8, 4, 1, nullptr, -7, 255, 1060, 4},
    {"a count without a palette", VXPIXEL_PAL8, 4, 1, nullptr, 2, 2, 48, 4},
    {"a palette", VXPIXEL_PAL8, 4, 1, kPalette, 3, 3, 52, 4},
    {"a palette without a count", VXPIXEL_PAL8, 4, 1, kPalette, 0, 0, 40, 4},
    {"a palette with a deep type", VXPIXEL_RGB24, 1, 1, kPalette, 2, 2, 48, 4},
    {"masks instead of a palette", VXPIXEL_RGB565, 3, 2, kPalette, 3, 0, 52, 16},
    {"YUV by planes", VXPIXEL_I420, 5, 3, nullptr, 0, 0, 40, 21},
    {"YUV packed", VXPIXEL_UYVY, 3, 3, nullptr, 0, 0, 40, 18},
    {"v210", VXPIXEL_V210, 49, 2, nullptr, 0, 0, 40, 512},
    {"Y41B follows the row rule", VXPIXEL_Y41B, 5, 3, nullptr, 0, 0, 40, 24},
    {"no pixels", VXPIXEL_RGBA32, 0, 7, nullptr, 0, 0, 40, 0},
};

// A header and what stands behind it, written into bytes of `fill`.
std::vector<uint8_t> Expected(const DibCase& c, size_t bytes, uint8_t fill)
{
    std::vector<uint8_t> front(bytes, fill);
    uint32_t compression = 0, masks[3];
    const int32_t bits = VxPixelTypeToBitAttribs(c.type, &compression, nullptr, 0, masks);
    const BITMAPINFOHEADER header{40, c.width, c.height,      1, WORD(bits), compression, c.imageBytes,
                                  0,  0,       c.coloursUsed, 0};
    std::memcpy(front.data(), &header, sizeof(header));
    if (compression == BI_BITFIELDS)
        std::memcpy(front.data() + 40, masks, sizeof(masks));
    else if (c.palette)
        std::memcpy(front.data() + 40, c.palette, 4 * c.coloursUsed);
    return front;
}

TEST(Dib, HeadersAndBlocks)
{
    for (const DibCase& c : kDibCases) {
        SCOPED_TRACE(c.name);
        std::vector<uint8_t> buffer(c.frontBytes + 8, 0xAA);
        auto* const header = reinterpret_cast<BITMAPINFOHEADER*>(buffer.data());
        uint32_t frontBytes = 1, imageBytes = 1;
        ASSERT_EQ(
            VxDibInfo(&frontBytes, &imageBytes, header, c.type, c.width, c.height, c.palette, c.paletteCount),
            S_OK);
        EXPECT_EQ(frontBytes, c.frontBytes);
        EXPECT_EQ(imageBytes, c.imageBytes);
        EXPECT_EQ(buffer, Expected(c, buffer.size(), 0xAA));

        BITMAPINFOHEADER* dib = nullptr;
        ASSERT_EQ(VxDibAlloc(&dib, c.type, c.width, c.height, c.palette, c.paletteCount,
                             VXDIBALLOC_ZERO | 0x80000000u, 1),
                  S_OK);
        const HGLOBAL handle = GlobalHandle(dib);
        EXPECT_NE(handle, dib) << "movable";
        EXPECT_EQ(GlobalFlags(handle), 1u) << "locked once";
        // Everything is given or zero, and the pixels lie inside the block.
        const size_t bytes = vx::PixelOffset(*dib) + c.imageBytes;
        ASSERT_EQ(GlobalSize(handle), bytes);
        EXPECT_EQ(std::memcmp(dib, Expected(c, bytes, 0).data(), bytes), 0);
        EXPECT_EQ(VxDibFree(dib, 0), S_OK);
        EXPECT_EQ(GlobalFlags(handle), GMEM_INVALID_HANDLE) << "freed";
    }
}

TEST(Dib, RefusalsClearTheResults)
{
    BITMAPINFOHEADER header{};
    for (const int32_t type : {0, 15, 33, 69, -1}) {
        uint32_t frontBytes = 1, imageBytes = 1;
        EXPECT_EQ(VxDibInfo(&frontBytes, &imageBytes, &header, type, 1, 1, nullptr, 0), E_INVALIDARG) << type;
        EXPECT_EQ(frontBytes + imageBytes + header.biSize, 0u) << type;
    }
    EXPECT_EQ(VxDibInfo(nullptr, nullptr, nullptr, VXPIXEL_RGB24, 1, 1, nullptr, 0), E_INVALIDARG);
    struct
    {
        const char* name;
        int32_t type, width, height, count;
        HRESULT want;
    } const cases[] = {
        {"unknown type", 33, 1, 1, 0, E_INVALIDARG},
        {"too many entries, though masks ignore them", VXPIXEL_RGB565, 1, 1, 257, E_INVALIDARG},
        {"negative height", VXPIXEL_RGB24, 1, -1, 0, E_OUTOFMEMORY},
        {"negative both ways", VXPIXEL_UYVY, -1, -1, 0, E_OUTOFMEMORY},
        {"a row that wraps to nothing", VXPIXEL_RGBA32, 0x08000000, 1, 0, E_OUTOFMEMORY},
        {"an image that wraps to nothing", VXPIXEL_RGBA32, 65536, 65536, 0, E_OUTOFMEMORY},
        {"a packed image that wraps", VXPIXEL_V210, INT32_MAX, INT32_MAX, 0, E_OUTOFMEMORY},
    };
    for (const auto& c : cases) {
        BITMAPINFOHEADER* dib = &header;
        EXPECT_EQ(VxDibAlloc(&dib, c.type, c.width, c.height, nullptr, c.count, 0, 0), c.want) << c.name;
        EXPECT_EQ(dib, nullptr) << c.name;
    }
    EXPECT_EQ(VxDibAlloc(nullptr, VXPIXEL_RGB24, 1, 1, nullptr, 0, 0, 0), E_INVALIDARG);

    BITMAPINFOHEADER* dib = &header;
    VxPlatform_FailAllocationAt(1);
    EXPECT_EQ(VxDibAlloc(&dib, VXPIXEL_RGB24, 8, 8, nullptr, 0, 0, 0), E_OUTOFMEMORY);
    EXPECT_EQ(dib, nullptr);
    for (BITMAPINFOHEADER* const noBlock : {dib, &header, reinterpret_cast<BITMAPINFOHEADER*>(uintptr_t(16))})
        EXPECT_EQ(VxDibFree(noBlock, 1), S_OK);
}

TEST(DibLayout, PixelsFollowWhatTheHeaderTells)
{
    const auto offset = [](uint32_t size, uint32_t compression, uint32_t bits, uint32_t coloursUsed) {
        return vx::PixelOffset({size, 0, 0, 1, WORD(bits), compression, 0, 0, 0, coloursUsed, 0});
    };
    EXPECT_EQ(offset(124, BI_BITFIELDS, 16, 256), 52u) << "masks, whatever else it says";
    EXPECT_EQ(offset(124, 0, 8, 0), 1148u) << "full table behind a longer header";
    EXPECT_EQ(offset(40, 0, 1, 0), 48u);
    EXPECT_EQ(offset(40, 0, 8, 7), 68u);
    EXPECT_EQ(offset(40, 0, 9, 0), 40u);
    EXPECT_EQ(offset(40, 0, 0, 0), 40u);
    EXPECT_EQ(offset(40, VXCOMPRESSION_VXGS, 8, 0), 40u) << "gray has no full table";
    EXPECT_EQ(offset(0xFFFFFFFF, 0, 32, 0xFFFFFFFF), 0x4FFFFFFFBu) << "beyond 32 bits";
}

} // namespace
