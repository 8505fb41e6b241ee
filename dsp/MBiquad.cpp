// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/MBiquad.h"

#include "core/MException.h"

#include <cmath>
#include <numbers>

namespace {

/// A section before it is normalised.
struct Section {
    double b0, b1, b2, a0, a1, a2;
};

/// The terms that every design shares.
struct Terms {
    double cosine;  // of the angular frequency per sample
    double alpha;
    double gain;
};

Section LowShelf(const Terms& t) {
    const double up = t.gain + 1, down = t.gain - 1;
    const double root = 2 * std::sqrt(t.gain) * t.alpha;
    return {.b0 = t.gain * (up - down * t.cosine + root),
            .b1 = 2 * t.gain * (down - up * t.cosine),
            .b2 = t.gain * (up - down * t.cosine - root),
            .a0 = up + down * t.cosine + root,
            .a1 = -2 * (down + up * t.cosine),
            .a2 = up + down * t.cosine - root};
}

Section HighShelf(const Terms& t) {
    // A high shelf is the low shelf mirrored at half the band: every cosine changes its sign.
    const Section low = LowShelf({-t.cosine, t.alpha, t.gain});
    return {low.b0, -low.b1, low.b2, low.a0, -low.a1, low.a2};
}

Section Design(BiquadType type, const Terms& t) {
    const double a0 = 1 + t.alpha, a1 = -2 * t.cosine, a2 = 1 - t.alpha;
    switch (type) {
        case BiquadType::Peak:
            return {1 + t.alpha * t.gain, a1, 1 - t.alpha * t.gain,
                    1 + t.alpha / t.gain, a1, 1 - t.alpha / t.gain};
        case BiquadType::LowShelf:
            return LowShelf(t);
        case BiquadType::HighShelf:
            return HighShelf(t);
        case BiquadType::LowPass: {
            const double b1 = 1 - t.cosine;
            return {b1 / 2, b1, b1 / 2, a0, a1, a2};
        }
        case BiquadType::HighPass: {
            const double b1 = 1 + t.cosine;
            return {b1 / 2, -b1, b1 / 2, a0, a1, a2};
        }
        case BiquadType::BandPass:
            return {t.alpha, 0, -t.alpha, a0, a1, a2};
        case BiquadType::Notch:
            return {1, a1, 1, a0, a1, a2};
        case BiquadType::AllPass:
            return {a2, a1, a0, a0, a1, a2};
    }
    throw MException("Invalid filter type.");
}

}  // namespace

MBiquadCoefficients DesignBiquad(BiquadType type, double frequency, double q, double sampleRate,
                                 double gain) {
    const double omega = 2 * std::numbers::pi * frequency / sampleRate;
    const Section s = Design(type, {std::cos(omega), std::sin(omega) / (2 * q), gain});
    return {.b0 = s.b0 / s.a0 + kBiquadCoefficientBias,
            .b2 = s.b2 / s.a0 + kBiquadCoefficientBias,
            .minusA2 = -s.a2 / s.a0 + kBiquadCoefficientBias,
            .b1 = s.b1 / s.a0 + kBiquadCoefficientBias,
            .minusA1 = -s.a1 / s.a0 + kBiquadCoefficientBias};
}

void RunBiquad(const MBiquadCoefficients& c, MBiquadState& state,
               std::span<double> samples) noexcept {
    MBiquadState local = state;
    for (double& sample : samples) sample = RunBiquad(c, local, sample);
    state = local;
}

void MBiquad::Design(BiquadType type, double frequency, double q, double sampleRate,
                     double gainDb) {
    coefficients_ =
        DesignBiquad(type, frequency, q, sampleRate, std::pow(10.0, gainDb * 0.5 * 0.05));
    type_ = type;
    frequency_ = frequency;
    q_ = q;
    sampleRate_ = sampleRate;
    gainDb_ = gainDb;
    ++designCounter_;
}

void MBiquad::Assign(const MBiquadCoefficients& coefficients) noexcept {
    coefficients_ = coefficients;
    ++designCounter_;
}
