// A picture in working form: a frame as the library's pixel operations take it. Top row first, rows
// without gaps, colours premultiplied by alpha.
#pragma once

#include "vxtool/colour.h"
#include "vxtool/dib.h"

#include <vector>

namespace vxtool {

enum class Form
{
    Bytes,  // 8-bit frame, 4 bytes a pixel
    Floats, // float frame, 16 bytes a pixel
};

class Frame
{
public:
    // Transparent black. Fails with a sentence on a size that is not allowed.
    Frame(int32_t width, int32_t height, Form form);

    int32_t Width() const { return width_; }
    int32_t Height() const { return height_; }
    Form PixelForm() const { return form_; }
    int32_t BytesPerPixel() const { return form_ == Form::Bytes ? 4 : 16; }
    int32_t Stride() const { return width_ * BytesPerPixel(); }
    uint8_t* Data() { return bytes_.data(); }
    const uint8_t* Data() const { return bytes_.data(); }
    uint8_t* At(int32_t x, int32_t y) { return Data() + Offset(x, y); }
    const uint8_t* At(int32_t x, int32_t y) const { return Data() + Offset(x, y); }

    // Premultiplied.
    Colour Get(int32_t x, int32_t y) const;
    void Set(int32_t x, int32_t y, const Colour& colour);

    friend bool operator==(const Frame&, const Frame&) = default;

private:
    size_t Offset(int32_t x, int32_t y) const
    {
        return (size_t(y) * size_t(width_) + size_t(x)) * size_t(BytesPerPixel());
    }
    int32_t width_, height_;
    Form form_;
    std::vector<uint8_t> bytes_;
};

// A frame as the library's operations on bitmaps take it: their lowest row is the frame's last one.
struct FrameBitmap
{
    explicit FrameBitmap(Frame& frame);

    BITMAPINFOHEADER header;
    void* pixels;
    int32_t stride;
};

// Premultiplies.
Frame ToFrame(const Dib& dib, Form form);

// Un-premultiplies for types with alpha; for the others the picture is seen over black. Floats become
// bytes with a dither.
Dib ToDib(const Frame& frame, VxPixelType type);

// The same pixels in the other form, or in the same one.
Frame InForm(Frame frame, Form form);

} // namespace vxtool
