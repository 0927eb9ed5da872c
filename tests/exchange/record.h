// A record with its table and map, and working pixels as the model has them.
#pragma once

#include "exchange/rows.h"
#include "support/exchange_model.h"
#include "vx/xchg.h"

namespace vxtest {

inline Channels WorkingAt(const void* pixels, int32_t depth, size_t stride, size_t i)
{
    const auto* const p = static_cast<const uint8_t*>(pixels) + stride * i;
    Channels out;
    for (size_t c = 0; c < 4; ++c) {
        uint16_t word = 0;
        float value = 0;
        std::memcpy(&word, p + 2 * c, depth == 1 ? 2 : 0);
        std::memcpy(&value, p + 4 * c, depth == 2 ? 4 : 0);
        out[c] = depth == 0 ? p[c] : depth == 1 ? word : double(value);
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

    Job(int32_t dest, int32_t source, uint32_t flags, Random& random, double gamma = 1.0) : map(32768)
    {
        VxXCHGGetFunctionPointers(dest, source, flags, &record, nullptr, 1.0, gamma);
        for (RGBQUAD& entry : table)
            entry = {random.Byte(), random.Byte(), random.Byte(), random.Byte()};
        for (uint8_t& index : map)
            index = random.Byte();
        record.sourcePalette = table;
        record.inverseMap = map.data();
    }
    Job(const Job&) = delete;

    ModelJob Reading() const
    {
        const VxTransferCurve* const curve =
            record.depth == 1 && record.sourceCurve.exponent != 1.0f ? &record.sourceCurve : nullptr;
        return {record.sourceType,
                record.depth,
                (record.flags & VXXCHGF_INTERPOLATE) != 0,
                reinterpret_cast<const uint8_t*>(table),
                nullptr,
                curve};
    }
    ModelJob Writing() const
    {
        const VxTransferCurve* const curve =
            record.depth == 1 && record.destCurve.exponent != 1.0f ? &record.destCurve : nullptr;
        return {record.destType, record.depth, false, nullptr, map.data(), curve};
    }
};

// Every type with a partner and flags that choose the row: 16 bits picked and interpolated, 8 bits, float.
struct RowCase
{
    int32_t type, partner;
    uint32_t flags;
};

inline std::vector<RowCase> AllRowCases()
{
    std::vector<RowCase> cases;
    for (int32_t type = VXPIXEL_PAL1; type <= VXPIXEL_RGBA128; ++type)
        for (const uint32_t flags : {1u, 3u, 4u}) {
            cases.push_back({type, VXPIXEL_RGBA64, flags});
            if (type == VXPIXEL_PAL8 || type == VXPIXEL_RGB24 || type == VXPIXEL_RGB32 ||
                type == VXPIXEL_RGBA32)
                cases.push_back({type, VXPIXEL_RGBA32, flags});
            if (type == VXPIXEL_RGBA128)
                cases.push_back({type, VXPIXEL_RGBA128, flags});
        }
    return cases;
}

} // namespace vxtest
