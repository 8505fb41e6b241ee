// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/multiband/MBandBlock.h"
#include "adapters/multiband/MBandEffects.h"
#include "dsp/MGrowingBuffer.h"
#include "dsp/crossover/MAnalogCrossover.h"
#include "dsp/crossover/MLinearPhaseCrossover.h"
#include "dsp/kernels/MKernelSet.h"

#include <array>
#include <vector>

/// The band loop as numbers: input gain, split, band gains and panoramas, one effect per band, wet
/// and dry, bypass and mute, sum, output gain. It knows neither parameters nor a host.
///
/// One thread designs the crossovers while another processes; neither waits for the other. Sound in
/// the crossovers is always finite, whatever comes in. An exception of an effect passes through and
/// ends the block; the next block is an ordinary one.
class MBandProcessor {
public:
    static constexpr int kMaxChannels = 8;

    /// Starts from silence for 1 to 8 `channels`. Keeps the designs. [setup]
    void Prepare(int channels);

    /// Prepared channels; 0 before the first Prepare. [audio]
    int Channels() const noexcept { return channels_; }

    /// The crossovers, to be designed by one thread at a time. A design is in use from the next
    /// TakeDesigns on. [main]
    MAnalogCrossover& Analog() noexcept { return analog_; }
    MLinearPhaseCrossover& LinearPhase() noexcept { return linearPhase_; }

    /// Takes over the newest designs; before a block, or never in the course of one. [audio]
    void TakeDesigns() noexcept;

    /// Makes the memory that Process would make on its first block of `count` frames with the
    /// crossover of `block` and any number of bands. Starts from silence. [setup]
    void Reserve(const MBandBlock& block, int count);

    /// One block of the prepared channels; `inputs` and `outputs` are [channels][count] and may
    /// overlap or be the same. With two or more bands the crossover's design says how many there
    /// are, should `block` say something else: a change of the count takes effect together with its
    /// design. Does nothing before the first Prepare.
    ///
    /// The output gain is deliberately not ramped: its start is heard through the whole block, a
    /// change as a step at the start of the next one.
    ///
    /// Allocates when `count` exceeds every block so far and what was reserved, or the
    /// linear-phase crossover splits for the first time. [audio]
    void Process(const MBandBlock& block, MBandEffects& effects, const float* const* inputs,
                 float* const* outputs, int count);

    /// Gives one channel of a signal that takes no part in Process the phase of the bands' sum, in
    /// place: the all-passes of the analog crossover. Leaves it alone with one band, a split
    /// override or the linear-phase crossover. `channel` counts from 0. [audio]
    void ProcessBypassed(const MBandBlock& block, float* samples, int count, int channel) noexcept;

    /// Forgets what ProcessBypassed has heard, for when it starts after a pause. [audio]
    void ResetBypassed() noexcept;

private:
    enum class Splitter { None, Analog, LinearPhase };
    using Pointers = std::array<float*, kMaxChannels>;

    /// Wet and dry of one block, without the places in memory that change from band to band.
    struct Mix {
        MBandSum Sum(bool isBypassed, const float* output, const float* input) const noexcept;

        float wet = 1, dry = 1;
        const float* wets = nullptr;  // a gain per sample, while either moves
        const float* dries = nullptr;
        bool hasOutput = true, hasInput = true;
    };

    /// What one block needs on its way.
    struct Work {
        const MBandBlock& block;
        Splitter splitter = Splitter::None;
        int bandCount = 1;
        int count = 0;  // frames
        std::array<MRampEnds, kMaxCrossoverBands> gains{};
        std::array<Pointers, kMaxCrossoverBands> inputs{};
        Pointers outputs{};  // of the band whose effect runs
        Mix mix;
    };

    Splitter PickSplitter(const MBandBlock& block) const noexcept;
    int BandCount(const MBandBlock& block, Splitter splitter) const noexcept;
    Pointers Memory(MGrowingBuffer<float>& buffer, int count) const;
    void Start(Splitter splitter) noexcept;
    void Split(const Work& work, const float* const* inputs);
    void SplitAnalog(const Work& work, const float* const* inputs);
    void SplitLinearPhase(const Work& work, const float* const* inputs);
    void CopyToBands(const Work& work, const float* const* inputs);
    void Pan(const Work& work, int band) const;
    Mix MakeMix(const MBandBlock& block, int count);
    void AddBand(const Work& work, int band, bool adds, float* const* outputs) const;

    const MBandKernels& kernels_ = *Kernels().bands;
    int channels_ = 0;
    Splitter running_ = Splitter::None;  // in the block before
    MAnalogCrossover analog_;
    MLinearPhaseCrossover linearPhase_;
    std::vector<MAnalogPairState> pairs_;                 // channels 0 and 1, 2 and 3, ...
    std::vector<MAnalogPairState> bypassed_;              // a channel each, for the all-passes
    std::vector<MLinearPhaseChannelState> linearStates_;  // a channel each
    std::array<MGrowingBuffer<float>, kMaxCrossoverBands> bandInputs_;
    MGrowingBuffer<float> bandOutput_;
    MGrowingBuffer<float> mixGains_;  // of the wet and the dry sound, where they move
    MGrowingBuffer<float> cleaned_;   // one channel on its way to the linear-phase crossover
};
