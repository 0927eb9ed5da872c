#include "vx/dib.h"
#include "vx/platform/memory.h"
#include "vx/scale.h"

#include <gtest/gtest.h>
#include <limits>
#include <ostream>
#include <vector>

std::ostream& operator<<(std::ostream& out, const RECT& r)
{
    return out << r.left << " " << r.top << " " << r.right << " " << r.bottom;
}

bool operator==(const RECT& a, const RECT& b)
{
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

namespace {

constexpr int32_t kOne = 16384;

struct Side
{
    int32_t first, last;
};

constexpr int32_t kFar = std::numeric_limits<int32_t>::max();

// The sides of one axis; sizes are in pixels, all else in 1/16384 of one.
constexpr struct
{
    const char* name;
    int32_t destSize;
    Side dest;
    int32_t sourceSize;
    Side source;
    int32_t want;
    Side destClip = {}, sourceClip = {};
    int32_t step = 0, ratio = 0;
} kCases[] = {
    // clang-format off
    {"the truncated ratio leaves two units out", 3, {0, 3 * kOne}, 2, {0, 2 * kOne}, 1,
     {0, 3 * kOne}, {0, 32766}, 8191, 10922},
    {"a source is cut before the ratio", 4, {0, 4 * kOne}, 4, {-4 * kOne, 2 * kOne}, 1,
     {0, 4 * kOne}, {0, 2 * kOne}, kOne / 3, kOne / 2},
    {"a destination that is cut takes its part", 4, {-4 * kOne, 4 * kOne}, 4, {0, 4 * kOne}, 1,
     {0, 4 * kOne}, {2 * kOne, 4 * kOne}, kOne / 3, kOne / 2},
    {"less than a pixel of source leaves no step", 4, {-60 * kOne, 4 * kOne}, 4, {0, 4 * kOne}, 1,
     {0, 4 * kOne}, {60 * 1024, 4 * kOne}, 0, 1024},
    {"under two pixels there is no step", 4, {0, 2 * kOne - 1}, 8, {0, 8 * kOne}, 1,
     {0, 2 * kOne - 1}, {0, 131071}, 0, 65538},
    {"a sixteenth is enough", 4, {0, 1024}, 1, {0, kOne}, 1, {0, 1024}, {0, kOne}, 0, 16 * kOne},
    {"below a sixteenth", 4, {0, 1023}, 1, {0, kOne}, 0},
    {"below a sixteenth in the frame", 4, {-kOne, 1023}, 1, {0, kOne}, 0},
    {"outside the destination", 4, {4 * kOne, 8 * kOne}, 1, {0, kOne}, 0},
    {"outside the source", 4, {0, 4 * kOne}, 4, {4 * kOne, 8 * kOne}, 0},
    {"less than a pixel of source", 4, {0, 4 * kOne}, 4, {0, kOne - 1}, 0},
    {"inverted", 4, {4 * kOne, 0}, 4, {0, 4 * kOne}, 0},
    {"no frame", -1, {0, 4 * kOne}, 4, {0, 4 * kOne}, 0},
    {"sides that are far apart", 4, {-kFar, kFar}, 4, {-kFar, kFar}, 1, {0, 4 * kOne}, {0, 0}, 0, 0},
    // clang-format on
};

// Each case along X and along Y, beside an axis on which nothing happens.
TEST(PrepareSubpixelParam, Table)
{
    for (const auto& c : kCases)
        for (const bool alongY : {false, true}) {
            const auto rect = [alongY](const Side& s) {
                return alongY ? RECT{0, s.first, 4 * kOne, s.last} : RECT{s.first, 0, s.last, 4 * kOne};
            };
            const auto size = [alongY](int32_t s) { return alongY ? SIZE{4, s} : SIZE{s, 4}; };
            const SIZE destSize = size(c.destSize), sourceSize = size(c.sourceSize);
            const RECT destRect = rect(c.dest), sourceRect = rect(c.source);
            VxSubpixelParam p;
            uint8_t dest = 0, source = 0;
            ASSERT_EQ(VxPrepareSubpixelParam(&p, &dest, &destSize, 40, &destRect, &source, &sourceSize, -20,
                                             &sourceRect),
                      c.want)
                << c.name;
            if (c.want == 0)
                continue;
            EXPECT_EQ(p.destClip, rect(c.destClip)) << c.name;
            EXPECT_EQ(p.destRect, destRect) << c.name;
            EXPECT_EQ(p.sourceClip, rect(c.sourceClip)) << c.name;
            EXPECT_EQ(alongY ? p.stepY : p.stepX, c.step) << c.name;
            EXPECT_EQ(alongY ? p.ratioY : p.ratioX, c.ratio) << c.name;
            EXPECT_TRUE(p.destPixels == &dest && p.sourcePixels == &source && p.destStride == 40 &&
                        p.sourceStride == -20 && p.quantizer == nullptr);
        }
}

class DibPrepare : public testing::Test
{
protected:
    BITMAPINFOHEADER* Dib(int32_t type, int32_t width, int32_t height, int32_t colours = 0)
    {
        BITMAPINFOHEADER* dib = nullptr;
        EXPECT_EQ(VxDibAlloc(&dib, type, width, height, nullptr, colours, VXDIBALLOC_ZERO, 0), S_OK);
        dibs_.push_back(dib);
        return dib;
    }
    ~DibPrepare() override
    {
        DibCleanupSubpixelParam(&param_);
        for (BITMAPINFOHEADER* dib : dibs_)
            VxDibFree(dib, 0);
    }
    int32_t Prepare(const BITMAPINFOHEADER* dest, const RECT* destRect, const BITMAPINFOHEADER* source)
    {
        return DibPrepareSubpixelParam(&param_, dest, 2.2, nullptr, destRect, 0, source, 1.8, nullptr,
                                       nullptr, 0, 7);
    }

    VxSubpixelParam param_{};

private:
    std::vector<BITMAPINFOHEADER*> dibs_;
};

TEST_F(DibPrepare, PointsAtTopRowsAndRunsDown)
{
    const BITMAPINFOHEADER* const dest = Dib(VXPIXEL_RGB24, 5, 3);
    const BITMAPINFOHEADER* const source = Dib(VXPIXEL_RGBA32, 4, 2);
    ASSERT_EQ(Prepare(dest, nullptr, source), 1);
    EXPECT_EQ(param_.destPixels, reinterpret_cast<const uint8_t*>(dest) + 40 + 2 * 16);
    EXPECT_EQ(param_.destStride, -16);
    EXPECT_EQ(param_.sourcePixels, reinterpret_cast<const uint8_t*>(source) + 40 + 16);
    EXPECT_EQ(param_.sourceStride, -16);
    EXPECT_EQ(param_.destHeader, dest);
    EXPECT_EQ(param_.sourceHeader, source);
    EXPECT_TRUE(param_.destGamma == 2.2 && param_.sourceGamma == 1.8 && param_.flags == 7);
    EXPECT_FALSE(param_.destPalette || param_.sourcePalette || param_.quantizer);
}

TEST_F(DibPrepare, MakesTheColourMapOfAPaletteDestination)
{
    const BITMAPINFOHEADER* const palette = Dib(VXPIXEL_PAL8, 4, 4, 16);
    const BITMAPINFOHEADER* const colours = Dib(VXPIXEL_RGB32, 4, 4);
    ASSERT_EQ(Prepare(palette, nullptr, colours), 1);
    EXPECT_EQ(param_.destPalette, reinterpret_cast<const void*>(palette + 1));
    ASSERT_NE(param_.quantizer, nullptr);
    const HGLOBAL map = GlobalHandle(param_.quantizer);
    DibCleanupSubpixelParam(&param_);
    EXPECT_EQ(param_.quantizer, nullptr);
    EXPECT_EQ(GlobalFlags(map), GMEM_INVALID_HANDLE);
    ASSERT_EQ(Prepare(colours, nullptr, palette), 1);
    EXPECT_EQ(param_.quantizer, nullptr);
    EXPECT_EQ(param_.sourcePalette, reinterpret_cast<const void*>(palette + 1));
    DibCleanupSubpixelParam(nullptr);
}

TEST_F(DibPrepare, Refuses)
{
    const BITMAPINFOHEADER* const colours = Dib(VXPIXEL_RGB32, 4, 4);
    const RECT almostPixel{0, 0, kOne - 1, kOne}, pixel{0, 0, kOne, kOne};
    EXPECT_EQ(Prepare(Dib(VXPIXEL_UYVY, 4, 4), nullptr, colours), 0);
    EXPECT_EQ(Prepare(colours, nullptr, Dib(VXPIXEL_I420, 4, 4)), 0);
    EXPECT_EQ(Prepare(colours, &almostPixel, colours), 0);
    EXPECT_EQ(Prepare(colours, &pixel, colours), 1);
    BITMAPINFOHEADER* const noColours = Dib(VXPIXEL_PAL8, 4, 4, 16);
    noColours->biClrUsed = 0;
    EXPECT_EQ(Prepare(noColours, nullptr, colours), 0);
}

} // namespace
