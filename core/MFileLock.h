// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

/// Keeps other processes, and other threads of this one, away from a file while it is rewritten.
/// The lock is a file of its own beside it, since the file itself is replaced; it stays there
/// empty, because removing it would let two holders in at once. A process that dies releases it.
class MFileLock {
public:
    /// Waits for the lock `file`, which is made when it is missing, for five seconds at most.
    /// Throws MException when it cannot be made or had. [main]
    explicit MFileLock(const std::filesystem::path& file);
    ~MFileLock();
    MFileLock(const MFileLock&) = delete;
    MFileLock& operator=(const MFileLock&) = delete;

private:
    bool TryLock() noexcept;
    void Close() noexcept;

#ifdef _WIN32
    void* handle_;
#else
    int handle_;
#endif
};
