// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/multiband/MAudioEffectPluginToAudioPluginMultiBandAdapter.h"

#include <memory>

/// Makes the product: the one place that knows that the effect is the delay and that it runs in
/// bands.
namespace MProductFactory {

/// The plug-in, complete with its parameters; InitProcessing comes next. `settings` and `presets`
/// are borrowed and outlive it; null stands for settings of its own in memory and for no presets.
/// Null when it could not be made, which has been reported. [main]
std::unique_ptr<MAudioEffectPluginToAudioPluginMultiBandAdapter> Create(
    MSettings* settings = nullptr, MPresetStepper* presets = nullptr);

}  // namespace MProductFactory
