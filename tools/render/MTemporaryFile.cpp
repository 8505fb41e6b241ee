// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MTemporaryFile.h"

#include "core/MFormat.h"
#include "tools/render/MRenderFailure.h"

#include <cerrno>
#include <cstdlib>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace {

[[noreturn]] void Fail(const std::filesystem::path& target, const std::string& reason) {
    FailFile(MFormat("cannot write {0}: {1}", target.string(), reason));
}

/// The rights that the target has, or that a new file would get.
mode_t Rights(const std::filesystem::path& target) {
    struct stat status = {};
    if (stat(target.c_str(), &status) == 0) return status.st_mode & 07777;
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

}  // namespace

MTemporaryFile::MTemporaryFile(const std::filesystem::path& target) {
    std::error_code error;
    target_ = std::filesystem::weakly_canonical(target, error);
    if (error) Fail(target, error.message());
    if (std::filesystem::exists(target_, error) &&
        !std::filesystem::is_regular_file(target_, error)) {
        Fail(target, "it is not a regular file");
    }
    const std::string name = MFormat(".{0}.XXXXXX", target_.filename().string());
    std::string pattern = (target_.parent_path() / name).string();
    const int descriptor = mkstemp(pattern.data());
    if (descriptor < 0) Fail(target, std::generic_category().message(errno));
    fchmod(descriptor, Rights(target_));
    close(descriptor);
    path_ = pattern;
}

MTemporaryFile::~MTemporaryFile() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove(path_, ignored);
}

void MTemporaryFile::MoveIntoPlace() {
    std::error_code error;
    std::filesystem::rename(path_, target_, error);
    if (error) Fail(target_, error.message());
    path_.clear();
}
