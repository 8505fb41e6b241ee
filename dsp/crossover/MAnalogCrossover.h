// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "dsp/MTripleBuffer.h"
#include "dsp/crossover/MAnalogChannelState.h"
#include "dsp/crossover/MAnalogCrossoverDesign.h"
#include "dsp/crossover/MAnalogPairState.h"

#include <span>

/// Splits channels into up to six adjacent bands without latency. The bands sum to the input passed
/// through one all-pass per point: flat in magnitude, at 12 dB/oct with more than two bands nearly
/// so.
///
/// Designs on one thread, runs on another; neither waits for the other. A new design is taken over
/// whole by the next BeginBlock.
class MAnalogCrossover {
public:
    using Slope = MAudioFilters::CrossoverGeneralizedType;

    /// Designs the bands: `bandCount` 1 .. 6, `frequencies` their limits in hertz in any order,
    /// `sampleRate` in hertz.
    /// Throws MException for what cannot be designed, and the design in use stays. Never allocates.
    /// One designing thread at a time. [main]
    void Design(int bandCount, std::span<const double> frequencies, double sampleRate, Slope slope);
    /// Makes `design`, which was made elsewhere, the newest one, in the place of Design. [audio]
    void Take(const MAnalogCrossoverDesign& design) noexcept;

    /// Takes over the newest design; call it once at the start of a block. [audio]
    void BeginBlock() noexcept { designs_.Adopt(); }

    /// Bands of the design in use. [audio]
    int BandCount() const noexcept { return designs_.Front().BandCount(); }

    /// Writes all bands of two channels at once; see MAnalogPairState. [audio]
    void Split(MAnalogPairState& state, const double* left, const double* right,
               std::span<const MChannelPair> bands, int frames) const noexcept {
        state.Split(designs_.Front(), left, right, bands, frames);
    }

    /// The same from and to floats, with gains; see MAnalogPairState. [audio]
    void Split(MAnalogPairState& state, const float* left, const float* right, float ceiling,
               std::span<const MRampEnds> gains, std::span<const MFloatPair> bands,
               int frames) const noexcept {
        state.Split(designs_.Front(), left, right, ceiling, gains, bands, frames);
    }

    /// Gives two channels the phase of the bands' sum, in place; see MAnalogPairState. [audio]
    void RunAllPasses(MAnalogPairState& state, MChannelPair channels, int frames) const noexcept {
        state.RunAllPasses(designs_.Front(), channels, frames);
    }

    /// Writes one band of one channel; bands in ascending order, see MAnalogChannelState. The plain
    /// form of Split, several times slower. [audio]
    void ProcessBand(MAnalogChannelState& state, int band, const double* input, double* output,
                     int sampleCount) const {
        state.ProcessBand(designs_.Front(), band, input, output, sampleCount);
    }

private:
    MTripleBuffer<MAnalogCrossoverDesign> designs_;
};
