// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MException.h"
#include "dsp/MBiquad.h"
#include "tests/support/Response.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <tuple>
#include <vector>

namespace {

using Complex = std::complex<double>;

constexpr double kSampleRate = 48000;

Complex Resonance(Complex s, double q) { return s * s + s / q + 1.0; }

Complex Shelf(Complex s, double q, double gain) {
    const Complex middle = std::sqrt(gain) / q * s;
    return gain * (s * s + middle + gain) / (gain * s * s + middle + 1.0);
}

/// The analog filter behind each design at s, a multiple of its own frequency.
Complex Prototype(BiquadType type, Complex s, double q, double gain) {
    switch (type) {
        case BiquadType::LowPass:
            return 1.0 / Resonance(s, q);
        case BiquadType::HighPass:
            return s * s / Resonance(s, q);
        case BiquadType::BandPass:
            return s / q / Resonance(s, q);
        case BiquadType::Notch:
            return (s * s + 1.0) / Resonance(s, q);
        case BiquadType::AllPass:
            return Resonance(-s, q) / Resonance(s, q);
        case BiquadType::Peak:
            return Resonance(s, q / gain) / Resonance(s, q * gain);
        case BiquadType::LowShelf:
            return Shelf(s, q, gain);
        case BiquadType::HighShelf:
            return Shelf(1.0 / s, q, gain);
    }
    return 0;
}

/// Where the bilinear transform puts `frequency` on the axis of a prototype at `centre`.
Complex Warped(double frequency, double centre) {
    const double half = std::numbers::pi / kSampleRate;
    return {0, std::tan(half * frequency) / std::tan(half * centre)};
}

std::vector<double> ImpulseResponse(const MBiquadCoefficients& coefficients) {
    std::vector<double> samples(1 << 14, 0.0);
    samples[0] = 1;
    MBiquadState state;
    RunBiquad(coefficients, state, samples);
    return samples;
}

}  // namespace

TEST(MBiquad, AnswersAsTheAnalogFilterThroughTheBilinearTransform) {
    constexpr BiquadType kTypes[] = {
        BiquadType::LowPass, BiquadType::HighPass, BiquadType::BandPass, BiquadType::Notch,
        BiquadType::AllPass, BiquadType::Peak,     BiquadType::LowShelf, BiquadType::HighShelf};
    for (const BiquadType type : kTypes) {
        for (const auto& [centre, q, gainDb] :
             {std::tuple(1000.0, 0.7, 6.0), {250, 0.5, -12}, {8000, 4, 3}, {20000, 0.9, -3}}) {
            MBiquad section;
            section.Design(type, centre, q, kSampleRate, gainDb);
            const std::vector<double> impulse = ImpulseResponse(section.Coefficients());
            // The centre, near both ends of the band, and points between; s = 0 has no reciprocal.
            for (const double probe : {centre, 0.01, 23999.9, 100.0, 3000.0, 15000.0}) {
                const Complex expected =
                    Prototype(type, Warped(probe, centre), q, std::pow(10.0, gainDb / 40));
                EXPECT_LT(std::abs(ResponseAt(impulse, probe, kSampleRate) - expected), 1e-8)
                    << static_cast<int>(type) << " at " << centre << ", probed at " << probe;
            }
        }
    }
}

TEST(MBiquad, RefusesNumbersWithoutADesignAndStaysAsItWas) {
    MBiquad section;
    section.Design(BiquadType::LowPass, 1000, 0.7, kSampleRate);
    for (const int number : {-1, 5, 6, 10, 1 << 30}) {
        EXPECT_THROW(section.Design(static_cast<BiquadType>(number), 500, 0.7, kSampleRate),
                     MException);
    }
    EXPECT_EQ(section.Frequency(), 1000);
    EXPECT_EQ(section.DesignCounter(), 1);
}
