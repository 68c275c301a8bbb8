// Critical sections: recursive mutexes of the C library, which thread checkers and debuggers know.
#include <pthread.h>

#include <new>

#include "LastError.h"
#include "win/kernel.h"

namespace {

static_assert(sizeof(pthread_mutex_t) <= sizeof(CRITICAL_SECTION::storage));
static_assert(alignof(pthread_mutex_t) <= alignof(CRITICAL_SECTION));

pthread_mutex_t* MutexOf(LPCRITICAL_SECTION section) {
    return std::launder(reinterpret_cast<pthread_mutex_t*>(section->storage));
}

}  // namespace

void InitializeCriticalSection(LPCRITICAL_SECTION section) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(new (section->storage) pthread_mutex_t, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

void EnterCriticalSection(LPCRITICAL_SECTION section) {
    if (pthread_mutex_lock(MutexOf(section)) != 0) {
        kernel::Unsupported("a critical section that was not initialized, or entered without end");
    }
}

void LeaveCriticalSection(LPCRITICAL_SECTION section) {
    if (pthread_mutex_unlock(MutexOf(section)) != 0) {
        kernel::Unsupported("leaving a critical section that this thread is not in");
    }
}

void DeleteCriticalSection(LPCRITICAL_SECTION section) {
    if (pthread_mutex_destroy(MutexOf(section)) != 0) {
        kernel::Unsupported("deleting a critical section that a thread is in");
    }
}
