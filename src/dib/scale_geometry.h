// Where a scaling call's destination pixels lie in the source, one axis at a time.
//
// A destination axis is a run of pixels of which the first and the last may be covered in part. Each
// kernel walks the source in a step of its own, and cuts some steps at the run's ends to the coverage:
//
//   axis                        starts at         step    cut steps
//   linear, cubic               source's edge,    step,   out of the first pixel: by its coverage; into the
//                               or a centre       ratio   last one: by the last one's (not with two pixels)
//   rows beside a box along X   as above          as      with two pixels only: by the first one's coverage
//                                                 above
//   columns of a linear kernel  source's edge     step    out of the last but one: by the first one's coverage
//   beside a box along Y
//   box; columns of a cubic     source's edge,    ratio   every step: by the coverage of the pixel that it
//   kernel beside a box         or a centre               leaves
//
// All positions and distances are sub-pixel coordinates.
#pragma once

#include "dib/fixed.h"
#include "vx/types.h"

#include <algorithm>
#include <cstdint>

namespace vx {

// The part of a distance that a coverage leaves.
constexpr int32_t CutToCoverage(int32_t distance, int32_t coverage)
{
    return int32_t(int64_t(distance) * coverage >> kSubpixelBits);
}

enum class StepCut
{
    BothEnds,
    LastButOneBySelf,
    LastButOneByFirst,
    EveryStep,
};

struct Span
{
    int32_t first, last; // sub-pixel coordinates, last exclusive
    int32_t Length() const { return last - first; }
};

struct ScaleAxis
{
    int32_t firstPixel, count;           // destination
    int32_t firstCoverage, lastCoverage; // the same where there is one pixel
    int32_t start, step, firstStep, lastStep;
    int32_t firstSource, lastSource; // pixels of the source's part, both included
    int32_t sourceSize;              // pixels of the whole frame

    ScaleAxis(Span dest, Span source, int32_t frameSize, int32_t startAt, int32_t normalStep, StepCut cut)
        : firstPixel(dest.first >> kSubpixelBits),
          count((SubpixelCeiling(dest.last) >> kSubpixelBits) - firstPixel),
          firstCoverage(count == 1 ? dest.Length() : kSubpixelOne - SubpixelFraction(dest.first)),
          lastCoverage(count == 1 ? dest.Length() : dest.last - SubpixelCeiling(dest.last) + kSubpixelOne),
          start(startAt), step(normalStep), firstSource(source.first >> kSubpixelBits),
          // Enlarging may leave nothing of the source's part but the place where it begins.
          lastSource(std::max((SubpixelCeiling(source.last) >> kSubpixelBits) - 1, firstSource)),
          sourceSize(frameSize)
    {
        const bool cutsFirst = cut == StepCut::BothEnds || cut == StepCut::EveryStep || count == 2;
        firstStep = cutsFirst ? CutToCoverage(step, firstCoverage) : step;
        lastStep = cut == StepCut::BothEnds            ? CutToCoverage(step, lastCoverage)
                   : cut == StepCut::LastButOneByFirst ? CutToCoverage(step, firstCoverage)
                                                       : step;
    }

    int32_t Coverage(int32_t k) const
    {
        return k == 0 ? firstCoverage : k == count - 1 ? lastCoverage : kSubpixelOne;
    }

    // Source position of the k-th pixel. Of two pixels the first step is the last one too.
    int32_t Position(int32_t k) const
    {
        if (k == 0)
            return start;
        const int64_t behindFirst = int64_t(start) + firstStep + int64_t(k - 1) * step;
        return int32_t(k == count - 1 && k > 1 ? behindFirst - step + lastStep : behindFirst);
    }
};

// The two pixels of linear sampling.
struct LinearTaps
{
    int32_t here, next, fraction;
};

inline LinearTaps LinearTapsAt(const ScaleAxis& axis, int32_t k)
{
    const int32_t position = axis.Position(k);
    const int32_t here = position >> kSubpixelBits;
    return {here, here == axis.lastSource ? here : here + 1, SubpixelFraction(position)};
}

// Beside a box, what reaches the source's last pixel stays on it.
inline LinearTaps LinearTapsBesideBoxAt(const ScaleAxis& axis, int32_t k)
{
    const LinearTaps taps = LinearTapsAt(axis, k);
    return taps.here < axis.lastSource ? taps : LinearTaps{axis.lastSource, axis.lastSource, 0};
}

// The four pixels of cubic sampling, and the row of the weight tables.
struct CubicTaps
{
    int32_t tap[4];
    int32_t weights;
};

// True where all four columns may be read as they are, whatever the source's part.
inline bool CubicTapsInFrame(const ScaleAxis& axis, int32_t pixel)
{
    return pixel >= 2 && pixel + 2 <= axis.sourceSize;
}

// Rows are limited to the source's part; columns only where they would leave the frame.
inline CubicTaps CubicTapsAt(const ScaleAxis& axis, int32_t k, bool columns)
{
    const int32_t position = axis.Position(k);
    const int32_t pixel = position >> kSubpixelBits;
    const bool free = columns && CubicTapsInFrame(axis, pixel);
    CubicTaps taps;
    for (int32_t i = 0; i < 4; ++i)
        taps.tap[i] = free ? pixel - 2 + i : std::clamp(pixel - 2 + i, axis.firstSource, axis.lastSource);
    taps.weights = SubpixelFraction(position) / 4;
    return taps;
}

// The source pixels that a box covers. Those between the first and the last are covered whole.
struct BoxSpan
{
    int32_t first, last;           // both included; one pixel may be both
    int32_t firstShare, lastShare; // of the first and last pixel; lastShare is 0 where they are one
    int32_t length;
};

inline BoxSpan BoxSpanAt(const ScaleAxis& axis, int32_t k)
{
    const int32_t begin = axis.Position(k);
    const int32_t length = CutToCoverage(axis.step, axis.Coverage(k));
    const int32_t first = begin >> kSubpixelBits;
    const int32_t last = std::max((begin + length - 1) >> kSubpixelBits, first);
    if (first == last)
        return {first, first, length, 0, length};
    return {first, last, (first + 1) * kSubpixelOne - begin, begin + length - last * kSubpixelOne, length};
}

} // namespace vx
