// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

class MAudioPlugin;

/// What a preset of the whole plug-in holds: its state, without the active presets, of which it is
/// one. A content is a type with these members; MPresetManagerT works with any.
struct MPluginPresetContent {
    using Target = MAudioPlugin;
    /// Of presets.xml.
    static constexpr const char* kCategory = "plugin";
    /// Attribute of what is loaded as a preset: MIDI assignments stay as they are. They belong to
    /// the controllers that the user has, and one of those may be the one that chose the preset.
    static constexpr const char* kKeepMIDI = "KeepMIDI";
    /// The same for the bypass, which is about listening and not about the sound of a preset.
    static constexpr const char* kKeepBypass = "KeepBypass";

    /// [main]
    static std::string Save(MAudioPlugin& plugin);
    /// The active presets, MIDI assignments and the bypass stay as they are. Throws MException, and
    /// nothing changes, for what is no state. [main]
    static void Load(MAudioPlugin& plugin, std::string_view text);
    /// Goes back to what Save gave, with its bypass: for the active presets. Throws as Load. [main]
    static void Restore(MAudioPlugin& plugin, std::string_view text);
};
