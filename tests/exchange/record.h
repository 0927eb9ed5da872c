// A record with its table and map, and working pixels as the model has them.
#pragma once

#include "exchange/rows.h"
#include "support/exchange_model.h"

namespace vxtest {

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
