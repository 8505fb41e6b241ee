// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/delay/MDelayTap.h"

#include "dsp/MDenormals.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

int DelaySamples(const MDelayTapSettings& settings, int sampleRate) {
    return std::max(1, static_cast<int>(sampleRate * settings.delay));
}

int RoundHalfUp(double value) { return static_cast<int>(std::floor(value + 0.5)); }

}  // namespace

void MDelayTap::Prepare(int channels) noexcept {
    if (channels != channels_) Free();
    channels_ = channels;
    isEnabled_ = false;  // until the update that makes the lines of these channels
}

void MDelayTap::Free() noexcept {
    isEnabled_ = false;
    memory_.reset();
}

std::unique_ptr<MDelayTapLines> MDelayTap::MakeLines(const MDelayTapSettings& settings,
                                                     int channels, int sampleRate) {
    auto lines = std::make_unique<MDelayTapLines>();
    lines->Reserve(channels, sampleRate);
    if (settings.isSynchronised) lines->ReserveNote(settings, channels, sampleRate);
    return lines;
}

void MDelayTap::Adopt(std::unique_ptr<MDelayTapLines>& lines) noexcept {
    if (HasLines()) return;
    memory_ = std::move(lines);
}

void MDelayTap::Update(const MDelayTapSettings& settings, int sampleRate,
                       MGrowingBuffer<float>& scratch) {
    // On only once every line is there: a block must not meet one that memory ran out for.
    const bool wasEnabled = std::exchange(isEnabled_, false);
    if (!settings.isEnabled) return;
    if (!HasLines()) memory_ = std::make_unique<MDelayTapLines>();
    if (!wasEnabled) {
        filterStates_ = {};
        memory_->Clear();
    }
    memory_->Reserve(channels_, sampleRate);
    scratch.Get(MDelayLine::kLongestSettled);
    if (UsesPredelay()) SetPredelays(settings, sampleRate);
    if (!settings.isSynchronised) {
        length_ = DelaySamples(settings, sampleRate);
        SetLengths(scratch);
    }
    isEnabled_ = true;
}

void MDelayTap::BeginBlock(const MDelayTapSettings& settings, int sampleRate, double tempo,
                           MGrowingBuffer<float>& scratch) {
    if (settings.isSynchronised) {
        const int samples = DelayNoteSamples(settings, sampleRate, tempo);
        length_ = samples > 0 ? samples : DelaySamples(settings, sampleRate);
    } else if (length_ == 0) {
        length_ = DelaySamples(settings, sampleRate);
    }
    SetLengths(scratch);
}

// With each block, since a long line may have had to wait with its last change.
void MDelayTap::SetLengths(MGrowingBuffer<float>& scratch) {
    for (int channel = 0; channel < channels_; ++channel) {
        MDelayLine& line = Line(channel);
        if (line.Length() != length_) line.Resize(length_, scratch);
    }
    for (int side = 0; side < 2 && UsesPredelay(); ++side) {
        MDelayLine& predelay = Predelay(side);
        const int length = predelayLengths_[side];
        if (predelay.Length() != length) predelay.Resize(length, scratch);
    }
}

void MDelayTap::SetPredelays(const MDelayTapSettings& settings, int sampleRate) noexcept {
    const int left = RoundHalfUp(settings.leftOffset * sampleRate);
    const int right = RoundHalfUp(settings.rightOffset * sampleRate);
    predelayLengths_[0] = std::max(1, left + std::max(-right, 0));
    predelayLengths_[1] = std::max(1, right + std::max(-left, 0));
}

bool MDelayTap::IsSilent() const noexcept {
    return std::all_of(memory_->lines, memory_->lines + channels_,
                       [](const MDelayLine& line) { return line.IsBelow(kSilenceThreshold); });
}
