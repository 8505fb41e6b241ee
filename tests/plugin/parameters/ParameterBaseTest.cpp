// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/parameters/ParameterBase.h"
#include "plugin/parameters/ParameterBoolT.h"
#include "plugin/parameters/ParameterEnumT.h"
#include "plugin/parameters/ParameterFloatT.h"
#include "plugin/parameters/ParameterGroupT.h"
#include "plugin/parameters/ParameterIntT.h"
#include "plugin/parameters/ParameterObjectT.h"
#include "plugin/values/MValuePan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <tuple>
#include <vector>

using testing::ElementsAre;

namespace {

class Listener : public MParameterListener {
public:
    void ParameterChanged(int index, std::uint32_t offset, double oldValue,
                          double newValue) noexcept override {
        calls.emplace_back(index, offset, oldValue, newValue);
    }

    std::vector<std::tuple<int, std::uint32_t, double, double>> calls;
};

class Owner : public MParameterOwner {
public:
    void PostChange(ParameterMainBase& parameter) noexcept override {
        posted.push_back(&parameter);
    }

    std::vector<ParameterMainBase*> posted;
};

struct Shape {
    double size = 1;

    void Save(MXMLNode node) const { node.SetAttribute("size", size > 1 ? "large" : "small"); }
    bool Load(MXMLNode node) {
        if (node.Attribute("size") == "large") size = 2;
        return node.Attribute("size").has_value();
    }
};

}  // namespace

TEST(ParameterFloatT, TellsListenerAndOwnerOfWritesThatAreNotSilent) {
    ParameterDefinition record;
    record.DefineFloat("k", "Name", 0, 10, 5, "{0.1}");
    Owner owner;
    Listener listener;
    ParameterFloatT<> parameter(record, {7, "B1 Name", "Band 1 - Name", &owner});
    parameter.SetNormalised(0, 0.1, false);  // nobody listens yet
    parameter.SetListener(&listener, 3);
    parameter.SetNormalised(0, 0.2, true);
    parameter.SetNormalised(2, 0.4, false);
    EXPECT_FALSE(listener.TakeRefresh());
    EXPECT_TRUE(owner.posted.empty());
    record.flags |= ParameterDefinition::kUpdateRequired;
    parameter.SetQueued(true);
    parameter.SetNormalised(0, 0.4, false);
    EXPECT_TRUE(listener.TakeRefresh());
    EXPECT_FALSE(listener.TakeRefresh());
    EXPECT_THAT(owner.posted, ElementsAre(&parameter));

    // While redirected the secondary value is written; the host sees the value itself.
    parameter.SetRedirect(0, true);
    parameter.SetNormalised(0, 0.9, false);
    EXPECT_EQ(record.Value(), 4);
    EXPECT_EQ(record.Effective(), 9);
    EXPECT_EQ(parameter.GetNormalised(0), 0.4);
    EXPECT_THAT(listener.calls,
                ElementsAre(std::tuple(3, 2u, 2.0, 4.0), std::tuple(3, 0u, 4.0, 4.0),
                            std::tuple(3, 0u, 4.0, 9.0)));
}

TEST(ParameterFloatT, TypedTextChangesARecordWithATextFunctionOnly) {
    ParameterDefinition pan;
    pan.DefineFloat("k", "Pan", -1, 1, 0, {MValuePan::Format, MValuePan::Parse});
    ParameterFloatT<> withText(pan, {});
    EXPECT_EQ(withText.ParseValueName(0, "50% left"), 0.25);
    EXPECT_EQ(pan.Value(), -0.5);
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
    ParameterDefinition records[5];
    records[0].DefineFloat("k", "Name", 0, 10, 5, "{0.1}");
    records[1].DefineInt("k", "Name", -10, 10, 5);
    records[2].DefineEnum("k", "Name", {"A", "B", "C"}, 1);
    records[3].DefineBool("k", "Name", true);
    records[4].DefineGroup("k", "Name", true);
    ParameterFloatT<> number(records[0], {});
    ParameterIntT<> whole(records[1], {});
    ParameterEnumT<> choice(records[2], {});
    ParameterBoolT<> onOff(records[3], {});
    ParameterGroupT<> group(records[4], {});
    ParameterMainBase* const parameters[] = {&number, &whole, &choice, &onOff, &group};
    const double written[] = {3.9, -3.9, 1.5, 0.4, 0.5}, held[] = {3.9, -3, 2, 0, 1};
    for (int i = 0; i < 5; ++i) {
        parameters[i]->SetPlainValue(written[i]);
        parameters[i]->SetNormalised(0, std::numeric_limits<double>::quiet_NaN(), false);
        parameters[i]->SetPlainValue(std::numeric_limits<double>::quiet_NaN());
        EXPECT_EQ(records[i].Value(), held[i]) << i;
        EXPECT_EQ(static_cast<int>(parameters[i]->Kind()), i + 1);
        EXPECT_EQ(parameters[i]->Record(), &records[i]);
    }
    choice.SetPlainValue(-1e300);
    EXPECT_EQ(records[2].Value(), 0);
    EXPECT_EQ(choice.ParseValueName(0, "c"), 1);
}

TEST(ParameterObjectT, HoldsAnObjectThatOnlyTheStateReaches) {
    ParameterADSRT<Shape> parameter({1, "Attack", "Attack shape"});
    ParameterADSRT<Shape> other({2, "Release", "Release shape"});
    ParameterEnvelopeT<Shape> envelope({3, "Attack", "Envelope"});
    parameter.SetNormalised(0, 0.9, false);
    EXPECT_EQ(parameter.GetNormalised(0) + parameter.ParseValueName(0, "0.9"), 0.5 + 0.5);
    MXMLTree tree("state");
    parameter.Get().size = 2;
    parameter.SaveObject(tree.Root());
    parameter.Get().size = 1;
    EXPECT_FALSE(other.LoadObject(tree.Root())) << "another one's object";
    EXPECT_FALSE(envelope.LoadObject(tree.Root())) << "another kind of object of the same name";
    EXPECT_TRUE(parameter.LoadObject(MXMLTree::Parse(tree.Write()).Root()));
    EXPECT_EQ(parameter.Get().size, 2);
}
