// Composite: the call. The mixing stands in composite_rows8.cpp and composite_rows_float.cpp.
#include "vx/composite.h"

#include "kernel/parallel.h"
#include "primitives/composite_rows.h"
#include "primitives/rows.h"

namespace vx {
namespace {

struct CompositeFrames
{
    void* dst;
    int32_t dstStride;
    const void* src;
    int32_t srcStride;
    int32_t width, height;
};

template <class Row, class Opacity>
void CompositeRows(const CompositeFrames& f, int64_t bytesPerPixel, Row row, Opacity opacity)
{
    const int64_t bytesTouched = 3 * bytesPerPixel * f.width * f.height; // dst is read and written
    ParallelRows(f.height, bytesTouched, [=, &f](int32_t y) {
        row(RowAt(f.dst, f.dstStride, y), RowAt(f.src, f.srcStride, y), f.width, opacity);
    });
}

// 0 to 255; the comparisons are so that a NaN gives 0.
uint32_t ByteOpacity(double opacity)
{
    const double scaled = opacity * 255.0 + 0.5;
    if (!(scaled > 0.0))
        return 0;
    return scaled >= 255.0 ? 255 : uint32_t(scaled);
}

} // namespace
} // namespace vx

bool Composite(void* dst, int32_t dstStride, const void* src, int32_t srcStride, int32_t bytesPerPixel,
               int32_t width, int32_t height, int32_t mode, double opacity)
{
    using namespace vx;
    if (mode < VX_COMPOSITE_SOURCE_OVER || mode > VX_COMPOSITE_AVERAGE)
        return false;
    if (IsEmpty(width, height))
        return true;
    const CompositeFrames frames{dst, dstStride, src, srcStride, width, height};
    if (bytesPerPixel == 4) {
        const uint32_t byteOpacity = ByteOpacity(opacity);
        CompositeRows(frames, 4, ChooseCompositeRow8(mode, byteOpacity), byteOpacity);
    } else {
        const float floatOpacity = float(opacity);
        CompositeRows(frames, 16, ChooseCompositeRowFloat(mode, floatOpacity), floatOpacity);
    }
    return true;
}
