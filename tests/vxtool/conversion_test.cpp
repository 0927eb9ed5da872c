// Every pixel type to every other, against what is stored before and after, by plain arithmetic.
#include "vxtool/conversion.h"

#include "pictures.h"

#include <gtest/gtest.h>

namespace {

using namespace vxtest;
using namespace vxtool;

bool IsOfBytes(VxPixelType type)
{
    return type == VXPIXEL_RGB24 || type == VXPIXEL_RGB32 || type == VXPIXEL_RGBA32;
}

// What a type keeps of a pixel.
Words Kept(VxPixelType type, const Words& w)
{
    const uint32_t sum = w[0] + w[1] + w[2], mean = sum / 3;
    const auto top = [](uint32_t v, uint32_t bits) { return v >> (16 - bits) << (16 - bits); };
    const auto gray = [](uint32_t v) { return Words{v, v, v, 65535}; };
    const auto byte = [](uint32_t v) { return v / 256 * 257; };
    switch (type) {
    case VXPIXEL_PAL1:
    case VXPIXEL_GRAY1:
        return gray(sum >= 98303 ? 65535 : 0);
    case VXPIXEL_GRAY2:
        return gray(mean / 16384 * 21845);
    case VXPIXEL_GRAY4:
        return gray(mean / 4096 * 4369);
    case VXPIXEL_GRAY8:
        return gray(byte(mean));
    case VXPIXEL_GRAY16:
    case VXPIXEL_GRAY32:
        return gray(mean);
    case VXPIXEL_RGB555:
        return {top(w[0], 5), top(w[1], 5), top(w[2], 5), 65535};
    case VXPIXEL_RGB565:
        return {top(w[0], 5), top(w[1], 6), top(w[2], 5), 65535};
    case VXPIXEL_RGB24:
        return {byte(w[0]), byte(w[1]), byte(w[2]), 65535};
    case VXPIXEL_RGB32:
    case VXPIXEL_RGBA32:
        return {byte(w[0]), byte(w[1]), byte(w[2]), byte(w[3])};
    case VXPIXEL_RGB101010:
        return {top(w[0], 10), top(w[1], 10), top(w[2], 10), w[3] / 16384 * 21845};
    default:
        return w;
    }
}

uint32_t Steps(const RGBQUAD& q, const Words& w)
{
    const auto apart = [](uint32_t byte, uint32_t word) {
        return uint32_t(std::abs(int32_t(byte / 8) - int32_t(word / 2048)));
    };
    return apart(q.rgbBlue, w[0]) + apart(q.rgbGreen, w[1]) + apart(q.rgbRed, w[2]);
}

// No entry is nearer, in steps of 5-bit channels, than the one chosen.
void ExpectNearest(const Dib& result, const Words& stored, const Words& wanted, const std::string& where)
{
    uint32_t nearest = UINT32_MAX, chosen = UINT32_MAX;
    for (const RGBQUAD& q : result.Palette()) {
        nearest = std::min(nearest, Steps(q, wanted));
        if (Words{q.rgbBlue * 257u, q.rgbGreen * 257u, q.rgbRed * 257u, 65535} == stored)
            chosen = std::min(chosen, Steps(q, wanted));
    }
    EXPECT_EQ(chosen, nearest) << where;
}

void ExpectConverted(const Dib& source, const Dib& result)
{
    const bool dithered = source.Type() == VXPIXEL_RGBA128 && IsOfBytes(result.Type());
    for (int32_t y = 0; y < source.Height(); ++y)
        for (int32_t x = 0; x < source.Width(); ++x) {
            const std::string where =
                Join(NameOfType(source.Type()), " to ", NameOfType(result.Type()), " at ", x, ",", y);
            const Words from = StoredWords(source, x, y), got = StoredWords(result, x, y);
            const Words want = Kept(result.Type(), from);
            const Words near = {from[0], from[1], from[2], result.Type() == VXPIXEL_RGB24 ? 65535 : from[3]};
            if (result.Type() == VXPIXEL_PAL4 || result.Type() == VXPIXEL_PAL8)
                ExpectNearest(result, got, from, where);
            else if (dithered)
                for (size_t c = 0; c < 4; ++c)
                    ASSERT_TRUE(got[c] + 257 > near[c] && got[c] < near[c] + 257) << where;
            else
                ASSERT_EQ(got, want) << where;
        }
}

TEST(Conversion, EveryTypeToEveryOther)
{
    for (const VxPixelType from : kFileTypes) {
        const auto source = [from] {
            Random random(from);
            return RandomDib(from, 19, 6, random);
        };
        for (const VxPixelType to : kFileTypes)
            if (to != from)
                ExpectConverted(source(), Converted(source(), to));
    }
}

} // namespace
