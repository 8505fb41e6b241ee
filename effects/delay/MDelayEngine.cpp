// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/delay/MDelayEngine.h"

namespace {

constexpr int kReservedBlock = 2048;  // samples; longer blocks make their room when they come

}  // namespace

void MDelayEngine::Prepare(int channels, int sampleRate) {
    // First what may fail for want of memory, so that a failure leaves everything as it was.
    for (int channel = 0; channel < channels; ++channel) inputScratch_[channel].Get(kReservedBlock);
    freezeScratch_.Get(kReservedBlock * channels);
    channels_ = channels;
    sampleRate_ = sampleRate;
    inputStates_ = {};
    for (MDelayTap& tap : taps_) tap.Prepare(channels);
    freeze_.Reset();
}

void MDelayEngine::Update(const MDelaySettings& settings) {
    if (channels_ == 0) return;
    for (int tap = 0; tap < kDelayTaps; ++tap) {
        taps_[tap].Update(settings.taps[tap], sampleRate_, lineScratch_);
    }
    filters_.Design(settings, sampleRate_);
}

bool MDelayEngine::IsTailSilent() const noexcept {
    for (const MDelayTap& tap : taps_) {
        if (tap.IsEnabled() && !tap.IsSilent()) return false;
    }
    return true;
}
