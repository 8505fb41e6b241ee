// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/multiband/MBandParameters.h"
#include "dsp/crossover/MAnalogCrossoverDesign.h"
#include "dsp/crossover/MAudioFilters.h"
#include "dsp/crossover/MLinearPhaseDesign.h"

#include <array>
#include <memory>

/// What a crossover is designed for, but for the limits.
struct MCrossoverChoice {
    int bandCount = 1;
    bool isLinearPhase = false;
    bool hasFixedQ = false;  ///< of the linear-phase crossover: as steep as an analog one
    MAudioFilters::CrossoverGeneralizedType slope =
        MAudioFilters::CrossoverGeneralizedType::Slope24;  ///< of the analog crossover
    int sampleRate = 44100;                                ///< hertz
};

/// A crossover, designed where it is in nobody's way, for the audio thread to take over.
struct MBandDesign {
    /// Designs the chosen crossover; `limits` are log10 of hertz. Throws what the crossovers throw.
    /// Allocates. [any]
    MBandDesign(const MCrossoverChoice& choice, const MBandParameters::Limits& limits);

    /// The limits in hertz. [any]
    static MBandParameters::Limits Hertz(const MBandParameters::Limits& limits) noexcept;

    const MCrossoverChoice choice;
    const MBandParameters::Limits limits;
    MAnalogCrossoverDesign analog;                    ///< when that was chosen
    std::unique_ptr<MLinearPhaseDesign> linearPhase;  ///< when that was chosen
};
