// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MBandDesigner.h"

#include <algorithm>
#include <cmath>

namespace {

MBandParameters::Limits Hertz(const MBandParameters::Limits& limits) {
    MBandParameters::Limits hertz{};
    std::transform(limits.begin(), limits.end(), hertz.begin(),
                   [](double limit) { return std::pow(10.0, limit); });
    return hertz;
}

}  // namespace

void MBandDesigner::Prepare(const MCrossoverChoice& choice, const MBandParameters::Limits& limits) {
    if (choice.isLinearPhase) {
        processor_.LinearPhase().Prepare(choice.bandCount, Hertz(limits), choice.sampleRate,
                                         choice.hasFixedQ);
    } else {
        processor_.Analog().Prepare(choice.bandCount, Hertz(limits), choice.sampleRate,
                                    choice.slope);
    }
}

void MBandDesigner::Publish() noexcept {
    if (choice_.isLinearPhase) {
        processor_.LinearPhase().Publish();
    } else {
        processor_.Analog().Publish();
    }
}

bool MBandDesigner::IsDue(const MBandParameters::Limits& limits, int count) noexcept {
    sinceFollowed_ = std::min(sinceFollowed_ + blockFrames_, kLinearPhasePause);
    blockFrames_ = std::min(count, kLinearPhasePause);
    return limits != seen_;
}

void MBandDesigner::Follow(const MBandParameters::Limits& limits) {
    const MTryLock lock(lock_);
    if (!lock || (choice_.isLinearPhase && sinceFollowed_ < kLinearPhasePause)) return;
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
    if (choice_.isLinearPhase) {
        processor_.LinearPhase().Design(choice_.bandCount, Hertz(limits_), choice_.sampleRate,
                                        choice_.hasFixedQ);
    } else {
        processor_.Analog().Design(choice_.bandCount, Hertz(limits_), choice_.sampleRate,
                                   choice_.slope);
    }
}
