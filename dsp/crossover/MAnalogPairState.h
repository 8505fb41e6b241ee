// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MRampEnds.h"
#include "dsp/crossover/MAnalogCrossoverDesign.h"

#include <array>
#include <span>

/// The two channels of a pair. A single channel stands for both.
struct MChannelPair {
    double* left;
    double* right;
};

/// The same in floats.
struct MFloatPair {
    float* left;
    float* right;
};

/// What the sound left behind in the filters of two channels, and the fast way of running them: all
/// bands at once, the signal below a point filtered once for all bands that lie there, both
/// channels and two filters in the lanes of one loop.
///
/// Equals MAnalogChannelState but for rounding while the design stays the same. A redesign keeps
/// the memory of every filter that goes on running; added filters start from silence.
class MAnalogPairState {
public:
    /// Frames that are worked on at once, so that all buffers stay in the nearest cache.
    static constexpr int kPiece = kMostScaled;

    /// Splits `frames` frames of `left` and `right` into `bands`, one pair of buffers per band of
    /// the design. An output may be the input only if it is the last band's. Never allocates.
    /// [audio]
    void Split(const MAnalogCrossoverDesign& design, const double* left, const double* right,
               std::span<const MChannelPair> bands, int frames) noexcept;

    /// The same from and to floats, each band multiplied by its gain after the filters; `gains` has
    /// one entry per band. Input that is not finite counts as 0, and what exceeds +-`ceiling` as
    /// that. No output may overlap the input. Never allocates. [audio]
    void Split(const MAnalogCrossoverDesign& design, const float* left, const float* right,
               float ceiling, std::span<const MRampEnds> gains, std::span<const MFloatPair> bands,
               int frames) noexcept;

    /// Runs both channels in place through the all-passes of every point: the phase of all bands'
    /// sum, for a signal that is not split. Keeps a memory of its own, which goes stale while it
    /// does not run. [audio]
    void RunAllPasses(const MAnalogCrossoverDesign& design, MChannelPair channels,
                      int frames) noexcept;

    /// Forgets the sound. [audio]
    void Reset() noexcept;

    /// Forgets the sound of RunAllPasses only. [audio]
    void ResetAllPasses() noexcept { unsplit_ = {}; }

private:
    template <int kSections>
    using States = std::array<MKernelSectionState, kSections>;
    using AppliedStates = States<MAnalogCrossoverDesign::kMaxApplied>;
    using AllPassStates = States<kMaxCascadeSections>;

    struct Buffers;

    void Follow(const MAnalogCrossoverShape& shape) noexcept;
    void MakeRoom(const MAnalogCrossoverShape& shape) noexcept;
    void CarryOver(const MAnalogCrossoverShape& shape, int point) noexcept;
    void RunFilters(const MAnalogCrossoverDesign& design, Buffers& buffers, int frames) noexcept;
    void AlignPhases(const MAnalogCrossoverDesign& design, Buffers& buffers, int frames) noexcept;

    std::array<AppliedStates, kMaxCrossoverPoints> low_, high_;
    std::array<std::array<AllPassStates, kMaxCrossoverPoints>, kMaxCrossoverBands> aligning_;
    std::array<AllPassStates, kMaxCrossoverPoints> unsplit_;

    MAnalogCrossoverShape shape_;  // what ran last
};
