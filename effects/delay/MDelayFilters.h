// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MBiquad.h"
#include "dsp/kernels/MDelayKernels.h"
#include "effects/delay/MDelaySettings.h"

/// The sections of a filter pair that run.
struct MActiveSections {
    bool lowPass = false;
    bool highPass = false;
};

/// What a filter pair remembers, for every channel.
struct MDelayFilterStates {
    MBiquadState lowPass[kDelayMaxChannels];
    MBiquadState highPass[kDelayMaxChannels];

    /// Lets the sections that are active `now` and were not `before` begin from silence. [audio]
    void Wake(MActiveSections before, MActiveSections now) noexcept;
};

/// The high-pass and low-pass that shape either the input or every round of the loop.
///
/// The input runs low-pass first, the loop high-pass first; presets rely on both.
class MDelayFilters {
public:
    /// Designs what differs from the present design; an edge within 1 Hz of the end of its range
    /// switches that filter off. Frequencies are kept below 0.49 of `sampleRate` (hertz), where the
    /// design would turn unstable. [audio]
    void Design(const MDelaySettings& settings, int sampleRate);

    /// The pair in the order of the input, on the states of the channels from `channel` on. [audio]
    MFilterPair ForInput(MDelayFilterStates& states, int channel) const noexcept;
    /// The pair in the order of the loop. [audio]
    MFilterPair ForFeedback(MDelayFilterStates& states, int channel) const noexcept;

    bool FiltersInput() const noexcept { return IsActive() && !filtersFeedback_; }
    bool FiltersFeedback() const noexcept { return IsActive() && filtersFeedback_; }
    MActiveSections InInput() const noexcept {
        return filtersFeedback_ ? MActiveSections{} : active_;
    }
    MActiveSections InFeedback() const noexcept {
        return filtersFeedback_ ? active_ : MActiveSections{};
    }

private:
    bool IsActive() const noexcept { return active_.lowPass || active_.highPass; }
    const MBiquadCoefficients* LowPass() const noexcept {
        return active_.lowPass ? &lowPass_.Coefficients() : nullptr;
    }
    const MBiquadCoefficients* HighPass() const noexcept {
        return active_.highPass ? &highPass_.Coefficients() : nullptr;
    }

    MBiquad lowPass_;
    MBiquad highPass_;
    MActiveSections active_;
    bool filtersFeedback_ = false;
};
