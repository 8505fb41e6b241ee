// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MPluginProcessor.h"
#include "tools/render/MSettingReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <numbers>

namespace {

constexpr int kRate = 48000;
constexpr int kBlock = 256;

/// A plug-in with bands and settings, fed block by block with one signal on both channels.
class Player {
public:
    explicit Player(const MBandSetup& setup, std::initializer_list<const char*> settings = {})
        : plugin_(setup) {
        const MParameterList list(plugin_);
        for (const char* setting : settings) {
            for (const MRenderWrite& write : MSettingReader(list).Read(setting)) {
                plugin_.SetParameter(write.parameter, write.value);
            }
        }
        plugin_.Prepare(2, kRate);
    }

    /// The left output.
    std::vector<float> Run(const std::vector<float>& input) {
        std::vector<float> left(input.size()), right(input.size());
        MTransport transport;
        transport.isValid = transport.isPlaying = true;
        for (std::size_t at = 0; at < input.size(); at += kBlock) {
            const float* inputs[] = {input.data() + at, input.data() + at};
            float* outputs[] = {left.data() + at, right.data() + at};
            const auto frames = std::min<std::size_t>(kBlock, input.size() - at);
            plugin_.Process(transport, inputs, outputs, static_cast<int>(frames));
        }
        return left;
    }

    MPluginProcessor& Plugin() { return plugin_; }

private:
    MPluginProcessor plugin_;
};

std::vector<float> Sine(double hertz, int frames) {
    std::vector<float> samples;
    for (int i = 0; i < frames; ++i) {
        samples.push_back(
            static_cast<float>(0.5 * std::sin(2 * std::numbers::pi * hertz * i / kRate)));
    }
    return samples;
}

/// The gain in decibels that the plug-in's dry signal has at `hertz`.
double DryGain(const MBandSetup& setup, double hertz, std::initializer_list<const char*> settings) {
    Player player(setup, settings);
    const std::vector<float> output = player.Run(Sine(hertz, kRate));
    double power = 0;  // of whole periods
    for (std::size_t i = output.size() / 2; i < output.size(); ++i) {
        power += static_cast<double>(output[i]) * static_cast<double>(output[i]);
    }
    return 10 * std::log10(power / (0.125 * kRate / 2) + 1e-18);
}

TEST(MPluginProcessor, SplitsWhereAndAsSteeplyAsTheSetupSays) {
    const auto dry = {"Wet=0%"};
    MBandSetup low = {.count = 2, .limits = {1000}, .muted = {2}};
    EXPECT_NEAR(DryGain(low, 100, dry), 0, 0.1);
    EXPECT_NEAR(DryGain(low, 4000, dry), -48, 3) << "two octaves at 24 dB";
    low.slope = MAudioFilters::CrossoverGeneralizedType::Slope48;
    EXPECT_LT(DryGain(low, 4000, dry), -90);
    EXPECT_LT(DryGain({.count = 2, .limits = {1000}, .muted = {1}}, 100, dry), -70);
    EXPECT_NEAR(DryGain({.count = 2, .muted = {2}}, 1000, dry), -6, 0.1) << "the default limit";
    // Without taps the dry signal alone is heard; band gains follow the wet, which stays up.
    const auto quiet = {"Tap 1=off", "Band gain 2=-12 dB"};
    EXPECT_NEAR(DryGain({.count = 2, .limits = {1000}}, 10000, quiet), -12, 0.1);
}

TEST(MPluginProcessor, BypassesTheDelayOfABandAndNoOther) {
    std::vector<float> impulse(kRate / 2);
    impulse[0] = 1;
    Player player({.count = 2, .bypassed = {1}},
                  {"Dry=0%", "Band 1 Delay=50 ms", "Band 2 Delay=100 ms", "Feedback=silence"});
    const std::vector<float> output = player.Run(impulse);
    const auto peak = [&](int fromMs, int toMs) {
        const auto [least, most] =
            std::minmax_element(output.begin() + fromMs * 48, output.begin() + toMs * 48);
        return std::max(-*least, *most);
    };
    EXPECT_GT(peak(0, 20), 0.01) << "band 1 passes through";
    EXPECT_LT(peak(45, 95), 1e-5) << "and has no echo";
    EXPECT_GT(peak(95, 120), 0.5) << "band 2 has one";
}

TEST(MPluginProcessor, IsSilentOnlyOnceEveryBandIs) {
    Player player({.count = 3}, {"Feedback=silence", "Band 3 Delay=500 ms"});
    std::vector<float> burst(480, 0.5f);
    player.Run(burst);
    player.Run(std::vector<float>(static_cast<std::size_t>(kRate * 0.3)));
    EXPECT_FALSE(player.Plugin().IsTailSilent()) << "band 3 sounds on at 500 ms";
    player.Run(std::vector<float>(static_cast<std::size_t>(kRate * 0.5)));
    EXPECT_TRUE(player.Plugin().IsTailSilent());
}

}  // namespace
