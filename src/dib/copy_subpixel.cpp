// The sub-pixel pump: pixels that the destination rectangle covers in part are mixed with what stood
// there. For pairs of types that the scaling functions do not know.
#include "dib/copy_job.h"
#include "exchange/operations.h"
#include "vx/scale.h"

namespace vx {
namespace {

constexpr int32_t CeilingPixel(int64_t coordinate)
{
    return int32_t((coordinate + kSubpixelOne - 1) >> kSubpixelBits);
}

// Pixels of one axis of the destination, from the first that is covered to the last, and where each lies
// in the source. All positions count from the top left, in sub-pixel units.
class CoveredAxis
{
public:
    CoveredAxis(int32_t destFirst, int32_t destLast, int32_t sourceFirst, int32_t sourceLast, int32_t step)
        : first_(destFirst >> kSubpixelBits), count_(CeilingPixel(destLast) - first_), start_(sourceFirst),
          step_(std::max(step, 0)), lastSource_(std::max(CeilingPixel(sourceLast) - 1, FirstSource())),
          isNarrow_(sourceLast - sourceFirst <= kSubpixelOne)
    {
        firstCoverage_ = count_ == 1 ? destLast - destFirst : kSubpixelOne - SubpixelFraction(destFirst);
        lastCoverage_ = destLast - (first_ + count_ - 1) * kSubpixelOne;
        firstStep_ = int64_t(step_) * firstCoverage_ / kSubpixelOne;
    }

    int32_t First() const { return first_; }
    int32_t Count() const { return count_; }
    int32_t Step() const { return step_; }
    int32_t FirstSource() const { return start_ >> kSubpixelBits; }
    int32_t LastSource() const { return lastSource_; }
    bool IsNarrow() const { return isNarrow_; } // no more than a pixel of source

    int32_t Coverage(int32_t i) const
    {
        return i == 0 ? firstCoverage_ : i == count_ - 1 ? lastCoverage_ : kSubpixelOne;
    }
    // What lies beyond the last pixel is put on it.
    int64_t Position(int32_t i) const
    {
        const int64_t position = i == 0 ? start_ : start_ + firstStep_ + int64_t(i - 1) * step_;
        return position >> kSubpixelBits > lastSource_ ? int64_t(lastSource_) * kSubpixelOne : position;
    }

private:
    int32_t first_, count_, start_, step_, lastSource_;
    bool isNarrow_;
    int32_t firstCoverage_, lastCoverage_;
    int64_t firstStep_;
};

class SubpixelPump
{
public:
    SubpixelPump(const VxSubpixelParam& param, const Exchange& forth, const Exchange& back)
        : param_(param), forth_(forth), back_(back),
          x_(param.destClip.left, param.destClip.right, param.sourceClip.left, param.sourceClip.right,
             param.stepX),
          y_(param.destClip.top, param.destClip.bottom, param.sourceClip.top, param.sourceClip.bottom,
             param.stepY),
          destBits_(PixelTypeInfoOf(forth.record.destType).bits),
          blends_((param.flags & VXDIBF_NOEDGEBLEND) == 0)
    {}

    void Run()
    {
        RunBuffer buffer;
        for (int32_t y = 0; y < y_.Count(); ++y)
            for (int32_t x = 0; x < x_.Count(); x += kRunPixels) {
                const int32_t count = std::min(kRunPixels, x_.Count() - x);
                Read(buffer.bytes, x, y, count);
                if (blends_)
                    BlendEdges(buffer.bytes, x, y, count);
                forth_.runs.write(DestRow(y), DestBit(x), buffer.bytes, count, forth_.record);
            }
    }

private:
    uint8_t* DestRow(int32_t y) const
    {
        return static_cast<uint8_t*>(param_.destPixels) + int64_t(param_.destStride) * (y_.First() + y);
    }
    int64_t DestBit(int32_t x) const { return int64_t(x_.First() + x) * destBits_; }

    // The first pixel's step is cut to its coverage, so that it is a run of its own.
    void Read(uint8_t* pixels, int32_t x, int32_t y, int32_t count) const
    {
        const int64_t row = y_.Position(y) >> kSubpixelBits;
        SampleRow from{};
        from.row = static_cast<const uint8_t*>(param_.sourcePixels) + int64_t(param_.sourceStride) * row;
        from.rowOffset = row < y_.LastSource() ? param_.sourceStride : 0;
        from.fractionY = uint32_t(SubpixelFraction(int32_t(y_.Position(y))));
        from.last = x_.IsNarrow() ? x_.FirstSource() : x_.LastSource();
        const int32_t alone = x == 0 ? 1 : 0;
        if (alone) {
            from.position = x_.Position(0);
            forth_.runs.sample(pixels, from, 1, forth_.record);
        }
        if (count == alone)
            return;
        from.position = x_.Position(x + alone);
        from.step = x_.Step();
        forth_.runs.sample(pixels + WorkingPixelBytes(forth_.record.depth) * size_t(alone), from,
                           count - alone, forth_.record);
    }

    void BlendEdges(uint8_t* pixels, int32_t x, int32_t y, int32_t count) const
    {
        const bool edgeRow = y_.Coverage(y) != kSubpixelOne;
        for (int32_t i = 0; i < count; ++i) {
            const bool edgeColumn = x + i == 0 || x + i == x_.Count() - 1;
            if (edgeRow || edgeColumn)
                BlendPixel(pixels + WorkingPixelBytes(forth_.record.depth) * size_t(i), x + i, y);
        }
    }

    void BlendPixel(uint8_t* pixel, int32_t x, int32_t y) const
    {
        const int64_t coverage = int64_t(x_.Coverage(x)) * y_.Coverage(y) / kSubpixelOne;
        if (coverage == kSubpixelOne)
            return;
        alignas(16) uint8_t under[16];
        back_.runs.read(under, DestRow(y), DestBit(x), 1, back_.record);
        if (forth_.record.depth == VXXCHG_DEPTH_8)
            Mix<Depth8>(pixel, under, coverage * 255 / kSubpixelOne);
        else
            Mix<Depth16>(pixel, under, coverage * 65535 / kSubpixelOne);
    }

    template <class Depth>
    static void Mix(uint8_t* pixel, const uint8_t* under, int64_t weight)
    {
        Pixel<typename Depth::Channel> source, dest;
        std::memcpy(&source, pixel, sizeof(source));
        std::memcpy(&dest, under, sizeof(dest));
        const auto mixed = FadePixel<Depth>(dest, source, weight);
        std::memcpy(pixel, &mixed, sizeof(mixed));
    }

    const VxSubpixelParam& param_;
    const Exchange &forth_, &back_;
    const CoveredAxis x_, y_;
    const int32_t destBits_;
    const bool blends_;
};

void RunPump(const CopyCall& call, const VxSubpixelParam& param)
{
    // The two records meet in one working pixel.
    tVXXCHG there, same;
    VxXCHGGetFunctionPointers(call.destType, call.sourceType, call.flags, &there, nullptr, 1.0, 1.0);
    VxXCHGGetFunctionPointers(call.destType, call.destType, call.flags, &same, nullptr, 1.0, 1.0);
    const uint32_t flags = call.flags | (there.depth != same.depth ? VXXCHGF_DEPTH16 : 0);
    const Exchange forth(call.destType, call.sourceType, flags, call.gammas, param.quantizer,
                         call.sourceHeader);
    const Exchange back(call.destType, call.destType, flags,
                        GammasBack(call.destType, call.sourceType, call.gammas), nullptr, call.destHeader);
    SubpixelPump(param, forth, back).Run();
}

} // namespace

void CopySubpixel(const CopyCall& call, const RECT* destRect, const RECT* sourceRect)
{
    VxSubpixelParam param;
    if (DibPrepareSubpixelParam(&param, call.destHeader, call.gammas.dest, call.destPixels, destRect,
                                call.destStride, call.sourceHeader, call.gammas.source, call.sourcePixels,
                                sourceRect, call.sourceStride, call.flags))
        RunPump(call, param);
    DibCleanupSubpixelParam(&param);
}

} // namespace vx
