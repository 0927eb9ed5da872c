#include "support/random.h"
#include "vx/dib.h"

#include <gtest/gtest.h>

// In the namespace of RECT, where GoogleTest looks.
static bool operator==(const RECT& a, const RECT& b)
{
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

static std::ostream& operator<<(std::ostream& out, const RECT& r)
{
    return out << "(" << r.left << ", " << r.top << ", " << r.right << ", " << r.bottom << ")";
}

namespace {

using vxtest::Random;

BITMAPINFOHEADER SizedHeader(int32_t width, int32_t height)
{
    BITMAPINFOHEADER header{};
    header.biSize = sizeof(header);
    header.biWidth = width;
    header.biHeight = height;
    return header;
}

struct Prepared
{
    RECT dest{}, source{}, clip{};
};

Prepared Prepare(SIZE dest, const RECT* destIn, SIZE source, const RECT* sourceIn)
{
    const BITMAPINFOHEADER d = SizedHeader(dest.cx, dest.cy), s = SizedHeader(source.cx, source.cy);
    Prepared out;
    VxDibPrepareRects(&d, &out.dest, destIn, &s, &out.source, sourceIn, &out.clip);
    return out;
}

TEST(Rects, NullRectanglesAreTheWholeBitmapAgain)
{
    const RECT beyond{-5, 0, 5, 10}, away{50, 50, 60, 60};
    Prepared got = Prepare({10, 10}, &beyond, {20, 20}, nullptr);
    EXPECT_EQ(got.dest, (RECT{0, 0, 5, 10}));
    EXPECT_EQ(got.source, (RECT{0, 0, 20, 20}));
    EXPECT_EQ(got.clip, (RECT{0, 0, 0, 0}));
    got = Prepare({10, 10}, nullptr, {20, 20}, &away);
    EXPECT_EQ(got.dest, (RECT{0, 0, 10, 10}));
    EXPECT_EQ(got.source, (RECT{0, 0, 0, 0}));
}

// One axis of one clip, in the largest integers there are.
using Wide = __int128;
bool ModelClip(Wide a[2], Wide other[2], Wide size)
{
    if (a[0] >= a[1] || a[0] >= size || a[1] <= 0)
        return false;
    const Wide cut[2] = {a[0] < 0 ? -a[0] : 0, a[1] > size ? a[1] - size : 0}, length = other[1] - other[0];
    other[0] += length * cut[0] / size;
    other[1] -= length * cut[1] / size;
    a[0] += cut[0];
    a[1] -= cut[1];
    return true;
}

TEST(Rects, RandomPairsFollowTheModel)
{
    Random random;
    int32_t kept = 0;
    for (int32_t round = 0; round < 50000; ++round) {
        const int32_t reach = round % 2 ? 30 : 1 << 30;
        const auto side = [&] { return random.Int(1, reach); };
        const SIZE destSize{side(), side()}, sourceSize{side(), side()};
        const auto rect = [&](SIZE size) {
            const int32_t left = random.Int(-size.cx / 2, size.cx / 2),
                          top = random.Int(-size.cy / 2, size.cy / 2);
            return RECT{left, top, left + random.Int(0, size.cx), top + random.Int(0, size.cy)};
        };
        const RECT d = rect(destSize), s = rect(sourceSize);
        Wide dx[2] = {d.left, d.right}, dy[2] = {d.top, d.bottom}, sx[2] = {s.left, s.right},
             sy[2] = {s.top, s.bottom};
        const bool some = ModelClip(sx, dx, sourceSize.cx) && ModelClip(sy, dy, sourceSize.cy) &&
                          ModelClip(dx, sx, destSize.cx) && ModelClip(dy, sy, destSize.cy) && sx[0] < sx[1] &&
                          sy[0] < sy[1];
        const auto want = [some](const Wide x[2], const Wide y[2]) {
            return some ? RECT{LONG(x[0]), LONG(y[0]), LONG(x[1]), LONG(y[1])} : RECT{0, 0, 0, 0};
        };
        const Prepared got = Prepare(destSize, &d, sourceSize, &s);
        ASSERT_EQ(got.dest, want(dx, dy)) << d << " of " << destSize.cx << "x" << destSize.cy << ", " << s;
        ASSERT_EQ(got.source, want(sx, sy))
            << d << ", " << s << " of " << sourceSize.cx << "x" << sourceSize.cy;
        if (some) {
            const RECT clip{got.source.left - s.left, got.source.top - s.top, s.right - got.source.right,
                            s.bottom - got.source.bottom};
            ASSERT_EQ(got.clip, clip);
        }
        kept += some;
    }
    EXPECT_GT(kept, 10000);
}

} // namespace
