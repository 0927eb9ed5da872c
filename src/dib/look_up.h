// Rows in which each byte of the source stands for an entry of a table of 256.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace vx {

constexpr int32_t kByteValues = 256;
constexpr int32_t kLongestEntry = 16; // bytes: the table takes a small part of the first cache
constexpr int32_t kPlaneEntry = 4;    // bytes of the longest entry that has planes
constexpr int32_t kBytesInStep = 8;   // rows are looked up in steps of so many bytes

struct LookUpTable
{
    // One behind the other, without gaps.
    alignas(64) std::array<uint8_t, size_t(kByteValues) * kLongestEntry> entries;
    // Byte k of each entry is in plane k; entries of less than a byte are alone in the low bits of the first. Look-ups may
    // load planes that their entries do not have.
    alignas(64) std::array<std::array<uint8_t, kByteValues>, kPlaneEntry> planes{};

    // Once the entries are made.
    void MakePlanes(int32_t entryBits);
};

// A step writes as many bytes as an entry has bits.
using LookUpFn = void (*)(uint8_t* to, const uint8_t* from, int32_t steps, const LookUpTable& table);

// Null for entries other than of 1, 2, 4, 8, 16, 24, 32, 48, 64 and 128 bits.
LookUpFn ChooseLookUp(int32_t entryBits);

} // namespace vx
