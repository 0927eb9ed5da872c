// The palette quantizer and the colour map against slow models.
#include "support/copy_model.h"
#include "support/exchange_model.h"
#include "vx/dib.h"
#include "vx/platform/memory.h"
#include "vx/platform/testing.h"

#include <gtest/gtest.h>
#include <set>

namespace {

using namespace vxtest;

struct Colour
{
    int32_t r, g, b; // 5 bits each
    auto operator<=>(const Colour&) const = default;
};

struct BoxModel
{
    Colour first, last; // last: the largest that it took
};

// Boxes over a set of colours that is kept in order: the first without a box starts one.
std::vector<BoxModel> CoverModel(std::set<Colour> left, const int32_t (&size)[3])
{
    std::vector<BoxModel> boxes;
    while (!left.empty()) {
        const Colour s = *left.begin();
        const int32_t t = s.r + s.g + s.b + 96;
        BoxModel box{s, s};
        for (auto it = left.begin(); it != left.end();) {
            const bool inside = it->r >= s.r && it->r < s.r + t * size[0] / 96 && it->g >= s.g &&
                                it->g < s.g + t * size[1] / 96 && it->b >= s.b &&
                                it->b < s.b + t * size[2] / 96;
            if (inside)
                box.last = {std::max(box.last.r, it->r), std::max(box.last.g, it->g),
                            std::max(box.last.b, it->b)};
            it = inside ? left.erase(it) : std::next(it);
        }
        boxes.push_back(box);
    }
    return boxes;
}

std::vector<BoxModel> ChooseModel(const std::set<Colour>& colours, size_t entries)
{
    std::vector<BoxModel> fewest(40000);
    for (int32_t k = 2; k <= 96; ++k) {
        std::vector<BoxModel> best;
        const int32_t sizes[7][3] = {{k, k - 1, k - 1}, {k - 1, k, k - 1}, {k - 1, k - 1, k}, {k, k, k - 1},
                                     {k, k - 1, k},     {k - 1, k, k},     {k, k, k}};
        for (const auto& size : sizes) {
            const auto boxes = CoverModel(colours, size);
            if (boxes.size() <= entries && boxes.size() > best.size())
                best = boxes;
            if (boxes.size() < fewest.size())
                fewest = boxes;
        }
        if (!best.empty())
            return best;
    }
    fewest.resize(std::min(fewest.size(), entries));
    return fewest;
}

void CheckQuantizer(const Picture& source, const RECT* area, uint32_t entries, uint32_t flags, Random& random)
{
    Picture dest(VXPIXEL_PAL8, 4, 4, Rows::Tight, random, false, entries);
    const int32_t type = source.Type();
    const ModelJob job{type, 1, false, reinterpret_cast<const uint8_t*>(source.Table()), nullptr, nullptr};
    std::set<Colour> colours;
    const RECT marked = area ? *area : source.Whole();
    for (int32_t y = std::max(marked.top, 0); y < std::min(marked.bottom, source.Height()); ++y)
        for (int32_t x = std::max(marked.left, 0); x < std::min(marked.right, source.Width()); ++x) {
            const Channels c =
                ModelRead(job, source.Row(source.Height() - 1 - y), int64_t(x) * ModelOf(type).bits);
            colours.insert({int32_t(c[2]) >> 11, int32_t(c[1]) >> 11, int32_t(c[0]) >> 11});
        }
    std::vector<RGBQUAD> want(dest.Table(), dest.Table() + entries);
    const auto boxes = ChooseModel(colours, entries);
    for (size_t i = 0; i < boxes.size(); ++i) {
        const auto middle = [](int32_t a, int32_t b) { return uint8_t((a + b) / 2 * 8); };
        const BoxModel& box = boxes[i];
        want[i] = {middle(box.first.b, box.last.b), middle(box.first.g, box.last.g),
                   middle(box.first.r, box.last.r), 0};
    }
    ASSERT_EQ(
        VxDibQuantizePalette(dest.Header(), source.Header(), source.Pixels(), area, source.Stride(), flags),
        S_OK);
    ASSERT_EQ(std::memcmp(dest.Table(), want.data(), 4 * entries), 0)
        << "type " << type << ", entries " << entries << ", boxes " << boxes.size() << ", colours "
        << colours.size();
    ASSERT_EQ(dest.Header()->biClrUsed, entries);
}

TEST(Quantizer, ChoosesTheModelsTable)
{
    Random random;
    for (int32_t type = VXPIXEL_PAL1; type <= VXPIXEL_RGBA128; ++type)
        for (const uint32_t entries : {1u, 2u, 16u, 200u}) {
            const Picture source(type, 23, 9, kAllRows[entries % 3], random, true, 256);
            const RECT area{3, 2, 50, 8};
            CheckQuantizer(source, nullptr, entries, 1, random);
            CheckQuantizer(source, &area, entries, 3, random);
        }
}

// Colours none of which is below another in all channels need a box each: a table of two never fits.
TEST(Quantizer, ATableThatNeverFitsGetsItsFirstEntries)
{
    Random random;
    Picture source(VXPIXEL_RGB24, 32, 1, Rows::Tight, random);
    for (int32_t x = 0; x < 32; ++x) {
        const uint8_t pixel[3] = {uint8_t(x * 8), uint8_t(248 - x * 8), 0};
        std::memcpy(source.Row(0) + 3 * x, pixel, 3);
    }
    for (const uint32_t entries : {1u, 2u, 31u, 32u})
        CheckQuantizer(source, nullptr, entries, 3, random);
}

// The flood as it is told: whole walks over a cube with a generation for every cell.
std::vector<uint8_t> FloodModel(const RGBQUAD* table, uint32_t entries)
{
    std::vector<uint8_t> map(32768, 255), generation(32768, 0);
    for (uint32_t i = 0; i < entries; ++i) {
        const size_t cell = size_t(table[i].rgbRed >> 3) * 1024 + size_t(table[i].rgbGreen >> 3) * 32 +
                            (table[i].rgbBlue >> 3);
        if (map[cell] > 254) {
            map[cell] = uint8_t(i);
            generation[cell] = 1;
        }
    }
    for (uint8_t now = 2; std::count(map.begin(), map.end(), 255) != 0; ++now)
        for (int32_t r = 0; r < 32; ++r)
            for (int32_t g = 0; g < 32; ++g)
                for (int32_t b = 0; b < 32; ++b) {
                    const int32_t cell = r * 1024 + g * 32 + b;
                    if (generation[size_t(cell)] != now - 1)
                        continue;
                    const int32_t inside[6] = {r > 0, g > 0, b > 0, r < 31, g < 31, b < 31};
                    const int32_t step[6] = {-1024, -32, -1, 1024, 32, 1};
                    for (int32_t i = 0; i < 6; ++i)
                        if (inside[i] && map[size_t(cell + step[i])] > 254) {
                            map[size_t(cell + step[i])] = map[size_t(cell)];
                            generation[size_t(cell + step[i])] = now;
                        }
                }
    return map;
}

TEST(ColourMap, IsTheFlood)
{
    Random random;
    for (const uint32_t entries : {1u, 2u, 5u, 16u, 100u, 255u, 256u}) {
        Picture bitmap(VXPIXEL_PAL8, 1, 1, Rows::Tight, random, false, entries);
        if (entries > 4)
            bitmap.Table()[4] = bitmap.Table()[2]; // the first of two equal entries is taken
        uint8_t* map = nullptr;
        ASSERT_EQ(VxDibCreateColorQuantizer(&map, bitmap.Header()), S_OK);
        const auto want = FloodModel(bitmap.Table(), entries);
        ASSERT_EQ(std::memcmp(map, want.data(), want.size()), 0) << entries;
        EXPECT_EQ(GlobalFree(GlobalHandle(map)), nullptr);
    }
}

TEST(ColourMap, RefusalsClearTheResult)
{
    Random random;
    Picture bitmap(VXPIXEL_PAL8, 1, 1, Rows::Tight, random, false, 2);
    uint8_t byte = 0;
    uint8_t* map = &byte;
    VxPlatform_FailAllocationAt(1);
    EXPECT_EQ(VxDibCreateColorQuantizer(&map, bitmap.Header()), E_OUTOFMEMORY);
    EXPECT_EQ(map, nullptr);
    bitmap.Header()->biClrUsed = 0;
    map = &byte;
    EXPECT_EQ(VxDibCreateColorQuantizer(&map, bitmap.Header()), E_INVALIDARG);
    EXPECT_EQ(map, nullptr);
}

} // namespace
