// Test pictures that the tool makes itself.
#pragma once

#include "vxtool/frame.h"

namespace vxtool {

// Fills a rectangle, which must lie inside the frame, with a premultiplied colour.
void FillArea(Frame& frame, int32_t x, int32_t y, int32_t width, int32_t height, const Colour& colour);

// SMPTE colour bars (EG 1): 75 % bars, castellations, and -I, white, +Q, black and pluge below. Black is
// raised to 7.5 % so that the two steps of the pluge beside it can be seen on a full-range screen.
Frame Bars(int32_t width, int32_t height, Form form);

// Straight colours at both ends.
Frame Ramp(int32_t width, int32_t height, Form form, const Colour& from, const Colour& to, bool vertical);

// Rings whose frequency grows with the radius, up to one line a pixel in the corners.
Frame ZonePlate(int32_t width, int32_t height, Form form);

Frame Checker(int32_t width, int32_t height, Form form, int32_t cell, const Colour& first,
              const Colour& second);

// A landscape at sunset: smooth tones, deep shadows, strong colours.
Frame Scene(int32_t width, int32_t height, Form form);

// Three overlapping translucent discs of light on nothing.
Frame Discs(int32_t width, int32_t height, Form form);

// White in the middle, black towards the corners.
Frame Vignette(int32_t width, int32_t height, Form form);

} // namespace vxtool
