// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <string>

/// Every byte of the file. Throws MRenderFailure (File) with the system's reason. [main]
std::string MReadFileContents(const std::filesystem::path& path);
