// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/delay/MDelayParameters.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

// The keys of presets and the places that hosts and effects know them by.
TEST(MDelayParameters, KeepTheirOrderTheirKeysAndWhichOfThemNeedAnUpdate) {
    MDelayParameters parameters;
    std::vector<std::string> keys, atOnce;
    for (int i = 0; i < MDelayIndex::kCount; ++i) {
        const ParameterDefinition& record = parameters[i];
        keys.push_back(record.key);
        const bool waits = (record.Flags() & ParameterDefinition::kUpdateRequired) != 0;
        if (!waits) atOnce.push_back(record.key);
        EXPECT_EQ(record.help.starts_with("<name>"), record.name != "Freeze") << record.key;
    }
    EXPECT_THAT(
        keys, testing::ElementsAre("DelayMode", "FilterMode", "MinFrequency", "MaxFrequency",
                                   "Resonance", "Saturation", "tap", "feedback", "gain", "panorama",
                                   "delay", "LeftOffset", "RightOffset", "mode", "Freeze", "tap1",
                                   "feedback1", "gain1", "panorama1", "delay1", "LeftOffset1",
                                   "RightOffset1", "mode1", "Freeze1", "sync1", "synclength__1",
                                   "synctype1", "sync2", "synclength__2", "synctype2"));
    EXPECT_THAT(atOnce, testing::ElementsAre("DelayMode", "feedback", "gain", "panorama", "mode",
                                             "feedback1", "gain1", "panorama1", "mode1"));
}

TEST(MDelayParameters, RampFromWhereTheLastBlockEndedAndNeverFromOutsideTheRange) {
    MDelayParameters parameters;
    parameters[10].SetRedirect(true);
    parameters[10].SetSecondary(7);
    EXPECT_EQ(parameters.ReadForBlock().taps[0].delay, 0.5) << "modulated, within the range";
    parameters[7].SetValue(0.9);
    const MLinearRamp louder = parameters.ReadForBlock().taps[0].feedback.Squared(10);
    EXPECT_EQ(louder.start, 0.4 * 0.4);
    EXPECT_DOUBLE_EQ(louder.start + 10 * louder.step, 0.9 * 0.9);
    parameters.KeepRampEnds(parameters.ReadForBlock());
    EXPECT_EQ(parameters.ReadForBlock().taps[0].feedback.Squared(10).step, 0);
    for (const double wild : {1e300, -1e300, std::numeric_limits<double>::quiet_NaN()}) {
        parameters[7].previous = wild;
        const MLinearRamp ramp = parameters.ReadForBlock().taps[0].feedback.Squared(10);
        EXPECT_GE(ramp.start, 0) << wild;
        EXPECT_LE(ramp.start, 1) << wild;
    }
}
