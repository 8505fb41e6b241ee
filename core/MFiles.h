// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

/// Whole files. Failures are MExceptions that name the file.
namespace MFiles {

/// Paths as UTF-8 text and back. [any]
std::string ToText(const std::filesystem::path& path);
std::filesystem::path FromText(std::string_view text);

/// The content of `file`; empty when there is no such file. Throws when it cannot be read or is
/// longer than `largest` bytes. [main]
std::optional<std::string> Read(const std::filesystem::path& file, std::size_t largest);

/// Makes `content` the whole of `file`: whoever opens it, and whatever goes wrong, finds the old
/// content or the new one and never a part. Keeps the permissions of the file that was there, and
/// links that lead to it. Makes the folders that are missing. Where threads or processes replace
/// one file at once, the last one's content stays.
///
/// The content is written beside the file first, under a name of the call's own. A crash in the
/// middle leaves that behind; the next call for the same folder removes it. [main]
void Replace(const std::filesystem::path& file, std::string_view content);

/// Renames `file` to its own name and ".damaged", or ".damaged-2" and so on where that is taken.
/// Returns the new name. [main]
std::filesystem::path SetAside(const std::filesystem::path& file);

/// Tells one version of a file from another without opening it.
struct Stamp {
    std::filesystem::file_time_type time{};
    std::uintmax_t size = 0;
    bool operator==(const Stamp&) const = default;
};
/// All zero for a file that is not there. [main]
Stamp StampOf(const std::filesystem::path& file) noexcept;

}  // namespace MFiles
