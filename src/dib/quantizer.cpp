// VxDibQuantizePalette: the colours of a picture covered by boxes, an entry for each.
#include "dib/colour_table.h"
#include "exchange/rows.h"
#include "vx/dib.h"
#include "vx/xchg.h"

#include <cstring>

namespace vx {
namespace {

// A cell of the cube is absent, or holds the mark of the last pass that put it into a box. Passes of
// one round have different marks, so that each finds all cells unclaimed.
constexpr uint8_t kAbsent = 255;
constexpr uint8_t kSeen = 10;
constexpr uint8_t kFinalMark = 5;

struct BoxSize
{
    int32_t red, green, blue;
};

struct Trial
{
    BoxSize less; // 1 where the side is one less than the round's
    uint8_t mark;
};

constexpr Trial kTrials[] = {
    {{0, 1, 1}, 1}, {{1, 0, 1}, 2}, {{1, 1, 0}, 3}, {{0, 0, 1}, 1},
    {{0, 1, 0}, 2}, {{1, 0, 0}, 3}, {{0, 0, 0}, 4},
};

// From this round on every box reaches the end of the cube, so that no later round finds less.
constexpr int32_t kLastRound = kCubeSide + 1;

struct Cell
{
    int32_t red, green, blue;
};

class ColourCube
{
public:
    explicit ColourCube(uint8_t* cells) : cells_(cells) { std::memset(cells, kAbsent, kCubeCells); }

    void MarkRun(const void* pixels, int32_t count, int32_t depth)
    {
        if (depth == VXXCHG_DEPTH_8)
            MarkChannels<uint8_t>(pixels, count);
        else
            MarkChannels<uint16_t>(pixels, count);
    }

    // Covers all cells present by boxes, which begin at the first cell without a box and grow away from
    // black, and calls enter(start, largest) for each; returns their number.
    template <class Enter>
    int32_t Cover(const BoxSize& size, uint8_t mark, const Enter& enter)
    {
        int32_t boxes = 0;
        for (Cell cell{}; cell.red < kCubeSide; ++cell.red)
            for (cell.green = 0; cell.green < kCubeSide; ++cell.green)
                for (cell.blue = 0; cell.blue < kCubeSide; ++cell.blue)
                    if (IsUnclaimed(At(cell), mark)) {
                        enter(cell, Claim(cell, size, mark));
                        ++boxes;
                    }
        return boxes;
    }

private:
    template <class Channel>
    void MarkChannels(const void* pixels, int32_t count)
    {
        constexpr int32_t kShift = 8 * int32_t(sizeof(Channel)) - 5;
        const auto* p = static_cast<const Channel*>(pixels);
        for (int32_t i = 0; i < count; ++i, p += 4)
            At({p[2] >> kShift, p[1] >> kShift, p[0] >> kShift}) = kSeen;
    }

    uint8_t& At(const Cell& cell)
    {
        return cells_[(cell.red * kCubeSide + cell.green) * kCubeSide + cell.blue];
    }
    static bool IsUnclaimed(uint8_t value, uint8_t mark) { return value != kAbsent && value != mark; }

    // Boxes of bright colours are coarser, up to twice the size at white.
    static int32_t End(int32_t first, int32_t size, int32_t brightness)
    {
        return std::min(first + brightness * size / 96, kCubeSide);
    }

    Cell Claim(const Cell& start, const BoxSize& size, uint8_t mark)
    {
        const int32_t brightness = start.red + start.green + start.blue + 96;
        const Cell end{End(start.red, size.red, brightness), End(start.green, size.green, brightness),
                       End(start.blue, size.blue, brightness)};
        Cell largest = start;
        for (Cell cell = start; cell.red < end.red; ++cell.red)
            for (cell.green = start.green; cell.green < end.green; ++cell.green)
                for (cell.blue = start.blue; cell.blue < end.blue; ++cell.blue)
                    if (IsUnclaimed(At(cell), mark)) {
                        At(cell) = mark;
                        largest = {std::max(largest.red, cell.red), std::max(largest.green, cell.green),
                                   std::max(largest.blue, cell.blue)};
                    }
        return largest;
    }

    uint8_t* cells_;
};

// The size whose boxes come nearest to the entries without being more, in the first round where one
// fits; where none ever does, the size of the fewest boxes.
BoxSize ChooseBoxSize(ColourCube& cube, int32_t entries)
{
    BoxSize best{}, fewest{};
    int32_t bestBoxes = 0, fewestBoxes = kCubeCells + 1;
    for (int32_t k = 2; k <= kLastRound && bestBoxes == 0; ++k)
        for (const Trial& trial : kTrials) {
            const BoxSize size{k - trial.less.red, k - trial.less.green, k - trial.less.blue};
            const int32_t boxes = cube.Cover(size, trial.mark, [](const Cell&, const Cell&) {});
            if (boxes <= entries && boxes > bestBoxes) {
                bestBoxes = boxes;
                best = size;
            }
            if (boxes < fewestBoxes) {
                fewestBoxes = boxes;
                fewest = size;
            }
        }
    return bestBoxes ? best : fewest;
}

// The middle of a box, brought back to 8 bits.
uint8_t Middle(int32_t first, int32_t last)
{
    return uint8_t(((first + last) & ~1) * 4);
}

void WriteTable(ColourCube& cube, uint8_t* table, int32_t entries)
{
    int32_t next = 0;
    cube.Cover(ChooseBoxSize(cube, entries), kFinalMark, [&](const Cell& start, const Cell& largest) {
        if (next == entries)
            return;
        const RGBQUAD entry{Middle(start.blue, largest.blue), Middle(start.green, largest.green),
                            Middle(start.red, largest.red), 0};
        std::memcpy(table + sizeof(entry) * size_t(next++), &entry, sizeof(entry));
    });
}

void MarkArea(ColourCube& cube, const DibRows<const uint8_t>& rows, const RECT& area, const tVXXCHG& exchange)
{
    const ReadRunFn read = SelectRuns(exchange).read;
    const int32_t bits = PixelTypeInfoOf(exchange.sourceType).bits;
    RunBuffer buffer;
    for (int32_t y = area.top; y < area.bottom; ++y)
        for (int32_t x = area.left; x < area.right; x += kRunPixels) {
            const int32_t count = std::min(kRunPixels, area.right - x);
            read(buffer.bytes, rows.Row(y), int64_t(x) * bits, count, exchange);
            cube.MarkRun(buffer.bytes, count, exchange.depth);
        }
}

} // namespace
} // namespace vx

HRESULT VxDibQuantizePalette(BITMAPINFOHEADER* destHeader, const BITMAPINFOHEADER* sourceHeader,
                             const void* sourcePixels, const RECT* area, int32_t sourceStride, uint32_t flags)
{
    using namespace vx;
    const int32_t sourceType = VxGetPixelType(sourceHeader);
    if (sourceType < VXPIXEL_PAL1 || sourceType > VXPIXEL_RGBA128)
        return E_NOTIMPL;
    const RECT marked = WorkingArea(sourceHeader, area);
    if (IsRectEmpty(&marked))
        return S_OK;
    const int32_t destType = VxGetPixelType(destHeader);
    if (destType != VXPIXEL_PAL4 && destType != VXPIXEL_PAL8)
        return E_NOTIMPL;
    const BITMAPINFOHEADER dest = ReadHeader(destHeader);
    const DibRows<const uint8_t> rows = RowsOf(sourceHeader, sourcePixels, sourceStride);
    if (dest.biClrUsed == 0 || !rows.pixels)
        return E_INVALIDARG;
    const GlobalBytes cells(static_cast<uint8_t*>(GlobalAlloc(GMEM_FIXED, kCubeCells)));
    if (!cells)
        return E_OUTOFMEMORY;

    tVXXCHG exchange;
    VxXCHGGetFunctionPointers(destType, sourceType, flags, &exchange, nullptr, 0.0, 0.0);
    const ColourTable sourceTable(sourceHeader);
    exchange.sourcePalette = sourceTable.entries;
    ColourCube cube(cells.get());
    const int32_t height = ReadHeader(sourceHeader).biHeight; // the top of the picture is its last row
    const RECT memory{marked.left, height - marked.bottom, marked.right, height - marked.top};
    MarkArea(cube, rows, memory, exchange);
    const uint32_t entries = std::min<uint32_t>(dest.biClrUsed, kCubeCells);
    WriteTable(cube, reinterpret_cast<uint8_t*>(destHeader) + dest.biSize, int32_t(entries));
    return S_OK;
}
