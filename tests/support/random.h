// Seeded random values: the same sequence on every run, so that a failure can be repeated.
#pragma once

#include <cstdint>

namespace vxtest {

class Random
{
public:
    explicit Random(uint64_t seed = 1) : state_(seed * 0x9E3779B97F4A7C15u + 1) {}

    // splitmix64 (Steele, Lea, Flood 2014).
    uint64_t Next()
    {
        uint64_t z = (state_ += 0x9E3779B97F4A7C15u);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }

    uint8_t Byte() { return uint8_t(Next() >> 56); }
    // first to last, both included
    int32_t Int(int32_t first, int32_t last)
    {
        return first + int32_t(Next() % (uint64_t(int64_t(last) - first) + 1));
    }
    // 0.0 to 1.0, 1.0 excluded
    double Unit() { return double(Next() >> 11) * 0x1p-53; }
    float Float(float first, float last) { return first + float(Unit()) * (last - first); }

private:
    uint64_t state_;
};

} // namespace vxtest
