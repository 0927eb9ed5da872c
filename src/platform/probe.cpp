#include "vx/platform/probe.h"

#include <cerrno>
#include <csignal>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// Asks the kernel to read a signal set from the address for an operation that does not exist: it
// copies the set first, so that EFAULT tells memory that cannot be read and EINVAL all other. The
// set lies at a multiple of its 8 bytes and thus within one page.
bool IsReadable(uintptr_t address)
{
    constexpr int kNoSuchOperation = ~0;
    constexpr size_t kSetBytes = 8;
    syscall(SYS_rt_sigprocmask, kNoSuchOperation, address & ~uintptr_t(kSetBytes - 1), nullptr, kSetBytes);
    return errno == EINVAL;
}

} // namespace

BOOL IsBadReadPtr(const void* address, SIZE_T bytes)
{
    if (bytes == 0)
        return FALSE;
    const uintptr_t first = reinterpret_cast<uintptr_t>(address);
    const uintptr_t last = first + (bytes - 1);
    if (last < first)
        return TRUE;
    const int savedErrno = errno;
    const uintptr_t page = uintptr_t(sysconf(_SC_PAGESIZE));
    bool readable = IsReadable(first);
    for (uintptr_t at = (first | (page - 1)) + 1; readable && at != 0 && at <= last; at += page)
        readable = IsReadable(at);
    errno = savedErrno;
    return !readable;
}
