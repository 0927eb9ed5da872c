// A device-independent bitmap of the library in the tool's hands: a picture as files hold it, of any
// pixel type from 16 to 32, with straight alpha.
#pragma once

#include "vx/pixel.h"
#include "vxtool/colour.h"

#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace vxtool {

// A palette entry or pixel packed into whole bytes of which each channel is a run of bits.
struct PackedLayout
{
    int32_t bytes;
    uint32_t blue, green, red, alpha; // masks; 0 where there is no such channel
};

Colour Unpacked(const PackedLayout& layout, const uint8_t* pixel);
// The masks of a type from 25 to 30.
const PackedLayout& LayoutOf(VxPixelType type);

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

// Straight colours of one row. A type without alpha reads as opaque, and so does the fourth byte of
// RGB32, which few programs set. An index behind the end of the palette is black.
void LoadRow(const Dib& dib, int32_t y, std::span<Colour> row);

// Stores rows. Colours are cut to the type's range; types without alpha drop it; palette types take
// the nearest entry.
class RowStore
{
public:
    explicit RowStore(Dib& dib);
    ~RowStore();
    void operator()(int32_t y, std::span<const Colour> row);

private:
    struct NearestEntry;
    Dib& dib_;
    std::unique_ptr<NearestEntry> nearest_;
};

// Names of types on the command line and in `info`, as "rgba32"; 0 and null where there is none.
VxPixelType TypeNamed(std::string_view name);
const char* NameOfType(VxPixelType type);
std::string AllTypeNames();
bool HasAlpha(VxPixelType type);
bool IsPaletteType(VxPixelType type);
bool IsGrayType(VxPixelType type);

} // namespace vxtool
