#include "dib/curves.h"
#include "support/random.h"
#include "vx/platform/memory.h"
#include "vx/platform/testing.h"

#include <gtest/gtest.h>

namespace {

using namespace vxtest;

constexpr float kExponents[] = {0.125f, 0.3f, 0.45f, 0.9f, 1.0f, 1.1f, 1.0f / 0.45f, 3.0f, 8.0f};

class Curve
{
public:
    explicit Curve(float exponent) { vx::SetUpCurve(curve_, exponent); }
    ~Curve() { vx::FreeCurve(curve_); }
    Curve(const Curve&) = delete;
    Curve& operator=(const Curve&) = delete;
    VxTransferCurve& operator*() { return curve_; }
    VxTransferCurve* operator->() { return &curve_; }
    float At(float x) const { return vx::EvaluateCurve(curve_, x); }

private:
    VxTransferCurve curve_{};
};

// The same curve in double, with the constants as they are stored.
double InDouble(double g, double x)
{
    const double r = 1.0 / g, sign = x < 0 ? -1.0 : 1.0, v = std::abs(x);
    const double knee = double(0.038183767f) * std::pow(r, double(-0.9418052f));
    const double slope = std::pow(r, double(1.8836104f));
    if (g == 1.0)
        return x;
    if (v < knee)
        return x * slope;
    const double p = g < 1.0 ? std::pow(knee, g) : std::pow(slope * knee, r);
    const double offset = g < 1.0 ? (slope * knee - p) / (p - 1.0) : (knee - p) / (p - 1.0);
    return sign *
           (g < 1.0 ? std::pow(v, g) * (offset + 1.0) - offset : std::pow((v + offset) / (1.0 + offset), g));
}

TEST(Curves, FollowDoubleArithmeticAndAreOdd)
{
    for (const float g : kExponents) {
        const Curve curve(g);
        for (int32_t i = -3000; i <= 3000; ++i) {
            const float x = float(i) / 2000.0f;
            const double want = InDouble(double(g), double(x));
            // Roundings of the offset weigh most where the power is large.
            ASSERT_NEAR(double(curve.At(x)), want, 2e-6 * std::max(1.0, std::abs(want) * double(g)))
                << g << " at " << x;
            ASSERT_EQ(curve.At(-x), -curve.At(x)) << g << " at " << x;
        }
        EXPECT_TRUE(std::isnan(curve.At(NAN))) << g;
    }
}

TEST(Curves, TheBroadcastExponentHasItsPublishedShape)
{
    Curve encoding(0.45f), decoding(1.0f / 0.45f), identity(1.0f);
    EXPECT_NEAR(encoding->knee, 0.018, 1e-6);
    EXPECT_NEAR(encoding->slope, 4.5, 1e-5);
    EXPECT_NEAR(encoding->offset, 0.099, 5e-4);
    EXPECT_NEAR(decoding->knee, 0.081, 1e-5);
    EXPECT_NEAR(decoding->scale, 1.0 / 1.099, 5e-4);
    EXPECT_TRUE(encoding->encoding == 1 && encoding->scale == 1.0f && decoding->encoding == 0);
    EXPECT_TRUE(identity->encoding == 1 && identity->knee == 100.0f && identity->slope == 1.0f &&
                identity->offset == 0.0f);
}

TEST(Curves, LookUpsFollowTheCurveWithinAStep)
{
    Random random;
    for (const float g : {0.45f, 1.0f, 2.2f}) {
        Curve floats(g), bytes(g);
        vx::BuildFloatTable(*floats, 2048);
        vx::BuildByteTable(*bytes, 4096);
        ASSERT_EQ(floats->tableLast, 2047);
        for (int32_t i = 0; i <= 2047; ++i)
            ASSERT_EQ(vx::LookUpFloat(*floats, float(i) / 2047.0f), floats.At(float(i) / 2047.0f)) << i;
        for (int32_t i = 0; i < 20000; ++i) {
            const float x = float(random.Unit());
            const float low = std::floor(x * 2047.0f) / 2047.0f, high = low + 1.0f / 2047.0f;
            const float y = vx::LookUpFloat(*floats, x);
            ASSERT_TRUE(y >= floats.At(low) - 1e-6f && y <= floats.At(high) + 1e-6f) << g << " at " << x;
            const int32_t entry = int32_t(std::floor(double(x * 4095.0f) + 0.5));
            const double want = double(bytes.At(float(entry) / 4095.0f) * 255.0f);
            ASSERT_NEAR(vx::LookUpByte(*bytes, x), want, 0.5000001) << g << " at " << x;
        }
        EXPECT_EQ(vx::LookUpFloat(*floats, NAN), 0.0f);
        EXPECT_EQ(vx::LookUpFloat(*floats, 1.5f), floats.At(1.5f));
        EXPECT_EQ(vx::LookUpFloat(*floats, -0.5f), floats.At(-0.5f));
        for (const float x : {NAN, -1.0f, -INFINITY, 0.0f})
            EXPECT_EQ(vx::LookUpByte(*bytes, x), 0) << x;
        for (const float x : {1.0f, 1.5f, INFINITY})
            EXPECT_EQ(vx::LookUpByte(*bytes, x), 255) << x;
    }
}

// Halves of the table's index go up, of its entries too.
TEST(Curves, ByteTableRoundsHalvesUp)
{
    Curve curve(1.0f);
    vx::BuildByteTable(*curve, 511); // entry i is i / 2 of 255
    for (int32_t i = 0; i <= 510; ++i)
        ASSERT_EQ(curve->byteTable[i], (i + 1) / 2) << i;
    EXPECT_EQ(vx::LookUpByte(*curve, 0.5f / 510.0f), curve->byteTable[1]);
}

TEST(Curves, ATableWithoutMemoryIsMissingAndTheRestStands)
{
    Curve curve(0.45f);
    VxPlatform_FailAllocationAt(1);
    vx::BuildFloatTable(*curve, 256);
    EXPECT_EQ(curve->floatTable, nullptr);
    VxPlatform_FailAllocationAt(1);
    vx::BuildByteTable(*curve, 256);
    EXPECT_EQ(curve->byteTable, nullptr);
    EXPECT_EQ(curve->tableLast, 0);
    EXPECT_NEAR(curve.At(0.01f), 0.045, 1e-6);
    vx::BuildFloatTable(*curve, 256);
    const float* const table = curve->floatTable;
    ASSERT_NE(table, nullptr);
    vx::SetUpCurve(*curve, 2.0f); // frees the table
    EXPECT_EQ(curve->floatTable, nullptr);
    EXPECT_EQ(GlobalHandle(table), nullptr);
}

} // namespace
