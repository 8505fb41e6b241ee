// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/crossover/MAnalogCrossover.h"

void MAnalogCrossover::Design(int bandCount, std::span<const double> frequencies, double sampleRate,
                              Slope slope) {
    designs_.Back().Design(bandCount, frequencies, sampleRate, slope);
    designs_.Publish();
}

void MAnalogCrossover::Take(const MAnalogCrossoverDesign& design) noexcept {
    designs_.Back() = design;
    designs_.Publish();
}
