// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/MAnalogCrossover.h"

void MAnalogCrossover::Design(int bandCount, std::span<const double> frequencies, double sampleRate,
                              Slope slope) {
    designs_.Back().Design(bandCount, frequencies, sampleRate, slope);
    designs_.Publish();
}

void MAnalogCrossover::Publish() noexcept {
    designs_.Back() = prepared_;
    designs_.Publish();
}
