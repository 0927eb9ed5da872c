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

struct PrepareCase
{
    const char* name;
    SIZE dest;
    RECT destRect;
    SIZE source;
    RECT sourceRect;
    int32_t want;
    RECT destClip = {}, sourceClip = {};
    int32_t stepX = 0, ratioX = 0;
};

constexpr RECT Pixels(int32_t left, int32_t top, int32_t right, int32_t bottom)
{
    return {left * kOne, top * kOne, right * kOne, bottom * kOne};
}

constexpr int32_t kFar = std::numeric_limits<int32_t>::max();

const PrepareCase kCases[] = {
    {"two to three: the truncated ratio leaves two units out",
     {3, 1},
     Pixels(0, 0, 3, 1),
     {2, 1},
     Pixels(0, 0, 2, 1),
     1,
     Pixels(0, 0, 3, 1),
     {0, 0, 32766, kOne},
     8191,
     10922},
    {"a source rectangle is cut before the ratio",
     {4, 4},
     Pixels(0, 0, 4, 4),
     {4, 4},
     Pixels(-4, 0, 2, 4),
     1,
     Pixels(0, 0, 4, 4),
     Pixels(0, 0, 2, 4),
     16384 / 3,
     kOne / 2},
    {"a destination that is cut takes its part of the source",
     {4, 4},
     Pixels(-4, 0, 4, 4),
     {4, 4},
     Pixels(0, 0, 4, 4),
     1,
     Pixels(0, 0, 4, 4),
     Pixels(2, 0, 4, 4),
     16384 / 3,
     kOne / 2},
    {"less than a pixel of source leaves no step",
     {4, 1},
     Pixels(-60, 0, 4, 1),
     {4, 1},
     Pixels(0, 0, 4, 1),
     1,
     Pixels(0, 0, 4, 1),
     {60 * 1024, 0, kOne * 4, kOne},
     0,
     1024},
    {"under two pixels there is no step",
     {4, 1},
     {0, 0, 2 * kOne - 1, kOne},
     {8, 1},
     Pixels(0, 0, 8, 1),
     1,
     {0, 0, 2 * kOne - 1, kOne},
     {0, 0, 131071, kOne},
     0,
     65538},
    {"a sixteenth is enough",
     {4, 4},
     {0, 0, 1024, 1024},
     {1, 1},
     Pixels(0, 0, 1, 1),
     1,
     {0, 0, 1024, 1024},
     Pixels(0, 0, 1, 1),
     0,
     16 * kOne},
    {"below a sixteenth", {4, 4}, {0, 0, 1023, kOne}, {1, 1}, Pixels(0, 0, 1, 1), 0},
    {"below a sixteenth in the frame", {4, 4}, {-kOne, 0, 1023, kOne}, {1, 1}, Pixels(0, 0, 1, 1), 0},
    {"outside the destination", {4, 4}, Pixels(4, 0, 8, 4), {1, 1}, Pixels(0, 0, 1, 1), 0},
    {"outside the source", {4, 4}, Pixels(0, 0, 4, 4), {4, 4}, Pixels(4, 0, 8, 4), 0},
    {"less than a pixel of source", {4, 4}, Pixels(0, 0, 4, 4), {4, 4}, {0, 0, kOne - 1, kOne}, 0},
    {"inverted", {4, 4}, Pixels(4, 0, 0, 4), {4, 4}, Pixels(0, 0, 4, 4), 0},
    {"no frame", {-1, 4}, Pixels(0, 0, 4, 4), {4, 4}, Pixels(0, 0, 4, 4), 0},
    {"sides that are far apart",
     {4, 4},
     {-kFar, 0, kFar, 4 * kOne},
     {4, 4},
     {-kFar, -kFar, kFar, kFar},
     1,
     Pixels(0, 0, 4, 4),
     {0, 0, 0, 4 * kOne},
     0,
     0},
};

TEST(PrepareSubpixelParam, Table)
{
    for (const PrepareCase& c : kCases) {
        VxSubpixelParam p;
        uint8_t dest = 0, source = 0;
        ASSERT_EQ(VxPrepareSubpixelParam(&p, &dest, &c.dest, 40, &c.destRect, &source, &c.source, -20,
                                         &c.sourceRect),
                  c.want)
            << c.name;
        if (c.want == 0)
            continue;
        EXPECT_EQ(p.destClip, c.destClip) << c.name;
        EXPECT_EQ(p.destRect, c.destRect) << c.name;
        EXPECT_EQ(p.sourceClip, c.sourceClip) << c.name;
        EXPECT_EQ(p.stepX, c.stepX) << c.name;
        EXPECT_EQ(p.ratioX, c.ratioX) << c.name;
        EXPECT_EQ(p.destPixels, &dest);
        EXPECT_EQ(p.sourcePixels, &source);
        EXPECT_EQ(p.destStride, 40);
        EXPECT_EQ(p.sourceStride, -20);
        EXPECT_EQ(p.quantizer, nullptr);
    }
}

TEST(PrepareSubpixelParam, NullRectanglesAreTheFrames)
{
    const SIZE dest{6, 4}, source{3, 8};
    VxSubpixelParam p;
    ASSERT_EQ(VxPrepareSubpixelParam(&p, nullptr, &dest, 24, nullptr, nullptr, &source, 12, nullptr), 1);
    EXPECT_EQ(p.destRect, Pixels(0, 0, 6, 4));
    EXPECT_EQ(p.sourceBounds, Pixels(0, 0, 3, 8));
    EXPECT_EQ(p.ratioX, kOne / 2);
    EXPECT_EQ(p.ratioY, kOne * 2);
    EXPECT_EQ(p.stepX, 2 * kOne / 5);
    EXPECT_EQ(p.stepY, 7 * kOne / 3);
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
    EXPECT_EQ(param_.destGamma, 2.2);
    EXPECT_EQ(param_.sourceGamma, 1.8);
    EXPECT_EQ(param_.flags, 7u);
    EXPECT_EQ(param_.destPalette, nullptr);
    EXPECT_EQ(param_.sourcePalette, nullptr);
    EXPECT_EQ(param_.quantizer, nullptr);
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
