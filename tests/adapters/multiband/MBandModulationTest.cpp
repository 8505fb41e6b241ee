// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MAudioEffectPluginToAudioPluginMultiBandAdapter.h"
#include "core/MFormat.h"
#include "tests/support/ProbeEffect.h"
#include "tests/support/RunPlugin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numbers>
#include <span>
#include <tuple>
#include <vector>

namespace {

using MultiBand = MAudioEffectPluginToAudioPluginMultiBandAdapter;
using Kind = MBandRandomiser::Kind;

std::unique_ptr<MultiBand> Make(int bands) {
    auto plugin = std::make_unique<MultiBand>(
        MEffectAdapterParts{{}, ProbeEffect::Reset(), {}, nullptr, nullptr});
    plugin->Initialize();
    plugin->CreateDefaultBands(bands);
    plugin->SetSampleRate(48000);
    plugin->InitProcessing();
    return plugin;
}

/// What the modulators are dealt, a line each: parameter, inversion, and the ends of its way.
std::string Dealt(Kind kind, int bands, std::uint32_t seed) {
    const auto plugin = Make(bands);
    MModulationSettings settings = plugin->Modulation().Settings();
    for (auto& modulator : settings.modulators) {
        modulator.targets.assign(3, plugin->Modulation().MakeTarget("Wet"));
    }
    plugin->Modulation().SetSettings(settings);
    plugin->SetRandomSeed(seed);
    plugin->RandomizeBandModulation(kind);
    std::string text;
    for (const auto& modulator : plugin->Modulation().Settings().modulators) {
        for (const MModulationTarget& target : modulator.targets) {
            if (target.id == "Wet") return text;  // what it had before, and so have the others
            const MTargetMotion& motion = target.motion;
            const bool isRange = motion.mode == MTargetMode::Range;
            text += MFormat("{0}{1} {2.4} {3.4},", target.id.substr(5),
                            motion.isInverted ? "!" : "", isRange ? motion.minimum : motion.centre,
                            isRange ? motion.maximum : motion.depth);
        }
        text += "\n";
    }
    return text;
}

constexpr int kLength = 96000;

/// 100 Hz at 48 kHz.
float Sine(int i) { return static_cast<float>(std::sin(2 * std::numbers::pi * 100 * i / 48000)); }

/// The largest step from one sample to the next, once what began has settled.
double LargestStep(std::span<const float> samples) {
    float largest = 0;
    for (int i = kLength / 4; i < kLength; ++i) {
        largest = std::max(largest, std::fabs(samples[i] - samples[i - 1]));
    }
    return static_cast<double>(largest);
}

/// The sum of two bands whose limit moves over two octaves around the sine, twice a second.
std::vector<float> SweptBands(MBandOptions options) {
    const auto plugin = Make(2);
    plugin->SetOptions(options);
    plugin->BandParameters().Dry().SetValue(0);
    plugin->BandParameters().Limit(0).SetValue(2);  // 100 Hz
    MLFOSettings settings;
    settings.modulator.isEnabled = true;
    settings.modulator.rate = 2;
    MModulationTarget target = plugin->Modulation().MakeTarget("Band limit 1");
    target.motion.depth = 2 * std::log10(2.0) / 3;  // two octaves of three decades
    settings.targets = {target};
    plugin->Modulation().SetModulator(0, settings);
    Channels input(2, kLength), output(2, kLength);
    for (int c = 0; c < 2; ++c) {
        for (int i = 0; i < kLength; ++i) input[c][i] = Sine(i);
    }
    RunPlugin(*plugin, input, output, 512);
    return output[0];
}

/// The same sweep without a crossover or pieces: the all-pass that a Linkwitz-Riley sum of twice
/// the order is, as state-variable sections whose frequency moves with every sample.
std::vector<float> SweptAllPass(int order) {
    struct Section {
        double band = 0, low = 0;
    };
    std::vector<Section> sections(order / 2);
    std::vector<float> output(kLength);
    for (int i = 0; i < kLength; ++i) {
        const double limit = 100 * std::exp2(std::sin(2 * std::numbers::pi * 2 * i / 48000));
        const double g = std::tan(std::numbers::pi * limit / 48000);
        double x = static_cast<double>(Sine(i));
        for (int n = 0; n < order / 2; ++n) {
            auto& [band, low] = sections[n];
            const double damping = 2 * std::sin((2 * n + 1) * std::numbers::pi / (2 * order));
            const double v1 = (band + g * (x - low)) / (1 + g * (g + damping));
            const double v2 = low + g * v1;
            band = 2 * v1 - band;
            low = 2 * v2 - low;
            x -= 2 * damping * v1;
        }
        output[i] = static_cast<float>(x);
    }
    return output;
}

}  // namespace

TEST(MBandModulation, SweepsALimitWithoutAClick) {
    const auto decibels = [](double ratio) { return 20 * std::log10(ratio); };
    const double still = 2 * std::numbers::pi * 100 / 48000;
    EXPECT_LT(decibels(LargestStep(SweptBands({})) / still), 1);
    // Steep slopes turn the phase so far that the pitch itself rises by decibels; no step is larger
    // than that.
    using Slope = MAudioFilters::CrossoverGeneralizedType;
    int order = 2;
    for (const Slope slope :
         {Slope::Slope24, Slope::Slope48, Slope::Slope72, Slope::Slope96, Slope::Slope120}) {
        const double pitch = LargestStep(SweptAllPass(order));
        EXPECT_NEAR(
            decibels(LargestStep(SweptBands({.slope = slope, .wet = {}, .dry = {}})) / pitch), 0,
            0.1)
            << order;
        order += 2;
    }
}

TEST(MBandModulation, DealsTheSameForTheSameSeed) {
    const std::tuple<Kind, int, std::uint32_t, std::string> rows[] = {
        {Kind::Limits, 6, 1U,
         "limit 3 0.4420 0.5850,limit 1! 0.1784 0.2863,limit 5! 0.7153 0.8572,limit 4! 0.5850 "
         "0.7153,\n"
         "limit 2 0.2863 0.4420,\n"},
        {Kind::LimitsOverlapping, 6, 12345U,
         "limit 3 0.1532 0.7291,limit 1! 0.1532 0.5758,limit 2 0.1532 0.8637,limit 5 0.5758 "
         "0.8637,\n"
         "limit 4 0.2867 0.8637,\n"},
        {Kind::Gains, 2, 99U, "gain 2 0.5000 0.3000,gain 1! 0.5000 0.3000,\n"},
        {Kind::Panorama, 6, 4294967295U,
         "panorama 3 0.5000 0.8000,panorama 4! 0.5000 0.8000,panorama 1! 0.5000 0.8000,panorama 2! "
         "0.5000 0.8000,panorama 6! 0.5000 0.8000,panorama 5 0.5000 0.8000,\n"},
        {Kind::Limits, 2, 3U, "limit 1 0.3743 0.6257,\n"},
    };
    for (const auto& [kind, bands, seed, dealt] : rows) EXPECT_EQ(Dealt(kind, bands, seed), dealt);
    EXPECT_EQ(Dealt(Kind::Limits, 1, 1), "") << "nothing to deal";
}
