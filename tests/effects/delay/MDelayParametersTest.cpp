// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/delay/MDelayParameters.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

constexpr auto kFloat = ParameterKind::Float;
constexpr auto kEnum = ParameterKind::Enum;
constexpr auto kBool = ParameterKind::Bool;
constexpr auto kGroup = ParameterKind::Group;

const double kLow = std::log10(20.0), kHigh = std::log10(20000.0);

/// One record as users, hosts and presets know it.
struct Row {
    const char* key;
    const char* name;
    ParameterKind kind;
    double minimum, maximum, defaultValue;
    bool updates;
    const char* text;   // of the default
    const char* typed;  // means `meaning`
    double meaning;
};

const Row kGlobalRows[] = {
    {"DelayMode", "Delay mode", kEnum, 0, 1, 0, false, "Parallel", "serial", 1},
    {"FilterMode", "Filter mode", kEnum, 0, 1, 0, true, "Input filter", "Feedback filter", 1},
    {"MinFrequency", "Min frequency", kFloat, kLow, kHigh, kLow, true, "20.0 Hz", "1", kLow},
    {"MaxFrequency", "Max frequency", kFloat, kLow, kHigh, kHigh, true, "20.0 kHz", "1000 Hz", 3},
    {"Resonance", "Resonance", kFloat, 0, 1, 0.5, true, "50.0%", "25", 0.25},
    {"Saturation", "Saturation", kFloat, 0, 1, 0, true, "0.00%", "100.0%", 1},
};

const Row kTapRows[] = {
    // of the first tap
    {"tap", "Tap 1", kGroup, 0, 1, 1, true, "On", "off", 0},
    {"feedback", "Feedback", kFloat, 0, 1, 0.4, false, "-15.9 dB", "-40", 0.1},
    {"gain", "Gain", kFloat, 0, 1, 0.7071067811865, false, "-6.02 dB", "0", 1},
    {"panorama", "Panorama", kFloat, -1, 1, 0, false, "center", "-50", -0.5},
    {"delay", "Delay", kFloat, 0, 0.5, 0.1, true, "100 ms", "250", 0.25},
    {"LeftOffset", "Left offset", kFloat, -0.1, 0.1, 0, true, "0 ms", "-12.5", -0.0125},
    {"RightOffset", "Right offset", kFloat, -0.1, 0.1, 0, true, "0 ms", "50 ms", 0.05},
    {"mode", "Mode", kEnum, 0, 2, 1, false, "Classic", "PingPong", 2},
    {"Freeze", "Freeze", kBool, 0, 1, 0, true, "Off", "On", 1},
};

const Row kSyncRows[] = {
    // without the number of the tap
    {"sync", "Synchronization ", kGroup, 0, 1, 0, true, "Off", "on", 1},
    {"synclength__", "Length", kEnum, 0, 14, 9, true, "1 / 8", "1 / 4", 8},
    {"synctype", "Type", kEnum, 0, 3, 0, true, "Straight", "Tuplets", 3},
};

void ExpectRecord(const ParameterDefinition& record, const Row& row, const std::string& key,
                  const std::string& name, double defaultValue) {
    EXPECT_EQ(record.key, key);
    EXPECT_EQ(record.name, name) << key;
    EXPECT_EQ(record.kind, row.kind) << key;
    EXPECT_EQ(record.minimum, row.minimum) << key;
    EXPECT_EQ(record.maximum, row.maximum) << key;
    EXPECT_EQ(record.Value(), defaultValue) << key;
    EXPECT_EQ((record.Flags() & ParameterDefinition::kUpdateRequired) != 0, row.updates) << key;
    EXPECT_TRUE(record.IsEnabled()) << key;
    const std::string text = defaultValue == row.defaultValue ? row.text : "Off";
    EXPECT_EQ(record.DisplayText(defaultValue), text) << key;
    const std::optional<double> typed = record.ParseDisplayText(row.typed);
    ASSERT_TRUE(typed) << key;
    EXPECT_NEAR(*typed, row.meaning, 1e-12) << key;
    EXPECT_FALSE(record.ParseDisplayText("nonsense")) << key;
    EXPECT_EQ(record.help.starts_with("<name>"), name != "Freeze") << key;
}

}  // namespace

TEST(MDelayParameters, LayDownThirtyRecordsInTheirOrder) {
    MDelayParameters parameters;
    int index = 0;
    for (const Row& row : kGlobalRows)
        ExpectRecord(parameters[index++], row, row.key, row.name, row.defaultValue);
    for (const char* suffix : {"", "1"}) {
        for (const Row& row : kTapRows) {
            const bool isSecondPanel = row.kind == kGroup && *suffix != 0;
            ExpectRecord(parameters[index++], row, row.key + std::string(suffix),
                         isSecondPanel ? "Tap 2" : row.name, isSecondPanel ? 0 : row.defaultValue);
        }
    }
    for (const char* tap : {"1", "2"}) {
        for (const Row& row : kSyncRows) {
            const bool isPanel = row.kind == kGroup;
            ExpectRecord(parameters[index++], row, row.key + std::string(tap),
                         isPanel ? row.name + std::string(tap) : row.name, row.defaultValue);
        }
    }
    EXPECT_EQ(index, MDelayIndex::kCount);
}

TEST(MDelayParameters, RampFromWhereTheLastBlockEndedAndNeverFromOutsideTheRange) {
    MDelayParameters parameters;
    parameters[10].SetRedirect(true);
    parameters[10].SetSecondary(7);
    EXPECT_EQ(parameters.ReadForBlock().taps[0].delay, 0.5) << "modulated, within the range";
    parameters[7].SetValue(0.9);
    EXPECT_EQ(parameters.ReadForBlock().taps[0].feedback.Squared(10).start, 0.4 * 0.4);
    parameters.KeepRampEnds(parameters.ReadForBlock());
    EXPECT_EQ(parameters.ReadForBlock().taps[0].feedback.Squared(10).step, 0);
    for (const double wild : {1e300, -1e300, std::numeric_limits<double>::quiet_NaN()}) {
        parameters[7].previous = wild;
        const MLinearRamp ramp = parameters.ReadForBlock().taps[0].feedback.Squared(10);
        EXPECT_GE(ramp.start, 0) << wild;
        EXPECT_LE(ramp.start, 1) << wild;
    }
}
