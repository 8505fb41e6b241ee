// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/MBusLayout.h"

#include <array>
#include <vector>

class MAudioPlugin;

namespace Vst2 {

/// Blocks of a host of old, which finds the plug-in's sound added to what its outputs hold.
class MVSTAccumulator {
public:
    /// Runs one block of `plugin` and adds it to `outputCount` outputs; those that the plug-in does
    /// not have get its last channel. Allocates when `frames` exceeds every block before. [audio]
    void Process(MAudioPlugin& plugin, const float* const* inputs, float* const* outputs,
                 int outputCount, int frames);

private:
    std::array<std::vector<float>, MBusLayout::kMaxChannels> channels_;
};

}  // namespace Vst2
