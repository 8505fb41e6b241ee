// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/presets/MPluginPresetContent.h"

#include "core/MException.h"
#include "core/MFormat.h"
#include "core/MXML.h"
#include "plugin/MPluginState.h"
#include "plugin/presets/MActivePresets.h"

namespace {

MXMLTree ParseState(std::string_view text) {
    MXMLTree tree = MXMLTree::Parse(text);
    if (tree.Root().Name() != MPluginState::kRootName) {
        throw MException(MFormat("<{0}> is no state of the plug-in.", tree.Root().Name()));
    }
    return tree;
}

void LoadSound(MAudioPlugin& plugin, const MXMLTree& tree) {
    tree.Root().RemoveChildren(MActivePresets::kElement);
    tree.Root().AddChild(MActivePresets::kElement).SetAttribute(MActivePresets::kKeep, "1");
    tree.Root().SetAttribute(MPluginPresetContent::kKeepMIDI, "1");
    const std::string state = tree.Write();
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(state.data());
    MPluginState::Load(plugin, {bytes, state.size()});
}

}  // namespace

std::string MPluginPresetContent::Save(MAudioPlugin& plugin) {
    const MXMLTree tree = MXMLTree::Parse(MPluginState::SaveText(plugin));
    tree.Root().RemoveChildren(MActivePresets::kElement);
    return tree.Write();
}

void MPluginPresetContent::Load(MAudioPlugin& plugin, std::string_view text) {
    const MXMLTree tree = ParseState(text);
    tree.Root().SetAttribute(kKeepBypass, "1");
    LoadSound(plugin, tree);
}

void MPluginPresetContent::Restore(MAudioPlugin& plugin, std::string_view text) {
    LoadSound(plugin, ParseState(text));
}
