#include "vx/platform/clock.h"

#include <gtest/gtest.h>

namespace {

TEST(MulDiv, RoundsHalvesAwayFromZero)
{
    const struct
    {
        int number, numerator, denominator, want;
    } cases[] = {{7, 1, 2, 4},  {-7, 1, 2, -4},      {7, 1, -2, -4},           {5, 1, 3, 2},    {4, 1, 3, 1},
                 {1, 1, 0, -1}, {1 << 30, 4, 1, -1}, {1 << 30, 4, 8, 1 << 29}, {-1, -1, -1, -1}};
    for (const auto& c : cases)
        EXPECT_EQ(MulDiv(c.number, c.numerator, c.denominator), c.want)
            << c.number << " " << c.numerator << " " << c.denominator;
}

} // namespace
