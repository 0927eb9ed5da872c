// Look-ups in 256 entries: plain, one load each; entries of a byte by any wide vectors, others by those that permute bytes
// across 64.
#define HWY_WANT_AVX3_DL // for its permutations of bytes
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "dib/look_up.cpp"
#include <hwy/foreach_target.h> // includes this file once for each target
#include <hwy/highway.h>

#include "kernel/byte_look_up-inl.h"

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
void PlainBytes(uint8_t* to, const uint8_t* from, int32_t steps, const LookUpTable& table)
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
void PlainBits(uint8_t* to, const uint8_t* from, int32_t steps, const LookUpTable& table)
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
        return PlainBits<1>;
    case 2:
        return PlainBits<2>;
    case 4:
        return PlainBits<4>;
    case 8:
        return PlainBytes<1>;
    case 16:
        return PlainBytes<2>;
    case 24:
        return PlainBytes<3>;
    case 32:
        return PlainBytes<4>;
    case 48:
        return PlainBytes<6>;
    case 64:
        return PlainBytes<8>;
    case 128:
        return PlainBytes<16>;
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

namespace hn = hwy::HWY_NAMESPACE;

#if VX_VECTOR_BYTE_TABLES

constexpr int32_t kLanes = int32_t(hn::MaxLanes(TableBytes()));
constexpr int32_t kStepsInVector = kLanes / kBytesInStep;

template <int32_t kBytes>
void VectorBytes(uint8_t* to, const uint8_t* from, int32_t steps, const LookUpTable& table)
{
    const TableBytes lanes;
    const ByteLookUp first(table.planes[0].data()), second(table.planes[1].data()),
        third(table.planes[2].data()), fourth(table.planes[3].data());
    for (; steps >= kStepsInVector; steps -= kStepsInVector, from += kLanes, to += kLanes * kBytes) {
        const TableVec indexes = hn::LoadU(lanes, from);
        if constexpr (kBytes == 1)
            hn::StoreU(first(indexes), lanes, to);
        else if constexpr (kBytes == 2)
            hn::StoreInterleaved2(first(indexes), second(indexes), lanes, to);
        else if constexpr (kBytes == 3)
            hn::StoreInterleaved3(first(indexes), second(indexes), third(indexes), lanes, to);
        else
            hn::StoreInterleaved4(first(indexes), second(indexes), third(indexes), fourth(indexes), lanes,
                                  to);
    }
    PlainBytes<kBytes>(to, from, steps, table);
}

#endif

#if VX_WIDE_BYTE_TABLES

template <int32_t kBits>
HWY_INLINE void StoreBits(TableVec values, uint8_t* to)
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
HWY_INLINE TableVec LoadIndexes(const uint8_t* from)
{
    alignas(16) static constexpr uint8_t kTurned[16] = {7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10, 9, 8};
    const TableBytes lanes;
    const TableVec indexes = hn::LoadU(lanes, from);
    return kBits == 1 ? hn::TableLookupBytes(indexes, hn::LoadDup128(lanes, kTurned)) : indexes;
}

template <int32_t kBits>
void VectorBits(uint8_t* to, const uint8_t* from, int32_t steps, const LookUpTable& table)
{
    const ByteLookUp values(table.planes[0].data());
    for (; steps >= kStepsInVector; steps -= kStepsInVector, from += kLanes, to += kBits * kStepsInVector)
        StoreBits<kBits>(values(LoadIndexes<kBits>(from)), to);
    PlainBits<kBits>(to, from, steps, table);
}

#endif

LookUpFn ChooseVectorLookUp(int32_t entryBits)
{
    switch (entryBits) {
#if VX_WIDE_BYTE_TABLES
    case 1:
        return VectorBits<1>;
    case 2:
        return VectorBits<2>;
    case 4:
        return VectorBits<4>;
    case 16:
        return VectorBytes<2>;
    case 24:
        return VectorBytes<3>;
    case 32:
        return VectorBytes<4>;
#endif
#if VX_VECTOR_BYTE_TABLES
    case 8:
        return VectorBytes<1>;
#endif
    default:
        return ChoosePlainLookUp(entryBits);
    }
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vx {

void LookUpTable::MakePlanes(int32_t entryBits)
{
    const int32_t inByte = 8 / entryBits, bytes = entryBits / 8;
    for (int32_t i = 0; i < kByteValues && inByte > 1; ++i) {
        const int32_t bitsBehind = 8 - entryBits * (i % inByte + 1), mask = (1 << entryBits) - 1;
        planes[0][size_t(i)] = uint8_t(entries[size_t(i / inByte)] >> bitsBehind & mask);
    }
    for (int32_t k = 0; k < std::min(bytes, kPlaneEntry); ++k)
        for (int32_t i = 0; i < kByteValues; ++i)
            planes[size_t(k)][size_t(i)] = entries[size_t(i * bytes + k)];
}

HWY_EXPORT(ChooseVectorLookUp);

LookUpFn ChooseLookUp(int32_t entryBits)
{
    return VX_VECTOR_FORM(ChooseVectorLookUp, ChoosePlainLookUp)(entryBits);
}

} // namespace vx

#endif // HWY_ONCE
