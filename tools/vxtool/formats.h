// The readers behind ParsePicture.
#pragma once

#include "vxtool/picture.h"

namespace vxtool {

bool LooksLikePng(std::span<const uint8_t> bytes);
bool LooksLikeBmp(std::span<const uint8_t> bytes);
Picture ParsePng(std::span<const uint8_t> bytes, const std::string& name);
Picture ParseBmp(std::span<const uint8_t> bytes, const std::string& name);
bool PngHolds(VxPixelType type);

// Fails with a sentence unless the size is allowed.
void CheckSize(const std::string& name, int64_t width, int64_t height, int64_t bitsPerPixel);

} // namespace vxtool
