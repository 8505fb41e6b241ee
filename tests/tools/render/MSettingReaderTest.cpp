// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/tools/render/Refusals.h"
#include "tools/render/MPluginProcessor.h"
#include "tools/render/MSettingReader.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

class MSettingReaderTest : public testing::Test {
protected:
    /// What the writes set, as "key=text" with blanks between.
    std::string Shown(const std::vector<MRenderWrite>& writes) const {
        std::string text;
        for (const MRenderWrite& write : writes) {
            const ParameterDefinition& record = list_.Record(write.parameter);
            if (!text.empty()) text += ' ';
            text += record.key + "=" + record.DisplayText(write.value);
        }
        return text;
    }

    MPluginProcessor plugin_{MBandSetup{}};
    MParameterList list_{plugin_};
    MSettingReader reader_{list_};
};

TEST_F(MSettingReaderTest, ReadsValuesAsTheParametersShowThemAndNotesForTaps) {
    const std::pair<const char*, const char*> rows[] = {
        {"delay = 0.35 s", "delay=350 ms"},
        {"tap1=on", "tap1=On"},
        {"Feedback1=-6 dB", "feedback1=-6.00 dB"},
        {"Mode=pingpong", "mode=PingPong"},
        {"Max frequency=2 kHz", "MaxFrequency=2000 Hz"},
        // Wet and dry are levels, whatever they show.
        {"Wet=50%", "DryWet=50.0%"},
        {"Dry=-6.0206 dB", "DryWet2=50.0%"},
        {"Wet=silence", "DryWet=0.00%"},
        {"Tap 1 Sync=1/8", "sync1=On synclength__1=1 / 8 synctype1=Straight"},
        {"sync=1 / 4 dotted", "sync1=On synclength__1=1 / 4 synctype1=Dotted"},
        {"sync2=1/16t", "sync2=On synclength__2=1 / 16 synctype2=Triplets"},
        {"sync2=2 triplets", "sync2=On synclength__2=2 synctype2=Triplets"},
        {"sync2=1/4 tuplets", "sync2=On synclength__2=1 / 4 synctype2=Tuplets"},
        // The panel stays a switch.
        {"sync1=1", "sync1=On"},
        // A length brings a type along only when one was typed.
        {"synclength__1=1/8", "synclength__1=1 / 8"},
        {"synclength__1=1/8d", "synclength__1=1 / 8 synctype1=Dotted"},
        // A delay that is a note puts its tap in sync.
        {"Tap 2 Delay=1 / 4", "sync2=On synclength__2=1 / 4 synctype2=Straight"},
        {"Tap 2 Delay=4", "delay1=4.0 ms"},
    };
    for (const auto& [typed, shown] : rows) EXPECT_EQ(Shown(reader_.Read(typed)), shown) << typed;
}

TEST_F(MSettingReaderTest, ReadsTheTimeOfATimedSetting) {
    const std::tuple<const char*, double, const char*> rows[] = {
        {"2.5 Freeze=on", 2.5, "Freeze=On"},
        {"250 ms Delay=10 ms", 0.25, "delay=10 ms"},
        {"1s Sync=1/8d", 1, "sync1=On synclength__1=1 / 8 synctype1=Dotted"},
        {"0 sync1=on", 0, "sync1=On"},
    };
    for (const auto& [typed, seconds, shown] : rows) {
        const MRenderLane lane = reader_.ReadTimed(typed);
        ASSERT_EQ(lane.points.size(), 1U);
        EXPECT_EQ(lane.unit, MTimeUnit::Seconds);
        EXPECT_EQ(Shown(lane.points[0].writes), shown) << typed;
        EXPECT_DOUBLE_EQ(lane.points[0].time, seconds) << typed;
    }
}

TEST_F(MSettingReaderTest, SaysWhatWouldBeAccepted) {
    const std::pair<const char*, const char*> rows[] = {
        {"Delay=900 ms", "0 ms to 500 ms"},
        {"Delay=1/7", "or a note such as 1/8d"},
        {"Band gain 1=-60 dB", "-24.00 dB to +24.00 dB"},
        {"Wet=3 dB", "decibels up to 0 dB"},
        {"Wet=-3", "decibels up to 0 dB"},
        {"Saturation=-6 dB", "100"},
        {"Tap 1 Sync=1/8 wobbly", "1/8d (dotted)"},
    };
    ExpectRefusals(rows, [&](const char* typed) { reader_.Read(typed); });
    for (const char* typed : {"Freeze=on", "-1 Freeze=on", "soon Freeze=on", ""}) {
        EXPECT_THROW(reader_.ReadTimed(typed), MRenderFailure) << typed;
    }
}

}  // namespace
