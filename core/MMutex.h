// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <mutex>

/// A lock that one thread holds at a time and never takes twice. A lock that cannot be had raises
/// MException "Could not acquire mutex.".
class MMutex {
public:
    MMutex() = default;
    MMutex(const MMutex&) = delete;
    MMutex& operator=(const MMutex&) = delete;

    /// Waits without limit. [any]
    void Lock();
    /// Waits at most `timeout`, then raises the exception. [main]
    void Lock(std::chrono::milliseconds timeout);
    /// Returns at once whether the lock was free and is now held. [audio]
    bool TryLock() noexcept;
    /// Releases the lock, which the calling thread must hold. [any]
    void Unlock() noexcept { mutex_.unlock(); }

private:
    std::timed_mutex mutex_;
};

/// Holds a lock for a scope.
class MLock {
public:
    /// Waits without limit. [any]
    explicit MLock(MMutex& mutex) : mutex_(mutex) { mutex_.Lock(); }
    /// Waits at most `timeout`; raises MException after that. [main]
    MLock(MMutex& mutex, std::chrono::milliseconds timeout) : mutex_(mutex) {
        mutex_.Lock(timeout);
    }
    ~MLock() { mutex_.Unlock(); }
    MLock(const MLock&) = delete;
    MLock& operator=(const MLock&) = delete;

private:
    MMutex& mutex_;
};

/// Holds a lock for a scope if it was free at its start. [audio]
class MTryLock {
public:
    explicit MTryLock(MMutex& mutex) noexcept : mutex_(mutex.TryLock() ? &mutex : nullptr) {}
    ~MTryLock() {
        if (mutex_ != nullptr) mutex_->Unlock();
    }
    MTryLock(const MTryLock&) = delete;
    MTryLock& operator=(const MTryLock&) = delete;

    /// Whether the lock is held.
    explicit operator bool() const noexcept { return mutex_ != nullptr; }

private:
    MMutex* mutex_;
};
