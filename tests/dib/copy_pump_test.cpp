// Every pump of VxDibCopy against the slow model, on random pictures, rectangles and flags.
#include "support/copy_model.h"
#include "support/forms.h"
#include "vx/scale.h"

#include <gtest/gtest.h>
#include <map>

namespace {

using namespace vxtest;

constexpr int32_t kTypes = 17;

// Levels of quality that the exchange knows, and two that keep the word as it is: with and without bits
// of its own.
constexpr uint32_t kQualities[] = {1, 2, 3, 4, 0, 5, 0 | 0x20, 7 | 0x60};

RECT RandomRect(Random& random, const Picture& p, int32_t outside, int32_t unit)
{
    const auto side = [&](int32_t size) {
        const int32_t first = random.Int(-outside * unit, size * unit - 1);
        return std::pair(first, random.Int(first + 1, (size + outside) * unit));
    };
    const auto [left, right] = side(p.Width());
    const auto [top, bottom] = side(p.Height());
    return {left, top, right, bottom};
}

double RandomGamma(Random& random)
{
    constexpr double kGammas[] = {0.0, 1.0, 2.2, 0.1, 9.0};
    return kGammas[random.Int(0, 4)];
}

CopyArguments RandomArguments(Random& random, const Picture& dest, const Picture& source)
{
    CopyArguments a;
    a.flags = kQualities[random.Int(0, 7)];
    a.destGamma = RandomGamma(random);
    a.sourceGamma = RandomGamma(random);
    const int32_t outside = random.Int(0, 1) * 5;
    if (random.Int(0, 3))
        a.destRect = RandomRect(random, dest, outside, 1);
    if (random.Int(0, 3))
        a.sourceRect = RandomRect(random, source, outside, 1);
    return a;
}

// Runs library and model on equal pictures. Where the scaling functions have the work there is nothing to
// compare with.
void ExpectModel(const Picture& dest, const Picture& source, const CopyArguments& a)
{
    Picture want = dest, got = dest;
    if (!ModelCopy(want, source, a))
        return;
    Copy(got, source, a);
    ASSERT_EQ(got, want) << "over " << dest << "\nfrom " << source << a;
}

// Every pair of types at equal size, scaled and clipped, with soft edges, and between pixels.
TEST(DibCopy, EveryPairOfTypesByEveryPump)
{
    for (int32_t i = 0; i < kTypes * kTypes * 40; ++i) {
        Random random{uint64_t(i)};
        const int32_t most = i % 4 == 0 ? 24 : 12;
        const auto picture = [&](int32_t type) {
            return Picture(type, random.Int(1, most), random.Int(1, most), kAllRows[random.Int(0, 2)],
                           random);
        };
        const int32_t pair = i / 40;
        const Picture dest = picture(16 + pair / kTypes), source = picture(16 + pair % kTypes);
        CopyArguments a = RandomArguments(random, dest, source);
        if (i % 4 == 0) {
            const int32_t width = random.Int(1, std::min(dest.Width(), source.Width()));
            const int32_t height = random.Int(1, std::min(dest.Height(), source.Height()));
            const auto inside = [&](const Picture& p) {
                const int32_t left = random.Int(0, p.Width() - width),
                              top = random.Int(0, p.Height() - height);
                return RECT{left, top, left + width, top + height};
            };
            a.destRect = inside(dest);
            a.sourceRect = inside(source);
        } else if (i % 4 == 1) {
            a.flags |= VXDIBF_SUBPIXEL | (random.Int(0, 3) == 0 ? VXDIBF_NOEDGEBLEND : 0);
            if (random.Int(0, 7))
                a.destRect = RandomRect(random, dest, random.Int(0, 2), 16384);
            if (random.Int(0, 2))
                a.sourceRect = RandomRect(random, source, random.Int(0, 2), 16384);
        }
        if (i % 5 < 2) {
            const int32_t width = random.Int(0, random.Int(0, 1) ? 5 : 255);
            a.flags |= uint32_t(random.Int(1, 15)) << 12 | uint32_t(width) << 16;
        }
        ExpectModel(dest, source, a);
        if (HasFatalFailure())
            return;
    }
}

// Rows that are long enough for whole vectors, from a byte on and from within one.
TEST(DibCopy, EveryPairOfTypesInEveryForm)
{
    for (const VectorLevel& level : VectorLevels()) {
        const OnlyLevel only(level);
        for (int32_t i = 0; i < kTypes * kTypes * 4; ++i) {
            Random random{uint64_t(i)};
            const int32_t width = random.Int(16, 90), left = i % 4 == 3 ? 3 : 8 * (i % 2), pair = i / 4;
            const Picture dest(16 + pair / kTypes, width + left, 2, Rows::Tight, random);
            const Picture source(16 + pair % kTypes, width, 2, Rows::Negative, random);
            ExpectModel(dest, source, {RECT{left, 0, left + width, 2}, {}, i % 4 < 2 ? 1u : 4u});
            ASSERT_FALSE(HasFatalFailure()) << level.name;
        }
    }
}

// From as many bytes as make a table worth its while, with a rest in each row and without, from a byte on and not.
TEST(DibCopy, NarrowSourcesInEveryForm)
{
    for (const VectorLevel& level : AllForms()) {
        const OnlyLevel only(level);
        for (const auto& [type, inByte] :
             std::map<int32_t, int32_t>{{16, 8}, {18, 4}, {19, 2}, {23, 2}, {24, 1}})
            for (int32_t i = 0; i < 2 * kTypes; ++i) {
                Random random{uint64_t(type * kTypes + i)};
                const int32_t left = i % 3 == 2 ? 3 : 0;
                const int32_t width = inByte * 704 + i / 2 % 2 * random.Int(1, 70);
                const RECT rect{left, 0, left + width, 6};
                const Picture source(type, left + width, 6, Rows::Tight, random);
                ExpectModel(Picture(16 + i % kTypes, left + width, 6, Rows::Tight, random), source,
                            {rect, rect, kQualities[random.Int(0, 7)]});
                ASSERT_FALSE(HasFatalFailure()) << level.name;
            }
    }
}

// One pixel more than a run of the pumps, and a rest.
TEST(DibCopy, RowsOfSeveralRuns)
{
    Random random;
    for (const int32_t type : {16, 19, 24, 26, 27, 31}) {
        const Picture source(type, 600, 3, Rows::Wide, random);
        const Picture dest(23, 523, 4, Rows::Negative, random);
        for (const uint32_t feather : {0u, 0x4F000u, 0x80C000u})
            ExpectModel(dest, source, {{}, {}, 3 | feather});
        ExpectModel(dest, source, {RECT{3000, 5000, 8500000, 60000}, {}, 3 | VXDIBF_SUBPIXEL});
        // One pixel of source, across two columns.
        ExpectModel(dest, source,
                    {RECT{8192, 0, 40960, 60000}, RECT{100, 0, 16484, 40000}, 3 | VXDIBF_SUBPIXEL});
        ExpectModel(dest, source, {RECT{1, 0, 518, 3}, RECT{3, 0, 520, 3}, 1});
    }
}

// The pairs of the scaling functions go there: enlarging blends neighbours, whatever the pump.
TEST(DibCopy, ScalablePairsAreScaledByTheScalingFunctions)
{
    Random random;
    const RECT between{8192, 8192, 5 * 16384 + 8192, 3 * 16384};
    for (const auto& [to, from] : {std::pair(28, 28), {28, 29}, {29, 28}, {32, 32}}) {
        const Picture source(from, 4, 3, Rows::Tight, random), dest(to, 6, 5, Rows::Wide, random);
        for (const uint32_t flags : {3u, 3u | VXDIBF_BICUBIC, 4u | VXDIBF_AREA}) {
            const SIZE destSize{6, 5}, sourceSize{4, 3};
            const int32_t bytes = to == 32 ? 16 : 4;
            const bool cubic = (flags & VXDIBF_BICUBIC) != 0, area = (flags & VXDIBF_AREA) != 0;
            for (const bool subpixel : {false, true}) {
                Picture want = dest, got = dest;
                const auto scale = subpixel
                                       ? (cubic ? VxDibScale_BiCubicSubPixel : VxDibScale_BilinearSubPixel)
                                       : (cubic ? VxDibScale_BiCubic : VxDibScale_Bilinear);
                scale(want.Row(4), &destSize, -want.Stride(), subpixel ? &between : nullptr, source.Row(2),
                      &sourceSize, -source.Stride(), nullptr, bytes, area, false);
                CopyArguments a{{}, {}, flags | (subpixel ? VXDIBF_SUBPIXEL : 0)};
                if (subpixel)
                    a.destRect = between;
                ASSERT_EQ(Copy(got, source, a), S_OK);
                ASSERT_EQ(got, want) << a;
                ASSERT_FALSE(got == dest);
            }
        }
    }
}

} // namespace
