// Row workers of the pairs of types that are copied without the exchange, all between float and 8 bits
// or from three bytes to four.
#pragma once

#include "vx/curve.h"

#include <cstdint>

namespace vx {

// A row's width is in pixels. y counts from the rectangle's lowest row, and with the column, from the
// rectangle's left, says where in the dither a pixel lies.
using DirectRowFn = void (*)(uint8_t* dest, const uint8_t* source, int32_t width, int32_t y,
                             const VxTransferCurve& curve);

enum class CurveUse
{
    None,   // the curve counts as the identity
    Table,  // its table stands
    Direct, // it is evaluated: there was no memory for a table
};

// How a float becomes 8 bits. A NaN becomes 0; what lies outside 0.0 to 1.0 is held to it.
enum class Levels
{
    Dithered,  // value + dither, times 255, cut
    Rounded,   // value + half a step, times 255, cut
    Truncated, // value times 255 in double, cut
    Picked,    // from a table of bytes by the nearest of its entries; always through a curve
};

// channels of a destination pixel: 3 or 4. Tables: of floats with Levels::Dithered, of bytes with
// Levels::Picked; other levels go with no curve.
DirectRowFn SelectFloatToBytes(Levels levels, CurveUse use, int32_t channels);
// Four floats a pixel, each through the curve: by a table of floats, or directly.
DirectRowFn SelectFloatToFloat(CurveUse use);
// channels of a source pixel; the fourth becomes 1.0 where there are 3. Without a table.
DirectRowFn SelectBytesToFloat(CurveUse use, int32_t channels);
// Of three bytes, by a table of floats with an entry a byte. Those of four are all looked up alike: look_up.h.
DirectRowFn SelectBytes3ToFloatByTable();
// Three bytes and 255.
DirectRowFn SelectBytes3To4();
// Without the fourth byte.
DirectRowFn SelectBytes4To3();

} // namespace vx
