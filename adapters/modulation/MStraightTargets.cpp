// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/modulation/MStraightTargets.h"

#include "adapters/modulation/MModulationTarget.h"

void MStraightTargets::Add(ParameterDefinition& record, int source, const MMotionLine& line) {
    const std::size_t index = targets_.size();
    if (index == slopes_.size()) {
        const std::size_t padded = index + kControlPadding;
        for (std::vector<double>* const numbers : {&slopes_, &lowest_, &highest_}) {
            numbers->resize(padded);
        }
        sources_.resize(padded);
    }
    const double range = record.maximum - record.minimum;
    const double start = record.minimum + range * line.Start() - line.KnobShare() * record.minimum;
    targets_.push_back({&record, start, line.KnobShare()});
    slopes_[index] = range * line.Slope();
    lowest_[index] = record.minimum;
    highest_[index] = record.maximum;
    sources_[index] = source;
}
