// fill, fade: a colour, or another picture, takes the place of what was there.
#include "vx/blend.h"
#include "vx/channels.h"
#include "vx/dib.h"
#include "vx/dibcopy.h"
#include "vxtool/area.h"
#include "vxtool/commands.h"
#include "vxtool/conversion.h"
#include "vxtool/failure.h"

#include <algorithm>

namespace vxtool {
namespace {

// The library cuts component * 255 or * 65535: from the middle of a level no rounding leads out of it.
Colour Middle(const Colour& c, uint32_t top)
{
    const auto middle = [top](float value) { return (float(Quantized(value, top)) + 0.5f) / float(top); };
    return {middle(c.blue), middle(c.green), middle(c.red), middle(c.alpha)};
}

Colour ForType(VxPixelType type, const Colour& c)
{
    if (type == VXPIXEL_RGBA128)
        return c;
    return Middle(c, WorkingType(type) == VXPIXEL_RGBA32 ? 0xFF : 0xFFFF);
}

// The library fills whole pixels: one channel of them is copied, byte by byte. For the working types.
void FillChannel(Dib& dib, const RECT& area, int32_t channel, const Colour& colour)
{
    Dib paint(dib.Type(), area.right - area.left, area.bottom - area.top);
    const Colour ready = ForType(dib.Type(), colour);
    CheckStatus(VxDibFillRect(paint.Header(), nullptr, nullptr, 0, &ready.blue, 0));
    const int32_t pixel = dib.BitsPerPixel() / 8, bytes = pixel / 4;
    uint8_t* to = dib.Row(area.bottom - 1) + pixel * area.left + bytes * channel;
    const uint8_t* from = paint.Row(paint.Height() - 1) + bytes * channel;
    for (int32_t i = 0; i < bytes; ++i)
        ChannelCopy(to + i, int32_t(dib.RowBytes()), pixel, paint.Width(), paint.Height(), from + i,
                    int32_t(paint.RowBytes()), pixel);
}

// Straight pixels of IN's own type, so that what is not filled stays bit for bit.
void FillPicture(const Arguments& arguments, const Colour& colour)
{
    const int32_t channel = arguments.OneOf("--channel", kChannels, -1);
    Dib dib = LoadDib(arguments, 0, 1);
    const RECT area = PixelsOr(arguments, "--area", {dib.Width(), dib.Height()}, arguments.Operand(0));
    if (channel >= 0) {
        const VxPixelType type = dib.Type();
        dib = Converted(std::move(dib), WorkingType(type));
        FillChannel(dib, area, channel, colour);
        dib = Converted(std::move(dib), type);
    } else {
        const Colour ready = ForType(dib.Type(), colour);
        CheckStatus(VxDibFillRect(dib.Header(), nullptr, &area, 0, &ready.blue, uint32_t(kFineQuality)));
    }
    WritePicture(arguments.Operand(1), dib);
}

void FillNew(const Arguments& arguments, const Colour& colour)
{
    const auto [width, height] = arguments.Size("--size", kDefaultSize);
    const Form form = FormOf(arguments);
    const Output output(arguments, 0, form);
    Frame frame(width, height, form);
    const Colour c = Premultiplied(colour);
    Fill(frame.Data(), frame.Stride(), frame.BytesPerPixel(), width, height, c.alpha, c.red, c.green, c.blue);
    output.Write(frame);
}

void RunFill(const Arguments& arguments)
{
    const bool fresh = arguments.OperandCount() == 1;
    for (const char* option : {"--area", "--channel"})
        if (fresh && arguments.Has(option))
            FailArgument(option, " needs a picture to fill");
    for (const char* option : {"--size", "--float"})
        if (!fresh && arguments.Has(option))
            FailArgument(option, " is for new pictures only");
    const Colour colour = arguments.ColourOr("--colour", Gray(0.0f));
    fresh ? FillNew(arguments, colour) : FillPicture(arguments, colour);
}

constexpr Option kFillOptions[] = {
    {"--colour", "COLOUR", "RRGGBB or RRGGBBAA in hexadecimal (default 000000)"},
    {"--area", "X,Y,WxH", "only these pixels of IN, counted from the top left"},
    {"--channel", "CHANNEL", "fill this channel of IN alone: blue, green, red or alpha"},
    kSizeOption,
    kFloatOption,
    {"--type", "TYPE", "pixel type of OUT (default: that of IN; rgba32 for a new picture)"},
};

void FadeByMask(const Arguments& arguments)
{
    const Form form = FormOf(arguments);
    const int32_t channel = arguments.OneOf("--channel", kChannels, -1);
    const Output output(arguments, 3, form);
    const std::string& path = arguments.Operand(0);
    Frame dst = LoadFrame(path, form);
    const Frame src = LoadPartner(arguments.Operand(1), form, dst, path);
    Frame mask = LoadPartner(arguments.Operand(2), Form::Bytes, dst, path);
    if (channel >= 0)
        SpreadChannel(mask, channel);
    MaskedFade(dst.Data(), dst.Stride(), src.Data(), src.Stride(), dst.BytesPerPixel(), mask.Data(),
               mask.Stride(), dst.Width(), dst.Height());
    output.Write(dst);
}

// With its alpha kept a pixel's colours fade as they are; else they fade multiplied by alpha, so that
// nothing of what cannot be seen comes to light.
void FadeToColour(const Arguments& arguments)
{
    const Form form = FormOf(arguments);
    const Colour colour = arguments.ColourOr("--to", Gray(0.0f));
    const float amount = float(arguments.Number("--amount", 0.5, 0.0, 1.0));
    const bool keep = arguments.Has("--keep-alpha");
    const Output output(arguments, 1, form);
    Dib dib = ReadPicture(arguments.Operand(0)).dib;
    const Area area = AreaOr(arguments, "--area", {dib.Width(), dib.Height()}, arguments.Operand(0));
    const VxPixelType type = form == Form::Bytes ? VXPIXEL_RGBA32 : VXPIXEL_RGBA128;
    if (keep) {
        dib = Converted(std::move(dib), type);
        const Colour c = ForType(type, colour);
        CheckStatus(
            VxDibFadeToColor(dib.Header(), nullptr, &area.units, 0, &c.blue, amount, 1, VXDIBF_SUBPIXEL));
        output.Write(std::move(dib));
    } else {
        Frame frame = ToFrame(dib, form);
        const FrameBitmap bitmap(frame);
        const Colour c = ForType(type, Premultiplied(colour));
        CheckStatus(VxDibFadeToColor(&bitmap.header, bitmap.pixels, &area.units, bitmap.stride, &c.blue,
                                     amount, 0, VXDIBF_SUBPIXEL));
        output.Write(frame);
    }
}

void RunFade(const Arguments& arguments)
{
    const bool toColour = arguments.Has("--to");
    for (const char* option : {"--amount", "--area", "--keep-alpha"})
        if (!toColour && arguments.Has(option))
            FailArgument(option, " goes with --to only");
    if (toColour && arguments.Has("--channel"))
        FailArgument("--to and --channel exclude each other");
    if (arguments.OperandCount() != (toColour ? 2 : 4))
        FailArgument("the usage is vxtool fade ", toColour ? "IN OUT --to COLOUR" : "A B MASK OUT");
    toColour ? FadeToColour(arguments) : FadeByMask(arguments);
}

constexpr Option kFadeOptions[] = {
    {"--to", "COLOUR", "fade IN to this colour, RRGGBB or RRGGBBAA, rather than A to B"},
    {"--amount", "A", "with --to: how far, 0.0 to 1.0 (default 0.5)"},
    {"--area", "X,Y,WxH", "with --to: only this part of IN, in pixels and fractions"},
    {"--keep-alpha", nullptr, "with --to: only the colours fade"},
    {"--channel", "CHANNEL",
     "weigh all by this channel of MASK: blue, green, red or alpha (default: each\n"
     "channel by its own, so that an opaque MASK gives all of B's alpha)"},
    kFloatOption,
    kTypeOption,
};

} // namespace

const Command kFill = {
    "fill",       "fill a picture, a part or a channel of one, or a new one with a colour", "[IN] OUT", 1, 2,
    kFillOptions, "vxtool fill in.png out.png --colour 00000080 --area 40,600,1200x80",     RunFill,
};
const Command kFade = {
    "fade",
    "go from A to B as far as a mask says, white takes B; or to a colour",
    "A B MASK OUT | IN OUT --to COLOUR",
    2,
    4,
    kFadeOptions,
    "vxtool fade a.png b.png wipe.png out.png --channel green",
    RunFade,
};

} // namespace vxtool
