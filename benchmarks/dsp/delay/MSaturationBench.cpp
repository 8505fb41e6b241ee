// SPDX-License-Identifier: GPL-3.0-or-later
#include "benchmarks/support/FrameCounter.h"
#include "dsp/delay/MSaturationCurve.h"
#include "dsp/kernels/MKernelSet.h"
#include "tests/support/MReferenceDelay.h"

#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

namespace {

constexpr int kFrames = 256;
constexpr double kAmount = 0.5;

/// A stereo block of samples between -1 and 1, side after side.
std::vector<double> Noise() {
    std::minstd_rand generator(1);
    std::uniform_real_distribution<double> uniform(-1, 1);
    std::vector<double> samples(2 * kFrames);
    for (double& sample : samples) sample = uniform(generator);
    return samples;
}

void Reference(benchmark::State& state) {
    const std::vector<double> input = Noise();
    std::vector<double> output(input.size());
    for (auto _ : state) {
        for (std::size_t i = 0; i < input.size(); ++i) {
            output[i] = MReferenceDelay::Saturate(input[i], kAmount);
        }
        benchmark::DoNotOptimize(output.data());
        benchmark::ClobberMemory();
    }
    ReportFrames(state, kFrames);
}

void Kernel(benchmark::State& state, const MKernelSet& kernels) {
    const MSaturationSettings settings = MSaturationCurve().Settings(kAmount);
    const std::vector<double> input = Noise();
    std::vector<double> output(input.size());
    for (auto _ : state) {
        output = input;
        kernels.delay->saturate(settings, output.data(), static_cast<int>(output.size()));
        benchmark::DoNotOptimize(output.data());
        benchmark::ClobberMemory();
    }
    ReportFrames(state, kFrames);
}

[[maybe_unused]] const bool kRegistered = [] {
    benchmark::RegisterBenchmark("saturation/stereo/reference", Reference);
    benchmark::RegisterBenchmark("saturation/stereo",
                                 [](benchmark::State& state) { Kernel(state, Kernels()); });
    for (const MKernelSet& kernels : RunnableKernels()) {
        benchmark::RegisterBenchmark(
            (std::string("saturation/") + kernels.name).c_str(),
            [&kernels](benchmark::State& state) { Kernel(state, kernels); });
    }
    return true;
}();

}  // namespace
