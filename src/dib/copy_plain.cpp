// The plain pump: any pair of types, scaled or not. But for the direct paths it stays on the calling thread.
#include "dib/copy_job.h"

namespace vx {
namespace {

// Calls run(x, count) for each run of a row.
template <class Run>
void ForRuns(const CopyJob& job, const Run& run, int32_t longest = kRunPixels)
{
    for (int32_t x = 0; x < job.dest.width; x += longest)
        run(x, std::min(longest, job.dest.width - x));
}

void CopyRowByGray(const CopyJob& job, const Exchange& exchange, int32_t y)
{
    alignas(64) uint16_t words[kRunPixels];
    ForRuns(job, [&](int32_t x, int32_t count) {
        exchange.runs.readGray(words, job.source.Row(y) + job.source.Bit(x) / 8, count, exchange.record);
        exchange.runs.writeGray(job.dest.Row(y) + job.dest.Bit(x) / 8, words, count, exchange.record);
    });
}

// Bytes in memory are taken and made where they stand, if they are aligned.
void CopyRowByBytes(const CopyJob& job, const Exchange& exchange, int32_t y)
{
    const RunKernels& runs = exchange.runs;
    alignas(64) uint32_t words[kRunPixels];
    const auto stands = [](bool isBytes, const uint8_t* row) {
        return isBytes && reinterpret_cast<uintptr_t>(row) % alignof(uint32_t) == 0;
    };
    const bool fromThere = stands(runs.sourceIsBytes, job.source.Bytes(y));
    const bool toThere = stands(runs.destIsBytes, job.dest.Bytes(y));
    const bool runsLong = (fromThere && runs.destRunsLong) || (toThere && runs.sourceRunsLong);
    const auto copyRun = [&](int32_t x, int32_t count) {
        const uint8_t* const from = job.source.Row(y) + job.source.Bit(x) / 8;
        uint8_t* const to = job.dest.Row(y) + job.dest.Bit(x) / 8;
        if (fromThere)
            return runs.writeBytes(to, reinterpret_cast<const uint32_t*>(from), count, exchange.record);
        uint32_t* const made = toThere ? reinterpret_cast<uint32_t*>(to) : words;
        runs.readBytes(made, from, count, exchange.record);
        if (!toThere)
            runs.writeBytes(to, made, count, exchange.record);
    };
    ForRuns(job, copyRun, runsLong ? kLongRunPixels : kRunPixels);
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

using CopyRowFn = void (*)(const CopyJob& job, const Exchange& exchange, int32_t y);

// The way with the least between source and destination.
CopyRowFn ChooseWay(const CopyJob& job, const RunKernels& runs)
{
    if (job.IsByBytes() && runs.readGray)
        return CopyRowByGray;
    if (job.IsByBytes() && runs.readBytes)
        return CopyRowByBytes;
    return CopyRowByPixels;
}

} // namespace

void CopyRuns(const CopyJob& job, const Exchange& exchange)
{
    const CopyRowFn copyRow = ChooseWay(job, exchange.runs);
    for (int32_t y = 0; y < job.dest.height; ++y)
        copyRow(job, exchange, y);
}

void CopyPlain(const CopyJob& job, Exchange& exchange)
{
    if (!job.IsScaled() && CopyDirect(job, exchange))
        return;
    const CopyJob joined = job.Joined();
    if (!CopyByTable(joined, exchange))
        CopyRuns(joined, exchange);
}

} // namespace vx
