// Any header, with a table or masks behind it, into all that reads one.
//
// Input: 40 bytes of header, then 16 bytes of choices (a rectangle as four signed bytes, a stride as
// two, flips as one, the rest spare), then what follows the header. All memory is allocated to the
// byte, so that the sanitizer sees any access outside of what the header describes.
#include "pixel/dib_layout.h"
#include "require.h"
#include "vx/pixel.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace {

using vxfuzz::Require;

constexpr size_t kHeaderBytes = sizeof(BITMAPINFOHEADER), kChoiceBytes = 16;
constexpr uint64_t kMaxPixelBytes = 1 << 20; // larger images say nothing new

// Bytes on the heap, exactly as many as asked for.
std::unique_ptr<uint8_t[]> CopyOf(const uint8_t* bytes, size_t size, size_t room)
{
    auto copy = std::make_unique<uint8_t[]>(room);
    std::memcpy(copy.get(), bytes, size);
    return copy;
}

struct Choices
{
    RECT rect;
    int32_t stride; // 0: by the header
    bool useRect, horizontal, vertical;

    const RECT* Rect() const { return useRect ? &rect : nullptr; }
};

Choices ReadChoices(const uint8_t* bytes)
{
    const auto side = [bytes](int i) { return int32_t(int8_t(bytes[i])); };
    return {{side(0), side(1), side(2), side(3)},
            int32_t(int16_t(uint16_t(bytes[4] | bytes[5] << 8))),
            (bytes[6] & 1) != 0,
            (bytes[6] & 2) != 0,
            (bytes[6] & 4) != 0};
}

// What reads a header alone. Pixels are not touched: sizes may be anything.
void ReadAlone(const BITMAPINFOHEADER* header)
{
    const int32_t type = VxGetPixelType(header);
    const int32_t bits = VxPixelTypeToBitAttribs(type, nullptr, nullptr, 0, nullptr);
    Require((type == VXPIXEL_UNKNOWN) == (bits == 0));
    Require(VxVideo_IsCompressed(header) == (type == VXPIXEL_UNKNOWN || type >= VXPIXEL_UYVY));
    VxYuvPlanes planes;
    const uint32_t bytes = VxYUVImageBytesAndOffsets(header, &planes);
    Require(bytes == VxYUVImageBytesAndOffsets(header, nullptr));
    Require(bytes == 0 || VxVideo_IsCompressed(header));
}

// The bytes that a bitmap's rows cover: by its stride, which may be less than a row is long.
uint64_t PixelBytes(const BITMAPINFOHEADER& header, uint64_t stride)
{
    if (header.biWidth <= 0 || header.biHeight <= 0)
        return 0;
    const uint64_t rowBytes = (uint64_t(header.biBitCount) * uint32_t(header.biWidth) + 7) / 8;
    return stride * uint32_t(header.biHeight - 1) + std::max(stride, rowBytes);
}

void Flip(BITMAPINFOHEADER* header, void* pixels, const Choices& choices)
{
    VxDibFlip(header, pixels, choices.Rect(), choices.stride, choices.horizontal, choices.vertical);
}

void Swap(BITMAPINFOHEADER* header, void* pixels, const Choices& choices)
{
    VxDibSwapRB(header, pixels, choices.Rect(), choices.stride);
}

void WorkOnOwnPixels(const uint8_t* front, size_t frontBytes, const Choices& choices)
{
    const BITMAPINFOHEADER header = vx::ReadHeader(reinterpret_cast<const BITMAPINFOHEADER*>(front));
    const uint64_t padded = vx::PaddedRowBytes<uint64_t>(header.biBitCount, header.biWidth);
    const uint64_t stride = choices.stride ? uint64_t(std::abs(choices.stride)) : padded;
    const uint64_t bytes = PixelBytes(header, stride);
    if (bytes > kMaxPixelBytes)
        return;
    const auto copy = CopyOf(front, frontBytes, frontBytes);
    const auto pixels = std::make_unique<uint8_t[]>(bytes);
    const uint64_t lastRow = bytes ? stride * uint32_t(header.biHeight - 1) : 0;
    uint8_t* const first = pixels.get() + (choices.stride < 0 ? lastRow : 0);
    for (const auto work : {Flip, Swap})
        work(reinterpret_cast<BITMAPINFOHEADER*>(copy.get()), first, choices);
}

// A biSize of less than 40 bytes lays the pixels over the header itself, so that work on them may
// leave another header: each starts from a copy of its own.
void WorkOnPixelsBehind(const uint8_t* front, size_t frontBytes, Choices choices)
{
    const BITMAPINFOHEADER header = vx::ReadHeader(reinterpret_cast<const BITMAPINFOHEADER*>(front));
    const uint64_t padded = vx::PaddedRowBytes<uint64_t>(header.biBitCount, header.biWidth);
    const uint64_t end = vx::PixelOffset(header) + PixelBytes(header, padded);
    if (end > kMaxPixelBytes)
        return;
    choices.stride = 0;
    for (const auto work : {Flip, Swap}) {
        const auto whole = CopyOf(front, frontBytes, std::max<uint64_t>(frontBytes, end));
        work(reinterpret_cast<BITMAPINFOHEADER*>(whole.get()), nullptr, choices);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < kHeaderBytes + kChoiceBytes)
        return 0;
    const Choices choices = ReadChoices(data + kHeaderBytes);
    auto front = CopyOf(data, kHeaderBytes, size - kChoiceBytes);
    std::memcpy(front.get() + kHeaderBytes, data + kHeaderBytes + kChoiceBytes,
                size - kHeaderBytes - kChoiceBytes);
    size_t frontBytes = size - kChoiceBytes;
    const BITMAPINFOHEADER header = vx::ReadHeader(reinterpret_cast<const BITMAPINFOHEADER*>(front.get()));
    if (header.biCompression == BI_BITFIELDS && frontBytes < kHeaderBytes + vx::kMaskBytes)
        return 0; // no header of this kind ends before its masks
    ReadAlone(reinterpret_cast<const BITMAPINFOHEADER*>(front.get()));
    // The input's bytes reach up to the pixels at most.
    frontBytes =
        size_t(std::min<uint64_t>(frontBytes, std::max<uint64_t>(vx::PixelOffset(header), kHeaderBytes)));
    if (header.biHeight > 4096)
        return 0; // rows alone take the time: with a small stride they need few bytes
    WorkOnOwnPixels(front.get(), frontBytes, choices);
    WorkOnPixelsBehind(front.get(), frontBytes, choices);
    return 0;
}
