// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/multiband/MBandDesign.h"
#include "adapters/multiband/MBandProcessor.h"

/// Keeps the crossovers of a band processor up to date: brings in designs that others have made,
/// and lets the limits follow their automation by designs of its own. Of the audio thread.
class MBandDesigner {
public:
    /// `processor` is borrowed and outlives the designer. [setup]
    explicit MBandDesigner(MBandProcessor& processor) noexcept : processor_(processor) {}

    /// Brings `design` into use, unless that is where it comes from. Borrowed until the next call.
    /// [audio]
    void Take(const MBandDesign& design) noexcept;

    /// Whether `limits`, at the start of a block of `count` frames, are others than before, such
    /// that a design is due; a linear-phase one no oftener than it could make a difference. [audio]
    bool IsDue(const MBandParameters::Limits& limits, int count) noexcept;
    /// Designs the same crossover anew for these limits and brings it into use. Allocates nothing.
    /// [audio]
    void Follow(const MBandParameters::Limits& limits);

private:
    void Redesign();
    bool Concerns(const MBandParameters::Limits& limits) const noexcept;

    /// A linear-phase design costs as much as 5000 frames of sound, and the crossover looks for one
    /// every 2048 frames.
    static constexpr int kLinearPhasePause = 512;  // frames

    MBandProcessor& processor_;
    const MBandDesign* taken_ = nullptr;
    MCrossoverChoice choice_;
    MBandParameters::Limits limits_{};  // in use
    // The limits that have been dealt with, how long ago, and this block's length.
    MBandParameters::Limits seen_{};
    int sinceFollowed_ = kLinearPhasePause;  // frames, before this block
    int blockFrames_ = 0;
};
