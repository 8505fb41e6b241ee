// SPDX-License-Identifier: GPL-3.0-or-later
#include "benchmarks/support/FrameCounter.h"
#include "hosts/vst2/MAudioPluginVSTAdapter.h"
#include "product/MProductFactory.h"
#include "tests/support/Noise.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <utility>

namespace {

constexpr int kSampleRate = 48000;

std::unique_ptr<MAudioPlugin> lent;  // to the binding, whose maker has no argument for it

constinit Vst2::VstTimeInfo playing = [] {
    Vst2::VstTimeInfo time = {};
    time.tempo = 120;
    time.flags = Vst2::kVstTransportPlaying;
    return time;
}();

/// A host that answers at once: what it takes itself is none of the binding's.
Vst2::VstIntPtr Answer(Vst2::AEffect*, Vst2::VstInt32 opcode, Vst2::VstInt32, Vst2::VstIntPtr,
                       void*, float) {
    if (opcode == Vst2::audioMasterGetTime) return reinterpret_cast<Vst2::VstIntPtr>(&playing);
    return opcode == Vst2::audioMasterVersion ? Vst2::kVstVersion : 0;
}

/// The plug-in as it comes, three bands and a tap each, in a host or called directly: what the
/// binding costs is the difference.
void RunBlocks(benchmark::State& state, bool isDirect, int blockSize) {
    lent = MProductFactory::Create();
    MAudioPlugin& plugin = *lent;
    Vst2::AEffect* effect = Vst2::CreateEffect(
        &Answer, 1, [] { return std::shared_ptr<MAudioPlugin>(std::move(lent)); });
    plugin.SetMaximumBlockSize(blockSize);
    plugin.SetSampleRate(kSampleRate);
    plugin.InitProcessing();

    Channels inputs(2, blockSize), outputs(2, blockSize);
    inputs.FillWithNoise(1, 0.25f);
    float* hostInputs[] = {inputs[0].data(), inputs[1].data()};
    float* hostOutputs[] = {outputs[0].data(), outputs[1].data()};
    effect->processReplacing(effect, hostInputs, hostOutputs,
                             blockSize);  // both know the transport
    for (auto _ : state) {
        if (isDirect) {
            plugin.Process(hostInputs, hostOutputs, blockSize);
        } else {
            effect->processReplacing(effect, hostInputs, hostOutputs, blockSize);
        }
        benchmark::DoNotOptimize(outputs[0].data());
        benchmark::ClobberMemory();
    }
    ReportFrames(state, blockSize);
    effect->dispatcher(effect, Vst2::effClose, 0, 0, nullptr, 0);
}

const bool kIsRegistered = [] {
    for (const int blockSize : {64, 1024}) {
        const std::string name = "vst2/block:" + std::to_string(blockSize);
        for (const bool isDirect : {false, true}) {
            benchmark::RegisterBenchmark(
                (name + (isDirect ? "/reference" : "")).c_str(),
                [=](benchmark::State& state) { RunBlocks(state, isDirect, blockSize); });
        }
    }
    return true;
}();

}  // namespace
