// Where the planes of YUV images lie.
#pragma once

#include "vx/pixel.h"

namespace vx {

template <class Word>
struct YuvLayout
{
    Word bytes = 0;
    Word lumaStride = 0;
    Word uOffset = 0;
    Word uStride = 0;
    Word vOffset = 0;
    Word vStride = 0;
};

// All zeros for a compression that is not YUV. In uint32_t the sizes wrap; in uint64_t they are true.
template <class Word>
constexpr YuvLayout<Word> YuvLayoutOf(uint32_t compression, Word width, Word height)
{
    const Word luma = width * height, chroma = luma / 4;
    const Word v210Row = (width + 47) / 48 * 128; // 48 pixels fill 32 words
    switch (compression) {
    case VXCOMPRESSION_UYVY:
    case VXCOMPRESSION_YUYV:
        return {2 * luma, 2 * width};
    case VXCOMPRESSION_Y41B:
        return {luma + 2 * chroma, width, luma, width / 4, luma + chroma, width / 4};
    case VXCOMPRESSION_I420:
    case VXCOMPRESSION_IYUV:
        return {luma + 2 * chroma, width, luma, width / 2, luma + chroma, width / 2};
    case VXCOMPRESSION_YV12:
        return {luma + 2 * chroma, width, luma + chroma, width / 2, luma, width / 2};
    case VXCOMPRESSION_V210:
        return {v210Row * height, v210Row};
    default:
        return {};
    }
}

} // namespace vx
