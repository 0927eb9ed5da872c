#include "vx/channels.h"

#include "primitives/every_form.h"

#include <algorithm>

namespace {

using namespace vxtest;

std::vector<uint8_t> RandomTable()
{
    Random random(11);
    std::vector<uint8_t> table(1024);
    for (uint8_t& byte : table)
        byte = random.Byte();
    return table;
}

TEST(Lut, EveryForm)
{
    const std::vector<uint8_t> table = RandomTable();
    ExpectInEveryForm(
        4, LeaveRandom,
        [&](Frame& f) { return Lut(f.Data(), f.Stride(), f.Width(), f.Height(), table.data()); },
        [&](uint8_t* pixel) {
            for (size_t c = 0; c < 4; ++c)
                pixel[c] = table[4 * pixel[c] + c];
        });
}

TEST(LutWithAlphaClamp, EveryForm)
{
    const std::vector<uint8_t> table = RandomTable();
    ExpectInEveryForm(
        4, LeaveRandom,
        [&](Frame& f) {
            return LutWithAlphaClamp(f.Data(), f.Stride(), f.Width(), f.Height(), table.data());
        },
        [&](uint8_t* pixel) {
            pixel[3] = table[size_t(4 * pixel[3] + 3)];
            for (size_t c = 0; c < 3; ++c)
                pixel[c] = std::min(table[4 * pixel[c] + c], pixel[3]);
        });
}

// All 256 entries of each column, in one frame, whatever random pixels hit.
TEST(Lut, ReachesEveryEntry)
{
    const std::vector<uint8_t> table = RandomTable();
    for (const VectorLevel& form : AllForms()) {
        std::vector<uint8_t> row(1024);
        for (size_t i = 0; i < row.size(); ++i)
            row[i] = uint8_t(i / 4 + 64 * (i % 4));
        std::vector<uint8_t> want = row;
        for (size_t i = 0; i < row.size(); ++i)
            want[i] = table[4 * size_t(row[i]) + i % 4];
        const OnlyLevel only(form);
        EXPECT_TRUE(Lut(row.data(), 1024, 256, 1, table.data()));
        EXPECT_EQ(row, want) << form.name;
    }
}

TEST(Lut, EmptySizesReadNothing)
{
    EXPECT_TRUE(Lut(nullptr, 4, 0, 1, nullptr));
    EXPECT_TRUE(LutWithAlphaClamp(nullptr, 4, 1, -1, nullptr));
}

} // namespace
