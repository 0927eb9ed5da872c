#include "dib/curves.h"

#include "vx/platform/memory.h"

#include <algorithm>

namespace vx {
namespace {

double HeldGamma(double gamma)
{
    // The order of the two makes a NaN the lower limit.
    return gamma == 0.0 ? VX_GAMMA_DEFAULT : std::fmin(std::fmax(gamma, VX_GAMMA_MIN), VX_GAMMA_MAX);
}

// A fixed block, whose handle is its address.
template <class Entry>
Entry* AllocateTable(int32_t n)
{
    return static_cast<Entry*>(GlobalAlloc(GPTR, (size_t(n) + 1) * sizeof(Entry)));
}

template <class Entry>
void FreeTable(Entry*& table)
{
    GlobalFree(table);
    table = nullptr;
}

float CurveAt(const VxTransferCurve& curve, int32_t i, int32_t n)
{
    return EvaluateCurve(curve, float(i) / float(n - 1));
}

} // namespace

void FreeCurve(VxTransferCurve& curve)
{
    FreeTable(curve.floatTable);
    FreeTable(curve.byteTable);
}

// The two constants and the two powers make knee and toe meet the power with equal slope, exactly so
// for 0.45 and nearly so for any other exponent.
void SetUpCurve(VxTransferCurve& curve, float exponent)
{
    FreeCurve(curve);
    const float g = exponent;
    const float r = 1.0f / g;
    curve = {.encoding = g <= 1.0f,
             .exponent = g,
             .knee = 0.038183767f * std::pow(r, -0.9418052f),
             .offset = 0.0f,
             .scale = 1.0f,
             .slope = std::pow(r, 1.8836104f),
             .tableLast = 0,
             .floatTable = nullptr,
             .byteTable = nullptr};
    if (g < 1.0f) {
        const float p = std::pow(curve.knee, g);
        curve.offset = (curve.slope * curve.knee - p) / (p - 1.0f);
    } else if (g > 1.0f) {
        const float p = std::pow(curve.slope * curve.knee, r);
        curve.offset = (curve.knee - p) / (p - 1.0f);
        curve.scale = 1.0f / (curve.offset + 1.0f);
    } else {
        curve.knee = 100.0f; // all of the range is toe, of slope 1
    }
}

float EvaluateCurve(const VxTransferCurve& curve, float x)
{
    const bool above = x >= curve.knee;
    if (!above && !(x <= -curve.knee))
        return x * curve.slope;
    if (curve.encoding)
        return above ? std::pow(x, curve.exponent) * (curve.offset + 1.0f) - curve.offset
                     : std::pow(-x, curve.exponent) * (-1.0f - curve.offset) + curve.offset;
    return above ? std::pow((x + curve.offset) * curve.scale, curve.exponent)
                 : -std::pow((x - curve.offset) * -curve.scale, curve.exponent);
}

void BuildFloatTable(VxTransferCurve& curve, int32_t n)
{
    curve.floatTable = AllocateTable<float>(n);
    if (!curve.floatTable)
        return;
    curve.tableLast = n - 1;
    for (int32_t i = 0; i <= n; ++i)
        curve.floatTable[i] = CurveAt(curve, i, n);
}

void BuildByteTable(VxTransferCurve& curve, int32_t n)
{
    curve.byteTable = AllocateTable<uint8_t>(n);
    if (!curve.byteTable)
        return;
    curve.tableLast = n - 1;
    // The addend lets halves go up. The last entry lies above 1.0, and no look-up reads it.
    for (int32_t i = 0; i <= n; ++i)
        curve.byteTable[i] =
            uint8_t(std::min(std::nearbyint(double(CurveAt(curve, i, n) * 255.0f) + 1.5e-8), 255.0));
}

double CurveExponent(double sourceGamma, double destGamma)
{
    return HeldGamma(sourceGamma) / HeldGamma(destGamma);
}

DeviceCurve CurveForDevice(double sourceGamma, double destGamma)
{
    const double exponent = CurveExponent(sourceGamma, destGamma);
    VxTransferCurve curve{};
    SetUpCurve(curve, float(exponent));
    const bool identity = exponent >= VX_CURVE_NEAR_MIN && exponent <= VX_CURVE_NEAR_MAX;
    return {identity         ? 0
            : curve.encoding ? -1
                             : 1,
            {curve.exponent, curve.knee, curve.offset, curve.scale, curve.slope}};
}

} // namespace vx
