// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/kernels/MCrossoverKernels.h"
#include "dsp/kernels/MKernelSet.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace {

constexpr int kFrames = 101;  // no multiple of any width

/// What one set of kernels makes of two channels of noise: stages of random filters, each writing
/// over what it hears and into a buffer of its own.
std::vector<double> RunStages(const MCrossoverKernels& kernels, int stageCount, int sectionCount) {
    std::mt19937 random(17);
    std::uniform_real_distribution<double> uniform(-0.5, 0.5);
    std::vector<double> left(kFrames), right(kFrames), frames(2 * kFrames * (stageCount + 1));
    for (double& sample : left) sample = uniform(random);
    for (double& sample : right) sample = uniform(random);
    kernels.interleave(left.data(), right.data(), frames.data(), kFrames);

    std::vector<MBiquadCoefficients> sections(2 * stageCount * sectionCount);
    for (MBiquadCoefficients& section : sections) {
        section = {uniform(random), uniform(random), uniform(random), uniform(random),
                   uniform(random)};
    }
    std::vector<MKernelSectionState> states(sections.size());
    std::vector<MKernelStage> stages;
    for (int n = 0; n < stageCount; ++n) {
        const int a = 2 * n * sectionCount, b = a + sectionCount;
        stages.push_back(
            {{&sections[a], &states[a], frames.data(), frames.data()},
             {&sections[b], &states[b], frames.data(), &frames[2 * kFrames * (n + 1)]}});
    }
    kernels.runStages(stages.data(), stageCount, sectionCount, kFrames);
    kernels.separate(frames.data(), left.data(), right.data(), kFrames);
    frames.insert(frames.end(), left.begin(), left.end());
    frames.insert(frames.end(), right.begin(), right.end());
    return frames;
}

std::vector<float> RunSpectra(const MCrossoverKernels& kernels) {
    std::vector<float> a(64), b(64);
    for (int i = 0; i < 64; ++i) {
        a[i] = 1 / (3 + static_cast<float>(i));
        b[i] = 1 / (7 - 2 * static_cast<float>(i));
    }
    kernels.multiplySpectra(a.data(), b.data(), 0.7f, a.data(), 64);
    kernels.add(a.data(), b.data(), b.data(), 64);
    return b;
}

/// On the way from floats to frames and back, with what is not finite or too large.
std::vector<float> RunConversions(const MCrossoverKernels& kernels) {
    const float in[] = {0.5f, NAN, -HUGE_VALF, 1e9f, -1e9f, -3, 7};
    constexpr int kCount = 7;
    std::vector<double> frames(2 * kCount);
    std::vector<float> left(kCount), right(kCount);
    kernels.interleaveClean(in, in, 100, frames.data(), kCount);
    kernels.separateScaled(frames.data(), {-2, 0.01}, left.data(), right.data(), kCount);
    EXPECT_EQ(left, right);
    kernels.separateScaled(frames.data(), {-2, 0}, right.data(), right.data(), kCount);
    EXPECT_EQ(right, (std::vector<float>{-1, 0, 0, -200, 200, 6, -14}));
    return left;
}

TEST(MCrossoverKernels, EveryInstructionSetGivesTheSameBits) {
    const MCrossoverKernels& plainest = *RunnableKernels().front().crossover;
    for (const MKernelSet& set : RunnableKernels()) {
        EXPECT_EQ(RunSpectra(*set.crossover), RunSpectra(plainest)) << set.name;
        EXPECT_EQ(RunConversions(*set.crossover), RunConversions(plainest)) << set.name;
        for (int stages = 1; stages <= 6; ++stages) {
            for (int sections = 1; sections <= 10; ++sections) {
                EXPECT_EQ(RunStages(*set.crossover, stages, sections),
                          RunStages(plainest, stages, sections))
                    << set.name;
            }
        }
    }
}

}  // namespace
