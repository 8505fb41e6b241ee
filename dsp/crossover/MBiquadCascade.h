// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MBiquad.h"

#include <array>
#include <span>

inline constexpr int kMaxCascadeSections = 5;

/// The quality of section `index` (0 .. `sections` - 1, the sharpest first) of a Butterworth filter
/// of order 2 * `sections`. [any]
double ButterworthQuality(int sections, int index) noexcept;

/// What the sound left behind in one cascade.
struct MBiquadCascadeState {
    std::array<MBiquadState, kMaxCascadeSections> sections;
};

/// Up to five sections in series. Designing again leaves every state as it is.
class MBiquadCascade {
public:
    /// Designs a filter of order 2 * `sections` (1 .. kMaxCascadeSections) whose low- and high-pass
    /// are Butterworth; an all-pass gets the same poles. `frequency` and `sampleRate` in hertz.
    /// [any]
    void DesignButterworth(BiquadType type, int sections, double frequency, double sampleRate);

    /// Designs a single section of quality `q`. [any]
    void DesignSection(BiquadType type, double frequency, double q, double sampleRate);

    /// Takes one section whose coefficients were worked out elsewhere. [any]
    void AssignSection(const MBiquadCoefficients& coefficients) noexcept;

    /// Runs the sections one after the other over `samples` in place. [audio]
    void Run(MBiquadCascadeState& state, std::span<double> samples) const noexcept;

    std::span<const MBiquad> Sections() const noexcept {
        return std::span(sections_).first(static_cast<std::size_t>(count_));
    }

private:
    std::array<MBiquad, kMaxCascadeSections> sections_;
    std::int32_t count_ = 0;
};
