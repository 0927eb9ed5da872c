#include "record.h"

#include <gtest/gtest.h>

namespace {

using namespace vxtest;

constexpr struct
{
    const char* name;
    int32_t dest, source;
    uint32_t flags;
    int32_t wantDepth;
    uint32_t wantFlags;
} kSelectCases[] = {
    {"quality 1 picks at 8 bits", 29, 29, 1, VXXCHG_DEPTH_8, 0x180},
    {"quality 2 fades exactly", 27, 24, 2, VXXCHG_DEPTH_8, 0x1C0},
    {"quality 4 is 16 bits", 29, 29, 4, VXXCHG_DEPTH_16, 0x1F0},
    {"quality 5 keeps the word and adds nothing", 29, 29, 0xF8000005, VXXCHG_DEPTH_8, 0xF8000005},
    {"the level's bits and the top bits are dropped", 29, 29, 0xFFFFF00F & ~0xEu, VXXCHG_DEPTH_8, 0x7FFF180},
    {"bits 9 to 11 are dropped", 29, 29, 0xE01, VXXCHG_DEPTH_8, 0x180},
    {"float to float", 32, 32, 1, VXXCHG_DEPTH_FLOAT, 0x180},
    {"float to float by 16 bits", 32, 32, 0x11, VXXCHG_DEPTH_16, 0x190},
    {"bytes to float", 32, 29, 3, VXXCHG_DEPTH_16, 0x1F0},
    {"gray float is no float pair", 22, 22, 1, VXXCHG_DEPTH_16, 0x190},
};

TEST(ExchangeSelect, QualityAndTypesChooseDepthAndFlags)
{
    for (const auto& c : kSelectCases) {
        tVXXCHG x;
        ASSERT_EQ(VxXCHGGetFunctionPointers(c.dest, c.source, c.flags, &x, nullptr, 0, 0), S_OK) << c.name;
        EXPECT_EQ(x.depth, c.wantDepth) << c.name;
        EXPECT_EQ(x.flags, c.wantFlags) << c.name;
        EXPECT_EQ(x.edgeWidth, c.wantFlags >> 16 & 255) << c.name;
        EXPECT_TRUE(x.destType == c.dest && x.sourceType == c.source) << c.name;
        EXPECT_TRUE(x.readPixel && x.writePixel && x.readFiltered && x.readBlock && x.readQuad &&
                    x.writeQuad && x.readLine && x.readReduce)
            << c.name;
        EXPECT_FALSE(x.opPixel || x.opQuad || x.opMark || x.opMarkQuad) << c.name;
    }
}

TEST(ExchangeSelect, RefusalsLeaveAZeroedRecord)
{
    const tVXXCHG zeros{};
    for (const int32_t bad : {15, 33, 0, -1, 64, INT32_MIN})
        for (const bool atDest : {false, true}) {
            tVXXCHG x;
            std::memset(static_cast<void*>(&x), 0xCD, sizeof(x));
            EXPECT_EQ(VxXCHGGetFunctionPointers(atDest ? bad : 29, atDest ? 29 : bad, 3, &x, nullptr, 0, 0),
                      E_INVALIDARG);
            EXPECT_EQ(std::memcmp(&x, &zeros, sizeof(x)), 0) << bad;
        }
    VxXchgOperation unknown{};
    unknown.number = VXXCHG_OP_COUNT;
    tVXXCHG x;
    EXPECT_EQ(VxXCHGGetFunctionPointers(29, 29, 3, &x, &unknown, 0, 0), E_NOTIMPL);
}

TEST(ExchangeSelect, TheFloatSideGetsTheCurve)
{
    struct
    {
        int32_t dest, source;
        double destGamma, sourceGamma;
        float wantDest, wantSource; // exponents
    } const cases[] = {
        {32, 29, 1.0, 8.0, 4.0f, 1.0f},   {32, 29, 1.0, 0.1, 0.5f, 1.0f},
        {22, 20, 4.0, 0.5, 0.125f, 1.0f}, {29, 32, 1.0, 2.0, 1.0f, 2.0f},
        {32, 22, 2.0, 1.0, 1.0f, 0.5f},   {32, 29, 1.0, 0.0, float(1 / 0.45), 1.0f},
        {32, 29, -3.0, 1.0, 2.0f, 1.0f},
    };
    for (const auto& c : cases) {
        tVXXCHG x;
        VxXCHGGetFunctionPointers(c.dest, c.source, 1, &x, nullptr, c.destGamma, c.sourceGamma);
        EXPECT_EQ(x.destCurve.exponent, c.wantDest) << c.source << " to " << c.dest;
        EXPECT_EQ(x.sourceCurve.exponent, c.wantSource) << c.source << " to " << c.dest;
    }
}

} // namespace
