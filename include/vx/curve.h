/* Transfer curves: gamma with a linear toe, one parameter.
 *
 * An exponent of 0.45 is the encoding curve of ITU-R BT.709 (knee 0.018, slope 4.5, offset 0.099), its
 * reciprocal the decoding curve, 1.0 the identity; other exponents stretch the same shape. Curves are
 * odd and are not limited to 0.0 to 1.0: a value above 1.0 goes on along the power.
 *
 * Gammas are doubles: 0.0 is the default VX_GAMMA_DEFAULT, others are held to VX_GAMMA_MIN and
 * VX_GAMMA_MAX. A conversion's exponent is source gamma / destination gamma. From VX_CURVE_NEAR_MIN to
 * VX_CURVE_NEAR_MAX, both included, it counts as the identity and no curve is applied. */
#ifndef VX_CURVE_H
#define VX_CURVE_H

#include "vx/types.h"

#define VX_GAMMA_DEFAULT 2.2222222222222223 /* 1 / 0.45 */
#define VX_GAMMA_MIN 0.5
#define VX_GAMMA_MAX 4.0
#define VX_CURVE_NEAR_MIN 0.999
#define VX_CURVE_NEAR_MAX 1.001

/* A curve, read-only once set up: threads may share it. The exchange record holds two; the library
 * sets them up, hosts only read them. A record that was never set up is all zeros. */
typedef struct VxTransferCurve
{
    int32_t encoding; /* 1 for exponents up to 1.0, else 0 */
    float exponent;
    float knee;        /* where the linear toe ends */
    float offset;      /* a, of the power */
    float scale;       /* 1 / (1 + a) for exponents above 1.0, else 1 */
    float slope;       /* of the linear toe */
    int32_t tableLast; /* index of 1.0 in the table that was built */
    float* floatTable; /* tableLast + 2 entries or null; owned by the record */
    uint8_t* byteTable;
} VxTransferCurve;
VX_STATIC_ASSERT(sizeof(VxTransferCurve) == 48, "the published record");
VX_STATIC_ASSERT(offsetof(VxTransferCurve, tableLast) == 24, "the published order of fields");
VX_STATIC_ASSERT(offsetof(VxTransferCurve, floatTable) == 32, "the published order of fields");
VX_STATIC_ASSERT(offsetof(VxTransferCurve, byteTable) == 40, "the published order of fields");

#endif
