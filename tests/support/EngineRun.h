// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "effects/delay/MDelayEngine.h"
#include "tests/support/DelaySettingsMaker.h"

#include <algorithm>
#include <random>
#include <vector>

/// [channels][samples].
using Sound = std::vector<std::vector<float>>;

inline Sound Constant(int channels, int length, float value) {
    return Sound(static_cast<std::size_t>(channels),
                 std::vector<float>(static_cast<std::size_t>(length), value));
}

/// Impulses at sample 0, one amplitude per channel, and silence after them.
inline Sound Impulse(const std::vector<float>& amplitudes, int length) {
    Sound sound = Constant(static_cast<int>(amplitudes.size()), length, 0);
    for (std::size_t c = 0; c < amplitudes.size(); ++c) sound[c][0] = amplitudes[c];
    return sound;
}

/// White noise, the same for the same seed.
inline Sound Noise(int channels, int length, float level = 1, unsigned seed = 1) {
    Sound sound = Constant(channels, length, 0);
    std::minstd_rand generator(seed);
    std::uniform_real_distribution<float> uniform(-level, level);
    for (auto& channel : sound) {
        for (float& sample : channel) sample = uniform(generator);
    }
    return sound;
}

/// A setting that does not move.
inline MBlockRamp Held(double value) { return {value, value}; }

/// A prepared engine; its settings may be changed between runs.
class EngineRun {
public:
    EngineRun(int channels, int sampleRate, const MDelaySettings& initial = DefaultDelaySettings())
        : settings(initial) {
        engine.Prepare(channels, sampleRate);
        engine.Update(settings);
    }

    /// Sends `input` through in blocks of `block`. Ramps happen in the first one.
    Sound Run(const Sound& input) {
        const int length = static_cast<int>(input.front().size());
        // What the outputs hold before must not matter.
        Sound output = Constant(static_cast<int>(input.size()), length, 9);
        for (int start = 0; start < length; start += block) {
            std::vector<const float*> inputs;
            std::vector<float*> outputs;
            for (const std::vector<float>& channel : input)
                inputs.push_back(channel.data() + start);
            for (std::vector<float>& channel : output) outputs.push_back(channel.data() + start);
            engine.Process(settings, tempo, inputs.data(), outputs.data(),
                           std::min(block, length - start));
            settings = Arrived(settings);
        }
        return output;
    }
    /// The same after an update.
    Sound UpdateAndRun(const Sound& input) {
        engine.Update(settings);
        return Run(input);
    }

    MDelaySettings settings;
    double tempo = 120;
    int block = 256;
    MDelayEngine engine;
};
