// Interlaced fields: one made into a whole picture, and two laid into one.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "dib/fields.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#ifndef VX_FIELDS_PLAIN
#define VX_FIELDS_PLAIN

#include "dib/copy_job.h"
#include "kernel/parallel.h"
#include "kernel/row_copy.h"
#include "kernel/vector_targets.h"
#include "vx/fields.h"

namespace vx {
namespace {

// The mean of channels at a depth, rounded down. out may be a.
using MeanFn = void (*)(uint8_t* out, const uint8_t* a, const uint8_t* b, int64_t bytes);

template <class Channel>
Channel Mean(Channel a, Channel b)
{
    if constexpr (std::is_same_v<Channel, float>)
        return (a + b) * 0.5f;
    else
        return Channel((uint32_t(a) + b) >> 1);
}

template <class Channel>
HWY_NOINLINE void MeanRow(uint8_t* out, const uint8_t* a, const uint8_t* b, int64_t bytes)
{
    for (int64_t i = 0; i < bytes; i += int64_t(sizeof(Channel))) {
        Channel x, y;
        std::memcpy(&x, a + i, sizeof(x));
        std::memcpy(&y, b + i, sizeof(y));
        x = Mean(x, y);
        std::memcpy(out + i, &x, sizeof(x));
    }
}

// By the exchange's depth.
struct MeanRows
{
    MeanFn of[3];
};

const MeanRows* PlainMeans()
{
    static constexpr MeanRows kMeans{{MeanRow<uint8_t>, MeanRow<uint16_t>, MeanRow<float>}};
    return &kMeans;
}

} // namespace
} // namespace vx

#endif // VX_FIELDS_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// The processor's own mean rounds up: where the sum is odd, one less.
template <class D, class V>
HWY_INLINE V MeanOf(D d, V a, V b)
{
    if constexpr (hwy::IsFloat<hn::TFromD<D>>())
        return hn::Mul(hn::Add(a, b), hn::Set(d, 0.5f));
    else
        return hn::Sub(hn::AverageRound(a, b), hn::And(hn::Xor(a, b), hn::Set(d, hn::TFromD<D>(1))));
}

template <class Channel>
void MeanRowVector(uint8_t* out, const uint8_t* a, const uint8_t* b, int64_t bytes)
{
    const hn::ScalableTag<uint8_t> lanes;
    const hn::Repartition<Channel, decltype(lanes)> d;
    const int64_t step = int64_t(hn::Lanes(lanes));
    int64_t i = 0;
    for (; i + step <= bytes; i += step) {
        const auto x = hn::BitCast(d, hn::LoadU(lanes, a + i)), y = hn::BitCast(d, hn::LoadU(lanes, b + i));
        hn::StoreU(hn::BitCast(lanes, MeanOf(d, x, y)), lanes, out + i);
    }
    MeanRow<Channel>(out + i, a + i, b + i, bytes - i);
}

const MeanRows* VectorMeans()
{
    static constexpr MeanRows kMeans{{MeanRowVector<uint8_t>, MeanRowVector<uint16_t>, MeanRowVector<float>}};
    return &kMeans;
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {

HWY_EXPORT(VectorMeans);

namespace {

bool IsBytes32(int32_t type)
{
    return type == VXPIXEL_RGB32 || type == VXPIXEL_RGBA32;
}

// True where the channels in memory are those of the working pixels, on both sides.
bool IsAsInMemory(const tVXXCHG& x)
{
    if (x.depth == VXXCHG_DEPTH_16)
        return x.sourceType == VXPIXEL_RGBA64 && x.destType == VXPIXEL_RGBA64;
    return x.depth == VXXCHG_DEPTH_FLOAT || (x.sourceType == VXPIXEL_RGB24 && x.destType == VXPIXEL_RGB24) ||
           (IsBytes32(x.sourceType) && IsBytes32(x.destType));
}

// Rows of a whole picture out of one field's rows.
class FieldCopy
{
public:
    FieldCopy(const PixelRows<uint8_t>& dest, const PixelRows<const uint8_t>& source,
              const Exchange& exchange, int32_t sourceBottom, int32_t field)
        : dest_(dest), source_(source), exchange_(exchange), bottom_(sourceBottom), field_(field),
          mean_(VX_VECTOR_FORM(VectorMeans, PlainMeans)()->of[exchange.record.depth]), copy_(SelectCopyRow()),
          isAsInMemory_(IsAsInMemory(exchange.record))
    {}

    void Row(int32_t y) const
    {
        if ((bottom_ - y) % 2 == field_)
            Merge(y, y, y);
        else
            Merge(y, y > 0 ? y - 1 : InPicture(1), y + 1 < dest_.height ? y + 1 : InPicture(y - 1));
    }

private:
    int32_t InPicture(int32_t y) const { return std::clamp(y, 0, dest_.height - 1); }

    // A row that is kept is read as its own neighbour, once.
    void Merge(int32_t y, int32_t a, int32_t b) const
    {
        if (isAsInMemory_)
            MergeBytes(y, a, b);
        else
            MergeRuns(y, a, b);
    }

    void MergeBytes(int32_t y, int32_t a, int32_t b) const
    {
        if (a == b)
            copy_(dest_.Bytes(y), source_.Bytes(a), dest_.RowBytes());
        else
            mean_(dest_.Bytes(y), source_.Bytes(a), source_.Bytes(b), dest_.RowBytes());
    }

    void MergeRuns(int32_t y, int32_t a, int32_t b) const
    {
        const tVXXCHG& record = exchange_.record;
        RunBuffer first, second;
        for (int32_t x = 0; x < dest_.width; x += kRunPixels) {
            const int32_t count = std::min(kRunPixels, dest_.width - x);
            exchange_.runs.read(first.bytes, source_.Row(a), source_.Bit(x), count, record);
            if (a != b) {
                exchange_.runs.read(second.bytes, source_.Row(b), source_.Bit(x), count, record);
                mean_(first.bytes, first.bytes, second.bytes,
                      count * int64_t(WorkingPixelBytes(record.depth)));
            }
            exchange_.runs.write(dest_.Row(y), dest_.Bit(x), first.bytes, count, record);
        }
    }

    const PixelRows<uint8_t>& dest_;
    const PixelRows<const uint8_t>& source_;
    const Exchange& exchange_;
    const int32_t bottom_, field_;
    const MeanFn mean_;
    const CopyRowFn copy_;
    const bool isAsInMemory_;
};

bool IsInside(const BITMAPINFOHEADER* header, const RECT& r)
{
    const RECT whole = WholeBitmap(header);
    return r.left >= 0 && r.top >= 0 && r.right <= whole.right && r.bottom <= whole.bottom;
}

// Two bitmaps of equal pixels, as the merging functions take them.
struct FieldPair
{
    DibRows<uint8_t> dest;
    DibRows<const uint8_t> source;
    int32_t bits, width, height;
    HRESULT status;

    FieldPair(const BITMAPINFOHEADER* destHeader, void* destPixels, int32_t destStride,
              const BITMAPINFOHEADER* sourceHeader, const void* sourcePixels, int32_t sourceStride)
        : dest(WritableRowsOf(destHeader, destPixels, destStride)),
          source(RowsOf(sourceHeader, sourcePixels, sourceStride))
    {
        const BITMAPINFOHEADER d = ReadHeader(destHeader), s = ReadHeader(sourceHeader);
        bits = d.biBitCount;
        width = d.biWidth;
        height = d.biHeight;
        const bool equal = bits == s.biBitCount && width == s.biWidth && height == s.biHeight;
        status = !equal ? E_NOTIMPL : dest.pixels && source.pixels ? S_OK : E_INVALIDARG;
    }
    bool IsEmpty() const { return width <= 0 || height <= 0; }
};

// Where a field begins along an axis. Fields count from the axis' end.
int32_t FirstOfField(int32_t field, int32_t length)
{
    return field == (~length & 1) ? 1 : 0;
}

template <size_t kBytes>
void CopyEverySecond(uint8_t* dest, const uint8_t* source, int64_t first, int64_t width)
{
    for (int64_t x = first; x < width; x += 2)
        std::memcpy(dest + x * kBytes, source + x * kBytes, kBytes);
}

} // namespace
} // namespace vx

HRESULT VxDibCopyInterlace(const BITMAPINFOHEADER* destHeader, void* destPixels, const RECT* destRect,
                           int32_t destStride, const BITMAPINFOHEADER* sourceHeader, const void* sourcePixels,
                           const RECT* sourceRect, int32_t sourceStride, int32_t field, uint32_t flags)
{
    using namespace vx;
    const int32_t destType = VxGetPixelType(destHeader), sourceType = VxGetPixelType(sourceHeader);
    if (!IsDibType(sourceType))
        return E_NOTIMPL;
    const RECT from = PixelRect(sourceHeader, sourceRect, flags);
    if (IsRectEmpty(&from))
        return S_OK;
    if (!IsDibType(destType))
        return E_NOTIMPL;
    const RECT to = PixelRect(destHeader, destRect, flags);
    if (IsRectEmpty(&to))
        return S_OK;
    GlobalBytes map;
    const HRESULT status = MakeColourMap(destType, destHeader, map);
    if (FAILED(status))
        return status;
    if (WidthOf(from) != WidthOf(to) || HeightOf(from) != HeightOf(to))
        return E_NOTIMPL;
    const DibRows<uint8_t> destRows = WritableRowsOf(destHeader, destPixels, destStride);
    const DibRows<const uint8_t> sourceRows = RowsOf(sourceHeader, sourcePixels, sourceStride);
    const bool inside = IsInside(sourceHeader, from) && IsInside(destHeader, to);
    if (!inside || !destRows.pixels || !sourceRows.pixels)
        return E_INVALIDARG;

    const Exchange exchange(destType, sourceType, flags, {0.0, 0.0}, map.get(), sourceHeader);
    const PixelRows<uint8_t> dest(destRows, destHeader, to, destType);
    const PixelRows<const uint8_t> source(sourceRows, sourceHeader, from, sourceType);
    const FieldCopy copy(dest, source, exchange, from.bottom, field);
    const int64_t bytesTouched = dest.AllBytes() + 2 * source.AllBytes();
    ParallelRows(dest.height, bytesTouched, [&copy](int32_t y) { copy.Row(y); });
    return S_OK;
}

HRESULT VxDibMergeFields(const BITMAPINFOHEADER* destHeader, void* destPixels, int32_t destStride,
                         const BITMAPINFOHEADER* sourceHeader, const void* sourcePixels, int32_t sourceStride,
                         int32_t field)
{
    using namespace vx;
    const FieldPair pair(destHeader, destPixels, destStride, sourceHeader, sourcePixels, sourceStride);
    if (FAILED(pair.status) || pair.IsEmpty())
        return pair.status;
    const int64_t rowBytes = int64_t(pair.width) * pair.bits / 8;
    const CopyRowFn copy = SelectCopyRow();
    for (int64_t y = FirstOfField(field, pair.height); y < pair.height; y += 2)
        copy(pair.dest.Row(int32_t(y)), pair.source.Row(int32_t(y)), rowBytes);
    return S_OK;
}

HRESULT VxDibMergeFieldsRotated(const BITMAPINFOHEADER* destHeader, void* destPixels, int32_t destStride,
                                const BITMAPINFOHEADER* sourceHeader, const void* sourcePixels,
                                int32_t sourceStride, int32_t field)
{
    using namespace vx;
    const FieldPair pair(destHeader, destPixels, destStride, sourceHeader, sourcePixels, sourceStride);
    if (pair.bits != 32 && pair.bits != 128)
        return E_NOTIMPL;
    if (FAILED(pair.status) || pair.IsEmpty())
        return pair.status;
    const auto copy = pair.bits == 32 ? CopyEverySecond<4> : CopyEverySecond<16>;
    const int32_t first = FirstOfField(field, pair.width);
    for (int32_t y = 0; y < pair.height; ++y)
        copy(pair.dest.Row(y), pair.source.Row(y), first, pair.width);
    return S_OK;
}

#endif // HWY_ONCE
