// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MBlockChannels.h"
#include "tests/support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <random>
#include <vector>

TEST(MBlockChannels, SeparatesWhateverOverlapsWithoutMemoryOnceItIsReserved) {
    constexpr int kCount = 50;
    std::vector<float> memory(300);
    for (std::size_t i = 0; i < memory.size(); ++i) memory[i] = static_cast<float>(i);
    std::minstd_rand generator(1);
    for (int round = 0; round < 20000; ++round) {
        const int channels = round % MBusLayout::kMaxChannels + 1;
        std::array<float*, MBusLayout::kMaxChannels> inputs{}, outputs{};
        for (auto* pointers : {&inputs, &outputs}) {
            const auto present = generator() % 5;  // in four
            for (float*& each : *pointers) {
                if (generator() % 4 < present) each = &memory[generator() % 250];
            }
        }
        MBlockChannels block;
        block.Reserve(channels, kCount);
        const AllocationCounter allocations;
        block.Take({channels, channels}, inputs.data(), outputs.data(), kCount);
        block.SeparateInputs(channels, kCount);
        ASSERT_EQ(allocations.Count(), 0);
        for (int i = 0; i < channels * channels; ++i) {
            const float* const input = block.Inputs()[i / channels];
            ASSERT_EQ(*input, inputs[i / channels] == nullptr ? 0.0f : *inputs[i / channels]);
            const auto distance = std::abs(input - block.Outputs()[i % channels]);
            ASSERT_TRUE(distance == 0 || distance >= kCount);
        }
    }
}
