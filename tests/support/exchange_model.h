// What pixels of every type are as 16-bit, 8-bit and float channels, from a table of their fields: slow,
// a bit at a time, and apart from the library's codecs.
#pragma once

#include "dib/curves.h"
#include "support/random.h"
#include "vx/pixel.h"
#include "vx/xchg.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

namespace vxtest {

// Blue, green, red, alpha, at any depth.
using Channels = std::array<double, 4>;

inline Channels WorkingAt(const void* pixels, int32_t depth, size_t stride, size_t i)
{
    const auto* const p = static_cast<const uint8_t*>(pixels) + stride * i;
    uint16_t words[4] = {};
    float values[4] = {};
    std::memcpy(words, p, depth == 1 ? sizeof(words) : 0);
    std::memcpy(values, p, depth == 2 ? sizeof(values) : 0);
    Channels out;
    for (size_t c = 0; c < 4; ++c)
        out[c] = depth == 0 ? p[c] : depth == 1 ? words[c] : double(values[c]);
    return out;
}

inline void StoreWorking(void* pixels, int32_t depth, size_t stride, size_t i, const Channels& pixel)
{
    const size_t bytes = size_t(1) << depth;
    for (size_t c = 0; c < 4; ++c) {
        const uint32_t value = depth == 2 ? std::bit_cast<uint32_t>(float(pixel[c])) : uint32_t(pixel[c]);
        std::memcpy(static_cast<uint8_t*>(pixels) + stride * i + bytes * c, &value, bytes); // low bytes first
    }
}

inline void PutSlot(tVXXCHG& x, size_t i, const Channels& pixel)
{
    StoreWorking(x.slots, x.depth, x.depth == 2 ? 16 : 8, i, pixel);
}

inline Channels Slot(const tVXXCHG& x, size_t i)
{
    return WorkingAt(x.slots, x.depth, x.depth == 2 ? 16 : 8, i);
}

enum class Kind
{
    Spread, // fields cover 0 to 65535 evenly
    Left,   // fields stand in the highest bits
    Float,
    Index,
};

struct FieldModel
{
    int32_t type, bits;
    Kind kind;
    int32_t first[4]; // bit of the channel's field in the pixel, blue, green, red, alpha; -1 for none
    int32_t width[4];
};

inline const FieldModel& ModelOf(int32_t type)
{
    static const FieldModel kModels[] = {
        {16, 1, Kind::Spread, {0, 0, 0, -1}, {1, 1, 1, 0}},
        {17, 1, Kind::Spread, {0, 0, 0, -1}, {1, 1, 1, 0}},
        {18, 2, Kind::Spread, {0, 0, 0, -1}, {2, 2, 2, 0}},
        {19, 4, Kind::Spread, {0, 0, 0, -1}, {4, 4, 4, 0}},
        {20, 8, Kind::Spread, {0, 0, 0, -1}, {8, 8, 8, 0}},
        {21, 16, Kind::Spread, {0, 0, 0, -1}, {16, 16, 16, 0}},
        {22, 32, Kind::Float, {0, 0, 0, -1}, {32, 32, 32, 0}},
        {23, 4, Kind::Index, {0, 0, 0, -1}, {4, 4, 4, 0}},
        {24, 8, Kind::Index, {0, 0, 0, -1}, {8, 8, 8, 0}},
        {25, 16, Kind::Left, {0, 5, 10, -1}, {5, 5, 5, 0}},
        {26, 16, Kind::Left, {0, 5, 11, -1}, {5, 6, 5, 0}},
        {27, 24, Kind::Spread, {0, 8, 16, -1}, {8, 8, 8, 0}},
        {28, 32, Kind::Spread, {0, 8, 16, 24}, {8, 8, 8, 8}},
        {29, 32, Kind::Spread, {0, 8, 16, 24}, {8, 8, 8, 8}},
        {30, 32, Kind::Left, {0, 10, 20, 30}, {10, 10, 10, 2}},
        {31, 64, Kind::Spread, {0, 16, 32, 48}, {16, 16, 16, 16}},
        {32, 128, Kind::Float, {0, 32, 64, 96}, {32, 32, 32, 32}},
    };
    return kModels[type - 16];
}

// A bit of a row's byte. In the types below a byte they count from the highest, in all others from the
// lowest.
inline int32_t Shift(int64_t bit, bool highFirst)
{
    return int32_t(highFirst ? 7 - bit % 8 : bit % 8);
}

inline uint64_t GetBits(const uint8_t* row, int64_t firstBit, int32_t bits, bool highFirst)
{
    uint64_t value = 0;
    for (int32_t i = 0; i < bits; ++i) {
        const int64_t at = highFirst ? firstBit + bits - 1 - i : firstBit + i;
        value |= uint64_t(row[at / 8] >> Shift(at, highFirst) & 1) << i;
    }
    return value;
}

inline void SetBits(uint8_t* row, int64_t firstBit, int32_t bits, bool highFirst, uint64_t value)
{
    for (int32_t i = 0; i < bits; ++i) {
        const int64_t at = highFirst ? firstBit + bits - 1 - i : firstBit + i;
        const int32_t shift = Shift(at, highFirst);
        row[at / 8] = uint8_t((row[at / 8] & ~(1 << shift)) | int32_t(value >> i & 1) << shift);
    }
}

struct ModelJob
{
    int32_t type = 0;
    int32_t depth = 1;
    bool exact = false;
    const uint8_t* table = nullptr; // four bytes an entry
    const uint8_t* map = nullptr;
    const VxTransferCurve* curve = nullptr; // null for none
};

inline float Curved(const ModelJob& job, float x)
{
    return job.curve ? vx::EvaluateCurve(*job.curve, x) : x;
}

inline double WordOfField(const ModelJob& job, uint64_t field, int32_t width)
{
    const Kind kind = ModelOf(job.type).kind;
    if (kind == Kind::Float) {
        const float x = Curved(job, std::bit_cast<float>(uint32_t(field)));
        if (std::isnan(x) || x < 0.0f)
            return 0.0;
        const float scaled = x * 65535.0f;
        return x > 1.0f ? 65535.0 : std::floor(scaled + 0.5f);
    }
    if (width == 8 && !job.exact)
        return double(field) * 256.0;
    if (kind == Kind::Left && width != 2)
        return double(field) * std::exp2(16 - width);
    return double(field) * 65535.0 / (std::exp2(width) - 1.0);
}

// The pixel that begins at a bit of a row.
inline Channels ModelRead(const ModelJob& job, const uint8_t* row, int64_t firstBit)
{
    const FieldModel& model = ModelOf(job.type);
    Channels out;
    for (int32_t c = 0; c < 4; ++c) {
        out[size_t(c)] = job.depth == 0 ? 255.0 : 65535.0; // without a field: opaque
        if (model.first[c] < 0)
            continue;
        uint64_t field = GetBits(row, firstBit + model.first[c], model.width[c], model.bits < 8);
        if (model.kind == Kind::Index)
            field = job.table[4 * field + uint64_t(c)];
        out[size_t(c)] = job.depth == 2              ? double(std::bit_cast<float>(uint32_t(field)))
                         : job.depth == 0            ? double(field)
                         : model.kind == Kind::Index ? double(field) * 256.0
                                                     : WordOfField(job, field, model.width[c]);
    }
    return out;
}

inline uint64_t FloatField(const ModelJob& job, double word)
{
    return std::bit_cast<uint32_t>(Curved(job, float(word) * 1.5259022e-5f));
}

// Puts a working pixel at a bit of a row; no other bit changes.
inline void ModelWrite(const ModelJob& job, uint8_t* row, int64_t firstBit, const Channels& pixel)
{
    const FieldModel& model = ModelOf(job.type);
    const double sum = pixel[0] + pixel[1] + pixel[2];
    const double top = job.depth == 0 ? 8.0 : 2048.0; // what a step of 5 bits is worth
    if (model.kind == Kind::Index) {
        const double cell =
            std::floor(pixel[2] / top) * 1024 + std::floor(pixel[1] / top) * 32 + std::floor(pixel[0] / top);
        SetBits(row, firstBit, model.bits, model.bits < 8, job.map[size_t(cell)]);
        return;
    }
    if (job.type <= VXPIXEL_GRAY32) {
        const double mean = std::floor(sum / 3.0);
        const uint64_t value = model.kind == Kind::Float ? FloatField(job, mean)
                               : model.bits == 1         ? sum >= 98303.0
                                                         : uint64_t(mean / std::exp2(16 - model.bits));
        SetBits(row, firstBit, model.bits, model.bits < 8, value);
        return;
    }
    if (job.type == VXPIXEL_RGB555)
        SetBits(row, firstBit, 16, false, 0);
    for (size_t c = 0; c < 4; ++c) {
        if (model.first[c] < 0)
            continue;
        const uint64_t value =
            job.depth == 2 ? std::bit_cast<uint32_t>(float(pixel[c]))
            : model.kind == Kind::Float
                ? FloatField(job, pixel[c])
                : uint64_t(pixel[c] / std::exp2((job.depth == 0 ? 8 : 16) - model.width[c]));
        SetBits(row, firstBit + model.first[c], model.width[c], false, value);
    }
}

inline std::vector<uint8_t> RandomBytes(size_t bytes, Random& random)
{
    std::vector<uint8_t> row(bytes);
    for (uint8_t& byte : row)
        byte = random.Byte();
    return row;
}

// Random bytes, and for float types values about the range with every kind of special one.
inline std::vector<uint8_t> RandomPixels(int32_t type, size_t bytes, Random& random)
{
    auto row = RandomBytes(bytes, random);
    if (ModelOf(type).kind != Kind::Float)
        return row;
    constexpr float kSpecial[] = {0.0f,          -0.0f,    1.0f,      0.5f, 1.0f / 131070,
                                  3.0f / 131070, INFINITY, -INFINITY, NAN,  3e38f};
    for (size_t i = 0; i + 4 <= bytes; i += 4) {
        const float x = random.Int(0, 7) == 0 ? kSpecial[random.Int(0, 9)] : random.Float(-0.3f, 1.3f);
        std::memcpy(row.data() + i, &x, 4);
    }
    return row;
}

} // namespace vxtest
