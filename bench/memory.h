// Zeroed memory that starts a cache line, as frames are allocated in practice.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vxbench {

class Memory
{
public:
    // Buffers whose rows stood at the same place of their pages would make each load wait for a store to
    // another buffer that ends in the same address bits: give buffers of one work different places.
    explicit Memory(size_t bytes, size_t place = 0) : bytes_(bytes), memory_(bytes + kLine + place * kStagger)
    {
        first_ = kLine - reinterpret_cast<uintptr_t>(memory_.data()) % kLine + place * kStagger;
    }

    uint8_t* Bytes() { return memory_.data() + first_; }
    const uint8_t* Bytes() const { return memory_.data() + first_; }
    std::span<uint8_t> All() { return {Bytes(), bytes_}; }

private:
    static constexpr size_t kLine = 64;
    static constexpr size_t kStagger = 17 * kLine;

    size_t bytes_;
    size_t first_; // offset of the first byte
    std::vector<uint8_t> memory_;
};

} // namespace vxbench
