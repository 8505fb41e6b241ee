// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

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
