// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MFiles.h"

#include "core/MException.h"
#include "core/MFormat.h"

#include <atomic>
#include <cstdint>
#include <fstream>
#include <system_error>

#ifdef _WIN32
#include <windows.h>
#else
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace fs = std::filesystem;

namespace {

[[noreturn]] void Fail(std::string_view format, const fs::path& file) {
    throw MException(MFormat(format, MFiles::ToText(file)));
}

constexpr std::string_view kNotWritten = "\"{0}\" cannot be written.";

#ifdef _WIN32

std::uint64_t ProcessIdentifier() noexcept { return GetCurrentProcessId(); }

/// Puts what the new `file` holds in the place of `target`. Answers false where the file has gone.
bool MoveOver(const fs::path& file, const fs::path& target) {
    // Someone may be reading the target, a virus scanner for one: that takes milliseconds.
    constexpr int kTries = 50;
    for (int i = 0; i < kTries; ++i) {
        if (MoveFileExW(file.c_str(), target.c_str(),
                        MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0) {
            return true;
        }
        if (GetLastError() == ERROR_FILE_NOT_FOUND) return false;
        Sleep(10);
    }
    DeleteFileW(file.c_str());
    Fail(kNotWritten, target);
}

/// Writes a new `file` and puts it in the place of `target`. Answers false where there is such a
/// file already, or another call has taken it for a leftover; leaves nothing behind when it throws.
/// Who may read the target is up to the folder.
bool ReplaceBy(const fs::path& file, const fs::path& target, std::string_view content) {
    // Shared with nobody, it cannot be removed meanwhile.
    HANDLE const handle = CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        if (GetLastError() == ERROR_FILE_EXISTS) return false;
        Fail(kNotWritten, target);
    }
    DWORD written = 0;
    const bool done = WriteFile(handle, content.data(), static_cast<DWORD>(content.size()),
                                &written, nullptr) != 0 &&
                      written == content.size() && FlushFileBuffers(handle) != 0;
    CloseHandle(handle);
    if (done) return MoveOver(file, target);
    DeleteFileW(file.c_str());
    Fail(kNotWritten, target);
}

/// Removes a file unless someone is writing it.
void RemoveLeftover(const fs::path& file) {
    // Shared with nobody, it cannot get its new name meanwhile, under which it would then go.
    HANDLE const handle =
        CreateFileW(file.c_str(), DELETE, 0, nullptr, OPEN_EXISTING,
                    FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (handle != INVALID_HANDLE_VALUE) CloseHandle(handle);
}

#else

std::uint64_t ProcessIdentifier() noexcept { return static_cast<std::uint64_t>(getpid()); }

/// A file as the system has it open.
class OpenFile {
public:
    OpenFile(const fs::path& file, int flags, mode_t mode = 0) noexcept
        : handle_(open(file.c_str(), flags | O_CLOEXEC, mode)) {}
    ~OpenFile() {
        if (handle_ >= 0) close(handle_);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    int Handle() const noexcept { return handle_; }
    /// Locks the file for as long as it is open; false, with errno, where that cannot be.
    bool TryLock() const noexcept { return flock(handle_, LOCK_EX | LOCK_NB) == 0; }

private:
    const int handle_;  // negative: could not be opened
};

/// Gives a file the owner and the permissions of another, as far as the system lets us. Network
/// file systems may let nobody: the file then stays its owner's alone, and the content counts for
/// more.
void Resemble(int handle, const struct stat& model) {
    // Without the group, what the group may do would go to another one.
    const bool isOurs = fchown(handle, model.st_uid, model.st_gid) == 0 ||
                        fchown(handle, static_cast<uid_t>(-1), model.st_gid) == 0;
    constexpr mode_t kAll = 07777, kOfGroup = 070;
    static_cast<void>(fchmod(handle, model.st_mode & (isOurs ? kAll : kAll & ~kOfGroup)));
}

bool WriteAll(int handle, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written = write(handle, content.data(), content.size());
        if (written > 0) content.remove_prefix(static_cast<std::size_t>(written));
        if (written == 0 || (written < 0 && errno != EINTR)) return false;
    }
    // A rename that outruns the data would leave an empty file after a power cut.
    return fsync(handle) == 0;
}

/// Writes a new `file` and puts it in the place of `target`, with the permissions of the one that
/// is there. Answers false where there is such a file already, or another call has taken it for a
/// leftover; leaves nothing behind when it throws.
bool ReplaceBy(const fs::path& file, const fs::path& target, std::string_view content) {
    struct stat present {};
    const bool isNew = stat(target.c_str(), &present) != 0;
    const OpenFile opened(file, O_WRONLY | O_CREAT | O_EXCL, isNew ? 0666 : 0600);
    if (opened.Handle() < 0) {
        if (errno == EEXIST) return false;
        Fail(kNotWritten, target);
    }
    // By the lock other calls know that the file is being written, until it has its new name. Where
    // it was removed before it was locked, there is nothing to rename.
    if (!opened.TryLock() && errno == EWOULDBLOCK) return false;
    if (!isNew) Resemble(opened.Handle(), present);
    if (WriteAll(opened.Handle(), content)) {
        if (rename(file.c_str(), target.c_str()) == 0) return true;
        if (errno == ENOENT) return false;
    }
    unlink(file.c_str());
    Fail(kNotWritten, target);
}

/// Removes a file unless someone is writing it.
void RemoveLeftover(const fs::path& file) {
    const OpenFile opened(file, O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
    if (opened.Handle() >= 0 && opened.TryLock()) unlink(file.c_str());
}

#endif

constexpr std::string_view kTemporaryPrefix = ".kestrune-", kTemporarySuffix = ".tmp";

/// A file name that no other call, here or in another process, is using. Where several libraries
/// of one process count for themselves, or computers share a folder, some are taken all the same.
fs::path TemporaryName() {
    static std::atomic<std::uint64_t> calls{0};
    return MFormat("{0}{1}-{2}{3}", kTemporaryPrefix, ProcessIdentifier(), ++calls,
                   kTemporarySuffix);
}

/// Removes what calls that a crash has ended left in a folder.
void RemoveLeftovers(const fs::path& folder) {
    // Compared as the system has them: names of others need not be valid text.
    const fs::path prefix = kTemporaryPrefix, suffix = kTemporarySuffix;
    std::error_code error;
    for (fs::directory_iterator i(folder, error), end; !error && i != end; i.increment(error)) {
        const fs::path name = i->path().filename();
        if (!name.native().starts_with(prefix.native()) || name.extension() != suffix) continue;
        RemoveLeftover(i->path());
    }
}

/// Where links at `file` lead to, be it there or not.
fs::path TargetOf(const fs::path& file) {
    constexpr int kMostLinks = 40;  // as the system's own limit
    fs::path target = file;
    std::error_code error;
    for (int i = 0; i <= kMostLinks; ++i) {
        if (!fs::is_symlink(fs::symlink_status(target, error))) return target;
        const fs::path next = fs::read_symlink(target, error);
        if (error) break;
        target = target.parent_path() / next;
    }
    Fail(kNotWritten, file);
}

}  // namespace

std::string MFiles::ToText(const fs::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

fs::path MFiles::FromText(std::string_view text) { return std::u8string(text.begin(), text.end()); }

std::optional<std::string> MFiles::Read(const fs::path& file, std::size_t largest) {
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (status.type() == fs::file_type::not_found) return std::nullopt;
    if (status.type() != fs::file_type::regular) Fail("\"{0}\" cannot be read.", file);
    std::ifstream stream(file, std::ios::binary);
    std::string content;
    char block[65536];
    while (stream.read(block, sizeof block), stream.gcount() > 0) {
        content.append(block, static_cast<std::size_t>(stream.gcount()));
        if (content.size() > largest) Fail("\"{0}\" is too large.", file);
    }
    if (!stream.eof() || stream.bad()) Fail("\"{0}\" cannot be read.", file);
    return content;
}

void MFiles::Replace(const fs::path& file, std::string_view content) {
    // The file a link leads to is what the user keeps elsewhere; the link itself stays.
    const fs::path target = TargetOf(file);
    std::error_code error;
    fs::create_directories(target.parent_path(), error);
    if (error) Fail(kNotWritten, file);
    const fs::path folder = target.parent_path();
    RemoveLeftovers(folder);
    while (!ReplaceBy(folder / TemporaryName(), target, content)) {
    }
}

fs::path MFiles::SetAside(const fs::path& file) {
    fs::path aside = fs::path(file) += ".damaged";
    std::error_code error;
    for (int i = 2; fs::exists(aside, error); ++i) {
        aside = fs::path(file) += MFormat(".damaged-{0}", i);
    }
    fs::rename(file, aside, error);
    if (error) Fail("\"{0}\" cannot be renamed.", file);
    return aside;
}

MFiles::Stamp MFiles::StampOf(const fs::path& file) noexcept {
    std::error_code error;
    Stamp stamp;
    stamp.time = fs::last_write_time(file, error);
    if (error) return {};
    stamp.size = fs::file_size(file, error);
    return error ? Stamp{} : stamp;
}
