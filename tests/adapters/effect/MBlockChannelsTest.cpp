// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MBlockChannels.h"
#include "tests/support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <random>

TEST(MBlockChannels, SeparatesWhateverOverlapsWithoutMemoryOnceItIsReserved) {
    constexpr int kCount = 50, kMemory = 5 * kCount;
    std::array<float, kMemory> memory{};
    std::iota(memory.begin(), memory.end(), 1.0f);
    std::minstd_rand generator(1);
    for (int round = 0; round < 20000; ++round) {
        const int channels = round % MBusLayout::kMaxChannels + 1;
        std::array<float*, MBusLayout::kMaxChannels> inputs{}, outputs{};
        for (float*& pointer : inputs) pointer = &memory[generator() % (kMemory - kCount)];
        for (float*& pointer : outputs) pointer = &memory[generator() % (kMemory - kCount)];
        for (auto* pointers : {&inputs, &outputs}) {
            if (generator() % 2 == 0) (*pointers)[generator() % channels] = nullptr;
            if (generator() % 8 == 0) std::fill_n(pointers->begin(), channels - 1, nullptr);
        }
        MBlockChannels block;
        block.Reserve(channels, kCount);
        const AllocationCounter allocations;
        block.Take({channels, channels}, inputs.data(), outputs.data(), kCount);
        block.SeparateInputs(channels, kCount);
        ASSERT_EQ(allocations.Count(), 0);
        for (int c = 0; c < channels; ++c) {
            const float* const input = block.Inputs()[c];
            const float first = inputs[c] == nullptr ? 0.0f : *inputs[c];
            ASSERT_EQ(input[0], first);
            for (int d = 0; d < channels; ++d) {
                const auto distance = std::abs(input - block.Outputs()[d]);
                ASSERT_TRUE(distance == 0 || distance >= kCount) << c << " " << d;
            }
        }
    }
}
