// A device-independent bitmap of the library in the tool's hands: a picture as files hold it, of any
// pixel type from 16 to 32, with straight alpha.
#pragma once

#include "vx/pixel.h"

#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace vxtool {

class Dib
{
public:
    // Pixels are zero. Fails with a sentence on sizes that are not allowed and when memory is short.
    Dib(VxPixelType type, int32_t width, int32_t height, std::span<const RGBQUAD> palette = {});

    BITMAPINFOHEADER* Header() { return dib_.get(); }
    const BITMAPINFOHEADER* Header() const { return dib_.get(); }
    VxPixelType Type() const { return type_; }
    int32_t Width() const { return dib_->biWidth; }
    int32_t Height() const { return dib_->biHeight; }
    int32_t BitsPerPixel() const { return dib_->biBitCount; }
    uint32_t RowBytes() const { return rowBytes_; }
    std::span<const RGBQUAD> Palette() const;
    // The whole block: header, colour table or masks, pixels.
    std::span<const uint8_t> Block() const;
    uint32_t PixelOffset() const { return pixelOffset_; }
    // y counts from the top of the picture.
    uint8_t* Row(int32_t y);
    const uint8_t* Row(int32_t y) const;

private:
    struct Freer
    {
        void operator()(BITMAPINFOHEADER* dib) const;
    };
    std::unique_ptr<BITMAPINFOHEADER, Freer> dib_;
    VxPixelType type_;
    uint32_t pixelOffset_, rowBytes_;
};

// Names of types on the command line and in `info`, as "rgba32"; 0 and null where there is none.
VxPixelType TypeNamed(std::string_view name);
const char* NameOfType(VxPixelType type);
std::string AllTypeNames();
bool HasAlpha(VxPixelType type);
bool IsPaletteType(VxPixelType type);
bool IsFloatType(VxPixelType type);

} // namespace vxtool
