// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/presets/MPreset.h"

#include <string>
#include <string_view>
#include <vector>

/// Presets and further folders, each in their order. Plain data.
struct MPresetFolder {
    std::string name;
    std::vector<MPresetFolder> folders;
    std::vector<MPreset> presets;
};

/// Presets are found by paths such as "Dub/Tape echo": names of folders, then that of the preset.
/// Case does not matter (ASCII).
namespace MPresetTree {

/// A preset and its path as it is spelled.
struct Place {
    std::string path;
    const MPreset* preset;
};

/// Every preset below `root`, which must outlive the result: those of the subfolders first, the
/// order of the file within a folder. [any]
std::vector<Place> List(const MPresetFolder& root);

/// The names in a path; blanks around them are dropped. Throws MException when there is none, when
/// one is empty, longer than 200 bytes or has control characters. [any]
std::vector<std::string> Split(std::string_view path);

}  // namespace MPresetTree
