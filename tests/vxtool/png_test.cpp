#include "pictures.h"

#include <gmock/gmock.h>
#include <png.h>

namespace {

using namespace vxtest;
using namespace vxtool;
using testing::HasSubstr;

constexpr int32_t kWidth = 13, kHeight = 9;

struct PngCase
{
    int colourType, depth;
    bool interlaced, transparency;
};

// Samples as a PNG has them: up to four values a pixel, each of `depth` bits.
struct Samples
{
    PngCase form;
    int channels;
    std::vector<uint16_t> values;
    std::vector<png_color> palette;
    std::vector<png_byte> paletteAlpha;
    png_color_16 key = {};

    uint32_t At(int32_t x, int32_t y, int c) const { return values[size_t((y * kWidth + x) * channels + c)]; }
};

int ChannelCount(int colourType)
{
    return colourType == PNG_COLOR_TYPE_RGB          ? 3
           : colourType == PNG_COLOR_TYPE_RGB_ALPHA  ? 4
           : colourType == PNG_COLOR_TYPE_GRAY_ALPHA ? 2
                                                     : 1;
}

Samples RandomSamples(const PngCase& form, Random& random)
{
    Samples s{form, ChannelCount(form.colourType), {}, {}, {}, {}};
    for (int i = 0; i < kWidth * kHeight * s.channels; ++i)
        s.values.push_back(uint16_t(random.Int(0, (1 << form.depth) - 1)));
    for (int i = 0; i < 1 << std::min(form.depth, 8); ++i) {
        s.palette.push_back({random.Byte(), random.Byte(), random.Byte()});
        s.paletteAlpha.push_back(random.Byte());
    }
    s.key.gray = s.key.red = s.values[0];
    s.key.green = s.channels > 1 ? s.values[1] : 0;
    s.key.blue = s.channels > 2 ? s.values[2] : 0;
    return s;
}

// What a reader must make of a pixel.
Colour Wanted(const Samples& s, int32_t x, int32_t y)
{
    const double top = (1 << s.form.depth) - 1;
    const auto value = [&](int c) { return float(s.At(x, y, c) / top); };
    const bool keyed = s.form.transparency && s.At(x, y, 0) == s.key.red &&
                       (s.channels < 3 || (s.At(x, y, 1) == s.key.green && s.At(x, y, 2) == s.key.blue));
    switch (s.form.colourType) {
    case PNG_COLOR_TYPE_PALETTE: {
        const png_color c = s.palette[s.At(x, y, 0)];
        const float alpha = s.form.transparency ? float(s.paletteAlpha[s.At(x, y, 0)] / 255.0) : 1.0f;
        return {float(c.blue / 255.0), float(c.green / 255.0), float(c.red / 255.0), alpha};
    }
    case PNG_COLOR_TYPE_GRAY:
        return {value(0), value(0), value(0), keyed ? 0.0f : 1.0f};
    case PNG_COLOR_TYPE_GRAY_ALPHA:
        return {value(0), value(0), value(0), value(1)};
    case PNG_COLOR_TYPE_RGB:
        return {value(2), value(1), value(0), keyed ? 0.0f : 1.0f};
    default:
        return {value(2), value(1), value(0), value(3)};
    }
}

std::vector<uint8_t> PackedRow(const Samples& s, int32_t y)
{
    const int depth = s.form.depth;
    std::vector<uint8_t> row(size_t(kWidth * s.channels * depth + 7) / 8);
    for (int i = 0; i < kWidth * s.channels; ++i) {
        const uint32_t value = s.values[size_t(y * kWidth * s.channels + i)];
        const size_t bit = size_t(i * depth);
        if (depth == 16)
            row[bit / 8] = uint8_t(value >> 8), row[bit / 8 + 1] = uint8_t(value);
        else
            row[bit / 8] = uint8_t(row[bit / 8] | value << (8 - depth - int(bit % 8)));
    }
    return row;
}

std::vector<uint8_t> WriteWithLibpng(const Samples& s)
{
    std::vector<uint8_t> bytes;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &bytes,
        [](png_structp p, png_bytep data, size_t count) {
            auto* out = static_cast<std::vector<uint8_t>*>(png_get_io_ptr(p));
            out->insert(out->end(), data, data + count);
        },
        nullptr);
    png_set_IHDR(png, info, kWidth, kHeight, s.form.depth, s.form.colourType,
                 s.form.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    const bool indexed = s.form.colourType == PNG_COLOR_TYPE_PALETTE;
    if (indexed)
        png_set_PLTE(png, info, s.palette.data(), int(s.palette.size()));
    if (s.form.transparency)
        png_set_tRNS(png, info, indexed ? s.paletteAlpha.data() : nullptr,
                     indexed ? int(s.paletteAlpha.size()) : 0, &s.key);
    std::vector<std::vector<uint8_t>> rows(kHeight);
    std::vector<png_bytep> pointers(kHeight);
    for (size_t y = 0; y < kHeight; ++y) {
        rows[y] = PackedRow(s, int32_t(y));
        pointers[y] = rows[y].data();
    }
    png_write_info(png, info);
    png_write_image(png, pointers.data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return bytes;
}

std::vector<PngCase> AllForms()
{
    std::vector<PngCase> forms;
    for (const int colourType : {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_PALETTE, PNG_COLOR_TYPE_RGB,
                                 PNG_COLOR_TYPE_GRAY_ALPHA, PNG_COLOR_TYPE_RGB_ALPHA})
        for (const int depth : {1, 2, 4, 8, 16})
            for (const bool interlaced : {false, true})
                for (const bool transparency : {false, true}) {
                    const bool indexed = colourType == PNG_COLOR_TYPE_PALETTE;
                    const bool small = indexed || colourType == PNG_COLOR_TYPE_GRAY;
                    const bool alpha = (colourType & PNG_COLOR_MASK_ALPHA) != 0;
                    if ((small || depth >= 8) && !(indexed && depth == 16) && !(alpha && transparency))
                        forms.push_back({colourType, depth, interlaced, transparency});
                }
    return forms;
}

TEST(Png, ReadsEveryColourType)
{
    Random random;
    for (const PngCase& form : AllForms()) {
        const Samples samples = RandomSamples(form, random);
        const Picture picture = ParsePicture(WriteWithLibpng(samples), "it");
        ASSERT_EQ(picture.dib.Type(), form.depth == 16 ? VXPIXEL_RGBA64 : VXPIXEL_RGBA32);
        for (int32_t y = 0; y < kHeight; ++y) {
            const auto row = RowOf(picture.dib, y);
            for (int32_t x = 0; x < kWidth; ++x)
                ASSERT_EQ(row[size_t(x)], Wanted(samples, x, y))
                    << "colour type " << form.colourType << ", depth " << form.depth << ", interlaced "
                    << form.interlaced << ", tRNS " << form.transparency << ", at " << x << "," << y;
        }
    }
}

TEST(Png, WhatIsWrittenIsReadBack)
{
    Random random;
    for (const VxPixelType type : {VXPIXEL_GRAY1, VXPIXEL_GRAY2, VXPIXEL_GRAY4, VXPIXEL_GRAY8, VXPIXEL_GRAY16,
                                   VXPIXEL_RGB24, VXPIXEL_RGBA32, VXPIXEL_RGBA64}) {
        const Dib dib = RandomDib(type, 21, 5, random);
        const Picture read = ParsePicture(EncodePng(dib), "it");
        for (int32_t y = 0; y < 5; ++y)
            ASSERT_EQ(RowOf(read.dib, y), RowOf(dib, y)) << NameOfType(type);
    }
}

TEST(Png, EveryPrefixIsRefused)
{
    Random random;
    const auto bytes = WriteWithLibpng(RandomSamples({PNG_COLOR_TYPE_RGB_ALPHA, 8, true, false}, random));
    for (size_t length = 0; length < bytes.size(); ++length)
        ASSERT_NE(Refusal(std::span(bytes).first(length)), "") << length << " bytes";
    EXPECT_THAT(Refusal(std::span(bytes).first(bytes.size() / 2)), HasSubstr("truncated"));
}

TEST(Png, EveryDamagedByteIsRefused)
{
    Random random;
    const auto bytes = WriteWithLibpng(RandomSamples({PNG_COLOR_TYPE_PALETTE, 4, false, true}, random));
    for (size_t at = 0; at < bytes.size(); ++at) {
        auto damaged = bytes;
        damaged[at] ^= uint8_t(1 + random.Int(0, 254));
        ASSERT_NE(Refusal(damaged), "") << "byte " << at;
    }
}

// A header that promises a picture, with a right checksum, in front of nothing much.
std::vector<uint8_t> Promise(uint32_t width, uint32_t height)
{
    std::vector<uint8_t> bytes = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n',
                                  0,    0,   0,   13,  'I',  'H',  'D',  'R'};
    const auto put = [&bytes](uint32_t value) {
        for (const int shift : {24, 16, 8, 0})
            bytes.push_back(uint8_t(value >> shift));
    };
    put(width);
    put(height);
    bytes.insert(bytes.end(), {8, 6, 0, 0, 0});
    uint32_t crc = 0xFFFFFFFF;
    for (size_t i = 12; i < bytes.size(); ++i) {
        crc ^= bytes[i];
        for (int bit = 0; bit < 8; ++bit)
            crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320u : 0);
    }
    put(~crc);
    bytes.insert(bytes.end(), {0, 0, 0, 0, 'I', 'D', 'A', 'T', 0x35, 0xAF, 0x06, 0x1E});
    return bytes;
}

TEST(Png, PromisedSizesAreCheckedBeforeMemoryIsTaken)
{
    EXPECT_THAT(Refusal(Promise(32769, 1)), HasSubstr("too large"));
    EXPECT_THAT(Refusal(Promise(32768, 16384)), HasSubstr("too large"));
    EXPECT_THAT(Refusal(Promise(16384, 16384)), HasSubstr("cannot hold its 16384 rows"));
    EXPECT_THAT(Refusal(Promise(0, 1)), HasSubstr("damaged"));
}

} // namespace
