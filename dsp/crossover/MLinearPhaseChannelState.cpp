// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/crossover/MLinearPhaseChannelState.h"

#include <algorithm>
#include <cassert>

void MLinearPhaseChannelState::Follow(const MLinearPhaseDesign& design) {
    if (work_ == nullptr) {
        // Once as full as it can ever be, so that no later call allocates.
        shared_.AppendSilence(MBlockConvolver::kBlock);
        shared_.Clear();
        work_ = std::make_unique<Work>();
    }
    // Added bands fall into step with those that run, so that all blocks are full at once.
    const int phase = bandCount_ == 0 ? 0 : MBlockConvolver::kBlock - bands_[0].convolver.Space();
    for (int band = bandCount_; band < design.bandCount; ++band) {
        bands_[band].convolver.Prime(phase);
        bands_[band].gainStands = phase == 0;
    }
    bandCount_ = design.bandCount;
}

void MLinearPhaseChannelState::ProcessBand(const MLinearPhaseDesign& design, int band,
                                           const float* input, float* output, int count) {
    assert(band >= 0 && band < design.bandCount);
    if (design.bandCount != bandCount_) Follow(design);
    MBlockConvolver& convolver = bands_[band].convolver;
    for (int first = 0; first < count;) {
        const int portion = std::min(count - first, convolver.Space());
        const std::size_t size = static_cast<std::size_t>(portion);
        convolver.Append({input + first, size});
        if (convolver.IsFull()) {
            convolver.TransformInput(work_->samples, work_->spectrum);
            convolver.Convolve(work_->spectrum, design.spectrum[band], 1, work_->samples,
                               work_->product);
        }
        convolver.Take({output + first, size});
        first += portion;
    }
}

void MLinearPhaseChannelState::Split(const MLinearPhaseDesign& design, const float* input,
                                     std::span<const MRampEnds> gains,
                                     std::span<float* const> bands, int count) {
    if (design.bandCount != bandCount_) Follow(design);
    for (int first = 0; first < count;) {
        const int space = bands_[0].convolver.Space();
        if (space == MBlockConvolver::kBlock) {
            shared_.Clear();
            for (Band& band : bands_) band.gainStands = true;
        }
        const int portion = std::min(count - first, space);
        const std::size_t size = static_cast<std::size_t>(portion);
        shared_.Append({input + first, size});
        for (int band = 0; band < bandCount_; ++band) {
            Append(bands_[band], {input + first, size},
                   gains.empty() ? MRampEnds{1, 1} : gains[band], first, count);
        }
        if (portion == space) ConvolveAll(design);
        for (int band = 0; band < bandCount_; ++band) {
            bands_[band].convolver.Take({bands[band] + first, size});
        }
        first += portion;
    }
}

void MLinearPhaseChannelState::Append(Band& band, std::span<const float> input,
                                      const MRampEnds& ramp, int first, int count) {
    if (band.convolver.Space() == MBlockConvolver::kBlock) band.gain = ramp.from;
    if (ramp.from != band.gain || ramp.to != band.gain) band.gainStands = false;
    if (ramp.from == 1 && ramp.to == 1) return band.convolver.Append(input);

    const double step = (ramp.to - ramp.from) / count;
    std::array<float, 256> scaled;  // NOLINT(cppcoreguidelines-pro-type-member-init): written first
    for (std::size_t done = 0; done < input.size();) {
        const std::size_t portion = std::min(input.size() - done, scaled.size());
        for (std::size_t i = 0; i < portion; ++i) {
            const double gain = ramp.from + (first + static_cast<double>(done + i)) * step;
            scaled[i] = static_cast<float>(static_cast<double>(input[done + i]) * gain);
        }
        band.convolver.Append(std::span(scaled).first(portion));
        done += portion;
    }
}

void MLinearPhaseChannelState::ConvolveAll(const MLinearPhaseDesign& design) {
    // A block that was begun by single bands is not there as a whole.
    const bool isWhole = shared_.Count() == MBlockConvolver::kBlock;
    if (isWhole) {
        shared_.Take(work_->samples.Values().first<MBlockConvolver::kBlock>());
        std::fill(work_->samples.memory.begin() + MBlockConvolver::kBlock,
                  work_->samples.memory.end(), 0.0f);
        MRealFFT::Instance().Forward(work_->samples, work_->sharedSpectrum);
    }
    for (int i = 0; i < bandCount_; ++i) {
        Band& band = bands_[i];
        const bool sharesTransform = isWhole && band.gainStands;
        if (sharesTransform) {
            band.convolver.DropInput();
        } else {
            band.convolver.TransformInput(work_->samples, work_->spectrum);
        }
        band.convolver.Convolve(
            sharesTransform ? work_->sharedSpectrum : work_->spectrum, design.spectrum[i],
            sharesTransform ? static_cast<float>(band.gain) : 1.0f, work_->samples, work_->product);
    }
}
