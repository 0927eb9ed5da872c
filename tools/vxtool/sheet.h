// A contact sheet: sections of pictures of one size with captions.
#pragma once

#include "vxtool/frame.h"

#include <optional>
#include <string>

namespace vxtool {

constexpr int32_t kCellWidth = 372, kCellHeight = 209;
constexpr int32_t kSheetColumns = 4, kSheetGap = 16;
constexpr int32_t kPanelWidth = kSheetColumns * kCellWidth + (kSheetColumns - 1) * kSheetGap;

constexpr Colour Tone(int32_t rgb)
{
    return {float(rgb & 255) / 255.0f, float(rgb >> 8 & 255) / 255.0f, float(rgb >> 16) / 255.0f, 1.0f};
}
constexpr Colour kBackground = Tone(0x1C1D20), kLine = Tone(0x3A3C42), kTitle = Tone(0xF2F2F0);
constexpr Colour kAccent = Tone(0xF0B45A), kCaption = Tone(0xE4E4E2), kDetail = Tone(0x9A9CA3);
constexpr float kDetailScale = 1.3f;

// What an operation makes of a copy of a picture.
template <class Operation>
Frame Made(Frame picture, Operation operation)
{
    operation(picture);
    return picture;
}

struct Cell
{
    std::string title;  // as one would type it
    std::string detail; // what is to be seen
    Frame picture;      // 8-bit, kCellWidth by kCellHeight; checkers show behind transparency
};

struct Section
{
    std::string title;
    std::vector<Cell> cells;
    std::optional<Frame> panel = {}; // kPanelWidth wide, on kBackground, above the cells
};

Frame DrawSheet(const std::string& title, const std::string& subtitle, const std::vector<Section>& sections);

// The tour of all operations over three 8-bit pictures of cell size, in two parts: what works on frames,
// and what works on bitmaps of every type.
std::vector<Section> Tour(const Frame& back, const Frame& front, const Frame& mask);
std::vector<Section> BitmapTour(const Frame& back, const Frame& front);

} // namespace vxtool
