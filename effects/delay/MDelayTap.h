// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effects/delay/MDelayFilters.h"
#include "effects/delay/MDelaySettings.h"
#include "effects/delay/MDelayTapLines.h"

#include <memory>

/// One tap: its lines, the states of the loop's filters, and the delay that it is set to.
class MDelayTap {
public:
    /// Starts from silence for `channels`. Lines for another number of channels are given back.
    /// [setup]
    void Prepare(int channels) noexcept;
    /// Gives the lines back. [setup]
    void Free() noexcept;

    /// Makes lines for these settings. Takes microseconds, as their memory is not touched. [any]
    static std::unique_ptr<MDelayTapLines> MakeLines(const MDelayTapSettings& settings,
                                                     int channels, int sampleRate);
    /// Takes `lines` for its own if it has none. [audio]
    void Adopt(std::unique_ptr<MDelayTapLines>& lines) noexcept;
    /// Whether there are lines. A tap that is switched off keeps them. [audio]
    bool HasLines() const noexcept { return memory_ != nullptr; }

    /// Follows the settings: takes over the switch and sizes the predelays and, unless
    /// synchronised, the lines. A tap that is switched on starts from silence. `sampleRate` in
    /// hertz. Allocates when it is switched on and has no lines. [audio]
    void Update(const MDelayTapSettings& settings, int sampleRate, MGrowingBuffer<float>& scratch);

    /// Sets the delay at the start of a block; a synchronised one from `tempo` (quarter notes per
    /// minute). Allocates when the delay exceeds what was reserved and every delay so far. [audio]
    void BeginBlock(const MDelayTapSettings& settings, int sampleRate, double tempo,
                    MGrowingBuffer<float>& scratch);

    /// The switch as the last update found it. [audio]
    bool IsEnabled() const noexcept { return isEnabled_; }
    /// Whether every line has faded below the silence threshold. Only while enabled. [audio]
    bool IsSilent() const noexcept;

    int Channels() const noexcept { return channels_; }
    bool UsesPredelay() const noexcept { return channels_ == 2; }
    MDelayFilterStates& FilterStates() noexcept { return filterStates_; }
    /// Only while enabled, like the next one.
    MDelayLine& Line(int channel) noexcept { return memory_->lines[channel]; }
    MDelayLine& Predelay(int side) noexcept { return memory_->predelays[side]; }

private:
    void SetLengths(MGrowingBuffer<float>& scratch);
    void SetPredelays(const MDelayTapSettings& settings, int sampleRate) noexcept;

    int channels_ = 0;
    bool isEnabled_ = false;
    // Samples that the lines are asked for, 0 before the first update or block, and the predelays.
    int length_ = 0;
    int predelayLengths_[2] = {1, 1};
    std::unique_ptr<MDelayTapLines> memory_;  // null before the tap is first switched on
    MDelayFilterStates filterStates_;
};
