// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MRampEnds.h"

#include <cmath>

/// A value moving over one block: from where the last block left it to where it is wanted.
///
/// Sample i of n has from + i * (to - from) / n. A change below 1e-50 is no change: the value stays
/// where it was.
class MBlockRamp {
public:
    MBlockRamp(double from, double to) noexcept
        : from_(from), to_(std::abs(to - from) < kSmallestChange ? from : to) {}

    /// Where the next block starts. [audio]
    double End() const noexcept { return to_; }

    /// The ramp over `count` samples, straight in the value itself. [audio]
    MLinearRamp Linear(int count) const noexcept { return MRampEnds{from_, to_}.Linear(count); }

    /// The ramp over `count` samples, straight in the square of the value. [audio]
    MLinearRamp Squared(int count) const noexcept {
        return MRampEnds{from_ * from_, to_ * to_}.Linear(count);
    }

private:
    static constexpr double kSmallestChange = 1e-50;

    double from_;
    double to_;
};
