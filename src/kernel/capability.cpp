#include "vx/capability.h"

#include "kernel/capability.h"
#include "vx/platform/system.h"

#include <atomic>

#if defined(__x86_64__)
#include <cpuid.h>
#include <xmmintrin.h>
#endif

namespace vx {
namespace {

constexpr uint32_t kAllBits = 0xFFFFFFFFu;
constexpr uint32_t kClassCmovAndFpu = 3;
constexpr unsigned kFlushDenormals = 0x8040; // MXCSR: flush-to-zero, denormals-are-zero

struct Words
{
    uint32_t feature = 0; // all that the processor reports
    uint32_t os = 0;      // what the operating system supports
    uint32_t cpu = 0;     // what may be used, and the class in bits 0 to 3
    uint32_t processors = 1;
};

// The process-wide block. It has no lock: the words are written by the probe, which gives the same
// ones on every thread; the mask and the override by the host, while no pixel work runs.
struct CapabilityBlock
{
    std::atomic<bool> probed{false};
    std::atomic<uint32_t> processors{1};
    std::atomic<uint32_t> cpu{0};
    std::atomic<uint32_t> os{0};
    std::atomic<uint32_t> allowed{kAllBits};
    std::atomic<uint32_t> classOverride{0};
};

CapabilityBlock g_capability;

struct CpuidLeaf1
{
    uint32_t ecx = 0;
    uint32_t edx = 0;
};

CpuidLeaf1 ReadCpuid([[maybe_unused]] uint32_t processorType)
{
    CpuidLeaf1 leaf;
#if defined(__x86_64__)
    unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
    const bool knowsCpuid = processorType == PROCESSOR_INTEL_PENTIUM || processorType == PROCESSOR_AMD_X8664;
    if (knowsCpuid && __get_cpuid(1, &eax, &ebx, &ecx, &edx))
        leaf = {ecx, edx};
#endif
    return leaf;
}

uint32_t ClassOfType(uint32_t processorType)
{
    if (processorType == PROCESSOR_INTEL_486)
        return 1;
    return processorType == PROCESSOR_INTEL_PENTIUM ? 2 : 0;
}

void AddBaseFeatures(const CpuidLeaf1& leaf, Words& words, uint32_t& processorClass)
{
    if (leaf.edx & (1u << 4))
        words.feature |= VX_CPU_TSC, words.cpu |= VX_CPU_TSC;
    if (leaf.edx & (1u << 15)) {
        words.feature |= VX_CPU_CMOV, words.cpu |= VX_CPU_CMOV;
        if (leaf.edx & 1u) {
            words.feature |= VX_CPU_FPU, words.cpu |= VX_CPU_FPU;
            processorClass = kClassCmovAndFpu;
        }
    }
    if (leaf.edx & (1u << 23))
        words.feature |= VX_CPU_MMX, words.os |= VX_CPU_MMX;
}

// A program for x86-64 runs only where the system saves the SSE registers, so the processor's word
// is test enough. The SSE3 to SSE4.2 bits show in the OS word whether the processor has them or not.
void AddVectorFeatures(const CpuidLeaf1& leaf, Words& words)
{
    const struct
    {
        bool present;
        uint32_t bit;
    } extensions[] = {{(leaf.ecx & (1u << 0)) != 0, VX_CPU_SSE3},
                      {(leaf.ecx & (1u << 9)) != 0, VX_CPU_SSSE3},
                      {(leaf.ecx & (1u << 19)) != 0, VX_CPU_SSE41},
                      {(leaf.ecx & (1u << 20)) != 0, VX_CPU_SSE42}};
    const bool sse = (leaf.edx & (1u << 25)) != 0;
    if (sse) {
        words.feature |= VX_CPU_SSE | VX_CPU_FTZ;
        words.os |= VX_CPU_SSE;
        words.cpu |= VX_CPU_SSE | VX_CPU_FTZ;
    }
    if (leaf.edx & (1u << 26)) {
        words.feature |= VX_CPU_SSE2;
        if (sse)
            words.os |= VX_CPU_SSE2, words.cpu |= VX_CPU_SSE2;
    }
    for (const auto& extension : extensions) {
        if (extension.present)
            words.feature |= extension.bit;
        if (sse)
            words.os |= extension.bit;
        if (sse && extension.present)
            words.cpu |= extension.bit;
    }
    if (leaf.ecx & (1u << 28))
        words.feature |= VX_CPU_AVX;
}

Words DetectWords()
{
    SYSTEM_INFO system;
    GetSystemInfo(&system);
    const CpuidLeaf1 leaf = ReadCpuid(system.dwProcessorType);
    Words words;
    words.processors = system.dwNumberOfProcessors;
    uint32_t processorClass = ClassOfType(system.dwProcessorType);
    AddBaseFeatures(leaf, words, processorClass);
    AddVectorFeatures(leaf, words);
    words.cpu |= processorClass;
    return words;
}

const Words& DetectedWords()
{
    static const Words words = DetectWords();
    return words;
}

void Probe()
{
    const Words& words = DetectedWords();
#if defined(__x86_64__)
    if (words.cpu & VX_CPU_SSE)
        _mm_setcsr(_mm_getcsr() | kFlushDenormals);
#endif
    g_capability.processors = words.processors;
    g_capability.os = words.os;
    g_capability.cpu = words.cpu;
    g_capability.probed = true;
}

void ProbeOnce()
{
    if (!g_capability.probed)
        Probe();
}

uint32_t ClassOfAllowed(uint32_t allowed)
{
    if (allowed & VX_CPU_SSE2)
        return 6;
    if (allowed & VX_CPU_SSE)
        return 5;
    return allowed & VX_CPU_MMX ? 4 : 0;
}

uint32_t AllBitsIfZero(uint32_t mask)
{
    return mask ? mask : kAllBits;
}

} // namespace

uint32_t AllowedCpuFeatures()
{
    const Words& words = DetectedWords();
    return (words.cpu | (words.feature & VX_CPU_AVX)) & g_capability.allowed;
}

} // namespace vx

using vx::g_capability;

uint32_t VxGetCPUSupport(uint32_t mask)
{
    vx::ProbeOnce();
    return (g_capability.allowed & g_capability.cpu & vx::AllBitsIfZero(mask)) | g_capability.classOverride;
}

uint32_t VxGetOSSupport(uint32_t mask)
{
    vx::ProbeOnce();
    return g_capability.os & vx::AllBitsIfZero(mask);
}

uint32_t VxGetProcessorCount()
{
    vx::ProbeOnce();
    return g_capability.processors;
}

int32_t VxAllowCPUSupport(uint32_t bits)
{
    g_capability.allowed |= bits;
    return 1;
}

int32_t VxDisallowCPUSupport(int32_t bits)
{
    g_capability.allowed &= ~uint32_t(bits);
    return 1;
}

int32_t VxOnlyAllowCPUSupport(uint32_t bits)
{
    if (bits & ~VX_CPU_VECTOR)
        return 0;
    g_capability.allowed = (g_capability.allowed & ~VX_CPU_VECTOR) | bits;
    return 1;
}

int32_t VxSetCPUClassBySupport()
{
    const uint32_t allowed = g_capability.allowed;
    g_capability.allowed = allowed & ~VX_CPU_CLASS_MASK;
    g_capability.classOverride = vx::ClassOfAllowed(allowed);
    return 1;
}

void VxFourCCToStringCPU(int32_t fourCC, char16_t* text)
{
    for (int i = 0; i < 4; ++i) {
        const uint32_t byte = (uint32_t(fourCC) >> (8 * i)) & 0xFF;
        text[i] = byte >= 32 && byte <= 126 ? char16_t(byte) : u'\0';
    }
    text[4] = u'\0';
}
