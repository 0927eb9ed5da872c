#include "vx/pixel.h"

#include <gtest/gtest.h>

namespace {

constexpr uint32_t kUYVY = 0x59565955, kYUYV = 0x56595559, kY41B = 0x42313459, kI420 = 0x30323449,
                   kIYUV = 0x56555949, kYV12 = 0x32315659, kV210 = 0x30313276;

struct YuvCase
{
    const char* name;
    uint32_t compression;
    int32_t width, height;
    uint32_t bytes;
    VxYuvPlanes planes;
};

constexpr YuvCase kYuvCases[] = {
    {"UYVY", kUYVY, 720, 576, 829440, {1440, 0, 0, 0, 0}},
    {"YUYV, odd width", kYUYV, 3, 5, 30, {6, 0, 0, 0, 0}},
    {"Y41B", kY41B, 16, 4, 96, {16, 64, 4, 80, 4}},
    {"I420", kI420, 16, 4, 96, {16, 64, 8, 80, 8}},
    {"IYUV is I420", kIYUV, 16, 4, 96, {16, 64, 8, 80, 8}},
    {"YV12 has V first", kYV12, 16, 4, 96, {16, 80, 8, 64, 8}},
    {"I420, a quarter that does not come out even", kI420, 5, 3, 21, {5, 15, 2, 18, 2}},
    {"v210, 1280 pixels are 27 groups", kV210, 1280, 720, 2488320, {3456, 0, 0, 0, 0}},
    {"v210, whole groups", kV210, 48, 2, 256, {128, 0, 0, 0, 0}},
    {"v210, a pixel more", kV210, 49, 2, 512, {256, 0, 0, 0, 0}},
    {"no width", kI420, 0, 4, 0, {0, 0, 0, 0, 0}},
    {"no height", kV210, 48, 0, 0, {128, 0, 0, 0, 0}},
    {"over 2 GiB", kUYVY, 40000, 30000, 2400000000u, {80000, 0, 0, 0, 0}},
    {"the bytes wrap", kUYVY, 65536, 65536, 0, {131072, 0, 0, 0, 0}},
    {"RGB", 0, 16, 4, 0, {0, 0, 0, 0, 0}},
    {"a code in the wrong case", 0x30313256, 48, 2, 0, {0, 0, 0, 0, 0}},
};

TEST(YuvLayout, Table)
{
    for (const YuvCase& c : kYuvCases) {
        BITMAPINFOHEADER header{};
        header.biWidth = c.width;
        header.biHeight = c.height;
        header.biCompression = c.compression;
        VxYuvPlanes planes{-1, -1, -1, -1, -1};
        EXPECT_EQ(VxYUVImageBytesAndOffsets(&header, &planes), c.bytes) << c.name;
        EXPECT_EQ(planes.lumaStride, c.planes.lumaStride) << c.name;
        EXPECT_EQ(planes.uOffset, c.planes.uOffset) << c.name;
        EXPECT_EQ(planes.uStride, c.planes.uStride) << c.name;
        EXPECT_EQ(planes.vOffset, c.planes.vOffset) << c.name;
        EXPECT_EQ(planes.vStride, c.planes.vStride) << c.name;
        EXPECT_EQ(VxYUVImageBytesAndOffsets(&header, nullptr), c.bytes) << c.name;
    }
}

} // namespace
