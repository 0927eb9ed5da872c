// A record with its table and map, and working pixels as the model has them.
#pragma once

#include "exchange/rows.h"
#include "support/exchange_model.h"
#include "vx/xchg.h"

namespace vxtest {

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

// The integer weights of a block's four pixels, of 16384 in all.
inline std::array<double, 4> WeightsOf(const tVXXCHG& x)
{
    const double one = 16384, fx = x.fractionX, fy = x.fractionY;
    return {std::floor((one - fx) * (one - fy) / one), std::floor(fx * (one - fy) / one),
            std::floor((one - fx) * fy / one), std::floor(fx * fy / one)};
}

inline Channels MixOf(const Channels (&block)[4], const std::array<double, 4>& weights)
{
    Channels out{};
    for (size_t c = 0; c < 4; ++c) {
        for (size_t i = 0; i < 4; ++i)
            out[c] += block[i][c] * weights[i];
        out[c] = std::floor(out[c] / 16384);
    }
    return out;
}

inline Channels Slot(const tVXXCHG& x, size_t i)
{
    return WorkingAt(x.slots, x.depth, x.depth == 2 ? 16 : 8, i);
}

inline Channels RunPixel(const vx::RunBuffer& buffer, int32_t depth, size_t i)
{
    return WorkingAt(buffer.bytes, depth, vx::WorkingPixelBytes(depth), i);
}

// Channels compare as numbers; a NaN is a NaN.
inline bool Same(const Channels& a, const Channels& b)
{
    for (size_t c = 0; c < 4; ++c)
        if (!(a[c] == b[c] || (std::isnan(a[c]) && std::isnan(b[c]))))
            return false;
    return true;
}

struct Job
{
    tVXXCHG record;
    RGBQUAD table[256];
    std::vector<uint8_t> map;

    Job(int32_t dest, int32_t source, uint32_t flags, Random& random, double gamma = 1.0)
        : map(RandomBytes(32768, random))
    {
        VxXCHGGetFunctionPointers(dest, source, flags, &record, nullptr, 1.0, gamma);
        for (RGBQUAD& entry : table)
            entry = {random.Byte(), random.Byte(), random.Byte(), random.Byte()};
        record.sourcePalette = table;
        record.inverseMap = map.data();
    }
    Job(const Job&) = delete;

    ModelJob Reading() const
    {
        return {record.sourceType,
                record.depth,
                (record.flags & VXXCHGF_INTERPOLATE) != 0,
                reinterpret_cast<const uint8_t*>(table),
                nullptr,
                Curve(record.sourceCurve)};
    }
    ModelJob Writing() const
    {
        return {record.destType, record.depth, false, nullptr, map.data(), Curve(record.destCurve)};
    }

private:
    const VxTransferCurve* Curve(const VxTransferCurve& curve) const
    {
        return record.depth == 1 && curve.exponent != 1.0f ? &curve : nullptr;
    }
};

} // namespace vxtest
