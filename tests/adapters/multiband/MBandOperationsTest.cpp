// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/multiband/MBandOperations.h"
#include "core/MException.h"
#include "tests/support/ProbeEffect.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;

namespace {

struct User final : MConfirmation {
    bool Ask(const std::string& question) override {
        questions.push_back(question);
        return agrees;
    }
    std::vector<std::string> questions;
    bool agrees = false;
};

TEST(MBandOperations, AskBeforeTheyThrowSettingsAway) {
    MAudioEffectPluginToAudioPluginMultiBandAdapter plugin{
        {{}, ProbeEffect::Reset(), {}, nullptr, nullptr}};
    ASSERT_TRUE(plugin.Initialize());
    MBandParameters& parameters = plugin.BandParameters();
    User user;
    MBandOperations operations(plugin, user);
    for (const int band : {1, 5}) {
        parameters.Gain(band).SetValue(12);
        parameters.Panorama(band).SetValue(1);
    }
    plugin.SetMute(0, true);

    operations.ResetBand(1);
    EXPECT_EQ(parameters.Gain(1).Value(), 0);
    EXPECT_EQ(parameters.Panorama(1).Value(), 1);
    plugin.SetOptions({.wet = {}, .dry = {}, .editsPanorama = true});
    operations.ResetBand(1);
    EXPECT_EQ(parameters.Panorama(1).Value(), 0);
    EXPECT_THROW(operations.ResetBand(3), MException);
    EXPECT_TRUE(user.questions.empty());

    const auto runAll = [&] {
        const bool done[] = {operations.ResetBandSettings(), operations.ResetGains(),
                             operations.ResetPanorama(), operations.CreateDefaultBands(5)};
        return std::count(std::begin(done), std::end(done), true);
    };
    EXPECT_EQ(runAll(), 0);
    EXPECT_THAT(user.questions, ElementsAre("Are you sure you want to reset the band settings?",
                                            "Are you sure you want to reset gain of all bands?",
                                            "Are you sure you want to reset panorama of all bands?",
                                            "Are you sure you want to clear current band settings "
                                            "and create 5 default bands?"));
    EXPECT_EQ(parameters.Gain(5).Value(), 12);
    EXPECT_TRUE(plugin.Layout().mute[0]);

    plugin.Settings().Set(MSettingKeys::kShowConfirmations, 0);
    EXPECT_EQ(runAll(), 4);
    EXPECT_EQ(user.questions.size(), 4u);
    EXPECT_EQ(parameters.Gain(5).Value(), 0);
    EXPECT_EQ(parameters.Panorama(5).Value(), 0);
    EXPECT_EQ(plugin.Layout().bandCount, 5);
    EXPECT_FALSE(plugin.Layout().mute[0]);
    EXPECT_THROW(operations.CreateDefaultBands(0), MException);
}

}  // namespace
