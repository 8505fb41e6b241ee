// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/LockWaitCounter.h"

#include "tests/support/Sanitized.h"

#if defined(__linux__) && !M_SANITIZED
#define COUNTS 1
#else
#define COUNTS 0
#endif

namespace {
thread_local int waits = 0;
}

#if COUNTS

#include <dlfcn.h>
#include <pthread.h>

extern "C" int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
    using Lock = int (*)(pthread_mutex_t*);
    static const Lock lock = reinterpret_cast<Lock>(dlsym(RTLD_NEXT, "pthread_mutex_lock"));
    if (pthread_mutex_trylock(mutex) == 0) return 0;
    ++waits;
    return lock(mutex);
}

#endif

LockWaitCounter::LockWaitCounter() noexcept : before_(waits) {}

int LockWaitCounter::Count() const noexcept { return waits - before_; }

bool LockWaitCounter::Counts() noexcept { return COUNTS != 0; }
