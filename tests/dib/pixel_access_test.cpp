#include "support/copy_model.h"
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

TEST(PixelAccess, EveryPixelOfEveryTypeReadsAndWritesAsTheModel)
{
    Random random;
    for (int32_t type = VXPIXEL_PAL1; type <= VXPIXEL_RGBA128; ++type) {
        const int32_t bits = ModelOf(type).bits;
        Picture got(type, 11, 5, kAllRows[type % 3], random, true);
        uint8_t* map = nullptr;
        const bool indexed = ModelOf(type).kind == Kind::Index;
        if (indexed) {
            ASSERT_EQ(VxDibCreateColorQuantizer(&map, got.Header()), S_OK);
        }
        const ModelJob job{type, 1, true, reinterpret_cast<const uint8_t*>(got.Table()), map, nullptr};
        for (int32_t y = 0; y < 5; ++y)
            for (int32_t x = 0; x < 11; ++x) {
                uint64_t value = 0;
                ASSERT_EQ(VxDibGetPixel(got.Header(), got.Pixels(), got.Stride(), x, y, &value), S_OK);
                ASSERT_EQ(value, Packed(ModelRead(job, got.Row(4 - y), int64_t(x) * bits)))
                    << type << " at " << x << ", " << y;
                const Channels set{double(random.Byte()) * 257, double(random.Byte()) * 256, 65535.0,
                                   double(random.Byte()) * 200};
                value = Packed(set);
                Picture want = got;
                ModelWrite(job, want.Row(4 - y), int64_t(x) * bits, set);
                ASSERT_EQ(VxDibSetPixel(got.Header(), got.Pixels(), got.Stride(), x, y, &value), S_OK);
                ASSERT_EQ(got, want) << " at " << x << ", " << y;
            }
        GlobalFree(GlobalHandle(map));
    }
}

// An index without an entry is black; without memory for the map nothing is written.
TEST(PixelAccess, ShortTablesAndMissingMaps)
{
    Random random;
    Picture p(VXPIXEL_PAL8, 2, 1, Rows::Tight, random, false, 3);
    p.Row(0)[0] = 3;
    p.Table()[3] = {9, 9, 9, 9}; // behind the last entry
    uint64_t pixel = 7;
    EXPECT_EQ(VxDibGetPixel(p.Header(), p.Pixels(), 0, 0, 0, &pixel), S_OK);
    EXPECT_EQ(pixel, 0xFFFF000000000000u);
    VxPlatform_FailAllocationAt(1);
    EXPECT_EQ(VxDibSetPixel(p.Header(), p.Pixels(), 0, 0, 0, &pixel), E_OUTOFMEMORY);
    p.Header()->biClrUsed = 0;
    EXPECT_EQ(VxDibSetPixel(p.Header(), p.Pixels(), 0, 0, 0, &pixel), E_INVALIDARG);
    EXPECT_EQ(p.Row(0)[0], 3);
}

TEST(PixelAccess, TypeComesBeforePlace)
{
    Random random;
    Picture rgb(VXPIXEL_RGB24, 3, 2, Rows::Tight, random), yuv(VXPIXEL_UYVY, 4, 2, Rows::Tight, random);
    uint64_t pixel = 7;
    for (const auto& [x, y] : {std::pair{-1, 0}, {3, 0}, {0, -1}, {0, 2}, {INT32_MAX, INT32_MIN}}) {
        EXPECT_EQ(VxDibGetPixel(rgb.Header(), nullptr, 0, x, y, &pixel), E_NOTIMPL);
        EXPECT_EQ(VxDibSetPixel(rgb.Header(), nullptr, 0, x, y, &pixel), E_INVALIDARG);
        EXPECT_EQ(VxDibSetPixel(yuv.Header(), nullptr, 0, x, y, &pixel), E_NOTIMPL);
    }
    EXPECT_EQ(VxDibGetPixel(yuv.Header(), nullptr, 0, 0, 0, &pixel), E_NOTIMPL);
    EXPECT_EQ(pixel, 7u);
}

} // namespace
