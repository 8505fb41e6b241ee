// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MFileLock.h"

#include "core/MException.h"
#include "core/MFiles.h"
#include "core/MFormat.h"

#include <chrono>
#include <thread>

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#endif

namespace {

constexpr int kTries = 500;
constexpr std::chrono::milliseconds kPause{10};

[[noreturn]] void Fail(const std::filesystem::path& file) {
    throw MException(MFormat("\"{0}\" cannot be locked.", MFiles::ToText(file)));
}

}  // namespace

MFileLock::MFileLock(const std::filesystem::path& file)
#ifdef _WIN32
    : handle_(CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE,
                          FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                          FILE_ATTRIBUTE_NORMAL, nullptr)) {
    if (handle_ == INVALID_HANDLE_VALUE) Fail(file);
#else
    : handle_(open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644)) {
    if (handle_ < 0) Fail(file);
#endif
    // Polled, so that a holder which hangs costs an error instead of the host.
    for (int i = 0; i < kTries; ++i) {
        if (TryLock()) return;
        std::this_thread::sleep_for(kPause);
    }
    Close();
    Fail(file);
}

MFileLock::~MFileLock() { Close(); }  // closing releases

bool MFileLock::TryLock() noexcept {
#ifdef _WIN32
    OVERLAPPED place = {};
    return LockFileEx(handle_, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0,
                      &place) != 0;
#else
    return flock(handle_, LOCK_EX | LOCK_NB) == 0;
#endif
}

void MFileLock::Close() noexcept {
#ifdef _WIN32
    CloseHandle(handle_);
#else
    close(handle_);
#endif
}
