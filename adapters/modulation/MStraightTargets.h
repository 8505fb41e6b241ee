// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/kernels/MControlKernels.h"
#include "plugin/parameters/ParameterDefinition.h"

#include <vector>

class MMotionLine;

/// Parameters of a plan whose values lie on a straight line over those of one source, and whose
/// writes nobody waits for. Usually these are all there are; they are moved side by side.
class MStraightTargets {
public:
    /// What one of them needs when its knob moves, in the record's own units.
    struct Target {
        ParameterDefinition* record;
        double start;
        double knobShare;

        /// Where the line begins while the knob is at `knob`. [any]
        double Foot(double knob) const noexcept {
            return start + knobShare * record->Nearest(knob);
        }
    };

    /// Whether positions of the record are its values but for the range. [any]
    static bool Suits(const ParameterDefinition& record) noexcept {
        return record.kind == ParameterKind::Float && record.curve == ParameterCurve::None &&
               record.maximum > record.minimum;
    }

    /// Lets the number `source` of all sources move a suitable `record` along an unbent `line`.
    /// [main]
    void Add(ParameterDefinition& record, int source, const MMotionLine& line);

    const std::vector<Target>& Targets() const noexcept { return targets_; }

    /// The ways from `feet` on, one for each target and some idle ones up to PaddedCount. [any]
    MControlWays Ways(const double* feet) const noexcept {
        return {feet, slopes_.data(), lowest_.data(), highest_.data(), sources_.data()};
    }
    int PaddedCount() const noexcept { return static_cast<int>(slopes_.size()); }

private:
    std::vector<Target> targets_;
    std::vector<double> slopes_, lowest_, highest_;
    std::vector<int> sources_;
};
