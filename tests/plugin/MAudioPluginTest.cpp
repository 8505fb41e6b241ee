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

#include <limits>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

using testing::ElementsAre;
using testing::Pair;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// Fails in every operation, the way `Failure` does.
template <class Failure>
class FailingParameter : public ParameterMainBase {
public:
    explicit FailingParameter(std::uint32_t identifier)
        : ParameterMainBase({identifier, "id", "name", nullptr}) {}

    ParameterKind Kind() const noexcept override { return ParameterKind::Float; }
    ParameterDefinition* Record() noexcept override { return nullptr; }
    void SetNormalised(std::uint32_t, double, bool) override { throw Failure(""); }
    double GetNormalised(std::uint32_t) const override { throw Failure(""); }
    std::string GetName() const override { throw Failure(""); }
    std::string GetID() const override { throw Failure(""); }
    std::string GetValueName(std::uint32_t) const override { throw Failure(""); }
    std::string GetValueNameFrom01(std::uint32_t, double) const override { throw Failure(""); }
    double ParseValueName(std::uint32_t, const std::string&) override { throw Failure(""); }
    std::string GetUnitsName() const override { throw Failure(""); }
    double GetDefaultNormalised() const override { throw Failure(""); }
};

class Plugin : public MAudioPlugin {
public:
    using MAudioPlugin::MutableParameters;

    void SendHostAutomation(std::uint32_t identifier, double x) override {
        if (refuses) throw std::runtime_error("no host");
        sent.emplace_back(identifier, x);
    }
    void ParameterChanged(std::uint32_t identifier, double /*oldValue*/,
                          double newValue) noexcept override {
        changed.emplace_back(identifier, newValue);
    }

    std::vector<std::pair<std::uint32_t, double>> sent;
    std::vector<std::pair<std::uint32_t, double>> changed;
    bool refuses = false;
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
        EXPECT_EQ(one.GetParameterName(identifier), "");
        EXPECT_EQ(one.GetParameterID(identifier), "");
        EXPECT_EQ(one.GetParameterValueName(identifier), "");
        EXPECT_EQ(one.GetParameterValueNameFrom01(identifier, 0.5), "");
        EXPECT_EQ(one.ParseParameterValueName(identifier, "1"), 0);
        EXPECT_EQ(one.GetParameterUnitsName(identifier), "");
        EXPECT_EQ(one.GetParameterDefaultValue(identifier), 0);
    }

    ParameterDefinition delay;
    ParameterDefinition mode;
    Plugin plugin;
    MAudioPlugin::AutomationAdapter adapter{&plugin, 5, 2};
    Reports reports;
};

}  // namespace

TEST_F(MAudioPluginTest, AnswersForItsParameters) {
    plugin.SetParameter(5, 0.5, false);
    EXPECT_EQ(delay.Value(), 0.25);
    EXPECT_EQ(plugin.GetParameter(5), 0.5);
    EXPECT_THAT(plugin.changed, ElementsAre(Pair(5u, 0.25)));
    EXPECT_EQ(plugin.GetParameterName(5), "Tap 1 - Delay");
    EXPECT_EQ(plugin.GetParameterID(5), "T1 Delay");
    EXPECT_EQ(plugin.GetParameterValueName(5), "250 ms");
    EXPECT_EQ(plugin.GetParameterValueNameFrom01(5, 0.2), "100 ms");
    EXPECT_EQ(plugin.ParseParameterValueName(5, "0.4 s"), 0.8);
    EXPECT_EQ(plugin.GetParameterUnitsName(5), "");
    EXPECT_EQ(plugin.GetParameterType(5), 1);
    EXPECT_EQ(plugin.GetParameterType(6), 3);
    EXPECT_EQ(plugin.GetParameterDefaultValue(5), 0.2);
    EXPECT_EQ(plugin.GetParameterName(0), "Tap 1 - Delay");
    EXPECT_EQ(plugin.GetParameterName(1000), "Tap 1 - Mode");
}

TEST_F(MAudioPluginTest, HoldsWhatHostsSendWithinTheRange) {
    plugin.SetParameter(5, 7, true);
    EXPECT_EQ(delay.Value(), 0.5);
    plugin.SetParameter(5, -std::numeric_limits<double>::infinity(), true);
    EXPECT_EQ(delay.Value(), 0);
    plugin.SetParameter(5, 0.5, true);
    plugin.SetParameter(5, kNaN, true);
    EXPECT_EQ(delay.Value(), 0.25);
    EXPECT_EQ(plugin.GetParameterValueNameFrom01(5, kNaN), "");
    EXPECT_EQ(plugin.GetParameterValueNameFrom01(6, 9), "PingPong");
    EXPECT_TRUE(plugin.changed.empty()) << "all of it was silent";
}

TEST_F(MAudioPluginTest, ReadsAndWritesWithoutTheHeap) {
    plugin.changed.reserve(20);
    double sum = 0;
    const AllocationCounter allocations;
    for (std::uint32_t identifier = 0; identifier < 10; ++identifier) {
        plugin.SetParameter(identifier, 0.5, false);
        sum += plugin.GetParameter(identifier);
    }
    EXPECT_EQ(allocations.Count(), 0);
    EXPECT_EQ(sum, 5);
}

TEST_F(MAudioPluginTest, SwallowsItsOwnExceptionsAndReportsOthersByOperation) {
    plugin.MutableParameters().Add(std::make_unique<FailingParameter<MException>>(20));
    ExpectNeutralAnswers(20, plugin);
    EXPECT_TRUE(reports.texts.empty());

    plugin.MutableParameters().Add(std::make_unique<FailingParameter<std::runtime_error>>(21));
    ExpectNeutralAnswers(21, plugin);
    std::vector<std::string> expected;
    for (const char* operation :
         {"SetParameter", "GetParameter", "GetParameterName", "GetParameterID",
          "GetParameterValueName", "GetParameterValueNameFrom01", "ParseParameterValueName",
          "GetParameterUnitsName", "GetParameterDefaultValue"})
        expected.push_back("SYSTEM EXCEPTION! MAudioPlugin::" + std::string(operation));
    EXPECT_EQ(reports.texts, expected);
    MAudioPlugin empty;
    ExpectNeutralAnswers(0, empty);
}

TEST_F(MAudioPluginTest, AutomationReportsPositionsInOrderAndOutlivesAFailingHost) {
    plugin.SetParameter(5, 0.5, true);
    adapter.SendAutomation(0);
    adapter.SendAutomationValue(1, 0.75);
    adapter.SendAllAutomation();
    EXPECT_THAT(plugin.sent,
                ElementsAre(Pair(5u, 0.5), Pair(6u, 0.75), Pair(5u, 0.5), Pair(6u, 0.5)));
    plugin.sent.clear();
    adapter.SendAutomationValueWithChange(0, 0);  // nudged first, so that the host sees a change
    adapter.SendAutomationValueWithChange(1, 1);
    EXPECT_THAT(plugin.sent,
                ElementsAre(Pair(5u, 1e-10), Pair(5u, 0.0), Pair(6u, 0.9999999999), Pair(6u, 1.0)));

    plugin.refuses = true;
    MAudioPlugin::AutomationAdapter nowhere(nullptr, 5, 2);
    nowhere.SendAllAutomation();
    nowhere.SendAutomationValueWithChange(0, 0.5);
    nowhere.ParameterChanged(0, 0, 0, 1);
    adapter.SendAutomation(2);
    adapter.SendAutomationValue(-1, 0.5);
    EXPECT_TRUE(reports.texts.empty()) << "out of the run, or without a plug-in, nothing is sent";
    adapter.SendAutomation(0);
    adapter.SendAutomationValue(0, 0);
    adapter.SendAutomationValueWithChange(0, 0);
    EXPECT_EQ(reports.texts.size(), 3u);
}

TEST_F(MAudioPluginTest, GesturesReportThroughTheHostUntilTheyAreDropped) {
    class Host : public MAudioPluginAdapter {
    public:
        void SendBypassAutomation(bool) override {}
        void GenerateMIDIEvent(int, const std::array<std::uint8_t, 4>&) override {}
        void ReportLatency() override {}
        void ChangeEditorSize(int, int) override {}
        void SendParameterAutomation(std::uint32_t identifier, double x) override {
            sent.emplace_back(identifier, x);
        }

        std::vector<std::pair<std::uint32_t, double>> sent;
    } host;
    MAudioPlugin plain;
    plain.CreateTemporaryAutomationAdapter(5, 1).SendAutomationValue(0, 0.5);  // no host: no effect
    plain.SetHost(&host);
    MAudioPlugin::AutomationAdapter& gesture = plain.CreateTemporaryAutomationAdapter(8, 2);
    for (int i = 0; i < 100; ++i) plain.CreateTemporaryAutomationAdapter(0, 1);
    gesture.SendAutomationValue(1, 0.5);
    EXPECT_THAT(host.sent, ElementsAre(Pair(9u, 0.5)));
    plain.DestroyTemporaryAutomationAdapters();
    plain.DestroyTemporaryAutomationAdapters();
}
