// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/delay/MDelayEngine.h"
#include "effects/delay/MDelayTapLoop.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr double kLeastSaturation = 1e-8;

}  // namespace

void MDelayEngine::Process(const MDelaySettings& settings, double tempo, const float* const* inputs,
                           float* const* outputs, int count) {
    if (channels_ == 0 || count <= 0) return;

    float* cleaned[kDelayMaxChannels] = {};
    TakeInputs(inputs, cleaned, count);
    const MSaturationSettings saturation = saturationCurve_.Settings(settings.saturation);
    const bool isSaturated = settings.saturation > kLeastSaturation;
    bool hasPredecessor = false;
    for (int index = 0; index < kDelayTaps; ++index) {
        MDelayTap& tap = taps_[index];
        if (!tap.IsEnabled()) continue;
        tap.BeginBlock(settings.taps[index], sampleRate_, tempo, lineScratch_);
        const bool readsOutputs = settings.isSerial && hasPredecessor;
        ProcessTap(tap, settings.taps[index],
                   {.saturation = isSaturated ? &saturation : nullptr,
                    .inputs = readsOutputs ? outputs : cleaned,
                    .outputs = outputs,
                    .adds = hasPredecessor},
                   count);
        hasPredecessor = true;
    }
    for (int channel = 0; channel < channels_ && !hasPredecessor; ++channel) {
        std::fill_n(outputs[channel], count, 0.0f);
    }
}

// The inputs are copied even when nothing filters them: they may be the outputs, and nothing that
// is not a number may reach a line.
void MDelayEngine::TakeInputs(const float* const* inputs, float** cleaned, int count) {
    for (int channel = 0; channel < channels_; ++channel) {
        cleaned[channel] = inputScratch_[channel].Get(count);
        kernels_.copyClean(inputs[channel], cleaned[channel], kLoopCeiling, count);
    }
    if (!filters_.FiltersInput()) return;
    for (int channel = 0; channel < channels_; channel += 2) {
        kernels_.filterInput(filters_.ForInput(inputStates_, channel), cleaned + channel,
                             std::min(2, channels_ - channel), count);
    }
}

void MDelayEngine::ProcessTap(MDelayTap& tap, const MDelayTapSettings& settings,
                              const TapRoute& route, int count) {
    freeze_.Begin(settings.isFrozen, sampleRate_);
    float* positions[kDelayMaxChannels] = {};
    if (freeze_.IsFrozen()) {
        FillFreeze(settings.mode == MDelayMode::PingPong && channels_ == 2, positions, count);
    }
    const MLoopRamps ramps = {.feedback = settings.feedback.Squared(count),
                              .gain = settings.gain.Squared(count),
                              .panorama = settings.panorama.Linear(count)};
    MDelayTapLoop loop(tap, settings.mode, ramps,
                       {kernels_, filters_, route.saturation,
                        freeze_.IsFrozen() ? positions : nullptr, route.adds});
    loop.Run(route.inputs, route.outputs, count);
}

// The position moves on channel after channel; where the sides feed each other, sample after
// sample.
void MDelayEngine::FillFreeze(bool isInterleaved, float** positions, int count) {
    float* const all = freezeScratch_.Get(channels_ * count);
    for (int channel = 0; channel < channels_; ++channel)
        positions[channel] = all + static_cast<std::ptrdiff_t>(channel) * count;
    if (isInterleaved) {
        for (int i = 0; i < count; ++i) {
            positions[0][i] = freeze_.Next();
            positions[1][i] = freeze_.Next();
        }
    } else {
        for (int i = 0; i < channels_ * count; ++i) all[i] = freeze_.Next();
    }
}
