// Two bitmaps of any types and sizes, rectangles and flags, into copies, fills, fades and field work.
//
// Input, in bytes: the call, then for each bitmap its type, width, height, table entries and stride, then
// two rectangles (a byte of choices, four sides of 4 bytes), flags, the field, gammas, and last the bytes
// that repeat as pixels. All memory is allocated to the byte, so that the sanitizer sees any access outside
// of what a header and a stride describe.
#include "pixel/dib_layout.h"
#include "vx/dib.h"
#include "vx/dibcopy.h"
#include "vx/fields.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

class Input
{
public:
    Input(const uint8_t* data, size_t size) : data_(data), size_(size) {}

    uint8_t Byte()
    {
        if (size_ == 0)
            return 0;
        --size_;
        return *data_++;
    }
    int32_t Word()
    {
        return int32_t(uint32_t(Byte()) | uint32_t(Byte()) << 8 | uint32_t(Byte()) << 16 |
                       uint32_t(Byte()) << 24);
    }
    const uint8_t* Rest() const { return data_; }
    size_t RestSize() const { return size_; }

private:
    const uint8_t* data_;
    size_t size_;
};

// Sides near the bitmap, in pixels or below, or anything at all.
struct Rectangle
{
    RECT rect{};
    bool isNull;

    explicit Rectangle(Input& in)
    {
        const uint8_t kind = in.Byte() % 4;
        isNull = kind == 0;
        const auto side = [&] {
            const int32_t any = in.Word();
            return kind == 1 ? any % 64 : kind == 2 ? any % (64 * 16384) : any;
        };
        rect = {side(), side(), side(), side()};
    }
    const RECT* Get() const { return isNull ? nullptr : &rect; }
};

struct Bitmap
{
    std::unique_ptr<uint8_t[]> front, pixels;
    uint8_t* first = nullptr;
    int32_t stride = 0;
    uint64_t bytes = 0;

    explicit Bitmap(Input& in)
    {
        const int32_t type = 15 + in.Byte() % 20, width = in.Byte() - 1, height = in.Byte() % 48 - 1;
        const int32_t entries = in.Byte();
        stride = int8_t(in.Byte()) * 4;
        RGBQUAD table[256];
        for (int32_t i = 0; i < 256; ++i)
            table[i] = {uint8_t(i * 37), uint8_t(i * 11), uint8_t(i), 0};
        alignas(BITMAPINFOHEADER) uint8_t room[52 + sizeof(table)] = {};
        auto* header = reinterpret_cast<BITMAPINFOHEADER*>(room);
        VxVideo_InitBitmapInfo(header, type, width, height, table, entries, nullptr);
        const size_t frontBytes = std::max<size_t>(vx::PixelOffset(*header), sizeof(*header));
        front = std::make_unique<uint8_t[]>(frontBytes); // with no entries a table is full, and zeros here
        std::memcpy(front.get(), room, frontBytes);
        header = reinterpret_cast<BITMAPINFOHEADER*>(front.get());
        if (header->biWidth <= 0 || header->biHeight <= 0)
            return;
        const uint64_t rowBytes = (uint64_t(header->biBitCount) * uint32_t(header->biWidth) + 7) / 8;
        const uint64_t pitch =
            stride ? uint64_t(std::abs(stride)) : vx::PaddedRowBytes<uint64_t>(header->biBitCount, width);
        const uint64_t rows = uint64_t(height - 1) * pitch;
        bytes = rows + rowBytes;
        pixels = std::make_unique<uint8_t[]>(bytes);
        first = pixels.get() + (stride < 0 ? rows : 0);
    }
    const BITMAPINFOHEADER* Header() const { return reinterpret_cast<const BITMAPINFOHEADER*>(front.get()); }
    void Fill(const uint8_t* from, size_t size)
    {
        for (uint64_t i = 0; i < bytes && size; ++i)
            pixels[i] = from[i % size];
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input in(data, size);
    const uint8_t call = in.Byte() % 6;
    Bitmap dest(in), source(in);
    if (!dest.pixels || !source.pixels)
        return 0;
    const Rectangle to(in), from(in);
    const auto flags = uint32_t(in.Word());
    const int32_t field = int8_t(in.Byte());
    const double destGamma = in.Byte() / 32.0, sourceGamma = in.Byte() / 32.0;
    dest.Fill(in.Rest(), in.RestSize());
    source.Fill(in.Rest(), in.RestSize());
    const float colour[4] = {float(destGamma), -float(sourceGamma), float(field), 0.5f};
    switch (call) {
    case 0:
    case 1:
        VxDibCopy(dest.Header(), dest.first, to.Get(), dest.stride, source.Header(), source.first, from.Get(),
                  source.stride, flags, destGamma, sourceGamma);
        break;
    case 2:
        VxDibFillRect(dest.Header(), dest.first, to.Get(), dest.stride, colour, flags);
        break;
    case 3:
        VxDibFadeToColor(dest.Header(), dest.first, to.Get(), dest.stride, colour, float(sourceGamma), field,
                         flags);
        break;
    case 4:
        VxDibCopyInterlace(dest.Header(), dest.first, to.Get(), dest.stride, source.Header(), source.first,
                           from.Get(), source.stride, field, flags);
        break;
    default:
        VxDibMergeFields(dest.Header(), dest.first, dest.stride, source.Header(), source.first, source.stride,
                         field);
        VxDibMergeFieldsRotated(dest.Header(), dest.first, dest.stride, source.Header(), source.first,
                                source.stride, field);
    }
    return 0;
}
