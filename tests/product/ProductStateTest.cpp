// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MException.h"
#include "core/MFormat.h"
#include "plugin/MPluginState.h"
#include "product/MProductFactory.h"
#include "tests/support/ForeignLocale.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

using Bytes = std::vector<std::uint8_t>;

void Randomise(MAudioEffectPluginToAudioPluginMultiBandAdapter& plugin, unsigned seed) {
    std::minstd_rand random(seed);
    const auto isOn = [&] { return random() % 2 == 0; };
    plugin.CreateDefaultBands(1 + static_cast<int>(random() % 6));
    for (int band = 0; band < plugin.Layout().bandCount; ++band) {
        plugin.SetMute(band, isOn());
        plugin.SetBandBypass(band, isOn());
    }
    plugin.SetOptions({isOn(),
                       isOn(),
                       static_cast<MAudioFilters::CrossoverGeneralizedType>(random() % 6),
                       isOn(),
                       isOn(),
                       {isOn(), isOn()},
                       {isOn(), isOn()},
                       isOn(),
                       isOn()});
    MStandardSettings settings;
    settings.maxLFOBlockSize = 16 + static_cast<int>(random() % 999);
    plugin.SetStandardSettings(settings);
    for (int i = 0; i < plugin.ParameterCount(); ++i) {
        plugin.SetParameter(static_cast<std::uint32_t>(i),
                            std::uniform_real_distribution<double>()(random), false);
    }
}

TEST(ProductState, SavedLoadedAndSavedAgainIsTheSameInAnyCountry) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        const auto one = MProductFactory::Create(), other = MProductFactory::Create();
        Randomise(*one, seed);
        const std::string text = MPluginState::SaveText(*one);
        const ForeignLocale foreign;
        const Bytes chunk = MPluginState::Save(*one);
        EXPECT_EQ(MPluginState::Expand(chunk), text);
        Randomise(*other, seed + 1000);  // nothing of it may be left
        MPluginState::Load(*other, chunk);
        EXPECT_EQ(MPluginState::SaveText(*other), text);
        EXPECT_EQ(MPluginState::Save(*other), chunk);
    }
}

TEST(ProductState, AnyKeyOfTheEffectInAStateWithoutBandsMakesItOneBandsEvenAtItsDefault) {
    for (const char* key : {"parameterclassicmode", "parameterserialmode", "mode"}) {
        for (const char* value : {"0", "1"}) {
            const auto plugin = MProductFactory::Create();
            const std::string text = MFormat("<settings {0}='{1}'/>", key, value);
            MPluginState::Load(*plugin, Bytes(text.begin(), text.end()));
            EXPECT_EQ(plugin->Layout().bandCount, 1) << text;
        }
    }
}

TEST(ProductState, WhatIsNoStateChangesNothing) {
    const auto plugin = MProductFactory::Create();
    Randomise(*plugin, 7);
    const std::string before = MPluginState::SaveText(*plugin);
    const Bytes chunk = MPluginState::Save(*plugin);
    const auto bytes = [](const std::string& text) { return Bytes(text.begin(), text.end()); };
    std::string deep, wide = "<settings>";
    for (int i = 0; i < 1000; ++i) deep += "<a>";
    for (int i = 0; i < 300000; ++i) wide += "<a/>";
    const std::string bomb(std::size_t{17} << 20, ' ');
    const std::pair<Bytes, const char*> rows[] = {
        {{}, "The XML does not contain any elements."},
        {bytes("  no state  "), "The XML does not contain any elements."},
        {MPluginState::Compress(""), "The XML does not contain any elements."},
        {Bytes(chunk.begin(), chunk.end() - 1), "The compressed data ends too early."},
        {MPluginState::Compress(bomb), "The compressed data is too large."},
        {bytes(wide + "</settings>"), "The XML is too large."},
        {bytes(deep + std::string(before)), "Start-end tags mismatch"},
    };
    for (const auto& row : rows) {
        EXPECT_THAT([&] { MPluginState::Load(*plugin, row.first); },
                    testing::ThrowsMessage<MException>(testing::StartsWith(row.second)));
        EXPECT_EQ(MPluginState::SaveText(*plugin), before);
    }
}

TEST(ProductState, TellsOfXmlWithoutSettingsAndTakesSettingsByAnyName) {
    const std::pair<const char*, bool> rows[] = {
        {"<html lang='en'><body/></html>", false},
        {"<preset name='a'><settings DryWet='0.5'/></preset>", false},
        {"<settings/>", true},
        {"<state DryWet='0.5'/>", true},
        {"<state parameterclassicmode='1'/>", true},
        {"<state><band0/></state>", true}};
    for (const auto& [given, isState] : rows) {
        const auto plugin = MProductFactory::Create();
        Randomise(*plugin, 7);
        const std::string text = given;
        try {
            MPluginState::Load(*plugin, Bytes(text.begin(), text.end()));
            EXPECT_TRUE(isState) << text;
        } catch (const MException& exception) {
            EXPECT_FALSE(isState) << exception.Text();
        }
        EXPECT_EQ(plugin->BandParameters().InputGain().Value(), 0) << "at its default: " << text;
    }
}

}  // namespace
