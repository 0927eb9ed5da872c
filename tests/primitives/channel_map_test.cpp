#include "vx/channels.h"

#include "support/forms.h"
#include "vx/platform/debug.h"

#include <algorithm>
#include <string>

namespace {

using namespace vxtest;

// 256 random pixels at an odd address.
class OddTable
{
public:
    explicit OddTable(size_t bytes)
    {
        Random random(7);
        bytes_.resize(bytes + 1);
        for (uint8_t& byte : bytes_)
            byte = random.Byte();
    }
    const uint8_t* Entry(size_t index, size_t size = 4) const { return bytes_.data() + 1 + size * index; }
    template <class T>
    const T* As() const
    {
        const void* table = Entry(0);
        return static_cast<const T*>(table);
    }

private:
    std::vector<uint8_t> bytes_;
};

TEST(ChannelMap, EveryFormInPlaceAndIntoAnotherFrame)
{
    const OddTable table(1024);
    for (int32_t channel = 0; channel < 4; ++channel) {
        const auto mapped = [&](uint8_t* pixel) { std::memcpy(pixel, table.Entry(pixel[channel]), 4); };
        ExpectPixelByPixel(
            4, LeaveRandom,
            [&](Frame& f) {
                return ChannelMap(f.Data(), f.Stride(), channel, f.Width(), f.Height(), table.As<uint32_t>());
            },
            mapped);
        ExpectPixelByPixel(
            4, LeaveRandom,
            [&](Frame& f) {
                const Frame src = f;
                ForEachPixel(f, [](uint8_t* pixel) { pixel[0] = pixel[1] = pixel[2] = pixel[3] = 0; });
                return ChannelMapEx(f.Data(), f.Stride(), src.Data(), src.Stride(), channel, f.Width(),
                                    f.Height(), table.As<uint32_t>());
            },
            mapped);
    }
}

// Random bytes rarely sum to less than 255: half of the pixels are dark.
void DarkenHalf(Frame& frame, Random& random)
{
    ForEachPixel(frame, [&](uint8_t* pixel) {
        const int shift = random.Int(0, 1) * 2;
        for (int c = 0; c < 4; ++c)
            pixel[c] = uint8_t(pixel[c] >> shift);
    });
}

TEST(ChannelMergeLut, EveryForm)
{
    const OddTable table(1024);
    for (const int32_t count : {-1, 0, 1, 2, 3, 4, 5, 1000})
        ExpectPixelByPixel(
            4, DarkenHalf,
            [&](Frame& f) {
                return ChannelMergeLut(f.Data(), f.Stride(), count, f.Width(), f.Height(),
                                       table.As<uint32_t>());
            },
            [&](uint8_t* pixel) {
                int sum = 0;
                for (int c = 0; c < 4; ++c)
                    sum += c < count ? pixel[c] : 0;
                std::memcpy(pixel, table.Entry(size_t(std::min(sum, 255))), 4);
            });
}

struct IndexCase
{
    const char* name;
    float value;
    int32_t entries;
    int32_t want;
};

const IndexCase kIndexCases[] = {
    {"1.0 is capped to the last entry", 1.0f, 256, 255},
    {"below zero is the first", -0.1f, 256, 0},
    {"a half goes up to an even entry", 0.5f, 3, 2},
    {"a half goes up to an odd entry", 0.5f, 5, 3},
    {"next below a half", 0.49999997f, 1000, 500},
    {"half of one entry", 0.5f, 1, 0},
    {"quarter of two", 0.25f, 2, 1},
    {"next below a quarter of two", 0.24999999f, 2, 0},
    {"the product rounds as a float", 0.33333334f, 3, 1},
    {"NaN", NAN, 256, 0},
    {"infinity", INFINITY, 256, 0},
    {"above every entry", 1000.0f, 256, 255},
    {"2^31 is the smallest integer", 0x1p23f, 256, 0},
    {"-2^31 - 256 is a large one", -0x1.000002p23f, 256, 255},
    {"2^32 + 512 is 512", 0x1.000002p24f, 256, 255},
    {"2^32 is 0", 0x1p24f, 256, 0},
    {"beyond 64 bits", 1e30f, 256, 0},
};

TEST(ChannelMapExFloat, IndexTable)
{
    for (const IndexCase& c : kIndexCases)
        for (int32_t channel = 0; channel < 4; ++channel) {
            std::vector<float> table(size_t(c.entries) * 4);
            for (size_t i = 0; i < table.size(); ++i)
                table[i] = float(i);
            float src[4] = {0.9f, 0.9f, 0.9f, 0.9f}, dst[4] = {};
            src[channel] = c.value;
            EXPECT_TRUE(ChannelMapExFloat(dst, 16, src, 16, channel, 1, 1, table.data(), c.entries));
            for (int i = 0; i < 4; ++i)
                EXPECT_EQ(dst[i], float(4 * c.want + i)) << c.name << ", channel " << channel;
        }
}

TEST(ChannelMapExFloat, EveryArrangement)
{
    constexpr int32_t kEntries = 300;
    const OddTable table(kEntries * 16);
    ExpectPixelByPixel(
        16, [](Frame& f, Random& random) { f.FillFloats(random, -0.2f, 1.2f); },
        [&](Frame& f) {
            return ChannelMapExFloat(f.Data(), f.Stride(), f.Data(), f.Stride(), 2, f.Width(), f.Height(),
                                     table.As<float>(), kEntries);
        },
        [&](uint8_t* pixel) {
            const float product = float(kEntries) * GetFloat(pixel, 2);
            const double index = std::clamp(std::floor(double(product) + 0.5), 0.0, double(kEntries - 1));
            std::memcpy(pixel, table.Entry(size_t(index), 16), 16);
        });
}

TEST(ChannelMapFamily, RefusesABadChannelBeforeAnythingElse)
{
    std::vector<std::string> texts;
    VxPlatform_SetDebugOutput(
        [](void* context, const char* text) {
            static_cast<std::vector<std::string>*>(context)->push_back(text);
        },
        &texts);
    for (const int32_t channel : {-1, 4, 256, std::numeric_limits<int32_t>::min()})
        for (const int32_t width : {0, 1}) {
            EXPECT_FALSE(ChannelMap(nullptr, 4, channel, width, 1, nullptr));
            EXPECT_FALSE(ChannelMapEx(nullptr, 4, nullptr, 4, channel, width, 1, nullptr));
            EXPECT_FALSE(ChannelMapExFloat(nullptr, 16, nullptr, 16, channel, width, 1, nullptr, 0));
        }
    VxPlatform_SetDebugOutput(nullptr, nullptr);
    EXPECT_THAT(texts,
                testing::AllOf(testing::SizeIs(24), testing::Each("ChannelMap: invalid channel value")));
}

} // namespace
