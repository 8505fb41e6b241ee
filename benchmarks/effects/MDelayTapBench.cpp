// SPDX-License-Identifier: GPL-3.0-or-later
#include "benchmarks/effects/MPlainDelay.h"
#include "benchmarks/support/FrameCounter.h"
#include "dsp/MDenormals.h"
#include "dsp/delay/MSaturationCurve.h"
#include "effects/delay/MDelayAudioEffectPlugin.h"
#include "effects/delay/MDelayTapLoop.h"
#include "tests/support/DelaySettingsMaker.h"
#include "tests/support/Noise.h"

#include <benchmark/benchmark.h>

#include <cmath>

// One tap's loop, and the whole effect behind its command entry, against the plain loop doing the
// same work, in one run.

namespace {

constexpr int kSampleRate = 48000;
constexpr int kFrames = 256;
constexpr int kLength = 4800;
constexpr double kLow = 200, kHigh = 4000;  // hertz
constexpr double kSaturation = 0.5;
constexpr float kLevel = 0.25f;

MDelaySettings TapSettings(bool isShaped) {
    MDelaySettings settings = DefaultDelaySettings();
    if (!isShaped) return settings;
    settings.filtersFeedback = true;
    settings.minFrequency = kLow;
    settings.maxFrequency = kHigh;
    settings.saturation = kSaturation;
    return settings;
}

void Plain(benchmark::State& state, bool isShaped) {
    const MFlushDenormals flush;
    MPlainDelay::Settings settings;
    if (isShaped) {
        settings.isFiltered = true;
        settings.highPass = DesignBiquad(BiquadType::HighPass, kLow, 0.5, kSampleRate);
        settings.lowPass = DesignBiquad(BiquadType::LowPass, kHigh, 0.5, kSampleRate);
        settings.saturation = kSaturation;
    }
    MPlainDelay delay(settings, kLength);
    Channels input(2, kFrames), output(2, kFrames);
    input.FillWithNoise(1, kLevel);
    for (auto _ : state) {
        delay.Process(input.Constants(), output.Pointers(), kFrames);
        benchmark::ClobberMemory();
    }
    ReportFrames(state, kFrames);
}

void Tap(benchmark::State& state, bool isShaped) {
    const MFlushDenormals flush;
    const MDelaySettings settings = TapSettings(isShaped);
    MDelayTap tap;
    MDelayFilters filters;
    MGrowingBuffer<float> scratch;
    tap.Prepare(2);
    tap.Update(settings.taps[0], kSampleRate, scratch);
    filters.Design(settings, kSampleRate);
    const MSaturationSettings saturation = MSaturationCurve().Settings(kSaturation);
    const MLoopRamps ramps = {.feedback = settings.taps[0].feedback.Squared(kFrames),
                              .gain = settings.taps[0].gain.Squared(kFrames),
                              .panorama = settings.taps[0].panorama.Linear(kFrames)};
    Channels input(2, kFrames), output(2, kFrames);
    input.FillWithNoise(1, kLevel);
    for (auto _ : state) {
        MDelayTapLoop loop(
            tap, MDelayMode::Classic, ramps,
            {*Kernels().delay, filters, isShaped ? &saturation : nullptr, nullptr, false});
        loop.Run(input.Constants(), output.Pointers(), kFrames);
        benchmark::ClobberMemory();
    }
    ReportFrames(state, kFrames);
}

void Effect(benchmark::State& state) {
    MDelayAudioEffectPlugin effect;
    MEffectArguments prepare;
    prepare.values[0] = MEffectArgument(std::int64_t{2});
    prepare.values[1] = MEffectArgument(std::int64_t{kSampleRate});
    effect.Dispatch(MEffectCommand::InitEffectProcessing, &prepare);
    const int frames = static_cast<int>(state.range(0));
    Channels input(2, frames), output(2, frames);
    input.FillWithNoise(1, kLevel);
    MEffectArguments process;
    process.values[1] = MEffectArgument(static_cast<const void*>(input.Constants()));
    process.values[2] = MEffectArgument(static_cast<const void*>(output.Pointers()));
    process.values[3] = MEffectArgument(std::int64_t{frames});
    for (auto _ : state) {
        effect.Dispatch(MEffectCommand::ProcessEffect, &process);
        benchmark::ClobberMemory();
    }
    ReportFrames(state, frames);
}

BENCHMARK_CAPTURE(Tap, plain, false)->Name("tap/plain/stereo/block:256");
BENCHMARK_CAPTURE(Plain, plain, false)->Name("tap/plain/stereo/block:256/reference");
BENCHMARK_CAPTURE(Tap, shaped, true)->Name("tap/filters_saturation/stereo/block:256");
BENCHMARK_CAPTURE(Plain, shaped, true)->Name("tap/filters_saturation/stereo/block:256/reference");
BENCHMARK(Effect)
    ->Name("effect/default/stereo")
    ->ArgName("block")
    ->Arg(32)
    ->Arg(64)
    ->Arg(256)
    ->Arg(1024);
BENCHMARK_CAPTURE(Plain, whole, false)->Name("effect/default/stereo/block:256/reference");

}  // namespace
