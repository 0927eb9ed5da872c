// info, flip, swap, channel: pictures as files hold them, straight alpha and all.
#include "vx/blend.h"
#include "vx/channels.h"
#include "vxtool/commands.h"

#include <cstdio>
#include <iostream>

namespace vxtool {
namespace {

void PrintFact(const std::string& label, const std::string& text)
{
    std::string left = "  " + label;
    left.resize(17, ' ');
    std::cout << left << text << "\n";
}

void PrintPalette(std::span<const RGBQUAD> palette)
{
    for (size_t i = 0; i < palette.size(); ++i) {
        char entry[16];
        std::snprintf(entry, sizeof(entry), " %02x%02x%02x", palette[i].rgbRed, palette[i].rgbGreen,
                      palette[i].rgbBlue);
        std::cout << (i % 8 == 0 ? "   " : "") << entry
                  << (i % 8 == 7 || i + 1 == palette.size() ? "\n" : "");
    }
}

void RunInfo(const Arguments& arguments)
{
    for (size_t i = 0; i < arguments.OperandCount(); ++i) {
        const Picture picture = ReadPicture(arguments.Operand(i));
        const Dib& dib = picture.dib;
        std::cout << arguments.Operand(i) << "\n";
        PrintFact("size", Join(dib.Width(), "x", dib.Height(), " pixels"));
        for (const auto& [label, text] : picture.facts)
            PrintFact(label, text);
        PrintFact("read as", Join(NameOfType(dib.Type()), ", type ", int(dib.Type())));
        if (!IsPaletteType(dib.Type()))
            continue;
        PrintFact("palette", Join(dib.Palette().size(), " entries"));
        if (arguments.Has("--palette"))
            PrintPalette(dib.Palette());
    }
}

constexpr Option kInfoOptions[] = {{"--palette", nullptr, "list the entries of a BMP's palette as RRGGBB"}};

// Reads IN, lets the library work on it, and writes it.
template <class Work>
void RunOnDib(const Arguments& arguments, const char* verb, Work work)
{
    Dib dib = LoadDib(arguments, 0, 1);
    if (FAILED(work(dib.Header())))
        FailArgument(arguments.Operand(0), " is of the type ", NameOfType(dib.Type()), ", which cannot be ",
                     verb, "; add --type rgba32");
    WritePicture(arguments.Operand(1), dib);
}

void RunFlip(const Arguments& arguments)
{
    const bool horizontal = arguments.Has("--horizontal"), vertical = arguments.Has("--vertical");
    if (!horizontal && !vertical)
        FailArgument("--horizontal or --vertical is missing");
    RunOnDib(arguments, horizontal ? "flipped from left to right" : "flipped", [&](BITMAPINFOHEADER* dib) {
        return VxDibFlip(dib, nullptr, nullptr, 0, horizontal, vertical);
    });
}

constexpr Option kDibTypeOption = {"--type", "TYPE",
                                   "pixel type to work in and to write (default: that of IN);\n"
                                   "rgba32 can do everything"};
constexpr Option kFlipOptions[] = {
    {"--horizontal", nullptr, "left becomes right"},
    {"--vertical", nullptr, "top becomes bottom"},
    kDibTypeOption,
};

void RunSwap(const Arguments& arguments)
{
    RunOnDib(arguments, "swapped",
             [](BITMAPINFOHEADER* dib) { return VxDibSwapRB(dib, nullptr, nullptr, 0); });
}

constexpr Option kSwapOptions[] = {kDibTypeOption};

// An 8-bit frame that stands in a bitmap: the lowest row is the first.
uint8_t* FirstRow(Dib& dib)
{
    return dib.Row(dib.Height() - 1);
}

struct Channels
{
    int32_t from, to;
};

Channels ParseChannels(std::string_view option, const std::string& text)
{
    const auto parts = SplitAt(text, ':');
    if (parts.size() != 2)
        FailArgument(option, " takes two channels as red:alpha, not '", text, "'");
    return {ParseChoice(option, parts[0], kChannels), ParseChoice(option, parts[1], kChannels)};
}

Dib LoadSource(const Arguments& arguments, const Dib& dst)
{
    const std::string* path = arguments.Text("--from");
    Dib src = Converted(ReadPicture(path ? *path : arguments.Operand(0)).dib, VXPIXEL_RGBA32);
    if (path)
        CheckSameSize(arguments.Operand(0), dst, *path, src);
    return src;
}

Dib OnlyChannel(Dib& src, int32_t channel)
{
    Dib gray(VXPIXEL_GRAY8, src.Width(), src.Height());
    ChannelCopy(FirstRow(gray), int32_t(gray.RowBytes()), 1, src.Width(), src.Height(),
                FirstRow(src) + channel, int32_t(src.RowBytes()), 4);
    return gray;
}

void RunChannel(const Arguments& arguments)
{
    const std::string *copy = arguments.Text("--copy"), *times = arguments.Text("--times"),
                      *only = arguments.Text("--only");
    if ((copy != nullptr) + (times != nullptr) + (only != nullptr) != 1)
        FailArgument("one of --copy, --times and --only is needed");
    const Channels channels = copy    ? ParseChannels("--copy", *copy)
                              : times ? ParseChannels("--times", *times)
                                      : Channels{ParseChoice("--only", *only, kChannels), 0};
    const double scale = arguments.Number("--scale", 1.0, -8.0, 8.0);
    const double offset = arguments.Number("--offset", 0.0, -8.0, 8.0) * kWhite8;
    const VxPixelType type =
        CheckOutput(arguments.Operand(1), AskedType(arguments), only ? VXPIXEL_GRAY8 : VXPIXEL_RGBA32);
    Dib dst = Converted(ReadPicture(arguments.Operand(0)).dib, VXPIXEL_RGBA32);
    Dib src = LoadSource(arguments, dst);
    const int32_t stride = int32_t(dst.RowBytes());
    if (only)
        dst = OnlyChannel(src, channels.from);
    else if (copy)
        ChannelCopy(FirstRow(dst) + channels.to, stride, 4, dst.Width(), dst.Height(),
                    FirstRow(src) + channels.from, stride, 4);
    else
        MultiplyChannel(FirstRow(dst), stride, 4, channels.to, FirstRow(src), stride, channels.from,
                        dst.Width(), dst.Height(), scale, offset);
    WritePicture(arguments.Operand(1), Converted(std::move(dst), type));
}

constexpr Option kChannelOptions[] = {
    {"--copy", "CH:CH", "copy the first channel over the second; blue, green, red or alpha"},
    {"--times", "CH:CH", "multiply the second channel by the first"},
    {"--only", "CH", "write this channel alone, as a gray picture"},
    {"--from", "PICTURE", "take the first channel from another picture (default IN)"},
    {"--scale", "S", "with --times: what the first channel is multiplied by; -8 to 8 (default 1.0)"},
    {"--offset", "O", "with --times: what is then added to it; 1.0 is white; -8 to 8 (default 0.0)"},
    kTypeOption,
};

} // namespace

const Command kInfo = {
    "info",       "show what a picture is",       "PICTURE...", 1, SIZE_MAX,
    kInfoOptions, "vxtool info in.bmp --palette", RunInfo,
};
const Command kFlip = {
    "flip",  "mirror a picture", "IN OUT", 2, 2, kFlipOptions, "vxtool flip in.bmp out.bmp --vertical",
    RunFlip,
};
const Command kSwap = {
    "swap", "exchange red and blue", "IN OUT", 2, 2, kSwapOptions, "vxtool swap in.png out.png", RunSwap,
};
const Command kChannel = {
    "channel",       "copy, multiply or show single channels, not multiplied by alpha", "IN OUT",   2, 2,
    kChannelOptions, "vxtool channel in.png cut.png --copy red:alpha --from matte.png", RunChannel,
};

} // namespace vxtool
