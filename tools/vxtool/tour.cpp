// The cells of the contact sheet: what works on frames.
#include "vx/blend.h"
#include "vx/channels.h"
#include "vx/composite.h"
#include "vxtool/commands.h"
#include "vxtool/curves.h"
#include "vxtool/modes.h"
#include "vxtool/patterns.h"
#include "vxtool/sheet.h"

namespace vxtool {
namespace {

Frame Composited(const Frame& back, const Frame& front, int32_t mode, double opacity)
{
    return Made(back, [&](Frame& f) {
        Composite(f.Data(), f.Stride(), front.Data(), front.Stride(), f.BytesPerPixel(), f.Width(),
                  f.Height(), mode, opacity);
    });
}

Frame Blended(const Frame& a, const Frame& b, double factor)
{
    return Made(a, [&](Frame& f) {
        Blend(f.Data(), f.Stride(), b.Data(), b.Stride(), f.Width(), f.Height(), factor);
    });
}

Frame Masked(const Frame& picture, const Frame& mask, double scale, double offset)
{
    return Made(picture, [&](Frame& f) {
        MaskMultiply(f.Data(), f.Stride(), 4, mask.Data(), mask.Stride(), f.Width(), f.Height(), 1, scale,
                     offset * kWhite8);
    });
}

CurveTable Curves(std::initializer_list<const char*> values)
{
    CurveTable table = IdentityCurves();
    for (const char* value : values)
        AddCurve(table, "--curve", value);
    return table;
}

// The curves that were used, drawn small into the corner.
void DrawCurves(Frame& frame, const CurveTable& table)
{
    constexpr int32_t kSide = 66;
    const int32_t left = frame.Width() - kSide - 6, top = frame.Height() - kSide - 6;
    Frame plot(kSide, kSide, Form::Bytes);
    FillArea(plot, 0, 0, kSide, kSide, {0.0f, 0.0f, 0.0f, 0.62f});
    for (int32_t x = 1; x + 1 < kSide; ++x)
        for (int32_t c = 0; c < 3; ++c) {
            const auto height = [&](int32_t at) {
                return table[size_t(4 * (at * 255 / (kSide - 1)) + c)] * (kSide - 3) / 255;
            };
            const int32_t low = std::min(height(x - 1) + 1, height(x)),
                          high = std::max(height(x - 1), height(x));
            for (int32_t y = std::min(low, high); y <= high; ++y) {
                Colour dot = plot.Get(x, kSide - 2 - y);
                (c == 0 ? dot.blue : c == 1 ? dot.green : dot.red) = 1.0f;
                dot.alpha = 1.0f;
                plot.Set(x, kSide - 2 - y, dot);
            }
        }
    Composite(frame.At(left, top), frame.Stride(), plot.Data(), plot.Stride(), 4, kSide, kSide,
              VX_COMPOSITE_SOURCE_OVER, 1.0);
}

Frame Curved(const Frame& picture, std::initializer_list<const char*> values)
{
    return Made(picture, [&](Frame& f) {
        const CurveTable table = Curves(values);
        LutWithAlphaClamp(f.Data(), f.Stride(), f.Width(), f.Height(), table.data());
        DrawCurves(f, table);
    });
}

Frame Mapped(const Frame& picture, int32_t channel, const char* gradient)
{
    return InForm(Made(InForm(picture, Form::Floats),
                       [&](Frame& f) {
                           const auto colours = Gradient("--gradient", gradient, 1024);
                           ChannelMapExFloat(f.Data(), f.Stride(), f.Data(), f.Stride(), channel, f.Width(),
                                             f.Height(), &colours[0].blue, int32_t(colours.size()));
                       }),
                  Form::Bytes);
}

Frame Thresholded(const Frame& picture, double low, double high)
{
    return InForm(
        Made(InForm(picture, Form::Floats),
             [&](Frame& f) { ThresholdFloat(f.Data(), f.Stride(), f.Width(), f.Height(), low, high); }),
        Form::Bytes);
}

Frame Cleared(const Frame& picture, float threshold)
{
    return Made(picture,
                [&](Frame& f) { ThresholdClear(f.Data(), f.Stride(), 4, f.Width(), f.Height(), threshold); });
}

Frame Flipped(const Frame& picture, bool horizontal, bool vertical)
{
    Dib dib = ToDib(picture, VXPIXEL_RGBA32);
    VxDibFlip(dib.Header(), nullptr, nullptr, 0, horizontal, vertical);
    return ToFrame(dib, Form::Bytes);
}

Frame Swapped(const Frame& picture)
{
    Dib dib = ToDib(picture, VXPIXEL_RGBA32);
    VxDibSwapRB(dib.Header(), nullptr, nullptr, 0);
    return ToFrame(dib, Form::Bytes);
}

// One channel in all three colours.
Frame Alone(const Frame& picture, int32_t channel)
{
    return Made(picture, [&](Frame& f) {
        for (int32_t c = 0; c < 3; ++c)
            ChannelCopy(f.Data() + c, f.Stride(), 4, f.Width(), f.Height(), picture.Data() + channel,
                        picture.Stride(), 4);
    });
}

Section Pictures(const Frame& back, const Frame& front, const Frame& mask)
{
    return {
        "The pictures",
        {{"BACK", "the first picture given, or this", back},
         {"FRONT", "the second; checkers are transparent", front},
         {"MASK", "the third; white is all, black nothing", mask},
         {"bars", "SMPTE bars, castellations and pluge", Bars(kCellWidth, kCellHeight, Form::Bytes)},
         {"zone", "up to one line a pixel in the corners", ZonePlate(kCellWidth, kCellHeight, Form::Bytes)},
         {"ramp --from 102060 --to ff904000", "colours with alpha",
          Ramp(kCellWidth, kCellHeight, Form::Bytes, ParseColour("", "102060"), ParseColour("", "ff904000"),
               false)},
         {"checker --cell 26", "any size, any two colours",
          Checker(kCellWidth, kCellHeight, Form::Bytes, 26, Gray(0.12f), Gray(0.88f))},
         {"fill --colour 2f6f8f --area 40,40,292x129", "a rectangle of BACK",
          Made(back, [](Frame& f) { FillArea(f, 40, 40, 292, 129, ParseColour("", "2f6f8f")); })}}};
}

Section Modes(const Frame& back, const Frame& front, const Frame& mask)
{
    constexpr const char* kDetails[] = {
        "FRONT on BACK",
        "FRONT under BACK, here cut out by MASK",
        "light on light",
        "only what both have",
        "contrast from BACK",
        "as two slide projectors",
        "half and half, alpha too",
    };
    Section section{"composite: seven modes", {}};
    const Frame cutOut = Masked(back, mask, 1.0, 0.0);
    for (size_t i = 0; i < std::size(kModes); ++i)
        section.cells.push_back({std::string("composite --mode ") + kModes[i].name, kDetails[i],
                                 Composited(kModes[i].value == VX_COMPOSITE_DESTINATION_OVER ? cutOut : back,
                                            front, kModes[i].value, 1.0)});
    section.cells.push_back({"composite --opacity 0.4", "source over at 40 %",
                             Composited(back, front, VX_COMPOSITE_SOURCE_OVER, 0.4)});
    return section;
}

Section Mixes(const Frame& back, const Frame& front, const Frame& mask, const Frame& matte)
{
    const Frame bars = Bars(kCellWidth, kCellHeight, Form::Bytes);
    const auto blendMasked = [&](Frame& f, const uint8_t* lut) {
        MaskedBlend(f.Data(), f.Stride(), mask.Data(), mask.Stride(), bars.Data(), bars.Stride(), f.Width(),
                    f.Height(), lut);
    };
    const CurveTable steep = Curves({"0,0:100,0:156,255:255,255"});
    return {"blend and fade",
            {{"blend --factor 0.7", "70 % BACK, 30 % bars", Blended(back, bars, 0.7)},
             {"blend --mask MASK", "bars where the mask is white",
              Made(back, [&](Frame& f) { blendMasked(f, nullptr); })},
             {"blend --mask MASK --curve 100,0:156,255", "the mask through a steep curve",
              Made(back, [&](Frame& f) { blendMasked(f, steep.data()); })},
             {"fade ... --channel green", "from BACK to FRONT, alpha too", Made(back, [&](Frame& f) {
                  MaskedFade(f.Data(), f.Stride(), front.Data(), front.Stride(), 4, matte.Data(),
                             matte.Stride(), f.Width(), f.Height());
              })}}};
}

Section Scales(const Frame& back, const Frame& mask)
{
    return {
        "multiply and mask",
        {{"multiply --factor 0.4", "darker; alpha stays",
          Made(back, [](Frame& f) { Multiply(f.Data(), f.Stride(), 4, f.Width(), f.Height(), 0.4, 1); })},
         {"multiply --factor 0.4 --alpha", "alpha too: fainter",
          Made(back, [](Frame& f) { Multiply(f.Data(), f.Stride(), 4, f.Width(), f.Height(), 0.4, 0); })},
         {"mask MASK --channel green", "all, alpha too, by the mask", Masked(back, mask, 1.0, 0.0)},
         {"mask ... --scale -1 --offset 1", "by the inverse of the mask", Masked(back, mask, -1.0, 1.0)}}};
}

Section Tables(const Frame& back)
{
    return {"lut and map",
            {{"lut --curve 0,0:80,40:176,215:255,255", "more contrast",
              Curved(back, {"0,0:80,40:176,215:255,255"})},
             {"lut --curve 0,0:96,150:255,255", "lighter", Curved(back, {"0,0:96,150:255,255"})},
             {"lut --curve red=... --curve blue=...", "a curve for each channel",
              Curved(back, {"red=0,30:140,120:255,190", "blue=0,60:255,255", "green=0,10:255,240"})},
             {"lut --curve 0,255:255,0", "negative", Curved(back, {"0,255:255,0"})},
             {"map", "green chooses from heat colours", Mapped(back, 1, "0,000000:0.5,ff6000:1,ffffe0")},
             {"map --gradient 0,101840:1,f0fff0", "any colours", Mapped(back, 1, "0,101840:1,f0fff0")},
             {"map --channel red --gradient ...", "alpha in the gradient",
              Mapped(back, 2, "0,ffb04000:0.55,ffb04000:1,ffb040ff")},
             {"map --sum 2", "blue and green summed, cut at 255", Made(back, [](Frame& f) {
                  uint32_t table[256];
                  for (uint32_t i = 0; i < 256; ++i)
                      table[i] = 0xFF000000u | i * 0x010101u;
                  ChannelMergeLut(f.Data(), f.Stride(), 2, f.Width(), f.Height(), table);
              })}}};
}

Section Thresholds(const Frame& back)
{
    return {"threshold",
            {{"threshold --low 0.5", "a hard step in each channel", Thresholded(back, 0.5, 0.5)},
             {"threshold --low 0.3 --high 0.6", "a soft step", Thresholded(back, 0.3, 0.6)},
             {"threshold --clear 0.5", "what is below goes", Cleared(back, 0.5f)},
             {"channel --only green, threshold", "one channel: a stencil",
              Thresholded(Alone(back, 1), 0.5, 0.5)}}};
}

Section Shapes(const Frame& back)
{
    const auto matte = [&](Frame& f) {
        Dib dib = ToDib(f, VXPIXEL_RGBA32);
        uint8_t* first = dib.Row(dib.Height() - 1);
        ChannelCopy(first + 3, int32_t(dib.RowBytes()), 4, dib.Width(), dib.Height(), first + 2,
                    int32_t(dib.RowBytes()), 4);
        f = ToFrame(dib, Form::Bytes);
    };
    return {"flip, swap, channel",
            {{"flip --horizontal", "left is right", Flipped(back, true, false)},
             {"flip --vertical", "top is bottom", Flipped(back, false, true)},
             {"swap", "red is blue", Swapped(back)},
             {"channel --copy red:alpha", "red as a matte", Made(back, matte)},
             {"channel --only red", "one channel in gray", Alone(back, 2)},
             {"channel --only green", "one channel in gray", Alone(back, 1)},
             {"channel --only blue", "one channel in gray", Alone(back, 0)},
             {"flip --horizontal --vertical", "both: half a turn", Flipped(back, true, true)}}};
}

} // namespace

std::vector<Section> Tour(const Frame& back, const Frame& front, const Frame& mask)
{
    const Frame matte = Made(mask, [](Frame& f) { SpreadChannel(f, 1); });
    return {Pictures(back, front, mask),
            Modes(back, front, mask),
            Mixes(back, front, mask, matte),
            Scales(back, mask),
            Tables(back),
            Thresholds(back),
            Shapes(back)};
}

} // namespace vxtool
