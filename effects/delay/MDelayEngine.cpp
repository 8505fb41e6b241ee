// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/delay/MDelayEngine.h"

#include <algorithm>

namespace {

constexpr int kReservedBlock = 2048;  // samples; there is room for as many, whatever is announced

}  // namespace

void MDelayEngine::Prepare(int channels, int sampleRate, int longestBlock) {
    // First what may fail for want of memory, so that a failure leaves everything as it was.
    const int room = std::max(longestBlock, kReservedBlock);
    for (int channel = 0; channel < channels; ++channel) inputScratch_[channel].Get(room);
    freezeScratch_.Get(room * channels);
    // Another rate asks for other memory; at the same one, lines keep what they have had.
    if (sampleRate != sampleRate_) {
        for (MDelayTap& tap : taps_) tap.Free();
    }
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
    const MActiveSections input = filters_.InInput(), feedback = filters_.InFeedback();
    filters_.Design(settings, sampleRate_);
    inputStates_.Wake(input, filters_.InInput());
    for (MDelayTap& tap : taps_) tap.FilterStates().Wake(feedback, filters_.InFeedback());
}

MDelayEngine::Needs MDelayEngine::NeedsOf(const MDelaySettings& settings) const noexcept {
    Needs needs = {.channels = channels_, .sampleRate = sampleRate_};
    for (int tap = 0; tap < kDelayTaps && channels_ > 0; ++tap) {
        needs.taps[tap] = settings.taps[tap].isEnabled && !taps_[tap].HasLines();
    }
    return needs;
}

MDelayEngine::Spare MDelayEngine::MakeSpare(const MDelaySettings& settings, const Needs& needs) {
    Spare spare;
    spare.needs = needs;
    for (int tap = 0; tap < kDelayTaps; ++tap) {
        if (!needs.taps[tap]) continue;
        spare.lines[tap] =
            MDelayTap::MakeLines(settings.taps[tap], needs.channels, needs.sampleRate);
    }
    return spare;
}

void MDelayEngine::Adopt(Spare& spare) noexcept {
    if (spare.needs.channels != channels_ || spare.needs.sampleRate != sampleRate_) return;
    for (int tap = 0; tap < kDelayTaps; ++tap) {
        if (spare.lines[tap]) taps_[tap].Adopt(spare.lines[tap]);
    }
}

bool MDelayEngine::IsTailSilent() const noexcept {
    for (const MDelayTap& tap : taps_) {
        if (tap.IsEnabled() && !tap.IsSilent()) return false;
    }
    return true;
}
