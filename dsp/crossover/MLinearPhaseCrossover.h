// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MTripleBuffer.h"
#include "dsp/crossover/MLinearPhaseChannelState.h"
#include "dsp/crossover/MLinearPhaseDesign.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <span>

/// Splits channels into up to six adjacent bands that leave every phase as it is and come kDelay
/// samples late. The bands sum to the delayed input within the attenuation of the kernels.
///
/// Designs on one thread, runs on another; neither waits for the other. A new design is taken over
/// whole by the next BeginBlock. Nothing is allocated before the first Reserve or Design.
class MLinearPhaseCrossover {
public:
    /// Delay of every band, in samples: one block and half of the longest kernel.
    static constexpr int kDelay = MBlockConvolver::kBlock + MLinearPhaseDesign::kKernelDelay;

    MLinearPhaseCrossover();
    ~MLinearPhaseCrossover();

    /// Designs the bands: `bandCount` 1 .. 6, `frequencies` their limits in hertz in any order,
    /// `sampleRate` in hertz.
    /// `fixedQ` makes the steepness in octaves the same everywhere, as of an analog filter: the
    /// hybrid crossover. Throws MException for what cannot be designed, and the design in use
    /// stays. Allocates on the first call only, unless there was a Reserve. One designing thread at
    /// a time. [main]
    void Design(int bandCount, std::span<const double> frequencies, double sampleRate, bool fixedQ);
    /// Makes the memory that Design needs, once. [main]
    void Reserve();
    /// Makes `design`, which was made elsewhere and is borrowed, the one in use, until the next
    /// Take or until BeginBlock finds a new one. [audio]
    void Take(const MLinearPhaseDesign& design) noexcept { design_ = &design; }

    /// Takes over the newest design; call it once at the start of a block. [audio]
    void BeginBlock() noexcept;

    /// Bands of the design in use; 0 before the first design was taken over. [audio]
    int BandCount() const noexcept { return design_ == nullptr ? 0 : design_->bandCount; }

    /// Writes one band of one channel; see MLinearPhaseChannelState. BandCount() must not be 0.
    /// [audio]
    void ProcessBand(MLinearPhaseChannelState& state, int band, const float* input, float* output,
                     int sampleCount) const {
        state.ProcessBand(*design_, band, input, output, sampleCount);
    }

    /// Writes all bands of one channel at once, for about half the price; see
    /// MLinearPhaseChannelState. BandCount() must not be 0. [audio]
    void Split(MLinearPhaseChannelState& state, const float* input,
               std::span<const MRampEnds> gains, std::span<float* const> bands,
               int sampleCount) const {
        state.Split(*design_, input, gains, bands, sampleCount);
    }

private:
    struct Memory {
        MRealFFT::User transforms;
        MLinearPhaseDesigner designer;
        MTripleBuffer<MLinearPhaseDesign> designs;
    };

    std::once_flag isReserved_;
    std::unique_ptr<Memory> owned_;               // of the designing thread, once reserved
    std::atomic<Memory*> memory_ = nullptr;       // the same, set once there is a design
    const MLinearPhaseDesign* design_ = nullptr;  // of the audio thread
};
