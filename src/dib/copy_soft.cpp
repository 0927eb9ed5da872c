// The soft-edge pump: along the edges chosen, the copy is mixed with what stood in the destination.
#include "dib/copy_job.h"
#include "exchange/operations.h"

namespace vx {
namespace {

// The soft edges across one axis. Lengths and positions are in pixels, of the source where the copy is
// scaled.
struct SoftAxis
{
    bool first, last; // which ends are soft
    int64_t firstClip, lastClip;
    int64_t length;
    int64_t lastBonus; // 1 where the last pixel lies a whole width deep, as the first one does

    // How deep a position lies in the edges, 0 outside of them.
    int64_t Depth(int64_t position, int64_t width) const
    {
        int64_t depth = 0;
        if (first && firstClip + position < width)
            depth = width - firstClip - position;
        if (last && position - lastClip >= length - width)
            depth = std::max(depth, width + lastBonus + position - lastClip - length);
        return depth;
    }
};

// A clip amount or a width, which come in pixels of the destination, in pixels of the source.
int64_t InSource(int64_t pixels, int64_t step)
{
    return pixels * step / kSubpixelOne;
}

class SoftEdges
{
public:
    explicit SoftEdges(const CopyJob& job)
        : job_(job), width_((job.flags & VXDIBF_FEATHER_WIDTH) >> VXDIBF_FEATHER_WIDTH_SHIFT),
          columns_{(job.flags & VXDIBF_FEATHER_LEFT) != 0,
                   (job.flags & VXDIBF_FEATHER_RIGHT) != 0,
                   job.clip.left,
                   job.clip.right,
                   job.source.width,
                   1},
          // The lowest row is the first in memory, and goes with the clip amount of the top.
          rows_{(job.flags & VXDIBF_FEATHER_FIRSTROWS) != 0,
                (job.flags & VXDIBF_FEATHER_LASTROWS) != 0,
                job.clip.top,
                job.clip.bottom,
                job.source.height,
                1}
    {
        if (job.IsScaled())
            TakeToSource();
        share_ = 65535 / (width_ + 1);
    }

    // The destination's share of each pixel of a run, in 1/65536; false where none has one.
    bool Weights(uint16_t* weights, int32_t x, int32_t y, int32_t count) const
    {
        const bool scaled = job_.IsScaled();
        const auto deepColumn = [&](int32_t column) {
            return columns_.Depth(scaled ? job_.x.Position(column) / kSubpixelOne : column, width_);
        };
        const int64_t deepRow = rows_.Depth(scaled ? job_.y.Position(y) / kSubpixelOne : y, width_);
        // No column is deeper than the deeper end of a run.
        if (deepRow == 0 && deepColumn(x) == 0 && deepColumn(x + count - 1) == 0)
            return false;
        for (int32_t i = 0; i < count; ++i)
            weights[i] = uint16_t(std::max(deepRow, deepColumn(x + i)) * share_);
        return true;
    }

private:
    void TakeToSource()
    {
        width_ = InSource(width_, std::max(job_.x.step, job_.y.step));
        columns_.firstClip = InSource(columns_.firstClip, job_.x.step);
        columns_.lastClip = InSource(columns_.lastClip, job_.x.step);
        rows_.firstClip = InSource(rows_.firstClip, job_.y.step);
        rows_.lastClip = InSource(rows_.lastClip, job_.y.step);
        rows_.lastBonus = 0;
    }

    const CopyJob& job_;
    int64_t width_, share_;
    SoftAxis columns_, rows_;
};

template <class Working, class Mix>
void MixRun(void* pixels, const void* under, const uint16_t* weights, int32_t count, const Mix& mix)
{
    auto* const out = static_cast<Working*>(pixels);
    const auto* const in = static_cast<const Working*>(under);
    for (int32_t i = 0; i < count; ++i)
        if (weights[i])
            out[i] = mix(out[i], in[i], weights[i]);
}

// As VXXCHG_OP_FADE does at the record's depth and flags.
void FadeRun(void* pixels, const void* under, const uint16_t* weights, int32_t count, const tVXXCHG& x)
{
    if (x.depth == VXXCHG_DEPTH_16)
        MixRun<Pixel16>(pixels, under, weights, count, FadePixel<Depth16, Pixel16>);
    else if (x.flags & VXXCHGF_EXACT_FADE)
        MixRun<Pixel8>(pixels, under, weights, count, [](const Pixel8& a, const Pixel8& b, int32_t weight) {
            return FadePixel<Depth8>(a, b, weight / 256);
        });
    else
        MixRun<Pixel8>(pixels, under, weights, count, [](const Pixel8& a, const Pixel8& b, int32_t weight) {
            return RoughFadePixel(a, b, weight / 256);
        });
}

} // namespace

void CopySoft(const CopyJob& job, const CopyCall& call, const uint8_t* map)
{
    // Floats have no fade of their own.
    const bool bothFloat = call.destType == VXPIXEL_RGBA128 && call.sourceType == VXPIXEL_RGBA128;
    const uint32_t flags = call.flags | (bothFloat ? VXXCHGF_DEPTH16 : 0);
    const Exchange forth(call.destType, call.sourceType, flags, call.gammas, map, call.sourceHeader);
    const Exchange back(call.sourceType, call.destType, flags,
                        GammasBack(call.destType, call.sourceType, call.gammas), nullptr, call.destHeader);
    const SoftEdges edges(job);
    SourceReader reader(job, forth);
    RunBuffer pixels, under;
    uint16_t weights[kRunPixels];
    for (int32_t y = 0; y < job.dest.height; ++y) {
        reader.StartRow(y);
        for (int32_t x = 0; x < job.dest.width; x += kRunPixels) {
            const int32_t count = std::min(kRunPixels, job.dest.width - x);
            reader.Read(pixels.bytes, x, count);
            if (edges.Weights(weights, x, y, count)) {
                back.runs.read(under.bytes, job.dest.Row(y), job.dest.Bit(x), count, back.record);
                FadeRun(pixels.bytes, under.bytes, weights, count, forth.record);
            }
            forth.runs.write(job.dest.Row(y), job.dest.Bit(x), pixels.bytes, count, forth.record);
        }
    }
}

} // namespace vx
