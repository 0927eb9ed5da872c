// Colour tables of palette bitmaps, and the map back from colours, for drivers of the exchange.
#pragma once

#include "pixel/dib_layout.h"
#include "vx/dib.h"
#include "vx/platform/memory.h"

#include <algorithm>
#include <memory>

namespace vx {

constexpr uint32_t kMaxTableEntries = 256;

// A bitmap's table with an entry for every index that a pixel can hold: those that the header does
// not have are black. A header tells of 255 entries where a table is left to its default, and may be
// damaged.
struct ColourTable
{
    RGBQUAD entries[kMaxTableEntries] = {};

    explicit ColourTable(const BITMAPINFOHEADER* header)
    {
        const BITMAPINFOHEADER h = ReadHeader(header);
        if (h.biCompression == BI_BITFIELDS)
            return;
        const uint64_t bytes = std::min<uint64_t>(PixelOffset(h) - TableOffset(h), sizeof(entries));
        std::memcpy(entries, reinterpret_cast<const uint8_t*>(header) + TableOffset(h), bytes);
    }
};

// Cells of a cube of 5-bit colours: red * 1024 + green * 32 + blue.
constexpr int32_t kCubeSide = 32;
constexpr int32_t kCubeCells = kCubeSide * kCubeSide * kCubeSide;

struct FreeGlobal
{
    void operator()(void* block) const { GlobalFree(GlobalHandle(block)); }
};
// The map of VxDibCreateColorQuantizer, or another block from GlobalAlloc, for the length of a job.
using GlobalBytes = std::unique_ptr<uint8_t[], FreeGlobal>;

} // namespace vx
