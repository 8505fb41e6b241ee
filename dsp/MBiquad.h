// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/kernels/MBiquadCoefficients.h"

#include <cstdint>
#include <span>

/// Designs of a second-order section. The numbers are stored in settings and never change.
enum class BiquadType : std::int32_t {
    Peak = 0,
    LowShelf = 1,
    HighShelf = 2,
    LowPass = 3,
    HighPass = 4,
    BandPass = 7,
    Notch = 8,
    AllPass = 9,
};

/// Added to every designed coefficient: keeps a fading recursion away from denormal numbers.
inline constexpr double kBiquadCoefficientBias = 1.0000000036274937e-15;

/// The coefficients for `frequency` and `sampleRate` in hertz, quality `q` and the linear gain
/// `gain`, the square root of the level change at the centre or of the shelf; the types without a
/// gain ignore it. Throws MException "Invalid filter type." for a number outside BiquadType.
/// Method: R. Bristow-Johnson, Cookbook formulae for audio equalizer biquad filter coefficients.
/// [any]
MBiquadCoefficients DesignBiquad(BiquadType type, double frequency, double q, double sampleRate,
                                 double gain = 1.0);

/// One sample through the section. [audio]
inline double RunBiquad(const MBiquadCoefficients& c, MBiquadState& state, double x) noexcept {
    const double y = c.b0 * x + state.s1;
    // In this order only one product stands between two samples of the recursion.
    state.s1 = (c.b1 * x + state.s2) + c.minusA1 * y;
    state.s2 = c.b2 * x + c.minusA2 * y;
    return y;
}

/// Runs the section over `samples` in place. [audio]
void RunBiquad(const MBiquadCoefficients& c, MBiquadState& state,
               std::span<double> samples) noexcept;

/// A section together with what it was designed from. The design counter tells a running filter
/// that it must take new coefficients; its memory survives a redesign.
class MBiquad {
public:
    /// Designs anew; see DesignBiquad. `gainDb` in decibels. Allocates nothing. [any]
    void Design(BiquadType type, double frequency, double q, double sampleRate,
                double gainDb = 0.0);
    /// Takes coefficients that were worked out elsewhere. [any]
    void Assign(const MBiquadCoefficients& coefficients) noexcept;

    const MBiquadCoefficients& Coefficients() const noexcept { return coefficients_; }
    std::int32_t DesignCounter() const noexcept { return designCounter_; }
    BiquadType Type() const noexcept { return type_; }
    double Frequency() const noexcept { return frequency_; }    // hertz
    double SampleRate() const noexcept { return sampleRate_; }  // hertz
    double Quality() const noexcept { return q_; }
    double GainDb() const noexcept { return gainDb_; }

private:
    std::int32_t designCounter_ = 0;
    BiquadType type_ = BiquadType::Peak;
    double gainDb_ = 0;
    double frequency_ = 0;
    double sampleRate_ = 0;
    double q_ = 0;
    MBiquadCoefficients coefficients_;
};
