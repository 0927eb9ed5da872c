#include "bitmap.h"
#include "support/exchange_model.h"
#include "vx/dib.h"
#include "vx/platform/memory.h"
#include "vx/platform/testing.h"

#include <gtest/gtest.h>

namespace {

using namespace vxtest;

uint64_t Packed(const Channels& c)
{
    return uint64_t(c[0]) | uint64_t(c[1]) << 16 | uint64_t(c[2]) << 32 | uint64_t(c[3]) << 48;
}

uint32_t EntriesOf(int32_t type)
{
    return type == VXPIXEL_PAL4 ? 16 : type == VXPIXEL_PAL8 ? 256 : type == VXPIXEL_PAL1 ? 2 : 0;
}

TEST(PixelAccess, EveryPixelOfEveryTypeReadsAndWritesAsTheModel)
{
    Random random;
    for (int32_t type = VXPIXEL_PAL1; type <= VXPIXEL_RGBA128; ++type) {
        Bitmap bitmap(type, 11, 5, EntriesOf(type), random);
        const int32_t bits = ModelOf(type).bits;
        std::vector<uint8_t> table(1024);
        std::memcpy(table.data(), bitmap.Table(), 4 * EntriesOf(type));
        uint8_t* map = nullptr;
        const bool indexed = ModelOf(type).kind == Kind::Index;
        if (indexed) {
            ASSERT_EQ(VxDibCreateColorQuantizer(&map, bitmap.Header()), S_OK);
        }
        const ModelJob job{type, 1, true, table.data(), map, nullptr};
        for (int32_t y = 0; y < 5; ++y)
            for (int32_t x = 0; x < 11; ++x) {
                const bool implied = (x + y) % 2 == 0; // pixels behind the header, padded rows
                uint8_t* const pixels = implied ? nullptr : bitmap.Pixels();
                const int32_t stride = implied ? 0 : bitmap.Stride();
                uint64_t got = 0;
                ASSERT_EQ(VxDibGetPixel(bitmap.Header(), pixels, stride, x, y, &got), S_OK);
                ASSERT_EQ(got, Packed(ModelRead(job, bitmap.Row(y), int64_t(x) * bits)))
                    << type << " at " << x << ", " << y;
                const Channels set{double(random.Byte()) * 257, double(random.Byte()) * 256, 65535.0,
                                   double(random.Byte()) * 200};
                const uint64_t value = Packed(set);
                std::vector<uint8_t> want(bitmap.Pixels(), bitmap.Pixels() + 5 * bitmap.Stride());
                ModelWrite(job, want.data() + (4 - y) * bitmap.Stride(), int64_t(x) * bits, set);
                ASSERT_EQ(VxDibSetPixel(bitmap.Header(), pixels, stride, x, y, &value), S_OK);
                ASSERT_EQ(std::memcmp(bitmap.Pixels(), want.data(), want.size()), 0)
                    << type << " at " << x << ", " << y;
            }
        GlobalFree(GlobalHandle(map));
    }
}

TEST(PixelAccess, TypeComesBeforePlace)
{
    Random random;
    Bitmap rgb(VXPIXEL_RGB24, 3, 2, 0, random), yuv(VXPIXEL_UYVY, 4, 2, 0, random);
    uint64_t pixel = 7;
    for (const auto& [x, y] : {std::pair{-1, 0}, {3, 0}, {0, -1}, {0, 2}, {INT32_MAX, INT32_MIN}}) {
        EXPECT_EQ(VxDibGetPixel(rgb.Header(), nullptr, 0, x, y, &pixel), E_NOTIMPL);
        EXPECT_EQ(VxDibSetPixel(rgb.Header(), nullptr, 0, x, y, &pixel), E_INVALIDARG);
        EXPECT_EQ(VxDibSetPixel(yuv.Header(), nullptr, 0, x, y, &pixel), E_NOTIMPL);
    }
    EXPECT_EQ(VxDibGetPixel(yuv.Header(), nullptr, 0, 0, 0, &pixel), E_NOTIMPL);
    EXPECT_EQ(pixel, 7u);
}

// An index without an entry is black; without memory for the map nothing is written.
TEST(PixelAccess, ShortTablesAndMissingMaps)
{
    Random random;
    Bitmap bitmap(VXPIXEL_PAL8, 2, 1, 3, random);
    bitmap.Pixels()[0] = 3;
    uint64_t pixel = 7;
    EXPECT_EQ(VxDibGetPixel(bitmap.Header(), nullptr, 0, 0, 0, &pixel), S_OK);
    EXPECT_EQ(pixel, 0xFFFF000000000000u);
    VxPlatform_FailAllocationAt(1);
    EXPECT_EQ(VxDibSetPixel(bitmap.Header(), nullptr, 0, 0, 0, &pixel), E_OUTOFMEMORY);
    bitmap.Header()->biClrUsed = 0;
    EXPECT_EQ(VxDibSetPixel(bitmap.Header(), bitmap.Pixels(), 0, 0, 0, &pixel), E_INVALIDARG);
    EXPECT_EQ(bitmap.Pixels()[0], 3);
}

} // namespace
