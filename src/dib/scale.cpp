// The scaling entries: preparation, the choice of the kernel, and the copy of equal sizes.
#include "vx/scale.h"

#include "dib/scale_job.h"

#include <optional>

namespace vx {
namespace {

enum class Family
{
    Linear,
    Cubic,
};

struct Frame
{
    const void* pixels;
    const SIZE* size;
    int32_t stride;
    const RECT* rect;
};

struct Options
{
    int32_t bytesPerPixel;
    bool area, blendEdges;
};

// What the axis of a kernel starts at and steps by.
struct Walk
{
    int32_t start, step;
};

bool IsPixelSize(int32_t bytesPerPixel)
{
    return bytesPerPixel == BytePixel::kBytes || bytesPerPixel == FloatPixel::kBytes;
}

// The first pixel samples the source where the centre of a whole first pixel would lie, and half a
// pixel behind, since the taps of the cubic kernel begin two pixels before the position's.
int32_t CubicStart(int32_t left, int32_t ratio)
{
    return left + kSubpixelOne / 2 + ratio / 2;
}

class Scaling
{
public:
    Scaling(const VxSubpixelParam& param, const SIZE& sourceSize, const Options& options)
        : param_(param), size_(sourceSize), options_(options)
    {}

    void Run(Family family) const
    {
        const bool boxX = options_.area && param_.ratioX > kSubpixelOne;
        const bool boxY = options_.area && param_.ratioY > kSubpixelOne;
        const int32_t bytes = options_.bytesPerPixel;
        if (boxX && boxY) {
            ScaleBox(Job(BoxX(), StepCut::EveryStep, BoxY(), StepCut::EveryStep), bytes);
        } else if (family == Family::Linear) {
            if (boxX)
                ScaleBoxXLinearY(Job(BoxX(), StepCut::EveryStep, LinearY(), StepCut::LastButOneBySelf),
                                 bytes);
            else if (boxY)
                ScaleBoxYLinearX(Job(LinearX(), StepCut::LastButOneByFirst, BoxY(), StepCut::EveryStep),
                                 bytes);
            else
                ScaleLinear(Job(LinearX(), StepCut::BothEnds, LinearY(), StepCut::BothEnds), bytes);
        } else {
            if (boxX)
                ScaleBoxXCubicY(Job(BoxX(), StepCut::EveryStep, CubicY(), StepCut::LastButOneBySelf), bytes);
            else if (boxY)
                ScaleBoxYCubicX(Job(CubicX(), StepCut::EveryStep, BoxY(), StepCut::EveryStep), bytes);
            else
                ScaleCubic(Job(CubicX(), StepCut::BothEnds, CubicY(), StepCut::BothEnds), bytes);
        }
    }

    // Rows of whole pixels, where the ratios are one.
    void Copy() const
    {
        const RECT& to = param_.destClip;
        const RECT& from = param_.sourceClip;
        const auto pixels = [](int32_t length) { return SubpixelCeiling(length) >> kSubpixelBits; };
        const int64_t bytes = int64_t(pixels(to.right - to.left)) * options_.bytesPerPixel;
        const auto at = [this](int32_t stride, int32_t x, int32_t y) {
            return int64_t(stride) * (y >> kSubpixelBits) +
                   int64_t(options_.bytesPerPixel) * (x >> kSubpixelBits);
        };
        auto* dest = static_cast<uint8_t*>(param_.destPixels) + at(param_.destStride, to.left, to.top);
        auto* source =
            static_cast<const uint8_t*>(param_.sourcePixels) + at(param_.sourceStride, from.left, from.top);
        for (int32_t y = 0; y < pixels(to.bottom - to.top); ++y)
            std::memmove(dest + int64_t(param_.destStride) * y, source + int64_t(param_.sourceStride) * y,
                         size_t(bytes));
    }

private:
    Walk LinearX() const { return {param_.sourceClip.left, param_.stepX}; }
    Walk LinearY() const { return {param_.sourceClip.top, param_.stepY}; }
    Walk CubicX() const { return {CubicStart(param_.sourceClip.left, param_.ratioX), param_.ratioX}; }
    Walk CubicY() const { return {CubicStart(param_.sourceClip.top, param_.ratioY), param_.ratioY}; }
    Walk BoxX() const { return {param_.sourceClip.left, param_.ratioX}; }
    Walk BoxY() const { return {param_.sourceClip.top, param_.ratioY}; }

    ScaleJob Job(const Walk& x, StepCut cutX, const Walk& y, StepCut cutY) const
    {
        const RECT& to = param_.destClip;
        const RECT& from = param_.sourceClip;
        return {static_cast<uint8_t*>(param_.destPixels),
                param_.destStride,
                static_cast<const uint8_t*>(param_.sourcePixels),
                param_.sourceStride,
                {{to.left, to.right}, {from.left, from.right}, size_.cx, x.start, x.step, cutX},
                {{to.top, to.bottom}, {from.top, from.bottom}, size_.cy, y.start, y.step, cutY},
                options_.blendEdges};
    }

    const VxSubpixelParam& param_;
    const SIZE& size_;
    const Options& options_;
};

bool Prepare(VxSubpixelParam& param, const Frame& dest, const Frame& source, const Options& options)
{
    return IsPixelSize(options.bytesPerPixel) &&
           VxPrepareSubpixelParam(&param, const_cast<void*>(dest.pixels), dest.size, dest.stride, dest.rect,
                                  source.pixels, source.size, source.stride, source.rect) != 0;
}

HRESULT ScaleSubPixel(Family family, const Frame& dest, const Frame& source, const Options& options)
{
    VxSubpixelParam param;
    if (Prepare(param, dest, source, options))
        Scaling(param, *source.size, options).Run(family);
    return S_OK;
}

// Coordinates beyond what sub-pixel ones can hold wrap.
std::optional<RECT> InSubpixels(const RECT* rect)
{
    const auto shifted = [](int32_t c) { return int32_t(uint32_t(c) << kSubpixelBits); };
    if (rect == nullptr)
        return std::nullopt;
    return RECT{shifted(rect->left), shifted(rect->top), shifted(rect->right), shifted(rect->bottom)};
}

HRESULT ScaleWhole(Family family, Frame dest, Frame source, const Options& options)
{
    const std::optional<RECT> destRect = InSubpixels(dest.rect), sourceRect = InSubpixels(source.rect);
    dest.rect = destRect ? &*destRect : nullptr;
    source.rect = sourceRect ? &*sourceRect : nullptr;
    VxSubpixelParam param;
    if (!Prepare(param, dest, source, options))
        return S_OK;
    const Scaling scaling(param, *source.size, options);
    if (param.ratioX == kSubpixelOne && param.ratioY == kSubpixelOne)
        scaling.Copy();
    else
        scaling.Run(family);
    return S_OK;
}

} // namespace
} // namespace vx

HRESULT VxDibScale_Bilinear(void* dest, const SIZE* destSize, int32_t destStride, const RECT* destRect,
                            const void* source, const SIZE* sourceSize, int32_t sourceStride,
                            const RECT* sourceRect, int32_t bytesPerPixel, int32_t area, int32_t noEdgeBlend)
{
    return vx::ScaleWhole(vx::Family::Linear, {dest, destSize, destStride, destRect},
                          {source, sourceSize, sourceStride, sourceRect},
                          {bytesPerPixel, area != 0, noEdgeBlend == 0});
}

HRESULT VxDibScale_BiCubic(void* dest, const SIZE* destSize, int32_t destStride, const RECT* destRect,
                           const void* source, const SIZE* sourceSize, int32_t sourceStride,
                           const RECT* sourceRect, int32_t bytesPerPixel, int32_t area, int32_t noEdgeBlend)
{
    return vx::ScaleWhole(vx::Family::Cubic, {dest, destSize, destStride, destRect},
                          {source, sourceSize, sourceStride, sourceRect},
                          {bytesPerPixel, area != 0, noEdgeBlend == 0});
}

HRESULT VxDibScale_BilinearSubPixel(void* dest, const SIZE* destSize, int32_t destStride,
                                    const RECT* destRect, const void* source, const SIZE* sourceSize,
                                    int32_t sourceStride, const RECT* sourceRect, int32_t bytesPerPixel,
                                    int32_t area, int32_t noEdgeBlend)
{
    return vx::ScaleSubPixel(vx::Family::Linear, {dest, destSize, destStride, destRect},
                             {source, sourceSize, sourceStride, sourceRect},
                             {bytesPerPixel, area != 0, noEdgeBlend == 0});
}

HRESULT VxDibScale_BiCubicSubPixel(void* dest, const SIZE* destSize, int32_t destStride, const RECT* destRect,
                                   const void* source, const SIZE* sourceSize, int32_t sourceStride,
                                   const RECT* sourceRect, int32_t bytesPerPixel, int32_t area,
                                   int32_t noEdgeBlend)
{
    return vx::ScaleSubPixel(vx::Family::Cubic, {dest, destSize, destStride, destRect},
                             {source, sourceSize, sourceStride, sourceRect},
                             {bytesPerPixel, area != 0, noEdgeBlend == 0});
}
