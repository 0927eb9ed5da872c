// What VxDibCopy refuses, and what it does without memory.
#include "dib/curves.h"
#include "support/copy_model.h"
#include "vx/platform/testing.h"

#include <gtest/gtest.h>

namespace {

using namespace vxtest;

constexpr uint32_t kSub = VXDIBF_SUBPIXEL;

struct RefusalCase
{
    const char* name;
    int32_t destType, sourceType;
    CopyArguments a;
    HRESULT want;
};

const RECT kHalfPixel{0, 0, 8192, 8192}, kInside{0, 0, 2 * 16384 + 100, 2 * 16384}, kApart{7, 0, 9, 2};
const RECT kApartBetween{7 * 16384 + 5, 0, 9 * 16384, 16384};

const RefusalCase kRefusals[] = {
    {"YUV destination", 64, 29, {}, VX_E_UNSUPPORTED_MEDIA},
    {"YUV source between pixels", 29, 64, {kInside, {}, 3 | kSub}, S_OK},
    {"destination apart", 29, 27, {kApart, {}, 3}, VX_E_UNSUPPORTED_MEDIA},
    {"source apart", 24, 27, {{}, kApart, 1}, VX_E_UNSUPPORTED_MEDIA},
    {"inverted rectangle", 29, 27, {RECT{4, 0, 1, 4}, RECT{4, 0, 1, 4}, 3}, VX_E_UNSUPPORTED_MEDIA},
    {"dropped to nothing", 29, 27, {kHalfPixel, kHalfPixel, 1 | kSub}, VX_E_UNSUPPORTED_MEDIA},
    {"less than a pixel", 27, 29, {kHalfPixel, {}, 3 | kSub}, S_OK},
    {"apart between pixels", 27, 29, {kApartBetween, {}, 3 | kSub}, S_OK},
    {"apart where scaled", 29, 29, {RECT{7, 0, 9, 2}, RECT{0, 0, 1, 1}, 3}, S_OK},
    {"apart where scaled between pixels", 29, 29, {kApartBetween, {}, 3 | kSub}, S_OK},
};

TEST(DibCopyFailure, RefusalsWriteNothing)
{
    for (const RefusalCase& c : kRefusals) {
        Random random;
        const Picture source(c.sourceType, 5, 4, Rows::Tight, random),
            dest(c.destType, 5, 4, Rows::Tight, random);
        Picture got = dest;
        EXPECT_EQ(Copy(got, source, c.a), c.want) << c.name;
        EXPECT_EQ(got, dest) << c.name;
    }
}

TEST(DibCopyFailure, HeadersWithoutAStrideOrAPaletteAreRefused)
{
    Random random;
    Picture source(27, 4, 4, Rows::Tight, random), dest(24, 4, 4, Rows::Tight, random);
    BITMAPINFOHEADER wide = *source.Header();
    wide.biWidth = 0x7FFFFFFF; // rows of 6 GB
    const RECT corner{0, 0, 2, 2};
    EXPECT_EQ(VxDibCopy(dest.Header(), dest.Pixels(), &corner, dest.Stride(), &wide, source.Pixels(), &corner,
                        0, 3, 0.0, 0.0),
              E_INVALIDARG);
    EXPECT_EQ(VxDibSet(&wide, source.Pixels(), &corner, 0, 0, 0, 0, 0, 0), E_INVALIDARG);
    EXPECT_EQ(
        VxDibCopyInterlace(&wide, source.Pixels(), &corner, 0, &wide, source.Pixels(), &corner, 0, 0, 3),
        E_INVALIDARG);
    dest.Header()->biClrUsed = 0;
    EXPECT_EQ(Copy(dest, source, {}), E_INVALIDARG);
    EXPECT_EQ(Copy(dest, source, {RECT{0, 0, 2 * 16384, 20000}, {}, 3 | kSub}), S_OK);
}

// Null pixels follow the header, in both directions.
TEST(DibCopy, PixelsMayFollowTheirHeaders)
{
    BITMAPINFOHEADER *dest, *source;
    ASSERT_EQ(VxDibAlloc(&dest, 29, 3, 2, nullptr, 0, VXDIBALLOC_ZERO, 0), S_OK);
    ASSERT_EQ(VxDibAlloc(&source, 26, 3, 2, nullptr, 0, VXDIBALLOC_ZERO, 0), S_OK);
    ASSERT_EQ(VxDibSet(source, nullptr, nullptr, 0, 1.0f, 0.0f, 0.0f, 1.0f, 4), S_OK);
    ASSERT_EQ(VxDibCopy(dest, nullptr, nullptr, 0, source, nullptr, nullptr, 0, 4, 0.0, 0.0), S_OK);
    uint32_t pixels[6];
    std::memcpy(pixels, dest + 1, sizeof(pixels));
    for (const uint32_t pixel : pixels)
        EXPECT_EQ(pixel, 0xFFF80000);
    VxDibFree(dest, 0);
    VxDibFree(source, 0);
}

// Each allocation of a copy fails in turn.
TEST(DibCopyFailure, WithoutMemoryCurvesAreEvaluatedAndPalettesRefused)
{
    Random random;
    int32_t failures = 0;
    for (const auto& [to, from] :
         {std::pair(29, 32), {27, 32}, {32, 32}, {32, 29}, {32, 27}, {24, 27}, {23, 32}, {22, 29}})
        for (const uint32_t flags : {2u, 3u, 3u | 0x4F000u, 3u | kSub}) {
            const Picture source(from, 40, 7, Rows::Wide, random, true), dest(to, 40, 7, Rows::Tight, random);
            CopyArguments a{{}, {}, flags, 1.0, 2.2};
            if (flags & kSub)
                a.destRect = a.sourceRect = RECT{100, 0, 30 * 16384, 5 * 16384};
            Picture want = dest;
            ASSERT_EQ(Copy(want, source, a), S_OK);
            for (uint32_t n = 1; n <= 3; ++n) {
                Picture got = dest;
                VxPlatform_FailAllocationAt(n);
                const HRESULT status = Copy(got, source, a);
                VxPlatform_FailAllocationAt(0);
                const bool palette = to < 25 && to > 22 && n == 1;
                failures += palette;
                if (palette) {
                    EXPECT_EQ(status, flags & kSub ? S_OK : E_OUTOFMEMORY);
                    EXPECT_EQ(got, dest);
                } else {
                    EXPECT_EQ(status, S_OK);
                    EXPECT_LE(Difference(got, want), to == 32 ? 2e-3 : 1.0)
                        << "allocation " << n << ", " << to << " from " << from << a;
                }
            }
        }
    EXPECT_EQ(failures, 8);
}

} // namespace
