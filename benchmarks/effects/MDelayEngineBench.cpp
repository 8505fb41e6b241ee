// SPDX-License-Identifier: GPL-3.0-or-later
#include "benchmarks/support/FrameCounter.h"
#include "dsp/MDenormals.h"
#include "effects/delay/MDelayEngine.h"
#include "tests/support/DelaySettingsMaker.h"
#include "tests/support/MReferenceDelay.h"
#include "tests/support/Noise.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

constexpr int kSampleRate = 48000;
constexpr float kLevel = 0.25f;

/// One way of using the delay.
struct Work {
    const char* name;
    void (*set)(MDelaySettings& settings);
    void (*move)(MDelaySettings& settings, double& tempo,
                 int block);  // before every block; may be null
};

void UseBothTaps(MDelaySettings& settings) {
    settings.taps[1].isEnabled = true;
    settings.taps[1].delay = 0.16;
}

void UseFeedbackFilters(MDelaySettings& settings) {
    settings.filtersFeedback = true;
    settings.minFrequency = 200;
    settings.maxFrequency = 4000;
}

void UsePannedPingPong(MDelaySettings& settings) {
    UseBothTaps(settings);
    for (MDelayTapSettings& tap : settings.taps) tap.mode = MDelayMode::PingPong;
    settings.taps[0].panorama = {0.5, 0.5};
    settings.taps[1].panorama = {-0.5, -0.5};
}

const Work kWorks[] = {
    {"default", [](MDelaySettings&) {}, nullptr},
    {"one_tap_filters_saturation",
     [](MDelaySettings& s) {
         UseFeedbackFilters(s);
         s.saturation = 0.5;
     },
     nullptr},
    {"two_taps_pingpong_panned", UsePannedPingPong, nullptr},
    {"two_taps_feedback_filters",
     [](MDelaySettings& s) {
         UseBothTaps(s);
         UseFeedbackFilters(s);
     },
     nullptr},
    {"two_taps_saturation",
     [](MDelaySettings& s) {
         UseBothTaps(s);
         s.saturation = 0.5;
     },
     nullptr},
    {"everything",
     [](MDelaySettings& s) {
         UsePannedPingPong(s);
         UseFeedbackFilters(s);
         s.saturation = 0.5;
     },
     nullptr},
    {"delay_modulated", [](MDelaySettings&) {},
     [](MDelaySettings& s, double&, int block) { s.taps[0].delay = 0.1 + 0.0001 * (block % 64); }},
    {"sync_tempo_ramp", [](MDelaySettings& s) { s.taps[0].isSynchronised = true; },
     [](MDelaySettings&, double& tempo, int block) { tempo = 110 + 0.1 * (block % 200); }},
};

/// Drives the engine or the reference, which have the same operations.
template <class Delay>
void Run(benchmark::State& state, const Work& work, int channels, int count) {
    const MFlushDenormals flush;
    Delay delay;
    MDelaySettings settings = DefaultDelaySettings();
    work.set(settings);
    delay.Prepare(channels, kSampleRate);
    delay.Update(settings);
    Channels input(channels, count), output(channels, count);
    input.FillWithNoise(1, kLevel);
    double tempo = 120;
    int block = 0;
    for (auto _ : state) {
        if (work.move != nullptr) {
            work.move(settings, tempo, block++);
            delay.Update(settings);
        }
        delay.Process(settings, tempo, input.Constants(), output.Pointers(), count);
        benchmark::DoNotOptimize(output[0].data());
        benchmark::ClobberMemory();
    }
    ReportFrames(state, count);
}

std::string Name(const Work& work, int channels, int count) {
    return std::string("delay/") + work.name + (channels == 1 ? "/mono" : "/stereo") +
           "/block:" + std::to_string(count);
}

[[maybe_unused]] const bool kRegistered = [] {
    for (const Work& work : kWorks) {
        for (const int channels : {1, 2}) {
            for (const int count : {32, 64, 256, 1024}) {
                benchmark::RegisterBenchmark(Name(work, channels, count).c_str(), Run<MDelayEngine>,
                                             work, channels, count);
            }
        }
        benchmark::RegisterBenchmark((Name(work, 2, 256) + "/reference").c_str(),
                                     Run<MReferenceDelay>, work, 2, 256);
    }
    return true;
}();

/// What the input costs: silence and denormal numbers against noise.
void RunLevel(benchmark::State& state, float level) {
    const MFlushDenormals flush;
    constexpr int kCount = 256;
    MDelayEngine engine;
    MDelaySettings settings = DefaultDelaySettings();
    kWorks[5].set(settings);
    engine.Prepare(2, kSampleRate);
    engine.Update(settings);
    Channels input(2, kCount), output(2, kCount);
    input.FillWithNoise(1, level);
    for (auto _ : state) {
        engine.Process(settings, 120, input.Constants(), output.Pointers(), kCount);
        benchmark::ClobberMemory();
    }
    ReportFrames(state, kCount);
}
BENCHMARK_CAPTURE(RunLevel, silence, 0.0f)->Name("delay/everything/silent_input");
BENCHMARK_CAPTURE(RunLevel, denormal, 1e-39f)->Name("delay/everything/denormal_input");
BENCHMARK_CAPTURE(RunLevel, noise, kLevel)->Name("delay/everything/noise_input");

}  // namespace
