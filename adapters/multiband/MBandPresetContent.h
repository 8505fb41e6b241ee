// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

class MAudioEffectPluginToAudioPluginMultiBandAdapter;

/// What a preset of band settings holds: the layout of the bands alone. See MPluginPresetContent.
struct MBandPresetContent {
    using Target = MAudioEffectPluginToAudioPluginMultiBandAdapter;
    static constexpr const char* kCategory = "bandsettings";

    /// [main]
    static std::string Save(Target& plugin);
    /// Throws MException, and nothing changes, for what is no band layout. [main]
    static void Load(Target& plugin, std::string_view text);
};
