// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/crossover/MAudioFilters.h"

#include <vector>

/// How a signal is split into bands, and which of them take part: what is no parameter of the
/// plug-in but part of its layout.
struct MBandSetup {
    static constexpr int kMaxBands = 6;

    enum class Crossover { Analog, LinearPhase, Hybrid };

    int count = 1;  ///< 1..6
    Crossover crossover = Crossover::Analog;
    MAudioFilters::CrossoverGeneralizedType slope =
        MAudioFilters::CrossoverGeneralizedType::Slope24;  ///< of the analog crossover
    std::vector<double> limits =
        {};                          ///< hertz, ascending, one less than bands; empty: the defaults
    std::vector<int> muted = {};     ///< bands, from 1
    std::vector<int> bypassed = {};  ///< bands, from 1
};
