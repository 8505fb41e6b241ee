// SPDX-License-Identifier: GPL-3.0-or-later
#include "benchmarks/support/FrameCounter.h"
#include "core/MFormat.h"
#include "product/MProductFactory.h"
#include "tests/support/Noise.h"
#include "tests/support/RunPlugin.h"

#include <benchmark/benchmark.h>

#include <array>
#include <functional>
#include <string>
#include <vector>

namespace {

using Plugin = MAudioEffectPluginToAudioPluginMultiBandAdapter;
using Settings = MModulationSettings;
using Ids = std::vector<std::string>;

constexpr int kBands = 6;
constexpr int kSampleRate = 48000;

/// The key of every band's setting, the band's number in the place of "{0}".
Ids OfBands(const std::string& pattern, int first = 1, int last = kBands) {
    Ids ids;
    for (int band = first; band <= last; ++band) {
        ids.push_back(MFormat(pattern, band));
    }
    return ids;
}

Ids operator+(Ids left, const Ids& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

/// One oscillator on eight parameters, four times.
std::array<Ids, 4> ThirtyTwo() {
    return {OfBands("Band gain {0}") + Ids{"Wet", "Dry"},
            OfBands("B{0} T1 Feedback") + OfBands("B{0} T1 Panorama", 1, 2),
            OfBands("Band panorama {0}") + OfBands("B{0} T1 Panorama", 3, 4),
            OfBands("B{0} T1 Gain") + Ids{"Input gain", "B5 T1 Panorama"}};
}

std::array<Ids, 4> FiveLimits() { return {OfBands("Band limit {0}", 1, 5)}; }

void Assign(Plugin& plugin, const std::array<Ids, 4>& ids, bool isOn) {
    Settings settings = plugin.Modulation().Settings();
    for (std::size_t i = 0; i < ids.size(); ++i) {
        MLFOSettings& modulator = settings.modulators[i];
        modulator.modulator.isEnabled = isOn && !ids[i].empty();
        modulator.modulator.rate = 0.5 + static_cast<double>(i);
        for (const std::string& id : ids[i]) {
            modulator.targets.push_back(plugin.Modulation().MakeTarget(id));
            modulator.targets.back().motion.depth = 0.2;
        }
    }
    plugin.Modulation().SetSettings(settings);
}

/// Knobs off the positions in which work is saved, for modulated and still ones alike.
void MoveKnobs(Plugin& plugin) {
    for (const auto& ids : ThirtyTwo()) {
        for (const std::string& id : ids) {
            plugin.SetParameter(FindParameter(plugin, id), 0.6, false);
        }
    }
}

void Run(benchmark::State& state, int blockSize, const std::function<void(Plugin&)>& setUp) {
    const auto plugin = MProductFactory::Create();
    plugin->CreateDefaultBands(kBands);
    MoveKnobs(*plugin);
    setUp(*plugin);
    plugin->SetSampleRate(kSampleRate);
    plugin->SetMaximumBlockSize(blockSize);
    plugin->InitProcessing();
    Channels inputs(2, blockSize), outputs(2, blockSize);
    inputs.FillWithNoise(1, 0.25f);
    for (int frames = 0; frames < kSampleRate; frames += blockSize) {
        plugin->Process(inputs.Constants(), outputs.Pointers(), blockSize);
    }
    for (auto _ : state) {
        plugin->Process(inputs.Constants(), outputs.Pointers(), blockSize);
        benchmark::DoNotOptimize(outputs[0].data());
        benchmark::ClobberMemory();
    }
    ReportFrames(state, blockSize);
}

const bool kIsRegistered = [] {
    const auto add = [](const char* name, int blockSize,
                        const std::function<void(Plugin&)>& setUp) {
        benchmark::RegisterBenchmark(
            name, [=](benchmark::State& state) { Run(state, blockSize, setUp); });
    };
    const auto nothing = [](Plugin&) {};
    add("modulation/idle/block:256", 256, [](Plugin& p) { Assign(p, ThirtyTwo(), false); });
    add("modulation/idle/block:256/reference", 256, nothing);
    // Pieces as long as the block: the reference has the same frame around each.
    add("modulation/32_targets/block:64", 64, [](Plugin& p) { Assign(p, ThirtyTwo(), true); });
    add("modulation/32_targets/block:64/reference", 64, nothing);
    add("modulation/five_limits/block:64", 64, [](Plugin& p) { Assign(p, FiveLimits(), true); });
    add("modulation/five_limits/block:64/reference", 64, nothing);
    // What cutting alone costs, against a block that stays whole.
    add("modulation/64_pieces/block:512", 512, [](Plugin& p) { Assign(p, {Ids{"Bypass"}}, true); });
    add("modulation/64_pieces/block:512/reference", 512, nothing);
    return true;
}();

}  // namespace
