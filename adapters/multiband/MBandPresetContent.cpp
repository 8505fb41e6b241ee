// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MBandPresetContent.h"

#include "adapters/multiband/MAudioEffectPluginToAudioPluginMultiBandAdapter.h"
#include "core/MException.h"
#include "core/MFormat.h"
#include "core/MXML.h"

namespace {

constexpr std::string_view kRoot = "bands";

}  // namespace

std::string MBandPresetContent::Save(Target& plugin) {
    const MXMLTree tree(kRoot);
    plugin.SaveBandSettings(tree.Root());
    return tree.Write();
}

void MBandPresetContent::Load(Target& plugin, std::string_view text) {
    const MXMLTree tree = MXMLTree::Parse(text);
    if (tree.Root().Name() != kRoot) {
        throw MException(MFormat("<{0}> is no band layout.", tree.Root().Name()));
    }
    plugin.LoadBandSettings(tree.Root());
}
