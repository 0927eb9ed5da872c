// The way by table, from pixels of at most a byte: what a byte of the source becomes is made once for each of its 256
// values, by the kernels that would have made it each time, and looked up.
#include "dib/copy_job.h"
#include "dib/look_up.h"

namespace vx {
namespace {

// Sources of fewer bytes are not worth a table, which costs as much as 256 do.
constexpr int64_t kFewBytes = 16 * kByteValues;

// Gray of 8 bits is computed sooner than looked up.
bool HasNarrowSource(const CopyJob& job, const Exchange& exchange)
{
    return job.source.bits < 8 || exchange.record.sourceType == VXPIXEL_PAL8;
}

// From one row of 256 bytes, each of its own value.
void MakeTable(LookUpTable& table, int32_t entryBits, const CopyJob& job, const Exchange& exchange)
{
    std::array<uint8_t, kByteValues> values;
    for (size_t i = 0; i < values.size(); ++i)
        values[i] = uint8_t(i);
    CopyJob row = job;
    row.source.first = values.data();
    row.dest.first = table.entries.data();
    row.source.left = row.dest.left = 0;
    row.source.width = row.dest.width = kByteValues * 8 / job.source.bits;
    row.source.height = row.dest.height = 1;
    CopyRuns(row, exchange);
    table.MakePlanes(entryBits);
}

} // namespace

bool CopyByTable(const CopyJob& job, const Exchange& exchange)
{
    if (!HasNarrowSource(job, exchange) || job.source.AllBytes() < kFewBytes || !job.IsByBytes())
        return false;
    const int32_t entryBits = 8 / job.source.bits * job.dest.bits;
    const LookUpFn lookUp = ChooseLookUp(entryBits);
    if (!lookUp)
        return false;
    LookUpTable table;
    MakeTable(table, entryBits, job, exchange);
    const int32_t pixelsInStep = kBytesInStep * 8 / job.source.bits;
    const int32_t steps = job.source.width / pixelsInStep;
    for (int32_t y = 0; y < job.dest.height; ++y)
        lookUp(job.dest.Bytes(y), job.source.Bytes(y), steps, table);
    const CopyJob rest = job.From(steps * pixelsInStep);
    if (rest.dest.width > 0)
        CopyRuns(rest, exchange);
    return true;
}

} // namespace vx
