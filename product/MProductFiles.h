// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/presets/MPresetLibrary.h"
#include "plugin/presets/MSettings.h"

#include <memory>

/// The product's files in the user's folders. Making these touches no file; nothing here throws.
/// Without a home the settings last as long as their object, and presets cannot be saved.
namespace MProductFiles {

/// [main]
std::unique_ptr<MSettings> MakeSettings();
/// Presets of the whole plug-in, those of the factory included. [main]
std::unique_ptr<MPresetLibrary> MakePresets();
/// Presets of band layouts, which stand in the same file. [main]
std::unique_ptr<MPresetLibrary> MakeBandPresets();

}  // namespace MProductFiles
