// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MException.h"
#include "plugin/MAudioPlugin.h"
#include "plugin/MPluginState.h"
#include "plugin/presets/MActivePresets.h"
#include "plugin/presets/MPluginPresetContent.h"

#include <gtest/gtest.h>

namespace {

/// A plug-in whose state is one number and its active presets.
class NumberPlugin : public MAudioPlugin {
public:
    void Store(MXMLNode node, MArchive& archive) override {
        if (archive.StartsFromDefaults()) number = 0;
        archive.Integer(node, "Number", number);
        active.Store(node, archive);
    }

    int number = 0;
    MActivePresets active;
};

void Load(MAudioPlugin& plugin, const std::string& text) {
    MPluginState::Load(plugin, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

}  // namespace

TEST(MActivePresets, KeepsEachSlotsStateThroughSwitchesComparisonsAndCopies) {
    NumberPlugin plugin;
    MActivePresets& active = plugin.active;
    plugin.number = 1;
    active.Switch(plugin, 3);  // never used: starts as a copy
    EXPECT_EQ(plugin.number, 1);
    plugin.number = 4;
    active.Compare(plugin);
    EXPECT_EQ(active.Current(), 0);
    EXPECT_EQ(plugin.number, 1);
    active.Compare(plugin);
    EXPECT_EQ(plugin.number, 4);
    active.Copy(plugin, 3, 5);
    plugin.number = 5;
    active.Copy(plugin, 0, 3);  // into what is heard
    EXPECT_EQ(plugin.number, 1);
    active.Switch(plugin, 5);
    EXPECT_EQ(plugin.number, 4);
    EXPECT_TRUE(active.IsUsed(5));
    EXPECT_FALSE(active.IsUsed(7));
    for (const int slot : {-1, 8}) EXPECT_THROW(active.Switch(plugin, slot), MException);
    EXPECT_EQ(active.Current(), 5);
}

TEST(MActivePresets, TravelWithTheProjectButNotWithAPreset) {
    NumberPlugin plugin;
    plugin.number = 1;
    plugin.active.Switch(plugin, 2);
    plugin.number = 2;
    plugin.active.Switch(plugin, 7);
    plugin.number = 3;
    const std::string project = MPluginState::SaveText(plugin);
    const std::string preset = MPluginPresetContent::Save(plugin);
    EXPECT_EQ(preset.find("ActivePresets"), std::string::npos);

    NumberPlugin copy;
    Load(copy, project);
    EXPECT_EQ(copy.number, 3);
    EXPECT_EQ(copy.active.Current(), 7);
    EXPECT_EQ(MPluginState::SaveText(copy), project);
    copy.active.Switch(copy, 0);
    EXPECT_EQ(copy.number, 1);
    MPluginPresetContent::Load(copy, preset);
    EXPECT_EQ(copy.number, 3);
    copy.active.Switch(copy, 2);
    EXPECT_EQ(copy.number, 2);

    // Another project starts with slots of its own, however odd its indices are.
    Load(copy,
         "<settings Number='8'><ActivePresets CurrentPresetIndex='99'><Preset Index='-1'><s/>"
         "</Preset><Preset Index='8'><s/></Preset><Preset/></ActivePresets></settings>");
    EXPECT_EQ(copy.active.Current(), 0);
    for (int slot = 1; slot < MActivePresets::kSlots; ++slot) {
        EXPECT_FALSE(copy.active.IsUsed(slot));
    }
    EXPECT_THROW(MPluginPresetContent::Load(copy, "<presets/>"), MException);
    EXPECT_EQ(copy.number, 8);
}
