// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/modulation/MModulationCompiler.h"
#include "dsp/MRandom.h"

#include <array>
#include <span>
#include <string_view>

/// Deals the parameters of the bands out to the modulators at random. Equal states of the generator
/// give equal results, in this version and in those to come.
class MBandRandomiser {
public:
    enum class Kind { Limits, LimitsOverlapping, Gains, Panorama };

    using Modulators = std::array<MLFOSettings, MModulationPlan::kModulators>;

    /// What the editor offers, and what it says about it. [any]
    static std::string_view Title(Kind kind) noexcept;
    static std::string_view Description(Kind kind) noexcept;

    /// Where bands or their limits should stand, `bandCount` ascending positions of 0..1; two of
    /// them stand mirrored and in any order. Draws from `random`. [any]
    static std::vector<double> Positions(int bandCount, MRandom& random);

    /// `random` is stepped on and borrowed. [main]
    MBandRandomiser(Kind kind, int bandCount, MRandom& random) noexcept
        : kind_(kind), bandCount_(bandCount), random_(random) {}

    /// Gives `modulators` other targets out of `pool`, which holds the parameters of the kind from
    /// the lowest band on. Modulators for which none is left stay as they are, and so does
    /// everything else about a modulator. Throws MException "Index out of range." when a draw falls
    /// outside the pool. [main]
    void Deal(std::span<const MModulationTarget> pool, Modulators& modulators);

private:
    struct Parameter {
        MModulationTarget target;
        int number = 0;  // of its band or limit, from 1
    };

    std::uint32_t Draw() noexcept;
    int Draw(int count) noexcept;
    MTargetMotion Motion(int number, bool isInverted);

    const Kind kind_;
    const int bandCount_;
    MRandom& random_;
    std::vector<double> positions_;
    double depth_ = 0;
};
