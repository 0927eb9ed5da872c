#include "vx/blend.h"

#include "support/frames.h"
#include "support/vector_levels.h"

#include <cmath>
#include <gtest/gtest.h>

namespace {

using namespace vxtest;

struct BlendCase
{
    const char* name;
    uint32_t dst, src;
    double factor;
    uint32_t want;
};

constexpr BlendCase kBlendCases[] = {
    {"1.0 keeps dst, clamped to its alpha", 0x20FF1020, 0xFFFFFFFF, 1.0, 0x20201020},
    {"0.0 takes the colours of src only", 0xFF302010, 0x00605040, 0.0, 0xFF605040},
    {"0.0 clamps to the alpha of dst", 0x50302010, 0x00605040, 0.0, 0x50505040},
    {"half rounds up", 0xFF000001, 0x00000002, 0.5, 0xFF000002},
    {"weights may sum to less than 4096", 0xFFFFFFFF, 0xFFFFFFFF, 0.3, 0xFFFFFFFF},
    {"a negative sum is 0", 0xFF101010, 0x00FFFFFF, 2.0, 0xFF000000},
    {"a large sum is the alpha", 0xFFFFFFFF, 0x00000000, 100.0, 0xFFFFFFFF},
};

TEST(Blend, Table)
{
    for (const BlendCase& c : kBlendCases) {
        uint32_t dst = c.dst;
        EXPECT_TRUE(Blend(&dst, 4, &c.src, 4, 1, 1, c.factor));
        EXPECT_EQ(dst, c.want) << c.name;
    }
}

TEST(Blend, EmptySizeTouchesNothing)
{
    uint32_t dst = 1, src = 2;
    EXPECT_TRUE(Blend(&dst, 4, &src, 4, 0, 1, 0.0));
    EXPECT_TRUE(Blend(&dst, 4, &src, 4, 1, 0, 0.0));
    EXPECT_TRUE(Blend(&dst, 4, &src, 4, -1, -1, 0.0));
    EXPECT_EQ(dst, 1u);
}

TEST(Blend, EveryFormGivesThePlainBits)
{
    Random random;
    for (const VectorLevel& level : VectorLevels())
        for (const Rows rows : kAllRows)
            for (int32_t width = 1; width <= 70; ++width) {
                const Frame src(width, 3, 4, rows, random);
                Frame plain(width, 3, 4, rows, random), vector = plain;
                const double factor = random.Unit() * 3.0 - 1.0;
                {
                    const OnlyLevel only(kPlain);
                    Blend(plain.Data(), plain.Stride(), src.Data(), src.Stride(), width, 3, factor);
                }
                const OnlyLevel only(level);
                Blend(vector.Data(), vector.Stride(), src.Data(), src.Stride(), width, 3, factor);
                ASSERT_EQ(plain, vector) << level.name << ", width " << width << ", " << rows << ", factor " << factor;
            }
}

} // namespace
