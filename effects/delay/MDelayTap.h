// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MDelayLine.h"
#include "effects/delay/MDelayFilters.h"
#include "effects/delay/MDelaySettings.h"

/// The memory of one tap: a line with feedback per channel, two predelay lines before them, and the
/// states of the loop's filters.
class MDelayTap {
public:
    /// Starts from silence for `channels`; lines of further channels give their memory back.
    /// [setup]
    void Prepare(int channels);

    /// Follows the settings: takes over the switch, gives a switched-off tap's memory back, sizes
    /// the predelays and, unless synchronised, the lines. `sampleRate` in hertz. Allocates when the
    /// tap is switched on. [audio]
    void Update(const MDelayTapSettings& settings, int sampleRate, MGrowingBuffer<float>& scratch);

    /// Sets the delay at the start of a block: a synchronised one from `tempo` (quarter notes per
    /// minute), any other only if there is none yet. [audio]
    void FollowTempo(const MDelayTapSettings& settings, int sampleRate, double tempo,
                     MGrowingBuffer<float>& scratch);

    /// The switch as the last update found it. [audio]
    bool IsEnabled() const noexcept { return isEnabled_; }
    /// Whether every line has faded below the silence threshold. [audio]
    bool IsSilent() const noexcept;

    int Channels() const noexcept { return channels_; }
    bool UsesPredelay() const noexcept { return channels_ == 2; }
    MDelayLine& Line(int channel) noexcept { return lines_[channel]; }
    MDelayLine& Predelay(int side) noexcept { return predelays_[side]; }
    MDelayFilterStates& FilterStates() noexcept { return filterStates_; }

private:
    void SetLength(int samples, MRetime how, MGrowingBuffer<float>& scratch);
    void SetPredelays(const MDelayTapSettings& settings, int sampleRate,
                      MGrowingBuffer<float>& scratch);

    int channels_ = 0;
    bool isEnabled_ = false;
    MDelayLine lines_[kDelayMaxChannels];
    MDelayLine predelays_[2];
    MDelayFilterStates filterStates_;
};
