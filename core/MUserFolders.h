// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

/// Where the platform wants a user's files: XDG's base directories on Linux, the known folder of
/// roaming application data on Windows. Nothing is created. Each throws MException when the
/// platform names no such folder.
namespace MUserFolders {

/// What the user has chosen about programs. [any]
std::filesystem::path Configuration();
/// What the user has made. [any]
std::filesystem::path Data();

}  // namespace MUserFolders
