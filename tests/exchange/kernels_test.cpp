// The published kernels and the row kernels against the model, over every type, depth and bit offset.
#include "record.h"
#include "support/forms.h"

namespace {

using namespace vxtest;

std::string Name(const Job& job)
{
    return std::to_string(job.record.sourceType) + " to " + std::to_string(job.record.destType) + " flags " +
           std::to_string(job.record.flags) + " depth " + std::to_string(job.record.depth);
}

// Every type with partners and flags that choose the row: 16 bits picked and interpolated, 8 bits, float.
template <class Check>
void ForEachJob(bool reading, const Check& check)
{
    Random random;
    for (int32_t type = VXPIXEL_PAL1; type <= VXPIXEL_RGBA128; ++type)
        for (const int32_t partner : {VXPIXEL_RGBA32, VXPIXEL_RGBA64, VXPIXEL_RGBA128})
            for (const uint32_t flags : {1u, 3u, 4u})
                for (const double gamma : {1.0, 2.2, 0.5}) {
                    if (gamma != 1.0 && ModelOf(type).kind != Kind::Float)
                        continue;
                    const Job job(reading ? partner : type, reading ? type : partner, flags, random, gamma);
                    for (int64_t start = 0; start < 8; start += ModelOf(type).bits) // in a byte
                        check(job, start, random);
                }
}

Channels RandomWorking(int32_t depth, Random& random)
{
    Channels pixel;
    for (double& c : pixel)
        c = depth == 2 ? random.Float(-1.0f, 2.0f) : double(random.Next() % (depth == 0 ? 256 : 65536));
    return pixel;
}

// At float depth the mix is made in float.
Channels FloatMixOf(const Channels (&p)[4], const tVXXCHG& x)
{
    Channels out;
    const float u = float(x.fractionX) / 16384.0f, v = float(x.fractionY) / 16384.0f;
    for (size_t c = 0; c < 4; ++c)
        out[c] = (1 - u) * (1 - v) * float(p[0][c]) + u * (1 - v) * float(p[1][c]) +
                 (1 - u) * v * float(p[2][c]) + u * v * float(p[3][c]);
    return out;
}

Channels LineOf(const Channels& top, const Channels& bottom, uint32_t fy, int32_t depth)
{
    Channels out;
    const float v = float(fy) / 16384.0f;
    for (size_t c = 0; c < 4; ++c)
        out[c] = depth == 2 ? v * float(bottom[c]) + (1 - v) * float(top[c])
                            : std::floor((top[c] * (16384.0 - fy) + bottom[c] * fy) / 16384.0);
    return out;
}

TEST(Exchange, InterpolatingReadsMixTheModelsPixels)
{
    ForEachJob(true, [](const Job& job, int64_t start, Random& random) {
        const int32_t bits = ModelOf(job.record.sourceType).bits, depth = job.record.depth;
        const auto pitch = size_t(start + 2 * bits + 7) / 8;
        const auto image = RandomPixels(job.record.sourceType, 2 * pitch, random);
        ModelJob exact = job.Reading();
        exact.exact = true;
        tVXXCHG x = job.record;
        x.source = image.data();
        x.sourceBit = uint32_t(start);
        x.rowOffset = int32_t(pitch);
        x.fractionX = random.Int(0, 3) ? uint32_t(random.Int(0, 16383)) : 0;
        x.fractionY = random.Int(0, 3) ? uint32_t(random.Int(0, 16383)) : 0;
        const uint8_t* const below = image.data() + pitch;
        const Channels block[] = {ModelRead(exact, image.data(), start),
                                  ModelRead(exact, image.data(), start + bits),
                                  ModelRead(exact, below, start), ModelRead(exact, below, start + bits)};
        x.readBlock(&x);
        for (size_t i = 0; i < 4; ++i)
            ASSERT_TRUE(Same(Slot(x, i), block[i])) << Name(job);
        if (!(x.flags & VXXCHGF_INTERPOLATE)) {
            ASSERT_TRUE(x.readFiltered == x.readPixel && x.readLine == x.readPixel &&
                        x.readReduce == x.readPixel)
                << Name(job);
            return;
        }
        Channels mixed = depth == 2 ? FloatMixOf(block, x) : MixOf(block, WeightsOf(x));
        if (ModelOf(x.sourceType).first[3] < 0)
            mixed[3] = block[0][3]; // opaque pixels stay opaque, whatever the weights lose
        x.readFiltered(&x);
        ASSERT_TRUE(Same(Slot(x, 0), mixed)) << Name(job) << ", bit " << start;
        x.readLine(&x);
        ASSERT_TRUE(Same(Slot(x, 0), LineOf(block[0], block[2], x.fractionY, depth)))
            << Name(job) << ", bit " << start;
        ASSERT_EQ(x.source, image.data()) << Name(job);
        const bool boxed = depth == 0 && x.sourceType == VXPIXEL_RGB24;
        ASSERT_EQ(x.readReduce != x.readFiltered, boxed) << Name(job);
    });
}

TEST(Exchange, BoxAverageTakesWholePixelsInsideTheBox)
{
    Random random;
    Job job(VXPIXEL_RGB24, VXPIXEL_RGB24, 3, random);
    constexpr int32_t kWidth = 9, kHeight = 7;
    const auto image = RandomPixels(VXPIXEL_RGB24, kWidth * kHeight * 3, random);
    for (int32_t round = 0; round < 2000; ++round) {
        tVXXCHG& x = job.record;
        x.source = image.data();
        x.rowOffset = kWidth;
        x.fractionX = uint32_t(random.Int(0, kWidth * 16384));
        x.fractionY = uint32_t(random.Int(0, kHeight * 16384));
        x.reduceWidth = uint32_t(random.Int(0, kWidth * 16384 - int32_t(x.fractionX)));
        x.reduceHeight = uint32_t(random.Int(0, kHeight * 16384 - int32_t(x.fractionY)));
        if (round % 3 == 0) // whole pixels, where the ends matter
            for (uint32_t* const place : {&x.fractionX, &x.fractionY, &x.reduceWidth, &x.reduceHeight})
                *place &= ~16383u;
        Channels sum{};
        int32_t count = 0;
        for (int32_t row = 0; row < kHeight; ++row)
            for (int32_t column = 0; column < kWidth; ++column) {
                const bool inside = column * 16384.0 >= x.fractionX &&
                                    (column + 1) * 16384.0 <= double(x.fractionX) + x.reduceWidth &&
                                    row * 16384.0 >= x.fractionY &&
                                    (row + 1) * 16384.0 <= double(x.fractionY) + x.reduceHeight;
                for (size_t c = 0; inside && c < 3; ++c)
                    sum[c] += image[size_t(row * kWidth + column) * 3 + c];
                count += inside;
            }
        for (size_t c = 0; c < 3; ++c)
            sum[c] = count ? std::floor(sum[c] / count) : 0.0;
        x.readReduce(&x);
        ASSERT_TRUE(Same(Slot(x, 0), sum)) << round;
    }
}

constexpr int32_t kCounts[] = {0, 1, 2, 3, 5, 7, 8, 9, 15, 16, 17, 31, 33, 63, 64, 65, 70, 127, 130, 256};

// Groups as long as four pixels are left, and single ones, by the published kernels: step(first, count).
template <class Step>
void InGroups(int32_t count, const Step& step)
{
    for (int32_t i = 0; i < count; i += count - i < 4 ? 1 : 4)
        step(i, count - i < 4 ? 1 : 4);
}

TEST(Exchange, PublishedReadsAndRunsAtEveryLevelGiveTheModel)
{
    ForEachJob(true, [](const Job& job, int64_t start, Random& random) {
        const int32_t bits = ModelOf(job.record.sourceType).bits, depth = job.record.depth;
        const int64_t skipped = start + 8 * random.Int(0, 3);
        for (const int32_t count : kCounts) {
            const int64_t end = skipped + int64_t(count) * bits;
            const auto row =
                RandomPixels(job.record.sourceType, size_t(std::max<int64_t>(end, 1) + 7) / 8, random);
            std::vector<Channels> want;
            for (int32_t i = 0; i < count; ++i)
                want.push_back(ModelRead(job.Reading(), row.data(), skipped + int64_t(i) * bits));
            tVXXCHG x = job.record;
            x.source = row.data() + skipped / 8;
            x.sourceBit = uint32_t(skipped % 8);
            InGroups(count, [&](int32_t first, int32_t group) {
                (group == 4 ? x.readQuad : x.readPixel)(&x);
                for (int32_t i = 0; i < group; ++i)
                    ASSERT_TRUE(Same(Slot(x, size_t(i)), want[size_t(first + i)]))
                        << Name(job) << ", pixel " << first + i;
            });
            ASSERT_EQ(static_cast<const uint8_t*>(x.source) - row.data(), end / 8) << Name(job);
            ASSERT_EQ(x.sourceBit, uint32_t(end % 8)) << Name(job);
            for (const VectorLevel& level : AllForms()) {
                const OnlyLevel only(level);
                vx::RunBuffer buffer;
                std::memset(buffer.bytes, 0xCD, sizeof(buffer.bytes));
                vx::SelectRuns(job.record).read(buffer.bytes, row.data(), skipped, count, job.record);
                for (int32_t i = 0; i < count; ++i)
                    ASSERT_TRUE(Same(RunPixel(buffer, depth, size_t(i)), want[size_t(i)]))
                        << Name(job) << ", bit " << skipped << ", pixel " << i << " of " << count << ", "
                        << level.name;
                for (size_t i = vx::WorkingPixelBytes(depth) * size_t(count); i < sizeof(buffer.bytes); ++i)
                    ASSERT_EQ(buffer.bytes[i], 0xCD) << Name(job) << ", count " << count;
            }
        }
    });
}

TEST(Exchange, PublishedWritesAndRunsAtEveryLevelGiveTheModelAndKeepTheRest)
{
    ForEachJob(false, [](const Job& job, int64_t start, Random& random) {
        const int32_t bits = ModelOf(job.record.destType).bits, depth = job.record.depth;
        const int64_t skipped = start + 8 * random.Int(0, 3);
        for (const int32_t count : kCounts) {
            const int64_t end = skipped + int64_t(count) * bits;
            const auto before = RandomBytes(size_t(end + 7) / 8 + 3, random);
            auto want = before, got = before;
            vx::RunBuffer buffer;
            for (int32_t i = 0; i < count; ++i) {
                const Channels pixel = RandomWorking(depth, random);
                StoreWorking(buffer.bytes, depth, vx::WorkingPixelBytes(depth), size_t(i), pixel);
                ModelWrite(job.Writing(), want.data(), skipped + int64_t(i) * bits, pixel);
            }
            tVXXCHG x = job.record;
            x.dest = got.data() + skipped / 8;
            x.destBit = uint32_t(skipped % 8);
            InGroups(count, [&](int32_t first, int32_t group) {
                for (int32_t i = 0; i < group; ++i)
                    PutSlot(x, size_t(i), RunPixel(buffer, depth, size_t(first + i)));
                (group == 4 ? x.writeQuad : x.writePixel)(&x);
            });
            ASSERT_EQ(got, want) << Name(job) << ", bit " << skipped << ", count " << count;
            ASSERT_EQ(static_cast<uint8_t*>(x.dest) - got.data(), end / 8) << Name(job);
            ASSERT_EQ(x.destBit, uint32_t(end % 8)) << Name(job);
            for (const VectorLevel& level : AllForms()) {
                const OnlyLevel only(level);
                got = before;
                vx::SelectRuns(job.record).write(got.data(), skipped, buffer.bytes, count, job.record);
                ASSERT_EQ(got, want) << Name(job) << ", bit " << skipped << ", count " << count << ", "
                                     << level.name;
            }
        }
    });
}

TEST(ExchangeRuns, SamplesAreThePublishedReadsAtTheirPositions)
{
    ForEachJob(true, [](const Job& job, int64_t start, Random& random) {
        const int32_t bits = ModelOf(job.record.sourceType).bits;
        const int32_t width = random.Int(1, 20), count = random.Int(1, 60);
        const auto pitch = size_t(start + width * bits + 7) / 8;
        const auto image = RandomPixels(job.record.sourceType, 2 * pitch, random);
        const vx::SampleRow from{image.data(),
                                 start,
                                 int32_t(pitch),
                                 uint32_t(random.Int(0, 16383)),
                                 random.Int(0, 16384),
                                 random.Int(0, 30000),
                                 width - 1};
        vx::RunBuffer buffer;
        vx::SelectRuns(job.record).sample(buffer.bytes, from, count, job.record);
        for (int64_t i = 0; i < count; ++i) {
            const int64_t position = from.position + i * from.step,
                          column = std::min(position >> 14, from.last);
            const int64_t bit = start + column * bits;
            tVXXCHG x = job.record;
            x.source = image.data() + bit / 8;
            x.sourceBit = uint32_t(bit % 8);
            x.rowOffset = from.rowOffset;
            x.fractionX = uint32_t(position & 16383);
            x.fractionY = from.fractionY;
            (column == from.last ? x.readLine : x.readFiltered)(&x);
            ASSERT_TRUE(Same(RunPixel(buffer, x.depth, size_t(i)), Slot(x, 0)))
                << Name(job) << ", pixel " << i << " of " << width;
        }
    });
}

} // namespace
