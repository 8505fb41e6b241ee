// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/MPluginState.h"
#include "product/MProductFactory.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/Reports.h"
#include "tests/support/RunPlugin.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numbers>

namespace {

using Product = std::unique_ptr<MAudioEffectPluginToAudioPluginMultiBandAdapter>;
using Slope = MAudioFilters::CrossoverGeneralizedType;

constexpr int kRate = 48000;
constexpr int kLength = 1 << 15;

Product Make(int bands, bool isLinear = false, Slope slope = Slope::Slope24) {
    Product plugin = MProductFactory::Create();
    plugin->CreateDefaultBands(bands);
    plugin->SetOptions({.isLinearPhase = isLinear, .slope = slope, .wet = {}, .dry = {}});
    plugin->SetSampleRate(kRate);
    plugin->InitProcessing();
    return plugin;
}

void SetDry(MAudioEffectPluginToAudioPluginMultiBandAdapter& plugin) {
    plugin.BandParameters().Wet().SetValue(0);
    plugin.BandParameters().Dry().SetValue(1);
    plugin.InitProcessing();  // no ramp from the wet setting
}

void Set(MAudioPlugin& plugin, const char* key, const char* text) {
    const std::uint32_t identifier = FindParameter(plugin, key);
    ASSERT_LT(identifier, static_cast<std::uint32_t>(plugin.ParameterCount())) << key;
    plugin.SetParameter(identifier, plugin.ParseParameterValueName(identifier, text), false);
}

TEST(MProduct, OneDryBandIsTheInputBitForBit) {
    for (const int block : {1, 64, 999, 4096}) {
        const Product plugin = Make(1);
        SetDry(*plugin);
        Channels input(2, kLength, 1), output(2, kLength);
        RunPlugin(*plugin, input, output, block);
        EXPECT_EQ(output[0], input[0]);
        EXPECT_EQ(output[1], input[1]);
    }
}

TEST(MProduct, BypassEqualsAFullyDrySettingWithTheAnalogCrossover) {
    for (const Slope slope : {Slope::Slope24, Slope::Slope48, Slope::Slope120}) {
        for (const int bands : {1, 2, 6}) {
            const Product dry = Make(bands, false, slope), bypassed = Make(bands, false, slope);
            SetDry(*dry);
            bypassed->Bypass().SetValue(1);
            bypassed->InitProcessing();
            Channels input(2, kLength, 2, 0.25f), one(2, kLength), other(2, kLength);
            RunPlugin(*dry, input, one, 256);
            RunPlugin(*bypassed, input, other, 100);
            EXPECT_LT(DifferenceDb(one, other, 0), -120) << bands << " bands";
        }
    }
}

TEST(MProduct, BypassWithTheLinearPhaseCrossoverIsTheInputAtTheReportedLatency) {
    for (const int bands : {1, 3}) {
        const Product plugin = Make(bands, true);
        plugin->Bypass().SetValue(1);
        plugin->InitProcessing();
        EXPECT_EQ(plugin->GetLatency(), bands == 1 ? 0 : 3072);
        Channels input(2, kLength, 3), output(2, kLength);
        RunPlugin(*plugin, input, output, 441);
        EXPECT_EQ(DifferenceDb(input, output, 0, plugin->GetLatency()), -400);
    }
}

// The echoes go on behind the bypass, so that coming back sounds as if one had never been away.
TEST(MProduct, ComesBackFromBypassAsIfItHadNeverBeenAway) {
    const Product plugin = Make(3), straight = Make(3);
    Channels input(2, kLength), output(2, kLength), expected(2, kLength);
    for (int i = 0; i < kLength; ++i) {
        input[0][i] = input[1][i] = static_cast<float>(0.5 * std::sin(0.05 * i));
    }
    RunPlugin(*straight, input, expected, 64);
    for (int start = 0; start < kLength; start += 64) {
        plugin->Bypass().SetValue(start >= 12000 && start < 18000 ? 1 : 0);
        plugin->Process(input.From(start), output.From(start), 64);
    }
    for (int i = 1; i < kLength; ++i) {
        ASSERT_LT(std::fabs(output[0][i] - output[0][i - 1]), 0.06) << "a click at " << i;
        const bool isBack = i < 12000 || i >= 18000 + 64 + 480;
        if (isBack) {
            ASSERT_EQ(output[0][i], expected[0][i]) << i;
        }
    }
}

TEST(MProduct, HostWritesReachTheNextBlock) {
    const Product plugin = Make(1);
    Set(*plugin, "Dry", "0%");
    Set(*plugin, "B1 T1 Feedback", "silence");
    Channels input(2, 4096), silence(2, 4096), output(2, 4096);
    input[0][0] = 1;
    const auto peak = [&](const char* delay) {
        Set(*plugin, "B1 T1 Delay", delay);
        RunPlugin(*plugin, silence, output, 4096);
        RunPlugin(*plugin, input, output, 4096);
        return std::max_element(output[0].begin(), output[0].end()) - output[0].begin();
    };
    const auto first = peak("10 ms");
    EXPECT_EQ(peak("20 ms") - first, 480);
}

// Where the limit lies shows in how much of a sine gets into the band that is not muted.
TEST(MProduct, BandLimitsFollowTheirAutomation) {
    for (const bool isLinear : {false, true}) {
        const Product plugin = Make(2, isLinear);
        SetDry(*plugin);
        plugin->SetMute(1, true);
        Channels input(2, 16384), output(2, 16384);
        for (int i = 0; i < 16384; ++i) {
            input[0][i] = static_cast<float>(std::sin(2 * std::numbers::pi * 1000 * i / kRate));
        }
        const auto peak = [&](const char* limit) {
            Set(*plugin, "Band limit 1", limit);
            RunPlugin(*plugin, input, output, 64);
            return *std::max_element(output[0].end() - 4096, output[0].end());
        };
        EXPECT_GT(peak("10000 Hz"), 0.98f);
        EXPECT_LT(peak("50 Hz"), 0.001f);
        EXPECT_GT(peak("10000 Hz"), 0.98f);
    }
}

TEST(MProduct, TakesOutputsThatAreItsInputs) {
    for (const int bands : {1, 3}) {
        for (const bool isBypassed : {false, true}) {
            const Product plugin = Make(bands), inPlace = Make(bands), swapped = Make(bands);
            Channels input(2, 4096, 5), output(2, 4096), same(2, 4096, 5), crossed(2, 4096, 5);
            for (const Product* each : {&plugin, &inPlace, &swapped}) {
                (*each)->Bypass().SetValue(isBypassed ? 1 : 0);  // fades while it runs
            }
            RunPlugin(*plugin, input, output, 512);
            RunPlugin(*inPlace, same, same, 512);
            for (int start = 0; start < 4096; start += 512) {
                float* const in[] = {crossed[0].data() + start, crossed[1].data() + start};
                float* const out[] = {in[1], in[0]};
                swapped->Process(in, out, 512);
            }
            EXPECT_EQ(same[0], output[0]);
            EXPECT_EQ(crossed[1], output[0]);
            EXPECT_EQ(crossed[0], output[1]);
        }
    }
}

TEST(MProduct, FollowsAnotherRateAndOtherChannelsFromTheNextStartOn) {
    for (const bool isLinear : {false, true}) {
        const Product plugin = Make(5, isLinear);
        Channels input(8, 8192, 6), output(8, 8192), expected(8, 8192);
        RunPlugin(*plugin, input, output, 1024);
        plugin->SetSampleRate(96000);  // and blocks go on until the host starts anew
        RunPlugin(*plugin, input, output, 1024);
        plugin->CreateDefaultBands(2);
        ASSERT_TRUE(plugin->SetBusLayout({8, 8}));
        plugin->CreateDefaultBands(6);
        RunPlugin(*plugin, input, output, 1024);

        const Product fresh = Make(6, isLinear);
        fresh->SetSampleRate(96000);
        fresh->SetBusLayout({8, 8});
        RunPlugin(*fresh, input, expected, 1024);
        EXPECT_LT(DifferenceDb(expected, output, 0), -120) << isLinear;
        ASSERT_TRUE(plugin->SetBusLayout({1, 1}));
        RunPlugin(*plugin, input, output, 1024);
    }
}

TEST(MProduct, BandsThatComeBackBringNoOldEchoes) {
    const Product plugin = Make(3);
    Channels noise(2, 4096, 7), silence(2, 96000), output(2, 96000);
    RunPlugin(*plugin, noise, output, 512);
    MXMLTree layout("layout");
    for (const char* count : {"1", "3"}) {
        layout.Root().SetAttribute("BandCount", count);
        plugin->LoadBandSettings(layout.Root());
        RunPlugin(*plugin, silence, output, 512);  // the only band that runs fades out
    }
    EXPECT_LT(DifferenceDb(silence, output, 0), -60);
}

TEST(MProduct, MakesAllOfNewBandsOrNothingHoweverMuchMemoryThereIs) {
    const Reports reports;
    const auto make = [] {
        Product plugin = Make(2, true);
        Set(*plugin, "Band limit 1", "500 Hz");
        Set(*plugin, "B1 T1 Feedback", "-3 dB");
        return plugin;
    };
    const Product unchanged = make(), changed = make();
    changed->CreateDefaultBands(6);
    bool isReached = true;
    for (int allowed = 0; isReached && allowed < 1000; ++allowed) {
        const Product plugin = make();
        {
            const AllocationLimit limit(allowed);
            try {
                plugin->CreateDefaultBands(6);
            } catch (const std::exception&) {
            }
            isReached = limit.IsReached();
        }
        const Product& expected = plugin->Layout().bandCount == 6 ? changed : unchanged;
        ASSERT_EQ(MPluginState::SaveText(*plugin), MPluginState::SaveText(*expected)) << allowed;
    }
    EXPECT_FALSE(isReached);
}

TEST(MProduct, MakesTheMemoryOfTapsOnTheThreadThatSwitchesThemOnByAState) {
    const Product song = Make(3), plugin = Make(3);
    for (const char* key : {"B1 T2 On", "B3 T2 On", "B3 T2 Sync On"}) Set(*song, key, "On");
    Set(*song, "B3 T2 Sync Length", "4");
    plugin->InitProcessing();
    Channels input(2, 512, 1), output(2, 512);
    plugin->Process(input.From(0), output.From(0), 512);
    MPluginState::Load(*plugin, MPluginState::Save(*song));
    // Off and on again, too: a tap keeps what it has had.
    int count = 0;
    for (const char* state : {"On", "Off", "On"}) {
        Set(*plugin, "B1 T2 On", state);
        const AllocationCounter allocations;
        for (int block = 0; block < 20; ++block)
            plugin->Process(input.From(0), output.From(0), 512);
        count += allocations.Count();
    }
    EXPECT_EQ(count, 0);
}

TEST(MProduct, MakesRoomForTheAnnouncedBlockAndRunsLongerOnesInPieces) {
    constexpr int kLongest = MAudioPlugin::kLongestBlock;
    const auto make = [](int announced) {
        Product plugin = Make(3);
        for (const char* key : {"B1 T1 Freeze", "B2 T1 Freeze"}) Set(*plugin, key, "On");
        MMIDISettings midi;
        midi.controllers[0] = {true, {.number = 7}, {"Dry", 0}, {}};
        plugin->MIDI().SetSettings(midi);
        plugin->SetMaximumBlockSize(announced);
        plugin->InitProcessing();
        return plugin;
    };
    Channels input(2, kLongest + 5000, 1), one(2, kLongest + 5000), other(2, kLongest + 5000);
    const Product usual = make(4096), whole = make(1 << 30), parts = make(1 << 30);
    {
        const AllocationCounter allocations;
        usual->Process(input.From(0), one.From(0), 4096);
        whole->ProcessMIDIEvent(kLongest + 100, {0xB0, 7, 0, 0});
        whole->Process(input.From(0), one.From(0), input.Length());
        EXPECT_EQ(allocations.Count(), 0);
    }
    parts->Process(input.From(0), other.From(0), kLongest);
    parts->ProcessMIDIEvent(100, {0xB0, 7, 0, 0});
    parts->Process(input.From(kLongest), other.From(kLongest), 5000);
    EXPECT_EQ(DifferenceDb(one, other, 0), -400);
}

}  // namespace
