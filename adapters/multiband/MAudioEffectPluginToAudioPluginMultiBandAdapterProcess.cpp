// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MAudioEffectPluginToAudioPluginMultiBandAdapter.h"
#include "core/MGuard.h"

void MAudioEffectPluginToAudioPluginMultiBandAdapter::ProcessUpdate() {
    Guard<MExceptionPolicy::Swallow>(
        "MAudioEffectPluginToAudioPluginMultiBandAdapter::ProcessUpdate", [&] {
            for (int band = 0; band < inForce_.bandCount; ++band) Effect(band).Update();
        });
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::AdoptChanges(
    const MStateHandOver::Publication& published) noexcept {
    MAudioEffectPluginToAudioPluginAdapter::AdoptChanges(published);
    const auto* const part = static_cast<const Part*>(published.part.get());
    if (part == nullptr) return;
    inForce_ = part->inForce;
    designer_.Take(*part->design);
}

// The others may just be prepared on another thread; they start without ramps when they come in.
void MAudioEffectPluginToAudioPluginMultiBandAdapter::SettleRamps() noexcept {
    for (int band = 0; band < inForce_.bandCount; ++band) Effect(band).SettleRamps();
    FillBlock();
    block_.Arrive();
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::FollowLimits(int sampleCount) {
    const MBandParameters::Limits limits = parameters_.ReadLimits();
    if (designer_.IsDue(limits, sampleCount)) designer_.Follow(limits);
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::FillBlock() noexcept {
    const MBandOptions& options = inForce_.options;
    block_.bandCount = inForce_.bandCount;
    block_.isLinearPhase = options.isLinearPhase;
    block_.wetAffectsGain = options.dryWetAffectsInputGain;
    block_.wetAffectsPanorama = options.dryWetAffectsInputPan;
    parameters_.ReadInto(block_, inForce_.bandCount, options.wet, options.dry);
    for (int band = 0; band < kMaxBands; ++band) {
        block_.bands[band].isMuted = inForce_.mute[band];
        block_.bands[band].isBypassed = inForce_.bypass[band];
    }
    block_.bandMeters = IsMetering() ? meters_.data() : nullptr;
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::ProcessBlock(const float* const* inputs,
                                                                   float* const* outputs,
                                                                   int sampleCount) {
    FollowLimits(sampleCount);
    FillBlock();
    processor_.Process(block_, *this, inputs, outputs, sampleCount);
    block_.Arrive();
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::ProcessBand(int band,
                                                                  const float* const* inputs,
                                                                  float* const* outputs,
                                                                  int count) {
    Effect(band).Process(&Transport(), inputs, outputs, count);
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::ProcessBypassed(float* channelBuffer,
                                                                      int sampleCount,
                                                                      int channel) {
    Guard<MExceptionPolicy::Swallow>(
        "MAudioEffectPluginToAudioPluginMultiBandAdapter::ProcessBypassed",
        [&] { processor_.ProcessBypassed(block_, channelBuffer, sampleCount, channel); });
}

void MAudioEffectPluginToAudioPluginMultiBandAdapter::StartBypassed() {
    processor_.ResetBypassed();
}
