// BitmapCopy: rows of bytes from one buffer into another.
#include "kernel/row_copy.h"
#include "primitives/rows.h"
#include "vx/channels.h"

bool BitmapCopy(void* dst, int32_t dstStride, const void* src, int32_t srcStride, int32_t width,
                int32_t bytesPerPixel, int32_t height)
{
    using namespace vx;
    const int32_t rowBytes = int32_t(uint32_t(width) * uint32_t(bytesPerPixel));
    if (width <= 0 || rowBytes <= 0)
        return true;
    const CopyRowFn row = SelectCopyRow();
    for (int32_t y = 0; y < height; ++y)
        row(RowAt(dst, dstStride, y), RowAt(src, srcStride, y), rowBytes);
    return true;
}
