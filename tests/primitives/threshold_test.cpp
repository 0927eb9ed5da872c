#include "vx/channels.h"

#include "support/forms.h"

namespace {

using namespace vxtest;

struct StepCase
{
    double low, high;
    float x, want;
};

const StepCase kStepCases[] = {
    {0.5, 0.5, 0.49f, 0.0f},
    {0.5, 0.5, 0.5f, 1.0f},
    {0.5, 0.5, 7.0f, 7.0f},
    {0.0, 1.0, 1.0f, 1.0f},
    {0.0, 1.0, 2.0f, 2.0f},
    {0.0, 1.0, 0.25f, 0.25f},
    {0.25, 0.75, 0.5f, 0.5f},
    {0.25, 0.75, 0.25f, 0.0f},
    {0.0, 1.0, 0.99999f, 1.0f},
    {0.0, 1.0, 0.99998f, 0.99998f},
    {0.0, 1.0, -0.1f, 0.0f},
    {0.0, 2.0, 1.5f, 0.75f},
    {0.0, 1.0, INFINITY, INFINITY},
    {0.0, 1.0, -INFINITY, 0.0f},
    {1.0, 0.0, 0.5f, 0.0f},
    {1.0, 0.0, 1.0f, 1.0f},
    {0.0, 0.00005, 0.00002f, 1.0f * (0.00002f * 10000.0f)},
    {NAN, 1.0, 0.5f, NAN},
    {0.5, NAN, 0.75f, 2500.0f},
    {0.0, INFINITY, 5.0f, 0.0f},
};

TEST(ThresholdFloat, Table)
{
    for (const StepCase& c : kStepCases) {
        float pixel[4] = {c.x, c.x, c.x, c.x};
        EXPECT_TRUE(ThresholdFloat(pixel, 16, 1, 1, c.low, c.high));
        for (const float got : pixel)
            EXPECT_TRUE(std::isnan(c.want) ? std::isnan(got) : got == c.want)
                << c.low << " to " << c.high << " at " << c.x << " gives " << got;
    }
}

// The step by its cases, in the order in which they are asked.
float StepOf(float x, double low, double high)
{
    double range = high - low;
    if (!(range > 0.0001))
        range = 0.0001;
    const float lo = float(low), hi = float(high) - 0.00001f, gain = float(1.0 / range);
    if (lo > x)
        return 0.0f;
    if (std::isnan(x) || std::isnan(hi) || x < hi)
        return (x - lo) * gain;
    return std::fmax(x, 1.0f);
}

TEST(ThresholdFloat, EveryForm)
{
    for (const auto& [low, high] :
         {std::pair(0.1, 0.9), std::pair(0.5, 0.5), std::pair(-1.0, 3.0), std::pair(0.8, 0.2),
          std::pair(double(NAN), 1.0), std::pair(0.0, double(NAN))})
        ExpectPixelByPixel(
            16, [](Frame& f, Random& random) { FillHardFloats(f, random, -0.5f, 1.5f, Nans::Any); },
            [low = low, high = high](Frame& f) {
                return ThresholdFloat(f.Data(), f.Stride(), f.Width(), f.Height(), low, high);
            },
            [low = low, high = high](uint8_t* pixel) {
                for (int c = 0; c < 4; ++c)
                    SetFloat(pixel, c, StepOf(GetFloat(pixel, c), low, high));
            });
}

struct ClearCase
{
    float threshold;
    int first; // byte that stays
};

TEST(ThresholdClear, BytesBelowTheThresholdsLowByte)
{
    for (const ClearCase c : {ClearCase{0.0f, 0},
                              {0.5f, 128},
                              {1.0f, 255},
                              {1.005f, 0},
                              {1.5f, 127},
                              {-0.01f, 254},
                              {-0.001f, 0},
                              {NAN, 0},
                              {INFINITY, 0},
                              {1e20f, 0}})
        ExpectPixelByPixel(
            4, LeaveRandom,
            [&](Frame& f) {
                return ThresholdClear(f.Data(), f.Stride(), 4, f.Width(), f.Height(), c.threshold);
            },
            [&](uint8_t* pixel) {
                for (int i = 0; i < 4; ++i)
                    pixel[i] = pixel[i] >= c.first ? pixel[i] : 0;
            });
}

TEST(ThresholdClear, FloatsBelowTheThreshold)
{
    for (const float threshold : {0.0f, 0.5f, -1.0f, NAN, INFINITY, -INFINITY})
        ExpectPixelByPixel(
            16, [](Frame& f, Random& random) { FillHardFloats(f, random, -0.5f, 1.5f, Nans::Any); },
            [&](Frame& f) {
                return ThresholdClear(f.Data(), f.Stride(), 16, f.Width(), f.Height(), threshold);
            },
            [&](uint8_t* pixel) {
                for (int c = 0; c < 4; ++c)
                    if (GetFloat(pixel, c) < threshold)
                        std::memset(pixel + 4 * c, 0, 4);
            });
}

struct ClipCase
{
    const char* name;
    double limit, floor;
    float pixel[4], want[4];
};

const ClipCase kClipCases[] = {
    {"over the limit drops to the alpha", 1.0, 0.0, {300, 10, 10, 100}, {100, 10, 10, 100}},
    {"the limit itself stays", 1.0, 0.0, {255, 256, -5, 100}, {255, 100, -5, 100}},
    {"the floor holds", 0.5, 0.25, {200, 127, 128, 10}, {63.75f, 127, 63.75f, 10}},
    {"the alpha is no colour", 0.5, 0.0, {1, 2, 3, 250}, {1, 2, 3, 250}},
    {"the alpha may raise", 0.1, 0.0, {30, 20, 30, 250}, {250, 20, 250, 250}},
};

TEST(ClipRestore, Table)
{
    for (const ClipCase& c : kClipCases) {
        float pixel[4];
        std::copy(c.pixel, c.pixel + 4, pixel);
        EXPECT_TRUE(ClipRestore(pixel, 16, 1, 1, c.limit, c.floor));
        EXPECT_TRUE(std::equal(pixel, pixel + 4, c.want)) << c.name;
    }
}

TEST(ClipRestore, EveryForm)
{
    for (const auto& [limit, floor] : {std::pair(0.7, 0.3), std::pair(-0.1, 2.0), std::pair(double(NAN), 0.5),
                                       std::pair(0.5, double(NAN)), std::pair(double(INFINITY), 0.0)})
        ExpectPixelByPixel(
            16, [](Frame& f, Random& random) { FillHardFloats(f, random, -20.0f, 300.0f, Nans::Any); },
            [limit = limit, floor = floor](Frame& f) {
                return ClipRestore(f.Data(), f.Stride(), f.Width(), f.Height(), limit, floor);
            },
            [limit = limit, floor = floor](uint8_t* pixel) {
                const float least = float(floor * 255.0), alpha = GetFloat(pixel, 3);
                for (int c = 0; c < 3; ++c)
                    if (GetFloat(pixel, c) > float(limit * 255.0))
                        SetFloat(pixel, c, least > alpha ? least : alpha);
            });
}

} // namespace
