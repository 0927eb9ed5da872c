// VxXCHGGetFunctionPointers: the kernels and the curve of a job.
#include "exchange/kernels.h"

namespace vx {
namespace {

uint32_t NormalisedFlags(uint32_t flags)
{
    constexpr uint32_t kAdded[] = {0, VXXCHGF_ANY_QUALITY, VXXCHGF_ANY_QUALITY | VXXCHGF_EXACT_FADE,
                                   VXXCHGF_ANY_QUALITY | VXXCHGF_EXACT_FADE | VXXCHGF_INTERPOLATE,
                                   VXXCHGF_ANY_QUALITY | VXXCHGF_EXACT_FADE | VXXCHGF_INTERPOLATE |
                                       VXXCHGF_DEPTH16};
    const uint32_t quality = flags & VXXCHGF_QUALITY;
    return quality >= 1 && quality <= 4 ? (flags & VXXCHGF_KEPT) | kAdded[quality] : flags;
}

void ChooseDepth(tVXXCHG& x, uint32_t flags)
{
    const bool depth8 = HasDepth8(x.sourceType) && HasDepth8(x.destType);
    const bool depthFloat = HasDepthFloat(x.sourceType) && HasDepthFloat(x.destType);
    x.flags = NormalisedFlags(flags) | (depth8 || depthFloat ? 0 : VXXCHGF_DEPTH16);
    const bool keep16 = (x.flags & VXXCHGF_DEPTH16) != 0;
    x.depth = keep16 ? VXXCHG_DEPTH_16 : depth8 ? VXXCHG_DEPTH_8 : VXXCHG_DEPTH_FLOAT;
    x.edgeWidth = (x.flags >> 16) & 255;
}

bool ChooseOperation(tVXXCHG& x, const VxXchgOperation& operation)
{
    x.op = operation;
    const OperationKernels& kernels = OperationKernelsOf(OperationRow(x.depth, x.flags), operation.number);
    x.opPixel = kernels.pixel;
    x.opQuad = kernels.quad;
    x.opMark = kernels.mark;
    x.opMarkQuad = kernels.markQuad;
    return x.opPixel != nullptr;
}

void ChoosePixelKernels(tVXXCHG& x)
{
    const int32_t row = KernelRow(x.depth, x.flags);
    const ReadKernels& read = ReadKernelsOf(row, x.sourceType);
    x.readPixel = read.pixel;
    x.readFiltered = read.filtered;
    x.readBlock = read.block;
    x.readQuad = read.quad;
    x.readLine = read.line;
    x.readReduce = read.reduce;
    const WriteKernels& write = WriteKernelsOf(row, x.destType);
    x.writePixel = write.pixel;
    x.writeQuad = write.quad;
}

constexpr bool IsFloatType(int32_t type)
{
    return type == VXPIXEL_GRAY32 || type == VXPIXEL_RGBA128;
}

void SetUpCurves(tVXXCHG& x, double destGamma, double sourceGamma)
{
    const float exponent = float(CurveExponent(sourceGamma, destGamma));
    const bool atSource = IsFloatType(x.sourceType);
    SetUpCurve(x.sourceCurve, atSource ? exponent : 1.0f);
    SetUpCurve(x.destCurve, !atSource && IsFloatType(x.destType) ? exponent : 1.0f);
}

} // namespace
} // namespace vx

HRESULT VxXCHGGetFunctionPointers(int32_t destType, int32_t sourceType, uint32_t flags, tVXXCHG* record,
                                  const VxXchgOperation* operation, double destGamma, double sourceGamma)
{
    using namespace vx;
    *record = {};
    if (!IsExchangeType(destType) || !IsExchangeType(sourceType))
        return E_INVALIDARG;
    record->sourceType = sourceType;
    record->destType = destType;
    ChooseDepth(*record, flags);
    if (operation && !ChooseOperation(*record, *operation))
        return E_NOTIMPL;
    ChoosePixelKernels(*record);
    SetUpCurves(*record, destGamma, sourceGamma);
    return S_OK;
}
