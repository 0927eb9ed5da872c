#include "vxtool/frame.h"

#include "vxtool/failure.h"
#include "vxtool/size_limits.h"

#include <cstring>
#include <set>

namespace vxtool {
namespace {

RGBQUAD Quad(uint32_t red, uint32_t green, uint32_t blue)
{
    return {BYTE(blue), BYTE(green), BYTE(red), 0};
}

// A cube of colours with equal steps, and grays in the entries that are left.
std::vector<RGBQUAD> EvenPalette(uint32_t bits)
{
    if (bits == 1)
        return {Quad(0, 0, 0), Quad(255, 255, 255)};
    const uint32_t steps = bits == 4 ? 2 : 6, grays = (1u << bits) - steps * steps * steps;
    std::vector<RGBQUAD> palette;
    for (uint32_t i = 0; i < steps * steps * steps; ++i) {
        const auto level = [steps](uint32_t step) { return step % steps * 255 / (steps - 1); };
        palette.push_back(Quad(level(i / steps / steps), level(i / steps), level(i)));
    }
    for (uint32_t i = 1; i <= grays; ++i) {
        const uint32_t gray = i * 255 / (grays + 1);
        palette.push_back(Quad(gray, gray, gray));
    }
    return palette;
}

// The picture's own colours in ascending order; empty if there are more than that many.
std::vector<RGBQUAD> OwnPalette(const Frame& frame, size_t most)
{
    std::set<uint32_t> colours;
    for (int32_t y = 0; y < frame.Height(); ++y)
        for (int32_t x = 0; x < frame.Width(); ++x) {
            const Colour c = frame.Get(x, y);
            colours.insert(Quantized(c.red, 255) << 16 | Quantized(c.green, 255) << 8 |
                           Quantized(c.blue, 255));
            if (colours.size() > most)
                return {};
        }
    std::vector<RGBQUAD> palette;
    for (const uint32_t c : colours)
        palette.push_back(Quad(c >> 16, c >> 8, c));
    return palette;
}

std::vector<RGBQUAD> PaletteFor(const Frame& frame, VxPixelType type)
{
    if (!IsPaletteType(type))
        return {};
    const uint32_t bits = uint32_t(VxPixelTypeToBitAttribs(type, nullptr, nullptr, 0, nullptr));
    const auto own = OwnPalette(frame, size_t(1) << bits);
    return own.empty() ? EvenPalette(bits) : own;
}

void LoadFrameRow(const Frame& frame, int32_t y, std::span<Colour> row)
{
    for (int32_t x = 0; x < frame.Width(); ++x)
        row[size_t(x)] = frame.Get(x, y);
}

} // namespace

Frame::Frame(int32_t width, int32_t height, Form form) : width_(width), height_(height), form_(form)
{
    if (!SizeAllowed(width, height, BytesPerPixel() * 8))
        FailFile("a frame of ", width, "x", height, " pixels of ", BytesPerPixel(), " bytes is too large");
    bytes_.resize(Offset(0, height));
}

Colour Frame::Get(int32_t x, int32_t y) const
{
    const uint8_t* at = At(x, y);
    if (form_ == Form::Bytes)
        return Unpacked(LayoutOf(VXPIXEL_RGBA32), at);
    Colour colour;
    std::memcpy(&colour, at, sizeof(colour));
    return colour;
}

void Frame::Set(int32_t x, int32_t y, const Colour& c)
{
    uint8_t* at = At(x, y);
    if (form_ == Form::Floats) {
        std::memcpy(at, &c, sizeof(c));
        return;
    }
    const float channels[] = {c.blue, c.green, c.red, c.alpha};
    for (int i = 0; i < 4; ++i)
        at[i] = uint8_t(Quantized(channels[i], 255));
}

Frame ToFrame(const Dib& dib, Form form)
{
    Frame frame(dib.Width(), dib.Height(), form);
    std::vector<Colour> row(size_t(dib.Width()));
    for (int32_t y = 0; y < dib.Height(); ++y) {
        LoadRow(dib, y, row);
        for (int32_t x = 0; x < dib.Width(); ++x)
            frame.Set(x, y, Premultiplied(row[size_t(x)]));
    }
    return frame;
}

Dib ToDib(const Frame& frame, VxPixelType type)
{
    Dib dib(type, frame.Width(), frame.Height(), PaletteFor(frame, type));
    RowStore store(dib);
    std::vector<Colour> row(size_t(frame.Width()));
    for (int32_t y = 0; y < frame.Height(); ++y) {
        LoadFrameRow(frame, y, row);
        if (HasAlpha(type))
            std::ranges::transform(row, row.begin(), Straight);
        store(y, row);
    }
    return dib;
}

Frame InForm(const Frame& frame, Form form)
{
    if (frame.PixelForm() == form)
        return frame;
    Frame result(frame.Width(), frame.Height(), form);
    for (int32_t y = 0; y < frame.Height(); ++y)
        for (int32_t x = 0; x < frame.Width(); ++x)
            result.Set(x, y, frame.Get(x, y));
    return result;
}

} // namespace vxtool
