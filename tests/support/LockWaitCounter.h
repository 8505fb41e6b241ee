// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Counts how often the calling thread found a lock taken and had to wait for it. Programs that
/// link it replace the system's lock function; under the sanitizers, which do so themselves, and
/// outside Linux nothing is counted.
class LockWaitCounter {
public:
    LockWaitCounter() noexcept;

    /// Whether this program counts at all.
    static bool Counts() noexcept;
    /// Waits since the counter was made.
    int Count() const noexcept;

private:
    int before_;
};
