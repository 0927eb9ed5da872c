#include "vx/platform/threads.h"

#include <unistd.h>

// Asked anew each time: a number kept in the thread would be the parent's after a fork.
DWORD GetCurrentThreadId()
{
    return DWORD(gettid());
}
