// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/kernels/MCrossoverKernels.h"
#include "dsp/kernels/MKernelSet.h"

#include <gtest/gtest.h>

#include <limits>
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

    std::vector<MKernelSection> sections(2 * stageCount * sectionCount);
    for (MKernelSection& section : sections) {
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

TEST(MCrossoverKernels, EveryInstructionSetGivesTheSameBits) {
    const MCrossoverKernels& plainest = *RunnableKernels().front().crossover;
    for (const MKernelSet& set : RunnableKernels()) {
        EXPECT_EQ(RunSpectra(*set.crossover), RunSpectra(plainest)) << set.name;
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

TEST(MCrossoverKernels, KeepWhatIsFiniteAndNotTooLargeOnTheWayFromFloatsToFramesAndBack) {
    constexpr float kCeiling = 100;
    const float in[] = {0.5f,
                        std::numeric_limits<float>::quiet_NaN(),
                        -std::numeric_limits<float>::infinity(),
                        1e9f,
                        -1e9f,
                        -3,
                        7};
    const float clean[] = {0.5f, 0, 0, kCeiling, -kCeiling, -3, 7};
    constexpr int kCount = 7;
    std::vector<std::vector<double>> frames;
    for (const MKernelSet& set : RunnableKernels()) {
        const MCrossoverKernels& kernels = *set.crossover;
        frames.emplace_back(2 * kCount);
        kernels.interleaveClean(in, in, kCeiling, frames.back().data(), kCount);
        for (const double step : {0.0, 0.01}) {
            float left[kCount], right[kCount];
            kernels.separateScaled(frames.back().data(), {-2, step}, left, right, kCount);
            for (int i = 0; i < kCount; ++i) {
                EXPECT_FLOAT_EQ(left[i], clean[i] * static_cast<float>(i * step - 2)) << set.name;
                EXPECT_EQ(left[i], right[i]) << set.name;
            }
        }
    }
    for (const std::vector<double>& other : frames) EXPECT_EQ(other, frames.front());
}
