// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <random>
#include <vector>

/// White noise of full scale, the same for the same seed.
template <class Sample = float>
std::vector<Sample> WhiteNoise(int count, std::mt19937::result_type seed) {
    std::mt19937 generator(seed);
    std::uniform_real_distribution<Sample> uniform(-1, 1);
    std::vector<Sample> samples(static_cast<std::size_t>(count));
    for (Sample& sample : samples) sample = uniform(generator);
    return samples;
}

/// Channels of sound, [channels][samples], with the pointers that the engine wants.
class Channels {
public:
    Channels(int channels, int count) : samples_(channels, std::vector<float>(count, 0.0f)) {
        for (std::vector<float>& channel : samples_) {
            pointers_.push_back(channel.data());
            constants_.push_back(channel.data());
        }
    }
    /// White noise.
    Channels(int channels, int count, unsigned seed, float level = 1.0f)
        : Channels(channels, count) {
        FillWithNoise(seed, level);
    }
    Channels(const Channels&) = delete;
    Channels& operator=(const Channels&) = delete;

    std::vector<float>& operator[](int channel) { return samples_[channel]; }
    const std::vector<float>& operator[](int channel) const { return samples_[channel]; }
    float* const* Pointers() { return pointers_.data(); }
    const float* const* Constants() const { return constants_.data(); }
    int Count() const { return static_cast<int>(samples_.size()); }
    int Length() const { return static_cast<int>(samples_.front().size()); }

    /// The pointers from sample `start` on; valid until the next call.
    float* const* From(int start) {
        for (std::size_t c = 0; c < samples_.size(); ++c) pointers_[c] = samples_[c].data() + start;
        return pointers_.data();
    }

    /// Full-scale white noise from a seed.
    void FillWithNoise(unsigned seed, float level = 1.0f) {
        std::minstd_rand generator(seed);
        std::uniform_real_distribution<float> uniform(-level, level);
        for (std::vector<float>& channel : samples_) {
            for (float& sample : channel) sample = uniform(generator);
        }
    }

private:
    std::vector<std::vector<float>> samples_;
    std::vector<float*> pointers_;
    std::vector<const float*> constants_;
};
