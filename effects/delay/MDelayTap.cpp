// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/delay/MDelayTap.h"

#include "dsp/MDenormals.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kLongestPredelay = 0.2;  // seconds: both offsets at their ends

/// Room for `seconds` with every rounding on the safe side.
int RoomFor(double seconds, int sampleRate) { return static_cast<int>(seconds * sampleRate) + 2; }

int DelaySamples(const MDelayTapSettings& settings, int sampleRate) {
    return std::max(1, static_cast<int>(sampleRate * settings.delay));
}

int RoundHalfUp(double value) { return static_cast<int>(std::floor(value + 0.5)); }

}  // namespace

void MDelayTap::Prepare(int channels) {
    channels_ = channels;
    isEnabled_ = false;  // until the update that makes the lines of these channels
    filterStates_ = {};
    for (int channel = 0; channel < kDelayMaxChannels; ++channel) {
        if (channel < channels) {
            lines_[channel].Clear();
        } else {
            lines_[channel].Free();
        }
    }
    for (MDelayLine& predelay : predelays_) {
        if (UsesPredelay()) {
            predelay.Clear();
        } else {
            predelay.Free();
        }
    }
}

void MDelayTap::Update(const MDelayTapSettings& settings, int sampleRate,
                       MGrowingBuffer<float>& scratch) {
    // On only once every line is there: a block must not meet one that memory ran out for.
    isEnabled_ = false;
    if (!settings.isEnabled) {
        for (MDelayLine& line : lines_) line.Free();
        for (MDelayLine& predelay : predelays_) predelay.Free();
        return;
    }
    // All that the Delay record can ask for is made room for at once, so that moving it never
    // allocates; memory that stays unused costs no physical pages.
    const int room = RoomFor(kDelayLongest, sampleRate);
    scratch.Get(room);
    for (int channel = 0; channel < channels_; ++channel) lines_[channel].Reserve(room);
    if (!settings.isSynchronised)
        SetLength(DelaySamples(settings, sampleRate), settings.retime, scratch);
    if (UsesPredelay()) SetPredelays(settings, sampleRate, scratch);
    isEnabled_ = true;
}

void MDelayTap::FollowTempo(const MDelayTapSettings& settings, int sampleRate, double tempo,
                            MGrowingBuffer<float>& scratch) {
    if (settings.isSynchronised) {
        const int period =
            MTempoSync::PeriodSamples(settings.syncLength, settings.syncType, tempo, sampleRate);
        // Halved on purpose: a synchronised tap repeats twice per note.
        const int half = period / 2;
        SetLength(half > 0 ? half : DelaySamples(settings, sampleRate), settings.retime, scratch);
    } else if (lines_[0].Length() == 0) {
        SetLength(DelaySamples(settings, sampleRate), settings.retime, scratch);
    }
}

void MDelayTap::SetLength(int samples, MRetime how, MGrowingBuffer<float>& scratch) {
    for (int channel = 0; channel < channels_; ++channel) {
        lines_[channel].Resize(samples, scratch, how);
    }
}

void MDelayTap::SetPredelays(const MDelayTapSettings& settings, int sampleRate,
                             MGrowingBuffer<float>& scratch) {
    const int left = RoundHalfUp(settings.leftOffset * sampleRate);
    const int right = RoundHalfUp(settings.rightOffset * sampleRate);
    for (MDelayLine& predelay : predelays_) predelay.Reserve(RoomFor(kLongestPredelay, sampleRate));
    predelays_[0].Resize(left + std::max(-right, 0), scratch, settings.reoffset);
    predelays_[1].Resize(right + std::max(-left, 0), scratch, settings.reoffset);
}

bool MDelayTap::IsSilent() const noexcept {
    return std::all_of(lines_, lines_ + channels_,
                       [](const MDelayLine& line) { return line.IsBelow(kSilenceThreshold); });
}
