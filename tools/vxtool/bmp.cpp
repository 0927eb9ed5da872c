// BMP: a file header of 14 bytes in front of a device-independent bitmap.
#include "vxtool/failure.h"
#include "vxtool/formats.h"
#include "vxtool/size_limits.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <iomanip>
#include <limits>

namespace vxtool {
namespace {

constexpr uint32_t kFileHeaderBytes = 14;
constexpr uint32_t kHeaderSizes[] = {40, 52, 56, 108, 124};
constexpr uint32_t kAlphaBitfields = 6; // BI_BITFIELDS with a fourth mask
constexpr uint32_t kV4Bytes = 108;
constexpr uint32_t kSrgb = 0x73524742; // colour space of a V4 header

// A pixel packed into whole bytes of which each channel is a run of bits.
struct PackedLayout
{
    int32_t bytes;
    uint32_t blue, green, red, alpha; // masks; 0 where there is no such channel

    friend bool operator==(const PackedLayout&, const PackedLayout&) = default;
};

// The layouts that are types of the library's.
struct TypeLayout
{
    VxPixelType type;
    PackedLayout layout;
    // Bits that the library takes for alpha, and in which files keep nothing.
    uint32_t unused;
};

constexpr TypeLayout kTypeLayouts[] = {
    {VXPIXEL_RGB555, {2, 0x001F, 0x03E0, 0x7C00, 0}, 0},
    {VXPIXEL_RGB565, {2, 0x001F, 0x07E0, 0xF800, 0}, 0},
    {VXPIXEL_RGB32, {4, 0x000000FF, 0x0000FF00, 0x00FF0000, 0}, 0xFF000000},
    {VXPIXEL_RGBA32, {4, 0x000000FF, 0x0000FF00, 0x00FF0000, 0xFF000000}, 0},
    {VXPIXEL_RGB101010, {4, 0x000003FF, 0x000FFC00, 0x3FF00000, 0}, 0xC0000000},
};

uint32_t Word32(std::span<const uint8_t> bytes, size_t at)
{
    uint32_t value;
    std::memcpy(&value, bytes.data() + at, 4);
    return value;
}

std::string Hex(uint32_t value)
{
    std::ostringstream out;
    out << "0x" << std::hex << std::uppercase << std::setw(8) << std::setfill('0') << value;
    return out.str();
}

// The largest header, as far as it is read: the first 40 bytes and the masks. In a file with a header
// of 40 bytes the masks stand behind it, at the same place.
struct Head
{
    BITMAPINFOHEADER info;
    uint32_t red, green, blue, alpha;
};
static_assert(sizeof(Head) == 56);

struct BmpFile
{
    std::span<const uint8_t> bytes;
    const std::string& name;
    Head head = {};
    uint32_t tableOffset = 0; // of the colour table
    uint32_t pixelOffset = 0;
    bool topDown = false;
    int32_t height = 0;

    uint32_t Bits() const { return head.info.biBitCount; }
    size_t RowBytes() const { return (size_t(head.info.biWidth) * Bits() + 31) / 32 * 4; }
    std::span<const uint8_t> Row(int32_t y) const
    {
        const size_t row = size_t(topDown ? y : height - 1 - y);
        return bytes.subspan(pixelOffset + row * RowBytes(), (size_t(head.info.biWidth) * Bits() + 7) / 8);
    }
};

bool HasMasks(const Head& head)
{
    return head.info.biCompression == BI_BITFIELDS || head.info.biCompression == kAlphaBitfields;
}

// Masks stand in the headers of 52 bytes and more, and behind one of 40 bytes. The fourth mask counts
// where there is room for it in the header, or where the compression word says so.
void ReadHead(BmpFile& file)
{
    const auto bytes = file.bytes.subspan(kFileHeaderBytes);
    Head& head = file.head;
    if (bytes.size() < 40)
        FailFile(file.name, " is truncated: it ends in its header");
    std::memcpy(&head.info, bytes.data(), sizeof(head.info));
    const uint32_t size = head.info.biSize;
    if (std::ranges::find(kHeaderSizes, size) == std::end(kHeaderSizes))
        FailFile(file.name, " has a header of ", size,
                 " bytes; those of 40, 52, 56, 108 and 124 bytes are read");
    const bool fourMasks = size >= 56 || head.info.biCompression == kAlphaBitfields;
    uint32_t end = size;
    if (HasMasks(head))
        end = std::max(size, fourMasks ? 56u : 52u);
    if (bytes.size() < end)
        FailFile(file.name, " is truncated: it ends in its header");
    if (HasMasks(head))
        std::memcpy(&head.red, bytes.data() + 40, fourMasks ? 16 : 12);
    file.tableOffset = kFileHeaderBytes + end;
}

// A colour table of no told length has an entry for every index.
uint32_t TableEntries(const BmpFile& file)
{
    const BITMAPINFOHEADER& info = file.head.info;
    return info.biClrUsed == 0 && info.biCompression == BI_RGB && file.Bits() <= 8 ? 1u << file.Bits()
                                                                                   : info.biClrUsed;
}

// The bits of a mask must stand side by side, and inside the pixel.
bool IsRun(uint32_t mask, uint32_t bits)
{
    const uint32_t run = mask == 0 ? 0 : mask >> std::countr_zero(mask);
    return (run & (run + 1)) == 0 && (bits == 32 || mask >> bits == 0);
}

PackedLayout FileLayout(const BmpFile& file)
{
    const Head& h = file.head;
    const uint32_t bits = file.Bits();
    if (bits != 16 && bits != 32)
        FailFile(file.name, " is damaged: it has masks for pixels of ", bits, " bits");
    if (!IsRun(h.red, bits) || !IsRun(h.green, bits) || !IsRun(h.blue, bits) || !IsRun(h.alpha, bits) ||
        (h.red | h.green | h.blue) == 0)
        FailFile(file.name, " is damaged: its colour masks are not runs of bits inside the pixel");
    return {int32_t(bits / 8), h.blue, h.green, h.red, h.alpha};
}

// What cannot be read is refused by its name before its sizes are looked at.
void CheckKind(const BmpFile& file)
{
    if (HasMasks(file.head)) {
        FileLayout(file);
        return;
    }
    if (NameOfType(VxPixelType(VxGetPixelType(&file.head.info))) != nullptr)
        return;
    const uint32_t compression = file.head.info.biCompression;
    if (compression == 1 || compression == 2)
        FailFile(file.name, " is run-length coded (RLE), which is not read");
    if (compression == 4 || compression == 5)
        FailFile(file.name, " holds a JPEG or PNG stream, which is not read");
    FailFile(file.name, " holds pixels of ", file.Bits(), " bits with the compression word ",
             Hex(compression), ", which is not read");
}

// Where the pixels begin and that all of them are there. The padding of the last row may be missing.
void CheckPixels(BmpFile& file)
{
    const BITMAPINFOHEADER& info = file.head.info;
    file.topDown = info.biHeight < 0;
    CheckSize(file.name, info.biWidth, std::abs(int64_t(info.biHeight)), file.Bits());
    file.height = std::abs(info.biHeight);
    file.pixelOffset = Word32(file.bytes, 10);
    if (file.pixelOffset == 0)
        file.pixelOffset = file.tableOffset + 4 * TableEntries(file);
    if (file.pixelOffset < file.tableOffset || file.pixelOffset > file.bytes.size())
        FailFile(file.name, " is damaged: its pixels cannot begin at byte ", file.pixelOffset);
    const size_t lastRow = (size_t(info.biWidth) * file.Bits() + 7) / 8;
    const size_t wanted = file.RowBytes() * size_t(file.height - 1) + lastRow;
    if (file.bytes.size() - file.pixelOffset < wanted)
        FailFile(file.name, " is truncated: it holds ", file.bytes.size() - file.pixelOffset, " of ", wanted,
                 " bytes of pixels");
}

std::vector<RGBQUAD> ReadPalette(const BmpFile& file)
{
    const uint32_t room = (file.pixelOffset - file.tableOffset) / 4;
    std::vector<RGBQUAD> palette(std::min({TableEntries(file), 1u << file.Bits(), room}));
    for (size_t i = 0; i < palette.size(); ++i)
        std::memcpy(&palette[i], file.bytes.data() + file.tableOffset + i * sizeof(RGBQUAD), sizeof(RGBQUAD));
    return palette;
}

// Files keep nothing in the bits that the library takes for alpha: they are made opaque.
void SetUnusedBits(uint8_t* row, int32_t width, VxPixelType type)
{
    const auto* found = std::ranges::find(kTypeLayouts, type, &TypeLayout::type);
    if (found == std::end(kTypeLayouts) || found->unused == 0)
        return;
    for (int32_t x = 0; x < width; ++x, row += 4)
        row[3] |= uint8_t(found->unused >> 24);
}

Dib CopiedRows(const BmpFile& file, VxPixelType type)
{
    Dib dib(type, file.head.info.biWidth, file.height,
            IsPaletteType(type) ? ReadPalette(file) : std::vector<RGBQUAD>());
    for (int32_t y = 0; y < file.height; ++y) {
        const auto row = file.Row(y);
        std::memcpy(dib.Row(y), row.data(), row.size());
        SetUnusedBits(dib.Row(y), dib.Width(), type);
    }
    return dib;
}

// The nearest value of 0 to top for a run of bits.
uint32_t Scaled(uint32_t word, uint32_t mask, uint32_t missing, uint32_t top)
{
    if (mask == 0)
        return missing;
    const int shift = std::countr_zero(mask);
    const uint64_t full = mask >> shift;
    return uint32_t((uint64_t((word & mask) >> shift) * top + full / 2) / full);
}

template <class Channel>
void UnpackRow(const PackedLayout& layout, const uint8_t* from, uint8_t* to, int32_t width)
{
    constexpr uint32_t kTop = std::numeric_limits<Channel>::max();
    for (int32_t x = 0; x < width; ++x, from += layout.bytes, to += 4 * sizeof(Channel)) {
        uint32_t word = 0;
        std::memcpy(&word, from, size_t(layout.bytes));
        const Channel pixel[] = {
            Channel(Scaled(word, layout.blue, 0, kTop)), Channel(Scaled(word, layout.green, 0, kTop)),
            Channel(Scaled(word, layout.red, 0, kTop)), Channel(Scaled(word, layout.alpha, kTop, kTop))};
        std::memcpy(to, pixel, sizeof(pixel));
    }
}

Dib UnpackedRows(const BmpFile& file, const PackedLayout& layout)
{
    const auto wide = [](uint32_t mask) { return std::popcount(mask) > 8; };
    const bool deep = wide(layout.red) || wide(layout.green) || wide(layout.blue) || wide(layout.alpha);
    Dib dib(deep ? VXPIXEL_RGBA64 : VXPIXEL_RGBA32, file.head.info.biWidth, file.height);
    const auto unpack = deep ? UnpackRow<uint16_t> : UnpackRow<uint8_t>;
    for (int32_t y = 0; y < file.height; ++y)
        unpack(layout, file.Row(y).data(), dib.Row(y), dib.Width());
    return dib;
}

Dib ReadPixels(const BmpFile& file)
{
    if (HasMasks(file.head)) {
        const PackedLayout layout = FileLayout(file);
        const auto* known = std::ranges::find(kTypeLayouts, layout, &TypeLayout::layout);
        return known != std::end(kTypeLayouts) ? CopiedRows(file, known->type) : UnpackedRows(file, layout);
    }
    return CopiedRows(file, VxPixelType(VxGetPixelType(&file.head.info)));
}

void AddFacts(const BmpFile& file, Picture& picture)
{
    const BITMAPINFOHEADER& info = file.head.info;
    auto& facts = picture.facts;
    facts.emplace_back("format", Join("BMP, header of ", info.biSize, " bytes, ",
                                      file.topDown ? "top-down" : "bottom-up", " rows"));
    facts.emplace_back("bits a pixel", Join(info.biBitCount));
    facts.emplace_back("compression", Hex(info.biCompression));
    if (HasMasks(file.head))
        facts.emplace_back("masks", Join("red ", Hex(file.head.red), ", green ", Hex(file.head.green),
                                         ", blue ", Hex(file.head.blue), ", alpha ", Hex(file.head.alpha)));
}

template <class T>
void Append(std::vector<uint8_t>& bytes, const T& value)
{
    const auto* first = reinterpret_cast<const uint8_t*>(&value);
    bytes.insert(bytes.end(), first, first + sizeof(T));
}

// Straight alpha that other programs understand too: a V4 header with four masks.
void AppendAlphaHeader(std::vector<uint8_t>& bytes, const Dib& dib)
{
    const size_t start = bytes.size();
    Head head{*dib.Header(), 0x00FF0000, 0x0000FF00, 0x000000FF, 0xFF000000};
    head.info.biSize = kV4Bytes;
    head.info.biCompression = BI_BITFIELDS;
    Append(bytes, head);
    Append(bytes, kSrgb);
    bytes.resize(start + kV4Bytes); // the end points and gammas mean nothing with that colour space
}

} // namespace

bool LooksLikeBmp(std::span<const uint8_t> bytes)
{
    return bytes.size() >= kFileHeaderBytes && bytes[0] == 'B' && bytes[1] == 'M';
}

Picture ParseBmp(std::span<const uint8_t> bytes, const std::string& name)
{
    BmpFile file{bytes, name};
    ReadHead(file);
    CheckKind(file);
    CheckPixels(file);
    Picture picture{ReadPixels(file), {}};
    AddFacts(file, picture);
    return picture;
}

std::vector<uint8_t> EncodeBmp(const Dib& dib)
{
    const bool alphaHeader = dib.Type() == VXPIXEL_RGBA32;
    const uint32_t front = kFileHeaderBytes + (alphaHeader ? kV4Bytes : dib.PixelOffset());
    std::vector<uint8_t> bytes;
    bytes.reserve(front + dib.Header()->biSizeImage);
    bytes.insert(bytes.end(), {'B', 'M'});
    Append(bytes, uint32_t(front + dib.Header()->biSizeImage));
    Append(bytes, uint32_t(0));
    Append(bytes, front);
    if (alphaHeader)
        AppendAlphaHeader(bytes, dib);
    const auto block = dib.Block().subspan(alphaHeader ? dib.PixelOffset() : 0);
    bytes.insert(bytes.end(), block.begin(), block.end());
    return bytes;
}

} // namespace vxtool
