// The published kernels and the row kernels against the model, over every type, depth and bit offset.
#include "record.h"
#include "support/vector_levels.h"

#include <gtest/gtest.h>

namespace {

using namespace vxtest;

std::string Name(const Job& job)
{
    return std::to_string(job.record.sourceType) + " to " + std::to_string(job.record.destType) + " flags " +
           std::to_string(job.record.flags) + " depth " + std::to_string(job.record.depth);
}

// Bits at which a pixel of a type may begin in a byte.
std::vector<int64_t> StartBits(int32_t bits)
{
    std::vector<int64_t> starts;
    for (int64_t bit = 0; bit < 8; bit += bits)
        starts.push_back(bit);
    return starts;
}

constexpr double kGammas[] = {1.0, 2.2, 0.5};

template <class Check>
void ForEachJob(bool reading, const Check& check)
{
    Random random;
    for (const RowCase& c : AllRowCases())
        for (const double gamma : kGammas) {
            const Job job(reading ? c.partner : c.type, reading ? c.type : c.partner, c.flags, random, gamma);
            if (gamma == 1.0 || ModelOf(c.type).kind == Kind::Float)
                for (const int64_t start : StartBits(ModelOf(c.type).bits))
                    check(job, start, random);
        }
}

TEST(Exchange, SinglePixelsAndGroupsReadAsTheModel)
{
    ForEachJob(true, [](const Job& job, int64_t start, Random& random) {
        const int32_t bits = ModelOf(job.record.sourceType).bits;
        const auto row = RandomPixels(job.record.sourceType, size_t(start + 8 * bits + 7) / 8, random);
        tVXXCHG x = job.record;
        x.source = row.data();
        x.sourceBit = uint32_t(start);
        x.readQuad(&x);
        for (size_t i = 0; i < 4; ++i)
            ASSERT_TRUE(Same(Slot(x, i), ModelRead(job.Reading(), row.data(), start + int64_t(i) * bits)))
                << Name(job) << ", bit " << start << ", slot " << i;
        for (int64_t i = 4; i < 8; ++i) {
            const int64_t at = start + i * bits;
            ASSERT_EQ(static_cast<const uint8_t*>(x.source) - row.data(), at / 8) << Name(job);
            ASSERT_EQ(x.sourceBit, uint32_t(at % 8)) << Name(job);
            x.readPixel(&x);
            ASSERT_TRUE(Same(Slot(x, 0), ModelRead(job.Reading(), row.data(), at)))
                << Name(job) << ", pixel " << i;
        }
    });
}

Channels RandomWorking(int32_t depth, Random& random)
{
    Channels pixel;
    for (double& c : pixel)
        c = depth == 2 ? random.Float(-1.0f, 2.0f) : double(random.Next() % (depth == 0 ? 256 : 65536));
    return pixel;
}

void StoreWorking(void* pixels, int32_t depth, size_t stride, size_t i, const Channels& pixel)
{
    auto* const p = static_cast<uint8_t*>(pixels) + stride * i;
    for (size_t c = 0; c < 4; ++c) {
        const auto value = float(pixel[c]);
        const auto word = uint16_t(depth == 2 ? 0.0 : pixel[c]);
        if (depth == 0)
            p[c] = uint8_t(pixel[c]);
        else
            std::memcpy(p + (depth == 1 ? 2 : 4) * c, depth == 1 ? static_cast<const void*>(&word) : &value,
                        depth == 1 ? 2 : 4);
    }
}

TEST(Exchange, SinglePixelsAndGroupsWriteAsTheModelAndKeepTheirNeighbours)
{
    ForEachJob(false, [](const Job& job, int64_t start, Random& random) {
        const int32_t bits = ModelOf(job.record.destType).bits, depth = job.record.depth;
        std::vector<uint8_t> row(size_t(start + 8 * bits + 7) / 8 + 1), want;
        for (uint8_t& byte : row)
            byte = random.Byte();
        want = row;
        tVXXCHG x = job.record;
        x.dest = row.data();
        x.destBit = uint32_t(start);
        for (int64_t first = 0; first < 8; first += first < 4 ? 4 : 1) {
            for (int64_t i = 0; i < (first < 4 ? 4 : 1); ++i) {
                const Channels pixel = RandomWorking(depth, random);
                StoreWorking(x.slots, depth, depth == 2 ? 16 : 8, size_t(i), pixel);
                ModelWrite(job.Writing(), want.data(), start + (first + i) * bits, pixel);
            }
            (first < 4 ? x.writeQuad : x.writePixel)(&x);
            ASSERT_EQ(row, want) << Name(job) << ", bit " << start << ", pixel " << first;
        }
        ASSERT_EQ(static_cast<uint8_t*>(x.dest) - row.data(), (start + 8 * bits) / 8) << Name(job);
        ASSERT_EQ(x.destBit, uint32_t((start + 8 * bits) % 8)) << Name(job);
    });
}

// The mix of a block by the integer weights, in exact arithmetic; at float depth in float.
Channels MixOf(const Channels& p00, const Channels& p10, const Channels& p01, const Channels& p11,
               uint32_t fx, uint32_t fy, int32_t depth)
{
    Channels out;
    const double x = fx, y = fy, one = 16384.0;
    const double w[] = {std::floor((one - x) * (one - y) / one), std::floor(x * (one - y) / one),
                        std::floor((one - x) * y / one), std::floor(x * y / one)};
    const float u = float(fx) / 16384.0f, v = float(fy) / 16384.0f;
    const float f[] = {(1 - u) * (1 - v), u * (1 - v), (1 - u) * v, u * v};
    for (size_t c = 0; c < 4; ++c) {
        if (depth == 2)
            out[c] =
                f[0] * float(p00[c]) + f[1] * float(p10[c]) + f[2] * float(p01[c]) + f[3] * float(p11[c]);
        else
            out[c] = std::floor((p00[c] * w[0] + p10[c] * w[1] + p01[c] * w[2] + p11[c] * w[3]) / one);
    }
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
        const Channels p00 = ModelRead(exact, image.data(), start),
                       p10 = ModelRead(exact, image.data(), start + bits);
        const Channels p01 = ModelRead(exact, image.data() + pitch, start),
                       p11 = ModelRead(exact, image.data() + pitch, start + bits);
        x.readBlock(&x);
        ASSERT_TRUE(Same(Slot(x, 0), p00) && Same(Slot(x, 1), p10) && Same(Slot(x, 2), p01) &&
                    Same(Slot(x, 3), p11))
            << Name(job);
        if (!(x.flags & VXXCHGF_INTERPOLATE)) {
            ASSERT_TRUE(x.readFiltered == x.readPixel && x.readLine == x.readPixel &&
                        x.readReduce == x.readPixel)
                << Name(job);
            return;
        }
        x.readFiltered(&x);
        ASSERT_TRUE(Same(Slot(x, 0), MixOf(p00, p10, p01, p11, x.fractionX, x.fractionY, depth)))
            << Name(job) << ", bit " << start;
        x.readLine(&x);
        ASSERT_TRUE(Same(Slot(x, 0), LineOf(p00, p01, x.fractionY, depth))) << Name(job) << ", bit " << start;
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
            x.fractionX &= ~16383u, x.fractionY &= ~16383u, x.reduceWidth &= ~16383u,
                x.reduceHeight &= ~16383u;
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

std::vector<VectorLevel> AllLevels()
{
    auto levels = VectorLevels();
    levels.push_back(kPlain);
    return levels;
}

TEST(ExchangeRuns, ReadAsTheModelAtEveryLevelWithinTheirBytes)
{
    for (const VectorLevel& level : AllLevels()) {
        const OnlyLevel only(level);
        ForEachJob(true, [&level](const Job& job, int64_t start, Random& random) {
            const int32_t bits = ModelOf(job.record.sourceType).bits, depth = job.record.depth;
            for (const int32_t count : kCounts) {
                const int64_t skipped = start + 8 * random.Int(0, 3);
                const auto row = RandomPixels(job.record.sourceType,
                                              size_t(std::max<int64_t>(skipped + int64_t(count) * bits, 1) + 7) / 8, random);
                vx::RunBuffer buffer;
                std::memset(buffer.bytes, 0xCD, sizeof(buffer.bytes));
                vx::SelectRuns(job.record).read(buffer.bytes, row.data(), skipped, count, job.record);
                for (int32_t i = 0; i < count; ++i)
                    ASSERT_TRUE(Same(RunPixel(buffer, depth, size_t(i)),
                                     ModelRead(job.Reading(), row.data(), skipped + int64_t(i) * bits)))
                        << Name(job) << ", " << level.name << ", bit " << skipped << ", pixel " << i << " of "
                        << count;
                for (size_t i = vx::WorkingPixelBytes(depth) * size_t(count); i < sizeof(buffer.bytes); ++i)
                    ASSERT_EQ(buffer.bytes[i], 0xCD)
                        << Name(job) << ", " << level.name << ", count " << count;
            }
        });
    }
}

TEST(ExchangeRuns, WriteAsTheModelAtEveryLevelAndKeepTheirNeighbours)
{
    for (const VectorLevel& level : AllLevels()) {
        const OnlyLevel only(level);
        ForEachJob(false, [&level](const Job& job, int64_t start, Random& random) {
            const int32_t bits = ModelOf(job.record.destType).bits, depth = job.record.depth;
            for (const int32_t count : kCounts) {
                const int64_t skipped = start + 8 * random.Int(0, 3);
                std::vector<uint8_t> row(size_t(skipped + int64_t(count) * bits + 7) / 8 + 3), want;
                for (uint8_t& byte : row)
                    byte = random.Byte();
                want = row;
                vx::RunBuffer buffer;
                for (int32_t i = 0; i < count; ++i) {
                    const Channels pixel = RandomWorking(depth, random);
                    StoreWorking(buffer.bytes, depth, vx::WorkingPixelBytes(depth), size_t(i), pixel);
                    ModelWrite(job.Writing(), want.data(), skipped + int64_t(i) * bits, pixel);
                }
                vx::SelectRuns(job.record).write(row.data(), skipped, buffer.bytes, count, job.record);
                ASSERT_EQ(row, want) << Name(job) << ", " << level.name << ", bit " << skipped << ", count "
                                     << count;
            }
        });
    }
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

// Bits of a channel that a type keeps through the 16-bit working pixel.
int32_t KeptBits(int32_t type, size_t channel)
{
    return std::min(ModelOf(type).width[channel], 16);
}

bool CanHold(int32_t outer, int32_t inner)
{
    if (ModelOf(inner).kind == Kind::Float || (outer <= VXPIXEL_GRAY32 && inner > VXPIXEL_GRAY32))
        return false;
    for (size_t c = 0; c < 4; ++c)
        if (KeptBits(outer, c) < KeptBits(inner, c))
            return false;
    return ModelOf(outer).kind != Kind::Index && ModelOf(inner).kind != Kind::Index;
}

TEST(ExchangeRuns, AnyPairGoesByRunsAsByPixelsAndComesBackWhereItFits)
{
    Random random;
    for (int32_t inner = VXPIXEL_PAL1; inner <= VXPIXEL_RGBA128; ++inner)
        for (int32_t outer = VXPIXEL_PAL1; outer <= VXPIXEL_RGBA128; ++outer)
            for (const uint32_t flags : {1u, 3u, 4u}) {
                constexpr int32_t kCount = 24;
                const Job there(outer, inner, flags, random), back(inner, outer, flags, random);
                const auto bytes = [](int32_t type) { return size_t(kCount * ModelOf(type).bits / 8); };
                auto pixels = RandomPixels(inner, bytes(inner), random);
                for (int32_t i = 0; inner == VXPIXEL_RGB555 && i < kCount; ++i)
                    SetBits(pixels.data(), 16 * i + 15, 1, false, 0); // the bit that no pixel keeps
                std::vector<uint8_t> byRuns(bytes(outer)), byPixels(bytes(outer)), again(bytes(inner));
                vx::RunBuffer run;
                vx::SelectRuns(there.record).read(run.bytes, pixels.data(), 0, kCount, there.record);
                vx::SelectRuns(there.record).write(byRuns.data(), 0, run.bytes, kCount, there.record);
                tVXXCHG x = there.record;
                x.source = pixels.data();
                x.dest = byPixels.data();
                for (int32_t i = 0; i < kCount; ++i) {
                    x.readPixel(&x);
                    x.writePixel(&x);
                }
                ASSERT_EQ(byRuns, byPixels) << Name(there);
                vx::SelectRuns(back.record).read(run.bytes, byRuns.data(), 0, kCount, back.record);
                vx::SelectRuns(back.record).write(again.data(), 0, run.bytes, kCount, back.record);
                if (CanHold(outer, inner)) {
                    ASSERT_EQ(pixels, again) << Name(there);
                }
            }
}

} // namespace
