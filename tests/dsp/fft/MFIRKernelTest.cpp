// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/fft/MFIRKernel.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

TEST(MFIRKernel, HybridLengthFollowsTheFrequencyUpToTheFullLength) {
    for (const auto& [frequency, sampleRate, full, length] : {std::tuple(100, 48000, 8193, 6017),
                                                              {1000, 48000, 1025, 601},
                                                              {100, 48000, 1025, 1025},
                                                              {10000, 48000, 1025, 61},
                                                              {23520, 48000, 1025, 25},
                                                              {1, 768000, 1025, 1025}}) {
        EXPECT_EQ(LengthOfConstantSteepness(frequency, sampleRate, full), length) << frequency;
    }
}

}  // namespace
