#include "vx/platform/rect.h"

#include "support/random.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <gtest/gtest.h>

bool operator==(const RECT& a, const RECT& b)
{
    return EqualRect(&a, &b);
}

void PrintTo(const RECT& r, std::ostream* out)
{
    *out << "{" << r.left << ", " << r.top << ", " << r.right << ", " << r.bottom << "}";
}

namespace {

using namespace vxtest;

constexpr int32_t kGrid = 6;
using Cells = std::array<bool, kGrid * kGrid>;

Cells CellsOf(const RECT& r)
{
    Cells cells{};
    for (int32_t i = 0; i < kGrid * kGrid; ++i)
        cells[size_t(i)] = PtInRect(&r, {i % kGrid, i / kGrid});
    return cells;
}

// The smallest rectangle around the set cells; all zeros where none is set.
RECT BoundsOf(const Cells& cells)
{
    RECT bounds{};
    for (int32_t i = 0; i < kGrid * kGrid; ++i) {
        if (!cells[size_t(i)])
            continue;
        const RECT cell{i % kGrid, i / kGrid, i % kGrid + 1, i / kGrid + 1};
        if (bounds.right == 0)
            bounds = cell;
        bounds = {std::min(bounds.left, cell.left), std::min(bounds.top, cell.top),
                  std::max(bounds.right, cell.right), std::max(bounds.bottom, cell.bottom)};
    }
    return bounds;
}

// Rectangles of a small grid, empty and inverted ones among them, against sets of its cells. The
// result is written over either argument.
TEST(Rect, CommonUnionAndDifferenceAreThoseOfTheCells)
{
    Random random;
    const auto coordinate = [&random] { return random.Int(0, kGrid); };
    for (int trial = 0; trial < 20000; ++trial) {
        const RECT a{coordinate(), coordinate(), coordinate(), coordinate()};
        const RECT b{coordinate(), coordinate(), coordinate(), coordinate()};
        const Cells inA = CellsOf(a), inB = CellsOf(b);
        Cells common{}, either{}, onlyA{};
        for (size_t i = 0; i < common.size(); ++i) {
            common[i] = inA[i] && inB[i];
            either[i] = inA[i] || inB[i];
            onlyA[i] = inA[i] && !inB[i];
        }
        const RECT rest = BoundsOf(onlyA);
        const struct
        {
            BOOL (*operation)(RECT*, const RECT*, const RECT*);
            RECT want;
        } cases[] = {{IntersectRect, BoundsOf(common)},
                     {UnionRect, BoundsOf(either)},
                     {SubtractRect, CellsOf(rest) == onlyA ? rest : a}}; // a where the rest is no rectangle
        for (const auto& c : cases) {
            RECT overA = a, overB = b;
            ASSERT_EQ(c.operation(&overA, &overA, &b), !IsRectEmpty(&c.want));
            c.operation(&overB, &a, &overB);
            ASSERT_EQ(overA, c.want) << &c - cases << ": " << testing::PrintToString(a) << ", "
                                     << testing::PrintToString(b);
            ASSERT_EQ(overB, c.want);
        }
    }
}

TEST(Rect, MovesAndGrowsWithWrap)
{
    RECT r, copy;
    EXPECT_TRUE(SetRect(&r, 1, 2, 3, INT32_MAX) && OffsetRect(&r, 10, 20));
    EXPECT_EQ(r, (RECT{11, 22, 13, INT32_MIN + 19}));
    EXPECT_TRUE(InflateRect(&r, 2, -20) && CopyRect(&copy, &r));
    EXPECT_EQ(copy, (RECT{9, 42, 15, INT32_MAX}));
    EXPECT_TRUE(SetRectEmpty(&r));
    EXPECT_EQ(r, RECT{});
}

} // namespace
