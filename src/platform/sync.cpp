#include "vx/platform/sync.h"

#include <new>
#include <pthread.h>

namespace {

static_assert(sizeof(pthread_mutex_t) <= sizeof(CRITICAL_SECTION),
              "the mutex lives in the published storage");
static_assert(alignof(pthread_mutex_t) <= alignof(CRITICAL_SECTION),
              "the mutex lives in the published storage");

pthread_mutex_t* Mutex(CRITICAL_SECTION* section)
{
    return std::launder(reinterpret_cast<pthread_mutex_t*>(section->opaque));
}

} // namespace

void InitializeCriticalSection(CRITICAL_SECTION* section)
{
    *section = {};
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(new (section->opaque) pthread_mutex_t, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

BOOL InitializeCriticalSectionAndSpinCount(CRITICAL_SECTION* section, DWORD)
{
    InitializeCriticalSection(section);
    return TRUE;
}

void EnterCriticalSection(CRITICAL_SECTION* section)
{
    pthread_mutex_lock(Mutex(section));
}

BOOL TryEnterCriticalSection(CRITICAL_SECTION* section)
{
    return pthread_mutex_trylock(Mutex(section)) == 0;
}

void LeaveCriticalSection(CRITICAL_SECTION* section)
{
    pthread_mutex_unlock(Mutex(section));
}

void DeleteCriticalSection(CRITICAL_SECTION* section)
{
    pthread_mutex_destroy(Mutex(section));
}
