// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/crossover/MAudioFilters.h"
#include "dsp/crossover/MBiquadCascade.h"
#include "dsp/crossover/MCrossoverPoints.h"
#include "dsp/crossover/MStateTransfer.h"
#include "dsp/kernels/MCrossoverKernels.h"

#include <array>

/// What a memory of sound depends on: which filters run, and where.
struct MAnalogCrossoverShape {
    int bandCount = 1;
    int sectionCount = 0;  ///< of one filter
    int applied = 0;       ///< how often low- and high-passes are applied: once or twice
    std::array<double, kMaxCrossoverPoints> warp{};     ///< tan(pi * frequency / sample rate)
    std::array<double, kMaxCascadeSections> damping{};  ///< 1 / quality, by section

    int PointCount() const noexcept { return bandCount - 1; }

    /// Whether each point has a first-order all-pass instead of second-order sections.
    bool IsFirstOrder() const noexcept { return applied == 1; }

    MSectionShape Section(int point, int section) const noexcept {
        return {warp[point], damping[section]};
    }

    bool operator==(const MAnalogCrossoverShape&) const = default;
};

/// Everything that a minimum-phase crossover knows about its filters, and nothing of any sound.
///
/// Point j splits the signal into what lies below and above it. At 12 dB/oct the low- and high-pass
/// are one section of quality 0.5 each and every odd band is inverted; at the steeper slopes they
/// are Butterworth filters applied twice (S. H. Linkwitz, Active Crossover Networks for
/// Noncoincident Drivers, J. Audio Eng. Soc. 24, 1976). The all-pass has the phase of the two
/// halves' sum.
struct MAnalogCrossoverDesign {
    using Slope = MAudioFilters::CrossoverGeneralizedType;

    static constexpr int kMaxApplied = 2 * kMaxCascadeSections;

    /// Designs all of it. Throws as CheckCrossoverPoints, and MException "Invalid crossover slope."
    /// for a number outside the enumeration; the design is then as it was. Allocates nothing. [any]
    void Design(int bandCount, std::span<const double> frequencies, double sampleRate, Slope slope);

    int BandCount() const noexcept { return shape.bandCount; }
    int PointCount() const noexcept { return shape.PointCount(); }
    bool InvertsOddBands() const noexcept { return shape.IsFirstOrder(); }

    MAnalogCrossoverShape shape{.bandCount = 1, .sectionCount = 1, .applied = 2};

    std::array<MBiquadCascade, kMaxCrossoverPoints> highPass, lowPass, allPass;

    /// The same filters as the kernels take them: applied as often as needed, the high-pass below
    /// an inverted band inverted.
    struct Point {
        std::array<MBiquadCoefficients, kMaxApplied> high, low;
        std::array<MBiquadCoefficients, kMaxCascadeSections> all;
    };
    std::array<Point, kMaxCrossoverPoints> kernel;

private:
    void DesignPoint(int point, double frequency, double sampleRate);
    void PackPoint(int point);
};
