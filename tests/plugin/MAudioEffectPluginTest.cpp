// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/MAudioEffectPlugin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr ParameterText kNoText = {nullptr, nullptr};

/// An effect that writes down what is asked of it.
class Recorder final : public MAudioEffectPlugin {
public:
    Recorder() {
        records[0].DefineGroup("first", "First", true);
        records[1].DefineFloat("loud", "Loud", 0, 1, 0.5, kNoText);
        records[1].flags |= ParameterDefinition::kUpdateRequired;
        records[2].DefineFloat("quiet", "Quiet", -1, 1, 0.25, kNoText);
        records[3].DefineGroup("second", "Second", false);
        records[4].DefineEnum("kind", "Kind", {"a", "b", "c"}, 1);
        SetParameterTable(records, 5);
    }

    std::int64_t Dispatch(MEffectCommand command, const MEffectArguments* arguments) override {
        return DispatchCommon(command, arguments != nullptr ? *arguments : MEffectArguments());
    }
    void ParameterChanged(std::int64_t index) override { Note("changed", index); }
    void UpdateProcessing() override { calls.push_back("update"); }
    void StateNotification(int what, MXMLNode state) override {
        Note("notification of " + state.Name(), what);
    }
    int InitEffectProcessing(std::int64_t, std::int64_t) override { return 0; }
    void ProcessEffect(const MTransport*, const float* const*, float* const*, int) override {}

    std::int64_t Send(int command, MEffectArgument argument = {}) {
        MEffectArguments arguments;
        arguments.values[0] = argument;
        return Dispatch(static_cast<MEffectCommand>(command), &arguments);
    }
    MMutex& Lock() { return parameterLock_; }

    ParameterDefinition records[5];
    std::vector<std::string> calls;

private:
    void Note(const std::string& what, std::int64_t number) {
        calls.push_back(what + " " + std::to_string(number));
    }
};

}  // namespace

TEST(MAudioEffectPlugin, UpdatesAfterAWriteWhereTheRecordAsksOrTheIndexIsNone) {
    const std::pair<std::int64_t, bool> rows[] = {{1, true},  {2, false}, {0, false},
                                                  {-1, true}, {5, true},  {1LL << 32, true}};
    for (const auto& [index, updates] : rows) {
        Recorder effect;
        EXPECT_EQ(effect.Send(4, MEffectArgument(index)), 0);
        std::vector<std::string> expected = {"changed " + std::to_string(index)};
        if (updates) expected.push_back("update");
        EXPECT_EQ(effect.calls, expected) << index;
    }
}

TEST(MAudioEffectPlugin, StoresEveryRecordByItsKeyAndHoldsWhatIsLoadedWithinItsRange) {
    Recorder effect;
    const MXMLTree saved("state"), odd = MXMLTree::Parse(R"(<s loud="7.5" quiet="x" kind="1.6"/>)");
    MXMLNode root = saved.Root(), oddRoot = odd.Root();
    effect.records[2].SetValue(-0.1);
    EXPECT_EQ(effect.Send(11, MEffectArgument(&root)), 0);
    const std::pair<const char*, const char*> rows[] = {
        {"first", "1"}, {"loud", "0.5"}, {"quiet", "-0.1"}, {"second", "0"}, {"kind", "1"}};
    for (const auto& [key, text] : rows) EXPECT_EQ(root.Attribute(key), text) << key;
    EXPECT_THAT(effect.calls, testing::ElementsAre("notification of state 1"));

    Recorder other;
    EXPECT_EQ(other.Send(12, MEffectArgument(&root)), 1);
    EXPECT_EQ(other.records[2].Value(), -0.1);
    EXPECT_EQ(other.Send(12, MEffectArgument(&oddRoot)), 0) << "not every record was there";
    const double expected[] = {1, 1, -0.1, 0, 2};
    for (int i = 0; i < 5; ++i) EXPECT_EQ(other.records[i].Value(), expected[i]) << i;
    EXPECT_EQ(other.Send(12), 0) << "no state at all";
    EXPECT_EQ(other.Send(11), 0);
}

TEST(MAudioEffectPlugin, LoadsOnlyOnceTheLockIsFree) {
    Recorder effect;
    const MXMLTree tree = MXMLTree::Parse(R"(<s loud="0.75"/>)");
    MXMLNode root = tree.Root();
    effect.Lock().Lock();
    auto loaded = std::async(std::launch::async, [&] { effect.Send(12, MEffectArgument(&root)); });
    EXPECT_EQ(loaded.wait_for(std::chrono::milliseconds(30)), std::future_status::timeout);
    EXPECT_EQ(effect.records[1].Value(), 0.5);
    effect.Lock().Unlock();
    loaded.get();
    EXPECT_EQ(effect.records[1].Value(), 0.75);
}
