// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MBandProcessor.h"
#include "benchmarks/support/FrameCounter.h"
#include "dsp/MBiquad.h"
#include "dsp/MMeter.h"
#include "effects/delay/MDelayEngine.h"
#include "tests/support/DelaySettingsMaker.h"
#include "tests/support/Noise.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace {

constexpr int kSampleRate = 48000;
constexpr float kLevel = 0.25f;

/// The effects' own cost left out: every output is its input.
class EchoEffects final : public MBandEffects {
public:
    explicit EchoEffects(const MDelaySettings&) {}
    void ProcessBand(int, const float* const* inputs, float* const* outputs, int count) override {
        for (int c = 0; c < 2; ++c) std::copy_n(inputs[c], count, outputs[c]);
    }
};

/// A delay per band.
class DelayEffects final : public MBandEffects {
public:
    explicit DelayEffects(const MDelaySettings& settings) : settings_(settings) {
        for (MDelayEngine& engine : engines_) {
            engine.Prepare(2, kSampleRate);
            engine.Update(settings_);
        }
    }
    void ProcessBand(int band, const float* const* inputs, float* const* outputs,
                     int count) override {
        engines_[band].Process(settings_, 120, inputs, outputs, count);
    }

private:
    MDelaySettings settings_;
    std::array<MDelayEngine, kMaxCrossoverBands> engines_;
};

MDelaySettings OneTap() { return DefaultDelaySettings(); }

MDelaySettings TwoTapsFiltersSaturation() {
    MDelaySettings settings = DefaultDelaySettings();
    settings.taps[1].isEnabled = true;
    settings.taps[1].delay = 0.16;
    settings.filtersFeedback = true;
    settings.minFrequency = 200;
    settings.maxFrequency = 4000;
    settings.saturation = 0.5;
    return settings;
}

/// One way of using the bands.
struct Work {
    const char* name;
    int bandCount;
    MAnalogCrossover::Slope slope;
    bool isLinearPhase;
    MDelaySettings (*settings)();
};

using Slope = MAnalogCrossover::Slope;
const Work kWorks[] = {
    {"bands:1/1_tap", 1, Slope::Slope24, false, OneTap},
    {"bands:3/slope:24/1_tap", 3, Slope::Slope24, false, OneTap},
    {"bands:6/slope:24/1_tap", 6, Slope::Slope24, false, OneTap},
    {"bands:6/slope:24/2_taps_filters_saturation", 6, Slope::Slope24, false,
     TwoTapsFiltersSaturation},
    {"bands:6/slope:120/1_tap", 6, Slope::Slope120, false, OneTap},
    {"bands:6/linear/1_tap", 6, Slope::Slope24, true, OneTap},
};

constexpr std::array kLimits = {100.0, 300.0, 1000.0, 3000.0, 8000.0};

MBandBlock BlockOf(const Work& work) {
    MBandBlock block;
    block.bandCount = work.bandCount;
    block.isLinearPhase = work.isLinearPhase;
    return block;
}

void Design(MBandProcessor& processor, const Work& work) {
    if (work.isLinearPhase) {
        processor.LinearPhase().Design(work.bandCount, kLimits, kSampleRate, false);
    } else {
        processor.Analog().Design(work.bandCount, kLimits, kSampleRate, work.slope);
    }
}

template <class Effects>
void RunBlock(benchmark::State& state, const Work& work, MBandBlock block, int count) {
    MBandProcessor processor;
    Design(processor, work);
    processor.Prepare(2);
    Effects effects(work.settings());
    Channels input(2, count), output(2, count);
    input.FillWithNoise(1, kLevel);
    for (auto _ : state) {
        processor.TakeDesigns();
        processor.Process(block, effects, input.Constants(), output.Pointers(), count);
        benchmark::ClobberMemory();
    }
    ReportFrames(state, count);
}

template <class Effects>
void Run(benchmark::State& state, const Work& work, int count) {
    RunBlock<Effects>(state, work, BlockOf(work), count);
}

/// Nothing stands still and everything is measured: the dearest block.
void RunMoving(benchmark::State& state, const Work& work, int count) {
    std::vector<MMeter> meters(kMaxCrossoverBands);
    MBandBlock block = BlockOf(work);
    block.bandMeters = meters.data();
    block.inputGain = {0.9, 1};
    block.outputGain = {0.9, 1};
    block.wet = {0.8, 0.9};
    block.dry = {0.5, 0.4};
    for (MBandSettings& band : block.bands) {
        band.gain = {1.1, 1.2};
        band.panorama = {-0.2, 0.3};
    }
    RunBlock<EchoEffects>(state, work, block, count);
}

void RunMetered(benchmark::State& state, const Work& work, int count) {
    std::vector<MMeter> meters(kMaxCrossoverBands);
    MBandBlock block = BlockOf(work);
    block.bandMeters = meters.data();
    RunBlock<EchoEffects>(state, work, block, count);
}

/// One second-order section on two channels, one after the other and one sample at a time: what
/// figures of different machines are scaled by.
void ScalarStereoBiquad(benchmark::State& state) {
    constexpr std::size_t kCount = 256;
    const MBiquadCoefficients section = DesignBiquad(BiquadType::LowPass, 1000, 0.7, kSampleRate);
    std::array<MBiquadState, 2> memory;
    std::array<std::array<double, kCount>, 2> samples{};
    for (auto _ : state) {
        for (std::size_t side = 0; side < 2; ++side) {
            samples[side].fill(0.25);
            RunBiquad(section, memory[side], samples[side]);
        }
        benchmark::ClobberMemory();
    }
    ReportFrames(state, kCount);
}
BENCHMARK(ScalarStereoBiquad)->Name("yardstick/scalar_stereo_biquad_section");

[[maybe_unused]] const bool kRegistered = [] {
    for (const Work& work : kWorks) {
        for (const int count : {64, 256, 1024}) {
            const std::string name =
                std::string("bands/") + work.name + "/block:" + std::to_string(count);
            benchmark::RegisterBenchmark(name.c_str(), Run<DelayEffects>, work, count);
        }
        if (work.settings != OneTap) continue;
        const std::string form = std::string("band_loop/") + work.name;
        const std::string loop = form.substr(0, form.rfind('/'));
        for (const int count : {64, 256, 1024}) {
            const std::string name = loop + "/block:" + std::to_string(count);
            benchmark::RegisterBenchmark(name.c_str(), Run<EchoEffects>, work, count);
        }
        benchmark::RegisterBenchmark((loop + "/metered/block:256").c_str(), RunMetered, work, 256);
        benchmark::RegisterBenchmark((loop + "/everything_moves/block:256").c_str(), RunMoving,
                                     work, 256);
    }
    return true;
}();

}  // namespace
