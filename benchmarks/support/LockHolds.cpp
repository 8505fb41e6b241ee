// SPDX-License-Identifier: GPL-3.0-or-later
#include "benchmarks/support/LockHolds.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

/// One lock, held once.
struct Hold {
    const void* lock = nullptr;
    std::thread::id thread;
    Clock::duration duration{};
};

// Nothing may be allocated where a lock is taken.
constexpr std::size_t kRoom = std::size_t{1} << 16;
std::vector<Hold> holds;
std::atomic<std::size_t> holdCount{0};
std::atomic<bool> isMeasuring{false};

/// The locks that a thread holds at present.
struct Held {
    const void* lock = nullptr;
    Clock::time_point since;
};
thread_local std::array<Held, 16> held;

}  // namespace

#if defined(__linux__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

#include <dlfcn.h>
#include <pthread.h>

namespace {

void Taken(const void* lock) noexcept {
    if (!isMeasuring.load(std::memory_order_relaxed)) return;
    for (Held& place : held) {
        if (place.lock != nullptr) continue;
        place = {lock, Clock::now()};
        return;
    }
}

void Released(const void* lock) noexcept {
    if (!isMeasuring.load(std::memory_order_relaxed)) return;
    for (Held& place : held) {
        if (place.lock != lock) continue;
        place.lock = nullptr;
        const std::size_t index = holdCount.fetch_add(1, std::memory_order_relaxed);
        if (index >= kRoom) return;
        holds[index] = {lock, std::this_thread::get_id(), Clock::now() - place.since};
        return;
    }
}

using Function = int (*)(pthread_mutex_t*);

Function Find(const char* name) noexcept {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept {
    static const Function function = Find("pthread_mutex_lock");
    const int result = function(mutex);
    if (result == 0) Taken(mutex);
    return result;
}

int pthread_mutex_trylock(pthread_mutex_t* mutex) noexcept {
    static const Function function = Find("pthread_mutex_trylock");
    const int result = function(mutex);
    if (result == 0) Taken(mutex);
    return result;
}

int pthread_mutex_unlock(pthread_mutex_t* mutex) noexcept {
    static const Function function = Find("pthread_mutex_unlock");
    Released(mutex);
    return function(mutex);
}
}

#endif

void LockHolds::Name(const std::string& name, const std::function<void()>& job) {
    holds.resize(kRoom);
    holdCount = 0;
    isMeasuring = true;
    job();
    isMeasuring = false;
    for (std::size_t i = 0; i < std::min(holdCount.load(), kRoom); ++i) {
        if (holds[i].thread == std::this_thread::get_id()) names_.emplace(holds[i].lock, name);
    }
}

void LockHolds::Measure(const std::function<void()>& job) {
    holds.resize(kRoom);
    holdCount = 0;
    isMeasuring = true;
    job();
    isMeasuring = false;
    std::map<std::string, double> longest;
    for (std::size_t i = 0; i < std::min(holdCount.load(), kRoom); ++i) {
        const auto found = names_.find(holds[i].lock);
        const bool isOwn = holds[i].thread == std::this_thread::get_id();
        if (found == names_.end() && !isOwn) continue;
        double& duration = longest[found != names_.end() ? found->second : "other"];
        duration = std::max(duration,
                            std::chrono::duration<double, std::micro>(holds[i].duration).count());
    }
    for (const auto& [name, duration] : longest) holds_[name].push_back(duration);
}
