#include "vx/channels.h"

#include "support/forms.h"

#include <climits>

namespace {

using namespace vxtest;

struct FillCase
{
    const char* name;
    float alpha, red, green, blue;
    uint32_t want;
};

const FillCase kFillCases[] = {
    {"order, and halves of 255.5 are cut", 1.0f, 0.0f, 0.5f, 0.25f, 0xFF008040},
    {"beyond the scale wraps", 1.5f, 2.0f, 1.005f, 256.0f / 255.0f, 0x7FFE0000},
    {"negative values are cut toward zero, then wrap", -0.001f, -0.003f, -0.01f, -1.0f, 0x0000FE02},
    {"large and special values", 1e6f, -1e20f, NAN, INFINITY, 0xC0000000},
};

TEST(Fill, EightBitTable)
{
    for (const FillCase& c : kFillCases) {
        uint32_t pixel = 0x55555555;
        EXPECT_TRUE(Fill(&pixel, 4, 4, 1, 1, c.alpha, c.red, c.green, c.blue));
        EXPECT_EQ(pixel, c.want) << c.name;
    }
}

TEST(Fill, EveryForm)
{
    const uint8_t word[4] = {51, 102, 153, 204};
    ExpectPixelByPixel(
        4, LeaveRandom,
        [](Frame& f) { return Fill(f.Data(), f.Stride(), 4, f.Width(), f.Height(), 0.8f, 0.6f, 0.4f, 0.2f); },
        [&](uint8_t* pixel) { std::memcpy(pixel, word, 4); });
    const float floats[4] = {NAN, -2.0f, 1e30f, 4.0f};
    ExpectPixelByPixel(
        16, LeaveRandom,
        [](Frame& f) {
            return Fill(f.Data(), f.Stride(), 16, f.Width(), f.Height(), 4.0f, 1e30f, -2.0f, NAN);
        },
        [&](uint8_t* pixel) { std::memcpy(pixel, floats, 16); });
}

TEST(BitmapCopy, RowsOfAnyLengthInEveryForm)
{
    Random random;
    for (const VectorLevel& form : AllForms())
        for (const Rows rows : kAllRows)
            for (int32_t bytes = 1; bytes <= 300; bytes += bytes < 140 ? 1 : 53) {
                const Frame src(bytes, 3, 1, Rows::Wide, random);
                Frame want(bytes, 3, 1, rows, random), got = want;
                for (int32_t y = 0; y < 3; ++y)
                    std::memcpy(want.Row(y), src.Row(y), size_t(bytes));
                const OnlyLevel only(form);
                const int32_t width = bytes % 3 == 0 ? bytes / 3 : bytes;
                EXPECT_TRUE(
                    BitmapCopy(got.Data(), got.Stride(), src.Data(), src.Stride(), width, bytes / width, 3));
                ASSERT_EQ(want, got) << form.name << ", " << bytes << " bytes, " << rows;
                BitmapCopy(got.Data(), got.Stride(), got.Data(), got.Stride(), bytes, 1, 3);
                ASSERT_EQ(want, got) << "onto itself, " << form.name << ", " << bytes << " bytes";
            }
}

TEST(BitmapCopy, TheRowLengthIsA32BitProduct)
{
    const uint8_t src[4] = {1, 2, 3, 4};
    uint8_t dst[4] = {};
    EXPECT_TRUE(BitmapCopy(dst, 4, src, 4, 0x40000001, 4, 1)); // 4 after the wrap
    EXPECT_EQ(0, std::memcmp(dst, src, 4));
    for (const int32_t bytesPerPixel : {0, -1, INT_MIN, 0x40000000}) // none, or negative
        EXPECT_TRUE(BitmapCopy(nullptr, 4, nullptr, 4, 2, bytesPerPixel, 1)) << bytesPerPixel;
    EXPECT_TRUE(BitmapCopy(nullptr, 4, nullptr, 4, -1, -4, 1));
}

} // namespace
