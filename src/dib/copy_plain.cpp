// The plain pump: any pair of types, scaled or not. But for the direct paths it stays on the calling thread.
#include "dib/copy_job.h"

namespace vx {
namespace {

bool HasPlanes(const CopyJob& job, const RunKernels& runs)
{
    return !job.IsScaled() && runs.readPlanes && runs.writePlanes && job.dest.left % 8 == 0 &&
           job.source.left % 8 == 0;
}

// Calls run(x, count) for each run of a row.
template <class Run>
void ForRuns(const CopyJob& job, const Run& run)
{
    for (int32_t x = 0; x < job.dest.width; x += kRunPixels)
        run(x, std::min(kRunPixels, job.dest.width - x));
}

void CopyRowByPlanes(const CopyJob& job, const Exchange& exchange, int32_t y)
{
    const RunKernels& runs = exchange.runs;
    RunPlanes planes;
    ForRuns(job, [&](int32_t x, int32_t count) {
        runs.readPlanes(planes, job.source.Row(y) + job.source.Bit(x) / 8, count, exchange.record);
        runs.writePlanes(job.dest.Row(y) + job.dest.Bit(x) / 8, planes, count, exchange.record);
    });
}

void CopyRowByPixels(const CopyJob& job, const Exchange& exchange, int32_t y)
{
    SourceReader reader(job, exchange);
    RunBuffer buffer;
    reader.StartRow(y);
    const RunKernels& runs = exchange.runs;
    const size_t channelBytes = WorkingPixelBytes(exchange.record.depth) / 4;
    // Working pixels in memory are taken and made where they stand, if their channels are aligned.
    const auto stands = [channelBytes](bool isWorking, const void* at) {
        return isWorking && reinterpret_cast<uintptr_t>(at) % channelBytes == 0;
    };
    const bool fromThere = !job.IsScaled() && stands(runs.sourceIsWorking, job.source.Bytes(y));
    const bool toThere = stands(runs.destIsWorking, job.dest.Bytes(y));
    ForRuns(job, [&](int32_t x, int32_t count) {
        uint8_t* const to = job.dest.Row(y) + job.dest.Bit(x) / 8;
        const void* pixels = toThere ? to : buffer.bytes;
        if (fromThere)
            pixels = job.source.Row(y) + job.source.Bit(x) / 8;
        else
            reader.Read(toThere ? to : buffer.bytes, x, count);
        if (pixels != to)
            runs.write(job.dest.Row(y), job.dest.Bit(x), pixels, count, exchange.record);
    });
}

} // namespace

void CopyPlain(const CopyJob& job, Exchange& exchange)
{
    if (!job.IsScaled() && CopyDirect(job, exchange))
        return;
    const auto copyRow = HasPlanes(job, exchange.runs) ? CopyRowByPlanes : CopyRowByPixels;
    for (int32_t y = 0; y < job.dest.height; ++y)
        copyRow(job, exchange, y);
}

} // namespace vx
