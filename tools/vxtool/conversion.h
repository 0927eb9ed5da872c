// Pictures from one pixel type into another. The library's copy does the work; here stands only what
// it leaves to its host: the table of a two-colour picture, and which colours a new table holds.
#pragma once

#include "vxtool/colour.h"
#include "vxtool/dib.h"

#include <optional>
#include <vector>

namespace vxtool {

// From this quality on pixels are interpolated, and dithered where floats become 8 bits.
constexpr int32_t kFineQuality = 3;

struct Transfer
{
    int32_t quality = kFineQuality;
    double sourceGamma = 0.0, gamma = 0.0; // 0.0 is the library's default; of use with a float type only
};

// Straight alpha, which types without it drop. A palette type gets a table as from ChosenPalette;
// pal1 is black and white.
Dib Converted(Dib source, VxPixelType type, const Transfer& transfer = {});

// At most `count` colours for a picture: its own, where they are few and far enough apart for the
// library to find each again, else those that the library chooses. Null is the whole picture.
std::vector<RGBQUAD> ChosenPalette(const Dib& picture, uint32_t count, const RECT* area = nullptr);

// Each pixel becomes the index of a near entry; type is pal4 or pal8.
Dib Indexed(Dib source, VxPixelType type, std::span<const RGBQUAD> palette);

// The palette type for that many entries, and the entries that a palette type has room for.
VxPixelType PaletteTypeFor(uint32_t entries);
uint32_t PaletteRoom(VxPixelType type);

// The type with alpha that keeps a type's channels: rgba32, rgba64 or rgba128.
VxPixelType WorkingType(VxPixelType type);

// Straight colours of single rows. A type without alpha reads as opaque.
class RowLoader
{
public:
    explicit RowLoader(const Dib& dib);
    void operator()(int32_t y, std::span<Colour> row) const;

private:
    // Types of at most 8 bits a channel are read as bytes, in which full scale is full scale.
    std::optional<Dib> bytes_;
    const Dib& dib_;
};

// For calls whose arguments have been checked, so that only memory can be missing: std::bad_alloc.
void CheckStatus(HRESULT status);

} // namespace vxtool
