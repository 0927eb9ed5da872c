// Direct paths of the plain pump: rows of equal size converted in one step. All but those of bits are shared
// among threads.
#include "dib/copy_job.h"
#include "dib/direct_rows.h"
#include "dib/look_up.h"
#include "kernel/parallel.h"
#include "kernel/row_copy.h"

namespace vx {
namespace {

// Entries of the tables, by what is looked up in them.
constexpr int32_t kByteEntries = 256; // also enough for what becomes bytes
constexpr int32_t kFloatEntries = 2048;
constexpr int32_t kPickEntries = 4096;

// A row that goes through a table takes as long as one that touches some times its bytes.
constexpr int64_t kTableCost = 3;

using BuildFn = void (*)(VxTransferCurve& curve, int32_t n);

// A curve with the table that its path reads.
struct PathCurve
{
    VxTransferCurve& curve;
    CurveUse use;

    PathCurve(VxTransferCurve& of, BuildFn build, int32_t entries) : curve(of), use(CurveUse::None)
    {
        if (IsNearIdentity(curve.exponent))
            return;
        build(curve, entries);
        use = curve.floatTable || curve.byteTable ? CurveUse::Table : CurveUse::Direct;
    }
};

// Rows that follow each other in both bitmaps without a gap are worked as one, up to so many bytes of it, by what does
// the same to each.
constexpr int64_t kJoinedBytes = 64 * 1024;

int32_t JoinedRows(const CopyJob& job)
{
    return job.dest.IsGapless() && job.source.IsGapless()
               ? int32_t(std::max<int64_t>(kJoinedBytes / job.dest.RowBytes(), 1))
               : 1;
}

enum class Rows
{
    Alike,
    Differ, // in their dither
};

// row(to, from, pixels, y) works a row, or several joined.
template <class Row>
void ForRows(const CopyJob& job, Rows rows, int64_t cost, const Row& row)
{
    const int64_t bytes = (job.dest.AllBytes() + job.source.AllBytes()) * cost;
    const int32_t joined = rows == Rows::Alike ? JoinedRows(job) : 1;
    ParallelRows((job.dest.height - 1) / joined + 1, bytes, [&job, &row, joined](int32_t i) {
        const int32_t y = i * joined, count = std::min(joined, job.dest.height - y);
        row(job.dest.Bytes(y), job.source.Bytes(y), job.dest.width * count, y);
    });
}

void RunRows(const CopyJob& job, DirectRowFn row, const VxTransferCurve& curve, Rows rows, int64_t cost)
{
    ForRows(job, rows, cost, [&curve, row](uint8_t* to, const uint8_t* from, int32_t pixels, int32_t y) {
        row(to, from, pixels, y, curve);
    });
}

void RunRows(const CopyJob& job, DirectRowFn row, const PathCurve& path, Rows rows = Rows::Alike)
{
    RunRows(job, row, path.curve, rows, path.use == CurveUse::None ? 1 : kTableCost);
}

void CopyBytes(const CopyJob& job)
{
    const int64_t rowBytes = job.dest.RowBytes();
    if (job.dest.IsGapless() && job.source.IsGapless()) {
        std::memcpy(job.dest.Bytes(0), job.source.Bytes(0), size_t(job.dest.AllBytes()));
        return;
    }
    const CopyRowFn row = SelectCopyRow();
    ParallelRows(job.dest.height, 2 * job.dest.AllBytes(),
                 [&](int32_t y) { row(job.dest.Bytes(y), job.source.Bytes(y), rowBytes); });
}

// Gray pixels of up to 8 bits come out of the exchange as they went in, at every quality.
bool IsSmallGray(const tVXXCHG& x)
{
    const bool oneBit = x.sourceType <= VXPIXEL_GRAY1 && x.destType <= VXPIXEL_GRAY1;
    return oneBit || (x.sourceType == x.destType && x.sourceType <= VXPIXEL_GRAY8);
}

// Puts the bits of a mask into a byte.
void CopyMasked(uint8_t* dest, const uint8_t* source, int32_t mask)
{
    *dest = uint8_t((*dest & ~mask) | (*source & mask));
}

// Bits [first, last) of a row, counted from the highest of each byte.
void CopyBits(uint8_t* dest, const uint8_t* source, int64_t first, int64_t last, CopyRowFn copy)
{
    const int64_t firstByte = first / 8, lastByte = last / 8;
    const int32_t head = 0xFF >> first % 8, tail = 0xFF & ~(0xFF >> last % 8);
    if (firstByte == lastByte) {
        CopyMasked(dest + firstByte, source + firstByte, head & tail);
        return;
    }
    CopyMasked(dest + firstByte, source + firstByte, head);
    copy(dest + firstByte + 1, source + firstByte + 1, lastByte - firstByte - 1);
    if (tail)
        CopyMasked(dest + lastByte, source + lastByte, tail);
}

void CopyBitRows(const CopyJob& job)
{
    const CopyRowFn copy = SelectCopyRow();
    const int64_t first = job.dest.left % 8, last = first + int64_t(job.dest.width) * job.dest.bits;
    for (int32_t y = 0; y < job.dest.height; ++y)
        CopyBits(job.dest.Bytes(y), job.source.Bytes(y), first, last, copy);
}

// Bytes of a pixel of 8-bit channels without a palette; 0 for other types.
int32_t ByteChannels(int32_t type)
{
    const bool four = type == VXPIXEL_RGB32 || type == VXPIXEL_RGBA32;
    return four ? 4 : type == VXPIXEL_RGB24 ? 3 : 0;
}

void FloatsToBytes(const CopyJob& job, VxTransferCurve& curve, int32_t channels)
{
    const bool fine = QualityOf(job.flags) >= kFineQuality;
    if (fine) {
        const PathCurve path(curve, BuildFloatTable, kByteEntries);
        RunRows(job, SelectFloatToBytes(Levels::Dithered, path.use, channels), path, Rows::Differ);
        return;
    }
    const PathCurve path(curve, BuildByteTable, kPickEntries);
    const Levels plain = channels == 3 ? Levels::Rounded : Levels::Truncated;
    const Levels levels = path.use == CurveUse::None ? plain : Levels::Picked;
    RunRows(job, SelectFloatToBytes(levels, path.use, channels), path);
}

void FloatsToFloats(const CopyJob& job, VxTransferCurve& curve)
{
    const PathCurve path(curve, BuildFloatTable, kFloatEntries);
    if (path.use == CurveUse::None)
        CopyBytes(job);
    else
        RunRows(job, SelectFloatToFloat(path.use), path);
}

// Four channels, each byte of which stands for a float of 256.
void LookUpFloats(const CopyJob& job, const float* floats)
{
    constexpr int32_t kBytes = sizeof(*floats);
    LookUpTable table;
    std::memcpy(table.entries.data(), floats, kByteEntries * sizeof(*floats));
    table.MakePlanes(8 * kBytes);
    const LookUpFn lookUp = ChooseLookUp(8 * kBytes);
    ForRows(job, Rows::Alike, 1, [&](uint8_t* to, const uint8_t* from, int32_t pixels, int32_t) {
        const int64_t bytes = 4 * int64_t(pixels);
        const int32_t steps = int32_t(bytes / kBytesInStep);
        lookUp(to, from, steps, table);
        for (int64_t i = int64_t(steps) * kBytesInStep; i < bytes; ++i)
            std::memcpy(to + i * kBytes, floats + from[i], kBytes);
    });
}

void BytesToFloats(const CopyJob& job, VxTransferCurve& curve, int32_t channels)
{
    const PathCurve path(curve, BuildFloatTable, kByteEntries);
    if (path.use != CurveUse::Table)
        RunRows(job, SelectBytesToFloat(path.use, channels), path);
    else if (channels == 4)
        LookUpFloats(job, curve.floatTable);
    else
        RunRows(job, SelectBytes3ToFloatByTable(), path);
}

} // namespace

bool CopyDirect(const CopyJob& job, Exchange& exchange)
{
    tVXXCHG& x = exchange.record;
    const int32_t from = ByteChannels(x.sourceType), to = ByteChannels(x.destType);
    const bool fromFloats = x.sourceType == VXPIXEL_RGBA128, toFloats = x.destType == VXPIXEL_RGBA128;
    if (fromFloats && toFloats)
        FloatsToFloats(job, x.sourceCurve);
    else if (fromFloats && to)
        FloatsToBytes(job, x.sourceCurve, to);
    else if (from && toFloats)
        BytesToFloats(job, x.destCurve, from);
    else if (from == 3 && to == 4)
        RunRows(job, SelectBytes3To4(), x.sourceCurve, Rows::Alike, 1);
    else if (from == 4 && to == 3)
        RunRows(job, SelectBytes4To3(), x.sourceCurve, Rows::Alike, 1);
    else if (job.dest.bits > 8 && (x.sourceType == x.destType || (from == 4 && to == 4)))
        CopyBytes(job);
    else if (IsSmallGray(x) && job.dest.bits == 8)
        CopyBytes(job);
    else if (IsSmallGray(x) && job.dest.left % 8 == job.source.left % 8)
        CopyBitRows(job);
    else
        return false;
    return true;
}

} // namespace vx
