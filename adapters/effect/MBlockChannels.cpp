// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MBlockChannels.h"

#include <algorithm>
#include <functional>

void MBlockChannels::Reserve(int channels, int count) {
    // Either nothing is heard and nothing copied, or one output at least needs no memory.
    const int most = std::max(channels + 1, 2 * channels - 1);
    for (int i = 0; i < most; ++i) spares_[i].Get(count);
}

void MBlockChannels::Take(const MBusLayout& layout, const float* const* inputs,
                          float* const* outputs, int count) {
    spareCount_ = 0;
    float* silence = nullptr;
    for (int channel = 0; channel < layout.outputs; ++channel) {
        const int source = layout.InputOf(channel);
        const float* const samples = inputs != nullptr && source >= 0 ? inputs[source] : nullptr;
        if (samples == nullptr) {
            if (silence == nullptr) silence = std::fill_n(Spare(count), count, 0.0f) - count;
            inputs_[channel] = silence;
        } else {
            inputs_[channel] = samples;
        }
        float* const output = outputs != nullptr ? outputs[channel] : nullptr;
        outputs_[channel] = output != nullptr ? output : Spare(count);
    }
}

void MBlockChannels::SeparateInputs(int channels, int count) {
    const auto overlaps = [count](const float* input, const float* output) {
        const std::less<> isBefore;  // holds for pointers into different arrays as well
        return input != output && isBefore(input, output + count) &&
               isBefore(output, input + count);
    };
    for (int channel = 0; channel < channels; ++channel) {
        const float*& input = inputs_[channel];
        const bool isShared =
            std::any_of(outputs_.begin(), outputs_.begin() + channels,
                        [&](const float* output) { return overlaps(input, output); });
        if (isShared) input = std::copy_n(input, count, Spare(count)) - count;
    }
}
