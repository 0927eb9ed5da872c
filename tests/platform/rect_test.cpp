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
// result is written over each argument in turn.
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
        RECT result = a;
        const BOOL meets = IntersectRect(&result, &result, &b);
        EXPECT_EQ(meets, !IsRectEmpty(&result));
        EXPECT_EQ(result, BoundsOf(common));
        result = b;
        const BOOL holds = UnionRect(&result, &a, &result);
        EXPECT_EQ(holds, !IsRectEmpty(&result));
        EXPECT_EQ(result, BoundsOf(either));
        result = b;
        const BOOL remains = SubtractRect(&result, &a, &result);
        EXPECT_EQ(remains, !IsRectEmpty(&result));
        const RECT rest = BoundsOf(onlyA);
        EXPECT_EQ(result, CellsOf(rest) == onlyA ? rest : a) << "a less b, or a where that is no rectangle";
        if (HasFailure())
            FAIL() << testing::PrintToString(a) << ", " << testing::PrintToString(b);
    }
}

TEST(Rect, MovesAndGrowsWithWrap)
{
    RECT r;
    EXPECT_TRUE(SetRect(&r, 1, 2, 3, 4));
    EXPECT_TRUE(OffsetRect(&r, 10, -20));
    EXPECT_EQ(r, (RECT{11, -18, 13, -16}));
    EXPECT_TRUE(InflateRect(&r, 2, -1));
    EXPECT_EQ(r, (RECT{9, -17, 15, -17}));
    EXPECT_TRUE(IsRectEmpty(&r));
    EXPECT_TRUE(SetRect(&r, INT32_MIN, 0, INT32_MAX, 0));
    EXPECT_TRUE(InflateRect(&r, 1, 0));
    EXPECT_EQ(r, (RECT{INT32_MAX, 0, INT32_MIN, 0}));
    RECT copy;
    EXPECT_TRUE(CopyRect(&copy, &r));
    EXPECT_EQ(copy, r);
    EXPECT_TRUE(SetRectEmpty(&r));
    EXPECT_EQ(r, RECT{});
    EXPECT_FALSE(EqualRect(&r, &copy));
}

TEST(Rect, NullFailsAndChangesNothing)
{
    const RECT some{1, 2, 3, 4};
    RECT r = some;
    EXPECT_FALSE(SetRect(nullptr, 0, 0, 0, 0) || SetRectEmpty(nullptr) || OffsetRect(nullptr, 1, 1) ||
                 InflateRect(nullptr, 1, 1));
    EXPECT_FALSE(CopyRect(&r, nullptr) || CopyRect(nullptr, &r));
    for (const auto operation : {IntersectRect, UnionRect, SubtractRect})
        EXPECT_FALSE(operation(&r, nullptr, &some) || operation(&r, &some, nullptr) ||
                     operation(nullptr, &some, &some));
    EXPECT_FALSE(EqualRect(nullptr, &r) || EqualRect(&r, nullptr) || PtInRect(nullptr, {0, 0}));
    EXPECT_TRUE(IsRectEmpty(nullptr));
    EXPECT_EQ(r, some);
}

} // namespace
