// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/crossover/MCrossoverPoints.h"
#include "dsp/fft/MFIRKernel.h"
#include "dsp/fft/MRealFFT.h"

#include <array>

/// The spectra of one kernel per band, all with the same delay of 1024 samples.
struct MLinearPhaseDesign {
    static constexpr int kKernelDelay = 1024;  // samples

    int bandCount = 1;
    std::array<MRealFFT::Buffer, kMaxCrossoverBands> spectrum;
};

/// Designs the kernels of a linear-phase crossover. Holds the memory that designing needs.
class MLinearPhaseDesigner {
public:
    /// What the Kaiser window of the kernels promises for the stop bands, in decibels. Chosen from
    /// the sweep in docs/crossovers.md.
    static constexpr double kAttenuation = 80;

    static constexpr int kLength = 1025;  // taps of the kernel at one point

    /// From the end of the pass band to the start of the stop band at each edge, in hertz, of
    /// kernels of full length at `sampleRate` hertz: 235 Hz at 48 kHz. Bands whose limits lie
    /// closer together do not sum flat. [any]
    static constexpr double TransitionWidth(double sampleRate) noexcept {
        return (kAttenuation - 7.95) / 14.36 / (kLength - 1) * sampleRate;
    }

    /// Writes the design for `points`. A single band is the delayed input. With `fixedQ` the
    /// kernels shorten as the frequency rises, so that every edge is as steep in octaves; else all
    /// have full length. Allocates nothing. [any]
    void Design(const MCrossoverPoints& points, bool fixedQ, MLinearPhaseDesign& design) noexcept;

private:
    MFIRKernel kernel_{MWindow(MWindowType::Kaiser, kAttenuation)};
    MRealFFT::Buffer work_;
    MRealFFT::Buffer above_;  // the high-pass of the point before
};
