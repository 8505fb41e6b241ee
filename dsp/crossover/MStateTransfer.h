// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MBiquad.h"

/// What a low-, high- or all-pass section was designed from, as an analog filter sees it.
struct MSectionShape {
    double warp;     ///< tan(pi * frequency / sample rate)
    double damping;  ///< 1 / quality
};

/// Carries the memory of a section over to another design of the same type.
///
/// The two numbers that a transposed section remembers mean something else after a redesign: the
/// sound of a low filter, read by a higher one, rings a hundredfold louder, and limits that jump
/// again and again drive it up without end. So the memory is read as the charges of the analog
/// filter's two integrators under the old design and written back under the new one. The energy of
/// those charges never grows without input, whatever the frequency does meanwhile.
class MStateTransfer {
public:
    /// `type` is LowPass, HighPass or AllPass. [any]
    MStateTransfer(BiquadType type, const MSectionShape& from, const MSectionShape& to) noexcept;

    /// Carries over one section's memory. [audio]
    void Apply(double& s1, double& s2) const noexcept {
        const double before = s1;
        s1 = m11_ * before + m12_ * s2;
        s2 = m21_ * before + m22_ * s2;
    }

private:
    double m11_, m12_, m21_, m22_;
};
