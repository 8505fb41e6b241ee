// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/multiband/MBandBlock.h"
#include "adapters/multiband/MBandEffects.h"
#include "dsp/MAnalogCrossover.h"
#include "dsp/MLinearPhaseCrossover.h"
#include "tests/adapters/BandsForTests.h"

#include <array>
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

    Sound Process(const MBandBlock& block, MBandEffects& effects, const Sound& given) {
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
            const Sound bandOutput = RunEffect(effects, band, bandInput);
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

    static double Start(const MBandBlock& block, const MBandSettings& band) {
        if (!block.wetAffectsGain) return block.inputGain.from * band.gain.from;
        return (block.wet.from * band.gain.from + (1 - block.wet.from)) * block.inputGain.from;
    }

    static double End(const MBandBlock& block, const MBandSettings& band) {
        if (!block.wetAffectsGain) return block.inputGain.to * band.gain.to;
        return (block.wet.to * band.gain.to + (1 - block.wet.to)) * block.inputGain.to;
    }

    static void Multiply(const MBandBlock& block, int band, const std::vector<double>& from,
                         std::vector<float>& to) {
        const int count = static_cast<int>(from.size());
        const double start = Start(block, block.bands[band]), end = End(block, block.bands[band]);
        for (int i = 0; i < count; ++i) {
            to[i] = static_cast<float>(from[i] * At(start, end, i, count));
        }
    }

    Sound Split(const MBandBlock& block, int band, const Sound& input) {
        Sound result = input;
        for (std::size_t c = 0; c < input.size(); ++c) {
            const int count = static_cast<int>(input[c].size());
            std::vector<double> scratch(input[c].begin(), input[c].end());
            const bool splits = block.bandCount > 1 && block.splitOverride < 0;
            if (splits && !block.isLinearPhase) {
                analog.ProcessBand(analogStates_[c], band, scratch.data(), scratch.data(), count);
            }
            Multiply(block, band, scratch, result[c]);
            if (splits && block.isLinearPhase) {
                linearPhase.ProcessBand(linearStates_[c], band, result[c].data(), result[c].data(),
                                        count);
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

    static Sound RunEffect(MBandEffects& effects, int band, const Sound& input) {
        Sound output = input;
        std::array<const float*, 8> inputs{};
        std::array<float*, 8> outputs{};
        for (std::size_t c = 0; c < input.size(); ++c) {
            inputs[c] = input[c].data();
            outputs[c] = output[c].data();
        }
        effects.ProcessBand(band, inputs.data(), outputs.data(), static_cast<int>(input[0].size()));
        return output;
    }

    std::vector<MAnalogChannelState> analogStates_;
    std::vector<MLinearPhaseChannelState> linearStates_;
};
