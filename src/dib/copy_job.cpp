#include "dib/copy_job.h"

namespace vx {

HRESULT MakeColourMap(int32_t type, const BITMAPINFOHEADER* header, GlobalBytes& map)
{
    if (!IsPaletteType(type))
        return S_OK;
    uint8_t* made;
    const HRESULT status = VxDibCreateColorQuantizer(&made, header);
    map.reset(made);
    return status;
}

Exchange::Exchange(int32_t destType, int32_t sourceType, uint32_t flags, Gammas gammas, const uint8_t* map,
                   const BITMAPINFOHEADER* sourceHeader)
{
    VxXCHGGetFunctionPointers(destType, sourceType, flags, &record, nullptr, gammas.dest, gammas.source);
    if (IsPaletteType(sourceType))
        record.sourcePalette = table_.emplace(sourceHeader).entries;
    record.inverseMap = map;
    runs = SelectRuns(record);
}

Exchange::~Exchange()
{
    FreeCurve(record.sourceCurve);
    FreeCurve(record.destCurve);
}

CopyJob::CopyJob(const CopyCall& call, const DibRows<uint8_t>& destRows, const RECT& destRect,
                 const DibRows<const uint8_t>& sourceRows, const RECT& sourceRect, const RECT& clipAmounts)
    : dest(destRows, call.destHeader, destRect, call.destType),
      source(sourceRows, call.sourceHeader, sourceRect, call.sourceType), clip(clipAmounts),
      flags(call.flags), gammas(call.gammas), x(source.width, dest.width, call.IsFine()),
      y(source.height, dest.height, call.IsFine()), destHeader(call.destHeader)
{}

// So many pixels that a run more does not overflow.
constexpr int64_t kMostJoined = INT32_MAX - kLongRunPixels;

CopyJob CopyJob::Joined() const
{
    const int64_t pixels = int64_t(dest.width) * dest.height;
    const bool joins = IsByBytes() && dest.IsGapless() && source.IsGapless() && pixels <= kMostJoined;
    CopyJob joined = *this;
    if (joins) {
        joined.dest.width = joined.source.width = int32_t(pixels);
        joined.dest.height = joined.source.height = 1;
    }
    return joined;
}

SourceReader::SourceReader(const CopyJob& job, const Exchange& exchange)
    : job_(job), exchange_(exchange), scaled_(job.IsScaled())
{
    from_.bit = job.source.left;
    from_.last = job.x.last;
}

void SourceReader::StartRow(int32_t y)
{
    if (!scaled_) {
        from_.row = job_.source.Row(y);
        return;
    }
    const int64_t position = job_.y.Position(y);
    const int64_t row = position / kSubpixelOne;
    from_.row = job_.source.Row(row);
    from_.rowOffset = row < job_.y.last ? job_.source.stride : 0;
    from_.fractionY = uint32_t(position % kSubpixelOne);
}

void SourceReader::Sample(void* pixels, int64_t position, int32_t count) const
{
    SampleRow from = from_;
    from.position = position;
    from.step = job_.x.step;
    exchange_.runs.sample(pixels, from, count, exchange_.record);
}

void SourceReader::Read(void* pixels, int32_t x, int32_t count) const
{
    if (!scaled_) {
        exchange_.runs.read(pixels, from_.row, job_.source.Bit(x), count, exchange_.record);
        return;
    }
    const int32_t stepped = std::min(count, job_.x.destinationLast - x);
    if (stepped > 0)
        Sample(pixels, job_.x.Position(x), stepped);
    if (stepped < count)
        Sample(static_cast<uint8_t*>(pixels) + WorkingPixelBytes(exchange_.record.depth) * size_t(stepped),
               job_.x.Position(job_.x.destinationLast), 1);
}

} // namespace vx
