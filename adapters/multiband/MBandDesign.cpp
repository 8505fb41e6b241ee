// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MBandDesign.h"

#include "dsp/crossover/MCrossoverPoints.h"

#include <algorithm>
#include <cmath>

MBandDesign::MBandDesign(const MCrossoverChoice& chosen,
                         const MBandParameters::Limits& chosenLimits)
    : choice(chosen), limits(chosenLimits) {
    const MBandParameters::Limits hertz = Hertz(limits);
    if (!choice.isLinearPhase) {
        analog.Design(choice.bandCount, hertz, choice.sampleRate, choice.slope);
        return;
    }
    const MCrossoverPoints points =
        CheckCrossoverPoints(choice.bandCount, hertz, choice.sampleRate);
    linearPhase = std::make_unique<MLinearPhaseDesign>();
    std::make_unique<MLinearPhaseDesigner>()->Design(points, choice.hasFixedQ, *linearPhase);
}

MBandParameters::Limits MBandDesign::Hertz(const MBandParameters::Limits& limits) noexcept {
    MBandParameters::Limits hertz{};
    std::transform(limits.begin(), limits.end(), hertz.begin(),
                   [](double limit) { return std::pow(10.0, limit); });
    return hertz;
}
