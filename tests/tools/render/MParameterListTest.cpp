// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/tools/render/Refusals.h"
#include "tools/render/MParameterList.h"
#include "tools/render/MPluginProcessor.h"

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

TEST_F(MParameterListTest, FindsSettingsByEveryNameTheyGoByAndOfEveryBandThatSounds) {
    const std::pair<const char*, const char*> rows[] = {
        // As hosts list it; a plain name is the first tap's.
        {"B2 T1 Delay", "B2 T1 Delay"},
        {"band 2 tap 1 feedback", "B2 T1 Feedback"},
        {"b2 left offset", "B2 T1 Left offset"},
        {"Band 1 Min frequency", "B1 Min frequency"},
        // Preset keys go before names: "tap1" is a key, "Tap 1" is not.
        {"Band 1 tap1", "B1 T2 On"},
        {"Band 1 Tap 1", "B1 T1 On"},
        {"b1 Feedback1", "B1 T2 Feedback"},
        // Behind the panel's name, however the two are put together.
        {"band 2/tap 2:  delay", "B2 T2 Delay"},
        // Synchronisation by the tap it belongs to.
        {"Band 2 Sync", "B2 T1 Sync On"},
        {"Band 2 Tap 2 Sync", "B2 T2 Sync On"},
        {"Band 2 Tap 2 Length", "B2 T2 Sync Length"},
        {"b2 sync 2 type", "B2 T2 Sync Type"},
        // No band is every band.
        {"Delay", "B1 T1 Delay, B2 T1 Delay"},
        {"Tap 2 Delay", "B1 T2 Delay, B2 T2 Delay"},
        {" synclength__2 ", "B1 T2 Sync Length, B2 T2 Sync Length"},
        {"Gain", "B1 T1 Gain, B2 T1 Gain"},
        // What belongs to no band's effect.
        {"wet", "Wet"},
        {"Input gain", "Input gain"},
        {"Band gain 2", "Band gain 2"},
        {"Band 1 limit", "Band limit 1"},
    };
    for (const auto& [name, key] : rows) EXPECT_EQ(Found(name), key) << name;
}

TEST_F(MParameterListTest, SaysWhyANameFindsNothing) {
    const std::pair<const char*, const char*> rows[] = {
        {"Band 2 dealy", "nearest are Band 2 Delay"},
        {"MaxFreqency", "nearest are MaxFrequency"},
        {"", "--list-parameters"},
        {"Band 3 Delay", "no band 3: --bands is 2"},
        {"Band gain 3", "no band 3"},
        {"Band limit 2", "--bands is 2"},
        {"Band 0 Delay", "unknown"},
        {"Band 9 Delay", "no band 9"},
        {"Band 2 Gain", "may be \"Band gain 2\" or \"Band 2 Tap 1 Gain\""},
    };
    ExpectRefusals(rows, [&](const char* name) { list_.Find(name); });
}

}  // namespace
