// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/LockWaitCounter.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define SANITIZED
#endif
#endif

#if defined(__linux__) && !defined(SANITIZED) && !defined(__SANITIZE_ADDRESS__) && \
    !defined(__SANITIZE_THREAD__)
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
