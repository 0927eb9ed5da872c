// The direct paths of VxDibCopy in every form, with every curve and quality.
#include "support/copy_model.h"
#include "support/forms.h"

namespace {

using namespace vxtest;

struct Pair
{
    int32_t dest, source;
};
constexpr Pair kDirect[] = {{28, 32}, {29, 32}, {27, 32}, {32, 32}, {32, 28}, {32, 29}, {32, 27}, {28, 27},
                            {29, 27}, {21, 21}, {22, 22}, {25, 25}, {27, 27}, {29, 29}, {31, 31}};

// Gammas of no curve, of an encoding, a decoding, and the two extremes.
constexpr std::pair<double, double> kGammas[] = {{0.0, 0.0}, {0.0, 1.0}, {1.0, 2.2}, {0.5, 4.0}, {4.0, 0.5}};

TEST(DirectCopy, EveryWidthInEveryForm)
{
    Random random;
    for (const Pair& pair : kDirect)
        for (int32_t width = 1; width <= 70; ++width) {
            const Rows rows = kAllRows[width % 3];
            const Picture source(pair.source, width, 6, rows, random, true),
                dest(pair.dest, width, 6, rows, random);
            for (const auto& [destGamma, sourceGamma] : kGammas)
                for (const uint32_t quality : {2u, 3u}) {
                    const CopyArguments a{{}, {}, quality, destGamma, sourceGamma};
                    Picture want = dest;
                    ASSERT_TRUE(ModelCopy(want, source, a));
                    for (const VectorLevel& form : AllForms()) {
                        const OnlyLevel only(form);
                        Picture got = dest;
                        ASSERT_EQ(Copy(got, source, a), S_OK);
                        ASSERT_TRUE(pair.dest == 32 ? Difference(got, want) == 0.0 : got == want)
                            << form.name << ": " << got << "\nwanted " << want << "\nfrom " << source << a;
                    }
                }
        }
}

// Each float about each step of 8 bits, in every form: levels may not be one off where a product rounds.
TEST(DirectCopy, LevelsAreCutExactly)
{
    Random random;
    constexpr int32_t kNear = 8;
    Picture source(32, 256 * (2 * kNear + 1), 4, Rows::Tight, random);
    for (int32_t y = 0; y < 4; ++y)
        for (int32_t level = 0; level < 256; ++level)
            for (int32_t k = -kNear; k <= kNear; ++k) {
                const float step = float(level / 255.0);
                uint32_t bits;
                std::memcpy(&bits, &step, 4);
                bits = uint32_t(std::max<int64_t>(int64_t(bits) + k, 0));
                for (int32_t c = 0; c < 4; ++c)
                    std::memcpy(source.Row(y) + 16 * (level * (2 * kNear + 1) + k + kNear) + 4 * c, &bits, 4);
            }
    for (const int32_t type : {27, 29}) {
        const Picture dest(type, source.Width(), 4, Rows::Tight, random);
        for (const uint32_t quality : {1u, 3u}) {
            Picture want = dest;
            ModelCopy(want, source, {{}, {}, quality});
            for (const VectorLevel& form : AllForms()) {
                const OnlyLevel only(form);
                Picture got = dest;
                Copy(got, source, {{}, {}, quality});
                ASSERT_EQ(got, want) << form.name << ", type " << type << ", quality " << quality;
            }
        }
    }
}

// A picture large enough to be shared among threads gives what its bands give, which are not. Bands of
// whole periods of the dither.
TEST(DirectCopy, ThreadsDoNotShow)
{
    Random random;
    constexpr int32_t kWidth = 1021, kHeight = 520, kBand = 52;
    for (const Pair& pair : {Pair{29, 32}, {27, 32}, {32, 29}, {32, 32}, {28, 27}, {31, 31}}) {
        const Picture source(pair.source, kWidth, kHeight, Rows::Wide, random);
        const Picture dest(pair.dest, kWidth, kHeight, Rows::Negative, random);
        for (const auto& [destGamma, sourceGamma] : {std::pair(0.0, 0.0), {1.0, 2.2}}) {
            Picture whole = dest, bands = dest;
            Copy(whole, source, {{}, {}, 3, destGamma, sourceGamma});
            for (int32_t bottom = kHeight; bottom > 0; bottom -= kBand) {
                const RECT band{0, bottom - kBand, kWidth, bottom};
                Copy(bands, source, {band, band, 3, destGamma, sourceGamma});
            }
            ASSERT_EQ(whole, bands);
        }
    }
}

} // namespace
