// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/crossover/MAnalogChannelState.h"

#include <algorithm>
#include <cassert>

namespace {

/// Silences the sections from `first` on.
void Silence(MBiquadCascadeState& state, int first) noexcept {
    std::fill(state.sections.begin() + first, state.sections.end(), MBiquadState{});
}

}  // namespace

void MAnalogChannelState::Reset() noexcept { shape_ = {}; }

void MAnalogChannelState::Follow(const MAnalogCrossoverShape& shape) noexcept {
    if (shape == shape_) return;
    SilenceWhatIsNew();
    for (int j = 0; j < std::min(shape.PointCount(), shape_.PointCount()); ++j) CarryOver(shape, j);
    shape_ = shape;
}

void MAnalogChannelState::SilenceWhatIsNew() noexcept {
    const auto silence = [this](Twice& filter, bool isNew) {
        Silence(filter[0], isNew ? 0 : shape_.sectionCount);
        Silence(filter[1], isNew || shape_.applied < 2 ? 0 : shape_.sectionCount);
    };
    const int points = shape_.PointCount();
    for (int j = 0; j < kMaxCrossoverPoints; ++j) {
        silence(highPass_[j], j >= points);
        // The all-pass of a point runs only when there is a band two above it.
        Silence(allPass_[j], j >= points - 1 ? 0 : shape_.sectionCount);
        for (int band = 0; band < kMaxCrossoverBands; ++band) {
            silence(lowPass_[band][j], j >= points || band >= shape_.bandCount);
        }
    }
}

void MAnalogChannelState::CarryOver(const MAnalogCrossoverShape& shape, int point) noexcept {
    for (int k = 0; k < std::min(shape.sectionCount, shape_.sectionCount); ++k) {
        const MSectionShape from = shape_.Section(point, k), to = shape.Section(point, k);
        const auto carry = [k](const MStateTransfer& transfer, MBiquadCascadeState& state) {
            transfer.Apply(state.sections[k].s1, state.sections[k].s2);
        };
        const MStateTransfer low(BiquadType::LowPass, from, to);
        const MStateTransfer high(BiquadType::HighPass, from, to);
        for (int i = 0; i < 2; ++i) {
            carry(high, highPass_[point][i]);
            for (Points& points : lowPass_) carry(low, points[point][i]);
        }
        // The single number that a first-order all-pass remembers keeps its meaning.
        if (shape.IsFirstOrder() || shape_.IsFirstOrder()) continue;
        carry({BiquadType::AllPass, from, to}, allPass_[point]);
    }
}

void MAnalogChannelState::ContinueAllPasses(const MAnalogCrossoverDesign& design, int band,
                                            const double* input, int count) {
    double* const chain = scratch_.Get(count);
    if (band == 2) std::copy_n(input, count, chain);
    design.allPass[band - 2].Run(allPass_[band - 2],
                                 std::span(chain, static_cast<std::size_t>(count)));
}

void MAnalogChannelState::ProcessBand(const MAnalogCrossoverDesign& design, int band,
                                      const double* input, double* output, int count) {
    assert(band >= 0 && band < design.BandCount());
    if (band == 0) Follow(design.shape);
    if (band >= 2) ContinueAllPasses(design, band, input, count);

    const double* source = band >= 2 ? scratch_.Get(count) : input;
    if (source != output) std::copy_n(source, count, output);
    const std::span<double> samples(output, static_cast<std::size_t>(count));

    const auto run = [&](const MBiquadCascade& filter, Twice& states) {
        for (int i = 0; i < design.shape.applied; ++i) filter.Run(states[i], samples);
    };
    if (band > 0) run(design.highPass[band - 1], highPass_[band - 1]);
    for (int j = band; j < design.PointCount(); ++j) run(design.lowPass[j], lowPass_[band][j]);

    if (design.InvertsOddBands() && band % 2 == 1) {
        for (double& sample : samples) sample = -sample;
    }
}
