#include "platform/allocation.h"

#include "vx/platform/testing.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

namespace vxplatform {
namespace {

// Allocations up to the one that fails, that one included; 0 while none is to fail.
std::atomic<uint32_t> g_untilFailure{0};
std::atomic<bool> g_failsOn{false}; // the one that fails stays the next one

} // namespace

bool AllocationMustFail()
{
    uint32_t left = g_untilFailure.load(std::memory_order_relaxed);
    while (left > 1 || (left == 1 && !g_failsOn))
        if (g_untilFailure.compare_exchange_weak(left, left - 1))
            return left == 1;
    return left == 1;
}

void* AllocateBytes(size_t bytes, bool zeroed)
{
    void* memory = nullptr;
    if (AllocationMustFail() || posix_memalign(&memory, kBlockAlignment, bytes ? bytes : 1) != 0)
        return nullptr;
    if (zeroed)
        std::memset(memory, 0, bytes);
    return memory;
}

void ReleaseBytes(void* bytes)
{
    std::free(bytes);
}

} // namespace vxplatform

void VxPlatform_FailAllocationAt(uint32_t n)
{
    vxplatform::g_failsOn = false;
    vxplatform::g_untilFailure = n;
}

void VxPlatform_FailAllocationsFrom(uint32_t n)
{
    vxplatform::g_failsOn = true;
    vxplatform::g_untilFailure = n;
}
