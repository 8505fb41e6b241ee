// SPDX-License-Identifier: GPL-3.0-or-later
#include "benchmarks/support/LockHolds.h"
#include "plugin/MPluginState.h"
#include "product/MProductFactory.h"
#include "tests/support/Noise.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace {

using Plugin = MAudioEffectPluginToAudioPluginMultiBandAdapter;
using Clock = std::chrono::steady_clock;
using Bytes = std::vector<std::uint8_t>;

constexpr int kBlockSize = 256;
constexpr int kLoads = 1000;

struct Setup {
    const char* name;
    int bandCount;
    bool isLinearPhase;
    bool isRunning;  // blocks run meanwhile
};

Bytes StateWith(Plugin& plugin, double level) {
    for (int band = 0; band < plugin.Layout().bandCount; ++band) {
        plugin.BandParameters().Gain(band).SetValue(level);
    }
    return MPluginState::Save(plugin);
}

/// Modulators on what users modulate: their plan is a part of every load.
void Modulate(Plugin& plugin) {
    MModulationSettings settings = plugin.Modulation().Settings();
    for (auto& modulator : settings.modulators) {
        modulator.modulator.isEnabled = true;
        for (const char* id : {"Band gain 1", "B1 T1 Feedback", "Band panorama 2", "Wet"}) {
            modulator.targets.push_back(plugin.Modulation().MakeTarget(id));
        }
    }
    plugin.Modulation().SetSettings(settings);
}

void NameLocks(LockHolds& locks, Plugin& plugin) {
    locks.Name("change", [&] { plugin.StandardSettings(); });
    locks.Name("settings", [&] { plugin.Layout(); });
    locks.Name("modulation", [&] { plugin.Modulation().Settings(); });
    locks.Name("midi", [&] { plugin.MIDI().Settings(); });
    locks.Name("preparing", [&] { plugin.OnGlobalChange(false); });
}

void Report(benchmark::State& state, const std::string& name, LockHolds::Durations durations) {
    std::sort(durations.begin(), durations.end());
    state.counters[name + "_median_us"] = durations[durations.size() / 2];
    state.counters[name + "_max_us"] = durations.back();
}

/// One iteration loads a state once.
void Load(benchmark::State& state, const Setup& setup) {
    const auto plugin = MProductFactory::Create();
    plugin->CreateDefaultBands(setup.bandCount);
    MBandOptions options = plugin->Options();
    options.isLinearPhase = setup.isLinearPhase;
    plugin->SetOptions(options);
    plugin->SetSampleRate(48000);
    plugin->SetMaximumBlockSize(kBlockSize);
    plugin->InitProcessing();
    Modulate(*plugin);
    const Bytes states[] = {StateWith(*plugin, -3), StateWith(*plugin, 3)};

    Channels inputs(2, kBlockSize), outputs(2, kBlockSize);
    inputs.FillWithNoise(1, 0.25f);
    const auto process = [&] {
        plugin->Process(inputs.Constants(), outputs.Pointers(), kBlockSize);
    };
    process();
    std::atomic<bool> isRunning{setup.isRunning};
    std::thread audio([&] {
        while (isRunning) process();
    });
    LockHolds locks;
    LockHolds::Durations loads;
    NameLocks(locks, *plugin);
    int load = 0;
    for (auto _ : state) {
        locks.Measure([&] {
            const auto start = Clock::now();
            MPluginState::Load(*plugin, states[++load % 2]);
            const std::chrono::duration<double> duration = Clock::now() - start;
            state.SetIterationTime(duration.count());
            loads.push_back(duration.count() * 1e6);
        });
    }
    isRunning = false;
    audio.join();
    for (const auto& [name, durations] : locks.Holds()) Report(state, name, durations);
    Report(state, "load", loads);
}

const bool kIsRegistered = [] {
    static const Setup setups[] = {{"3_bands_24dB", 3, false, true},
                                   {"6_bands_linear", 6, true, true},
                                   {"3_bands_24dB/no_blocks", 3, false, false}};
    for (const Setup& setup : setups) {
        benchmark::RegisterBenchmark(("state/load/" + std::string(setup.name)).c_str(),
                                     [&setup](benchmark::State& state) { Load(state, setup); })
            ->Iterations(kLoads)
            ->UseManualTime()
            ->Unit(benchmark::kMicrosecond);
    }
    return true;
}();

}  // namespace
