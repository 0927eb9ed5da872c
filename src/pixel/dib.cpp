// Headers made from a type, and bitmaps in one block.
#include "pixel/dib_layout.h"
#include "pixel/yuv_layout.h"
#include "vx/pixel.h"
#include "vx/platform/memory.h"

#include <algorithm>
#include <cstring>

namespace vx {
namespace {

constexpr int32_t kMaxPaletteCount = 256;
constexpr size_t kMaxFrontBytes = sizeof(BITMAPINFOHEADER) + kMaxPaletteCount * sizeof(RGBQUAD);

template <class Word>
Word ImageBytes(const PixelTypeInfo& info, int32_t width, int32_t height)
{
    return info.sizedAsYuv ? YuvLayoutOf(info.compression, Word(width), Word(height)).bytes
                           : PaddedRowBytes<Word>(info.bits, width) * Word(height);
}

// Whether biSizeImage, which wraps, tells the true bytes of the pixels.
bool FitsHeader(const PixelTypeInfo& info, int32_t width, int32_t height)
{
    return width >= 0 && height >= 0 &&
           ImageBytes<uint64_t>(info, width, height) == ImageBytes<uint32_t>(info, width, height);
}

uint32_t ColoursUsed(const PixelTypeInfo& info, const RGBQUAD* palette, int32_t paletteCount)
{
    if (info.compression == BI_BITFIELDS)
        return 0;
    const bool byDefault = !palette && paletteCount == 0 && info.bits <= 8;
    return byDefault ? (1u << info.bits) - 1 : uint32_t(paletteCount);
}

BITMAPINFOHEADER HeaderOf(const PixelTypeInfo& info, int32_t width, int32_t height, uint32_t coloursUsed)
{
    return {.biSize = sizeof(BITMAPINFOHEADER),
            .biWidth = width,
            .biHeight = height,
            .biPlanes = 1,
            .biBitCount = WORD(info.bits),
            .biCompression = info.compression,
            .biSizeImage = ImageBytes<uint32_t>(info, width, height),
            .biXPelsPerMeter = 0,
            .biYPelsPerMeter = 0,
            .biClrUsed = coloursUsed,
            .biClrImportant = 0};
}

// The bytes of a block that is locked for good; null without memory.
void* AllocateLocked(size_t bytes, bool zeroed)
{
    const HGLOBAL handle = GlobalAlloc(zeroed ? GHND : GMEM_MOVEABLE, bytes);
    void* const block = handle ? GlobalLock(handle) : nullptr;
    if (!block)
        GlobalFree(handle);
    return block;
}

} // namespace
} // namespace vx

using namespace vx;

HRESULT VxVideo_InitBitmapInfo(BITMAPINFOHEADER* bitmapInfo, int32_t type, int32_t width, int32_t height,
                               const RGBQUAD* palette, int32_t paletteCount, uint32_t* outImageBytes)
{
    if (outImageBytes)
        *outImageBytes = 0;
    const PixelTypeInfo& info = PixelTypeInfoOf(type);
    if (!bitmapInfo || !IsKnownPixelType(type))
        return E_INVALIDARG;
    const uint32_t coloursUsed = ColoursUsed(info, palette, std::max(paletteCount, 0));
    const BITMAPINFOHEADER header = HeaderOf(info, width, height, coloursUsed);
    uint8_t* const table = reinterpret_cast<uint8_t*>(bitmapInfo) + sizeof(header);
    if (info.compression == BI_BITFIELDS)
        std::memcpy(table, info.masks.data(), kMaskBytes);
    else if (palette)
        std::memmove(table, palette, sizeof(RGBQUAD) * size_t(coloursUsed)); // may be that very table
    std::memcpy(static_cast<void*>(bitmapInfo), &header, sizeof(header));
    if (outImageBytes)
        *outImageBytes = header.biSizeImage;
    return S_OK;
}

HRESULT VxDibInfo(uint32_t* outHeaderBytes, uint32_t* outImageBytes, BITMAPINFOHEADER* bitmapInfo,
                  int32_t type, int32_t width, int32_t height, const RGBQUAD* palette, int32_t paletteCount)
{
    if (outHeaderBytes)
        *outHeaderBytes = 0;
    const HRESULT status =
        VxVideo_InitBitmapInfo(bitmapInfo, type, width, height, palette, paletteCount, outImageBytes);
    if (SUCCEEDED(status) && outHeaderBytes) {
        const BITMAPINFOHEADER header = ReadHeader(bitmapInfo);
        const uint32_t tableBytes =
            header.biCompression == BI_BITFIELDS ? kMaskBytes : uint32_t(sizeof(RGBQUAD)) * header.biClrUsed;
        *outHeaderBytes = TableOffset(header) + tableBytes;
    }
    return status;
}

HRESULT VxDibAlloc(BITMAPINFOHEADER** outDib, int32_t type, int32_t width, int32_t height,
                   const RGBQUAD* palette, int32_t paletteCount, uint32_t flags,
                   [[maybe_unused]] intptr_t tag)
{
    if (!outDib)
        return E_INVALIDARG;
    *outDib = nullptr;
    if (paletteCount > kMaxPaletteCount)
        return E_INVALIDARG;
    // Zeros, so that a table that is not given is black and not what the stack held.
    alignas(BITMAPINFOHEADER) uint8_t front[kMaxFrontBytes] = {};
    uint32_t imageBytes = 0;
    const HRESULT status = VxVideo_InitBitmapInfo(reinterpret_cast<BITMAPINFOHEADER*>(front), type, width,
                                                  height, palette, paletteCount, &imageBytes);
    if (FAILED(status))
        return status;
    if (!FitsHeader(PixelTypeInfoOf(type), width, height))
        return E_OUTOFMEMORY;
    // By the place where readers look for the pixels: behind a full table, which no more than its
    // count of 0 tells of, where a palette without entries was given.
    const size_t frontBytes = PixelOffset(ReadHeader(reinterpret_cast<BITMAPINFOHEADER*>(front)));
    void* const block = AllocateLocked(frontBytes + imageBytes, (flags & VXDIBALLOC_ZERO) != 0);
    if (!block)
        return E_OUTOFMEMORY;
    std::memcpy(block, front, frontBytes);
    *outDib = static_cast<BITMAPINFOHEADER*>(block);
    return S_OK;
}

HRESULT VxDibFree(BITMAPINFOHEADER* dib, [[maybe_unused]] int32_t mode)
{
    const HGLOBAL handle = dib ? GlobalHandle(dib) : nullptr;
    if (handle) {
        GlobalUnlock(handle);
        GlobalFree(handle);
    }
    return S_OK;
}
