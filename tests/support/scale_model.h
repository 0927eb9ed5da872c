// A slow model of scaling: every pixel by itself, in 64-bit integers and doubles, walking each axis
// pixel by pixel. It shares nothing with the library.
#pragma once

#include "support/frames.h"
#include "vx/types.h"

#include <optional>

namespace vxtest {

struct ScaleCall
{
    bool cubic = false;
    bool subPixel = false; // rectangles in 1/16384 of a pixel
    bool area = false;
    bool noEdgeBlend = false;
    int32_t bytesPerPixel = 4;
    std::optional<RECT> destRect = {}, sourceRect = {};
};

std::ostream& operator<<(std::ostream& out, const ScaleCall& call);

// Calls the library.
void Scale(const ScaleCall& call, Frame& dest, const Frame& source);

// Does what the library should.
void ModelScale(const ScaleCall& call, Frame& dest, const Frame& source);

} // namespace vxtest
