// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MText.h"
#include "plugin/MPluginState.h"
#include "product/MProductFactory.h"
#include "tests/support/RunPlugin.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace {

constexpr int kRate = 48000;
constexpr int kLength = 1 << 14;
constexpr int kPart = kLength / 32;

std::vector<std::uint8_t> ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Renders a burst of noise by the state, loaded before or after InitProcessing.
void Render(std::span<const std::uint8_t> state, bool loadsLate, Channels& output) {
    const auto plugin = MProductFactory::Create();
    plugin->SetSampleRate(kRate);
    if (loadsLate) plugin->InitProcessing();
    MPluginState::Load(*plugin, state);
    if (!loadsLate) plugin->InitProcessing();
    Channels input(2, kLength, 1, 0.25f);
    for (int c = 0; c < 2; ++c) std::fill(input[c].begin() + kLength / 2, input[c].end(), 0.0f);
    RunPlugin(*plugin, input, output, 256);
}

/// 64 numbers that sum a sound up: the level of each part and a sample of each.
std::vector<double> Fingerprint(const Channels& sound) {
    std::vector<double> numbers;
    for (int part = 0; part < kLength / kPart; ++part) {
        const std::vector<float>& channel = sound[part % 2];
        double sum = 0;
        for (int i = 0; i < kPart; ++i) sum += std::pow(channel[part * kPart + i], 2);
        numbers.push_back(std::sqrt(sum / kPart));
        numbers.push_back(static_cast<double>(channel[part * kPart + 77]));
    }
    return numbers;
}

// With KESTRUNE_WRITE_GOLDEN set in the environment, the fingerprints are written anew.
TEST(GoldenStates, SoundAsTheyAlwaysDid) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(KESTRUNE_GOLDEN)) {
        if (entry.path().extension() == ".fingerprint") continue;
        SCOPED_TRACE(entry.path().filename().string());
        ++count;
        const std::vector<std::uint8_t> state = ReadFile(entry.path());
        Channels output(2, kLength), late(2, kLength);
        Render(state, false, output);
        Render(state, true, late);
        EXPECT_EQ(output[0], late[0]) << "settled from the first block on";
        EXPECT_EQ(output[1], late[1]);

        const std::filesystem::path path = entry.path().string() + ".fingerprint";
        if (std::getenv("KESTRUNE_WRITE_GOLDEN") != nullptr) {
            std::ofstream file(path);
            for (const double number : Fingerprint(output))
                file << MText::WriteNumber(number) << "\n";
        }
        std::ifstream file(path);
        double expected = 0;
        for (const double number : Fingerprint(output)) {
            ASSERT_TRUE(file >> expected);
            EXPECT_NEAR(number, expected, 1e-6);  // -120 dB
        }
    }
    EXPECT_GE(count, 5);
}

}  // namespace
