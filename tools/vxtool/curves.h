// Tables of 256 entries made from a few points.
#pragma once

#include "vxtool/options.h"

#include <array>

namespace vxtool {

// Byte c of entry v is the new value of v in channel c, as Lut and MaskedBlend take it.
using CurveTable = std::array<uint8_t, 256 * 4>;

// From the values of --curve: straight lines between the points, level outside them. Channels without a
// curve of their own stay as they are; a curve without a channel goes for all three colours.
CurveTable CurvesOf(const Arguments& arguments);
void AddCurve(CurveTable& table, std::string_view option, std::string_view value);
CurveTable IdentityCurves();

// A colour for each of `entries` values along "V,COLOUR:V,COLOUR...", V from 0.0 to 1.0, premultiplied.
std::vector<Colour> Gradient(std::string_view option, std::string_view value, int32_t entries);

} // namespace vxtool
