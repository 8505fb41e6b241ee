// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/parameters/ParameterDefinition.h"
#include "plugin/values/MValueTimeMS.h"
#include "tests/support/ForeignLocale.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

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

TEST(ParameterDefinition, WholeNumbersAndChoicesSurviveTheirPositions) {
    ParameterDefinition whole, far, negative, record, lengths;
    whole.DefineInt("k", "Name", 0, 100, 0);
    far.DefineInt("k", "Name", -7, 300, 0);
    negative.DefineInt("k", "Name", -10, 0, 0);
    record.DefineEnum("k", "Name", {"Default", "Classic", "PingPong"}, 1);
    lengths.DefineEnum("k", "Name", std::vector<std::string>(15, "x"), 9);
    for (const ParameterDefinition* one : {&whole, &far, &negative, &record, &lengths}) {
        for (double value = one->minimum; value <= one->maximum; ++value) {
            EXPECT_EQ(one->FromNormalised(one->ToNormalised(value)), value);
        }
    }
    EXPECT_EQ(negative.FromNormalised(0.05), -9) << "towards zero";
    const std::pair<double, int> rows[] = {{0.33, 0}, {0.34, 1}, {0.66, 1}, {0.84, 2},
                                           {1, 2},    {1.5, 2},  {-1, 0}};
    for (const auto& [x, index] : rows) EXPECT_EQ(record.FromNormalised(x), index) << x;
    EXPECT_EQ(record.ToNormalised(1), 0.5);
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
    ParameterDefinition time, gain, onOff, percent, whole, formatted;
    time.DefineFloat("k", "Delay", 0, 0.5, 0.1, {MValueTimeMS::Format, MValueTimeMS::Parse});
    gain.DefineFloat("k", "Gain", -24, 24, 0, "{+0.2} dB");
    onOff.DefineBool("k", "Name", true);
    percent.DefineFloat("k", "Wet", 0, 1, 0.5, "");
    whole.DefineInt("k", "Count", -5, 5, 0);
    formatted.DefineInt("k", "Count", -5, 5, 0);
    formatted.format = "{0:02} st";
    const struct {
        const ParameterDefinition& record;
        double value;
        const char* shown;
        std::vector<std::pair<const char*, std::optional<double>>> typed;
    } rows[] = {
        {time, 0.25, "250 ms", {{"0.35 s", 0.35}, {"2 s", 0.5}, {"fast", {}}}},
        {gain, 3, "+3.00 dB", {{"+3.00 dB", 3}, {"-6", -6}, {"3 Hz", {}}}},
        {onOff, 0, "Off", {{"on", 1}, {" YES ", 1}, {"1", 1}, {"Off", 0}, {"no", 0}, {"0", 0}}},
        {onOff, 1, "On", {{"", {}}, {"2", {}}, {"onn", {}}}},
        {percent, 0.5, "50.0%", {{"75", 0.75}, {"75 dB", {}}}},
        {whole, -3, "-3", {{"-2.9", -2}, {"nan", {}}}},
        {formatted, 3, "03 st", {{"03 st", 3}}},
        {formatted, kNaN, "nan st", {}},
    };
    for (const auto& [record, value, shown, typed] : rows) {
        EXPECT_EQ(record.DisplayText(value), shown);
        for (const auto& [text, read] : typed) {
            EXPECT_EQ(record.ParseDisplayText(text), read) << text;
        }
    }
    EXPECT_EQ(onOff.FromNormalised(0.4999), 0);
    EXPECT_EQ(onOff.FromNormalised(0.5), 1);
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
