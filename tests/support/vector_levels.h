// Every form that a primitive can take on this machine: the plain one, and each vector target.
#pragma once

#include <cstdint>
#include <vector>

namespace vxtest {

struct VectorLevel
{
    int64_t target; // one target of Highway; 0 is the plain form
    const char* name;
};

// The vector targets of this machine, without the plain form.
std::vector<VectorLevel> VectorLevels();
constexpr VectorLevel kPlain{0, "plain"};

// While it lives, the library uses that form only; then all is as it was.
class OnlyLevel
{
public:
    explicit OnlyLevel(const VectorLevel& level);
    ~OnlyLevel();
    OnlyLevel(const OnlyLevel&) = delete;
    OnlyLevel& operator=(const OnlyLevel&) = delete;
};

} // namespace vxtest
