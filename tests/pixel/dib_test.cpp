#include "vx/pixel.h"

#include "pixel/dib_layout.h"
#include "vx/platform/memory.h"
#include "vx/platform/testing.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
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
    {"24 bits, padded rows", VXPIXEL_RGB24, 3, 2, nullptr, 0, 0, 40, 24},
    {"32 bits", VXPIXEL_RGBA32, 5, 4, nullptr, 0, 0, 40, 80},
    {"1 bit, default table", VXPIXEL_PAL1, 33, 2, nullptr, 0, 1, 44, 16},
    {"gray has a default table too", VXPIXEL_GRAY8, 5, 1, nullptr, 0, 255, 1060, 8},
    {"2 bits", VXPIXEL_GRAY2, 17, 1, nullptr, 0, 3, 52, 8},
    {"4 bits", VXPIXEL_PAL4, 9, 1, nullptr, 0, 15, 100, 8},
    {"a negative count is none", VXPIXEL_PAL8, 4, 1, nullptr, -7, 255, 1060, 4},
    {"a count without a palette", VXPIXEL_PAL8, 4, 1, nullptr, 2, 2, 48, 4},
    {"a palette", VXPIXEL_PAL8, 4, 1, kPalette, 3, 3, 52, 4},
    {"a palette without a count", VXPIXEL_PAL8, 4, 1, kPalette, 0, 0, 40, 4},
    {"a palette with a deep type", VXPIXEL_RGB24, 1, 1, kPalette, 2, 2, 48, 4},
    {"masks instead of a palette", VXPIXEL_RGB565, 3, 2, kPalette, 3, 0, 52, 16},
    {"10 bit masks", VXPIXEL_RGB101010, 3, 2, nullptr, 0, 0, 52, 24},
    {"float gray", VXPIXEL_GRAY32, 3, 2, nullptr, 0, 0, 40, 24},
    {"128 bits", VXPIXEL_RGBA128, 3, 2, nullptr, 0, 0, 40, 96},
    {"YUV by planes", VXPIXEL_I420, 5, 3, nullptr, 0, 0, 40, 21},
    {"YUV packed", VXPIXEL_UYVY, 3, 3, nullptr, 0, 0, 40, 18},
    {"v210", VXPIXEL_V210, 49, 2, nullptr, 0, 0, 40, 512},
    {"Y41B follows the row rule", VXPIXEL_Y41B, 5, 3, nullptr, 0, 0, 40, 24},
    {"no pixels", VXPIXEL_RGBA32, 0, 7, nullptr, 0, 0, 40, 0},
};

class DibTable : public testing::TestWithParam<DibCase>
{
protected:
    // What stands behind the header after it was written into bytes of 0xAA.
    static std::vector<uint8_t> ExpectedTable(const DibCase& c, size_t bytes)
    {
        std::vector<uint8_t> table(bytes, 0xAA);
        uint32_t compression = 0, masks[3];
        VxPixelTypeToBitAttribs(c.type, &compression, nullptr, 0, masks);
        if (compression == BI_BITFIELDS)
            std::memcpy(table.data(), masks, sizeof(masks));
        else if (c.palette)
            std::memcpy(table.data(), c.palette, 4 * c.coloursUsed);
        return table;
    }

    static BITMAPINFOHEADER ExpectedHeader(const DibCase& c)
    {
        uint32_t compression = 0;
        const int32_t bits = VxPixelTypeToBitAttribs(c.type, &compression, nullptr, 0, nullptr);
        return {40, c.width, c.height, 1, WORD(bits), compression, c.imageBytes, 0, 0, c.coloursUsed, 0};
    }
};

TEST_P(DibTable, HeaderAndTable)
{
    const DibCase& c = GetParam();
    std::vector<uint8_t> buffer(c.frontBytes + 8, 0xAA);
    auto* const header = reinterpret_cast<BITMAPINFOHEADER*>(buffer.data());
    uint32_t frontBytes = 1, imageBytes = 1;
    ASSERT_EQ(
        VxDibInfo(&frontBytes, &imageBytes, header, c.type, c.width, c.height, c.palette, c.paletteCount),
        S_OK);
    EXPECT_EQ(frontBytes, c.frontBytes);
    EXPECT_EQ(imageBytes, c.imageBytes);
    const BITMAPINFOHEADER want = ExpectedHeader(c);
    EXPECT_EQ(std::memcmp(header, &want, sizeof(want)), 0);
    EXPECT_EQ(VxGetPixelType(header), c.type);
    const std::vector<uint8_t> table = ExpectedTable(c, buffer.size() - 40);
    EXPECT_TRUE(std::equal(table.begin(), table.end(), buffer.begin() + 40));
}

TEST_P(DibTable, Block)
{
    const DibCase& c = GetParam();
    BITMAPINFOHEADER* dib = nullptr;
    ASSERT_EQ(VxDibAlloc(&dib, c.type, c.width, c.height, c.palette, c.paletteCount,
                         VXDIBALLOC_ZERO | 0x80000000u, 1),
              S_OK);
    const BITMAPINFOHEADER want = ExpectedHeader(c);
    EXPECT_EQ(std::memcmp(dib, &want, sizeof(want)), 0);
    const HGLOBAL handle = GlobalHandle(dib);
    EXPECT_NE(handle, dib) << "movable";
    EXPECT_EQ(GlobalFlags(handle), 1u) << "locked once";
    // Behind the header everything is given or zero, and the pixels lie inside the block.
    const uint64_t pixels = vx::PixelOffset(*dib);
    ASSERT_EQ(GlobalSize(handle), pixels + c.imageBytes);
    std::vector<uint8_t> rest = ExpectedTable(c, pixels + c.imageBytes - 40);
    std::replace(rest.begin(), rest.end(), uint8_t(0xAA), uint8_t(0));
    EXPECT_TRUE(std::equal(rest.begin(), rest.end(), reinterpret_cast<const uint8_t*>(dib + 1)));
    EXPECT_EQ(VxDibFree(dib, 0), S_OK);
    EXPECT_EQ(GlobalFlags(handle), GMEM_INVALID_HANDLE) << "freed";
}

INSTANTIATE_TEST_SUITE_P(Dib, DibTable, testing::ValuesIn(kDibCases), [](const auto& info) {
    std::string name = info.param.name;
    std::erase_if(name, [](char c) { return !std::isalnum(uint8_t(c)); });
    return name;
});

TEST(Dib, PaletteMayBeTheTableItself)
{
    struct
    {
        BITMAPINFOHEADER header;
        RGBQUAD table[3];
    } bitmap{{}, {kPalette[0], kPalette[1], kPalette[2]}};
    EXPECT_EQ(VxVideo_InitBitmapInfo(&bitmap.header, VXPIXEL_PAL8, 1, 1, bitmap.table, 3, nullptr), S_OK);
    EXPECT_EQ(std::memcmp(bitmap.table, kPalette, sizeof(kPalette)), 0);
}

TEST(Dib, InfoRefusesUnknownTypesAndClearsItsResults)
{
    for (const int32_t type : {0, 15, 33, 63, 69, -1}) {
        BITMAPINFOHEADER header{};
        uint32_t frontBytes = 1, imageBytes = 1;
        EXPECT_EQ(VxDibInfo(&frontBytes, &imageBytes, &header, type, 1, 1, nullptr, 0), E_INVALIDARG) << type;
        EXPECT_EQ(frontBytes + imageBytes + header.biSize, 0u) << type;
    }
    EXPECT_EQ(VxDibInfo(nullptr, nullptr, nullptr, VXPIXEL_RGB24, 1, 1, nullptr, 0), E_INVALIDARG);
}

TEST(Dib, AllocRefuses)
{
    struct
    {
        const char* name;
        int32_t type, width, height, count;
        HRESULT want;
    } const cases[] = {
        {"unknown type", 33, 1, 1, 0, E_INVALIDARG},
        {"too many entries", VXPIXEL_PAL8, 1, 1, 257, E_INVALIDARG},
        {"too many entries, though masks ignore them", VXPIXEL_RGB565, 1, 1, 257, E_INVALIDARG},
        {"negative height", VXPIXEL_RGB24, 1, -1, 0, E_OUTOFMEMORY},
        {"negative both ways", VXPIXEL_UYVY, -1, -1, 0, E_OUTOFMEMORY},
        {"a row that wraps to nothing", VXPIXEL_RGBA32, 0x08000000, 1, 0, E_OUTOFMEMORY},
        {"an image that wraps to nothing", VXPIXEL_RGBA32, 65536, 65536, 0, E_OUTOFMEMORY},
        {"a packed image that wraps", VXPIXEL_V210, INT32_MAX, INT32_MAX, 0, E_OUTOFMEMORY},
        {"a planar image that wraps", VXPIXEL_I420, 65536, 65536, 0, E_OUTOFMEMORY},
    };
    BITMAPINFOHEADER other{};
    for (const auto& c : cases) {
        BITMAPINFOHEADER* dib = &other;
        EXPECT_EQ(VxDibAlloc(&dib, c.type, c.width, c.height, nullptr, c.count, 0, 0), c.want) << c.name;
        EXPECT_EQ(dib, nullptr) << c.name;
    }
    EXPECT_EQ(VxDibAlloc(nullptr, VXPIXEL_RGB24, 1, 1, nullptr, 0, 0, 0), E_INVALIDARG);

    BITMAPINFOHEADER* dib = &other;
    VxPlatform_FailAllocationAt(1);
    EXPECT_EQ(VxDibAlloc(&dib, VXPIXEL_RGB24, 8, 8, nullptr, 0, 0, 0), E_OUTOFMEMORY);
    EXPECT_EQ(dib, nullptr);
}

TEST(Dib, FreeToleratesWhatIsNoBlock)
{
    BITMAPINFOHEADER header{};
    for (const int32_t mode : {-1, 0, 1}) {
        EXPECT_EQ(VxDibFree(nullptr, mode), S_OK);
        EXPECT_EQ(VxDibFree(&header, mode), S_OK);
        EXPECT_EQ(VxDibFree(reinterpret_cast<BITMAPINFOHEADER*>(uintptr_t(0x10)), mode), S_OK);
    }
}

TEST(DibLayout, PixelsFollowWhatTheHeaderTells)
{
    struct
    {
        const char* name;
        uint32_t size, compression, bits, coloursUsed;
        uint64_t want;
    } const cases[] = {
        {"masks, whatever else it says", 124, 3, 16, 256, 52},
        {"full table of 1 bit", 40, 0, 1, 0, 48},
        {"full table of 8 bits behind a longer header", 124, 0, 8, 0, 1148},
        {"a shorter table", 40, 0, 8, 7, 68},
        {"no table above 8 bits", 40, 0, 9, 0, 40},
        {"no table at 0 bits", 40, 0, 0, 0, 40},
        {"gray has no full table", 40, VXCOMPRESSION_VXGS, 8, 0, 40},
        {"sizes beyond 32 bits", 0xFFFFFFFF, 0, 32, 0xFFFFFFFF, 0x4FFFFFFFBull},
    };
    for (const auto& c : cases) {
        BITMAPINFOHEADER header{};
        header.biSize = c.size;
        header.biBitCount = WORD(c.bits);
        header.biCompression = c.compression;
        header.biClrUsed = c.coloursUsed;
        EXPECT_EQ(vx::PixelOffset(header), c.want) << c.name;
    }
}

} // namespace
