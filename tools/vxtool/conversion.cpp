#include "vxtool/conversion.h"

#include "vx/dib.h"
#include "vx/dibcopy.h"

#include <cstring>
#include <map>
#include <new>

namespace vxtool {
namespace {

constexpr RGBQUAD kBlackAndWhite[] = {{0, 0, 0, 0}, {255, 255, 255, 0}};

Dib Copied(const Dib& source, VxPixelType type, std::span<const RGBQUAD> palette, const Transfer& transfer)
{
    Dib result(type, source.Width(), source.Height(), palette);
    CheckStatus(VxDibCopy(result.Header(), nullptr, nullptr, 0, source.Header(), nullptr, nullptr, 0,
                          uint32_t(transfer.quality), transfer.gamma, transfer.sourceGamma));
    return result;
}

// The library reads one bit a pixel as black or white and leaves the two colours to us. As bytes these
// are 0 and 255, which the entries of that number turn into the colours.
Dib WithTwoColours(const Dib& dib)
{
    std::vector<RGBQUAD> table(256);
    const auto own = dib.Palette();
    for (size_t i = 0; i < std::min<size_t>(own.size(), 2); ++i)
        table[i * 255] = own[i];
    Dib result(VXPIXEL_PAL8, dib.Width(), dib.Height(), table);
    const Dib bytes = Copied(dib, VXPIXEL_GRAY8, {}, {});
    std::memcpy(result.Row(result.Height() - 1), bytes.Row(bytes.Height() - 1), bytes.Header()->biSizeImage);
    return result;
}

Dib AsBytes(const Dib& dib)
{
    if (dib.Type() == VXPIXEL_PAL1)
        return Copied(WithTwoColours(dib), VXPIXEL_RGBA32, {}, {});
    return Copied(dib, VXPIXEL_RGBA32, {}, {});
}

// At 16 bits the library reads white in a table as 65280; at 8 bits entries are exact.
Dib WithoutTable(Dib source)
{
    return IsPaletteType(source.Type()) ? AsBytes(source) : std::move(source);
}

// The cell of the library's cube of 5-bit colours; it tells no two colours of a cell apart.
uint32_t CellOf(const RGBQUAD& q)
{
    return uint32_t(q.rgbRed >> 3 << 10 | q.rgbGreen >> 3 << 5 | q.rgbBlue >> 3);
}

uint32_t WordOf(const RGBQUAD& q)
{
    return uint32_t(q.rgbRed) << 16 | uint32_t(q.rgbGreen) << 8 | q.rgbBlue;
}

// The picture's own colours; empty if they are too many, or too near to each other.
std::vector<RGBQUAD> OwnPalette(const Dib& bytes, uint32_t count, const RECT& area)
{
    std::map<uint32_t, RGBQUAD> cells;
    for (int32_t y = area.top; y < area.bottom; ++y)
        for (int32_t x = area.left; x < area.right; ++x) {
            RGBQUAD colour;
            std::memcpy(&colour, bytes.Row(y) + 4 * x, sizeof(colour));
            colour.rgbReserved = 0;
            const auto found = cells.try_emplace(CellOf(colour), colour).first;
            if (WordOf(found->second) != WordOf(colour) || cells.size() > count)
                return {};
        }
    std::vector<RGBQUAD> palette;
    for (const auto& [cell, colour] : cells)
        palette.push_back(colour);
    return palette;
}

} // namespace

void CheckStatus(HRESULT status)
{
    if (FAILED(status))
        throw std::bad_alloc();
}

Dib Converted(Dib source, VxPixelType type, const Transfer& transfer)
{
    if (source.Type() == type && transfer.gamma == transfer.sourceGamma)
        return source;
    source = WithoutTable(std::move(source));
    if (type == VXPIXEL_PAL4 || type == VXPIXEL_PAL8) {
        // The colours to choose from are those behind the curve.
        if (transfer.gamma != transfer.sourceGamma)
            source = Copied(source, VXPIXEL_RGBA32, {}, transfer);
        const auto palette = ChosenPalette(source, PaletteRoom(type));
        return Indexed(std::move(source), type, palette);
    }
    return Copied(source, type, type == VXPIXEL_PAL1 ? kBlackAndWhite : std::span<const RGBQUAD>(), transfer);
}

std::vector<RGBQUAD> ChosenPalette(const Dib& picture, uint32_t count, const RECT* area)
{
    const RECT whole = {0, 0, picture.Width(), picture.Height()};
    std::optional<Dib> bytes;
    if (picture.Type() != VXPIXEL_RGBA32)
        bytes = AsBytes(picture);
    const Dib& seen = bytes ? *bytes : picture;
    auto palette = OwnPalette(seen, count, area ? *area : whole);
    if (!palette.empty())
        return palette;
    palette.resize(count);
    Dib holder(PaletteTypeFor(count), 1, 1, palette);
    CheckStatus(
        VxDibQuantizePalette(holder.Header(), seen.Header(), nullptr, area, 0, uint32_t(kFineQuality)));
    return {holder.Palette().begin(), holder.Palette().end()};
}

Dib Indexed(Dib source, VxPixelType type, std::span<const RGBQUAD> palette)
{
    return Copied(WithoutTable(std::move(source)), type, palette, {});
}

VxPixelType PaletteTypeFor(uint32_t entries)
{
    return entries <= PaletteRoom(VXPIXEL_PAL4) ? VXPIXEL_PAL4 : VXPIXEL_PAL8;
}

uint32_t PaletteRoom(VxPixelType type)
{
    return 1u << VxPixelTypeToBitAttribs(type, nullptr, nullptr, 0, nullptr);
}

VxPixelType WorkingType(VxPixelType type)
{
    if (IsFloatType(type))
        return VXPIXEL_RGBA128;
    return type == VXPIXEL_GRAY16 || type == VXPIXEL_RGB101010 || type == VXPIXEL_RGBA64 ? VXPIXEL_RGBA64
                                                                                         : VXPIXEL_RGBA32;
}

RowLoader::RowLoader(const Dib& dib) : dib_(dib)
{
    if (WorkingType(dib.Type()) == VXPIXEL_RGBA32 && dib.Type() != VXPIXEL_RGBA32)
        bytes_ = AsBytes(dib);
}

void RowLoader::operator()(int32_t y, std::span<Colour> row) const
{
    const Dib& dib = bytes_ ? *bytes_ : dib_;
    BITMAPINFOHEADER oneRow;
    VxVideo_InitBitmapInfo(&oneRow, VXPIXEL_RGBA128, dib.Width(), 1, nullptr, 0, nullptr);
    const RECT area = {0, y, dib.Width(), y + 1};
    CheckStatus(VxDibCopy(&oneRow, row.data(), nullptr, 0, dib.Header(), nullptr, &area, 0,
                          uint32_t(kFineQuality), 0.0, 0.0));
}

} // namespace vxtool
