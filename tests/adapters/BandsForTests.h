// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "adapters/multiband/MBandProcessor.h"
#include "tests/support/Sound.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <stdexcept>

inline constexpr std::array kLimits = {100.0, 300.0, 1000.0, 3000.0, 8000.0};
using Slope = MAnalogCrossover::Slope;

/// An effect with a memory: every band halves its input and adds what it was given before.
class TestEffects final : public MBandEffects {
public:
    explicit TestEffects(int channels) : channels_(channels) {}

    Sound Run(int band, Sound sound) {
        std::array<float*, MBandProcessor::kMaxChannels> samples{};
        for (std::size_t c = 0; c < sound.size(); ++c) samples[c] = sound[c].data();
        ProcessBand(band, samples.data(), samples.data(), static_cast<int>(sound[0].size()));
        return sound;
    }
    void ProcessBand(int band, const float* const* inputs, float* const* outputs,
                     int count) override {
        ++runs[band];
        if (band == failingBand) throw std::runtime_error("failed");
        for (int c = 0; c < channels_; ++c) {
            for (int i = 0; i < count; ++i) {
                const float input = inputs[c][i];
                outputs[c][i] = 0.5f * input + memory_[band][c];
                memory_[band][c] = (0.1f + 0.1f * static_cast<float>(band)) * input;
            }
        }
    }

    std::array<int, kMaxCrossoverBands> runs{};
    int failingBand = -1;

private:
    int channels_;
    float memory_[kMaxCrossoverBands][MBandProcessor::kMaxChannels] = {};
};

/// The largest difference; infinite where one of them is not finite.
inline double Difference(const Sound& a, const Sound& b) {
    double largest = 0;
    for (std::size_t c = 0; c < a.size(); ++c) {
        for (std::size_t i = 0; i < a[c].size(); ++i) {
            const double difference = static_cast<double>(std::abs(a[c][i] - b[c][i]));
            largest = std::max(largest, std::isfinite(difference) ? difference : HUGE_VAL);
        }
    }
    return largest;
}

inline double Peak(const Sound& sound) {
    return Difference(
        sound, Constant(static_cast<int>(sound.size()), static_cast<int>(sound[0].size()), 0));
}

/// A prepared processor, with both crossovers designed when it is told how many bands it has.
struct Bands {
    Bands() : effects(2) { processor.Prepare(2); }
    explicit Bands(int bandCount, int channels = 2, Slope slope = Slope::Slope24)
        : effects(channels) {
        block.bandCount = bandCount;
        processor.Analog().Design(bandCount, kLimits, 48000, slope);
        processor.LinearPhase().Design(bandCount, kLimits, 48000, false);
        processor.Prepare(channels);
    }
    Sound Run(Sound sound) {
        Run(sound, 0, static_cast<int>(sound[0].size()));
        return sound;
    }
    /// Samples `first` .. `first` + `count` - 1 in place.
    void Run(Sound& sound, int first, int count) {
        std::array<float*, MBandProcessor::kMaxChannels> channels{};
        for (std::size_t c = 0; c < sound.size(); ++c) channels[c] = sound[c].data() + first;
        processor.TakeDesigns();
        processor.Process(block, effects, channels.data(), channels.data(), count);
    }

    MBandProcessor processor;
    MBandBlock block;
    TestEffects effects;
};

/// Settings anywhere, the usual values and edges more often than chance.
class RandomBlocks {
public:
    explicit RandomBlocks(unsigned seed) : random_(seed) {}

    int Integer(int from, int to) { return std::uniform_int_distribution(from, to)(random_); }

    void Move(MBandBlock& block) {
        block.Arrive();
        block.wetAffectsGain = Integer(0, 1) == 1;
        block.wetAffectsPanorama = Integer(0, 1) == 1;
        Move(block.inputGain, {1, 0.3, 2});
        Move(block.outputGain, {1, 0.5, 1.5});
        Move(block.wet, {1, 0, 0.7});
        Move(block.dry, {1, 0, 0.4});
        for (MBandSettings& band : block.bands) {
            Move(band.gain, {1, 0.25, 1.8});
            Move(band.panorama, {0, -1, 0.6});
            band.isBypassed = Integer(0, 4) == 0;
            band.isMuted = Integer(0, 4) == 0;
        }
    }

private:
    void Move(MRampEnds& ends, const std::array<double, 3>& values) {
        if (Integer(0, 2) == 0) ends.to = values[Integer(0, 2)];
    }

    std::mt19937 random_;
};
