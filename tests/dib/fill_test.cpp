// VxDibSet, VxDibFillRect and VxDibFadeToColor against their slow models.
#include "support/copy_model.h"
#include "support/forms.h"

namespace {

using namespace vxtest;

constexpr float kColours[][4] = {{1.0f, 0.0f, 0.5f, 1.0f},
                                 {0.25f, 0.75f, 1.0f, 0.0f},
                                 {0.999f, 0.001f, 0.3f, 0.6f},
                                 {1.5f, -0.5f, 2.0f, 9.0f}};

RECT RandomRect(Random& random, int32_t first, int32_t last)
{
    const int32_t left = random.Int(first, last), top = random.Int(first, last);
    return {left, top, random.Int(left, last), random.Int(top, last)};
}

TEST(DibSet, EveryTypeInEveryRectangle)
{
    Random random;
    for (int32_t type = 16; type <= 32; ++type)
        for (int32_t round = 0; round < 60; ++round) {
            const uint32_t flags = uint32_t(random.Int(0, 4)) | (round % 4 ? 0 : 0x10u);
            const auto& colour = kColours[random.Int(0, 3)];
            const int32_t width = round % 10 ? random.Int(1, 40) : 530;
            const Picture before(type, width, random.Int(1, 9), kAllRows[round % 3], random);
            const RECT rect = round % 7 ? RandomRect(random, -4, round % 10 ? 44 : 540) : before.Whole();
            Picture want = before, got = before;
            ModelSet(want, rect, colour, flags);
            ASSERT_EQ(VxDibSet(got.Header(), got.Pixels(), round % 7 ? &rect : nullptr, got.Stride(),
                               colour[0], colour[1], colour[2], colour[3], flags),
                      S_OK);
            ASSERT_EQ(got, want) << "before " << before << "\nflags " << flags;
            // The same rectangle in sub-pixel coordinates, whose fractions do not count, and as an array.
            const auto units = [](int32_t c) { return c * 16384 + (c < 0 ? -16383 : 16383); };
            const RECT fine{units(rect.left), units(rect.top), units(rect.right), units(rect.bottom)};
            const float pixel[] = {colour[2], colour[1], colour[0], colour[3]};
            got = before;
            ASSERT_EQ(VxDibFillRect(got.Header(), got.Pixels(), &fine, got.Stride(), pixel,
                                    flags | VXDIBF_SUBPIXEL),
                      S_OK);
            ASSERT_EQ(got, want);
        }
}

TEST(DibSet, RefusesOtherTypesAndSingleChannels)
{
    Random random;
    Picture noColours(24, 3, 1, Rows::Tight, random);
    noColours.Header()->biClrUsed = 0;
    EXPECT_EQ(VxDibSet(noColours.Header(), noColours.Pixels(), nullptr, 0, 0, 0, 0, 0, 1), E_INVALIDARG);
    Picture yuv(64, 4, 2, Rows::Tight, random);
    const Picture before = yuv;
    EXPECT_EQ(VxDibSet(yuv.Header(), yuv.Pixels(), nullptr, 0, 1, 1, 1, 1, 0), E_NOTIMPL);
    EXPECT_EQ(VxDibFadeToColor(yuv.Header(), yuv.Pixels(), nullptr, 0, kColours[0], 1.0f, 0, 0), E_NOTIMPL);
    EXPECT_EQ(VxDibFillRectChannel(yuv.Header(), yuv.Pixels(), nullptr, 0, kColours[0], 0), E_NOTIMPL);
    EXPECT_EQ(VxDibFillRectChannel(nullptr, nullptr, nullptr, 0, nullptr, 0), E_NOTIMPL);
    EXPECT_EQ(yuv, before);
}

class DibFade : public testing::TestWithParam<int32_t>
{};

TEST_P(DibFade, EveryRectangleAndAmountInEveryForm)
{
    Random random;
    constexpr float kAmounts[] = {0.0f, 1.0f, 0.5f, 0.2f, 1e-5f, -2.0f, 7.0f, NAN};
    for (int32_t round = 0; round < 400; ++round) {
        const bool subpixel = round % 2, keepAlpha = round % 3 == 0;
        const int32_t width = random.Int(1, 40), height = random.Int(1, 6);
        const Picture before(GetParam(), width, height, kAllRows[round % 3], random);
        const int32_t unit = subpixel ? 16384 : 1;
        const RECT rect = round % 10 ? RandomRect(random, -2 * unit, 40 * unit) : before.Whole();
        const RECT fine =
            subpixel ? rect
                     : RECT{rect.left * 16384, rect.top * 16384, rect.right * 16384, rect.bottom * 16384};
        const float amount = kAmounts[random.Int(0, 7)];
        const auto& colour = kColours[random.Int(0, 3)];
        Picture want = before;
        ModelFade(want, fine, colour, amount, keepAlpha);
        for (const VectorLevel& form : AllForms()) {
            const OnlyLevel only(form);
            Picture got = before;
            ASSERT_EQ(VxDibFadeToColor(got.Header(), got.Pixels(), &rect, got.Stride(), colour, amount,
                                       keepAlpha, subpixel ? VXDIBF_SUBPIXEL : 0),
                      S_OK);
            ASSERT_EQ(got, want) << form.name << ", amount " << amount << ", rectangle " << rect.left << ", "
                                 << rect.top << ", " << rect.right << ", " << rect.bottom << "\n"
                                 << before;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Types, DibFade, testing::Values(28, 29, 32));

// Every byte towards every byte by every amount: the vector form takes another road to the same rule.
TEST(DibFade, EveryByte)
{
    Random random;
    Picture before(29, 256, 1, Rows::Tight, random);
    for (int32_t i = 0; i < 1024; ++i)
        before.Row(0)[i] = uint8_t(i / 4);
    for (int32_t byte = 0; byte < 256; ++byte)
        for (int32_t a = 0; a < 256; ++a) {
            const float to = (float(byte) + 0.5f) / 255.0f, amount = (float(a) + 0.5f) / 255.0f;
            const float colour[] = {to, to, to, to};
            Picture plain = before, vector = before;
            VxDibFadeToColor(vector.Header(), vector.Pixels(), nullptr, 0, colour, amount, 0, 0);
            const OnlyLevel only(kPlain);
            VxDibFadeToColor(plain.Header(), plain.Pixels(), nullptr, 0, colour, amount, 0, 0);
            ASSERT_EQ(vector, plain) << "towards " << byte << " by " << a;
        }
}

} // namespace
