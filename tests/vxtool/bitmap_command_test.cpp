// What the commands on bitmaps make of small pictures, against their rules worked out in plain arithmetic.
#include "pictures.h"
#include "run_tool.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

namespace {

using namespace vxtest;
using namespace vxtool;

// Blue of each pixel, 0 to 255; with places outside put on the edge.
struct Plane
{
    int32_t width, height;
    std::vector<double> values;

    explicit Plane(const Dib& dib) : width(dib.Width()), height(dib.Height())
    {
        for (int32_t y = 0; y < height; ++y)
            for (const Colour& c : RowOf(dib, y))
                values.push_back(c.blue * 255.0);
    }
    double At(int32_t x, int32_t y) const
    {
        return values[size_t(std::clamp(y, 0, height - 1) * width + std::clamp(x, 0, width - 1))];
    }
};

class BitmapCommand : public testing::Test
{
protected:
    // Opaque and random.
    void MakePicture(const char* name, int32_t width, int32_t height)
    {
        Dib dib = RandomDib(VXPIXEL_RGB24, width, height, random);
        WritePicture(folder.File(name), dib);
    }
    Plane Made(const std::string& arguments, const char* name = "out.png")
    {
        const Outcome outcome = folder.Run(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << arguments << "\n" << outcome.error;
        return Plane(ReadPicture(folder.File(name)).dib);
    }
    ToolFolder folder;
    Random random;
};

using Rule = std::function<double(int32_t x, int32_t y)>;

void ExpectPlane(const Plane& got, const Rule& rule, double tolerance, const std::string& what)
{
    for (int32_t y = 0; y < got.height; ++y)
        for (int32_t x = 0; x < got.width; ++x)
            ASSERT_NEAR(got.At(x, y), rule(x, y), tolerance) << what << " at " << x << "," << y;
}

// Cubic convolution with a = -0.5 (Keys 1981).
double Cubic(double t)
{
    t = std::abs(t);
    return t <= 1 ? (1.5 * t - 2.5) * t * t + 1 : t < 2 ? ((-0.5 * t + 2.5) * t - 4) * t + 2 : 0;
}

TEST_F(BitmapCommand, ScaleFiltersKeepTheirRules)
{
    MakePicture("in.bmp", 6, 4);
    const Plane in = Made("convert in.bmp out.png --type rgb24");
    // Corners on corners: 11 and 7 pixels stand at the halves of 6 and 4.
    const Rule linear = [&](int32_t x, int32_t y) {
        return (in.At(x / 2, y / 2) + in.At((x + 1) / 2, y / 2) + in.At(x / 2, (y + 1) / 2) +
                in.At((x + 1) / 2, (y + 1) / 2)) /
               4;
    };
    const Rule cubic = [&](int32_t x, int32_t y) {
        const double u = (x + 0.5) / 2 - 0.5, v = (y + 0.5) / 2 - 0.5;
        double sum = 0;
        for (int32_t j = int32_t(std::floor(v)) - 1; j <= std::floor(v) + 2; ++j)
            for (int32_t i = int32_t(std::floor(u)) - 1; i <= std::floor(u) + 2; ++i)
                sum += in.At(i, j) * Cubic(u - i) * Cubic(v - j);
        return std::clamp(sum, 0.0, 255.0);
    };
    const Rule mean = [&](int32_t x, int32_t y) {
        return (in.At(2 * x, 2 * y) + in.At(2 * x + 1, 2 * y) + in.At(2 * x, 2 * y + 1) +
                in.At(2 * x + 1, 2 * y + 1)) /
               4;
    };
    const Rule picked = [&](int32_t x, int32_t y) { return in.At(x / 2, y / 2); };
    const Rule part = [&](int32_t x, int32_t y) { return in.At(x + 2, y + 1); };
    for (const char* form : {"", " --float --type rgba32"}) {
        ExpectPlane(Made(Join("scale in.bmp out.png 11x7", form)), linear, 1.01, "bilinear");
        ExpectPlane(Made(Join("scale in.bmp out.png 12x8 --filter bicubic", form)), cubic, 2.01, "bicubic");
        ExpectPlane(Made(Join("scale in.bmp out.png 3x2 --filter area", form)), mean, 1.01, "area");
        ExpectPlane(Made(Join("scale in.bmp out.png 12x8 --filter nearest", form)), picked, 0.01, "nearest");
        ExpectPlane(Made(Join("scale in.bmp out.png 3x2 --from 2,1,3x2", form)), part, 0.01, "a part");
    }
}

TEST_F(BitmapCommand, FieldsComeApartAndTogether)
{
    for (const int32_t height : {2, 5, 8}) {
        MakePicture("a.bmp", 3, height);
        MakePicture("b.bmp", 3, height);
        const Plane a = Made("convert a.bmp out.png --type rgb24"),
                    b = Made("convert b.bmp out.png --type rgb24");
        for (const int32_t kept : {0, 1}) {
            const Rule rule = [&](int32_t x, int32_t y) {
                if (y % 2 == kept)
                    return a.At(x, y);
                const int32_t above = y > 0 ? y - 1 : y + 1, below = y + 1 < height ? y + 1 : y - 1;
                return std::floor((a.At(x, above) + a.At(x, below)) / 2 + 0.01);
            };
            ExpectPlane(Made(Join("fields a.bmp out.png --keep ", kept ? "bottom" : "top")), rule, 0.01,
                        Join("row ", kept, " of ", height));
        }
        ExpectPlane(
            Made("fields a.bmp b.bmp out.png --merge"),
            [&](int32_t x, int32_t y) { return y % 2 ? b.At(x, y) : a.At(x, y); }, 0.01, "merge");
        const Plane top = Made("fields a.bmp top.png bottom.png --split", "top.png");
        EXPECT_EQ(top.height, (height + 1) / 2);
        ExpectPlane(
            top, [&](int32_t x, int32_t y) { return a.At(x, 2 * y); }, 0.01, "top field");
        ExpectPlane(
            Made("fields top.png bottom.png out.png --weave"),
            [&](int32_t x, int32_t y) { return a.At(x, y); }, 0.01, "weave");
    }
}

TEST_F(BitmapCommand, EveryTypeIsWrittenAndShown)
{
    folder.Run("bars in.png --size 16x9");
    for (const VxPixelType type : kFileTypes) {
        Made(Join("convert in.png out.bmp --type ", NameOfType(type)), "out.bmp");
        EXPECT_EQ(ReadPicture(folder.File("out.bmp")).dib.Type(), type);
        const Plane stored = Made("convert out.bmp again.png --type rgba64", "again.png");
        ExpectPlane(
            Made(Join("convert in.png out.png --type ", NameOfType(type))),
            [&](int32_t x, int32_t y) { return stored.At(x, y); }, 1.0, NameOfType(type));
    }
}

TEST_F(BitmapCommand, PalettesHoldWhatWasChosen)
{
    MakePicture("in.bmp", 40, 30);
    Made("palette in.bmp few.bmp --colours 16", "few.bmp");
    const Dib few = std::move(ReadPicture(folder.File("few.bmp")).dib);
    EXPECT_EQ(few.Type(), VXPIXEL_PAL4);
    EXPECT_LE(few.Palette().size(), 16u);
    // A picture that has few colours keeps them, and lends them to others.
    Made("palette few.bmp same.bmp --colours 256", "same.bmp");
    const Dib same = std::move(ReadPicture(folder.File("same.bmp")).dib);
    EXPECT_EQ(same.Type(), VXPIXEL_PAL8);
    Made("palette in.bmp like.bmp --like few.bmp --colours 16", "like.bmp");
    const Dib like = std::move(ReadPicture(folder.File("like.bmp")).dib);
    for (int32_t y = 0; y < 30; ++y) {
        EXPECT_EQ(RowOf(same, y), RowOf(few, y)) << y;
        EXPECT_EQ(RowOf(like, y), RowOf(few, y)) << y;
    }
}

TEST_F(BitmapCommand, PixelsAreShownAsStored)
{
    folder.Run("fill in.png --size 2x2 --colour ff804020");
    folder.Run("convert in.png narrow.bmp --type rgb565");
    folder.Run("pixel in.png set.bmp --at 1,0 --set 102030 --type rgb24");
    EXPECT_EQ(folder.Run("pixel in.png --at 1,1").out,
              "1,1  ff804020  red 65535  green 32896  blue 16448  alpha  8224\n");
    EXPECT_EQ(folder.Run("pixel narrow.bmp --at 0,1").out,
              "0,1  f88040ff  red 63488  green 32768  blue 16384  alpha 65535\n");
    EXPECT_EQ(folder.Run("pixel set.bmp --at 0,0 --at 1,0").out,
              "0,0  ff8040ff  red 65535  green 32896  blue 16448  alpha 65535\n"
              "1,0  102030ff  red  4112  green  8224  blue 12336  alpha 65535\n");
}

} // namespace
