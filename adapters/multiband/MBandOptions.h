// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/multiband/MBandParameters.h"
#include "dsp/crossover/MAudioFilters.h"
#include "plugin/MArchive.h"

/// What may be chosen about the bands besides layout and parameters. Plain data.
struct MBandOptions {
    bool isLinearPhase = false;  ///< the crossover: linear phase or analog
    bool hasFixedQ = false;      ///< of the linear-phase one: hybrid, as steep as an analog one
    MAudioFilters::CrossoverGeneralizedType slope =
        MAudioFilters::CrossoverGeneralizedType::Slope24;  ///< of the analog one
    bool dryWetAffectsInputGain = true;
    bool dryWetAffectsInputPan = true;
    MForcedMix wet;
    MForcedMix dry;
    bool editsPanorama = false;  ///< the band display of the editor shows panoramas, not gains
    bool isLinked = false;       ///< the editor treats the bands as one

    /// Reads or writes them all. [main]
    void Store(MXMLNode node, const MArchive& archive);
};
