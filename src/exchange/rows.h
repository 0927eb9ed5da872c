// Row kernels of the exchange: what the published kernels do, a run of pixels at a time.
//
// A driver fills a tVXXCHG, asks SelectRuns once a job, and converts each row in runs through a small
// RunBuffer on its stack. Runs hold working pixels of the record's depth, blue, green, red, alpha,
// without gaps (4, 8 or 16 bytes a pixel; the record's slots have gaps at 8 bits). Results are those of
// readPixel, readFiltered, readLine and writePixel, bit for bit. The record gives palette, map and
// curves and is not changed, so that workers may share it here.
//
// Pixels are addressed by row and by bit: `bit` counts from the highest bit of the row's first byte,
// pixel x of a type of n bits stands at bit n x, and there is no other limit to it.
#pragma once

#include "vx/xchg.h"

#include <cstddef>
#include <cstdint>

namespace vx {

constexpr int32_t kRunPixels = 512; // small enough to stay in the first cache beside its row
constexpr int32_t kLongRunPixels = 1 << 20;

struct alignas(64) RunBuffer
{
    uint8_t bytes[size_t(kRunPixels) * 16];
};

constexpr size_t WorkingPixelBytes(int32_t depth)
{
    return size_t(4) << depth;
}

// Where a scaled run takes its pixels. Pixel i of the run lies at position + i step, in 1/16384 of a
// source pixel.
struct SampleRow
{
    const uint8_t* row;
    int64_t bit;        // of the source pixel at position 0
    int32_t rowOffset;  // bytes to the row below
    uint32_t fractionY; // 0 to 16383
    int64_t position;   // 0 or above
    int64_t step;       // 0 or above
    int64_t last;       // source pixel that has no right neighbour; positions beyond it read it
};

using ReadRunFn = void (*)(void* pixels, const uint8_t* row, int64_t bit, int32_t count,
                           const tVXXCHG& record);
// As readFiltered with VXXCHGF_INTERPOLATE, at the last pixel as readLine; without it as readPixel.
using SampleRunFn = void (*)(void* pixels, const SampleRow& from, int32_t count, const tVXXCHG& record);
// Bits of bytes that a run covers in part are kept.
using WriteRunFn = void (*)(uint8_t* row, int64_t bit, const void* pixels, int32_t count,
                            const tVXXCHG& record);

// The first pixel begins a byte; through less than working pixels: the high bytes of the channels, blue in the low byte of
// a word; or the words of gray types. At most kRunPixels, or kLongRunPixels of types that RunKernels says.
using ReadBytesFn = void (*)(uint32_t* words, const uint8_t* at, int32_t count, const tVXXCHG& record);
using WriteBytesFn = void (*)(uint8_t* at, const uint32_t* words, int32_t count, const tVXXCHG& record);
using ReadGrayFn = void (*)(uint16_t* words, const uint8_t* at, int32_t count, const tVXXCHG& record);
using WriteGrayFn = void (*)(uint8_t* at, const uint16_t* words, int32_t count, const tVXXCHG& record);

struct RunKernels
{
    ReadRunFn read = nullptr;
    SampleRunFn sample = nullptr;
    WriteRunFn write = nullptr;
    ReadBytesFn readBytes = nullptr; // null where the pair would lose something
    WriteBytesFn writeBytes = nullptr;
    ReadGrayFn readGray = nullptr; // null but between gray types
    WriteGrayFn writeGray = nullptr;
    // Memory holds what readBytes gives, or working pixels: reading or writing is copying.
    bool sourceIsBytes = false, destIsBytes = false;
    bool sourceIsWorking = false, destIsWorking = false;
    // readBytes or writeBytes takes long runs.
    bool sourceRunsLong = false, destRunsLong = false;
};

// The kernels that belong to a record which VxXCHGGetFunctionPointers has filled.
RunKernels SelectRuns(const tVXXCHG& record);

} // namespace vx
