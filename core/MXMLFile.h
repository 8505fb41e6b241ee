// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/MFiles.h"
#include "core/MXML.h"

#include <filesystem>
#include <functional>
#include <string>

/// A user's file that holds an XML tree, shared with other instances and processes.
///
/// Changes are made to what the file holds at that moment, under a lock, so that none gets lost and
/// what another version has put there stays. A file that holds no such tree is set aside under a
/// name of its own and reported; what follows goes on as if there were none. Any number of threads
/// may use one object at once.
class MXMLFile {
public:
    /// A larger file is taken for damaged; none is written. Some ten thousand presets fit.
    static constexpr std::size_t kLargest = std::size_t{64} << 20;  // bytes
    static constexpr int kMostParts = 1 << 22;

    /// Touches nothing yet. [any]
    MXMLFile(std::filesystem::path file, std::string rootName);

    /// The tree of the file; an empty one when it is missing or damaged. Throws MException when it
    /// is there but cannot be read. [main]
    MXMLTree Read() const;

    /// Lets `change` work on the tree of the file and writes what comes out; nothing is written
    /// when it throws. Throws MException when the file cannot be read, locked or written, or could
    /// not be read again. [main]
    void Update(const std::function<void(MXMLNode root)>& change) const;

    /// Another one than before when the file has been changed. [main]
    MFiles::Stamp Stamp() const noexcept { return MFiles::StampOf(file_); }

private:
    MXMLTree Parse(const std::string& text) const;
    MXMLTree ReadOrSetAside() const;
    std::filesystem::path LockFile() const;

    const std::filesystem::path file_;
    const std::string rootName_;
};
