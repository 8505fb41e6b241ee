// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MAudioEffectPluginToAudioPluginAdapter.h"
#include "core/MException.h"
#include "plugin/MPluginState.h"
#include "tests/support/ProbeEffect.h"
#include "tests/support/Reports.h"
#include "tests/support/RunPlugin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr int kBlock = 64;

/// Notes what the frame calls.
class Adapter final : public MAudioEffectPluginToAudioPluginAdapter {
public:
    using MAudioEffectPluginToAudioPluginAdapter::MAudioEffectPluginToAudioPluginAdapter;

    void ProcessUpdate() override {
        frame.emplace_back("update");
        MAudioEffectPluginToAudioPluginAdapter::ProcessUpdate();
    }
    void ProcessBlock(const float* const* inputs, float* const* outputs, int count) override {
        frame.emplace_back("effect");
        MAudioEffectPluginToAudioPluginAdapter::ProcessBlock(inputs, outputs, count);
    }
    void PostProcess(float* const* outputs, int count) override {
        frame.emplace_back("post");
        MAudioEffectPluginToAudioPluginAdapter::PostProcess(outputs, count);
    }
    void UpdateMaxBufferSize() override {
        if (whileLocked) whileLocked();
        MAudioEffectPluginToAudioPluginAdapter::UpdateMaxBufferSize();
    }

    std::vector<std::string> frame;
    std::function<void()> whileLocked;
};

std::unique_ptr<Adapter> MakeAdapter(const ProbeEffect::Script& script = {},
                                     MPresetStepper* presets = nullptr) {
    auto adapter = std::make_unique<Adapter>(
        MEffectAdapterParts{{}, ProbeEffect::Reset(script), {}, nullptr, presets});
    if (adapter->Initialize()) adapter->InitProcessing();
    return adapter;
}

TEST(MAudioEffectPluginToAudioPluginAdapter, RunsTheFrameOfABlockInItsOrder) {
    const auto adapter = MakeAdapter();
    Channels input(2, kBlock), output(2, kBlock);
    adapter->SetParameter(ProbeEffect::Level, 0.2, false);  // of 10
    input.FillWithNoise(1);
    adapter->Transport().tempo = 87;
    RunPlugin(*adapter, input, output, kBlock);
    EXPECT_THAT(adapter->frame, ElementsAre("update", "effect", "post"));
    EXPECT_THAT(ProbeEffect::Noted().changed, ElementsAre(std::int64_t{ProbeEffect::Level}));
    EXPECT_EQ(ProbeEffect::Noted().transports.at(0).tempo, 87);
    EXPECT_EQ(output[1][5], 2 * input[1][5]);

    adapter->frame.clear();
    adapter->Process(nullptr, nullptr, 0);  // hosts flush parameters that way
    adapter->EnableProcessUpdate(false);
    adapter->Process(input.From(0), output.From(0), 1);
    EXPECT_THAT(adapter->frame, ElementsAre("update", "effect", "post"));
}

TEST(MAudioEffectPluginToAudioPluginAdapter, EndsTheBlockOfAFailingEffectAndNoMore) {
    static int failure = 0;
    failure = 0;
    const auto adapter = MakeAdapter({.inBlock = [] {
        if (failure == 1) throw MException("a text for the user");
        if (failure == 2) throw std::runtime_error("anything");
    }});
    Channels input(2, kBlock, 2), output(2, kBlock);
    const Reports reports;
    for (const int kind : {1, 2}) {
        failure = kind;
        std::fill(output[0].begin(), output[0].end(), 7.0f);
        RunPlugin(*adapter, input, output, kBlock);
        EXPECT_EQ(output[0][3], 7.0f) << "the outputs stay as they were";
        failure = 0;
        RunPlugin(*adapter, input, output, kBlock);
        EXPECT_EQ(output[0], input[0]) << kind;
    }
    EXPECT_THAT(reports.texts,
                ElementsAre("SYSTEM EXCEPTION! MAudioEffectPluginToAudioPluginAdapter::Process"));
}

TEST(MAudioEffectPluginToAudioPluginAdapter, ReportsWhichOperationFailed) {
    const Reports reports;
    EXPECT_FALSE(MakeAdapter({.createsAtMost = 0})->Initialize());
    const auto unusable = MakeAdapter({.failsToCreate = true});
    EXPECT_FALSE(unusable->InitProcessing());

    const auto adapter = MakeAdapter();
    adapter->whileLocked = [] { throw std::runtime_error("no room"); };
    EXPECT_FALSE(adapter->InitProcessing());
    EXPECT_EQ(reports.texts.front(), "Error creating plugin.");
    EXPECT_EQ(reports.texts.back(),
              "SYSTEM EXCEPTION! "
              "MAudioEffectPluginToAudioPluginAdapter::InitProcessing_LockedPart");
}

TEST(MAudioEffectPluginToAudioPluginAdapter, KeepsBlocksAndInitProcessingApart) {
    const auto adapter = MakeAdapter();
    Channels input(2, kBlock, 3), output(2, kBlock);
    std::fill(output[1].begin(), output[1].end(), 7.0f);
    adapter->whileLocked = [&] {
        std::thread([&] {
            RunPlugin(*adapter, input, output, kBlock);
            adapter->PrepareForProcessing(nullptr, 0);
        }).join();
    };
    EXPECT_TRUE(adapter->InitProcessing());
    EXPECT_EQ(output[1], std::vector<float>(kBlock, 0.0f)) << "silent instead of waiting";
    EXPECT_TRUE(adapter->frame.empty());
}

TEST(MAudioEffectPluginToAudioPluginAdapter, GivesUpOnABlockThatDoesNotEnd) {
    // Waiting for an atomic can miss its wake-up on Windows.
    std::promise<void> isInside, mayEnd;
    const auto adapter = MakeAdapter({.inBlock = [&] {
        isInside.set_value();
        mayEnd.get_future().wait();
    }});
    Channels input(2, kBlock), output(2, kBlock);
    const Reports reports;
    std::thread audio([&] { RunPlugin(*adapter, input, output, kBlock); });
    isInside.get_future().wait();
    EXPECT_FALSE(adapter->SetBusLayout({1, 1}));
    EXPECT_EQ(adapter->BusLayout(), (MBusLayout{2, 2}));
    mayEnd.set_value();
    audio.join();
    EXPECT_EQ(reports.texts.front(), "Could not acquire mutex.");
}

TEST(MAudioEffectPluginToAudioPluginAdapter, TakesAnyChannelsThatAHostMayHandOver) {
    for (const MBusLayout layout :
         {MBusLayout{2, 2}, MBusLayout{1, 1}, MBusLayout{1, 2}, MBusLayout{2, 1}, MBusLayout{0, 2},
          MBusLayout{8, 8}, MBusLayout{6, 8}}) {
        const auto adapter = MakeAdapter();
        ASSERT_TRUE(adapter->SetBusLayout(layout));
        EXPECT_EQ(adapter->ChannelMode(), layout.outputs > 2 ? 7 : 0);
        EXPECT_EQ(ProbeEffect::Noted().channels, layout.outputs);
        Channels input(8, kBlock, 4), output(8, kBlock);
        RunPlugin(*adapter, input, output, kBlock);
        const std::vector<float> silence(kBlock, 0.0f);
        for (int c = 0; c < layout.outputs; ++c) {
            const int source = layout.inputs == 1 ? 0 : c;
            EXPECT_EQ(output[c], source < layout.inputs ? input[source] : silence) << c;
        }
        adapter->Process(nullptr, output.From(0), kBlock);
        EXPECT_EQ(output[0], silence);
        adapter->Process(nullptr, nullptr, kBlock);
        EXPECT_EQ(ProbeEffect::Noted().blocks.size(), 3u);
    }
    const auto adapter = MakeAdapter();
    for (const MBusLayout layout : {MBusLayout{2, 0}, MBusLayout{9, 2}, MBusLayout{-1, 2}}) {
        EXPECT_FALSE(adapter->SetBusLayout(layout));
    }
}

TEST(MAudioEffectPluginToAudioPluginAdapter, StepsThroughPresetsOncePerPressAfterABlockWithout) {
    struct Stepper final : MPresetStepper {
        void PostStep(int number) noexcept override { steps.push_back(number); }
        std::vector<int> steps;
    } stepper;
    struct Host final : MAudioPluginAdapter {
        void SendBypassAutomation(bool) override {}
        void GenerateMIDIEvent(int, const std::array<std::uint8_t, 4>&) override {}
        void ReportLatency() override {}
        void ChangeEditorSize(int, int) override {}
        void SendParameterAutomation(std::uint32_t, double x) override { told.push_back(x); }
        std::vector<double> told;
    } host;
    const auto adapter = MakeAdapter({}, &stepper);
    adapter->SetHost(&host);
    const std::uint32_t previous = FindParameter(*adapter, "Preset previous");
    const std::uint32_t next = FindParameter(*adapter, "Preset next");
    const auto write = [&](std::uint32_t identifier, double x) {
        adapter->SetParameter(identifier, x, false);
        EXPECT_EQ(adapter->GetParameter(identifier), 0) << "a push button";
    };
    const auto run = [&](int count) { adapter->Process(nullptr, nullptr, count); };
    MMIDISettings midi;
    midi.controllers[0] = {true, {.number = 7}, {"Preset next", 0}, {}};
    adapter->MIDI().SetSettings(midi);
    const std::pair<const char*, std::function<void()>> starts[] = {
        {"creation", [] {}},
        {"resume", [&] { adapter->InitProcessing(); }},
        {"load", [&] { MPluginState::Load(*adapter, MPluginState::Save(*adapter)); }}};
    for (const auto& [name, start] : starts) {
        start();
        write(next, 1);  // what a host has stored
        run(kBlock);
        write(next, 1);
        run(kBlock);
        run(0);
        write(next, 1);
        run(kBlock);
        EXPECT_THAT(stepper.steps, ElementsAre()) << name;
        start();
        adapter->ProcessMIDIEvent(0, {0xB0, 7, 127, 0});  // presses in the first block itself
        run(kBlock);
        run(kBlock);
        EXPECT_THAT(stepper.steps, ElementsAre()) << name;
        run(kBlock);
        write(next, 0.5);
        write(next, 0.4999);  // shorter than a block
        write(next, 1);       // no second step in the same block
        run(0);
        write(previous, 0.4999);
        run(kBlock);
        write(previous, 1);
        run(kBlock);
        EXPECT_THAT(stepper.steps, ElementsAre(1, -1)) << name;
        stepper.steps.clear();
    }
    for (int i = 0; i < 2; ++i) adapter->ReportMovedParameters();
    EXPECT_THAT(host.told, ElementsAre(0, 0, 0));  // once more by MIDI, which moved it
}

TEST(MAudioEffectPluginToAudioPluginAdapter, RefusesRatesAndSizesThatNoHostHas) {
    const auto adapter = MakeAdapter();
    const Reports reports;
    for (const int rate : {0, -44100, 1 << 30}) EXPECT_FALSE(adapter->SetSampleRate(rate)) << rate;
    EXPECT_FALSE(adapter->SetMaximumBlockSize(0));
    EXPECT_EQ(adapter->SampleRate(), 44100);
    EXPECT_THAT(reports.texts, ElementsAre(HasSubstr("4194304 Hz is the highest")));
    EXPECT_EQ(adapter->MaximumBlockSize(), 1024);
    adapter->SetSampleRate(96000);
    EXPECT_EQ(ProbeEffect::Noted().sampleRate, 44100) << "a running effect keeps its rate";
    adapter->InitProcessing();
    EXPECT_EQ(ProbeEffect::Noted().sampleRate, 96000);
}

}  // namespace
