// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MBandDesigner.h"

#include <algorithm>
#include <limits>

// Limits may have been automated since others looked at them; forgetting those that were dealt with
// brings them up again.
void MBandDesigner::Take(const MBandDesign& design) noexcept {
    if (&design == taken_) return;
    taken_ = &design;
    choice_ = design.choice;
    limits_ = design.limits;
    seen_.fill(std::numeric_limits<double>::quiet_NaN());
    if (choice_.isLinearPhase) {
        processor_.LinearPhase().Take(*design.linearPhase);
    } else {
        processor_.Analog().Take(design.analog);
    }
    processor_.TakeDesigns();
}

bool MBandDesigner::IsDue(const MBandParameters::Limits& limits, int count) noexcept {
    sinceFollowed_ = std::min(sinceFollowed_ + blockFrames_, kLinearPhasePause);
    blockFrames_ = std::min(count, kLinearPhasePause);
    return limits != seen_;
}

void MBandDesigner::Follow(const MBandParameters::Limits& limits) {
    if (choice_.isLinearPhase && sinceFollowed_ < kLinearPhasePause) return;
    seen_ = limits;
    sinceFollowed_ = 0;
    if (!Concerns(limits)) return;
    limits_ = limits;
    Redesign();
}

bool MBandDesigner::Concerns(const MBandParameters::Limits& limits) const noexcept {
    return !std::equal(limits.begin(), limits.begin() + (choice_.bandCount - 1), limits_.begin());
}

void MBandDesigner::Redesign() {
    const MBandParameters::Limits hertz = MBandDesign::Hertz(limits_);
    if (choice_.isLinearPhase) {
        processor_.LinearPhase().Design(choice_.bandCount, hertz, choice_.sampleRate,
                                        choice_.hasFixedQ);
    } else {
        processor_.Analog().Design(choice_.bandCount, hertz, choice_.sampleRate, choice_.slope);
    }
    processor_.TakeDesigns();
}
