// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>

class MAudioPlugin;

/// States of the plug-in in files: XML text, or as hosts keep them.
namespace MStateFile {

/// Loads a state of either kind, or an exported preset, whatever the file's name. Throws
/// MRenderFailure (File), also for XML that holds no settings. [main]
void Load(MAudioPlugin& plugin, const std::filesystem::path& file);

/// Saves the state: compressed for a name that ends in .chunk or .bin, as text for any other.
/// Throws MRenderFailure (File), also for a file that exists unless `overwrites`. [main]
void Save(MAudioPlugin& plugin, const std::filesystem::path& file, bool overwrites);

}  // namespace MStateFile
