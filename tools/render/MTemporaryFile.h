// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

/// A new file beside its target that takes the target's place once it is complete, so that nobody
/// ever meets half of it. Unless it was moved into place, it is removed with its object.
class MTemporaryFile {
public:
    /// Creates the file, hidden, in the target's folder. A target that is a link stands for the
    /// file that it points to. Throws MRenderFailure (File) when the folder does not take it or the
    /// target is no regular file. [main]
    explicit MTemporaryFile(const std::filesystem::path& target);
    ~MTemporaryFile();
    MTemporaryFile(const MTemporaryFile&) = delete;
    MTemporaryFile& operator=(const MTemporaryFile&) = delete;

    const std::filesystem::path& Path() const { return path_; }

    /// Puts the file in the target's place in one step, replacing it. Throws MRenderFailure (File).
    /// [main]
    void MoveIntoPlace();

private:
    std::filesystem::path target_;
    std::filesystem::path path_;  // empty once moved
};
