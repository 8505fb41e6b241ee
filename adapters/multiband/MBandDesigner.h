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

    /// Designs the chosen crossover and then runs `publish`, which calls Publish in the course of
    /// whatever else it does, with nobody else designing. Not by two threads at once. Throws what
    /// the crossovers throw. Allocates for the first linear-phase design. [main]
    template <class Job>
    void Design(const MCrossoverChoice& choice, const MBandParameters::Limits& limits,
                Job&& publish) {
        Prepare(choice, limits);
        const MLock lock(lock_);
        choice_ = choice;
        limits_ = limits;
        publish();
    }
    /// Makes what was prepared the newest design of its crossover.
    void Publish() noexcept;

    /// Whether `limits`, at the start of a block of `count` frames, are others than before, such
    /// that a design is due; a linear-phase one no oftener than it could make a difference. [audio]
    bool IsDue(const MBandParameters::Limits& limits, int count) noexcept;
    /// Designs the same crossover anew for these limits and makes it the newest; does nothing while
    /// another thread designs. Allocates nothing. [audio]
    void Follow(const MBandParameters::Limits& limits);

private:
    void Prepare(const MCrossoverChoice& choice, const MBandParameters::Limits& limits);
    void Redesign();
    bool Concerns(const MBandParameters::Limits& limits) const noexcept;

    /// A linear-phase design costs as much as 5000 frames of sound, and the crossover looks for one
    /// every 2048 frames.
    static constexpr int kLinearPhasePause = 512;  // frames

    MBandProcessor& processor_;
    MMutex lock_;  // over the two below and what the crossovers make newest
    MCrossoverChoice choice_;
    MBandParameters::Limits limits_{};
    // Of the audio thread: the limits that it has dealt with, how long ago, and this block's
    // length.
    MBandParameters::Limits seen_{};
    int sinceFollowed_ = kLinearPhasePause;  // frames, before this block
    int blockFrames_ = 0;
};
