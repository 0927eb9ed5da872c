#include "vxtool/dib.h"

#include "vxtool/failure.h"
#include "vxtool/size_limits.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <unordered_map>
#include <utility>

namespace vxtool {
namespace {

struct TypeName
{
    VxPixelType type;
    const char* name;
};

constexpr TypeName kTypeNames[] = {
    {VXPIXEL_PAL1, "pal1"},     {VXPIXEL_PAL4, "pal4"},       {VXPIXEL_PAL8, "pal8"},
    {VXPIXEL_GRAY1, "gray1"},   {VXPIXEL_GRAY2, "gray2"},     {VXPIXEL_GRAY4, "gray4"},
    {VXPIXEL_GRAY8, "gray8"},   {VXPIXEL_GRAY16, "gray16"},   {VXPIXEL_GRAY32, "gray32"},
    {VXPIXEL_RGB555, "rgb555"}, {VXPIXEL_RGB565, "rgb565"},   {VXPIXEL_RGB24, "rgb24"},
    {VXPIXEL_RGB32, "rgb32"},   {VXPIXEL_RGBA32, "rgba32"},   {VXPIXEL_RGB101010, "rgb101010"},
    {VXPIXEL_RGBA64, "rgba64"}, {VXPIXEL_RGBA128, "rgba128"},
};

constexpr PackedLayout kLayouts[] = {
    {2, 0x001F, 0x03E0, 0x7C00, 0},                      // RGB555
    {2, 0x001F, 0x07E0, 0xF800, 0},                      // RGB565
    {3, 0x0000FF, 0x00FF00, 0xFF0000, 0},                // RGB24
    {4, 0x000000FF, 0x0000FF00, 0x00FF0000, 0},          // RGB32
    {4, 0x000000FF, 0x0000FF00, 0x00FF0000, 0xFF000000}, // RGBA32
    {4, 0x000003FF, 0x000FFC00, 0x3FF00000, 0},          // RGB101010: files leave the two alpha bits at 0
};

float Component(uint32_t word, uint32_t mask, float missing)
{
    if (mask == 0)
        return missing;
    const int shift = std::countr_zero(mask);
    return float(double((word & mask) >> shift) / double(mask >> shift));
}

uint32_t Bits(float value, uint32_t mask)
{
    if (mask == 0)
        return 0;
    const int shift = std::countr_zero(mask);
    return Quantized(value, mask >> shift) << shift;
}

void Pack(const PackedLayout& layout, const Colour& c, uint8_t* pixel)
{
    const uint32_t word = Bits(c.blue, layout.blue) | Bits(c.green, layout.green) | Bits(c.red, layout.red) |
                          Bits(c.alpha, layout.alpha);
    std::memcpy(pixel, &word, size_t(layout.bytes));
}

template <class T>
T Element(const uint8_t* row, size_t index)
{
    T value;
    std::memcpy(&value, row + index * sizeof(T), sizeof(T));
    return value;
}

template <class T>
void SetElement(uint8_t* row, size_t index, T value)
{
    std::memcpy(row + index * sizeof(T), &value, sizeof(T));
}

// Pixels of 1 to 8 bits: the leftmost one is in the highest bits.
uint32_t SubByte(const uint8_t* row, size_t x, uint32_t bits)
{
    const size_t at = x * bits;
    return uint32_t(row[at / 8] >> (8 - bits - at % 8)) & ((1u << bits) - 1);
}

void SetSubByte(uint8_t* row, size_t x, uint32_t bits, uint32_t value)
{
    const size_t at = x * bits;
    const uint32_t shift = uint32_t(8 - bits - at % 8), mask = ((1u << bits) - 1) << shift;
    row[at / 8] = uint8_t((row[at / 8] & ~mask) | (value << shift));
}

Colour OfEntry(const RGBQUAD& entry)
{
    return {float(entry.rgbBlue) / 255.0f, float(entry.rgbGreen) / 255.0f, float(entry.rgbRed) / 255.0f,
            1.0f};
}

void LoadIndexedRow(const Dib& dib, const uint8_t* data, std::span<Colour> row)
{
    Colour colours[256];
    std::fill(std::begin(colours), std::end(colours), Gray(0.0f));
    const auto palette = dib.Palette().first(std::min<size_t>(dib.Palette().size(), 256));
    std::transform(palette.begin(), palette.end(), colours, OfEntry);
    for (size_t x = 0; x < row.size(); ++x)
        row[x] = colours[SubByte(data, x, uint32_t(dib.BitsPerPixel()))];
}

void LoadGrayRow(const Dib& dib, const uint8_t* data, std::span<Colour> row)
{
    const uint32_t bits = uint32_t(dib.BitsPerPixel());
    const float top = float((1u << (bits & 31)) - 1);
    for (size_t x = 0; x < row.size(); ++x)
        row[x] = Gray(bits == 32   ? Element<float>(data, x)
                      : bits == 16 ? float(Element<uint16_t>(data, x)) / 65535.0f
                                   : float(SubByte(data, x, bits)) / top);
}

void StoreGrayRow(const Dib& dib, uint8_t* data, std::span<const Colour> row)
{
    const uint32_t bits = uint32_t(dib.BitsPerPixel());
    for (size_t x = 0; x < row.size(); ++x) {
        // Gray stays exactly what it is: the weights of the luma do not sum to 1.0 in every last bit.
        const Colour& c = row[x];
        const float gray = c.blue == c.green && c.green == c.red ? c.red : Luma(c);
        if (bits == 32)
            SetElement(data, x, gray);
        else if (bits == 16)
            SetElement(data, x, uint16_t(Quantized(gray, 65535)));
        else
            SetSubByte(data, x, bits, Quantized(gray, (1u << bits) - 1));
    }
}

} // namespace

Colour Unpacked(const PackedLayout& layout, const uint8_t* pixel)
{
    uint32_t word = 0;
    std::memcpy(&word, pixel, size_t(layout.bytes));
    return {Component(word, layout.blue, 0.0f), Component(word, layout.green, 0.0f),
            Component(word, layout.red, 0.0f), Component(word, layout.alpha, 1.0f)};
}

const PackedLayout& LayoutOf(VxPixelType type)
{
    return kLayouts[type - VXPIXEL_RGB555];
}

Dib::Dib(VxPixelType type, int32_t width, int32_t height, std::span<const RGBQUAD> palette) : type_(type)
{
    const uint32_t bits = uint32_t(VxPixelTypeToBitAttribs(type, nullptr, nullptr, 0, nullptr));
    if (!SizeAllowed(width, height, bits))
        FailFile("a picture of ", width, "x", height, " pixels of ", bits, " bits is too large");
    BITMAPINFOHEADER* made = nullptr;
    if (FAILED(VxDibAlloc(&made, type, width, height, palette.data(), int32_t(palette.size()), 1, 0)))
        FailFile("there is not enough memory for ", width, "x", height, " pixels of ", bits, " bits");
    dib_.reset(made);
    rowBytes_ = (uint32_t(width) * bits + 31) / 32 * 4;
    pixelOffset_ = made->biCompression == BI_BITFIELDS ? 52 : 40 + 4 * made->biClrUsed;
}

void Dib::Freer::operator()(BITMAPINFOHEADER* dib) const
{
    VxDibFree(dib, 0);
}

std::span<const RGBQUAD> Dib::Palette() const
{
    if (!IsPaletteType(type_))
        return {};
    return {reinterpret_cast<const RGBQUAD*>(dib_.get() + 1), dib_->biClrUsed};
}

std::span<const uint8_t> Dib::Block() const
{
    return {reinterpret_cast<const uint8_t*>(dib_.get()), size_t(pixelOffset_) + dib_->biSizeImage};
}

const uint8_t* Dib::Row(int32_t y) const
{
    return Block().data() + pixelOffset_ + size_t(rowBytes_) * size_t(Height() - 1 - y);
}

uint8_t* Dib::Row(int32_t y)
{
    return const_cast<uint8_t*>(std::as_const(*this).Row(y));
}

void LoadRow(const Dib& dib, int32_t y, std::span<Colour> row)
{
    const uint8_t* data = dib.Row(y);
    if (IsPaletteType(dib.Type()))
        return LoadIndexedRow(dib, data, row);
    if (IsGrayType(dib.Type()))
        return LoadGrayRow(dib, data, row);
    if (dib.Type() == VXPIXEL_RGBA128) {
        std::memcpy(row.data(), data, row.size_bytes());
        return;
    }
    if (dib.Type() == VXPIXEL_RGBA64) {
        const auto word = [data](size_t i) { return float(Element<uint16_t>(data, i)) / 65535.0f; };
        for (size_t x = 0; x < row.size(); ++x)
            row[x] = {word(4 * x), word(4 * x + 1), word(4 * x + 2), word(4 * x + 3)};
        return;
    }
    const PackedLayout& layout = LayoutOf(dib.Type());
    for (size_t x = 0; x < row.size(); ++x, data += layout.bytes)
        row[x] = Unpacked(layout, data);
}

// Remembers what it has found: pictures repeat their colours.
struct RowStore::NearestEntry
{
    std::span<const RGBQUAD> palette;
    std::unordered_map<uint32_t, uint8_t> known;

    uint8_t operator()(const Colour& c)
    {
        uint32_t word = 0;
        Pack(LayoutOf(VXPIXEL_RGB24), c, reinterpret_cast<uint8_t*>(&word));
        const auto [entry, fresh] = known.try_emplace(word);
        if (fresh)
            entry->second = Search(int32_t(word & 255), int32_t(word >> 8 & 255), int32_t(word >> 16));
        return entry->second;
    }

    uint8_t Search(int32_t blue, int32_t green, int32_t red) const
    {
        const auto distance = [=](const RGBQUAD& q) {
            const int32_t b = q.rgbBlue - blue, g = q.rgbGreen - green, r = q.rgbRed - red;
            return b * b + g * g + r * r;
        };
        const auto nearer = [&](const RGBQUAD& p, const RGBQUAD& q) { return distance(p) < distance(q); };
        return uint8_t(std::min_element(palette.begin(), palette.end(), nearer) - palette.begin());
    }
};

RowStore::RowStore(Dib& dib) : dib_(dib)
{
    if (IsPaletteType(dib.Type()))
        nearest_ = std::make_unique<NearestEntry>(NearestEntry{dib.Palette(), {}});
}

RowStore::~RowStore() = default;

void RowStore::operator()(int32_t y, std::span<const Colour> row)
{
    uint8_t* data = dib_.Row(y);
    if (nearest_) {
        for (size_t x = 0; x < row.size(); ++x)
            SetSubByte(data, x, uint32_t(dib_.BitsPerPixel()), (*nearest_)(row[x]));
    } else if (IsGrayType(dib_.Type())) {
        StoreGrayRow(dib_, data, row);
    } else if (dib_.Type() == VXPIXEL_RGBA128) {
        std::memcpy(data, row.data(), row.size_bytes());
    } else if (dib_.Type() == VXPIXEL_RGBA64) {
        for (size_t x = 0; x < row.size(); ++x)
            for (const float value : {row[x].blue, row[x].green, row[x].red, row[x].alpha}) {
                SetElement(data, 0, uint16_t(Quantized(value, 65535)));
                data += 2;
            }
    } else {
        const PackedLayout& layout = LayoutOf(dib_.Type());
        for (size_t x = 0; x < row.size(); ++x, data += layout.bytes)
            Pack(layout, row[x], data);
    }
}

VxPixelType TypeNamed(std::string_view name)
{
    const auto found = std::ranges::find(kTypeNames, name, &TypeName::name);
    return found == std::end(kTypeNames) ? VxPixelType(0) : found->type;
}

const char* NameOfType(VxPixelType type)
{
    const auto found = std::ranges::find(kTypeNames, type, &TypeName::type);
    return found == std::end(kTypeNames) ? nullptr : found->name;
}

std::string AllTypeNames()
{
    std::string names;
    for (const TypeName& t : kTypeNames)
        names += (names.empty() ? "" : ", ") + std::string(t.name);
    return names;
}

bool HasAlpha(VxPixelType type)
{
    return type == VXPIXEL_RGBA32 || type == VXPIXEL_RGBA64 || type == VXPIXEL_RGBA128;
}

bool IsPaletteType(VxPixelType type)
{
    return type == VXPIXEL_PAL1 || type == VXPIXEL_PAL4 || type == VXPIXEL_PAL8;
}

bool IsGrayType(VxPixelType type)
{
    return type >= VXPIXEL_GRAY1 && type <= VXPIXEL_GRAY32;
}

} // namespace vxtool
