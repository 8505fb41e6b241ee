// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/kernels/MBiquadCoefficients.h"
#include "dsp/kernels/MLinearRamp.h"

/// What the sound left behind in one section of a pair of channels (transposed direct form II).
struct MKernelSectionState {
    double s1[2] = {0, 0};
    double s2[2] = {0, 0};
};

/// One filter for a pair of channels. Frames are interleaved: left, right, left, right. The
/// destination may be the source.
struct MKernelFilter {
    const MBiquadCoefficients* sections;
    MKernelSectionState* states;
    const double* source;
    double* destination;
};

/// Two filters side by side, of as many sections each. The destination of one must not be the
/// source of the other, unless both have the same source.
struct MKernelStage {
    MKernelFilter a, b;
};

inline constexpr int kMostScaled = 256;

/// The hot loops of the crossovers. [audio]
struct MCrossoverKernels {
    /// Runs `stageCount` stages of `sectionCount` sections, one after the other, over `frames`
    /// frames. A stage may read what an earlier one writes, and must not overwrite what it reads.
    void (*runStages)(const MKernelStage* stages, int stageCount, int sectionCount,
                      int frames) noexcept;

    /// Interleaves two channels.
    void (*interleave)(const double* left, const double* right, double* frames, int count) noexcept;

    /// Takes two channels apart again.
    void (*separate)(const double* frames, double* left, double* right, int count) noexcept;

    /// Interleaves two channels of floats; a number that is not finite is taken as 0 and the rest
    /// limited to +-`ceiling`.
    void (*interleaveClean)(const float* left, const float* right, float ceiling, double* frames,
                            int count) noexcept;

    /// Takes two channels apart into floats, both multiplied by `gain`. `left` may be `right`, for
    /// channels that are alike. `count` is at most kMostScaled.
    void (*separateScaled)(const double* frames, const MLinearRamp& gain, float* left, float* right,
                           int count) noexcept;

    /// product[i] = gain * a[i] * b[i] over packed spectra of `size` numbers: the real bins 0 and
    /// size / 2 first, then real and imaginary part of each bin between them. `size` is a multiple
    /// of 16, the product may be one of the factors.
    void (*multiplySpectra)(const float* a, const float* b, float gain, float* product,
                            int size) noexcept;

    /// sum[i] = a[i] + b[i] over `count` numbers, a multiple of 8.
    void (*add)(const float* a, const float* b, float* sum, int count) noexcept;
};
