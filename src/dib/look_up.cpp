// Look-ups in 256 entries: plain, one load each, which no lesser vectors beat; and by the byte permutations of the newest
// target, which alone can look 64 bytes up at once.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "dib/look_up.cpp"
#define HWY_WANT_AVX3_DL
#define HWY_DISABLED_TARGETS (HWY_SSE4 | HWY_AVX2 | HWY_AVX3)
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#ifndef VX_LOOK_UP_PLAIN
#define VX_LOOK_UP_PLAIN

#include "dib/look_up.h"
#include "kernel/vector_targets.h"

#include <algorithm>
#include <cstring>

namespace vx {
namespace {

// Bytes out of a word, and entries into one, keep the compiler from making vectors of a loop that only loads.
template <int32_t kBytes>
void LookUpBytes(uint8_t* to, const uint8_t* from, int32_t steps, const LookUpTable& table)
{
    const uint8_t* const entries = table.entries.data();
    for (int32_t i = 0; i < steps; ++i, from += kBytesInStep, to += kBytesInStep * kBytes) {
        uint64_t indexes;
        std::memcpy(&indexes, from, sizeof(indexes));
        for (int32_t k = 0; k < kBytesInStep; ++k)
            std::memcpy(to + k * kBytes, entries + (indexes >> (8 * k) & 0xFF) * kBytes, kBytes);
    }
}

// The first entry takes the highest bits.
template <int32_t kBits>
void LookUpBits(uint8_t* to, const uint8_t* from, int32_t steps, const LookUpTable& table)
{
    const uint8_t* const values = table.planes[0].data();
    for (int32_t i = 0; i < steps; ++i, from += kBytesInStep, to += kBits) {
        uint64_t indexes;
        std::memcpy(&indexes, from, sizeof(indexes));
        uint32_t bits = 0;
        for (int32_t k = 0; k < kBytesInStep; ++k)
            bits = bits << kBits | values[indexes >> (8 * k) & 0xFF];
        for (int32_t k = 0; k < kBits; ++k)
            to[k] = uint8_t(bits >> (8 * (kBits - 1 - k)));
    }
}

LookUpFn ChoosePlainLookUp(int32_t entryBits)
{
    switch (entryBits) {
    case 1:
        return LookUpBits<1>;
    case 2:
        return LookUpBits<2>;
    case 4:
        return LookUpBits<4>;
    case 8:
        return LookUpBytes<1>;
    case 16:
        return LookUpBytes<2>;
    case 24:
        return LookUpBytes<3>;
    case 32:
        return LookUpBytes<4>;
    case 48:
        return LookUpBytes<6>;
    case 64:
        return LookUpBytes<8>;
    case 128:
        return LookUpBytes<16>;
    default:
        return nullptr;
    }
}

} // namespace
} // namespace vx

#endif // VX_LOOK_UP_PLAIN

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

#if HWY_TARGET == HWY_AVX3_DL

namespace hn = hwy::HWY_NAMESPACE;

using Bytes = hn::ScalableTag<uint8_t>;
using Vector = hn::Vec<Bytes>;
constexpr int32_t kLanes = 64;
constexpr int32_t kStepsInVector = kLanes / kBytesInStep;

// Highway has no look-up in more than a block of 16 bytes.
struct Plane
{
    Vector first, second, third, fourth;

    explicit Plane(const std::array<uint8_t, kByteValues>& bytes)
        : first(hn::Load(Bytes(), bytes.data())), second(hn::Load(Bytes(), bytes.data() + kLanes)),
          third(hn::Load(Bytes(), bytes.data() + 2 * kLanes)),
          fourth(hn::Load(Bytes(), bytes.data() + 3 * kLanes))
    {}
    HWY_INLINE Vector LookUp(Vector indexes) const
    {
        // These take the low seven bits of an index, the choice its highest.
        const __m512i low = _mm512_permutex2var_epi8(first.raw, indexes.raw, second.raw);
        const __m512i high = _mm512_permutex2var_epi8(third.raw, indexes.raw, fourth.raw);
        return Vector{_mm512_mask_blend_epi8(_mm512_movepi8_mask(indexes.raw), low, high)};
    }
};

template <int32_t kBits>
HWY_INLINE void StoreBits(Vector values, uint8_t* to)
{
    const auto weights = [](int32_t first, int32_t second) { return second << 8 | first; };
    if constexpr (kBits == 1) {
        const uint64_t bits = _mm512_test_epi8_mask(values.raw, _mm512_set1_epi8(1));
        std::memcpy(to, &bits, sizeof(bits));
    } else if constexpr (kBits == 2) {
        const __m512i pairs = _mm512_maddubs_epi16(values.raw, _mm512_set1_epi16(int16_t(weights(4, 1))));
        const __m512i fours = _mm512_madd_epi16(pairs, _mm512_set1_epi32(1 << 16 | 16));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm512_cvtepi32_epi8(fours));
    } else {
        const __m512i pairs = _mm512_maddubs_epi16(values.raw, _mm512_set1_epi16(int16_t(weights(16, 1))));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), _mm512_cvtepi16_epi8(pairs));
    }
}

// A test's mask has the first pixel lowest, which the byte has highest.
template <int32_t kBits>
HWY_INLINE Vector LoadIndexes(const uint8_t* from)
{
    alignas(16) static constexpr uint8_t kTurned[16] = {7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10, 9, 8};
    const Vector indexes = hn::LoadU(Bytes(), from);
    return kBits == 1 ? hn::TableLookupBytes(indexes, hn::LoadDup128(Bytes(), kTurned)) : indexes;
}

template <int32_t kBits>
void VectorBits(uint8_t* to, const uint8_t* from, int32_t steps, const LookUpTable& table)
{
    const Plane values(table.planes[0]);
    for (; steps >= kStepsInVector; steps -= kStepsInVector, from += kLanes, to += kBits * kStepsInVector)
        StoreBits<kBits>(values.LookUp(LoadIndexes<kBits>(from)), to);
    LookUpBits<kBits>(to, from, steps, table);
}

template <int32_t kBytes>
void VectorBytes(uint8_t* to, const uint8_t* from, int32_t steps, const LookUpTable& table)
{
    const Bytes lanes;
    const Plane p0(table.planes[0]), p1(table.planes[1]), p2(table.planes[2]), p3(table.planes[3]);
    for (; steps >= kStepsInVector; steps -= kStepsInVector, from += kLanes, to += kLanes * kBytes) {
        const Vector indexes = hn::LoadU(lanes, from);
        if constexpr (kBytes == 1)
            hn::StoreU(p0.LookUp(indexes), lanes, to);
        else if constexpr (kBytes == 2)
            hn::StoreInterleaved2(p0.LookUp(indexes), p1.LookUp(indexes), lanes, to);
        else if constexpr (kBytes == 3)
            hn::StoreInterleaved3(p0.LookUp(indexes), p1.LookUp(indexes), p2.LookUp(indexes), lanes, to);
        else
            hn::StoreInterleaved4(p0.LookUp(indexes), p1.LookUp(indexes), p2.LookUp(indexes),
                                  p3.LookUp(indexes), lanes, to);
    }
    LookUpBytes<kBytes>(to, from, steps, table);
}

LookUpFn ChooseVectorLookUp(int32_t entryBits)
{
    switch (entryBits) {
    case 1:
        return VectorBits<1>;
    case 2:
        return VectorBits<2>;
    case 4:
        return VectorBits<4>;
    case 8:
        return VectorBytes<1>;
    case 16:
        return VectorBytes<2>;
    case 24:
        return VectorBytes<3>;
    case 32:
        return VectorBytes<4>;
    default:
        return ChoosePlainLookUp(entryBits);
    }
}

#else

LookUpFn ChooseVectorLookUp(int32_t entryBits)
{
    return ChoosePlainLookUp(entryBits);
}

#endif

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {

void LookUpTable::MakePlanes(int32_t entryBits)
{
    const int32_t inByte = std::max(8 / entryBits, 1);
    const int32_t bytes = std::max(entryBits / 8, 1);
    for (int32_t k = 0; k < std::min(bytes, kPlaneEntry); ++k)
        for (int32_t i = 0; i < kByteValues; ++i)
            planes[size_t(k)][size_t(i)] = entries[size_t(i / inByte * bytes + k)];
    if (inByte > 1)
        for (int32_t i = 0; i < kByteValues; ++i) {
            const int32_t lower = 8 - entryBits * (i % inByte + 1);
            planes[0][size_t(i)] = uint8_t(planes[0][size_t(i)] >> lower & ((1 << entryBits) - 1));
        }
}

HWY_EXPORT(ChooseVectorLookUp);

LookUpFn ChooseLookUp(int32_t entryBits)
{
    return VX_VECTOR_FORM(ChooseVectorLookUp, ChoosePlainLookUp)(entryBits);
}

} // namespace vx

#endif // HWY_ONCE
