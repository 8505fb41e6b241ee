// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/kernels/MDelayKernels.h"

/// The saturation in the delay's loop: a hyperbolic tangent that reaches full scale exactly at 1,
/// with an even component that makes loud echoes lean to one side.
class MSaturationCurve {
public:
    /// Starts the curve at `threshold` (0 to below 1): straight below it, bent above it. [any]
    explicit MSaturationCurve(double threshold = 0.0) noexcept;

    /// The bent value of `x`, odd-symmetric, 1 in magnitude from 1 on. [any]
    double Curve(double x) const noexcept;

    /// One sample through the stage with `amount` 0..1 of saturation, by the standard library's
    /// tanh: the exact form of what the kernels compute. [any]
    double Process(double sample, double amount) const noexcept;

    /// What the kernel needs for `amount` 0..1; only for a curve that starts at 0. [audio]
    MSaturationSettings Settings(double amount) const noexcept;

private:
    static constexpr double kEven = 0.7;  // of the even component

    double threshold_;
    double innerScale_;
    double outerScale_;
    double normaliser_;
};
