// What the commands make of pictures of one colour: the first pixel of each result, worked by hand.
#include "pictures.h"
#include "run_tool.h"
#include "vxtool/frame.h"

#include <bit>

namespace {

using namespace vxtest;
using namespace vxtool;

struct ResultCase
{
    const char* arguments; // of a run in a folder with a.png, b.png and m.png; writes out.png
    uint32_t a, b, m;      // RRGGBBAA
    uint32_t want;
};

constexpr ResultCase kResults[] = {
    {"blend a.png b.png out.png --factor 0.25", 0x800000FF, 0x008000FF, 0, 0x206000FF},
    {"blend a.png b.png out.png --mask m.png", 0x640064FF, 0xC8C8C8FF, 0xFF0000FF, 0xC80064FF},
    {"blend a.png b.png out.png --mask m.png --curve 0,255:255,0", 0x640064FF, 0xC8C8C8FF, 0xFF0000FF,
     0x64C8C8FF},
    {"composite a.png b.png out.png", 0x102030FF, 0xFF000080, 0, 0x881018FF},
    {"composite a.png b.png out.png --mode destination-over", 0xFF000080, 0x102030FF, 0, 0x881018FF},
    {"composite a.png b.png out.png --mode add", 0xC81020FF, 0x641020FF, 0, 0xFF2040FF},
    {"composite a.png b.png out.png --mode average", 0x010000FF, 0x0200FFFF, 0, 0x01007FFF},
    {"composite a.png b.png out.png --mode multiply", 0x80FF00FF, 0x80FF80FF, 0, 0x40FF00FF},
    {"composite a.png b.png out.png --mode overlay", 0x804000FF, 0x8080FFFF, 0, 0x814000FF},
    {"composite a.png b.png out.png --mode screen", 0x800000FF, 0x8000FFFF, 0, 0xC000FFFF},
    {"composite a.png b.png out.png --opacity 0", 0x123456FF, 0xFFFFFFFF, 0, 0x123456FF},
    {"composite a.png b.png out.png --float --type rgba32", 0x102030FF, 0xFF000080, 0, 0x881018FF},
    {"fade a.png b.png m.png out.png --float", 0x00FF00FF, 0xFF0000FF, 0xFF00FFFF, 0xFFFF00FF},
    {"fade a.png b.png m.png out.png --channel green", 0xFF0000FF, 0, 0xFF00FFFF, 0xFF0000FF},
    {"multiply a.png out.png --factor 0.5", 0xFF8000FF, 0, 0, 0x7F4000FF},
    {"multiply a.png out.png --factor 0.5 --alpha", 0xFF0000FF, 0, 0, 0xFF00007F},
    {"multiply a.png out.png --by b.png --type rgba32", 0xFF8000FF, 0x80FFFFFF, 0, 0x808000FF},
    {"mask a.png m.png out.png", 0xFF80FFFF, 0, 0x80FF00FF, 0x808000FF},
    {"mask a.png m.png out.png --channel green --scale -1 --offset 1", 0xFF8000FF, 0, 0xFF40FFFF, 0xFF8000BF},
    {"lut a.png out.png --curve red=0,0:128,180:255,255 --curve blue=7,9", 0x404040FF, 0, 0, 0x5A4009FF},
    {"map a.png out.png --channel red --gradient 0,000000:1,0080ff", 0xFF3344FF, 0, 0, 0x0080FFFF},
    {"map a.png out.png --channel red --gradient 0,000000:1,0080ff --float", 0xFF3344FF, 0, 0, 0x0080FFFF},
    {"map a.png out.png --sum 2 --gradient 0,000000:1,ffffff", 0xFF2010FF, 0, 0, 0x303030FF},
    {"threshold a.png out.png --low 0.2 --high 0.6", 0xCC6633FF, 0, 0, 0xFF8000FF},
    {"threshold a.png out.png --clear 0.5", 0x807F80FF, 0, 0, 0x800080FF},
    {"threshold a.png out.png --clip 0.5", 0x402080FF, 0, 0, 0x4020FFFF},
    {"fill a.png out.png --colour 804020 --area 1,1,1x1", 0xFEFCFBFF, 0, 0, 0xFEFCFBFF},
    {"fill a.png out.png --colour 80402010 --area 0,0,1x1", 0xFEFCFBFF, 0, 0, 0x80402010},
    {"fill a.png out.png --colour 00000040 --channel alpha", 0x112233FF, 0, 0, 0x11223340},
    {"fill a.png out.png --colour 55667788 --channel green --type rgba64", 0x112233FF, 0, 0, 0x116633FF},
    {"fade a.png out.png --to 00ff00", 0x800000FF, 0, 0, 0x407F00FF},
    {"fade a.png out.png --to 00ff00 --amount 1", 0x80000080, 0, 0, 0x00FF00FF},
    {"fade a.png out.png --to 00ff00 --amount 1 --keep-alpha", 0x80000080, 0, 0, 0x00FF0080},
    {"fade a.png out.png --to ffffff --amount 1 --area 0.5,0,1x1", 0x000000FF, 0, 0, 0x7F7F7FFF},
    {"fade a.png out.png --to ff000000 --float --amount 0.5", 0x00FF00FF, 0, 0, 0x00FF0080},
    {"convert a.png out.png --type gray8", 0x603090FF, 0, 0, 0x606060FF},
    {"convert a.png out.png --type rgb555", 0xFFFFFFFF, 0, 0, 0xF8F8F8FF},
    {"convert a.png out.png --type gray1", 0x7F7F7FFF, 0, 0, 0x000000FF},
    {"convert a.png out.png --via pal1 --type rgba32", 0xFF8000FF, 0, 0, 0xFFFFFFFF},
    // The curve of BT.709 and back: ((v + 0.099) / 1.099) ^ (1 / 0.45), and 1.099 v ^ 0.45 - 0.099.
    {"convert a.png out.png --type rgba128 --gamma 1.0", 0x808080FF, 0, 0, 0x434343FF},
    {"convert a.png out.png --via rgba128 --type rgba32 --source-gamma 1 --quality 2", 0x808080FF, 0, 0,
     0xB4B4B4FF},
    {"convert a.png out.png --via rgba128 --type pal8 --source-gamma 1 --quality 2", 0x808080FF, 0, 0,
     0xB4B4B4FF},
    {"palette a.png out.png", 0xFF0010FF, 0, 0, 0xFF0010FF},
    {"palette a.png out.png --like b.png --colours 2", 0xFF0010FF, 0x334455FF, 0, 0x334455FF},
    {"pixel a.png out.png --at 2,1 --at 0,0 --set 01020304", 0xFFFFFFFF, 0, 0, 0x01020304},
    {"scale a.png out.png 7x5 --filter bicubic --type rgba32", 0x12345680, 0, 0, 0x12345680},
    {"scale a.png out.png 7x5 --filter area --float --type rgba32", 0x12345680, 0, 0, 0x12345680},
    {"scale a.png out.png 7x5 --to 1,0,6x5", 0x123456FF, 0, 0, 0},
    {"scale a.png out.png 3x2 --to 1,0,2x2 --onto b.png", 0x123456FF, 0x654321FF, 0, 0x654321FF},
    {"scale a.png out.png 3x2 --to 0.5,0,2x2 --onto b.png", 0xFFFFFFFF, 0x000000FF, 0, 0x7F7F7FFF},
    {"scale a.png out.png 3x2 --to 0.5,0,2x2 --onto b.png --hard", 0xFFFFFFFF, 0x000000FF, 0, 0xFFFFFFFF},
    {"scale a.png out.png 3x2 --onto b.png --feather 1", 0xFFFFFFFF, 0x000000FF, 0, 0x818181FF},
    {"fields a.png out.png --keep bottom", 0x11223344, 0, 0, 0x11223344},
    {"fields a.png b.png out.png --merge", 0x11223344, 0x55667788, 0, 0x11223344},
    {"swap a.png out.png", 0x11223344, 0, 0, 0x33221144},
    {"channel a.png out.png --copy red:alpha", 0x80FF20FF, 0, 0, 0x80FF2080},
    {"channel a.png out.png --copy green:blue --from b.png", 0x112233FF, 0x447755FF, 0, 0x112277FF},
    {"channel a.png out.png --times red:green --scale -1 --offset 1", 0x40FF20FF, 0, 0, 0x40BF20FF},
    {"channel a.png out.png --only green", 0x112233FF, 0, 0, 0x222222FF},
    {"flip a.png out.png --vertical --horizontal", 0x11223344, 0, 0, 0x11223344},
};

void WriteOneColour(const ToolFolder& folder, const char* name, uint32_t colour)
{
    Dib dib(VXPIXEL_RGBA32, 3, 2);
    for (int32_t i = 0; i < 24; ++i)
        dib.Row(i / 12)[i % 12] = uint8_t(std::rotr(colour, 8 + 8 * (i % 4)));
    WritePicture(folder.File(name), dib);
}

uint32_t FirstPixel(const std::string& path)
{
    return ColourCode(RowOf(ReadPicture(path).dib, 0)[0]);
}

TEST(CommandResult, FirstPixels)
{
    const ToolFolder folder;
    for (const ResultCase& c : kResults) {
        WriteOneColour(folder, "a.png", c.a);
        WriteOneColour(folder, "b.png", c.b);
        WriteOneColour(folder, "m.png", c.m);
        std::filesystem::remove(folder.File("out.png"));
        const Outcome outcome = folder.Run(c.arguments);
        ASSERT_EQ(outcome.exitCode, 0) << c.arguments << "\n" << outcome.error;
        EXPECT_EQ(FirstPixel(folder.File("out.png")), c.want)
            << c.arguments << std::hex << ", wanted " << c.want;
    }
    EXPECT_EQ(folder.TemporaryFiles(), 0);
}

TEST(CommandResult, FloatsKeepSixteenBits)
{
    const ToolFolder folder;
    ASSERT_EQ(folder.Run("ramp a.png --size 5000x1 --float").exitCode, 0);
    ASSERT_EQ(folder.Run("composite a.png a.png out.png --mode multiply --float").exitCode, 0);
    const Dib dib = std::move(ReadPicture(folder.File("out.png")).dib);
    ASSERT_EQ(dib.Type(), VXPIXEL_RGBA64);
    const std::vector<Colour> row = RowOf(dib, 0);
    for (size_t x = 0; x < 5000; ++x) {
        const double value = double(x) / 4999.0;
        ASSERT_NEAR(row[x].red, value * value, 3.0 / 65535.0) << x;
    }
}

TEST(CommandResult, SheetTakesPicturesOfAnyShape)
{
    const ToolFolder folder;
    folder.Run("zone tall.png --size 3x900");
    folder.Run("ramp deep.png --size 50x50 --float --to ff000080");
    for (const char* arguments : {"sheet out.png", "sheet out.png tall.png deep.png tall.png"}) {
        EXPECT_EQ(folder.Run(arguments).exitCode, 0) << arguments;
        EXPECT_EQ(ReadPicture(folder.File("out.png")).dib.Width(), 1600) << arguments;
        EXPECT_NE(FirstPixel(folder.File("out.png")), 0u) << arguments;
    }
}

} // namespace
