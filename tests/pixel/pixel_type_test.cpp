#include "vx/pixel.h"

#include "support/random.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <gtest/gtest.h>

namespace {

using namespace vxtest;

constexpr uint32_t FourCC(const char (&text)[5])
{
    return uint32_t(uint8_t(text[0])) | uint32_t(uint8_t(text[1])) << 8 | uint32_t(uint8_t(text[2])) << 16 |
           uint32_t(uint8_t(text[3])) << 24;
}

struct TypeCase
{
    int32_t type;
    uint32_t compression;
    int32_t bits;
    std::array<uint8_t, 4> channels;
};

constexpr TypeCase kTypes[] = {
    {16, 0, 1, {0, 0, 0, 1}},
    {17, FourCC("VXGS"), 1, {0, 0, 0, 1}},
    {18, FourCC("VXGS"), 2, {0, 0, 0, 2}},
    {19, FourCC("VXGS"), 4, {0, 0, 0, 4}},
    {20, FourCC("VXGS"), 8, {0, 0, 0, 8}},
    {21, FourCC("VXGS"), 16, {0, 0, 0, 16}},
    {22, FourCC("VXGS"), 32, {0, 0, 0, 32}},
    {23, 0, 4, {8, 8, 8, 0}},
    {24, 0, 8, {8, 8, 8, 0}},
    {25, 0, 16, {5, 5, 5, 1}},
    {26, 3, 16, {5, 6, 5, 0}},
    {27, 0, 24, {8, 8, 8, 0}},
    {28, 0, 32, {8, 8, 8, 8}},
    {29, FourCC("VXDB"), 32, {8, 8, 8, 8}},
    {30, 3, 32, {10, 10, 10, 2}},
    {31, FourCC("VXDB"), 64, {16, 16, 16, 16}},
    {32, FourCC("VXDB"), 128, {32, 32, 32, 32}},
    {64, FourCC("UYVY"), 16, {0, 0, 0, 0}},
    {65, FourCC("YUYV"), 16, {0, 0, 0, 0}},
    {66, FourCC("Y41B"), 12, {0, 0, 0, 0}},
    {67, FourCC("I420"), 12, {0, 0, 0, 0}},
    {68, FourCC("v210"), 20, {0, 0, 0, 0}},
};

// A header with its masks, at an odd address: headers need no alignment.
struct Header
{
    alignas(4) uint8_t bytes[53] = {};

    Header(uint32_t compression, int32_t bits, std::array<uint32_t, 3> masks = {})
    {
        const BITMAPINFOHEADER header{40, 0, 0, 1, WORD(bits), compression, 0, 0, 0, 0, 0};
        std::memcpy(bytes + 1, &header, sizeof(header));
        std::memcpy(bytes + 41, masks.data(), sizeof(masks));
    }
    const BITMAPINFOHEADER* Get() const { return reinterpret_cast<const BITMAPINFOHEADER*>(bytes + 1); }
};

TEST(PixelType, RecordAndMasksAreWrittenWholeOrNotAtAll)
{
    for (const int32_t type : {16, 17, 22, 23, 26, 30, 64, 0}) {
        VxBitAttribs record;
        std::memset(&record, 7, sizeof(record));
        uint32_t compression = 7, masks[4] = {7, 2, 3, 4};
        EXPECT_EQ(VxPixelTypeToBitAttribs(type, &compression, &record, 63, masks), 0);
        EXPECT_EQ(compression + masks[0] + record.size, 14 + 0x07070707u)
            << "too short a record: nothing is written";

        VxPixelTypeToBitAttribs(type, &compression, &record, 64, masks);
        const uint32_t attributes = type >= 17 && type <= 22 ? 0x1000 : 0xFFFFFFFF;
        const uint32_t want[16] = {64, attributes, 0, 0xFFFFFFFF, 0, 0, 0, 0x3FF00000}; // high word of 1.0
        EXPECT_EQ(std::memcmp(&record, want, sizeof(want)), 0) << type;
        using Masks = std::array<uint32_t, 4>;
        EXPECT_EQ(std::to_array(masks), type == 26   ? (Masks{0xF800, 0x07E0, 0x001F, 4})
                                        : type == 30 ? (Masks{0x3FF00000, 0x000FFC00, 0x000003FF, 4})
                                                     : (Masks{0, 0, 0, 4}));
    }
}

TEST(PixelType, FoundFromEveryDepthOfEveryCompression)
{
    EXPECT_EQ(VxGetPixelType(nullptr), 0);
    for (const uint32_t compression :
         {0u, 1u, 2u, FourCC("VXDB"), FourCC("VXGS"), FourCC("UYVY"), FourCC("YUYV"), FourCC("Y41B"),
          FourCC("I420"), FourCC("v210"), FourCC("IYUV"), FourCC("YV12"), FourCC("V210")})
        for (int32_t bits = 0; bits <= 129; ++bits) {
            int32_t want = compression == FourCC("VXDB") && bits == 24 ? 27 : 0;
            for (const TypeCase& c : kTypes)
                if (c.compression == compression && (c.bits == bits || c.type >= 64))
                    want = c.type;
            const Header header(compression, bits);
            EXPECT_EQ(VxGetPixelType(header.Get()), want)
                << std::hex << compression << ", bits " << std::dec << bits;
            const bool plain =
                compression == 0 || compression == FourCC("VXDB") || compression == FourCC("VXGS");
            EXPECT_EQ(VxVideo_IsCompressed(header.Get()), !plain || want == 0);
        }
}

TEST(PixelType, MasksCountWhereverTheirBitsLie)
{
    struct
    {
        int32_t bits;
        std::array<int32_t, 3> widths;
        int32_t want;
    } const cases[] = {
        {16, {5, 5, 5}, 25}, {16, {5, 6, 5}, 26}, {32, {8, 8, 8}, 28}, {32, {10, 10, 10}, 30},
        {16, {6, 5, 5}, 0},  {16, {5, 5, 6}, 0},  {16, {8, 8, 8}, 0},  {32, {5, 6, 5}, 0},
        {24, {8, 8, 8}, 0},  {16, {0, 0, 0}, 0},
    };
    Random random;
    for (const auto& c : cases)
        for (int trial = 0; trial < 20; ++trial) {
            std::array<uint32_t, 3> masks;
            for (size_t i = 0; i < 3; ++i)
                masks[i] = std::rotl((1u << c.widths[i]) - 1, random.Int(0, 31));
            const Header header(3, c.bits, masks);
            EXPECT_EQ(VxGetPixelType(header.Get()), c.want) << c.bits << " bits, green " << c.widths[1];
            EXPECT_EQ(VxVideo_IsCompressed(header.Get()), c.want == 0);
        }
}

TEST(BitHelpers, MaskIsItsBitsOneByOne)
{
    for (const int32_t first : {INT32_MIN, -33, -32, -31, -1, 0, 1, 15, 30, 31, 32, 33, INT32_MAX})
        for (const int32_t count : {INT32_MIN, -1, 0, 1, 2, 5, 31, 32, 33, 64, INT32_MAX}) {
            uint32_t want = 0;
            for (int64_t bit = 0; bit < 32; ++bit)
                if (bit >= first && bit < int64_t(first) + count)
                    want |= uint32_t(1) << bit;
            EXPECT_EQ(VxCreateBitMask(first, count), want) << first << ", " << count;
            EXPECT_EQ(VxCountBits(want), std::popcount(want));
        }
}

TEST(YuvLayout, BytesAndPlanes)
{
    struct
    {
        uint32_t compression;
        int32_t width, height;
        uint32_t bytes;
        VxYuvPlanes planes; // stride, then offset and stride of U and of V
    } const cases[] = {
        {FourCC("UYVY"), 720, 576, 829440, {1440, 0, 0, 0, 0}},
        {FourCC("YUYV"), 3, 5, 30, {6, 0, 0, 0, 0}},
        {FourCC("Y41B"), 16, 4, 96, {16, 64, 4, 80, 4}},
        {FourCC("IYUV"), 16, 4, 96, {16, 64, 8, 80, 8}},
        {FourCC("YV12"), 16, 4, 96, {16, 80, 8, 64, 8}}, // V first
        {FourCC("I420"), 5, 3, 21, {5, 15, 2, 18, 2}},   // a quarter that does not come out even
        {FourCC("v210"), 48, 2, 256, {128, 0, 0, 0, 0}}, // whole groups, and a pixel more
        {FourCC("v210"), 49, 2, 512, {256, 0, 0, 0, 0}},
        {FourCC("I420"), 0, 4, 0, {0, 0, 0, 0, 0}},
        {FourCC("v210"), 48, 0, 0, {128, 0, 0, 0, 0}},
        {FourCC("UYVY"), 65536, 65536, 0, {131072, 0, 0, 0, 0}}, // wraps
        {FourCC("V210"), 48, 2, 0, {0, 0, 0, 0, 0}},             // no such code
    };
    for (const auto& c : cases) {
        BITMAPINFOHEADER header{};
        header.biWidth = c.width;
        header.biHeight = c.height;
        header.biCompression = c.compression;
        VxYuvPlanes planes{-1, -1, -1, -1, -1};
        EXPECT_EQ(VxYUVImageBytesAndOffsets(&header, &planes), c.bytes) << c.compression << ", " << c.width;
        EXPECT_EQ(std::memcmp(&planes, &c.planes, sizeof(planes)), 0) << c.compression << ", " << c.width;
        EXPECT_EQ(VxYUVImageBytesAndOffsets(&header, nullptr), c.bytes);
    }
}

} // namespace
