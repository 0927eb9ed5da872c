#include "vx/channels.h"

#include "support/forms.h"

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
    ExpectPixelByPixel(
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
    ExpectPixelByPixel(
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

} // namespace
