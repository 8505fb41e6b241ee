// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Where controls lead. Control i is at foot[i] + slope[i] * s, held within lowest[i]..highest[i];
/// s is the number at source[i] of what controls them.
struct MControlWays {
    const double* foot;
    const double* slope;
    const double* lowest;
    const double* highest;
    const int* source;
};

/// What moving controls cost in every piece of a block, for all of them at once. `count` is a
/// multiple of kControlPadding; no pointers need an alignment. [audio]
struct MControlKernels {
    /// Where the controls are while `sources` are at these numbers. What is no number leads to
    /// `lowest`.
    void (*follow)(const MControlWays& ways, const double* sources, double* values,
                   int count) noexcept;

    /// The amplitudes of levels of -100 to 100 decibels, wrong by less than 5e-15 of themselves and
    /// exact at 0.
    void (*amplitudes)(const double* decibels, double* amplitudes, int count) noexcept;
};

inline constexpr int kControlPadding = 4;
