// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MHostedEffect.h"
#include "core/MException.h"
#include "effects/delay/MDelayAudioEffectPluginInterface.h"
#include "effects/delay/MDelayParameters.h"
#include "tests/support/ProbeEffect.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

// An entry that calls the delay and notes the updates that it is asked for.
std::vector<std::int64_t> updates;
void* NotingEntry(void* object, void* command, void* arguments) {
    if (reinterpret_cast<std::intptr_t>(command) == 4) {
        updates.push_back(static_cast<MEffectArguments*>(arguments)->values[0].integer);
    }
    return MDelayAudioEffectPluginInterface(object, command, arguments);
}

TEST(MHostedEffect, AsksForOneUpdateHoweverManyRecordsWereWritten) {
    using namespace MDelayIndex;
    MHostedEffect effect(&NotingEntry, "Band 1");
    effect.Prepare(2, 48000);
    const int feedback = OfTap(0, Feedback), delay = OfTap(0, Delay), freeze = OfTap(0, Freeze);
    const std::pair<std::vector<int>, std::vector<std::int64_t>> rows[] = {
        {{}, {}},
        {{delay, delay}, {delay}},
        {{kDelayMode, feedback}, {kDelayMode, feedback}},  // followed without an update
        {{feedback, delay}, {feedback, delay}},
        {{delay, freeze}, {-1}},
        {{-1}, {-1}},
    };
    for (const auto& [marks, expected] : rows) {
        for (const int index : marks) effect.Mark(index);
        updates.clear();
        effect.Update();
        EXPECT_EQ(updates, expected);
        effect.Update();
        EXPECT_EQ(updates, expected) << "a mark is followed once";
    }
}

TEST(MHostedEffect, LosesNoWriteOfSeveralThreads) {
    MHostedEffect effect(ProbeEffect::Reset(), "Band 1");
    effect.Prepare(1, 48000);
    constexpr int kWrites = 20000;
    std::atomic<int> running{2};
    const auto write = [&](int index) {
        for (int i = 1; i <= kWrites; ++i) {
            effect.Records()[index].SetValue(i);
            effect.Mark(index);
        }
        --running;
    };
    std::thread first(write, 0), second(write, 1);
    double seen[2] = {0, 0};
    std::size_t read = 0;
    const auto follow = [&] {
        effect.Update();
        const auto& changed = ProbeEffect::Noted().changed;
        for (; read < changed.size(); ++read) {
            seen[changed[read]] = effect.Records()[changed[read]].Value();
        }
    };
    while (running > 0) follow();
    first.join();
    second.join();
    follow();
    EXPECT_EQ(seen[0], kWrites);
    EXPECT_EQ(seen[1], kWrites);
}

TEST(MHostedEffect, SaysWhatTheEffectHasSaid) {
    MHostedEffect effect(&MDelayAudioEffectPluginInterface, "Band 1");
    effect.Prepare(2, 48000);
    EXPECT_FALSE(effect.TakeListChanged());
    effect.Records()[MDelayIndex::kSync].SetValue(1);
    effect.Mark(MDelayIndex::kSync);
    effect.Update();
    EXPECT_TRUE(effect.TakeListChanged());
    EXPECT_FALSE(effect.TakeListChanged());
}

TEST(MHostedEffect, TriesAgainToStartAnewUntilItSucceeds) {
    MHostedEffect effect(ProbeEffect::Reset(), "Band 1");
    effect.Prepare(1, 48000);
    float sample = 0;
    float* const channels[] = {&sample};
    const auto run = [&] {
        const MTransport transport;
        effect.Process(&transport, channels, channels, 1);
    };
    run();
    effect.RequestRestart();
    ProbeEffect::Reset({.prepareResult = 1});
    for (int block = 0; block < 2; ++block) EXPECT_THROW(run(), MException);
    ProbeEffect::Reset();
    run();
    EXPECT_EQ(ProbeEffect::Noted().sampleRate, 48000) << "prepared once more";
}

}  // namespace
