// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MRampEnds.h"
#include "dsp/crossover/MLinearPhaseDesign.h"
#include "dsp/fft/MBlockConvolver.h"

#include <array>
#include <memory>
#include <span>

/// What the sound left behind in the convolutions of one channel.
///
/// Every band comes out exactly MLinearPhaseCrossover::kDelay samples late in portions of any size.
/// Memory is made on the first use of each band. A redesign keeps the queues; bands that a larger
/// count adds start from silence. In each block either Split is called or ProcessBand for every
/// band.
class MLinearPhaseChannelState {
public:
    /// Writes band `band` of `input` into `output`, which may be the same memory; bands in any
    /// order. Allocates on the first use of the band only. [audio]
    void ProcessBand(const MLinearPhaseDesign& design, int band, const float* input, float* output,
                     int count);

    /// Writes all bands of `input` at once, each of its input multiplied by its gain before the
    /// filter. `gains` has one entry per band or none, for a gain of 1. No output may be the input.
    /// Bands whose gain stands still share one transform of the input. Allocates as ProcessBand.
    /// [audio]
    void Split(const MLinearPhaseDesign& design, const float* input,
               std::span<const MRampEnds> gains, std::span<float* const> bands, int count);

    /// Forgets the sound and keeps the memory. [audio]
    void Reset() noexcept { bandCount_ = 0; }

private:
    struct Band {
        MBlockConvolver convolver;
        double gain = 1;         // of the block that is being filled
        bool gainStands = true;  // through the whole of it
    };
    /// What a block needs on its way from input to output.
    struct Work {
        MRealFFT::Buffer samples, product, spectrum, sharedSpectrum;
    };

    void Follow(const MLinearPhaseDesign& design);
    void Append(Band& band, std::span<const float> input, const MRampEnds& ramp, int first,
                int count);
    void ConvolveAll(const MLinearPhaseDesign& design);

    std::array<Band, kMaxCrossoverBands> bands_;
    MSampleQueue shared_;  // the block that is being filled, without gains
    std::unique_ptr<Work> work_;
    int bandCount_ = 0;  // of the design that ran last
};
