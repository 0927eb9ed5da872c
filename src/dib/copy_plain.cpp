// The plain pump: any pair of types, scaled or not.
#include "dib/copy_job.h"

namespace vx {

void CopyPlain(const CopyJob& job, Exchange& exchange)
{
    if (!job.IsScaled() && CopyDirect(job, exchange))
        return;
    SourceReader reader(job, exchange);
    RunBuffer buffer;
    for (int32_t y = 0; y < job.dest.height; ++y) {
        reader.StartRow(y);
        for (int32_t x = 0; x < job.dest.width; x += kRunPixels) {
            const int32_t count = std::min(kRunPixels, job.dest.width - x);
            reader.Read(buffer.bytes, x, count);
            exchange.runs.write(job.dest.Row(y), job.dest.Bit(x), buffer.bytes, count, exchange.record);
        }
    }
}

} // namespace vx
