// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/parameters/ParameterBase.h"
#include "plugin/parameters/ParameterBoolT.h"
#include "plugin/parameters/ParameterEnumT.h"
#include "plugin/parameters/ParameterFloatT.h"
#include "plugin/parameters/ParameterGroupT.h"
#include "plugin/parameters/ParameterIntT.h"
#include "plugin/values/MValuePan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <tuple>
#include <vector>

using testing::ElementsAre;

namespace {

/// Whom a parameter tells: its listener and its owner.
class Notes : public MParameterListener, public MParameterOwner {
public:
    void ParameterChanged(int index, std::uint32_t offset, double oldValue,
                          double newValue) noexcept override {
        calls.emplace_back(index, offset, oldValue, newValue);
    }
    void PostChange(ParameterMainBase& parameter) noexcept override {
        posted.push_back(&parameter);
    }

    std::vector<std::tuple<int, std::uint32_t, double, double>> calls;
    std::vector<ParameterMainBase*> posted;
};

}  // namespace

TEST(ParameterFloatT, TellsListenerAndOwnerOfWritesThatAreNotSilent) {
    ParameterDefinition record;
    record.DefineFloat("k", "Name", 0, 10, 5, "{0.1}");
    Notes notes;
    ParameterFloatT<> parameter(record, {7, "B1 Name", "Band 1 - Name", &notes});
    parameter.SetNormalised(0, 0.1, false);  // nobody listens yet
    parameter.SetListener(&notes, 3);
    parameter.SetNormalised(0, 0.2, true);
    parameter.SetNormalised(2, 0.4, false);
    EXPECT_FALSE(notes.TakeRefresh());
    EXPECT_TRUE(notes.posted.empty());
    record.flags |= ParameterDefinition::kUpdateRequired;
    parameter.SetQueued(true);
    parameter.SetNormalised(0, 0.4, false);
    EXPECT_TRUE(notes.TakeRefresh());
    EXPECT_FALSE(notes.TakeRefresh());
    EXPECT_THAT(notes.posted, ElementsAre(&parameter));

    // While redirected the secondary value is written; the host sees the value itself.
    parameter.SetRedirect(0, true);
    parameter.SetNormalised(0, 0.9, false);
    EXPECT_EQ(record.Value(), 4);
    EXPECT_EQ(record.Effective(), 9);
    EXPECT_EQ(parameter.GetNormalised(0), 0.4);
    EXPECT_THAT(notes.calls, ElementsAre(std::tuple(3, 2u, 2.0, 4.0), std::tuple(3, 0u, 4.0, 4.0),
                                         std::tuple(3, 0u, 4.0, 9.0)));
}

TEST(ParameterFloatT, TypedTextTravelsAsAnyWrite) {
    ParameterDefinition pan;
    pan.DefineFloat("k", "Pan", -1, 1, 0, {MValuePan::Format, MValuePan::Parse});
    ParameterFloatT<> withText(pan, {});
    Notes notes;
    withText.SetListener(&notes, 3);
    withText.SetNormalised(0, withText.ParseValueName(0, "50% left"), false);
    EXPECT_THAT(notes.calls, ElementsAre(std::tuple(3, 0u, 0.0, -0.5)));
    EXPECT_EQ(withText.ParseValueName(0, "nonsense"), 0.25) << "as it was";
    EXPECT_EQ(withText.GetValueName(0), "50% left");
    EXPECT_EQ(withText.GetValueNameFrom01(0, 1), "100% right");
    ParameterDefinition gain;
    gain.DefineFloat("k", "Gain", -10, 10, 0, "{+0.2} dB", ParameterCurve::Sqr);
    ParameterFloatT<> withFormat(gain, {});
    EXPECT_EQ(withFormat.ParseValueName(0, "-5 dB"), 0.5);
    EXPECT_EQ(gain.Value(), 0);
}

TEST(ParameterMainBase, PlainValuesTakeTheFormOfTheirKindAndWhatIsNoNumberReachesNoRecord) {
    ParameterDefinition number, whole, choice, onOff, group;
    number.DefineFloat("k", "Name", 0, 10, 5, "{0.1}");
    whole.DefineInt("k", "Name", -10, 10, 5);
    choice.DefineEnum("k", "Name", {"A", "B", "C"}, 1);
    onOff.DefineBool("k", "Name", true);
    group.DefineGroup("k", "Name", true);
    const struct {
        std::unique_ptr<ParameterMainBase> parameter;
        double written, held;
    } rows[] = {{std::make_unique<ParameterFloatT<>>(number, ParameterIdentity()), 3.9, 3.9},
                {std::make_unique<ParameterIntT<>>(whole, ParameterIdentity()), -3.9, -3},
                {std::make_unique<ParameterEnumT<>>(choice, ParameterIdentity()), 1.5, 2},
                {std::make_unique<ParameterEnumT<>>(choice, ParameterIdentity()), -1e300, 0},
                {std::make_unique<ParameterBoolT<>>(onOff, ParameterIdentity()), 0.4, 0},
                {std::make_unique<ParameterGroupT<>>(group, ParameterIdentity()), 0.5, 1}};
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    for (const auto& [parameter, written, held] : rows) {
        parameter->SetPlainValue(written);
        parameter->SetNormalised(0, kNaN, false);
        parameter->SetPlainValue(kNaN);
        EXPECT_EQ(parameter->Record()->Value(), held);
        EXPECT_EQ(parameter->Kind(), parameter->Record()->kind);
    }
    EXPECT_EQ(rows[2].parameter->ParseValueName(0, "c"), 1);
}
