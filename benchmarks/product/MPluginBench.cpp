// SPDX-License-Identifier: GPL-3.0-or-later
#include "benchmarks/support/FrameCounter.h"
#include "plugin/MAudioPlugin.h"
#include "tests/support/Noise.h"
#include "tools/render/MPluginProcessor.h"
#include "tools/render/MSettingReader.h"

#include <benchmark/benchmark.h>

#include <span>
#include <string>

namespace {

using Crossover = MBandSetup::Crossover;
using Slope = MAudioFilters::CrossoverGeneralizedType;

constexpr int kSampleRate = 48000;
constexpr float kLevel = 0.25f;

constexpr const char* kTwoTapsFiltersSaturation[] = {
    "Tap 2=on",          "Tap 2 Delay=160 ms", "Filter mode=Feedback filter",
    "Min frequency=200", "Max frequency=4000", "Saturation=50%"};

/// One way of using the plug-in.
struct Work {
    const char* name;
    int bandCount;
    Slope slope;
    Crossover crossover;
    std::span<const char* const> settings;
};

constexpr Work kWorks[] = {
    {"1_band_1_tap", 1, Slope::Slope24, Crossover::Analog, {}},
    {"3_bands_24dB_1_tap", 3, Slope::Slope24, Crossover::Analog, {}},
    {"6_bands_24dB_1_tap", 6, Slope::Slope24, Crossover::Analog, {}},
    {"6_bands_24dB_2_taps_filters_saturation", 6, Slope::Slope24, Crossover::Analog,
     kTwoTapsFiltersSaturation},
    {"6_bands_120dB_1_tap", 6, Slope::Slope120, Crossover::Analog, {}},
    {"6_bands_linear_1_tap", 6, Slope::Slope24, Crossover::LinearPhase, {}},
};

void RunPlugin(benchmark::State& state, const Work& work, int blockSize) {
    MBandSetup setup;
    setup.count = work.bandCount;
    setup.slope = work.slope;
    setup.crossover = work.crossover;
    MPluginProcessor processor(setup);
    const MParameterList list(processor);
    for (const char* setting : work.settings) {
        for (const MRenderWrite& write : MSettingReader(list).Read(setting)) {
            processor.SetParameter(write.parameter, write.value);
        }
    }
    MAudioPlugin& plugin = processor.Plugin();
    plugin.SetMaximumBlockSize(blockSize);
    processor.Prepare(2, kSampleRate);

    Channels inputs(2, blockSize), outputs(2, blockSize);
    inputs.FillWithNoise(1, kLevel);
    for (int frames = 0; frames < kSampleRate; frames += blockSize) {
        plugin.Process(inputs.Constants(), outputs.Pointers(), blockSize);  // fills every line
    }
    for (auto _ : state) {
        plugin.Process(inputs.Constants(), outputs.Pointers(), blockSize);
        benchmark::DoNotOptimize(outputs[0].data());
        benchmark::ClobberMemory();
    }
    ReportFrames(state, blockSize);
}

const bool kIsRegistered = [] {
    for (const Work& work : kWorks) {
        for (const int blockSize : {64, 256, 1024}) {
            benchmark::RegisterBenchmark(
                ("plugin/" + std::string(work.name) + "/block:" + std::to_string(blockSize))
                    .c_str(),
                [&work, blockSize](benchmark::State& state) { RunPlugin(state, work, blockSize); });
        }
    }
    return true;
}();

}  // namespace
