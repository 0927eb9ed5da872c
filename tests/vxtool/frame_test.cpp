#include "vxtool/frame.h"

#include "pictures.h"

#include <gtest/gtest.h>

namespace {

using namespace vxtest;
using namespace vxtool;

// Every colour under every alpha, the opaque among them: floats bring it back exactly, bytes as near as 8 bits can, and the
// premultiplied byte is the exact quotient rounded.
TEST(VxtoolFrame, TranslucentPixels)
{
    Dib dib(VXPIXEL_RGBA32, 256, 255);
    for (int32_t y = 0; y < 255; ++y)
        for (int32_t x = 0; x < 256; ++x)
            for (int32_t c = 0; c < 4; ++c)
                dib.Row(y)[4 * x + c] = uint8_t(c == 3 ? y + 1 : x);
    const Frame bytes = ToFrame(dib, Form::Bytes);
    const Dib fromFloats = ToDib(ToFrame(dib, Form::Floats), VXPIXEL_RGBA32),
              fromBytes = ToDib(bytes, VXPIXEL_RGBA32);
    for (int32_t y = 0; y < 255; ++y)
        for (int32_t x = 0; x < 256; ++x) {
            const int32_t alpha = y + 1;
            ASSERT_EQ(bytes.At(x, y)[1], (2 * x * alpha + 255) / 510) << x << " under " << alpha;
            ASSERT_EQ(fromFloats.Row(y)[4 * x + 2], x) << "under " << alpha;
            ASSERT_EQ(fromBytes.Row(y)[4 * x + 3], alpha);
            ASSERT_LE(std::abs(fromBytes.Row(y)[4 * x] - x), (255 / alpha + 1) / 2)
                << x << " under " << alpha;
        }
}

TEST(VxtoolFrame, TypesWithoutAlphaShowThePictureOverBlack)
{
    Frame frame(1, 1, Form::Bytes);
    frame.Set(0, 0, Premultiplied({1.0f, 0.5f, 0.0f, 0.5f}));
    EXPECT_EQ(RowOf(ToDib(frame, VXPIXEL_RGB24), 0)[0], (Colour{128 / 255.0f, 64 / 255.0f, 0.0f, 1.0f}));
}

} // namespace
