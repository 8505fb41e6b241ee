// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/kernels/MLinearRamp.h"

/// Where a number stands when a block starts and where when it ends; sample i of n has
/// from + i * (to - from) / n.
struct MRampEnds {
    double from;
    double to;

    bool IsStill() const noexcept { return from == to; }

    /// The part of the ramp over a block of `count` samples that begins at its sample `first`.
    MLinearRamp Linear(int count, int first = 0) const noexcept {
        const double step = (to - from) / count;
        return {from + first * step, step};
    }
};
