// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/render/Refusals.h"
#include "tools/render/MAutomationFile.h"
#include "tools/render/MPluginProcessor.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

class MAutomationFileTest : public testing::Test {
protected:
    std::vector<MRenderLane> Read(const std::string& text) const {
        folder_.Write("a.json", text);
        return MReadAutomation(folder_ / "a.json", reader_);
    }
    const std::string& KeyOf(const MRenderWrite& write) const { return list_[write.parameter].key; }

    TemporaryFolder folder_;
    MPluginProcessor plugin_{MBandSetup{.count = 3}};
    MParameterList list_{plugin_};
    MSettingReader reader_{list_};
};

TEST_F(MAutomationFileTest, ReadsLanesWithEveryKindOfValue) {
    const auto lanes = Read(R"([
        {"parameter": "Band 2 Tap 1 Delay", "curve": "linear", "unit": "beats",
         "points": [{"time": 0, "value": "250 ms"}, {"time": 1.5, "value": 0.125},
                    {"time": 1.5, "value": {"normalised": 1}}]},
        {"parameter": "Band 3 Freeze", "points": [{"time": 2, "value": true}]},
        {"parameter": "Delay", "points": [{"time": 1, "value": "1/8d"}]}])");
    ASSERT_EQ(lanes.size(), 3U);
    EXPECT_EQ(lanes[0].unit, MTimeUnit::Beats);
    EXPECT_TRUE(lanes[0].isLinear);
    const std::pair<double, double> points[] = {{0, 0.25}, {1.5, 0.125}, {1.5, 0.5}};
    ASSERT_EQ(lanes[0].points.size(), 3U);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(lanes[0].points[i].time, points[i].first);
        ASSERT_EQ(lanes[0].points[i].writes.size(), 1U);
        EXPECT_DOUBLE_EQ(lanes[0].points[i].writes[0].value, points[i].second);
        EXPECT_EQ(KeyOf(lanes[0].points[i].writes[0]), "B2 T1 Delay");
    }
    EXPECT_FALSE(lanes[1].isLinear);
    EXPECT_EQ(lanes[1].unit, MTimeUnit::Seconds);
    EXPECT_EQ(lanes[1].points[0].writes[0].value, 1);
    EXPECT_EQ(lanes[2].points[0].writes.size(), 9U) << "switch, length and type of three bands";

    const auto inSamples = Read(R"({"unit": "samples", "lanes": [
        {"parameter": "Wet", "points": []},
        {"parameter": "Dry", "points": [], "unit": "seconds"}]})");
    EXPECT_EQ(inSamples[0].unit, MTimeUnit::Samples);
    EXPECT_EQ(inSamples[1].unit, MTimeUnit::Seconds);
}

TEST_F(MAutomationFileTest, SaysInOneLineWhereItMakesNoSense) {
    const auto point = [](const std::string& parameter, const std::string& text) {
        return R"([{"parameter": ")" + parameter + R"(", "points": [)" + text + "]}]";
    };
    const std::pair<std::string, const char*> rows[] = {
        {"", "line 1, column 1"},
        {"[\n  {\"parameter\" \"Wet\"}]", "near line 2, column 20"},
        {"[1e999]", "too large"},
        {"\"Wet\"", "object in braces"},
        {"{}", "\"lanes\" must be a list"},
        {"[3]", "lane 1: a lane is an object"},
        {"[{\"parameter\": \"Wet\"}]", "lane 1: \"points\" must be a list"},
        {R"([{"parameter": "Wet", "points": [], "curv": "step"}])", "unknown \"curv\""},
        {R"([{"parameter": "Wet", "points": [], "curve": "round"}])", "\"step\" or \"linear\""},
        {R"([{"parameter": "Wet", "points": [], "unit": 3}])", "\"seconds\" or \"samples\""},
        {R"([{"parameter": "Wet", "points": []}, {"parameter": "Wett", "points": []}])",
         "lane 2: unknown parameter \"Wett\""},
        {point("Delay", "7"), "lane 1: point 1: a point is an object"},
        {point("Delay", R"({"value": "1 ms"})"), "\"time\" must be a number"},
        {point("Delay", R"({"time": -1, "value": "1 ms"})"), "\"time\" must be a number from 0"},
        {point("Delay", R"({"time": 0})"), "\"value\" is missing"},
        {point("Delay", R"({"time": 0, "value": {"normalized": 1}})"), "\"value\" must be"},
        {point("Delay", R"({"time": 0, "value": {"normalised": 1.5}})"), "0 to 1, not 1.5"},
        {point("Delay", R"({"time": 0, "value": 250})"), "0 ms to 500 ms"},
        {point("Mode", R"({"time": 0, "value": 1.5})"), "does not take 1.5"},
        {point("Delay", R"({"time": 0, "value": "1 ms"}, {"time": 2, "value": "late"})"),
         "lane 1: point 2: Band 1 - Tap 1 - Delay does not take \"late\""},
        {point("Delay", R"({"time": 2, "value": "1 ms"}, {"time": 1, "value": "2 ms"})"),
         "point 2: its time is before"},
        {R"([{"parameter": "Freeze", "points": [], "curve": "linear"}])", "cannot glide"},
        {R"([{"parameter": "Delay", "points": [{"time": 2, "value": "1/8"}], "curve": "linear"}])",
         "cannot glide to a note"},
    };
    ExpectRefusals(rows, [&](const std::string& text) { Read(text); });
    const std::pair<std::filesystem::path, const char*> files[] = {
        {folder_ / "missing.json", "missing.json"}, {folder_ / ".", "cannot"}};
    ExpectRefusals(
        files, [&](const auto& path) { MReadAutomation(path, reader_); }, MExitCode::File);
}

}  // namespace
