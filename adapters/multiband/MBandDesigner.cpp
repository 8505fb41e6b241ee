// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MBandDesigner.h"

#include <algorithm>
#include <cmath>

void MBandDesigner::Design(const MCrossoverChoice& choice, const MBandParameters::Limits& limits) {
    const MLock lock(lock_);
    choice_ = choice;
    DesignLocked(limits);
}

void MBandDesigner::Follow(const MBandParameters::Limits& limits, int count) {
    const int since = sinceSeen_;
    sinceSeen_ = std::min(since + std::min(count, kLinearPhasePause), kLinearPhasePause);
    if (limits == seen_) return;
    const MTryLock lock(lock_);
    if (!lock || (choice_.isLinearPhase && since < kLinearPhasePause)) return;
    seen_ = limits;
    sinceSeen_ = std::min(count, kLinearPhasePause);
    if (Concerns(limits)) DesignLocked(limits);
}

bool MBandDesigner::Concerns(const MBandParameters::Limits& limits) const noexcept {
    return !std::equal(limits.begin(), limits.begin() + (choice_.bandCount - 1), limits_.begin());
}

void MBandDesigner::DesignLocked(const MBandParameters::Limits& limits) {
    limits_ = limits;
    MBandParameters::Limits hertz{};
    std::transform(limits.begin(), limits.end(), hertz.begin(),
                   [](double limit) { return std::pow(10.0, limit); });
    if (choice_.isLinearPhase) {
        processor_.LinearPhase().Design(choice_.bandCount, hertz, choice_.sampleRate,
                                        choice_.hasFixedQ);
    } else {
        processor_.Analog().Design(choice_.bandCount, hertz, choice_.sampleRate, choice_.slope);
    }
}
