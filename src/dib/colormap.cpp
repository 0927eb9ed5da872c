// VxDibCreateColorQuantizer: the near entry of a colour table for every cell of the colour cube.
#include "dib/colour_table.h"
#include "vx/dib.h"

#include <bit>
#include <cstring>

namespace vx {
namespace {

constexpr uint8_t kEmpty = 255; // also the index of entry 255, which spreads where it stands

// A set of cells that is walked in order. 4 KiB.
class CellSet
{
public:
    void Add(int32_t cell) { words_[cell / 64] |= uint64_t(1) << (cell % 64); }
    void Remove(int32_t cell) { words_[cell / 64] &= ~(uint64_t(1) << (cell % 64)); }
    void Clear() { std::memset(words_, 0, sizeof(words_)); }

    // Calls visit(cell) in rising order. Cells that a visit removes are not visited later on.
    template <class Visit>
    void ForEach(const Visit& visit)
    {
        for (int32_t word = 0; word < kCubeCells / 64; ++word)
            for (uint64_t done = 0, left; (left = words_[word] & ~done) != 0;) {
                const int32_t bit = std::countr_zero(left);
                done |= (uint64_t(2) << bit) - 1;
                visit(word * 64 + bit);
            }
    }

private:
    uint64_t words_[kCubeCells / 64] = {};
};

// Floods the cube from the table's colours, a step along an axis in each round. The front is what was
// filled in the round before. A tie goes to the cell that comes first in the walk.
class Flood
{
public:
    explicit Flood(uint8_t* map) : map_(map) { std::memset(map, kEmpty, kCubeCells); }

    void Seed(const RGBQUAD& colour, uint8_t index)
    {
        const int32_t cell =
            ((colour.rgbRed >> 3) * kCubeSide + (colour.rgbGreen >> 3)) * kCubeSide + (colour.rgbBlue >> 3);
        Fill(cell, index, front_);
    }

    void Run()
    {
        while (filled_ < kCubeCells) {
            next_.Clear();
            front_.ForEach([this](int32_t cell) { Spread(cell); });
            std::swap(front_, next_);
        }
    }

private:
    // A cell that is filled again leaves the front that it stood in.
    void Fill(int32_t cell, uint8_t index, CellSet& front)
    {
        if (map_[cell] != kEmpty)
            return;
        map_[cell] = index;
        filled_ += index != kEmpty;
        front_.Remove(cell);
        front.Add(cell);
    }

    void Spread(int32_t cell)
    {
        constexpr int32_t kSteps[] = {kCubeSide * kCubeSide, kCubeSide, 1};
        for (const int32_t step : kSteps)
            if (cell / step % kCubeSide != 0)
                Fill(cell - step, map_[cell], next_);
        for (const int32_t step : kSteps)
            if (cell / step % kCubeSide != kCubeSide - 1)
                Fill(cell + step, map_[cell], next_);
    }

    uint8_t* map_;
    int32_t filled_ = 0; // cells that hold an index other than kEmpty
    CellSet front_, next_;
};

} // namespace
} // namespace vx

HRESULT VxDibCreateColorQuantizer(uint8_t** outMap, const BITMAPINFOHEADER* header)
{
    using namespace vx;
    *outMap = nullptr;
    const uint32_t entries = std::min(ReadHeader(header).biClrUsed, kMaxTableEntries);
    if (entries == 0)
        return E_INVALIDARG;
    const HGLOBAL handle = GlobalAlloc(GMEM_MOVEABLE, kCubeCells);
    auto* const map = static_cast<uint8_t*>(handle ? GlobalLock(handle) : nullptr);
    if (!map)
        return E_OUTOFMEMORY;
    const ColourTable table(header);
    Flood flood(map);
    for (uint32_t i = 0; i < entries; ++i)
        flood.Seed(table.entries[i], uint8_t(i));
    flood.Run();
    *outMap = map;
    return S_OK;
}
