// SPDX-License-Identifier: GPL-3.0-or-later
#include "core/MException.h"
#include "plugin/MAudioPlugin.h"
#include "plugin/parameters/ParameterEnumT.h"
#include "plugin/parameters/ParameterFloatT.h"
#include "plugin/values/MValueTimeMS.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/Reports.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

using testing::ElementsAre;
using testing::Pair;

namespace {

/// Fails in every operation that is asked of it.
template <class Failure>
class FailingParameter : public ParameterMainBase {
public:
    using ParameterMainBase::ParameterMainBase;

    ParameterKind Kind() const noexcept override { return ParameterKind::Float; }
    ParameterDefinition* Record() noexcept override { return nullptr; }
    void SetNormalised(std::uint32_t, double, bool) override { Fail(); }
    double GetNormalised(std::uint32_t) const override { Fail(); }
    std::string GetName() const override { Fail(); }
    std::string GetID() const override { Fail(); }
    std::string GetValueName(std::uint32_t) const override { Fail(); }
    std::string GetValueNameFrom01(std::uint32_t, double) const override { Fail(); }
    double ParseValueName(std::uint32_t, const std::string&) override { Fail(); }
    std::string GetUnitsName() const override { Fail(); }
    double GetDefaultNormalised() const override { Fail(); }

private:
    [[noreturn]] static void Fail() { throw Failure(""); }
};

class Plugin : public MAudioPlugin {
public:
    using MAudioPlugin::MutableParameters;

    void ParameterChanged(std::uint32_t identifier, double /*oldValue*/,
                          double newValue) noexcept override {
        changed.emplace_back(identifier, newValue);
    }

    std::vector<std::pair<std::uint32_t, double>> changed;
};

class MAudioPluginTest : public testing::Test {
protected:
    MAudioPluginTest() {
        delay.DefineFloat("delay", "Delay", 0, 0.5, 0.1,
                          {MValueTimeMS::Format, MValueTimeMS::Parse});
        mode.DefineEnum("mode", "Mode", {"Default", "Classic", "PingPong"}, 1);
        MParameterDirectory& parameters = plugin.MutableParameters();
        parameters.Add(std::make_unique<ParameterEnumT<>>(
            mode, ParameterIdentity{6, "T1 Mode", "Tap 1 - Mode", nullptr}));
        ParameterMainBase& added = parameters.Add(std::make_unique<ParameterFloatT<>>(
            delay, ParameterIdentity{5, "T1 Delay", "Tap 1 - Delay", nullptr}));
        added.SetListener(&adapter, 0);
    }

    // Calls every operation that a host may call and expects neutral answers.
    static void ExpectNeutralAnswers(std::uint32_t identifier, MAudioPlugin& one) {
        one.SetParameter(identifier, 0.5, false);
        EXPECT_EQ(one.GetParameter(identifier), 0);
        for (const std::string& text :
             {one.GetParameterName(identifier), one.GetParameterID(identifier),
              one.GetParameterValueName(identifier),
              one.GetParameterValueNameFrom01(identifier, 0.5),
              one.GetParameterUnitsName(identifier)}) {
            EXPECT_EQ(text, "");
        }
        EXPECT_EQ(one.ParseParameterValueName(identifier, "1"), 0);
        EXPECT_EQ(one.GetParameterDefaultValue(identifier), 0);
    }

    ParameterDefinition delay;
    ParameterDefinition mode;
    Plugin plugin;
    MAudioPlugin::AutomationAdapter adapter{&plugin, 5, 2};
    Reports reports;
};

}  // namespace

TEST_F(MAudioPluginTest, AnswersForItsParametersWithinTheirRangesAndWithoutTheHeap) {
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    plugin.changed.reserve(20);
    const AllocationCounter allocations;
    const std::pair<double, double> rows[] = {{7, 0.5}, {-HUGE_VAL, 0}, {0.5, 0.25}, {kNaN, 0.25}};
    for (const auto& [x, value] : rows) {
        plugin.SetParameter(5, x, true);
        EXPECT_EQ(delay.Value(), value) << x;
    }
    EXPECT_TRUE(plugin.changed.empty()) << "all of it was silent";
    plugin.SetParameter(5, 0.5, false);
    EXPECT_EQ(plugin.GetParameter(5), 0.5);
    EXPECT_EQ(allocations.Count(), 0);
    EXPECT_THAT(plugin.changed, ElementsAre(Pair(5u, 0.25)));
    EXPECT_EQ(plugin.GetParameterName(5), "Tap 1 - Delay");
    EXPECT_EQ(plugin.GetParameterID(1000), "T1 Mode");
    EXPECT_EQ(plugin.GetParameterValueName(0), "250 ms");
    EXPECT_EQ(plugin.GetParameterValueNameFrom01(5, 0.2), "100 ms");
    EXPECT_EQ(plugin.GetParameterValueNameFrom01(5, kNaN), "");
    EXPECT_EQ(plugin.GetParameterValueNameFrom01(6, 9), "PingPong");
    EXPECT_EQ(plugin.ParseParameterValueName(5, "0.4 s"), 0.8);
    EXPECT_EQ(plugin.GetParameterDefaultValue(5), 0.2);
    EXPECT_EQ(plugin.GetParameterType(6), 3);
}

TEST_F(MAudioPluginTest, SwallowsItsOwnExceptionsAndReportsOthersByOperation) {
    plugin.MutableParameters().Add(std::make_unique<FailingParameter<MException>>(
        ParameterIdentity{20, "id", "name", nullptr}));
    ExpectNeutralAnswers(20, plugin);
    EXPECT_TRUE(reports.texts.empty());

    plugin.MutableParameters().Add(std::make_unique<FailingParameter<std::runtime_error>>(
        ParameterIdentity{21, "id", "name", nullptr}));
    ExpectNeutralAnswers(21, plugin);
    std::vector<std::string> expected;
    for (const char* operation :
         {"SetParameter", "GetParameter", "GetParameterName", "GetParameterID",
          "GetParameterValueName", "GetParameterValueNameFrom01", "GetParameterUnitsName",
          "ParseParameterValueName", "GetParameterDefaultValue"})
        expected.push_back("SYSTEM EXCEPTION! MAudioPlugin::" + std::string(operation));
    EXPECT_EQ(reports.texts, expected);
    MAudioPlugin empty;
    ExpectNeutralAnswers(0, empty);
}
