// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/MPluginState.h"
#include "product/MProductFactory.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/LockWaitCounter.h"
#include "tests/support/RunPlugin.h"
#include "tests/support/Sanitized.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cmath>
#include <future>
#include <random>
#include <thread>
#include <vector>

namespace {

constexpr int kBlock = 64;

TEST(ProductThreads, TheBandCountMayChangeInTheMiddleOfABlock) {
    const auto plugin = MProductFactory::Create();
    plugin->InitProcessing();
    std::atomic<bool> isRunning{true};
    std::thread audio([&] {
        Channels input(2, kBlock, 1), output(2, kBlock);
        while (isRunning) {
            RunPlugin(*plugin, input, output, kBlock);
            for (int c = 0; c < 2; ++c) {
                for (const float sample : output[c]) ASSERT_TRUE(std::isfinite(sample));
            }
        }
    });
    for (int change = 0; change < (kIsSanitized ? 10000 : 100000); ++change) {
        plugin->CreateDefaultBands(1 + change % 6);
        if (change % 2000 == 0)
            plugin->SetOptions({.isLinearPhase = change % 4000 == 0, .wet = {}, .dry = {}});
        if (change % 5000 == 0) plugin->InitProcessing();
        if (change % 100 == 0) plugin->SetMute(0, change % 200 == 0);
    }
    isRunning = false;
    audio.join();

    // What came last is what holds.
    plugin->CreateDefaultBands(1);
    plugin->BandParameters().Wet().SetValue(0);
    plugin->InitProcessing();
    Channels input(2, kBlock, 2), output(2, kBlock);
    RunPlugin(*plugin, input, output, kBlock);
    EXPECT_EQ(output[0], input[0]);
}

TEST(ProductThreads, WhatIsLoadedLastHoldsWhateverElseGoesOn) {
    const auto plugin = MProductFactory::Create();
    plugin->InitProcessing();
    const auto stateWith = [](int bands, bool isLinear) {
        const auto other = MProductFactory::Create();
        other->CreateDefaultBands(bands);
        other->SetOptions({.isLinearPhase = isLinear, .wet = {}, .dry = {}});
        other->GenerateRandomSettings();
        MModulationSettings modulation;
        modulation.modulators[0].modulator.isEnabled = true;
        modulation.modulators[0].targets = {other->Modulation().MakeTarget("Band limit 1"),
                                            other->Modulation().MakeTarget("B1 T1 Delay")};
        other->Modulation().SetSettings(modulation);
        return MPluginState::Save(*other);
    };
    const std::vector<std::uint8_t> states[] = {stateWith(2, false), stateWith(6, true),
                                                stateWith(4, false)};
    std::atomic<bool> isRunning{true};
    const auto repeat = [&](auto&& job) {
        return std::thread([&isRunning, job] {
            for (int i = 0; isRunning; ++i) job(i);
        });
    };
    const auto play = [&](int) {
        Channels input(2, kBlock, 1), output(2, kBlock);
        for (int i = 0; i < 100; ++i) RunPlugin(*plugin, input, output, kBlock);
        for (const float sample : output[0]) ASSERT_TRUE(std::isfinite(sample));
    };
    const auto edit = [&](int i) {
        if (i % 4 == 0) plugin->CreateDefaultBands(1 + i % 6);
        if (i % 4 == 1) plugin->GenerateRandomSettings();
        if (i % 4 == 2) plugin->Modulation().SetModulator(i % 3, {});
        if (i % 40 == 3) plugin->InitProcessing();
        plugin->SetEditedBand(0);
        plugin->SetParameter(static_cast<std::uint32_t>(i % 208), 0.5, false);
    };
    std::thread others[] = {repeat(play), repeat(edit),
                            repeat([&](int i) { MPluginState::Load(*plugin, states[i % 3]); }),
                            repeat([&](int) { MPluginState::Save(*plugin); })};
    for (int load = 0; load < (kIsSanitized ? 30 : 300); ++load) {
        MPluginState::Load(*plugin, states[load % 3]);
    }
    isRunning = false;
    for (std::thread& other : others) other.join();
    MPluginState::Load(*plugin, states[1]);
    EXPECT_EQ(MPluginState::Save(*plugin), states[1]);
}

TEST(ProductThreads, AWaitForALockIsCounted) {
    MMutex mutex;
    std::promise<void> isHeld;  // waiting for an atomic can miss its wake-up on Windows
    std::thread holder([&] {
        const MLock lock(mutex);
        isHeld.set_value();
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    });
    isHeld.get_future().wait();
    const LockWaitCounter waits;
    { const MLock lock(mutex); }
    holder.join();
    if (!LockWaitCounter::Counts()) GTEST_SKIP() << "the sanitizers have their own locks";
    EXPECT_EQ(waits.Count(), 1);
}

/// Positions of all parameters at random, but for those whose lines have their own right to memory:
/// synchronised lines grow with the tempo and switched-off taps give theirs back.
class Automation {
public:
    explicit Automation(MAudioPlugin& plugin) : plugin_(plugin) {
        const auto count = static_cast<std::uint32_t>(plugin.ParameterCount());
        for (std::uint32_t identifier = 0; identifier < count; ++identifier) {
            const std::string key = plugin.GetParameterID(identifier);
            if (key.find("Sync") != std::string::npos) continue;
            if (key.find(" On") != std::string::npos) {
                plugin.SetParameter(identifier, 1, false);
            } else {
                identifiers_.push_back(identifier);
            }
        }
    }
    void Run(int writes) {
        for (; writes > 0; --writes) {
            const std::uint32_t which = identifiers_[generator_() % identifiers_.size()];
            plugin_.SetParameter(which, uniform_(generator_), false);
        }
    }

private:
    MAudioPlugin& plugin_;
    std::vector<std::uint32_t> identifiers_;
    std::minstd_rand generator_{1};
    std::uniform_real_distribution<double> uniform_{0, 1};
};

TEST(ProductThreads, BlocksNeitherAllocateNorWaitUnderAutomation) {
    for (const bool isLinear : {false, true}) {
        const auto plugin = MProductFactory::Create();
        plugin->SetOptions({.isLinearPhase = isLinear, .wet = {}, .dry = {}});
        plugin->CreateDefaultBands(6);
        plugin->SetMetering(true);
        Automation automation(*plugin);
        plugin->InitProcessing();
        Channels input(2, 1024, 3), output(2, 1024);
        MXMLTree layout("layout");
        for (const char* count : {"1", "6"}) {  // five bands start anew in the next block
            RunPlugin(*plugin, input, output, 1024);
            layout.Root().SetAttribute("BandCount", count);
            plugin->LoadBandSettings(layout.Root());
        }

        // Another thread uses what threads may use meanwhile.
        std::atomic<bool> isRunning{true};
        std::thread other([&] {
            for (int i = 0; isRunning; ++i) {
                plugin->SetMute(i % 6, i % 12 < 6);
                plugin->OnGlobalChange(true);
                plugin->GetParameterValueName(static_cast<std::uint32_t>(i % 208));
                plugin->Layout();
            }
        });
        const AllocationCounter allocations;
        const LockWaitCounter waits;
        for (int block = 0; block < 500; ++block) {
            automation.Run(3);
            RunPlugin(*plugin, input, output, 256);
        }
        EXPECT_EQ(allocations.Count(), 0) << isLinear;
        EXPECT_EQ(waits.Count(), 0) << isLinear;
        isRunning = false;
        other.join();
    }
}

}  // namespace
