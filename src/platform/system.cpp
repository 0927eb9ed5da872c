#include "vx/platform/system.h"

#include <algorithm>
#include <sched.h>
#include <unistd.h>

#if defined(__x86_64__)
#include <cpuid.h>
#endif

namespace {

constexpr DWORD kAllocationGranularity = 65536; // where mappings may begin
constexpr uintptr_t kLowestAddress = 0x10000;
constexpr uintptr_t kHighestAddress = 0x7FFFFFFEFFFF;

void FillProcessors(SYSTEM_INFO& info)
{
    cpu_set_t allowed;
    CPU_ZERO(&allowed);
    if (sched_getaffinity(0, sizeof(allowed), &allowed) == 0 && CPU_COUNT(&allowed) > 0) {
        info.dwNumberOfProcessors = DWORD(CPU_COUNT(&allowed));
        for (int processor = 0; processor < 64; ++processor)
            if (CPU_ISSET(processor, &allowed))
                info.dwActiveProcessorMask |= DWORD_PTR(1) << processor;
        return;
    }
    // More processors than a cpu_set_t holds: the count is right, the mask shows the first of them.
    const long online = std::max(1L, sysconf(_SC_NPROCESSORS_ONLN));
    info.dwNumberOfProcessors = DWORD(online);
    info.dwActiveProcessorMask = online >= 64 ? ~DWORD_PTR(0) : (DWORD_PTR(1) << online) - 1;
}

void FillProcessorModel(SYSTEM_INFO& info)
{
#if defined(__x86_64__)
    info.wProcessorArchitecture = PROCESSOR_ARCHITECTURE_AMD64;
    info.dwProcessorType = PROCESSOR_AMD_X8664;
    unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
    if (!__get_cpuid(1, &eax, &ebx, &ecx, &edx))
        return;
    const unsigned family = (eax >> 8) & 15, model = (eax >> 4) & 15;
    const unsigned extendedFamily = (eax >> 20) & 255, extendedModel = (eax >> 16) & 15;
    info.wProcessorLevel = WORD(family == 15 ? family + extendedFamily : family);
    info.wProcessorRevision = WORD(((extendedModel << 4 | model) << 8) | (eax & 15));
#else
    info.wProcessorArchitecture = PROCESSOR_ARCHITECTURE_UNKNOWN;
#endif
}

} // namespace

void GetSystemInfo(SYSTEM_INFO* info)
{
    *info = {};
    info->dwPageSize = DWORD(sysconf(_SC_PAGESIZE));
    info->lpMinimumApplicationAddress = reinterpret_cast<void*>(kLowestAddress);
    info->lpMaximumApplicationAddress = reinterpret_cast<void*>(kHighestAddress);
    info->dwAllocationGranularity = kAllocationGranularity;
    FillProcessors(*info);
    FillProcessorModel(*info);
}

void GetNativeSystemInfo(SYSTEM_INFO* info)
{
    GetSystemInfo(info);
}
