// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/kernels/MLinearRamp.h"

/// What a meter wants to know of one channel of one block.
struct MBlockLevels {
    float peak = 0;     ///< largest absolute value
    float squares = 0;  ///< sum of the squares
};

/// One part of a sum. An absent one has no samples.
struct MScaledSound {
    const float* samples = nullptr;
    float gain = 1;
    const float* gains = nullptr;  ///< a gain per sample in the place of `gain`; null for none
};

/// What becomes of a band: (first + second) * gain, into the destination or onto it.
struct MBandSum {
    MScaledSound first;   ///< never absent; may be the destination
    MScaledSound second;  ///< has gains per sample if the first one has
    float gain = 1;       ///< applied after the levels were taken
    bool adds = false;    ///< to what the destination holds
};

/// The hot loops around the bands' effects. Samples are floats, no pointers need an alignment, and
/// `count` is at least 0. [audio]
struct MBandKernels {
    /// out = in * gain, with an input that is not finite taken as 0 and the rest limited to
    /// +-`ceiling`. `out` may be `in`.
    void (*takeInput)(const float* in, const MLinearRamp& gain, float ceiling, float* out,
                      int count) noexcept;

    /// Moves the pair towards one side, in place: what one side loses the other gets.
    void (*pan)(const MLinearRamp& panorama, float* left, float* right, int count) noexcept;

    /// The values of `ramp`, each rounded once.
    void (*tabulate)(const MLinearRamp& ramp, float* values, int count) noexcept;

    /// Adds up a band. `levels` are those of the sum without `gain`; null when nobody wants them.
    void (*addBand)(const MBandSum& sum, float* destination, MBlockLevels* levels,
                    int count) noexcept;

    /// The levels of `count` samples.
    MBlockLevels (*measure)(const float* samples, int count) noexcept;
};
