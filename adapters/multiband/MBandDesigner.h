// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/multiband/MBandParameters.h"
#include "adapters/multiband/MBandProcessor.h"
#include "core/MMutex.h"
#include "dsp/MAudioFilters.h"

/// What a crossover is designed for, but for the limits.
struct MCrossoverChoice {
    int bandCount = 1;
    bool isLinearPhase = false;
    bool hasFixedQ = false;  ///< of the linear-phase crossover: as steep as an analog one
    MAudioFilters::CrossoverGeneralizedType slope =
        MAudioFilters::CrossoverGeneralizedType::Slope24;  ///< of the analog crossover
    int sampleRate = 44100;                                ///< hertz
};

/// Designs the crossovers of a band processor from two sides: other threads say what is wanted, the
/// audio thread lets the limits follow their automation. A lock of its own keeps the two apart; the
/// audio thread only tries it and comes back a block later. Taken last of all locks.
class MBandDesigner {
public:
    /// `processor` is borrowed and outlives the designer. [setup]
    explicit MBandDesigner(MBandProcessor& processor) noexcept : processor_(processor) {}

    /// Designs the chosen crossover; the next block has it. Throws what the crossovers throw.
    /// Allocates for the first linear-phase design. [main]
    void Design(const MCrossoverChoice& choice, const MBandParameters::Limits& limits);
    /// Designs the same crossover anew should `limits` be others than before, at the start of a
    /// block of `count` frames; a linear-phase one no oftener than it could make a difference.
    /// Allocates nothing. [audio]
    void Follow(const MBandParameters::Limits& limits, int count);

private:
    void DesignLocked(const MBandParameters::Limits& limits);
    bool Concerns(const MBandParameters::Limits& limits) const noexcept;

    /// A linear-phase design costs as much as 5000 frames of sound, and the crossover looks for one
    /// every 2048 frames.
    static constexpr int kLinearPhasePause = 512;  // frames

    MBandProcessor& processor_;
    MMutex lock_;  // over the two below and the designing of both crossovers
    MCrossoverChoice choice_;
    MBandParameters::Limits limits_{};
    // Of the audio thread: the limits that it has dealt with, and for how long, in frames.
    MBandParameters::Limits seen_{};
    int sinceSeen_ = kLinearPhasePause;
};
