// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MMutex.h"

#include "core/MException.h"

#include <system_error>

namespace {

constexpr const char* kNotAcquired = "Could not acquire mutex.";

#if defined(__SANITIZE_THREAD__)
// The thread sanitizer does not know the wait on the steady clock and takes the lock for free.
using WaitClock = std::chrono::system_clock;
#else
using WaitClock = std::chrono::steady_clock;
#endif

}  // namespace

void MMutex::Lock() {
    try {
        mutex_.lock();
    } catch (const std::system_error&) {
        throw MException(kNotAcquired);
    }
}

void MMutex::Lock(std::chrono::milliseconds timeout) {
    if (!mutex_.try_lock_until(WaitClock::now() + timeout)) throw MException(kNotAcquired);
}

bool MMutex::TryLock() noexcept { return mutex_.try_lock(); }
