// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MRampEnds.h"
#include "dsp/crossover/MCrossoverPoints.h"

#include <array>

class MMeter;

/// One band's numbers for one block.
struct MBandSettings {
    MRampEnds gain{1, 1};      ///< linear
    MRampEnds panorama{0, 0};  ///< -1 left .. 1 right
    bool isBypassed = false;   ///< the band's input takes the place of its effect's output
    bool isMuted = false;      ///< silent; the effect runs on
};

/// Everything that the band loop needs to know for one block. The caller keeps it from block to
/// block, sets the ends before each block and calls Arrive after it.
struct MBandBlock {
    int bandCount = 1;           ///< 1 .. 6
    bool isLinearPhase = false;  ///< the linear-phase crossover splits, else the analog one
    int splitOverride = -1;      ///< from 0 on every band gets the whole input

    MRampEnds inputGain{1, 1};       ///< linear
    MRampEnds outputGain{1, 1};      ///< linear
    MRampEnds wet{1, 1};             ///< linear; already 0 or 1 where it is forced to
    MRampEnds dry{1, 1};             ///< the same
    bool wetAffectsGain = true;      ///< band gains fade to 1 as wet falls to 0
    bool wetAffectsPanorama = true;  ///< panoramas fade to the middle as wet falls to 0

    std::array<MBandSettings, kMaxCrossoverBands> bands;

    MMeter* bandMeters = nullptr;  ///< one per band, borrowed; null while nobody looks

    /// What the input of `band` is multiplied by: input gain and band gain, the latter as far as
    /// wet lets it. [audio]
    MRampEnds BandGain(int band) const noexcept;

    /// Where `band` stands between left and right. It follows the wet of the block's start at both
    /// ends, deliberately: presets that move wet were made with it. [audio]
    MRampEnds BandPanorama(int band) const noexcept;

    /// Makes the ends of this block the starts of the next. [audio]
    void Arrive() noexcept;
};
