// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MBiquad.h"
#include "dsp/kernels/MDelayKernels.h"
#include "effects/delay/MDelaySettings.h"

/// What a filter pair remembers, for every channel.
struct MDelayFilterStates {
    MBiquadState lowPass[kDelayMaxChannels];
    MBiquadState highPass[kDelayMaxChannels];
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

private:
    bool IsActive() const noexcept { return isLowPassActive_ || isHighPassActive_; }
    const MBiquadCoefficients* LowPass() const noexcept {
        return isLowPassActive_ ? &lowPass_.Coefficients() : nullptr;
    }
    const MBiquadCoefficients* HighPass() const noexcept {
        return isHighPassActive_ ? &highPass_.Coefficients() : nullptr;
    }

    MBiquad lowPass_;
    MBiquad highPass_;
    bool isLowPassActive_ = false;
    bool isHighPassActive_ = false;
    bool filtersFeedback_ = false;
};
