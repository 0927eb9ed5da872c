// VxDibFlip and VxDibSwapRB against a slow oracle that moves one pixel at a time into a copy.
#include "vx/pixel.h"

#include "support/forms.h"

#include <cstdlib>

namespace {

using namespace vxtest;

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
    uint8_t pixelBytes; // 0 below a byte
};

constexpr Trait kTraits[] = {
    {true, false, false, 0},  // VXPIXEL_PAL4
    {true, false, false, 1},  // VXPIXEL_PAL8
    {true, false, false, 2},  // VXPIXEL_RGB555
    {true, false, false, 2},  // VXPIXEL_RGB565
    {true, true, true, 3},    // VXPIXEL_RGB24
    {true, true, true, 4},    // VXPIXEL_RGB32
    {true, true, true, 4},    // VXPIXEL_RGBA32
    {false, false, false, 4}, // VXPIXEL_RGB101010
    {true, false, false, 8},  // VXPIXEL_RGBA64
    {false, false, true, 16}, // VXPIXEL_RGBA128
};

// Rows of an area change places by whole strides: the frame's gaps travel with them.
Frame Oracle(const Frame& before, int32_t width, int32_t height, const Trait& done)
{
    Frame rows = before;
    for (int32_t y = 0; done.rows && y < height; ++y)
        std::memcpy(rows.Row(y), before.Row(height - 1 - y), size_t(std::abs(before.Stride())));
    Frame want = rows;
    const int32_t channel = done.pixelBytes == 16 ? 4 : 1;
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
            for (int32_t i = 0; i < done.pixelBytes; ++i) {
                const int32_t from = done.swap && i < 3 * channel ? 2 * channel - i + 2 * (i % channel) : i;
                want.Pixel(x, y)[i] = rows.Pixel(done.columns ? width - 1 - x : x, y)[from];
            }
    return want;
}

// An area of the frame's first pixels: what a rectangle of that size means, wherever it stands. In an
// empty one, of 0 by 0, there is nothing to do for any type.
void CheckBoth(int32_t type, Frame& frame, BITMAPINFOHEADER* header, const RECT* rect, int32_t width,
               int32_t height)
{
    SCOPED_TRACE(testing::Message() << "type " << type << ", area " << width << "x" << height);
    const Trait trait = kTraits[type - VXPIXEL_PAL4];
    const bool empty = width == 0;
    for (const bool columns : {false, true})
        for (const bool rows : {false, true}) {
            const Frame want =
                Oracle(frame, width, height,
                       {rows && trait.rows, columns && trait.columns, false, trait.pixelBytes});
            const bool done = empty || (trait.rows && (!columns || trait.columns));
            EXPECT_EQ(VxDibFlip(header, frame.Data(), rect, frame.Stride(), columns * -2, rows * 0x100),
                      done ? S_OK : E_NOTIMPL);
            ASSERT_EQ(frame, want) << "flips " << columns << rows;
        }
    const Frame want = Oracle(frame, width, height, {false, false, trait.swap, trait.pixelBytes});
    EXPECT_EQ(VxDibSwapRB(header, frame.Data(), rect, frame.Stride()),
              empty || trait.swap ? S_OK : E_NOTIMPL);
    ASSERT_EQ(frame, want) << "swap";
}

Frame FrameOf(int32_t type, int32_t width, int32_t height, Rows rows, Random& random)
{
    const int32_t bytes = kTraits[type - VXPIXEL_PAL4].pixelBytes;
    return Frame(bytes ? width : (width + 1) / 2, height, bytes ? bytes : 1, rows, random);
}

TEST(DibFlip, EveryTypeEveryWidthEveryForm)
{
    Random random;
    for (const VectorLevel& form : AllForms()) {
        const OnlyLevel only(form);
        SCOPED_TRACE(form.name);
        for (int32_t type = VXPIXEL_PAL4; type <= VXPIXEL_RGBA128; ++type)
            ForEveryShape([&](int32_t width, Rows rows) {
                const int32_t height = 1 + width % 5;
                Frame frame = FrameOf(type, width, height, rows, random);
                Bitmap bitmap(type, width, height);
                CheckBoth(type, frame, &bitmap.header, nullptr, width, height);
            });
    }
    for (const int32_t width : {4096, 10000}) { // long rows are exchanged in pieces
        Frame frame(width, 5, 1, Rows::Wide, random);
        Bitmap bitmap(VXPIXEL_PAL8, width, 5);
        CheckBoth(VXPIXEL_PAL8, frame, &bitmap.header, nullptr, width, 5);
    }
}

TEST(DibFlip, FindsPixelsAndStrideByTheHeader)
{
    Bitmap bitmap(VXPIXEL_RGB565, 3, 2);
    auto* const rows = reinterpret_cast<uint8_t*>(&bitmap) + 52;
    std::memset(rows, 1, 8);
    std::memset(rows + 8, 0, 8);
    EXPECT_EQ(VxDibFlip(&bitmap.header, nullptr, nullptr, 0, 0, 1), S_OK);
    EXPECT_TRUE(rows[0] == 0 && rows[7] == 0 && rows[8] == 1 && rows[15] == 1);
}

} // namespace
