// Transfer curves: set-up, evaluation and tables. vx/curve.h says what a curve is.
//
// Everything is in single precision, so that every form of a conversion gives the same bits.
#pragma once

#include "vx/curve.h"

#include <cmath>
#include <cstdint>

namespace vx {

// Replaces the curve, whose table pointers are valid or null, and frees its tables.
void SetUpCurve(VxTransferCurve& curve, float exponent);
void FreeCurve(VxTransferCurve& curve);

// A NaN gives a NaN.
float EvaluateCurve(const VxTransferCurve& curve, float x);

// The curve at i / (n - 1), for i from 0 to n: one entry more than the range needs, for the
// interpolation. Without memory the table stays null, and callers evaluate directly. n is 2 or more;
// a record has one size of table at a time.
void BuildFloatTable(VxTransferCurve& curve, int32_t n);
void BuildByteTable(VxTransferCurve& curve, int32_t n);

inline bool IsNearIdentity(float exponent)
{
    return exponent >= float(VX_CURVE_NEAR_MIN) && exponent <= float(VX_CURVE_NEAR_MAX);
}

// The exponent of a conversion, after the rules for gammas.
double CurveExponent(double sourceGamma, double destGamma);

// Needs the float table. Linear between entries; values outside 0.0 to 1.0 are evaluated.
inline float LookUpFloat(const VxTransferCurve& curve, float x)
{
    if (std::isnan(x))
        return 0.0f;
    if (x < 0.0f || x > 1.0f)
        return EvaluateCurve(curve, x);
    const float p = x * float(curve.tableLast);
    const int32_t i = int32_t(p);
    const float f = p - float(i);
    return curve.floatTable[i] * (1.0f - f) + curve.floatTable[i + 1] * f;
}

// Needs the byte table. Halves go up.
inline uint8_t LookUpByte(const VxTransferCurve& curve, float x)
{
    if (!(x >= 0.0f))
        return 0;
    if (x > 1.0f)
        return 255;
    return curve.byteTable[int32_t(double(x * float(curve.tableLast)) + 0.5)];
}

// A curve as a device kernel takes it.
struct DeviceCurve
{
    int32_t mode;        // 0 for the identity, 1 for exponents above 1.0, -1 below
    float parameters[8]; // exponent, knee, offset, scale, slope, zeros
};
DeviceCurve CurveForDevice(double sourceGamma, double destGamma);

} // namespace vx
