// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/kernels/MDelayKernels.h"

/// The saturation in the delay's loop: a hyperbolic tangent that reaches full scale exactly at 1,
/// with an even component that makes loud echoes lean to one side. The kernels compute it.
class MSaturationCurve {
public:
    MSaturationCurve() noexcept;

    /// The kernel's settings for `amount` 0..1. [audio]
    MSaturationSettings Settings(double amount) const noexcept;

private:
    double outerScale_;  // brings the curve to 1 at 1
};
