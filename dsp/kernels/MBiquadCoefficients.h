// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// A section normalised by a0, with the feedback coefficients negated:
/// y[n] = b0 x[n] + b1 x[n-1] + b2 x[n-2] + minusA1 y[n-1] + minusA2 y[n-2].
struct MBiquadCoefficients {
    double b0 = 1;
    double b2 = 0;
    double minusA2 = 0;
    double b1 = 0;
    double minusA1 = 0;
};

/// The memory of one section (transposed direct form II).
struct MBiquadState {
    double s1 = 0;
    double s2 = 0;
};
