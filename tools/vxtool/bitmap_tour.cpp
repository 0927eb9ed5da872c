// The cells of the contact sheet: what works on bitmaps of every type.
#include "vx/channels.h"
#include "vx/composite.h"
#include "vx/dib.h"
#include "vx/dibcopy.h"
#include "vxtool/commands.h"
#include "vxtool/fields.h"
#include "vxtool/patterns.h"
#include "vxtool/placing.h"
#include "vxtool/sheet.h"
#include "vxtool/text.h"

namespace vxtool {
namespace {

constexpr uint32_t kFine = uint32_t(kFineQuality), kPicking = kFine - 1;
constexpr Extent kCell = {kCellWidth, kCellHeight};

struct Filter
{
    const char* name;
    const char* enlarging;
    const char* shrinking;
    uint32_t flags;
};
constexpr Filter kFilters[] = {
    {"nearest", "4 times: pixels are picked", "a third: lines lost or doubled", kPicking},
    {"bilinear", "4 times: between 2x2 pixels", "a third: 2x2 of 3x3 pixels count", kFine},
    {"bicubic", "4 times: between 4x4 pixels, sharper", "a third: 4x4 pixels, sharper still",
     kFine | VXDIBF_BICUBIC},
    {"area", "4 times: as bilinear, nothing shrinks", "a third: the mean of all 3x3 pixels",
     kFine | VXDIBF_AREA},
};

Frame Scaled(Frame picture, const Area& from, uint32_t flags)
{
    Frame result(kCellWidth, kCellHeight, picture.PixelForm());
    Place(result, AreaOf(kCell), picture, from, {flags});
    return result;
}

Area WholeOf(const Frame& picture)
{
    return AreaOf({picture.Width(), picture.Height()});
}

Frame Magnified(Frame picture)
{
    const Area whole = WholeOf(picture);
    return Scaled(std::move(picture), whole, kPicking);
}

// A row for each type that a picture was in, a column for each type that it then becomes.
Frame TypeMatrix(const Frame& picture, std::span<const VxPixelType> types)
{
    constexpr int32_t kTileWidth = 81, kTileHeight = 45, kSpace = 4, kLabelWidth = 90, kLabelHeight = 20;
    const int32_t count = int32_t(types.size());
    const Frame small = Cover(picture, kTileWidth, kTileHeight);
    Frame panel(kPanelWidth, kLabelHeight + count * (kTileHeight + kSpace), Form::Bytes);
    FillArea(panel, 0, 0, panel.Width(), panel.Height(), kBackground);
    DrawText(panel, 0, 2, kDetailScale, kDetail, "from, to:");
    for (int32_t i = 0; i < count; ++i) {
        const int32_t x = kLabelWidth + i * (kTileWidth + kSpace),
                      y = kLabelHeight + i * (kTileHeight + kSpace);
        DrawText(panel, x, 2, kDetailScale, kCaption, NameOfType(types[size_t(i)]));
        DrawText(panel, 0, y + kTileHeight / 2 - 7, kDetailScale, kCaption, NameOfType(types[size_t(i)]));
    }
    for (int32_t row = 0; row < count; ++row)
        for (int32_t column = 0; column < count; ++column) {
            Dib dib = Converted(ToDib(small, VXPIXEL_RGBA32), types[size_t(row)]);
            const Frame tile = ToFrame(Converted(std::move(dib), types[size_t(column)]), Form::Bytes);
            BitmapCopy(panel.At(kLabelWidth + column * (kTileWidth + kSpace),
                                kLabelHeight + row * (kTileHeight + kSpace)),
                       panel.Stride(), tile.Data(), tile.Stride(), kTileWidth, 4, kTileHeight);
        }
    return panel;
}

Section Types(const Frame& back)
{
    constexpr VxPixelType kTypes[] = {
        VXPIXEL_PAL1,  VXPIXEL_PAL4,   VXPIXEL_PAL8,      VXPIXEL_GRAY1,  VXPIXEL_GRAY2,   VXPIXEL_GRAY4,
        VXPIXEL_GRAY8, VXPIXEL_GRAY16, VXPIXEL_GRAY32,    VXPIXEL_RGB555, VXPIXEL_RGB565,  VXPIXEL_RGB24,
        VXPIXEL_RGB32, VXPIXEL_RGBA32, VXPIXEL_RGB101010, VXPIXEL_RGBA64, VXPIXEL_RGBA128,
    };
    return {"convert --via FROM --type TO: every pixel type to every other", {}, TypeMatrix(back, kTypes)};
}

// A ramp over two levels of a byte, and these spread over the whole range.
Frame TwoLevels(int32_t quality)
{
    constexpr int32_t kWidth = 62, kHeight = 35, kFirst = 100, kSpread = 100;
    const Frame ramp =
        Ramp(kWidth, kHeight, Form::Floats, Gray(kFirst / 255.0f), Gray((kFirst + 2.0f) / 255.0f), false);
    const Dib dib = Converted(ToDib(ramp, VXPIXEL_RGBA128), VXPIXEL_RGBA32, {quality});
    uint8_t table[256 * 4];
    for (int32_t v = 0; v < 256; ++v)
        for (int32_t c = 0; c < 4; ++c)
            table[4 * v + c] = c == 3 ? uint8_t(v) : uint8_t(std::clamp((v - kFirst) * kSpread + 30, 0, 255));
    return Magnified(Made(ToFrame(dib, Form::Bytes),
                          [&](Frame& f) { Lut(f.Data(), f.Stride(), f.Width(), f.Height(), table); }));
}

Frame WithGamma(const Frame& picture, double sourceGamma, double gamma)
{
    return ToFrame(
        Converted(ToDib(picture, VXPIXEL_RGBA32), VXPIXEL_RGBA128, {kFineQuality, sourceGamma, gamma}),
        Form::Bytes);
}

Section Conversions(const Frame& back)
{
    const auto withPalette = [&](uint32_t colours) {
        const auto palette = ChosenPalette(ToDib(back, VXPIXEL_RGBA32), colours);
        return ToFrame(Indexed(ToDib(back, VXPIXEL_RGBA32), PaletteTypeFor(colours), palette), Form::Bytes);
    };
    return {"convert and palette",
            {{"convert --quality 2", "floats cut to bytes; three levels, enlarged", TwoLevels(2)},
             {"convert --quality 3", "floats dithered to bytes", TwoLevels(3)},
             {"convert --type rgba128 --gamma 1.0", "linear light, seen as it is", WithGamma(back, 0.0, 1.0)},
             {"convert ... --source-gamma 1.0", "as if BACK held linear light", WithGamma(back, 1.0, 0.0)},
             {"palette --colours 16", "chosen and applied", withPalette(16)},
             {"palette --colours 64", "brighter colours lie wider apart", withPalette(64)},
             {"palette --colours 256", "a near entry for every pixel", withPalette(256)},
             {"convert --type gray2", "the mean of the colours",
              ToFrame(Converted(ToDib(back, VXPIXEL_RGBA32), VXPIXEL_GRAY2), Form::Bytes)}}};
}

Section Scaling(const Frame& back, const Frame& front)
{
    const Frame scene = Made(back, [&](Frame& f) {
        Composite(f.Data(), f.Stride(), front.Data(), front.Stride(), 4, f.Width(), f.Height(),
                  VX_COMPOSITE_SOURCE_OVER, 1.0);
    });
    const Frame zone = ZonePlate(3 * kCellWidth, 3 * kCellHeight, Form::Bytes);
    const Area detail = {{150 * kSubpixel, 72 * kSubpixel, 243 * kSubpixel, 124 * kSubpixel}};
    Section section{"scale: four filters, 4 times larger and 3 times smaller", {}, {}};
    for (const Filter& filter : kFilters)
        section.cells.push_back({std::string("scale --filter ") + filter.name + " --from ...",
                                 filter.enlarging, Scaled(scene, detail, filter.flags)});
    for (const Filter& filter : kFilters)
        section.cells.push_back({std::string("scale --filter ") + filter.name, filter.shrinking,
                                 Scaled(zone, WholeOf(zone), filter.flags)});
    return section;
}

Frame Feathered(const Frame& back, int32_t width)
{
    Frame bars = Bars(kCellWidth, kCellHeight, Form::Bytes);
    return Made(back, [&](Frame& f) {
        const Area to = {{76 * kSubpixel, 34 * kSubpixel, 296 * kSubpixel, 174 * kSubpixel}};
        Place(f, to, bars, WholeOf(bars), {kFine | VXDIBF_BICUBIC | VXDIBF_AREA, width});
    });
}

// White squares, each a quarter of a pixel further on, seen twelve times larger.
Frame Quarters(uint32_t edges)
{
    constexpr int32_t kSide = 4 * kSubpixel;
    Frame white(4, 4, Form::Bytes), small(31, 17, Form::Bytes);
    FillArea(white, 0, 0, 4, 4, Gray(1.0f));
    FillArea(small, 0, 0, 31, 17, Tone(0x203860));
    for (int32_t i = 0; i < 8; ++i) {
        const int32_t part = i * kSubpixel / 4, x = (2 + i % 4 * 7) * kSubpixel + part % kSubpixel,
                      y = (2 + i / 4 * 8) * kSubpixel + (i < 4 ? 0 : part % kSubpixel);
        Place(small, {{x, y, x + kSide, y + kSide}}, white, WholeOf(white), {kFine | edges});
    }
    return Magnified(small);
}

Section Placing(const Frame& back)
{
    return {"scale --to: soft edges, and places between pixels",
            {{"scale --onto BACK --to 76,34,220x140", "bars in a rectangle of BACK", Feathered(back, 0)},
             {"scale ... --feather 40", "its outer 40 pixels mixed with BACK", Feathered(back, 40)},
             {"scale --to 9.25,2,4x4", "a quarter pixel further each time, enlarged", Quarters(0)},
             {"scale --to 9.25,2,4x4 --hard", "pixels covered in part written whole",
              Quarters(VXDIBF_NOEDGEBLEND)}}};
}

Frame Faded(const Frame& picture, const Area& area, const Colour& colour, float amount)
{
    return Made(picture, [&](Frame& f) {
        const FrameBitmap bitmap(f);
        VxDibFadeToColor(&bitmap.header, bitmap.pixels, &area.units, bitmap.stride, &colour.blue, amount, 0,
                         VXDIBF_SUBPIXEL);
    });
}

Section Fields(const Frame& back, const Frame& front)
{
    const auto onBack = [&](int32_t shift) {
        return Made(back, [&](Frame& f) {
            Composite(f.At(shift, 0), f.Stride(), front.Data(), front.Stride(), 4, f.Width() - shift,
                      f.Height(), VX_COMPOSITE_SOURCE_OVER, 1.0);
        });
    };
    const auto interlaced = [&] {
        return Merged(ToDib(onBack(0), VXPIXEL_RGBA32), ToDib(onBack(48), VXPIXEL_RGBA32));
    };
    const auto kept = [&](FieldNumber field) {
        return ToFrame(Deinterlaced(interlaced(), field), Form::Bytes);
    };
    Dib frame = interlaced();
    const Frame top = ToFrame(OneField(frame, kTopField), Form::Bytes),
                bottom = ToFrame(OneField(frame, kBottomField), Form::Bytes);
    Frame both(kCellWidth, kCellHeight, Form::Bytes);
    BitmapCopy(both.Data(), both.Stride(), top.Data(), top.Stride(), kCellWidth, 4, top.Height());
    BitmapCopy(both.At(0, top.Height()), both.Stride(), bottom.Data(), bottom.Stride(), kCellWidth, 4,
               bottom.Height());
    return {"fields",
            {{"fields --merge", "rows of two moments by turns", ToFrame(frame, Form::Bytes)},
             {"fields --split", "the top and the bottom field", both},
             {"fields --keep top", "the first moment, rows between made new", kept(kTopField)},
             {"fields --keep bottom", "the second", kept(kBottomField)}}};
}

Section Painting(const Frame& back, const Frame& front)
{
    const auto withHole = [&] {
        Dib dib = ToDib(back, VXPIXEL_RGBA32), clear(VXPIXEL_RGBA32, 172, 109);
        ChannelCopy(dib.Row(158) + 4 * 100 + 3, int32_t(dib.RowBytes()), 4, 172, 109, clear.Row(108) + 3,
                    int32_t(clear.RowBytes()), 4);
        return ToFrame(dib, Form::Bytes);
    };
    const auto paler = [&] {
        Dib dib = ToDib(front, VXPIXEL_RGBA32);
        const Colour white = Gray(1.0f);
        VxDibFadeToColor(dib.Header(), nullptr, nullptr, 0, &white.blue, 0.6f, 1, 0);
        return ToFrame(dib, Form::Bytes);
    };
    const Area part = {{40 * kSubpixel, 40 * kSubpixel, 332 * kSubpixel, 169 * kSubpixel}};
    return {"fade and fill",
            {{"fade --to ff6000 --amount 0.6", "all of it, most of the way",
              Faded(back, AreaOf(kCell), Tone(0xFF6000), 0.6f)},
             {"fade --to 00000000 --area ...", "a part, alpha too", Faded(back, part, {}, 0.7f)},
             {"fade --to ffffff --keep-alpha", "FRONT, its colours only", paler()},
             {"fill --channel alpha --colour 00000000", "one channel of a rectangle", withHole()}}};
}

} // namespace

std::vector<Section> BitmapTour(const Frame& back, const Frame& front)
{
    std::vector<Section> sections;
    sections.push_back(Scaling(back, front));
    sections.push_back(Placing(back));
    sections.push_back(Painting(back, front));
    sections.push_back(Fields(back, front));
    sections.push_back(Conversions(back));
    sections.push_back(Types(back));
    return sections;
}

} // namespace vxtool
