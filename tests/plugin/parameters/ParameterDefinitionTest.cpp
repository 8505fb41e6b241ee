// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/parameters/ParameterDefinition.h"
#include "plugin/values/MValue.h"
#include "plugin/values/MValueTimeMS.h"
#include "tests/support/ForeignLocale.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>

namespace {
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
}  // namespace

TEST(ParameterDefinition, BendsPositionsByItsCurve) {
    const std::tuple<ParameterCurve, double, double> rows[] = {{ParameterCurve::None, 0.25, 0},
                                                               {ParameterCurve::Sqr, 0.5, 0},
                                                               {ParameterCurve::Power4, 0.5, -0.75},
                                                               {ParameterCurve::Sqr, 1, 3},
                                                               {ParameterCurve::Power4, 0, -1}};
    for (const auto& [curve, position, value] : rows) {
        ParameterDefinition record;
        record.DefineFloat("k", "Name", -1, 3, 0, "{0.2}", curve);
        EXPECT_EQ(record.FromNormalised(position), value);
        EXPECT_EQ(record.ToNormalised(value), position);
        EXPECT_GE(record.ToNormalised(-50), 0);
        EXPECT_LE(record.ToNormalised(50), 1);
    }
}

TEST(ParameterDefinition, CutsWholeNumbersButKeepsThoseReadFromPositions) {
    for (const auto& [minimum, maximum] : {std::pair(0, 100), std::pair(-7, 300)}) {
        ParameterDefinition whole;
        whole.DefineInt("k", "Name", minimum, maximum, 0);
        for (int i = minimum; i <= maximum; ++i) {
            EXPECT_EQ(whole.FromNormalised(whole.ToNormalised(i)), i);
        }
    }
    ParameterDefinition negative;
    negative.DefineInt("k", "Name", -10, 0, 0);
    EXPECT_EQ(negative.FromNormalised(0.05), -9) << "towards zero";
    EXPECT_EQ(negative.FromNormalised(1), 0);
}

TEST(ParameterDefinition, SharesTheRangeEvenlyAmongChoices) {
    ParameterDefinition record;
    record.DefineEnum("k", "Name", {"Default", "Classic", "PingPong"}, 1);
    const std::pair<double, int> rows[] = {{0, 0},    {0.33, 0}, {0.34, 1}, {0.5, 1}, {0.66, 1},
                                           {0.84, 2}, {1, 2},    {1.5, 2},  {-1, 0}};
    for (const auto& [x, index] : rows) EXPECT_EQ(record.FromNormalised(x), index) << x;
    EXPECT_EQ(record.ToNormalised(1), 0.5);

    ParameterDefinition lengths;
    lengths.DefineEnum("k", "Name", std::vector<std::string>(15, "x"), 9);
    for (int i = 0; i < 15; ++i) EXPECT_EQ(lengths.FromNormalised(lengths.ToNormalised(i)), i);
}

TEST(ParameterDefinition, IndexIsAlwaysAChoice) {
    ParameterDefinition record;
    record.DefineEnum("k", "Name", {"A", "B", "C"}, 1);
    const std::pair<double, int> rows[] = {{0, 0},     {2, 2},    {7, 2},         {-4, 0},
                                           {1e300, 2}, {kNaN, 0}, {kInfinity, 2}, {1.4, 1}};
    for (const auto& [value, index] : rows) {
        record.SetValue(value);
        EXPECT_EQ(record.Index(), index) << value;
        EXPECT_EQ(record.DisplayText(value), record.choices[static_cast<std::size_t>(index)]);
    }
    const ParameterDefinition empty;
    EXPECT_EQ(empty.Index(), 0);
}

TEST(ParameterDefinition, ShowsByTextThenByFormatThenPlainly) {
    const ForeignLocale foreign;
    ParameterDefinition time;
    time.DefineFloat("k", "Delay", 0, 0.5, 0.1, {MValueTimeMS::Format, MValueTimeMS::Parse});
    EXPECT_EQ(time.DisplayText(0.25), "250 ms");
    EXPECT_EQ(time.ParseDisplayText("0.35 s"), 0.35);
    EXPECT_EQ(time.ParseDisplayText("2 s"), 0.5) << "held within the range";
    EXPECT_FALSE(time.ParseDisplayText("fast"));

    ParameterDefinition gain;
    gain.DefineFloat("k", "Gain", -24, 24, 0, "{+0.2} dB");
    EXPECT_EQ(gain.DisplayText(3), "+3.00 dB");
    EXPECT_EQ(gain.ParseDisplayText("+3.00 dB"), 3.0);
    EXPECT_EQ(gain.ParseDisplayText("-6"), -6.0);
    EXPECT_FALSE(gain.ParseDisplayText("3 Hz"));
    EXPECT_EQ(gain.scale->GetDisplayText(), "0.00 dB");

    ParameterDefinition onOff;
    onOff.DefineBool("k", "Name", true);
    EXPECT_EQ(onOff.FromNormalised(0.4999), 0);
    EXPECT_EQ(onOff.FromNormalised(0.5), 1);
    EXPECT_EQ(onOff.DisplayText(0), "Off");
    for (const char* text : {"on", " YES ", "1"}) EXPECT_EQ(onOff.ParseDisplayText(text), 1.0);
    for (const char* text : {"Off", "no", "0"}) EXPECT_EQ(onOff.ParseDisplayText(text), 0.0);
    for (const char* text : {"", "2", "onn"}) EXPECT_FALSE(onOff.ParseDisplayText(text)) << text;

    ParameterDefinition percent;
    percent.DefineFloat("k", "Wet", 0, 1, 0.5, "");
    EXPECT_EQ(percent.DisplayText(0.5), "50.0%");
    EXPECT_TRUE(percent.scale->ParseDisplayText("75"));
    EXPECT_EQ(percent.Value(), 0.75) << "the scale is bound to the value";

    ParameterDefinition whole;
    whole.DefineInt("k", "Count", -5, 5, 0);
    EXPECT_EQ(whole.DisplayText(-3), "-3");
    EXPECT_EQ(whole.ParseDisplayText("-2.9"), -2.0);
    EXPECT_FALSE(whole.ParseDisplayText("nan"));
    whole.format = "{0:02} st";
    EXPECT_EQ(whole.DisplayText(3), "03 st");
    EXPECT_EQ(whole.ParseDisplayText("03 st"), 3.0);
    EXPECT_EQ(whole.DisplayText(kNaN), "nan st");
}

TEST(ParameterDefinition, RedirectionStartsAtTheValueAndLeavesItAlone) {
    ParameterDefinition record;
    record.DefineFloat("k", "Name", 0, 1, 0.25, "");
    record.flags = ParameterDefinition::kOption19;
    record.SetSecondary(0.9);
    record.SetRedirect(true);
    EXPECT_EQ(record.Effective(), 0.25);
    record.SetSecondary(0.75);
    EXPECT_EQ(record.Effective(), 0.75);
    EXPECT_EQ(record.Value(), 0.25);
    record.SetRedirect(false);
    EXPECT_EQ(record.Effective(), 0.25);
    EXPECT_EQ(record.flags, ParameterDefinition::kOption19) << "other flags stay";
}
