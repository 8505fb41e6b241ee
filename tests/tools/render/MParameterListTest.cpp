// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/MParameterList.h"
#include "tools/render/MPluginProcessor.h"
#include "tools/render/MRenderFailure.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

class MParameterListTest : public testing::Test {
protected:
    /// The keys of what `name` means, with commas between.
    std::string Found(const char* name) const {
        std::string keys;
        for (const int index : list_.Find(name)) {
            keys += (keys.empty() ? "" : ", ") + list_[index].key;
        }
        return keys;
    }

    MPluginProcessor plugin_{MBandSetup{.count = 2}};
    MParameterList list_{plugin_};
};

TEST_F(MParameterListTest, FindsASettingOfOneBandByEveryNameItGoesBy) {
    const std::pair<const char*, const char*> rows[] = {
        // As hosts list it.
        {"B2 T1 Delay", "B2 T1 Delay"},
        {"Band 2 - Tap 1 - Delay", "B2 T1 Delay"},
        {"band 2 tap 1 feedback", "B2 T1 Feedback"},
        // A plain name is the first tap's.
        {"Band 2 Delay", "B2 T1 Delay"},
        {"b2 left offset", "B2 T1 Left offset"},
        {"Band 1 Min frequency", "B1 Min frequency"},
        // Preset keys go before names: "tap1" is a key, "Tap 1" is not.
        {"Band 1 tap1", "B1 T2 On"},
        {"Band 1 Tap 1", "B1 T1 On"},
        {"Band 2 Tap 2", "B2 T2 On"},
        {"b1 Feedback1", "B1 T2 Feedback"},
        // Behind the panel's name, however the two are put together.
        {"Band 2 Tap 2 Delay", "B2 T2 Delay"},
        {"band 2/tap 2:  delay", "B2 T2 Delay"},
        // Synchronisation by the tap it belongs to.
        {"Band 2 Sync", "B2 T1 Sync On"},
        {"Band 2 Tap 2 Sync", "B2 T2 Sync On"},
        {"Band 2 Tap 2 Length", "B2 T2 Sync Length"},
        {"b2 sync 2 type", "B2 T2 Sync Type"},
    };
    for (const auto& [name, key] : rows) EXPECT_EQ(Found(name), key) << name;
}

TEST_F(MParameterListTest, MeansEveryBandThatSoundsWhenNoneIsNamed) {
    const std::pair<const char*, const char*> rows[] = {
        {"Delay", "B1 T1 Delay, B2 T1 Delay"},
        {"Tap 2 Delay", "B1 T2 Delay, B2 T2 Delay"},
        {"delay1", "B1 T2 Delay, B2 T2 Delay"},
        {"FREEZE", "B1 T1 Freeze, B2 T1 Freeze"},
        {" synclength__2 ", "B1 T2 Sync Length, B2 T2 Sync Length"},
        {"Sync", "B1 T1 Sync On, B2 T1 Sync On"},
        {"Gain", "B1 T1 Gain, B2 T1 Gain"},
    };
    for (const auto& [name, keys] : rows) EXPECT_EQ(Found(name), keys) << name;
}

TEST_F(MParameterListTest, FindsWhatBelongsToNoBandsEffect) {
    const std::pair<const char*, const char*> rows[] = {
        {"wet", "Wet"},
        {"Input gain", "Input gain"},
        {"Band gain 2", "Band gain 2"},
        {"band limit 1", "Band limit 1"},
        {"Band 1 limit", "Band limit 1"},
        {"Bypass", "Bypass"},
    };
    for (const auto& [name, key] : rows) EXPECT_EQ(Found(name), key) << name;
}

TEST_F(MParameterListTest, SaysWhyANameFindsNothing) {
    const std::pair<const char*, const char*> rows[] = {
        {"Band 2 dealy", "nearest are Band 2 Delay"},
        {"MaxFreqency", "nearest are MaxFrequency"},
        {"Bnd gain 2", "nearest are Band gain 2"},
        {"", "--list-parameters"},
        {"Band 3 Delay", "no band 3: --bands is 2"},
        {"B6 T1 Delay", "no band 6"},
        {"Band gain 3", "no band 3"},
        {"Band limit 2", "--bands is 2"},
        {"Band 0 Delay", "unknown"},
        {"Band 9 Delay", "no band 9"},
        {"Band 2 Gain", "may be \"Band gain 2\" or \"Band 2 Tap 1 Gain\""},
    };
    for (const auto& [name, hint] : rows) {
        try {
            list_.Find(name);
            ADD_FAILURE() << name << " was found";
        } catch (const MRenderFailure& failure) {
            EXPECT_EQ(failure.Code(), MExitCode::Usage);
            EXPECT_THAT(failure.Text(), testing::HasSubstr(hint));
        }
    }
}

}  // namespace
