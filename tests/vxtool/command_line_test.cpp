#include "run_tool.h"
#include "vxtool/commands.h"
#include "vxtool/failure.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

namespace {

using namespace vxtest;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

struct BadCase
{
    const char* arguments;
    int exitCode;
    const char* sentence;
};

// a.png is 8x6, b.png 8x6, small.png 4x4, text.png no picture, cut.png the first half of one, rgb555.bmp
// 8x6 of that type.
constexpr BadCase kBadCases[] = {
    {"", 2, "usage: vxtool COMMAND"},
    {"frobnicate", 2, "vxtool: there is no command 'frobnicate'; see vxtool --help"},
    {"blend", 2, "vxtool blend: something is missing: the usage is vxtool blend A B OUT"},
    {"bars out.png more", 2, "vxtool bars: 'more' is one too many: the usage is vxtool bars OUT"},
    {"bars out.png --colour 000000", 2, "vxtool bars: there is no option --colour; see vxtool bars --help"},
    {"bars out.png --size", 2, "vxtool bars: --size needs a value: WxH"},
    {"bars out.png --float=1", 2, "vxtool bars: --float takes no value"},
    {"bars out.jpg", 2, "must end in .png or .bmp, unlike out.jpg"},
    {"bars out.png --type rgb17", 2, "--type takes one of pal1, "},
    {"bars out.png --type pal8", 2, "a PNG picture cannot hold the type pal8"},
    {"bars out.png --size 100", 2, "--size takes a size as 1280x720, not '100'"},
    {"bars out.png --size 0x5", 2, "1 to 32768 pixels a side"},
    {"bars out.png --size 32768x32768", 2, "268435456 in all"},
    {"checker out.png --cell 0", 2, "--cell takes a whole number from 1 to 32768, not 0"},
    {"ramp out.png --from red", 2, "--from takes a colour as RRGGBB or RRGGBBAA in hexadecimal, not 'red'"},
    {"blend a.png b.png out.png --factor abc", 2, "vxtool blend: --factor takes a number, not 'abc'\n"},
    {"blend a.png b.png out.png --factor nan", 2, "takes a number, not 'nan'"},
    {"blend a.png b.png out.png --factor 1,5", 2, "takes a number, not '1,5'"},
    {"blend a.png b.png out.png --factor 1e9", 2, "takes a number from -1000 to 1000, not 1e9"},
    {"blend a.png b.png out.png --factor 1 --mask a.png", 2, "exclude each other"},
    {"blend a.png small.png out.png", 2,
     "a.png is 8x6 and small.png is 4x4 pixels; they must be of one size"},
    {"composite a.png b.png out.png --mode under", 2,
     "source-over, destination-over, add, multiply, overlay, screen or average, not 'under'"},
    {"lut a.png out.png --curve 0", 2, "--curve takes points as X,Y:X,Y, not '0'"},
    {"lut a.png out.png --curve 9,0:9,1", 2, "points in ascending order"},
    {"lut a.png out.png", 2, "--curve is missing"},
    {"threshold a.png out.png --clear 0.5 --clip 1", 2, "exclude each other"},
    {"map a.png out.png --sum 3 --float", 2, "--sum excludes"},
    {"flip a.png out.png", 2, "--horizontal or --vertical is missing"},
    {"flip rgb555.bmp out.bmp --horizontal", 2,
     "rgb555.bmp is of the type rgb555, which cannot be flipped from left to right; add --type rgba32"},
    {"channel a.png out.png", 2, "one of --copy, --times and --only is needed"},
    {"channel a.png out.png --copy red", 2, "--copy takes two channels as red:alpha, not 'red'"},
    {"fill a.png out.png --area 4,4,8x8", 2, "reaches to 12,12, outside of a.png with its 8x6 pixels"},
    {"fill out.png --area 0,0,1x1", 2, "--area needs a picture"},
    {"fill out.png --channel red", 2, "--channel needs a picture"},
    {"fill a.png out.png --float", 2, "--float is for new pictures only"},
    {"fill a.png out.png --area 0,0,1.5x1", 2, "--area takes whole pixels here, not 0,0,1.5x1"},
    {"fill a.png out.png --area 1,1,0x2", 2, "--area is empty: 1,1,0x2"},
    {"fill a.png out.png --area 1,1,2", 2, "--area takes a rectangle as X,Y,WxH, not '1,1,2'"},
    {"fade a.png out.png", 2, "the usage is vxtool fade A B MASK OUT"},
    {"fade a.png b.png b.png out.png --to ff0000", 2, "the usage is vxtool fade IN OUT --to COLOUR"},
    {"fade a.png b.png b.png out.png --amount 1", 2, "--amount goes with --to only"},
    {"fade a.png out.png --to ff0000 --channel red", 2, "--to and --channel exclude each other"},
    {"fade a.png out.png --to ff0000 --amount 2", 2, "--amount takes a number from 0 to 1, not 2"},
    {"convert a.png out.png", 2, "--type is missing, as --type rgb565"},
    {"convert a.png out.png --type rgb24 --via rgb17", 2, "--via takes one of pal1, "},
    {"convert a.png out.png --type rgb24 --quality 5", 2, "--quality takes a whole number from 0 to 4"},
    {"convert a.png out.png --type gray32 --gamma 9", 2, "--gamma takes a number from 0.5 to 4, not 9"},
    {"convert a.png out.png --type rgb24 --gamma 1", 2,
     "count between gray32 or rgba128 and another type, not from rgba32 to rgb24"},
    {"convert cut.png out.bmp --type rgb24", 1, "cut.png is truncated"},
    {"palette a.png out.bmp --colours 257", 2, "--colours takes a whole number from 2 to 256, not 257"},
    {"palette a.png out.bmp --like absent.png", 1, "cannot read absent.png"},
    {"pixel a.png", 2, "--at is missing"},
    {"pixel a.png --at 8,0", 2, "--at is outside of a.png with its 8x6 pixels: 8,0"},
    {"pixel a.png --at 1", 2, "--at takes a place as X,Y, not '1'"},
    {"pixel a.png --at 1,1 --set ffffff", 2, "--set needs an OUT"},
    {"pixel a.png out.png --at 1,1", 2, "an OUT needs a --set"},
    {"pixel a.png --at 1,1 --type rgb24", 2, "--type goes with --set only"},
    {"scale a.png out.png 0x5", 2, "1 to 32768 pixels a side"},
    {"scale a.png out.png 8", 2, "the size of OUT takes a size as 1280x720, not '8'"},
    {"scale a.png out.png 8x8 --filter cubic", 2, "nearest, bilinear, bicubic or area, not 'cubic'"},
    {"scale a.png out.png 8x8 --from 0,0,9x6", 2,
     "--from reaches to 9,6, outside of a.png with its 8x6 pixels"},
    {"scale a.png out.png 8x8 --to 0.5,0,8x8", 2,
     "--to reaches to 8.5,8, outside of OUT with its 8x8 pixels"},
    {"scale a.png out.png 8x8 --from 0,0,0.5x6", 2, "--from must be at least one pixel wide and high"},
    {"scale a.png out.png 8x8 --to 0,0,0.06x6", 2, "--to must be at least 1/16 pixel wide and high"},
    {"scale a.png out.png 8x8 --filter nearest --to 0,0,1.5x6", 2, "must have no fractions"},
    {"scale a.png out.png 8x8 --feather 2 --to 0,0,1.5x6", 2, "--feather needs a --to without fractions"},
    {"scale a.png out.png 8x8 --hard", 2, "--hard goes with a --to that has fractions only"},
    {"scale a.png out.png 8x8 --onto b.png", 2, "OUT is to be 8x8 and b.png is 8x6 pixels"},
    {"fields a.png out.png", 2, "one of --keep, --split, --weave and --merge is needed"},
    {"fields a.png b.png out.png --weave --merge", 2, "--weave and --merge exclude each other"},
    {"fields a.png out.png --split", 2, "the usage is vxtool fields IN TOP BOTTOM --split"},
    {"fields a.png out.png out.png --split", 2, "must be two files, not out.png twice"},
    {"fields a.png out.png --keep odd", 2, "--keep takes top or bottom, not 'odd'"},
    {"fields a.png small.png out.png --merge", 2, "they must be of one size"},
    {"fields small.png a.png out.png --weave", 2, "fields must be of one size, or the top one a row higher"},
    {"flip absent.png out.png --vertical", 1,
     "vxtool flip: cannot read absent.png: No such file or directory\n"},
    {"flip . out.png --vertical", 1, ". is a folder, not a picture"},
    {"flip text.png out.png --vertical", 1, "text.png is neither a PNG nor a BMP picture"},
    {"flip empty.png out.png --vertical", 1, "empty.png is empty"},
    {"flip cut.png out.png --vertical", 1, "cut.png is truncated"},
    {"flip /dev/zero out.png --vertical", 1, "/dev/zero is not a regular file"},
    {"bars folder.png", 1, "cannot write folder.png: it is a folder"},
    {"bars pipe.png", 1, "cannot write pipe.png: it is not a regular file"},
};

class CommandLine : public testing::Test
{
protected:
    CommandLine()
    {
        for (const char* arguments :
             {"bars a.png --size 8x6", "zone b.png --size 8x6", "zone small.png --size 4x4",
              "bars rgb555.bmp --size 8x6 --type rgb555"})
            folder.Run(arguments);
        folder.Write("text.png", "no picture at all");
        folder.Write("empty.png", "");
        const std::string whole = ToolFolder::Text(folder.File("a.png"));
        folder.Write("cut.png", whole.substr(0, whole.size() / 2));
        std::filesystem::create_directory(folder.File("folder.png"));
        mkfifo(folder.File("pipe.png").c_str(), 0600);
    }
    ToolFolder folder;
};

TEST_F(CommandLine, BadOnesEndInOneSentence)
{
    for (const BadCase& c : kBadCases) {
        const std::string arguments = c.arguments;
        const Outcome outcome = folder.Run(arguments);
        EXPECT_EQ(outcome.exitCode, c.exitCode) << arguments;
        EXPECT_THAT(outcome.error, HasSubstr(c.sentence)) << arguments;
        EXPECT_EQ(outcome.out, "") << arguments;
        EXPECT_TRUE(arguments.empty() || outcome.error.find('\n') == outcome.error.size() - 1)
            << outcome.error;
        EXPECT_FALSE(folder.Has("out.png")) << arguments;
    }
    EXPECT_EQ(folder.TemporaryFiles(), 0);
}

TEST_F(CommandLine, HelpShowsEveryCommandAndOption)
{
    const Outcome overview = folder.Run("--help");
    EXPECT_EQ(overview.exitCode, 0);
    for (const vxtool::Command* command : vxtool::AllCommands()) {
        EXPECT_THAT(overview.out, HasSubstr(vxtool::Join("\n  ", command->name, " "))) << command->name;
        const Outcome help = folder.Run(std::string(command->name) + " --help");
        EXPECT_EQ(help.exitCode, 0) << command->name;
        EXPECT_THAT(help.out,
                    HasSubstr(vxtool::Join("usage: vxtool ", command->name, " ", command->operands)));
        for (const vxtool::Option& option : command->options)
            EXPECT_THAT(help.out, HasSubstr(vxtool::Join("\n  ", option.name, " "))) << command->name;
        for (const std::string& line : vxtool::SplitAt(help.out, '\n'))
            EXPECT_LE(line.size(), 110u) << command->name;
    }
    EXPECT_THAT(folder.Run("--version").out, StartsWith("vxtool "));
}

TEST_F(CommandLine, InfoTellsWhatAFileIs)
{
    EXPECT_THAT(
        folder.Run("info a.png rgb555.bmp").out,
        AllOf(StartsWith("a.png\n  size           8x6 pixels\n  format         PNG, colour and alpha\n"),
              HasSubstr("read as        rgb555, type 25")));
    folder.Run("fill one.bmp --colour ff0010 --size 3x3 --type pal4");
    EXPECT_THAT(folder.Run("info one.bmp --palette").out, EndsWith("1 entries\n    ff0010\n"));
}

TEST_F(CommandLine, AFailedWriteLeavesTheOldFileAndNoOther)
{
    EXPECT_EQ(folder.Run("info a.png >/dev/full; exit $?; :").exitCode, 1);
    const std::string before = ToolFolder::Text(folder.File("a.png"));
    const Outcome outcome = folder.Run("zone a.png --size 500x500", "trap '' XFSZ; ulimit -f 8;");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.error, HasSubstr("cannot write a.png: File too large"));
    EXPECT_EQ(ToolFolder::Text(folder.File("a.png")), before);
    EXPECT_EQ(folder.TemporaryFiles(), 0);
}

TEST_F(CommandLine, ALinkStaysALinkAndADashNameIsAnOperand)
{
    std::filesystem::create_symlink("b.png", folder.File("link.png"));
    EXPECT_EQ(folder.Run("flip a.png link.png --vertical").exitCode, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.File("link.png")));
    EXPECT_NE(ToolFolder::Text(folder.File("b.png")), ToolFolder::Text(folder.File("small.png")));
    EXPECT_EQ(folder.Run("bars -- --strange.png").exitCode, 0);
    EXPECT_TRUE(folder.Has("--strange.png"));
}

} // namespace
