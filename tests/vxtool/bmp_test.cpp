#include "pictures.h"

#include <gmock/gmock.h>

namespace {

using namespace vxtest;
using namespace vxtool;
using testing::HasSubstr;

TEST(Bmp, EveryTypeComesBackBitForBit)
{
    Random random;
    for (const VxPixelType type : kFileTypes)
        for (const int32_t width : {1, 7, 8, 33}) {
            const Dib dib = RandomDib(type, width, 5, random);
            const Picture read = ParsePicture(EncodeBmp(dib), "it");
            ASSERT_EQ(read.dib.Type(), type);
            ASSERT_EQ(read.dib.Width(), width);
            ASSERT_EQ(read.dib.Height(), 5);
            for (int32_t y = 0; y < 5; ++y)
                ASSERT_EQ(std::memcmp(read.dib.Row(y), dib.Row(y),
                                      (size_t(width) * size_t(dib.BitsPerPixel()) + 7) / 8),
                          0)
                    << NameOfType(type) << ", width " << width << ", row " << y;
            ASSERT_TRUE(std::ranges::equal(read.dib.Palette(), dib.Palette(), {}, &RGBQUAD::rgbGreen,
                                           &RGBQUAD::rgbGreen));
        }
}

// A file of two rows of two pixels, put together byte by byte: what other programs write.
struct FileParts
{
    uint32_t headerBytes = 40;
    int32_t height = 2;
    uint16_t bits = 32;
    uint32_t compression = 0;
    uint32_t coloursUsed = 0;
    std::vector<uint32_t> masks; // in the header or behind it
    std::vector<uint32_t> palette;
    std::vector<uint8_t> pixels;
    int32_t width = 2;
};

void Put(std::vector<uint8_t>& bytes, size_t at, uint32_t value, size_t count = 4)
{
    if (bytes.size() < at + count)
        bytes.resize(at + count);
    for (size_t i = 0; i < count; ++i)
        bytes[at + i] = uint8_t(value >> (8 * i));
}

std::vector<uint8_t> FileOf(const FileParts& parts)
{
    std::vector<uint8_t> bytes = {'B', 'M'};
    bytes.resize(14 + parts.headerBytes);
    Put(bytes, 14, parts.headerBytes);
    Put(bytes, 18, uint32_t(parts.width));
    Put(bytes, 22, uint32_t(parts.height));
    Put(bytes, 26, 1, 2);
    Put(bytes, 28, parts.bits, 2);
    Put(bytes, 30, parts.compression);
    Put(bytes, 46, parts.coloursUsed);
    for (size_t i = 0; i < parts.masks.size(); ++i)
        Put(bytes, 54 + 4 * i, parts.masks[i]);
    for (const uint32_t entry : parts.palette)
        Put(bytes, bytes.size(), entry);
    Put(bytes, 10, uint32_t(bytes.size()));
    bytes.insert(bytes.end(), parts.pixels.begin(), parts.pixels.end());
    return bytes;
}

struct ForeignCase
{
    const char* name;
    FileParts parts;
    VxPixelType type;
    Colour topLeft;
};

constexpr float kThird = 85.0f / 255.0f;

// The stored rows are the lower one and then the upper one, unless the height is negative.
const ForeignCase kForeign[] = {
    {"24 bits, bottom-up",
     {40, 2, 24, 0, 0, {}, {}, {1, 2, 3, 0, 0, 0, 0, 0, 255, 0, 85, 0, 0, 0, 0, 0}},
     VXPIXEL_RGB24,
     {1.0f, 0.0f, kThird, 1.0f}},
    {"24 bits, top-down",
     {40, -2, 24, 0, 0, {}, {}, {255, 0, 85, 0, 0, 0, 0, 0, 1, 2, 3, 0, 0, 0, 0, 0}},
     VXPIXEL_RGB24,
     {1.0f, 0.0f, kThird, 1.0f}},
    {"24 bits, the last row's padding is missing",
     {40, -2, 24, 0, 0, {}, {}, {255, 0, 85, 0, 0, 0, 0, 0, 1, 2, 3, 0, 0, 0}},
     VXPIXEL_RGB24,
     {1.0f, 0.0f, kThird, 1.0f}},
    {"32 bits, the fourth byte is not alpha",
     {40, -2, 32, 0, 0, {}, {}, {255, 0, 85, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
     VXPIXEL_RGB32,
     {1.0f, 0.0f, kThird, 1.0f}},
    {"32 bits with an alpha mask in a header of 56 bytes",
     {56,
      -2,
      32,
      3,
      0,
      {0xFF0000, 0xFF00, 0xFF, 0xFF000000},
      {},
      {255, 0, 85, 85, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
     VXPIXEL_RGBA32,
     {1.0f, 0.0f, kThird, kThird}},
    {"32 bits, red first, with alpha in a header of 124 bytes",
     {124,
      -2,
      32,
      3,
      0,
      {0xFF, 0xFF00, 0xFF0000, 0xFF000000},
      {},
      {255, 0, 85, 85, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
     VXPIXEL_RGBA32,
     {kThird, 0.0f, 1.0f, kThird}},
    {"four masks behind a header of 40 bytes",
     {40,
      -2,
      32,
      6,
      0,
      {0xFF, 0xFF00, 0xFF0000, 0xFF000000},
      {},
      {255, 0, 85, 85, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
     VXPIXEL_RGBA32,
     {kThird, 0.0f, 1.0f, kThird}},
    {"16 bits of 4 a channel",
     {108, -2, 16, 3, 0, {0xF00, 0xF0, 0xF, 0xF000}, {}, {0x05, 0xFA, 0, 0, 0, 0, 0, 0}},
     VXPIXEL_RGBA32,
     {kThird, 0.0f, 170.0f / 255.0f, 1.0f}},
    {"10 bits a channel, red lowest: too deep for 8",
     {40,
      -2,
      32,
      3,
      0,
      {0x3FF, 0xFFC00, 0x3FF00000},
      {},
      {0xFF, 0x03, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
     VXPIXEL_RGBA64,
     {0.0f, 0.0f, 1.0f, 1.0f}},
    {"16 bits of 5, 6, 5 in a header of 52 bytes",
     {52, -2, 16, 3, 0, {0xF800, 0x7E0, 0x1F}, {}, {0x1F, 0xF8, 0, 0, 0, 0, 0, 0}},
     VXPIXEL_RGB565,
     {1.0f, 0.0f, 1.0f, 1.0f}},
    {"8 bits with a short palette; an index behind it is black",
     {40, -2, 8, 0, 2, {}, {0x000000, 0x0055FF}, {1, 9, 0, 0, 0, 0, 0, 0}},
     VXPIXEL_PAL8,
     {1.0f, kThird, 0.0f, 1.0f}},
    {"1 bit with a full palette of no told length",
     {40, -2, 1, 0, 0, {}, {0x000000, 0x0055FF}, {0x80, 0, 0, 0, 0, 0, 0, 0}},
     VXPIXEL_PAL1,
     {1.0f, kThird, 0.0f, 1.0f}},
};

TEST(Bmp, ForeignFiles)
{
    for (const ForeignCase& c : kForeign) {
        const auto bytes = FileOf(c.parts);
        ASSERT_EQ(Refusal(bytes), "") << c.name;
        const Dib dib = std::move(ParsePicture(bytes, "it").dib);
        EXPECT_EQ(dib.Type(), c.type) << c.name;
        EXPECT_EQ(RowOf(dib, 0)[0], c.topLeft) << c.name;
        EXPECT_NE(RowOf(dib, 1)[0], c.topLeft) << c.name;
    }
}

TEST(Bmp, IndexBehindThePaletteIsBlack)
{
    const std::vector<uint8_t> pixels = {1, 9, 0, 0, 0, 0, 0, 0};
    const auto two = FileOf({40, -2, 8, 0, 2, {}, {0x111111, 0x0055FF}, pixels});
    EXPECT_EQ(RowOf(ParsePicture(two, "it").dib, 0)[1], Gray(0.0f));
    const auto none = FileOf({40, -2, 8, 0, 0, {}, {}, pixels});
    EXPECT_EQ(RowOf(ParsePicture(none, "it").dib, 0)[0], Gray(0.0f));
}

struct HostileCase
{
    const char* name;
    size_t at;
    uint32_t value;
    size_t count;
    const char* sentence;
};

// One field of a good file of 24 bits, 2 by 2, is changed.
constexpr HostileCase kHostile[] = {
    {"old header", 14, 12, 4, "header of 12 bytes"},
    {"huge header", 14, 0xFFFFFFFF, 4, "header of 4294967295 bytes"},
    {"header longer than the file", 14, 124, 4, "truncated"},
    {"no width", 18, 0, 4, "no pixels"},
    {"negative width", 18, 0xFFFFFFFE, 4, "too large"},
    {"widest", 18, 0x7FFFFFFF, 4, "too large"},
    {"wider than the limit", 18, 32769, 4, "too large"},
    {"no height", 22, 0, 4, "no pixels"},
    {"lowest height", 22, 0x80000000, 4, "too large"},
    {"more rows than bytes", 22, 30000, 4, "it holds 16 of"},
    {"no bits", 28, 0, 2, "0 bits"},
    {"2 bits", 28, 2, 2, "2 bits"},
    {"64 bits", 28, 64, 2, "64 bits"},
    {"run-length coded", 30, 1, 4, "RLE"},
    {"run-length coded", 30, 2, 4, "RLE"},
    {"a JPEG inside", 30, 4, 4, "JPEG"},
    {"YUV", 30, 0x59565955, 4, "0x59565955"},
    {"masks for 24 bits", 30, 3, 4, "masks for pixels of 24 bits"},
    {"pixels inside the header", 10, 20, 4, "cannot begin at byte 20"},
    {"pixels behind the end", 10, 0xFFFFFFFF, 4, "cannot begin at byte 4294967295"},
};

TEST(Bmp, HostileHeaders)
{
    const auto good = FileOf({40, 2, 24, 0, 0, {}, {}, std::vector<uint8_t>(16)});
    ASSERT_EQ(Refusal(good), "");
    for (const HostileCase& c : kHostile) {
        auto bytes = good;
        Put(bytes, c.at, c.value, c.count);
        EXPECT_THAT(Refusal(bytes), HasSubstr(c.sentence)) << c.name;
    }
}

TEST(Bmp, HostileMasks)
{
    const auto sentence = [](uint16_t bits, std::vector<uint32_t> masks) {
        return Refusal(FileOf({56, 2, bits, 3, 0, std::move(masks), {}, std::vector<uint8_t>(16)}));
    };
    EXPECT_EQ(sentence(32, {0xFF0000, 0xFF00, 0xFF, 0}), "");
    EXPECT_THAT(sentence(32, {0, 0, 0, 0xFF}), HasSubstr("not runs of bits"));
    EXPECT_THAT(sentence(32, {0xFF00FF, 0xFF00, 0xFF, 0}), HasSubstr("not runs of bits"));
    EXPECT_THAT(sentence(16, {0x1F0000, 0x3E0, 0x1F, 0}), HasSubstr("not runs of bits"));
}

TEST(Bmp, EveryPrefixIsRefused)
{
    Random random;
    for (const VxPixelType type : {VXPIXEL_RGBA32, VXPIXEL_RGB565, VXPIXEL_PAL4}) {
        const auto bytes = EncodeBmp(RandomDib(type, 8, 3, random));
        for (size_t length = 0; length < bytes.size(); ++length)
            ASSERT_NE(Refusal(std::span(bytes).first(length)), "")
                << NameOfType(type) << ", " << length << " bytes";
    }
}

} // namespace
