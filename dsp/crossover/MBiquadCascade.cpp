// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/crossover/MBiquadCascade.h"

#include <cassert>
#include <cmath>
#include <numbers>

double ButterworthQuality(int sections, int index) noexcept {
    // Exact on purpose: rounded to six digits the halves of a crossover no longer sum flat, by up
    // to 4e-5 dB with several points.
    const int pair = sections - index;
    return 1 / (2 * std::cos((2 * pair - 1) * std::numbers::pi / (4 * sections)));
}

void MBiquadCascade::DesignButterworth(BiquadType type, int sections, double frequency,
                                       double sampleRate) {
    assert(sections >= 1 && sections <= kMaxCascadeSections);
    for (int k = 0; k < sections; ++k) {
        sections_[k].Design(type, frequency, ButterworthQuality(sections, k), sampleRate);
    }
    count_ = sections;
}

void MBiquadCascade::DesignSection(BiquadType type, double frequency, double q, double sampleRate) {
    sections_[0].Design(type, frequency, q, sampleRate);
    count_ = 1;
}

void MBiquadCascade::AssignSection(const MBiquadCoefficients& coefficients) noexcept {
    sections_[0].Assign(coefficients);
    count_ = 1;
}

void MBiquadCascade::Run(MBiquadCascadeState& state, std::span<double> samples) const noexcept {
    for (int k = 0; k < count_; ++k) {
        RunBiquad(sections_[k].Coefficients(), state.sections[k], samples);
    }
}
