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

using Words = std::vector<uint32_t>;

// A file of two rows of two pixels, put together as other programs write them: the first pixel of the
// upper row is given, all others are 0.
struct FileParts
{
    uint32_t headerBytes;
    int32_t height; // negative for a file with the upper row first
    uint16_t bits;
    uint32_t compression, coloursUsed;
    Words masks; // in the header or behind it
    Words palette;
    std::vector<uint8_t> topLeft;
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
    Put(bytes, 18, 2);
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
    const size_t stride = parts.bits > 16 ? 8 : 4, upper = bytes.size() + (parts.height < 0 ? 0 : stride);
    bytes.resize(bytes.size() + 2 * stride);
    std::ranges::copy(parts.topLeft, bytes.begin() + int64_t(upper));
    return bytes;
}

struct ForeignCase
{
    const char* name;
    FileParts parts;
    VxPixelType type;
    uint32_t topLeft; // RRGGBBAA
};

const Words kBlueFirst = {0xFF0000, 0xFF00, 0xFF, 0xFF000000},
            kRedFirst = {0xFF, 0xFF00, 0xFF0000, 0xFF000000}, kFour = {0xF00, 0xF0, 0xF, 0xF000},
            kTen = {0x3FF, 0xFFC00, 0x3FF00000}, k565 = {0xF800, 0x7E0, 0x1F},
            kTwoColours = {0x111111, 0x0055FF};

const ForeignCase kForeign[] = {
    {"bottom-up", {40, 2, 24, 0, 0, {}, {}, {255, 0, 85}}, VXPIXEL_RGB24, 0x5500FFFF},
    {"top-down", {40, -2, 24, 0, 0, {}, {}, {255, 0, 85}}, VXPIXEL_RGB24, 0x5500FFFF},
    {"the fourth byte is not alpha", {40, -2, 32, 0, 0, {}, {}, {255, 0, 85, 9}}, VXPIXEL_RGB32, 0x5500FFFF},
    {"alpha mask", {56, -2, 32, 3, 0, kBlueFirst, {}, {255, 0, 85, 85}}, VXPIXEL_RGBA32, 0x5500FF55},
    {"red first", {124, -2, 32, 3, 0, kRedFirst, {}, {255, 0, 85, 85}}, VXPIXEL_RGBA32, 0xFF005555},
    {"four masks behind", {40, -2, 32, 6, 0, kRedFirst, {}, {255, 0, 85, 85}}, VXPIXEL_RGBA32, 0xFF005555},
    {"4 bits a channel", {108, -2, 16, 3, 0, kFour, {}, {0x05, 0xFA}}, VXPIXEL_RGBA32, 0xAA0055FF},
    {"too deep for 8 bits", {40, -2, 32, 3, 0, kTen, {}, {0xFF, 3}}, VXPIXEL_RGBA64, 0xFF0000FF},
    {"5, 6, 5", {52, -2, 16, 3, 0, k565, {}, {0x1F, 0xF8}}, VXPIXEL_RGB565, 0xF800F8FF},
    {"short palette", {40, -2, 8, 0, 2, {}, kTwoColours, {1}}, VXPIXEL_PAL8, 0x0055FFFF},
    {"an index behind the palette", {40, -2, 8, 0, 2, {}, kTwoColours, {9}}, VXPIXEL_PAL8, 0x000000FF},
    {"palette of no told length", {40, -2, 1, 0, 0, {}, kTwoColours, {0x80}}, VXPIXEL_PAL1, 0x0055FFFF},
    {"no palette", {40, -2, 8, 0, 0, {}, {}, {1}}, VXPIXEL_PAL8, 0x000000FF},
};

TEST(Bmp, ForeignFiles)
{
    for (const ForeignCase& c : kForeign) {
        const auto bytes = FileOf(c.parts);
        ASSERT_EQ(Refusal(bytes), "") << c.name;
        const Dib dib = std::move(ParsePicture(bytes, "it").dib);
        EXPECT_EQ(dib.Type(), c.type) << c.name;
        EXPECT_EQ(ColourCode(RowOf(dib, 0)[0]), c.topLeft) << c.name;
    }
    const auto whole = FileOf(kForeign[1].parts);
    EXPECT_EQ(Refusal(std::span(whole).first(whole.size() - 2)), "") << "the last row needs no padding";
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
    {"wider than the limit", 18, 32769, 4, "too large"},
    {"no height", 22, 0, 4, "no pixels"},
    {"more rows than bytes", 22, 30000, 4, "it holds 16 of"},
    {"2 bits", 28, 2, 2, "2 bits"},
    {"run-length coded", 30, 1, 4, "RLE"},
    {"a JPEG inside", 30, 4, 4, "JPEG"},
    {"YUV", 30, 0x59565955, 4, "0x59565955"},
    {"masks for 24 bits", 30, 3, 4, "masks for pixels of 24 bits"},
    {"pixels inside the header", 10, 20, 4, "cannot begin at byte 20"},
    {"pixels behind the end", 10, 0xFFFFFFFF, 4, "cannot begin at byte 4294967295"},
};

TEST(Bmp, HostileHeaders)
{
    const auto good = FileOf({40, 2, 24, 0, 0, {}, {}, {}});
    ASSERT_EQ(Refusal(good), "");
    for (const HostileCase& c : kHostile) {
        auto bytes = good;
        Put(bytes, c.at, c.value, c.count);
        EXPECT_THAT(Refusal(bytes), HasSubstr(c.sentence)) << c.name;
    }
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
