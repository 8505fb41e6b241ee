// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/MAudioEffectPlugin.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using Calls = std::vector<std::string>;

constexpr ParameterText kNoText = {nullptr, nullptr};

/// An effect that writes down what is asked of it.
class Recorder final : public MAudioEffectPlugin {
public:
    explicit Recorder(Calls& calls) : calls_(calls) {
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
    void UpdateProcessing() override { calls_.push_back("update"); }
    void StateNotification(int what, MXMLNode state) override {
        Note("notification of " + state.Name(), what);
    }
    int InitEffectProcessing(std::int64_t, std::int64_t) override { return 0; }
    void ProcessEffect(const MTransport*, const float* const*, float* const*, int) override {}

    MMutex& Lock() { return parameterLock_; }

    ParameterDefinition records[5];

private:
    void Note(const std::string& what, std::int64_t number) {
        calls_.push_back(what + " " + std::to_string(number));
    }

    Calls& calls_;
};

/// A recorder, its notes, and commands by number.
struct Bench {
    Calls calls;
    std::unique_ptr<Recorder> effect = std::make_unique<Recorder>(calls);

    std::int64_t Send(int command, MEffectArgument first = {}, MEffectArgument second = {}) const {
        MEffectArguments arguments;
        arguments.values[0] = first;
        arguments.values[1] = second;
        return effect->Dispatch(static_cast<MEffectCommand>(command), &arguments);
    }
    ParameterDefinition& Record(int index) const { return effect->records[index]; }
};

MEffectArgument Whole(std::int64_t value) { return MEffectArgument(value); }

}  // namespace

TEST(MAudioEffectPlugin, UpdatesAfterAWriteWhereTheRecordAsksOrTheIndexIsNone) {
    const std::pair<std::int64_t, bool> rows[] = {{1, true},  {2, false}, {0, false},
                                                  {-1, true}, {5, true},  {1LL << 32, true}};
    for (const auto& [index, updates] : rows) {
        Bench bench;
        EXPECT_EQ(bench.Send(4, Whole(index)), 0);
        Calls expected = {"changed " + std::to_string(index)};
        if (updates) expected.push_back("update");
        EXPECT_EQ(bench.calls, expected) << index;
    }
}

TEST(MAudioEffectPlugin, StoresEveryRecordByItsKeyAndTellsTheHookAfterwards) {
    Bench bench;
    const MXMLTree tree("state");
    MXMLNode root = tree.Root();
    bench.Record(2).SetValue(-0.1);
    EXPECT_EQ(bench.Send(11, MEffectArgument(&root)), 0);
    const std::pair<const char*, const char*> rows[] = {
        {"first", "1"}, {"loud", "0.5"}, {"quiet", "-0.1"}, {"second", "0"}, {"kind", "1"}};
    for (const auto& [key, text] : rows) EXPECT_EQ(root.Attribute(key), text) << key;
    EXPECT_EQ(bench.calls, Calls{"notification of state 1"});

    const Bench other;
    EXPECT_EQ(other.Send(12, MEffectArgument(&root)), 1);
    EXPECT_EQ(other.Record(2).Value(), -0.1);
}

TEST(MAudioEffectPlugin, KeepsWhatAStateDoesNotSayAndHoldsTheRestWithinItsRange) {
    Bench bench;
    const MXMLTree tree = MXMLTree::Parse(R"(<s loud="7.5" quiet="words" kind="1.6" second="1"/>)");
    MXMLNode root = tree.Root();
    bench.Record(0).SetValue(0);
    EXPECT_EQ(bench.Send(12, MEffectArgument(&root)), 0) << "not every record was there";
    const double expected[] = {0, 1, 0.25, 1, 2};
    for (int i = 0; i < 5; ++i) EXPECT_EQ(bench.Record(i).Value(), expected[i]) << i;
    EXPECT_EQ(bench.Send(12), 0) << "no state at all";
    EXPECT_EQ(bench.Send(11), 0);
}

TEST(MAudioEffectPlugin, StoresAndLoadsAGroupUpToTheNextPanel) {
    // index, and the run of records that belong to it
    for (const auto& [index, first, end] :
         {std::tuple(0, 0, 3), {1, 1, 3}, {3, 3, 5}, {-1, 0, 0}, {5, 0, 0}}) {
        const Bench source;
        Bench target;
        const double values[] = {0, 0.125, -0.5, 1, 2};
        for (int i = 0; i < 5; ++i) source.Record(i).SetValue(values[i]);
        const MXMLTree group("group"), all("all");
        source.effect->SaveParameterGroup(index, group.Root());
        source.effect->SaveParameters(all.Root());
        target.effect->LoadParameterGroup(index, all.Root());
        for (int i = 0; i < 5; ++i) {
            const std::string& key = source.Record(i).key;
            const bool belongs = i >= first && i < end;
            EXPECT_EQ(group.Root().Attribute(key).has_value(), belongs) << index << key;
            EXPECT_EQ(target.Record(i).Value() == values[i], belongs) << index << key;
        }
    }
}

TEST(MAudioEffectPlugin, LoadsOnlyOnceTheLockIsFree) {
    const Bench bench;
    const MXMLTree tree = MXMLTree::Parse(R"(<s loud="0.75"/>)");
    MXMLNode root = tree.Root();
    bench.effect->Lock().Lock();
    auto loaded = std::async(std::launch::async, [&] { bench.Send(12, MEffectArgument(&root)); });
    EXPECT_EQ(loaded.wait_for(std::chrono::milliseconds(30)), std::future_status::timeout);
    EXPECT_EQ(bench.Record(1).Value(), 0.5);
    bench.effect->Lock().Unlock();
    loaded.get();
    EXPECT_EQ(bench.Record(1).Value(), 0.75);
}
