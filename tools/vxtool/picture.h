// Pictures in files: PNG and BMP.
#pragma once

#include "vxtool/frame.h"

#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace vxtool {

struct Picture
{
    Dib dib;
    // What the file itself says, as label and text, for `info`.
    std::vector<std::pair<std::string, std::string>> facts;
};

// Reads a file's bytes; name stands in the sentences of failures. Sizes are checked against the limits
// and against the number of bytes before memory is taken for pixels.
//
// PNG of every colour type becomes rgba32, or rgba64 where it has 16 bits a channel. BMP with a header
// of 40, 52, 56, 108 or 124 bytes becomes the type that it holds; packed pixels in an arrangement that
// is no type of the library's become rgba32, or rgba64 where a channel has more than 8 bits.
Picture ParsePicture(std::span<const uint8_t> bytes, const std::string& name);
Picture ReadPicture(const std::string& path);

// The first argument check of every command that writes: .png or .bmp, and a type that it can hold.
// Type 0 asks for the default, which is wanted where the file can hold it, else rgba32.
VxPixelType CheckOutput(const std::string& path, VxPixelType type, VxPixelType wanted = VXPIXEL_RGBA32);

void WritePicture(const std::string& path, const Dib& dib);
// Of any type: a PNG that cannot hold it gets the nearest type that it can.
void WriteShown(const std::string& path, Dib dib);

// Both formats, in memory. PNG holds gray1 to gray16, rgb24, rgba32 and rgba64. BMP holds everything;
// the gray types and those of 16 and 32 bits a channel in a form of the library's own.
std::vector<uint8_t> EncodePng(const Dib& dib);
std::vector<uint8_t> EncodeBmp(const Dib& dib);

} // namespace vxtool
