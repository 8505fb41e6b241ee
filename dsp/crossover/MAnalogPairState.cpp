// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/crossover/MAnalogPairState.h"

#include "dsp/kernels/MKernelSet.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <utility>

namespace {

/// The all-pass of one point for one band.
struct Cell {
    int band, point;
};

/// Two all-passes that run side by side.
struct CellPair {
    Cell a, b;
};

// Band b needs the all-passes of the points 0 .. b - 2, in this order. A pair of equal cells runs
// one of them, twice over: it costs the same.
constexpr CellPair kThreeBands[] = {{{2, 0}, {2, 0}}};
constexpr CellPair kFourBands[] = {{{3, 0}, {2, 0}}, {{3, 1}, {3, 1}}};
constexpr CellPair kFiveBands[] = {{{4, 0}, {3, 0}}, {{4, 1}, {3, 1}}, {{4, 2}, {2, 0}}};
constexpr CellPair kSixBands[] = {
    {{5, 0}, {4, 0}}, {{5, 1}, {4, 1}}, {{5, 2}, {4, 2}}, {{5, 3}, {3, 0}}, {{3, 1}, {2, 0}}};
constexpr std::span<const CellPair> kAligningCells[kMaxCrossoverBands + 1] = {
    {}, {}, {}, kThreeBands, kFourBands, kFiveBands, kSixBands};

/// Moves the sections of `applied` applications from where a filter of `from` sections has them to
/// where one of `to` sections has them, and silences what is new.
template <class States>
void Rearrange(States& states, int applied, int from, int to) noexcept {
    States moved{};
    const int kept = std::min(from, to);
    for (int i = 0; i < applied; ++i) {
        std::copy_n(states.begin() + i * from, kept, moved.begin() + i * to);
    }
    states = moved;
}

}  // namespace

struct MAnalogPairState::Buffers {
    using Frames = std::array<double, 2 * static_cast<std::size_t>(kPiece)>;
    alignas(
        64) std::array<Frames, kMaxCrossoverBands> bands;  // band 0 holds what is yet to be split
};

void MAnalogPairState::Follow(const MAnalogCrossoverShape& shape) noexcept {
    if (shape == shape_) return;
    if (shape.sectionCount != shape_.sectionCount || shape.applied != shape_.applied) {
        MakeRoom(shape);
    }
    for (int band = shape_.bandCount; band < shape.bandCount; ++band) {
        low_[band - 1] = {};
        high_[band - 1] = {};
        unsplit_[band - 1] = {};
        aligning_[band] = {};
    }
    for (int j = 0; j < std::min(shape.PointCount(), shape_.PointCount()); ++j) CarryOver(shape, j);
    shape_ = shape;
}

void MAnalogPairState::MakeRoom(const MAnalogCrossoverShape& shape) noexcept {
    const int from = shape_.sectionCount, to = shape.sectionCount;
    const int applied = std::min(shape.applied, shape_.applied);
    for (int j = 0; j < kMaxCrossoverPoints; ++j) {
        Rearrange(low_[j], applied, from, to);
        Rearrange(high_[j], applied, from, to);
        Rearrange(unsplit_[j], 1, from, to);
        for (auto& points : aligning_) Rearrange(points[j], 1, from, to);
    }
}

void MAnalogPairState::CarryOver(const MAnalogCrossoverShape& shape, int point) noexcept {
    for (int k = 0; k < std::min(shape.sectionCount, shape_.sectionCount); ++k) {
        const MSectionShape from = shape_.Section(point, k), to = shape.Section(point, k);
        const auto carry = [](const MStateTransfer& transfer, MKernelSectionState& state) {
            for (int channel = 0; channel < 2; ++channel) {
                transfer.Apply(state.s1[channel], state.s2[channel]);
            }
        };
        const MStateTransfer low(BiquadType::LowPass, from, to);
        const MStateTransfer high(BiquadType::HighPass, from, to);
        for (int i = 0; i < shape.applied; ++i) {
            carry(low, low_[point][i * shape.sectionCount + k]);
            carry(high, high_[point][i * shape.sectionCount + k]);
        }
        // The single number that a first-order all-pass remembers keeps its meaning.
        if (shape.IsFirstOrder() || shape_.IsFirstOrder()) continue;
        const MStateTransfer all(BiquadType::AllPass, from, to);
        carry(all, unsplit_[point][k]);
        for (int band = point + 2; band < shape.bandCount; ++band) {
            carry(all, aligning_[band][point][k]);
        }
    }
}

void MAnalogPairState::Reset() noexcept {
    low_ = {};
    high_ = {};
    aligning_ = {};
    unsplit_ = {};
}

void MAnalogPairState::Split(const MAnalogCrossoverDesign& design, const double* left,
                             const double* right, std::span<const MChannelPair> bands,
                             int frames) noexcept {
    assert(std::cmp_greater_equal(bands.size(), design.BandCount()));
    const MCrossoverKernels& kernels = *Kernels().crossover;
    Follow(design.shape);
    Buffers buffers;  // NOLINT(cppcoreguidelines-pro-type-member-init): all of it is written first
    for (int first = 0; first < frames; first += kPiece) {
        const int count = std::min(kPiece, frames - first);
        kernels.interleave(left + first, right + first, buffers.bands[0].data(), count);
        RunFilters(design, buffers, count);
        for (int band = 0; band < design.BandCount(); ++band) {
            kernels.separate(buffers.bands[band].data(), bands[band].left + first,
                             bands[band].right + first, count);
        }
    }
}

void MAnalogPairState::Split(const MAnalogCrossoverDesign& design, const float* left,
                             const float* right, float ceiling, std::span<const MRampEnds> gains,
                             std::span<const MFloatPair> bands, int frames) noexcept {
    assert(std::cmp_greater_equal(bands.size(), design.BandCount()) &&
           std::cmp_greater_equal(gains.size(), design.BandCount()));
    const MCrossoverKernels& kernels = *Kernels().crossover;
    Follow(design.shape);
    Buffers buffers;  // NOLINT(cppcoreguidelines-pro-type-member-init): all of it is written first
    for (int first = 0; first < frames; first += kPiece) {
        const int count = std::min(kPiece, frames - first);
        kernels.interleaveClean(left + first, right + first, ceiling, buffers.bands[0].data(),
                                count);
        RunFilters(design, buffers, count);
        for (int band = 0; band < design.BandCount(); ++band) {
            kernels.separateScaled(buffers.bands[band].data(), gains[band].Linear(frames, first),
                                   bands[band].left + first, bands[band].right + first, count);
        }
    }
}

void MAnalogPairState::RunFilters(const MAnalogCrossoverDesign& design, Buffers& buffers,
                                  int frames) noexcept {
    double* const rest = buffers.bands[0].data();
    std::array<MKernelStage, kMaxCrossoverPoints> stages{};
    int count = 0;
    for (int j = design.PointCount() - 1; j >= 0; --j) {
        const MAnalogCrossoverDesign::Point& point = design.kernel[j];
        double* const above = buffers.bands[j + 1].data();
        stages[count++] = {{point.low.data(), low_[j].data(), rest, rest},
                           {point.high.data(), high_[j].data(), rest, above}};
    }
    Kernels().crossover->runStages(stages.data(), count,
                                   design.shape.applied * design.shape.sectionCount, frames);
    AlignPhases(design, buffers, frames);

    double check = 0;
    for (int band = 0; band < design.BandCount(); ++band) {
        const double* result = buffers.bands[band].data();
        check += result[2 * frames - 1] + result[2 * frames - 2];
    }
    // What is not a number stays in a recursion for ever.
    if (!std::isfinite(check)) Reset();
}

void MAnalogPairState::AlignPhases(const MAnalogCrossoverDesign& design, Buffers& buffers,
                                   int frames) noexcept {
    const auto filter = [&](const Cell& cell) -> MKernelFilter {
        double* const samples = buffers.bands[cell.band].data();
        return {design.kernel[cell.point].all.data(), aligning_[cell.band][cell.point].data(),
                samples, samples};
    };
    std::array<MKernelStage, kMaxCrossoverPoints> stages{};
    int count = 0;
    for (const CellPair& cells : kAligningCells[design.BandCount()]) {
        stages[count++] = {filter(cells.a), filter(cells.b)};
    }
    Kernels().crossover->runStages(stages.data(), count, design.shape.sectionCount, frames);
}

void MAnalogPairState::RunAllPasses(const MAnalogCrossoverDesign& design, MChannelPair channels,
                                    int frames) noexcept {
    const MCrossoverKernels& kernels = *Kernels().crossover;
    Follow(design.shape);
    Buffers buffers;  // NOLINT(cppcoreguidelines-pro-type-member-init): all of it is written first
    double* const samples = buffers.bands[0].data();
    for (int first = 0; first < frames; first += kPiece) {
        const int count = std::min(kPiece, frames - first);
        kernels.interleave(channels.left + first, channels.right + first, samples, count);
        std::array<MKernelStage, kMaxCrossoverPoints> stages{};
        for (int j = 0; j < design.PointCount(); ++j) {
            const MKernelFilter filter{design.kernel[j].all.data(), unsplit_[j].data(), samples,
                                       samples};
            stages[j] = {filter, filter};
        }
        kernels.runStages(stages.data(), design.PointCount(), design.shape.sectionCount, count);
        kernels.separate(samples, channels.left + first, channels.right + first, count);
        if (!std::isfinite(samples[2 * count - 1] + samples[2 * count - 2])) ResetAllPasses();
    }
}
