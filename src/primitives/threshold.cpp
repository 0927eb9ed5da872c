// ThresholdFloat, a soft step on float frames, and ThresholdClear, which clears what lies below a value.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/threshold.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#include "primitives/row_loops-inl.h"

#ifndef VX_THRESHOLD_PLAIN
#define VX_THRESHOLD_PLAIN

#include "kernel/vector_targets.h"
#include "primitives/rows.h"
#include "primitives/unit_byte.h"
#include "vx/channels.h"

namespace vx {
namespace {

struct Ramp
{
    float low;
    float high;
    float gain;
};

Ramp MakeRamp(double low, double high)
{
    const double range = high - low;
    return {float(low), float(high) - 0.00001f, float(1.0 / (range > 0.0001 ? range : 0.0001))};
}

float SoftStep(float x, Ramp ramp)
{
    if (ramp.low > x)
        return 0.0f;
    if (!(x >= ramp.high)) // a NaN goes this way, and comes out a NaN
        return (x - ramp.low) * ramp.gain;
    return x > 1.0f ? x : 1.0f;
}

HWY_NOINLINE void SoftStepRow(uint8_t* row, int64_t bytes, Ramp ramp)
{
    for (; bytes > 0; bytes -= 4, row += 4)
        StoreElement(row, SoftStep(LoadElement<float>(row), ramp));
}

HWY_NOINLINE void ClearBytesRow(uint8_t* row, int64_t bytes, uint8_t threshold)
{
    for (int64_t i = 0; i < bytes; ++i)
        row[i] = row[i] < threshold ? 0 : row[i];
}

HWY_NOINLINE void ClearFloatsRow(uint8_t* row, int64_t bytes, float threshold)
{
    for (; bytes > 0; bytes -= 4, row += 4)
        if (LoadElement<float>(row) < threshold)
            StoreElement(row, 0.0f);
}

} // namespace
} // namespace vx

#endif // VX_THRESHOLD_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

void SoftStepRowVector(uint8_t* row, int64_t bytes, Ramp ramp)
{
    const hn::ScalableTag<float> floats;
    const auto low = hn::Set(floats, ramp.low);
    const auto high = hn::Set(floats, ramp.high);
    const auto gain = hn::Set(floats, ramp.gain);
    const auto one = hn::Set(floats, 1.0f);
    const auto softStep = [=](auto x) VX_LANES {
        const auto rising = hn::Mul(hn::Sub(x, low), gain);
        const auto top = hn::IfThenElse(hn::Gt(x, one), x, one);
        const auto step = hn::IfThenElse(hn::Ge(x, high), top, rising);
        return hn::IfThenZeroElse(hn::Gt(low, x), step);
    };
    const int64_t done = ReplaceVectors(floats, row, bytes, softStep);
    SoftStepRow(row + done, bytes - done, ramp);
}

void ClearBytesRowVector(uint8_t* row, int64_t bytes, uint8_t threshold)
{
    const hn::ScalableTag<uint8_t> lanes;
    const auto limit = hn::Set(lanes, threshold);
    const auto clear = [=](auto value) VX_LANES {
        return hn::IfThenElseZero(hn::Eq(hn::Max(value, limit), value), value);
    };
    const int64_t done = ReplaceVectors(lanes, row, bytes, clear);
    ClearBytesRow(row + done, bytes - done, threshold);
}

void ClearFloatsRowVector(uint8_t* row, int64_t bytes, float threshold)
{
    const hn::ScalableTag<float> floats;
    const auto limit = hn::Set(floats, threshold);
    const auto clear = [=](auto value) VX_LANES { return hn::IfThenZeroElse(hn::Lt(value, limit), value); };
    const int64_t done = ReplaceVectors(floats, row, bytes, clear);
    ClearFloatsRow(row + done, bytes - done, threshold);
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {
namespace {

HWY_EXPORT(SoftStepRowVector);
HWY_EXPORT(ClearBytesRowVector);
HWY_EXPORT(ClearFloatsRowVector);

// The operations treat the four channels of a pixel alike: a row is just elements.
template <class RowFn, class Parameter>
void ForEachRow(void* buffer, int32_t stride, int32_t width, int32_t height, int32_t bytesPerPixel, RowFn row,
                Parameter parameter)
{
    if (IsEmpty(width, height))
        return;
    for (int32_t y = 0; y < height; ++y)
        row(RowAt(buffer, stride, y), int64_t(width) * bytesPerPixel, parameter);
}

} // namespace
} // namespace vx

bool ThresholdFloat(void* buffer, int32_t stride, int32_t width, int32_t height, double low, double high)
{
    using namespace vx;
    const auto row = VX_VECTOR_FORM(SoftStepRowVector, SoftStepRow);
    ForEachRow(buffer, stride, width, height, 16, row, MakeRamp(low, high));
    return true;
}

bool ThresholdClear(void* buffer, int32_t stride, int32_t bytesPerPixel, int32_t width, int32_t height,
                    float threshold)
{
    using namespace vx;
    if (bytesPerPixel == 4) {
        const auto row = VX_VECTOR_FORM(ClearBytesRowVector, ClearBytesRow);
        ForEachRow(buffer, stride, width, height, bytesPerPixel, row, UnitByte(threshold));
        return true;
    }
    if (bytesPerPixel == 16) {
        const auto row = VX_VECTOR_FORM(ClearFloatsRowVector, ClearFloatsRow);
        ForEachRow(buffer, stride, width, height, bytesPerPixel, row, threshold);
        return true;
    }
    return false;
}

#endif // HWY_ONCE
