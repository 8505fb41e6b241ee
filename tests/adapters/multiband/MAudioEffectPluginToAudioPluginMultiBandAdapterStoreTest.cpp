// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MAudioEffectPluginToAudioPluginMultiBandAdapter.h"
#include "plugin/MPluginState.h"
#include "tests/support/ProbeEffect.h"
#include "tests/support/Reports.h"
#include "tests/support/RunPlugin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <string>
#include <thread>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr int kBlock = 64;

class MultiBandStoreTest : public testing::Test {
protected:
    MultiBandStoreTest() : plugin_({{}, ProbeEffect::Reset(), {}, &settings_, nullptr}) {
        plugin_.Initialize();
        plugin_.InitProcessing();
    }
    void Load(const std::string& text) {
        MPluginState::Load(
            plugin_, std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
    }
    void RunBlock() { RunPlugin(plugin_, input_, output_, kBlock); }
    double Level(int band) { return plugin_.Effect(band).Records()[ProbeEffect::Level].Value(); }

    MMemorySettings settings_;
    MAudioEffectPluginToAudioPluginMultiBandAdapter plugin_;
    Channels input_{2, kBlock}, output_{2, kBlock};
};

TEST_F(MultiBandStoreTest, BlocksAndSavesHaveAllOfAStateOrNothingOfIt) {
    // Held probes give 0.25 each, whatever comes in. Any mixture of the two states gives neither
    // of their sums: 0 or 0.75.
    const std::string one =
        "<settings BandCount='1' DryWet20='1'><band0 hold='1'/><band1 hold='1'/><band2 hold='1'/>"
        "<band3 hold='1'/></settings>";
    const std::string four =
        "<settings BandCount='4' DryWet20='1' Mute3='1'><band0 hold='0'/><band1 hold='1'/>"
        "<band2 hold='1'/><band3 hold='1'/></settings>";
    for (const std::string& state : {four, one}) Load(state);
    std::atomic<bool> isRunning{true};
    std::atomic<int> heard[2]{}, torn{0};
    std::thread audio([&] {
        while (isRunning) {
            RunBlock();
            const float first = output_[0][0];
            const auto differs = [&](float sample) { return sample != first; };
            const bool isWhole = std::none_of(output_[1].begin(), output_[1].end(), differs);
            if (isWhole && first == 0.25f) {
                ++heard[0];
            } else if (isWhole && first == 0.5f) {
                ++heard[1];
            } else {
                ++torn;
            }
        }
    });
    std::thread saving([&] {
        while (isRunning) {
            const MXMLTree saved = MXMLTree::Parse(MPluginState::SaveText(plugin_));
            const bool isOne = saved.Root().Attribute("BandCount") == "1";
            if ((saved.Root().Child("band0").Attribute("hold") == "1") != isOne) ++torn;
        }
    });
    while (heard[0] == 0) std::this_thread::yield();
    const auto isHeardEnough = [&] { return heard[0] > 50 && heard[1] > 50; };
    for (int load = 0; load < 200 || (load < 100000 && !isHeardEnough()); ++load) {
        Load(load % 2 == 0 ? four : one);
        EXPECT_EQ(plugin_.Effect(0).Records()[ProbeEffect::Hold].Value(), load % 2);
    }
    isRunning = false;
    audio.join();
    saving.join();
    EXPECT_EQ(torn, 0);
    EXPECT_TRUE(isHeardEnough());
}

TEST_F(MultiBandStoreTest, WhatIsChangedAfterALoadHasBegunIsNotUndoneByIt) {
    // A block holds the load up: its values have to wait until the block has ended.
    std::promise<void> isInBlock, mayEnd;
    ProbeEffect::Script script;
    script.inBlock = [&, isFirst = true]() mutable {
        if (!isFirst) return;
        isFirst = false;
        isInBlock.set_value();
        mayEnd.get_future().wait();
    };
    plugin_.CreateDefaultBands(1);
    ProbeEffect::Reset(script);
    std::thread audio([&] { RunBlock(); });
    isInBlock.get_future().wait();
    std::thread loading(
        [&] { Load("<settings BandCount='2' Gain0='6' Pan0='1'><band0 level='9'/></settings>"); });
    while (plugin_.Layout().bandCount != 2) std::this_thread::yield();
    std::thread changing([&] {
        plugin_.ChangeBandParameters([](MBandParameters& all) { all.Gain(0).SetValue(-6); });
        plugin_.GenerateRandomSettings();
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));  // a change that did not wait is in
    mayEnd.set_value();
    for (std::thread* thread : {&audio, &loading, &changing}) thread->join();
    RunBlock();
    EXPECT_EQ(plugin_.BandParameters().Gain(0).Value(), -6);
    EXPECT_EQ(plugin_.BandParameters().Panorama(0).Value(), 1);
    EXPECT_NE(Level(0), 9);
}

TEST_F(MultiBandStoreTest, LoadsAtOnceWhileNoBlocksCome) {
    std::thread audio([&] { RunBlock(); });
    audio.join();
    const auto start = std::chrono::steady_clock::now();
    for (int load = 0; load < 100; ++load) {
        Load("<settings><band0 level='" + std::to_string(load % 10) + "'/></settings>");
        ASSERT_EQ(Level(0), load % 10);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(500));
}

TEST_F(MultiBandStoreTest, SavesWhatWasWrittenToAModulatedParameterSinceTheLastBlock) {
    MModulationSettings settings;
    settings.modulators[0].modulator.isEnabled = true;
    settings.modulators[0].targets = {plugin_.Modulation().MakeTarget("Band panorama 1")};
    plugin_.Modulation().SetSettings(settings);
    const auto saved = [&] {
        const MXMLTree tree = MXMLTree::Parse(MPluginState::SaveText(plugin_));
        return tree.Root().Attribute("Pan0");
    };
    RunBlock();
    ASSERT_TRUE(plugin_.BandParameters().Panorama(0).IsRedirected());
    EXPECT_EQ(saved(), "0") << "the knob, wherever the modulator has it";
    const std::uint32_t panorama = FindParameter(plugin_, "Band panorama 1");
    plugin_.SetParameter(panorama, 0.75, false);
    EXPECT_EQ(saved(), "0.5");
    RunBlock();
    EXPECT_EQ(saved(), "0.5");
}

TEST_F(MultiBandStoreTest, ABandThatFailsStopsNoOther) {
    const Reports reports;
    Load(
        "<settings><band0 level='2'/><band1 delay='0.5' level='much'/><band2 "
        "level='99'/></settings>");
    EXPECT_EQ(Level(0), 2);
    EXPECT_EQ(Level(1), 1) << "as if nothing of it had been read";
    EXPECT_EQ(plugin_.Effect(1).Records()[ProbeEffect::Delay].Value(), 0);
    EXPECT_EQ(Level(2), 10) << "held within its range";
    EXPECT_THAT(reports.texts,
                ElementsAre(HasSubstr("MAudioEffectPluginToAudioPluginMultiBandAdapter::"
                                      "StoreSettings plugins")));
}

TEST_F(MultiBandStoreTest, KeepsItsBandsWhenAStateHasNoSuchCount) {
    plugin_.CreateDefaultBands(5);
    for (const char* count : {"0", "7", "-3"}) {
        const Reports reports;
        Load(std::string("<settings BandCount='") + count +
             "' Mute4='1' DryWet='0.5' Limit3='9'><band0 level='3'/></settings>");
        EXPECT_THAT(reports.texts, ElementsAre("Invalid number of bands."));
        EXPECT_EQ(plugin_.Layout().bandCount, 5);
        EXPECT_TRUE(plugin_.Layout().mute[4]);
        EXPECT_EQ(plugin_.BandParameters().Wet().Value(), 0.5);
        EXPECT_NEAR(plugin_.BandParameters().Limit(3).Value(), 4.30103, 1e-5);
        EXPECT_EQ(Level(0), 3);
    }
}

TEST_F(MultiBandStoreTest, TakesAStateWithoutBandsForThatOfOneBand) {
    Load("<settings level='4' Bypass='1' EnableSurroundProcessing='1'/>");
    EXPECT_TRUE(plugin_.IsLegacyState());
    EXPECT_EQ(plugin_.Layout().bandCount, 1);
    EXPECT_EQ(Level(0), 4);
    EXPECT_EQ(Level(1), 1);
    EXPECT_TRUE(plugin_.Bypass().IsOn());
    EXPECT_EQ(plugin_.StandardSettings().channelMode, 0) << "of a stereo plug-in";
    EXPECT_EQ(plugin_.StandardSettings().version, 328448);
    settings_.Set(MSettingKeys::kDefaultBandCount, 5);
    Load("<settings/>");
    EXPECT_EQ(plugin_.Layout().bandCount, 3) << "nothing at all is all defaults, on any machine";
    EXPECT_EQ(Level(0), 1);
}

TEST_F(MultiBandStoreTest, KeepsWhichSurroundChannelsAreProcessed) {
    const std::pair<const char*, const char*> rows[] = {
        {"ChannelMode='7' SurroundChannelsEnable='101'", "10100000"},
        {"ChannelMode='7' SurroundChannelsEnable='x0110111000'", "10110111"},
        {"ChannelMode='7'", "11111111"},
        {"EnableSurroundProcessing='1'", "11111111"}};
    plugin_.SetBusLayout({6, 6});
    for (const auto& [keys, expected] : rows) {
        Load(std::string("<settings ") + keys + "><band0/></settings>");
        const std::string text = MPluginState::SaveText(plugin_);
        EXPECT_THAT(text, HasSubstr("ChannelMode=\"7\"")) << keys;
        EXPECT_THAT(text, HasSubstr(std::string("Enable=\"") + expected)) << keys;
    }
}

}  // namespace
