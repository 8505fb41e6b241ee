// SPDX-License-Identifier: GPL-3.0-or-later
#include "benchmarks/support/FrameCounter.h"
#include "hosts/vst2/MAudioPluginVSTAdapter.h"
#include "product/MProductFactory.h"
#include "tests/support/Noise.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int kSampleRate = 48000;
constexpr double kQuarterSamples = kSampleRate / 2.0;

constinit Vst2::VstTimeInfo playing = [] {
    Vst2::VstTimeInfo time = {};
    time.tempo = 120;
    time.timeSigNumerator = time.timeSigDenominator = 4;
    time.flags = Vst2::kVstTransportPlaying;
    return time;
}();

/// A host that answers at once. What it takes is its own: both sides of a comparison ask it.
Vst2::VstIntPtr Answer(Vst2::AEffect*, Vst2::VstInt32 opcode, Vst2::VstInt32, Vst2::VstIntPtr,
                       void*, float) {
    if (opcode == Vst2::audioMasterGetTime) {
        playing.samplePos += kQuarterSamples / 1000;
        playing.ppqPos += 1.0 / 1000;
        playing.flags = Vst2::kVstTransportPlaying;
        return reinterpret_cast<Vst2::VstIntPtr>(&playing);
    }
    return opcode == Vst2::audioMasterVersion ? Vst2::kVstVersion : 0;
}

/// Leaves the binding alone with itself, which shows its cost to a tenth of a nanosecond.
class IdlePlugin final : public MAudioPlugin {
public:
    bool WantsHostTime() const noexcept override { return true; }
    void Process(const float* const*, float* const*, int) override { benchmark::ClobberMemory(); }
};

std::shared_ptr<MAudioPlugin> lent;  // to the binding, whose maker has no argument for it

/// One plug-in in a host, called through it or directly: what the binding costs is the difference.
/// Both ways share the plug-in, since where its memory lies makes more of a difference than that.
class Hosted {
public:
    Hosted(std::shared_ptr<MAudioPlugin> plugin, int blockSize)
        : plugin_(*plugin), inputs_(2, blockSize), outputs_(2, blockSize), blockSize_(blockSize) {
        lent = std::move(plugin);
        effect_ = Vst2::CreateEffect(&Answer, 1, [] { return std::move(lent); });
        plugin_.SetMaximumBlockSize(blockSize);
        plugin_.SetSampleRate(kSampleRate);
        plugin_.InitProcessing();
        inputs_.FillWithNoise(1, 0.25f);
        // Afterwards the plug-in knows that the host plays, and that it has done so before.
        for (int block = 0; block < 2; ++block) RunHosted();
    }
    ~Hosted() { effect_->dispatcher(effect_, Vst2::effClose, 0, 0, nullptr, 0); }
    Hosted(const Hosted&) = delete;
    Hosted& operator=(const Hosted&) = delete;

    void RunHosted() { effect_->processReplacing(effect_, hostInputs_, hostOutputs_, blockSize_); }
    void RunDirect() {
        benchmark::DoNotOptimize(
            host_(effect_, Vst2::audioMasterGetTime, 0, Vst2::MVSTTransport::kFields, nullptr, 0));
        plugin_.Process(hostInputs_, hostOutputs_, blockSize_);
    }
    // Two loops that look alike to the processor: no others around, at the start of a line.
    [[gnu::noinline, gnu::aligned(64)]] void RunHostedBlocks(int count) {
        for (int i = 0; i < count; ++i) RunHosted();
    }
    [[gnu::noinline, gnu::aligned(64)]] void RunDirectBlocks(int count) {
        for (int i = 0; i < count; ++i) RunDirect();
    }

private:
    MAudioPlugin& plugin_;
    Channels inputs_, outputs_;
    float* hostInputs_[2] = {inputs_[0].data(), inputs_[1].data()};
    float* hostOutputs_[2] = {outputs_[0].data(), outputs_[1].data()};
    const int blockSize_;
    Vst2::AudioMasterCallback volatile host_ = &Answer;
    Vst2::AEffect* effect_ = nullptr;
};

void RunBlocks(benchmark::State& state, Hosted& hosted, bool isDirect, int blockSize) {
    for (auto _ : state) {
        if (isDirect) {
            hosted.RunDirect();
        } else {
            hosted.RunHosted();
        }
        benchmark::ClobberMemory();
    }
    ReportFrames(state, blockSize);
}

/// Runs `job` with `bytes` more on the stack.
template <class Job>
[[gnu::noinline]] void RunDeeper(int bytes, Job&& job) {
    void* room = __builtin_alloca(static_cast<std::size_t>(bytes));
    benchmark::DoNotOptimize(room);
    job();
}

double Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// What the binding adds to a block, as the median of many turns in which both ways alternate.
/// Every turn has the stack elsewhere: where the plug-in's own variables come to lie makes as much
/// of a difference as the binding, and is none of its doing.
void CompareWays(benchmark::State& state, Hosted& hosted) {
    using Clock = std::chrono::steady_clock;
    constexpr int kBlocks = 300;
    std::minstd_rand random(1);
    std::uniform_int_distribution<int> depth(1, 256);  // 16 bytes each: all places within a page
    std::vector<double> direct, added;
    bool isDirectFirst = false;
    for (auto _ : state) {
        double block[2] = {};  // ns; hosted, direct
        RunDeeper(16 * depth(random), [&] {
            for (const bool isDirect : {isDirectFirst, !isDirectFirst}) {
                const auto start = Clock::now();
                if (isDirect) {
                    hosted.RunDirectBlocks(kBlocks);
                } else {
                    hosted.RunHostedBlocks(kBlocks);
                }
                const std::chrono::duration<double, std::nano> taken = Clock::now() - start;
                block[isDirect ? 1 : 0] = taken.count() / kBlocks;
            }
        });
        isDirectFirst = !isDirectFirst;
        state.SetIterationTime(block[0] * 1e-9);
        added.push_back(block[0] - block[1]);
        direct.push_back(block[1]);
    }
    state.counters["added_ns"] = Median(added);
    state.counters["added_%"] = 100 * Median(added) / Median(direct);
}

using MakePlugin = std::shared_ptr<MAudioPlugin> (*)();

void Register(const std::string& name, int blockSize, MakePlugin make) {
    const auto shared = std::make_shared<std::unique_ptr<Hosted>>();
    for (const bool isDirect : {false, true}) {
        benchmark::RegisterBenchmark((name + (isDirect ? "/reference" : "")).c_str(),
                                     [=](benchmark::State& state) {
                                         if (*shared == nullptr) {
                                             *shared = std::make_unique<Hosted>(make(), blockSize);
                                         }
                                         RunBlocks(state, **shared, isDirect, blockSize);
                                     });
    }
}

void RegisterComparison(const std::string& name, int blockSize, MakePlugin make) {
    benchmark::RegisterBenchmark(name.c_str(),
                                 [=](benchmark::State& state) {
                                     Hosted hosted(make(), blockSize);
                                     CompareWays(state, hosted);
                                 })
        ->UseManualTime()
        ->Iterations(1000);
}

const bool kIsRegistered = [] {
    for (const int blockSize : {64, 1024}) {
        // The plug-in as it comes: three bands and a tap each.
        Register("vst2/block:" + std::to_string(blockSize), blockSize,
                 [] { return std::shared_ptr<MAudioPlugin>(MProductFactory::Create()); });
    }
    RegisterComparison("vst2/added:64", 64,
                       [] { return std::shared_ptr<MAudioPlugin>(MProductFactory::Create()); });
    Register("vst2/idle:64", 64,
             [] { return std::shared_ptr<MAudioPlugin>(std::make_shared<IdlePlugin>()); });
    return true;
}();

}  // namespace
