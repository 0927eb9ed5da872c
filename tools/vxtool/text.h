// Captions on frames.
#pragma once

#include "vxtool/frame.h"

#include <string_view>

namespace vxtool {

// A dot of the font is scale pixels wide; a character takes 6 by 11 dots. Characters outside ASCII show
// as question marks. What does not fit on the right or below is cut.
void DrawText(Frame& frame, int32_t x, int32_t y, float scale, const Colour& colour, std::string_view text);
int32_t TextWidth(std::string_view text, float scale);
int32_t TextHeight(float scale);

} // namespace vxtool
