// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/crossover/MAnalogCrossoverDesign.h"

#include "core/MException.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

// Deliberately not quite -1, like the bias of the designed sections: a numerator that cancels
// exactly would let a fading signal run into denormal numbers.
constexpr double kFirstOrderAllPassB1 = -0.999999999999999;

MBiquadCoefficients FirstOrderAllPass(double frequency, double sampleRate) {
    const double omega = 2 * std::numbers::pi * frequency / sampleRate;
    const double pole = std::exp(-omega) + kBiquadCoefficientBias;
    return {.b0 = pole, .b2 = 0, .minusA2 = 0, .b1 = kFirstOrderAllPassB1, .minusA1 = pole};
}

/// Writes the cascade `times` times in a row; the first section takes the sign.
void Pack(const MBiquadCascade& cascade, int times, double sign,
          std::span<MBiquadCoefficients> packed) {
    std::size_t next = 0;
    for (int i = 0; i < times; ++i) {
        for (const MBiquad& section : cascade.Sections()) {
            packed[next++] = section.Coefficients();
        }
    }
    packed[0].b0 *= sign;
    packed[0].b1 *= sign;
    packed[0].b2 *= sign;
}

}  // namespace

void MAnalogCrossoverDesign::Design(int bands, std::span<const double> frequencies,
                                    double sampleRate, Slope slope) {
    const MCrossoverPoints points = CheckCrossoverPoints(bands, frequencies, sampleRate);
    const int steepness = static_cast<int>(slope);
    if (steepness < 0 || steepness > kMaxCascadeSections) {
        throw MException("Invalid crossover slope.");
    }
    shape = {.bandCount = bands,
             .sectionCount = std::max(1, steepness),
             .applied = slope == Slope::Slope12 ? 1 : 2};
    for (int k = 0; k < shape.sectionCount; ++k) {
        shape.damping[k] = slope == Slope::Slope12 ? 2 : 1 / ButterworthQuality(steepness, k);
    }
    for (int j = 0; j < PointCount(); ++j) {
        shape.warp[j] = std::tan(std::numbers::pi * points.frequency[j] / sampleRate);
        DesignPoint(j, points.frequency[j], sampleRate);
        PackPoint(j);
    }
}

void MAnalogCrossoverDesign::DesignPoint(int point, double frequency, double sampleRate) {
    if (shape.IsFirstOrder()) {
        highPass[point].DesignSection(BiquadType::HighPass, frequency, 0.5, sampleRate);
        lowPass[point].DesignSection(BiquadType::LowPass, frequency, 0.5, sampleRate);
        allPass[point].AssignSection(FirstOrderAllPass(frequency, sampleRate));
        return;
    }
    highPass[point].DesignButterworth(BiquadType::HighPass, shape.sectionCount, frequency,
                                      sampleRate);
    lowPass[point].DesignButterworth(BiquadType::LowPass, shape.sectionCount, frequency,
                                     sampleRate);
    allPass[point].DesignButterworth(BiquadType::AllPass, shape.sectionCount, frequency,
                                     sampleRate);
}

void MAnalogCrossoverDesign::PackPoint(int point) {
    const bool inverted = InvertsOddBands() && (point + 1) % 2 == 1;  // the band above the point
    Pack(highPass[point], shape.applied, inverted ? -1 : 1, kernel[point].high);
    Pack(lowPass[point], shape.applied, 1, kernel[point].low);
    Pack(allPass[point], 1, 1, kernel[point].all);
}
