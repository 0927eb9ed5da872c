// VxDibPrepareRects: a pair of rectangles clipped together.
#include "pixel/dib_layout.h"
#include "vx/dib.h"

#include <algorithm>

namespace vx {
namespace {

// One axis of a rectangle. Lengths are 64 bits wide: those of far apart sides do not fit 32.
struct Extent
{
    int64_t first, last;

    int64_t Length() const { return last - first; }
};

struct Axes
{
    Extent x, y;

    explicit Axes(const RECT& r) : x{r.left, r.right}, y{r.top, r.bottom} {}
    bool IsEmpty() const { return x.Length() <= 0 || y.Length() <= 0; }
    // What is carried over may leave 32 bits only where a rectangle is much wider than any bitmap; the
    // coordinates then wrap.
    RECT Rect() const { return {LONG(x.first), LONG(y.first), LONG(x.last), LONG(y.last)}; }
};

const Axes kEmpty{RECT{0, 0, 0, 0}};

bool Overlap(const Extent& a, const Extent& b)
{
    return a.first < b.last && b.first < a.last;
}

// Both cuts are known before either is taken off, so that they share the other's whole length.
void ClipExtent(Extent& a, Extent& other, const Extent& bounds)
{
    const int64_t firstCut = std::max<int64_t>(bounds.first - a.first, 0);
    const int64_t lastCut = std::max<int64_t>(a.last - bounds.last, 0);
    const int64_t otherLength = other.Length();
    other.first += otherLength * firstCut / bounds.Length();
    other.last -= otherLength * lastCut / bounds.Length();
    a.first += firstCut;
    a.last -= lastCut;
}

void ClipPair(Axes& a, Axes& other, const Axes& bounds)
{
    const bool apart = a.IsEmpty() || bounds.IsEmpty() || !Overlap(a.x, bounds.x) || !Overlap(a.y, bounds.y);
    if (apart) {
        a = other = kEmpty;
        return;
    }
    ClipExtent(a.x, other.x, bounds.x);
    ClipExtent(a.y, other.y, bounds.y);
}

Axes BoundsOf(const BITMAPINFOHEADER* header)
{
    const BITMAPINFOHEADER h = ReadHeader(header);
    return Axes(RECT{0, 0, h.biWidth, h.biHeight});
}

} // namespace
} // namespace vx

void VxDibPrepareRects(const BITMAPINFOHEADER* destHeader, RECT* destOut, const RECT* destIn,
                       const BITMAPINFOHEADER* sourceHeader, RECT* sourceOut, const RECT* sourceIn,
                       RECT* clipOut)
{
    using namespace vx;
    const Axes destBounds = BoundsOf(destHeader), sourceBounds = BoundsOf(sourceHeader);
    Axes dest = destIn ? Axes(*destIn) : destBounds;
    Axes source = sourceIn ? Axes(*sourceIn) : sourceBounds;
    const Axes given = source;
    ClipPair(source, dest, sourceBounds);
    ClipPair(dest, source, destBounds);
    if (source.IsEmpty())
        source = dest = kEmpty;
    const bool moved = sourceIn && !source.IsEmpty();
    const RECT clip{LONG(source.x.first - given.x.first), LONG(source.y.first - given.y.first),
                    LONG(given.x.last - source.x.last), LONG(given.y.last - source.y.last)};
    if (clipOut)
        *clipOut = moved ? clip : RECT{0, 0, 0, 0};
    *sourceOut = (sourceIn ? source : sourceBounds).Rect();
    *destOut = (destIn ? dest : destBounds).Rect();
}
