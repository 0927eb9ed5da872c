// A contact sheet: sections of pictures of one size with captions.
#pragma once

#include "vxtool/frame.h"

#include <string>

namespace vxtool {

constexpr int32_t kCellWidth = 372, kCellHeight = 209;

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
};

Frame DrawSheet(const std::string& title, const std::string& subtitle, const std::vector<Section>& sections);

// The tour of all operations over three 8-bit pictures of cell size.
std::vector<Section> Tour(const Frame& back, const Frame& front, const Frame& mask);

} // namespace vxtool
