// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MBlockRunner.h"

#include "tools/render/MRenderFailure.h"

#include <cmath>

MBlockRunner::MBlockRunner(MBlockProcessor& processor, int channels)
    : processor_(processor),
      channels_(channels),
      inputs_(static_cast<std::size_t>(channels)),
      outputs_(static_cast<std::size_t>(channels)) {}

void MBlockRunner::Run(const MTransport& transport, std::span<const float> input,
                       std::span<float> output) {
    const int frames = static_cast<int>(input.size()) / channels_;
    Separate(input, frames);
    std::vector<const float*> inputs;
    std::vector<float*> outputs;
    for (const auto& channel : inputs_) inputs.push_back(channel.data());
    for (auto& channel : outputs_) outputs.push_back(channel.data());
    processor_.Process(transport, inputs.data(), outputs.data(), frames);
    Interleave(output, frames);
}

void MBlockRunner::Separate(std::span<const float> input, int frames) {
    for (int channel = 0; channel < channels_; ++channel) {
        auto& samples = inputs_[channel];
        samples.resize(static_cast<std::size_t>(frames));
        outputs_[channel].resize(static_cast<std::size_t>(frames));
        for (int i = 0; i < frames; ++i) samples[i] = input[i * channels_ + channel];
    }
}

void MBlockRunner::Interleave(std::span<float> output, int frames) const {
    for (int channel = 0; channel < channels_; ++channel) {
        for (int i = 0; i < frames; ++i) {
            const float sample = outputs_[channel][i];
            if (!std::isfinite(sample)) {
                throw MRenderFailure(MExitCode::Processing, "the output is not finite");
            }
            output[i * channels_ + channel] = sample;
        }
    }
}
