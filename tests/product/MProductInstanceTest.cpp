// SPDX-License-Identifier: GPL-3.0-or-later
#include "product/MProductInstance.h"
#include "tests/support/RunPlugin.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>

namespace {

/// Makes `folder` the user's, where that can be done.
void UseFolder([[maybe_unused]] const TemporaryFolder& folder) {
#ifndef _WIN32
    setenv("XDG_DATA_HOME", (folder / "data").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (folder / "config").c_str(), 1);
#endif
}

}  // namespace

TEST(MProductInstance, StepsThroughThePresetsWhileAudioRuns) {
    const TemporaryFolder folder;
    UseFolder(folder);
    const auto product = MProductInstance::Create();
    ASSERT_NE(product, nullptr);
    MAudioPlugin& plugin = product->Instance();
    plugin.SetSampleRate(48000);
    plugin.InitProcessing();
    Channels input(2, 512), output(2, 512);
    const auto list = product->PluginPresets().Library().List();
    const auto press = [&](const char* id, std::size_t expected) {
        const std::uint32_t trigger = FindParameter(plugin, id);
        RunPlugin(plugin, input, output, 512);  // as any press, after a block without
        plugin.SetParameter(trigger, 1, false);
        const auto isThere = [&] {
            return product->PluginPresets().ActivePath() == list->entries[expected].path;
        };
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!isThere() && std::chrono::steady_clock::now() < deadline) {
            RunPlugin(plugin, input, output, 512);
        }
        EXPECT_TRUE(isThere()) << id << " " << expected;
    };
    press("Preset next", 0);
    press("Preset next", 1);
    press("Preset previous", 0);
    press("Preset previous", list->entries.size() - 1);
#ifndef _WIN32
    EXPECT_TRUE(std::filesystem::is_empty(folder / ""));
#endif
}

TEST(MProductInstance, BringsBackWhatWasSavedAsAPreset) {
    const TemporaryFolder folder;
    UseFolder(folder);
    const auto product = MProductInstance::Create();
    MProductInstance::Plugin& plugin = product->Instance();
    plugin.CreateDefaultBands(4);
    plugin.SetMute(2, true);
    product->LayoutPresets().Save("Four");
    MMIDISettings pedal;
    pedal.presetController = {true, 64, 0};
    plugin.MIDI().SetSettings(pedal);
    plugin.Bypass().SetValue(1);
    product->PluginPresets().Load("dub/tape echo");
    EXPECT_TRUE(plugin.Bypass().IsOn());
    EXPECT_EQ(plugin.MIDI().Settings(), pedal) << "steps once and never again";
    EXPECT_EQ(plugin.Layout().bandCount, 1);
    const std::string before = MPluginPresetContent::Save(plugin);
    product->PluginPresets().Save("Mine/Copy");
    product->LayoutPresets().Load("four");
    EXPECT_EQ(plugin.Layout().bandCount, 4);
    EXPECT_TRUE(plugin.Layout().mute[2]);
    MProductInstance::Create()->PluginPresets().Library().Move("Mine/Copy", "Elsewhere");
    plugin.ActivePresets().Switch(plugin, 1);
    plugin.Bypass().SetValue(0);
    product->PluginPresets().Load("Elsewhere");
    EXPECT_FALSE(plugin.Bypass().IsOn());
    plugin.ActivePresets().Switch(plugin, 0);
    EXPECT_TRUE(plugin.Bypass().IsOn()) << "a slot is all of a state";
    product->PluginPresets().Load("Elsewhere");
    EXPECT_EQ(MPluginPresetContent::Save(plugin), before);
    product->LayoutPresets().Library().Remove("Four");
    product->PluginPresets().Library().Remove("Elsewhere");
}
