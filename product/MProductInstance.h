// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/multiband/MAudioEffectPluginToAudioPluginMultiBandAdapter.h"
#include "adapters/multiband/MBandPresetContent.h"
#include "plugin/presets/MPluginPresetContent.h"
#include "plugin/presets/MPresetManagerT.h"
#include "plugin/presets/MPresetSwitcher.h"

#include <memory>

/// The product with the user's settings and presets: what a host binding makes and owns.
class MProductInstance {
public:
    using Plugin = MAudioEffectPluginToAudioPluginMultiBandAdapter;
    using Presets = MPresetManagerT<MPluginPresetContent>;
    using BandPresets = MPresetManagerT<MBandPresetContent>;

    /// Null when the plug-in could not be made, which has been reported. Starts no thread and
    /// touches no file. [main]
    static std::unique_ptr<MProductInstance> Create();
    /// There must be no blocks any more. [main]
    ~MProductInstance();
    MProductInstance(const MProductInstance&) = delete;
    MProductInstance& operator=(const MProductInstance&) = delete;

    Plugin& Instance() noexcept { return *plugin_; }
    MSettings& Settings() noexcept { return *settings_; }
    Presets& PluginPresets() noexcept { return *presets_; }
    BandPresets& LayoutPresets() noexcept { return *bandPresets_; }
    /// Steps of the audio thread, such as a MIDI controller's. [any]
    MPresetStepper& Stepper() noexcept { return switcher_; }

private:
    MProductInstance();

    // In the order in which they need each other.
    std::unique_ptr<MSettings> settings_;
    std::unique_ptr<MPresetLibrary> library_;
    std::unique_ptr<MPresetLibrary> bandLibrary_;
    MPresetSwitcher switcher_;
    std::unique_ptr<Plugin> plugin_;
    std::unique_ptr<Presets> presets_;
    std::unique_ptr<BandPresets> bandPresets_;
};
