#include "primitives/rounding.h"

#include "support/random.h"

#include <bit>
#include <gtest/gtest.h>

namespace {

using namespace vx;

TEST(BiasedRound, OfDoubles)
{
    EXPECT_EQ(BiasedRound(2.5 - 1.4e-8), 3.0); // short of a half by less than the bias
    EXPECT_EQ(BiasedRound(2.5 - 1.6e-8), 2.0);
    EXPECT_EQ(BiasedRound(0x1p52 + 1), 0x1p52 + 1);
    EXPECT_EQ(BiasedRound(-0x1p52 + 1.5), -0x1p52 + 2); // no room for the bias: halves to even
    EXPECT_EQ(BiasedRound(1e300), 1e300);
}

// What the vector forms rely on: for a float the bias makes halves go up and does nothing else.
TEST(BiasedRound, OfFloatsIsHalvesUp)
{
    vxtest::Random random;
    for (int i = 0; i < 1000000; ++i) {
        float value = std::bit_cast<float>(uint32_t(random.Next()));
        if (i % 2 == 0) { // a half, or a float next to one
            value = float(random.Int(-4096, 4096)) + 0.5f;
            value = i % 4 == 0 ? value : std::nextafter(value, random.Int(0, 1) ? 1e9f : -1e9f);
        }
        if (!std::isfinite(value))
            continue;
        ASSERT_EQ(BiasedRound(value), std::floor(double(value) + 0.5)) << value;
    }
}

TEST(BiasedRound, ClampedSaturates)
{
    EXPECT_EQ(BiasedRoundClamped(254.5, 0, 255), 255);
    EXPECT_EQ(BiasedRoundClamped(-0.6, 0, 255), 0);
    EXPECT_EQ(BiasedRoundClamped(1e30, 0, 255), 255);
    EXPECT_EQ(BiasedRoundClamped(-INFINITY, 0, 255), 0);
    EXPECT_EQ(BiasedRoundClamped(NAN, 0, 255), 0);
    EXPECT_EQ(BiasedRoundClamped(INFINITY, -5, INT32_MAX), INT32_MAX);
}

TEST(BiasedRound, Low32TakesTheBitsOfTheInteger)
{
    EXPECT_EQ(BiasedRoundLow32(-0.6), -1);
    EXPECT_EQ(BiasedRoundLow32(4294967295.5), 0);
    EXPECT_EQ(BiasedRoundLow32(4294967296.0 * 3 + 7), 7);
    EXPECT_EQ(BiasedRoundLow32(2147483648.0), INT32_MIN);
    EXPECT_EQ(BiasedRoundLow32(-2147483649.0), INT32_MAX);
    for (const double beyond : {0x1p63, -0x1p63, 1e300, double(INFINITY), double(NAN)})
        EXPECT_EQ(BiasedRoundLow32(beyond), 0) << beyond;
}

} // namespace
