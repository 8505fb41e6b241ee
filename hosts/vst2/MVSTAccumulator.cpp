// SPDX-License-Identifier: GPL-3.0-or-later
#include "hosts/vst2/MVSTAccumulator.h"

#include "plugin/MAudioPlugin.h"

#include <algorithm>
#include <cstddef>

namespace Vst2 {

void MVSTAccumulator::Process(MAudioPlugin& plugin, const float* const* inputs,
                              float* const* outputs, int outputCount, int frames) {
    const auto count = static_cast<std::size_t>(plugin.OutputChannelCount());
    std::array<float*, MBusLayout::kMaxChannels> made = {};
    for (std::size_t i = 0; i < count; ++i) {
        if (outputs[i] == nullptr) continue;
        if (channels_[i].size() < static_cast<std::size_t>(frames)) channels_[i].resize(frames);
        made[i] = channels_[i].data();
    }
    plugin.Process(inputs, made.data(), frames);
    for (std::size_t i = 0; i < static_cast<std::size_t>(outputCount); ++i) {
        const float* const from = made[std::min(i, count - 1)];
        if (from == nullptr || outputs[i] == nullptr) continue;
        for (int frame = 0; frame < frames; ++frame) outputs[i][frame] += from[frame];
    }
}

}  // namespace Vst2
