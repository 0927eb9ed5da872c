// VxDibFlip and VxDibSwapRB against a slow oracle that moves one pixel at a time into a copy.
#include "vx/pixel.h"

#include "support/frames.h"
#include "support/vector_levels.h"

#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <vector>

namespace {

using namespace vxtest;

constexpr int32_t kFirstType = VXPIXEL_PAL4, kLastType = VXPIXEL_RGBA128;

// A header with its masks or table, without pixels.
struct Bitmap
{
    BITMAPINFOHEADER header;
    RGBQUAD table[256];

    Bitmap(int32_t type, int32_t width, int32_t height)
    {
        VxVideo_InitBitmapInfo(&header, type, width, height, nullptr, 0, nullptr);
    }
};

struct Trait
{
    bool rows, columns, swap;
    int32_t pixelBytes; // 0 below a byte
};

Trait TraitOf(int32_t type)
{
    switch (type) {
    case VXPIXEL_PAL4:
        return {true, false, false, 0};
    case VXPIXEL_PAL8:
        return {true, false, false, 1};
    case VXPIXEL_RGB555:
    case VXPIXEL_RGB565:
        return {true, false, false, 2};
    case VXPIXEL_RGB24:
        return {true, true, true, 3};
    case VXPIXEL_RGB32:
    case VXPIXEL_RGBA32:
        return {true, true, true, 4};
    case VXPIXEL_RGBA64:
        return {true, false, false, 8};
    case VXPIXEL_RGBA128:
        return {false, false, true, 16};
    default:
        return {false, false, false, 4};
    }
}

// The rows of an area, whole strides: the frame's gaps travel with the rows.
void OracleFlipRows(Frame& frame, int32_t height)
{
    const Frame before = frame;
    const size_t rowBytes = size_t(std::abs(frame.Stride()));
    for (int32_t y = 0; y < height; ++y)
        std::memcpy(frame.Row(y), before.Row(height - 1 - y), rowBytes);
}

void OracleFlipColumns(Frame& frame, int32_t width, int32_t height, int32_t pixelBytes)
{
    const Frame before = frame;
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
            std::memcpy(frame.Pixel(x, y), before.Pixel(width - 1 - x, y), size_t(pixelBytes));
}

void OracleSwap(Frame& frame, int32_t width, int32_t height, int32_t pixelBytes)
{
    const Frame before = frame;
    const int32_t channel = pixelBytes == 16 ? 4 : 1;
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
            for (int32_t c = 0; c < 3; ++c)
                std::memcpy(frame.Pixel(x, y) + c * channel, before.Pixel(x, y) + (2 - c) * channel,
                            size_t(channel));
}

// An area of the frame's first pixels: what a rectangle of that size means, wherever it stands.
void CheckBoth(int32_t type, Frame& frame, Bitmap& bitmap, const RECT* rect, int32_t width, int32_t height)
{
    const Trait trait = TraitOf(type);
    for (int flips = 0; flips < 4; ++flips) {
        const int32_t horizontal = flips & 1 ? -2 : 0, vertical = flips & 2 ? 0x100 : 0;
        Frame want = frame;
        if (vertical && trait.rows)
            OracleFlipRows(want, height);
        if (horizontal && trait.columns)
            OracleFlipColumns(want, width, height, trait.pixelBytes);
        const bool done = trait.rows && (!horizontal || trait.columns);
        EXPECT_EQ(VxDibFlip(&bitmap.header, frame.Data(), rect, frame.Stride(), horizontal, vertical),
                  done ? S_OK : E_NOTIMPL);
        ASSERT_EQ(frame, want) << "type " << type << ", flips " << flips << ", area " << width << "x"
                               << height;
    }
    Frame want = frame;
    if (trait.swap)
        OracleSwap(want, width, height, trait.pixelBytes);
    EXPECT_EQ(VxDibSwapRB(&bitmap.header, frame.Data(), rect, frame.Stride()), trait.swap ? S_OK : E_NOTIMPL);
    ASSERT_EQ(frame, want) << "type " << type << ", swap, area " << width << "x" << height;
}

Frame FrameOf(int32_t type, int32_t width, int32_t height, Rows rows, Random& random)
{
    const int32_t bytes = TraitOf(type).pixelBytes;
    return bytes ? Frame(width, height, bytes, rows, random)
                 : Frame((width + 1) / 2, height, 1, rows, random);
}

TEST(DibFlip, EveryTypeEveryWidthEveryForm)
{
    std::vector<VectorLevel> levels = VectorLevels();
    levels.push_back(kPlain);
    Random random;
    for (const VectorLevel& level : levels) {
        const OnlyLevel only(level);
        for (int32_t type = kFirstType; type <= kLastType; ++type)
            for (const Rows rows : kAllRows)
                for (int32_t width = 1; width <= 70; ++width) {
                    SCOPED_TRACE(level.name);
                    const int32_t height = 1 + width % 5;
                    Frame frame = FrameOf(type, width, height, rows, random);
                    Bitmap bitmap(type, width, height);
                    CheckBoth(type, frame, bitmap, nullptr, width, height);
                    if (HasFatalFailure())
                        return;
                }
    }
}

TEST(DibFlip, ARectangleGivesTheSizeOnly)
{
    struct
    {
        RECT rect;
        int32_t width, height;
    } const cases[] = {
        {{3, 2, 9, 7}, 6, 5},
        {{-5, -5, 4, 3}, 4, 3},
        {{8, 8, 100, 100}, 4, 3},
        {{12, 0, 20, 5}, 0, 0},
        {{0, -9, 5, 0}, 0, 0},
        {{5, 5, 5, 9}, 0, 0},
        {{7, 7, 2, 2}, 0, 0},
        {{0, 0, 1, 1}, 1, 1},
        {{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, 12, 11},
    };
    Random random;
    for (const auto& c : cases)
        for (const int32_t type : {VXPIXEL_PAL8, VXPIXEL_RGB24, VXPIXEL_RGBA32, VXPIXEL_RGBA128}) {
            Frame frame = FrameOf(type, 12, 11, Rows::Wide, random);
            Bitmap bitmap(type, 12, 11);
            if (c.width > 0) {
                CheckBoth(type, frame, bitmap, &c.rect, c.width, c.height);
                continue;
            }
            const Frame untouched = frame;
            EXPECT_EQ(VxDibFlip(&bitmap.header, frame.Data(), &c.rect, frame.Stride(), 1, 1), S_OK);
            EXPECT_EQ(VxDibSwapRB(&bitmap.header, frame.Data(), &c.rect, frame.Stride()), S_OK);
            EXPECT_EQ(frame, untouched);
        }
}

TEST(DibFlip, LongRowsAreExchangedInPieces)
{
    Random random;
    for (const int32_t width : {4095, 4096, 4097, 10000}) {
        Frame frame(width, 5, 1, Rows::Wide, random);
        Bitmap bitmap(VXPIXEL_PAL8, width, 5);
        CheckBoth(VXPIXEL_PAL8, frame, bitmap, nullptr, width, 5);
    }
}

TEST(DibFlip, FindsPixelsAndStrideByTheHeader)
{
    for (const int32_t type : {VXPIXEL_PAL8, VXPIXEL_RGB565, VXPIXEL_RGB24}) {
        BITMAPINFOHEADER* dib = nullptr;
        ASSERT_EQ(VxDibAlloc(&dib, type, 3, 2, nullptr, 0, VXDIBALLOC_ZERO, 0), S_OK);
        const uint32_t front = type == VXPIXEL_PAL8 ? 1060 : type == VXPIXEL_RGB565 ? 52 : 40;
        const uint32_t stride = dib->biSizeImage / 2;
        auto* const pixels = reinterpret_cast<uint8_t*>(dib) + front;
        std::memset(pixels, 1, stride);
        EXPECT_EQ(VxDibFlip(dib, nullptr, nullptr, 0, 0, 1), S_OK);
        EXPECT_EQ(pixels[0] + pixels[stride - 1], 0);
        EXPECT_EQ(pixels[stride] + pixels[2 * stride - 1], 2);
        VxDibFree(dib, 0);
    }
}

TEST(DibFlip, TypeIsTestedBeforeTheAreaAndTheAreaBeforeTheWorker)
{
    struct
    {
        const char* name;
        int32_t type, width, height;
        HRESULT flip, swap;
    } const cases[] = {
        {"no type of these", VXPIXEL_GRAY8, 0, 0, E_NOTIMPL, E_NOTIMPL},
        {"YUV", VXPIXEL_UYVY, 0, 0, E_NOTIMPL, E_NOTIMPL},
        {"empty, though there is no worker", VXPIXEL_RGB101010, 0, 5, S_OK, S_OK},
        {"negative height is empty", VXPIXEL_RGBA32, 5, -5, S_OK, S_OK},
        {"negative width is empty", VXPIXEL_RGBA32, -5, 5, S_OK, S_OK},
        {"no stride for such a row", VXPIXEL_RGBA32, 0x08000000, 1, E_INVALIDARG, E_INVALIDARG},
    };
    for (const auto& c : cases) {
        Bitmap bitmap(c.type, c.width, c.height);
        uint8_t pixel = 7;
        EXPECT_EQ(VxDibFlip(&bitmap.header, &pixel, nullptr, 0, 1, 1), c.flip) << c.name;
        EXPECT_EQ(VxDibSwapRB(&bitmap.header, &pixel, nullptr, 0), c.swap) << c.name;
        EXPECT_EQ(pixel, 7) << c.name;
    }
}

} // namespace
