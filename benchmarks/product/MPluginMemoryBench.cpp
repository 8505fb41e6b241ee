// SPDX-License-Identifier: GPL-3.0-or-later
#include "product/MProductFactory.h"
#include "tests/support/Noise.h"

#include <benchmark/benchmark.h>

#include <malloc.h>
#include <string>
#include <utility>

namespace {

constexpr int kSampleRate = 48000;
constexpr int kBlockSize = 1024;

/// Bytes that the whole program holds on the heap, whoever took them.
double HeldBytes() {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

/// How far an instance has come when it is measured.
enum class Stage { Created, Prepared, FirstBlock };

struct Setup {
    const char* name;
    int bandCount;
    bool isLinearPhase;
};

auto Make(const Setup& setup, Stage stage) {
    auto plugin = MProductFactory::Create();
    plugin->CreateDefaultBands(setup.bandCount);
    MBandOptions options = plugin->Options();
    options.isLinearPhase = setup.isLinearPhase;
    plugin->SetOptions(options);
    if (stage == Stage::Created) return plugin;
    plugin->SetSampleRate(kSampleRate);
    plugin->SetMaximumBlockSize(kBlockSize);
    plugin->InitProcessing();
    if (stage == Stage::Prepared) return plugin;
    Channels inputs(2, kBlockSize), outputs(2, kBlockSize);
    inputs.FillWithNoise(1, 0.1f);
    plugin->Process(inputs.Constants(), outputs.Pointers(), kBlockSize);
    return plugin;
}

void Measure(benchmark::State& state, const Setup& setup, Stage stage) {
    // Plans, tables and kernels that all instances share exist from here on.
    const auto first = Make(setup, Stage::FirstBlock);
    double bytes = 0;
    for (auto _ : state) {
        const double before = HeldBytes();
        const auto plugin = Make(setup, stage);
        bytes = HeldBytes() - before;
    }
    state.counters["bytes"] = bytes;
}

const bool kIsRegistered = [] {
    static const Setup setups[] = {{"default_3_bands", 3, false}, {"6_bands_linear", 6, true}};
    static const std::pair<const char*, Stage> stages[] = {{"created", Stage::Created},
                                                           {"prepared", Stage::Prepared},
                                                           {"first_block", Stage::FirstBlock}};
    for (const Setup& setup : setups) {
        for (const auto& [stageName, stage] : stages) {
            benchmark::RegisterBenchmark(
                ("plugin_memory/" + std::string(setup.name) + "/" + stageName).c_str(),
                [&setup, stage = stage](benchmark::State& state) { Measure(state, setup, stage); })
                ->Iterations(1);
        }
    }
    return true;
}();

}  // namespace
