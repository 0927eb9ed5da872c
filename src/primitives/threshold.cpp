// ThresholdFloat, a soft step on float frames, and ThresholdClear, which clears what lies below a value.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "primitives/threshold.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#ifndef VX_THRESHOLD_PLAIN
#define VX_THRESHOLD_PLAIN

#include "kernel/vector_targets.h"
#include "primitives/rows.h"
#include "primitives/unit_byte.h"
#include "vx/channels.h"

#include <cstring>

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

float LoadFloat(const uint8_t* at)
{
    float value;
    std::memcpy(&value, at, sizeof(value));
    return value;
}

void SoftStepRow(uint8_t* row, int64_t floats, Ramp ramp)
{
    for (; floats > 0; --floats, row += 4) {
        const float value = SoftStep(LoadFloat(row), ramp);
        std::memcpy(row, &value, sizeof(value));
    }
}

void ClearBytesRow(uint8_t* row, int64_t bytes, uint8_t threshold)
{
    for (int64_t i = 0; i < bytes; ++i)
        row[i] = row[i] < threshold ? 0 : row[i];
}

void ClearFloatsRow(uint8_t* row, int64_t floats, float threshold)
{
    for (; floats > 0; --floats, row += 4)
        if (LoadFloat(row) < threshold)
            std::memset(row, 0, sizeof(float));
}

} // namespace
} // namespace vx

#endif // VX_THRESHOLD_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<uint8_t>;
using Floats = hn::Repartition<float, Bytes>;
constexpr int64_t kFloats = hn::MaxLanes(Floats());

HWY_INLINE hn::Vec<Floats> LoadFloats(const uint8_t* at)
{
    return hn::BitCast(Floats(), hn::LoadU(Bytes(), at));
}

HWY_INLINE void StoreFloats(hn::Vec<Floats> value, uint8_t* at)
{
    hn::StoreU(hn::BitCast(Bytes(), value), Bytes(), at);
}

void SoftStepRowVector(uint8_t* row, int64_t floats, Ramp ramp)
{
    const Floats lanes;
    const auto low = hn::Set(lanes, ramp.low);
    const auto high = hn::Set(lanes, ramp.high);
    const auto gain = hn::Set(lanes, ramp.gain);
    const auto one = hn::Set(lanes, 1.0f);
    for (; floats >= kFloats; floats -= kFloats, row += 4 * kFloats) {
        const auto x = LoadFloats(row);
        const auto rising = hn::Mul(hn::Sub(x, low), gain);
        const auto top = hn::IfThenElse(hn::Gt(x, one), x, one);
        const auto step = hn::IfThenElse(hn::Ge(x, high), top, rising);
        StoreFloats(hn::IfThenZeroElse(hn::Gt(low, x), step), row);
    }
    SoftStepRow(row, floats, ramp);
}

void ClearBytesRowVector(uint8_t* row, int64_t bytes, uint8_t threshold)
{
    constexpr int64_t kBytes = hn::MaxLanes(Bytes());
    const auto limit = hn::Set(Bytes(), threshold);
    for (; bytes >= kBytes; bytes -= kBytes, row += kBytes) {
        const auto value = hn::LoadU(Bytes(), row);
        hn::StoreU(hn::IfThenElseZero(hn::Eq(hn::Max(value, limit), value), value), Bytes(), row);
    }
    ClearBytesRow(row, bytes, threshold);
}

void ClearFloatsRowVector(uint8_t* row, int64_t floats, float threshold)
{
    const auto limit = hn::Set(Floats(), threshold);
    for (; floats >= kFloats; floats -= kFloats, row += 4 * kFloats) {
        const auto value = LoadFloats(row);
        StoreFloats(hn::IfThenZeroElse(hn::Lt(value, limit), value), row);
    }
    ClearFloatsRow(row, floats, threshold);
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
void ForEachRow(void* buffer, int32_t stride, int32_t width, int32_t height, RowFn row, Parameter parameter)
{
    for (int32_t y = 0; y < height; ++y)
        row(RowAt(buffer, stride, y), int64_t(width) * 4, parameter);
}

} // namespace
} // namespace vx

bool ThresholdFloat(void* buffer, int32_t stride, int32_t width, int32_t height, double low, double high)
{
    using namespace vx;
    const auto row = VX_VECTOR_FORM(SoftStepRowVector, SoftStepRow);
    ForEachRow(buffer, stride, width, height, row, MakeRamp(low, high));
    return true;
}

bool ThresholdClear(void* buffer, int32_t stride, int32_t bytesPerPixel, int32_t width, int32_t height,
                    float threshold)
{
    using namespace vx;
    if (bytesPerPixel == 4) {
        const auto row = VX_VECTOR_FORM(ClearBytesRowVector, ClearBytesRow);
        ForEachRow(buffer, stride, width, height, row, UnitByte(threshold));
        return true;
    }
    if (bytesPerPixel == 16) {
        const auto row = VX_VECTOR_FORM(ClearFloatsRowVector, ClearFloatsRow);
        ForEachRow(buffer, stride, width, height, row, threshold);
        return true;
    }
    return false;
}

#endif // HWY_ONCE
