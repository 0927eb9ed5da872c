// convert, palette, pixel: what a picture's pixels are made of.
#include "vx/curve.h"
#include "vx/dib.h"
#include "vxtool/area.h"
#include "vxtool/commands.h"
#include "vxtool/conversion.h"
#include "vxtool/failure.h"

#include <cstdio>
#include <iostream>
#include <optional>

namespace vxtool {
namespace {

constexpr int32_t kBestQuality = 4;

void CheckCurve(const Arguments& arguments, VxPixelType from, VxPixelType to)
{
    if (!arguments.Has("--gamma") && !arguments.Has("--source-gamma"))
        return;
    if (!IsFloatType(from) && !IsFloatType(to))
        FailArgument("--gamma and --source-gamma count between gray32 or rgba128 and another type, not from ",
                     NameOfType(from), " to ", NameOfType(to));
}

void RunConvert(const Arguments& arguments)
{
    const VxPixelType type = AskedType(arguments), via = AskedType(arguments, "--via");
    if (type == VXPIXEL_UNKNOWN)
        FailArgument("--type is missing, as --type rgb565");
    const Transfer transfer = {arguments.Integer("--quality", kFineQuality, 0, kBestQuality),
                               arguments.Number("--source-gamma", 0.0, VX_GAMMA_MIN, VX_GAMMA_MAX),
                               arguments.Number("--gamma", 0.0, VX_GAMMA_MIN, VX_GAMMA_MAX)};
    CheckOutput(arguments.Operand(1), VXPIXEL_UNKNOWN);
    Dib dib = ReadPicture(arguments.Operand(0)).dib;
    if (via != VXPIXEL_UNKNOWN)
        dib = Converted(std::move(dib), via);
    CheckCurve(arguments, dib.Type(), type);
    WriteShown(arguments.Operand(1), Converted(std::move(dib), type, transfer));
}

constexpr Option kConvertOptions[] = {
    {"--type", "TYPE",
     "the pixel type to convert to. A BMP holds it as it is; a PNG that cannot shows\n"
     "the result in the nearest type that it holds. One of pal1, pal4, pal8, gray1,\n"
     "gray2, gray4, gray8, gray16, gray32, rgb555, rgb565, rgb24, rgb32, rgba32,\n"
     "rgb101010, rgba64 or rgba128. Types without alpha drop it"},
    {"--via", "TYPE", "convert IN to this type first, to see what remains of it"},
    {"--quality", "Q",
     "0 to 4; from 3 on floats are dithered where they become 8 bits, below they are\n"
     "cut (default 3)"},
    {"--gamma", "G",
     "of the result, where one side is gray32 or rgba128; 0.5 to 4.0, 1.0 is\n"
     "linear light (default 2.2222, as television codes it)"},
    {"--source-gamma", "G", "of IN, likewise"},
};

void RunPalette(const Arguments& arguments)
{
    const uint32_t colours = uint32_t(arguments.Integer("--colours", 256, 2, 256));
    CheckOutput(arguments.Operand(1), VXPIXEL_UNKNOWN);
    Dib dib = ReadPicture(arguments.Operand(0)).dib;
    const std::string* like = arguments.Text("--like");
    std::optional<Dib> model;
    if (like)
        model = ReadPicture(*like).dib;
    const Dib& source = model ? *model : dib;
    const RECT area =
        PixelsOr(arguments, "--area", {source.Width(), source.Height()}, like ? *like : arguments.Operand(0));
    const auto palette = ChosenPalette(source, colours, &area);
    WriteShown(arguments.Operand(1), Indexed(std::move(dib), PaletteTypeFor(colours), palette));
}

constexpr Option kPaletteOptions[] = {
    {"--colours", "N", "size of the palette, 2 to 256; up to 16 make a pal4 (default 256)"},
    {"--area", "X,Y,WxH", "choose the colours for these pixels"},
    {"--like", "PICTURE", "choose them for this picture rather than for IN"},
};

// As RRGGBBAA, and the library's channels of 16 bits.
void PrintPixel(const std::string& place, uint64_t pixel)
{
    const auto channel = [pixel](int shift) { return unsigned(pixel >> shift & 0xFFFF); };
    char line[100];
    std::snprintf(line, sizeof(line), "%02x%02x%02x%02x  red %5u  green %5u  blue %5u  alpha %5u",
                  channel(32) >> 8, channel(16) >> 8, channel(0) >> 8, channel(48) >> 8, channel(32),
                  channel(16), channel(0), channel(48));
    std::cout << place << "  " << line << "\n";
}

void GetPixels(const Arguments& arguments)
{
    Dib dib = ReadPicture(arguments.Operand(0)).dib;
    if (dib.Type() == VXPIXEL_PAL1) // which the library reads without its table
        dib = Converted(std::move(dib), VXPIXEL_RGBA32);
    for (const std::string& place : arguments.All("--at")) {
        const POINT at = ParsePlace("--at", place, {dib.Width(), dib.Height()}, arguments.Operand(0));
        uint64_t pixel = 0;
        CheckStatus(VxDibGetPixel(dib.Header(), nullptr, 0, at.x, at.y, &pixel));
        PrintPixel(place, pixel);
    }
}

uint64_t PixelOf(const Colour& c)
{
    const auto word = [](float value, int shift) { return uint64_t(Quantized(value, 0xFFFF)) << shift; };
    return word(c.blue, 0) | word(c.green, 16) | word(c.red, 32) | word(c.alpha, 48);
}

void SetPixels(const Arguments& arguments)
{
    const uint64_t pixel = PixelOf(arguments.ColourOr("--set", Gray(0.0f)));
    Dib dib = LoadDib(arguments, 0, 1);
    for (const std::string& place : arguments.All("--at")) {
        const POINT at = ParsePlace("--at", place, {dib.Width(), dib.Height()}, arguments.Operand(0));
        CheckStatus(VxDibSetPixel(dib.Header(), nullptr, 0, at.x, at.y, &pixel));
    }
    WritePicture(arguments.Operand(1), dib);
}

void RunPixel(const Arguments& arguments)
{
    const bool sets = arguments.OperandCount() == 2;
    if (!arguments.Has("--at"))
        FailArgument("--at is missing, as --at 20,30");
    if (sets != arguments.Has("--set"))
        FailArgument(sets ? "an OUT needs a --set" : "--set needs an OUT");
    if (!sets && arguments.Has("--type"))
        FailArgument("--type goes with --set only");
    sets ? SetPixels(arguments) : GetPixels(arguments);
}

constexpr Option kPixelOptions[] = {
    {"--at", "X,Y", "which one, counted from the top left; may be given several times"},
    {"--set", "COLOUR", "write RRGGBB or RRGGBBAA there; without, the pixels are shown"},
    {"--type", "TYPE", "with --set: pixel type of OUT (default: that of IN)"},
};

} // namespace

const Command kConvert = {
    "convert",       "convert a picture to any of the seventeen pixel types",    "IN OUT",   2, 2,
    kConvertOptions, "vxtool convert in.png out.bmp --type rgba128 --gamma 1.0", RunConvert,
};
const Command kPalette = {
    "palette",       "choose a palette for a picture and apply it", "IN OUT",   2, 2,
    kPaletteOptions, "vxtool palette in.png out.bmp --colours 16",  RunPalette,
};
const Command kPixel = {
    "pixel",
    "show single pixels as they are stored, or set them",
    "IN [OUT]",
    1,
    2,
    kPixelOptions,
    "vxtool pixel in.png --at 0,0 --at 20,30",
    RunPixel,
};

} // namespace vxtool
