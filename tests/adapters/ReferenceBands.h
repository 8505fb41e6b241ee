// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/multiband/MBandBlock.h"
#include "dsp/crossover/MAnalogCrossover.h"
#include "dsp/crossover/MLinearPhaseCrossover.h"
#include "tests/adapters/BandsForTests.h"

#include <cmath>
#include <cstddef>
#include <vector>

/// The band loop written down the plain way: band after band, channel after channel, sample after
/// sample, in doubles, with the crossovers that split one band at a time.
class ReferenceBands {
public:
    explicit ReferenceBands(int channels) : analogStates_(channels), linearStates_(channels) {}

    MAnalogCrossover analog;
    MLinearPhaseCrossover linearPhase;

    Sound Process(const MBandBlock& block, TestEffects& effects, const Sound& given) {
        analog.BeginBlock();
        linearPhase.BeginBlock();
        const int count = static_cast<int>(given[0].size());
        Sound input = given;
        for (auto& channel : input) {
            for (float& sample : channel) sample = std::isfinite(sample) ? sample : 0.0f;
        }
        std::vector<std::vector<double>> sum(input.size(), std::vector<double>(count, 0.0));
        for (int band = 0; band < block.bandCount; ++band) {
            const MBandSettings& settings = block.bands[band];
            Sound bandInput = Split(block, band, input);
            if (input.size() == 2) Pan(block, settings, bandInput);
            const Sound bandOutput = effects.Run(band, bandInput);
            if (settings.isMuted) continue;
            for (std::size_t c = 0; c < input.size(); ++c) {
                for (int i = 0; i < count; ++i) {
                    const double in = Wide(bandInput[c][i]), out = Wide(bandOutput[c][i]);
                    const double wet = At(block.wet.from, block.wet.to, i, count);
                    const double dry = At(block.dry.from, block.dry.to, i, count);
                    sum[c][i] += settings.isBypassed ? in : dry * in + wet * out;
                }
            }
        }
        Sound output = input;
        for (std::size_t c = 0; c < input.size(); ++c) {
            for (int i = 0; i < count; ++i) {
                output[c][i] = static_cast<float>(sum[c][i] * block.outputGain.from);
            }
        }
        return output;
    }

private:
    static double Wide(float sample) { return static_cast<double>(sample); }

    static double At(double from, double to, int i, int count) {
        return from + i * ((to - from) / count);
    }

    /// What a band's input is multiplied by at the `end` of a block.
    static double Gain(const MBandBlock& block, int band, double MRampEnds::*end) {
        const double gain = block.bands[band].gain.*end, wet = block.wet.*end;
        return block.inputGain.*end * (block.wetAffectsGain ? wet * gain + (1 - wet) : gain);
    }

    Sound Split(const MBandBlock& block, int band, const Sound& input) {
        const double start = Gain(block, band, &MRampEnds::from);
        const double end = Gain(block, band, &MRampEnds::to);
        const bool splits = block.bandCount > 1 && block.splitOverride < 0;
        const int count = static_cast<int>(input[0].size());
        Sound result = input;
        for (std::size_t c = 0; c < input.size(); ++c) {
            std::vector<double> scratch(input[c].begin(), input[c].end());
            if (splits && !block.isLinearPhase) {
                analog.ProcessBand(analogStates_[c], band, scratch.data(), scratch.data(), count);
            }
            float* const samples = result[c].data();
            for (int i = 0; i < count; ++i) {
                samples[i] = static_cast<float>(scratch[i] * At(start, end, i, count));
            }
            if (splits && block.isLinearPhase) {
                linearPhase.ProcessBand(linearStates_[c], band, samples, samples, count);
            }
        }
        return result;
    }

    static void Pan(const MBandBlock& block, const MBandSettings& band, Sound& sound) {
        const int count = static_cast<int>(sound[0].size());
        const double share = block.wetAffectsPanorama ? block.wet.from : 1;
        for (int i = 0; i < count; ++i) {
            const double p = At(share * band.panorama.from, share * band.panorama.to, i, count);
            const double left = Wide(sound[0][i]), right = Wide(sound[1][i]);
            if (p >= 0) {
                sound[0][i] = static_cast<float>((1 - p) * left);
                sound[1][i] = static_cast<float>(right + p * left);
            } else {
                sound[0][i] = static_cast<float>(left + -p * right);
                sound[1][i] = static_cast<float>((1 + p) * right);
            }
        }
    }

    std::vector<MAnalogChannelState> analogStates_;
    std::vector<MLinearPhaseChannelState> linearStates_;
};
