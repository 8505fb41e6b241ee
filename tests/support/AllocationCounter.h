// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Counts what the calling thread takes from the heap while it lives. Programs that link it replace
/// the global operator new.
class AllocationCounter {
public:
    AllocationCounter() noexcept;
    ~AllocationCounter();
    AllocationCounter(const AllocationCounter&) = delete;
    AllocationCounter& operator=(const AllocationCounter&) = delete;

    /// Allocations since the counter was made.
    int Count() const noexcept;

private:
    int before_;
};

/// Lets the calling thread make `count` more allocations while it lives and fails all that follow.
/// Not for nesting.
class AllocationLimit {
public:
    explicit AllocationLimit(int count) noexcept;
    ~AllocationLimit();
    AllocationLimit(const AllocationLimit&) = delete;
    AllocationLimit& operator=(const AllocationLimit&) = delete;

    /// Whether the next allocation fails.
    bool IsReached() const noexcept;
};
