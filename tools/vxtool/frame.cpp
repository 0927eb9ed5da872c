#include "vxtool/frame.h"

#include "vx/dibcopy.h"
#include "vxtool/conversion.h"
#include "vxtool/failure.h"
#include "vxtool/size_limits.h"

#include <cstring>

namespace vxtool {
namespace {

void StorePixel(uint8_t* at, Form form, const Colour& c)
{
    if (form == Form::Floats) {
        std::memcpy(at, &c, sizeof(c));
        return;
    }
    const float channels[] = {c.blue, c.green, c.red, c.alpha};
    for (int i = 0; i < 4; ++i)
        at[i] = uint8_t(Quantized(channels[i], 255));
}

// Straight pixels in a frame's own form, opaque where alpha is not wanted.
Dib StraightDib(const Frame& frame, bool withAlpha)
{
    const bool bytes = frame.PixelForm() == Form::Bytes;
    Dib dib(bytes ? VXPIXEL_RGBA32 : VXPIXEL_RGBA128, frame.Width(), frame.Height());
    for (int32_t y = 0; y < frame.Height(); ++y)
        for (int32_t x = 0; x < frame.Width(); ++x) {
            Colour c = frame.Get(x, y);
            if (withAlpha)
                c = Straight(c);
            else
                c.alpha = 1.0f;
            StorePixel(dib.Row(y) + size_t(x) * size_t(frame.BytesPerPixel()), frame.PixelForm(), c);
        }
    return dib;
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
        return {float(at[0]) / 255.0f, float(at[1]) / 255.0f, float(at[2]) / 255.0f, float(at[3]) / 255.0f};
    Colour colour;
    std::memcpy(&colour, at, sizeof(colour));
    return colour;
}

void Frame::Set(int32_t x, int32_t y, const Colour& c)
{
    StorePixel(At(x, y), form_, c);
}

FrameBitmap::FrameBitmap(Frame& frame) : pixels(frame.At(0, frame.Height() - 1)), stride(-frame.Stride())
{
    VxVideo_InitBitmapInfo(&header, frame.PixelForm() == Form::Bytes ? VXPIXEL_RGBA32 : VXPIXEL_RGBA128,
                           frame.Width(), frame.Height(), nullptr, 0, nullptr);
}

Frame ToFrame(const Dib& dib, Form form)
{
    Frame frame(dib.Width(), dib.Height(), form);
    const RowLoader load(dib);
    std::vector<Colour> row(size_t(dib.Width()));
    for (int32_t y = 0; y < dib.Height(); ++y) {
        load(y, row);
        for (int32_t x = 0; x < dib.Width(); ++x)
            frame.Set(x, y, Premultiplied(row[size_t(x)]));
    }
    return frame;
}

Dib ToDib(const Frame& frame, VxPixelType type)
{
    return Converted(StraightDib(frame, HasAlpha(type)), type);
}

Frame InForm(Frame frame, Form form)
{
    if (frame.PixelForm() == form)
        return frame;
    Frame result(frame.Width(), frame.Height(), form);
    const FrameBitmap from(frame), to(result);
    CheckStatus(VxDibCopy(&to.header, to.pixels, nullptr, to.stride, &from.header, from.pixels, nullptr,
                          from.stride, uint32_t(kFineQuality), 0.0, 0.0));
    return result;
}

} // namespace vxtool
