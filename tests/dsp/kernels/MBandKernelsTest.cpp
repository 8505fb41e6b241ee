// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/kernels/MBandKernels.h"
#include "dsp/kernels/MKernelSet.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <vector>

namespace {

std::vector<float> Noise(int count, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> uniform(-5, 5);
    std::vector<float> samples(static_cast<std::size_t>(count));
    for (float& sample : samples) sample = uniform(random);
    if (count > 3) samples[3] = std::numeric_limits<float>::infinity();
    if (count > 9) samples[9] = std::numeric_limits<float>::quiet_NaN();
    return samples;
}

/// Everything that one set of kernels makes of the same `count` samples.
std::vector<std::vector<float>> RunEverything(const MBandKernels& kernels, int count) {
    std::vector<std::vector<float>> results;
    std::vector<float> levels;
    for (const double step : {0.0, 0.013}) {
        const MLinearRamp gain{-0.6, step};
        std::vector<float> left = Noise(count, 1), right(left.size());
        kernels.takeInput(Noise(count, 2).data(), gain, 4, right.data(), count);
        kernels.takeInput(left.data(), {1, 0}, 4, left.data(), count);
        results.push_back(left);
        results.push_back(right);
        kernels.pan(gain, left.data(), right.data(), count);
        std::vector<float> gains(left.size()), others(left.size());
        kernels.tabulate(gain, gains.data(), count);
        kernels.tabulate({0.3, -step}, others.data(), count);
        for (const bool adds : {false, true}) {
            for (const bool hasSecond : {false, true}) {
                for (const bool isMeasured : {false, true}) {
                    const bool moves = step != 0;
                    MBandSum sum{
                        {left.data(), -0.6f, moves ? gains.data() : nullptr}, {}, 0.7f, adds};
                    if (hasSecond)
                        sum.second = {right.data(), 0.3f, moves ? others.data() : nullptr};
                    std::vector<float> destination = results[0];
                    MBlockLevels level;
                    kernels.addBand(sum, destination.data(), isMeasured ? &level : nullptr, count);
                    levels.insert(levels.end(), {level.peak, level.squares});
                    results.push_back(destination);
                }
            }
        }
        results.push_back(left);
        results.push_back(right);
        const MBlockLevels level = kernels.measure(left.data(), count);
        levels.insert(levels.end(), {level.peak, level.squares});
    }
    results.push_back(levels);
    return results;
}

TEST(MBandKernels, EveryInstructionSetGivesTheSameBits) {
    for (int count = 0; count < 70; ++count) {
        const auto wanted = RunEverything(*RunnableKernels().front().bands, count);
        for (const MKernelSet& set : RunnableKernels()) {
            EXPECT_EQ(RunEverything(*set.bands, count), wanted) << set.name << ' ' << count;
        }
    }
}

}  // namespace
