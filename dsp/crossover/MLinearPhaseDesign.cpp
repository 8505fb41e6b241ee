// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/crossover/MLinearPhaseDesign.h"

#include "dsp/kernels/MKernelSet.h"

void MLinearPhaseDesigner::Design(const MCrossoverPoints& points, bool fixedQ,
                                  MLinearPhaseDesign& design) noexcept {
    // The outer bands have one kernel, the others two in series; the outer kernels start later to
    // have the same delay.
    constexpr int kOuterDelay = MLinearPhaseDesign::kKernelDelay - kLength / 2;
    const int last = points.bandCount - 2;
    design.bandCount = points.bandCount;
    if (last < 0) {  // a single tap of 1: nothing but the delay
        kernel_.DesignLowPass(0.5 * points.sampleRate, points.sampleRate, kLength, 1);
        kernel_.Transform(kOuterDelay, work_, design.spectrum[0]);
    }
    for (int j = 0; j <= last; ++j) {
        const double frequency = points.frequency[j];
        const int length =
            fixedQ ? LengthOfConstantSteepness(frequency, points.sampleRate, kLength) : kLength;
        MRealFFT::Buffer& band = design.spectrum[j];
        kernel_.DesignLowPass(frequency, points.sampleRate, kLength, length);
        kernel_.Transform(j == 0 ? kOuterDelay : 0, work_, band);
        if (j > 0) {
            Kernels().crossover->multiplySpectra(band.memory.data(), above_.memory.data(), 1,
                                                 band.memory.data(), MRealFFT::kSize);
        }
        kernel_.Invert();
        if (j < last) {
            kernel_.Transform(0, work_, above_);
        } else {
            kernel_.Transform(kOuterDelay, work_, design.spectrum[j + 1]);
        }
    }
}
