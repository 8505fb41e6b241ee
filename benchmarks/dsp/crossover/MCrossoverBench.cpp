// SPDX-License-Identifier: GPL-3.0-or-later
#include "benchmarks/support/FrameCounter.h"
#include "dsp/crossover/MAnalogCrossover.h"
#include "dsp/crossover/MLinearPhaseCrossover.h"

#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr double kSampleRate = 48000;
constexpr std::array kLimits = {120.0, 400.0, 1200.0, 3500.0, 9000.0};

std::span<const double> Limits(int bandCount) {
    return std::span(kLimits).first(static_cast<std::size_t>(bandCount - 1));
}

std::vector<double> Noise(int count, unsigned seed) {
    std::mt19937 random(seed);
    std::normal_distribution<double> normal(0, 0.1);
    std::vector<double> samples(static_cast<std::size_t>(count));
    for (double& sample : samples) sample = normal(random);
    return samples;
}

/// A stereo block and what it is split into.
struct StereoBlock {
    explicit StereoBlock(int frames) : left(Noise(frames, 1)), right(Noise(frames, 2)) {
        for (std::size_t band = 0; band < bands.size(); ++band) {
            for (auto& channel : memory[band]) channel.resize(left.size());
            bands[band] = {memory[band][0].data(), memory[band][1].data()};
        }
    }

    std::vector<double> left, right;
    std::array<std::array<std::vector<double>, 2>, kMaxCrossoverBands> memory;
    std::array<MChannelPair, kMaxCrossoverBands> bands{};
};

void AnalogReference(benchmark::State& state, int bandCount, int slope, int frames) {
    StereoBlock block(frames);
    MAnalogCrossover crossover;
    crossover.Design(bandCount, Limits(bandCount), kSampleRate,
                     static_cast<MAnalogCrossover::Slope>(slope));
    MAnalogChannelState left, right;
    for (auto _ : state) {
        crossover.BeginBlock();
        for (int band = 0; band < bandCount; ++band) {
            crossover.ProcessBand(left, band, block.left.data(), block.bands[band].left, frames);
            crossover.ProcessBand(right, band, block.right.data(), block.bands[band].right, frames);
        }
        benchmark::ClobberMemory();
    }
    ReportFrames(state, frames);
}

void AnalogSplit(benchmark::State& state, int bandCount, int slope, int frames) {
    StereoBlock block(frames);
    MAnalogCrossover crossover;
    crossover.Design(bandCount, Limits(bandCount), kSampleRate,
                     static_cast<MAnalogCrossover::Slope>(slope));
    MAnalogPairState pair;
    for (auto _ : state) {
        crossover.BeginBlock();
        crossover.Split(pair, block.left.data(), block.right.data(), block.bands, frames);
        benchmark::ClobberMemory();
    }
    ReportFrames(state, frames);
}

void AnalogDesign(benchmark::State& state, MAnalogCrossover::Slope slope) {
    MAnalogCrossover crossover;
    std::array<double, 5> limits = kLimits;
    for (auto _ : state) {
        limits[0] = limits[0] < 300 ? limits[0] * 1.01 : 120;
        crossover.Design(6, limits, kSampleRate, slope);
    }
}

void LinearPhaseSplit(benchmark::State& state, int bandCount, bool fixedQ, int frames) {
    const std::vector<double> noise = Noise(frames, 3);
    const std::vector<float> input(noise.begin(), noise.end());
    std::array<std::vector<float>, kMaxCrossoverBands> memory;
    std::array<float*, kMaxCrossoverBands> bands{};
    for (std::size_t i = 0; i < bands.size(); ++i) {
        memory[i].resize(input.size());
        bands[i] = memory[i].data();
    }
    MLinearPhaseCrossover crossover;
    crossover.Design(bandCount, Limits(bandCount), kSampleRate, fixedQ);
    MLinearPhaseChannelState channels[2];
    for (auto _ : state) {
        crossover.BeginBlock();
        for (MLinearPhaseChannelState& channel : channels) {
            crossover.Split(channel, input.data(), {}, bands, frames);
        }
        benchmark::ClobberMemory();
    }
    ReportFrames(state, frames);
}

void LinearPhaseBandByBand(benchmark::State& state, int bandCount, bool fixedQ, int frames) {
    const std::vector<double> noise = Noise(frames, 3);
    const std::vector<float> input(noise.begin(), noise.end());
    std::vector<float> output(input.size());
    MLinearPhaseCrossover crossover;
    crossover.Design(bandCount, Limits(bandCount), kSampleRate, fixedQ);
    MLinearPhaseChannelState channels[2];
    for (auto _ : state) {
        crossover.BeginBlock();
        for (MLinearPhaseChannelState& channel : channels) {
            for (int band = 0; band < bandCount; ++band) {
                crossover.ProcessBand(channel, band, input.data(), output.data(), frames);
            }
        }
        benchmark::ClobberMemory();
    }
    ReportFrames(state, frames);
}

void LinearPhaseDesign(benchmark::State& state, bool fixedQ) {
    MLinearPhaseCrossover crossover;
    std::array<double, 5> limits = kLimits;
    for (auto _ : state) {
        limits[0] = limits[0] < 300 ? limits[0] * 1.01 : 120;
        crossover.Design(6, limits, kSampleRate, fixedQ);
    }
}

void RealFFT(benchmark::State& state, bool isInverse) {
    const MRealFFT& transform = MRealFFT::Instance();
    const auto samples = std::make_unique<MRealFFT::Buffer>();
    const auto spectrum = std::make_unique<MRealFFT::Buffer>();
    for (auto _ : state) {
        if (!isInverse) {
            transform.Forward(*samples, *spectrum);
        } else {
            transform.Inverse(*spectrum, *samples);
        }
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * MRealFFT::kSize);
}

/// Every limit moves with every block, as under a modulator.
void AnalogModulated(benchmark::State& state, int slope, bool isModulated) {
    constexpr int kFrames = 64;
    StereoBlock block(kFrames);
    MAnalogCrossover crossover;
    MAnalogPairState pair;
    std::array<double, 5> limits = kLimits;
    double direction = 1.001;
    crossover.Design(6, limits, kSampleRate, static_cast<MAnalogCrossover::Slope>(slope));
    for (auto _ : state) {
        if (isModulated) {
            for (double& limit : limits) limit *= direction;
            if (limits[4] > 12000 || limits[4] < 6000) direction = 1 / direction;
            crossover.Design(6, limits, kSampleRate, static_cast<MAnalogCrossover::Slope>(slope));
        }
        crossover.BeginBlock();
        crossover.Split(pair, block.left.data(), block.right.data(), block.bands, kFrames);
        benchmark::ClobberMemory();
    }
    ReportFrames(state, kFrames);
}

std::string Name(const char* kind, int bandCount, const std::string& form, int frames) {
    return "crossover/" + std::string(kind) + "/bands:" + std::to_string(bandCount) + form +
           "/block:" + std::to_string(frames);
}

void RegisterAnalog(int bandCount, int frames) {
    for (const int slope : {0, 1, 2, 5}) {
        const std::string form(
            MAudioFilters::kCrossoverSlopeNames[slope].substr(0, slope == 5 ? 3 : 2));
        const std::string name = Name("analog", bandCount, "/slope:" + form, frames);
        benchmark::RegisterBenchmark(name.c_str(), AnalogSplit, bandCount, slope, frames);
        if (frames != 256) continue;
        benchmark::RegisterBenchmark((name + "/reference").c_str(), AnalogReference, bandCount,
                                     slope, frames);
    }
}

void RegisterLinearPhase(int bandCount, int frames) {
    for (const bool fixedQ : {false, true}) {
        const std::string name = Name(fixedQ ? "hybrid" : "linear", bandCount, "", frames);
        benchmark::RegisterBenchmark(name.c_str(), LinearPhaseSplit, bandCount, fixedQ, frames);
        if (frames != 256) continue;
        benchmark::RegisterBenchmark((name + "/reference").c_str(), LinearPhaseBandByBand,
                                     bandCount, fixedQ, frames);
    }
}

const bool kIsRegistered = [] {
    for (const int bandCount : {2, 3, 6}) {
        for (const int frames : {64, 256, 1024}) {
            RegisterAnalog(bandCount, frames);
            RegisterLinearPhase(bandCount, frames);
        }
    }
    return true;
}();

BENCHMARK_CAPTURE(AnalogModulated, moving24, 1, true)
    ->Name("crossover/analog/modulated/bands:6/slope:24/block:64");
BENCHMARK_CAPTURE(AnalogModulated, still24, 1, false)
    ->Name("crossover/analog/modulated/bands:6/slope:24/block:64/reference");
BENCHMARK_CAPTURE(AnalogModulated, moving120, 5, true)
    ->Name("crossover/analog/modulated/bands:6/slope:120/block:64");
BENCHMARK_CAPTURE(AnalogModulated, still120, 5, false)
    ->Name("crossover/analog/modulated/bands:6/slope:120/block:64/reference");
BENCHMARK_CAPTURE(AnalogDesign, 24, MAnalogCrossover::Slope::Slope24)
    ->Name("crossover/design/analog/bands:6/slope:24");
BENCHMARK_CAPTURE(AnalogDesign, 120, MAnalogCrossover::Slope::Slope120)
    ->Name("crossover/design/analog/bands:6/slope:120");
BENCHMARK_CAPTURE(LinearPhaseDesign, linear, false)->Name("crossover/design/linear/bands:6");
BENCHMARK_CAPTURE(LinearPhaseDesign, hybrid, true)->Name("crossover/design/hybrid/bands:6");
BENCHMARK_CAPTURE(RealFFT, forward, false)->Name("fft/4096/forward");
BENCHMARK_CAPTURE(RealFFT, inverse, true)->Name("fft/4096/inverse");

}  // namespace
