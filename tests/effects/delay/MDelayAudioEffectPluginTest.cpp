// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/delay/MDelayAudioEffectPlugin.h"
#include "tests/support/DelayEntry.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace {

constexpr int kRate = 48000;

/// What a command without arguments answers.
std::int64_t Answer(void* object, std::int64_t command) {
    return std::bit_cast<std::int64_t>(
        MDelayAudioEffectPluginInterface(object, std::bit_cast<void*>(command), nullptr));
}

using Codes = std::vector<std::int64_t>;

std::int64_t Note(void* context, std::int64_t code, const MEffectArguments*) {
    static_cast<Codes*>(context)->push_back(code);
    return 0;
}

/// What another thread is about to overwrite; that it may be either is the point.
__attribute__((no_sanitize("thread"))) float Peek(const volatile float& sample) { return sample; }

}  // namespace

TEST(MDelayAudioEffectPlugin, AnswersEveryCommandWithItsResult) {
    DelayEntry delay;
    ASSERT_NE(delay.Object(), nullptr);
    EXPECT_EQ(delay.Send(7), std::bit_cast<std::int64_t>(delay.Object()));
    EXPECT_EQ(delay.Table().count, 30);
    for (const auto& [command, result] : {std::pair(105, -1), {102, 1}, {1, 0}, {55, 0}})
        EXPECT_EQ(Answer(nullptr, command), result) << command << " without an object";
    const std::pair<int, std::int64_t> rows[] = {
        {3, 0},   {4, 0},    {5, 0},   {6, 0},   {8, 0},   {9, 0},   {10, 0},
        {11, 0},  {12, 0},   {13, 0},  {14, -1}, {15, 0},  {16, 0},  {17, 0},
        {18, 0},  {19, 0},   {20, -1}, {21, 0},  {99, 0},  {102, 1}, {103, 0},
        {104, 0}, {105, -1}, {106, 0}, {107, 0}, {108, 0}, {-1, 0},  {1 << 30, 0}};
    for (const auto& [command, result] : rows) {
        EXPECT_EQ(delay.Send(command), result) << command;
        EXPECT_EQ(Answer(delay.Object(), command), result) << command << " without arguments";
    }
    EXPECT_EQ(delay.Prepare(2, kRate), 0);
    EXPECT_EQ(delay.Process(nullptr, nullptr, nullptr, 0), 0);
}

TEST(MDelayAudioEffectPlugin, StartsWithoutRampsAfterAPreparation) {
    DelayEntry delay;
    for (const auto& [index, value] : {std::pair(7, 0), {8, 1}, {10, 0}})
        delay.Record(index).SetValue(value);  // feedback, gain, delay
    delay.Prepare(1, kRate);
    const Sound output = delay.Process(Constant(1, 100, 1));
    for (int i = 1; i < 100; ++i) ASSERT_EQ(output[0][i], 1) << i;
}

TEST(MDelayAudioEffectPlugin, TellsItsOwnerOnceWhenSynchronisationTakesTheDelayOver) {
    for (const auto& [sync, taken, other] : {std::tuple(24, 10, 19), {27, 19, 10}}) {
        DelayEntry delay;
        Codes codes;
        delay.Send(0, MEffectArgument(&codes),
                   MEffectArgument(reinterpret_cast<const void*>(&Note)));
        delay.Prepare(2, kRate);
        for (const bool isOn : {true, true, false, false, true}) {
            delay.Record(sync).SetValue(isOn);
            delay.Update(sync);
            EXPECT_EQ(delay.Record(taken).IsEnabled(), !isOn);
            EXPECT_TRUE(delay.Record(other).IsEnabled());
        }
        EXPECT_EQ(codes, (Codes{2, 2, 2}));
    }
}

TEST(MDelayAudioEffectPlugin, IsDestroyedOnlyOnceARunningBlockIsThrough) {
    constexpr std::int64_t kLength = 1 << 22;  // long enough to be met running
    for (int round = 0; round < 10; ++round) {
        DelayEntry delay(1, kRate);
        std::vector<float> samples(kLength, 1.0f);
        samples.back() = 9;
        float* const channel = samples.data();
        std::thread audio([&] { delay.Process(nullptr, &channel, &channel, kLength); });
        // The first echo shows that the block has begun and holds the lock.
        while (Peek(samples[4800]) == 1.0f) std::this_thread::yield();
        delay.Destroy();
        const float last = Peek(samples.back());
        audio.join();
        EXPECT_NE(last, 9) << "destroyed before the end of the block";
    }
}
