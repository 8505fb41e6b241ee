// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/MTransport.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/DelayEntry.h"
#include "tests/support/Reports.h"
#include "tests/support/Sanitized.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <utility>
#include <vector>
#include <xmmintrin.h>

namespace {

constexpr int kRate = 48000;
constexpr int kTap2 = 15;

bool IsFinite(const Sound& sound) {
    return std::ranges::all_of(sound, [](const auto& channel) {
        return std::ranges::all_of(channel, [](float sample) { return std::isfinite(sample); });
    });
}

std::vector<float*> PointersTo(Sound& sound) {
    std::vector<float*> pointers;
    for (auto& channel : sound) pointers.push_back(channel.data());
    return pointers;
}

/// Any value of the record's range, its ends more often than not.
double AnyValue(const ParameterDefinition& record, std::mt19937& generator) {
    const double place = std::uniform_real_distribution<double>(-0.5, 1.5)(generator);
    const double part = std::clamp(place, 0.0, 1.0);
    return record.Nearest(record.minimum + part * (record.maximum - record.minimum));
}

/// What a fresh delay of two channels makes of an impulse.
const Sound& Fresh() {
    static const Sound sound = [] {
        DelayEntry delay(2, kRate);
        return delay.Process(Impulse({1, 0.5f}, 12'000));
    }();
    return sound;
}

void ExpectUsable(DelayEntry& delay, const std::string& what) {
    for (int i = 0; i < 30; ++i) {
        delay.Record(i).SetRedirect(false);
        delay.Record(i).SetValue(delay.Record(i).defaultValue);
    }
    delay.Prepare(2, kRate);
    EXPECT_EQ(delay.Process(Impulse({1, 0.5f}, 12'000)), Fresh()) << what;
}

}  // namespace

TEST(MDelayRobustness, LeavesTheHostsFloatingPointModeAlone) {
    DelayEntry delay(2, kRate);
    for (const unsigned mode : {0x1f80U, 0x9fc0U}) {  // as a program starts, and all flushed to 0
        _mm_setcsr(mode);
        delay.Process(Constant(2, 300, 1e-40f));
        EXPECT_EQ(_mm_getcsr() & 0xffc0U, mode);  // whatever exceptions have occurred
    }
    _mm_setcsr(0x1f80U);
}

TEST(MDelayRobustness, TakesBlocksOfAnySizeAndIgnoresThoseWithoutChannels) {
    DelayEntry whole(2, kRate), parts(2, kRate);
    Sound output = Noise(2, 65536 + 8);
    const Sound expected = whole.Process(output);
    int start = 0;
    for (const int count : {0, 1, 7, 0, -1, -65536, 65536}) {
        float* const good[] = {output[0].data() + start, output[1].data() + start};
        float* const half[] = {good[0], nullptr};
        const void* const rows[][2] = {{nullptr, nullptr}, {good, nullptr}, {nullptr, good},
                                       {half, good},       {good, half},    {good, good}};
        for (const auto& row : rows) EXPECT_EQ(parts.Process(nullptr, row[0], row[1], count), 0);
        start += std::max(count, 0);
    }
    EXPECT_EQ(output, expected);
}

TEST(MDelayRobustness, RefusesAWrongPreparationAndStaysAsItWas) {
    constexpr std::int64_t kHigh = std::int64_t{1} << 32;
    const std::pair<std::int64_t, std::int64_t> rows[] = {
        {0, kRate},  {9, kRate},         {-2, kRate},       {2, 0},
        {2, -kRate}, {kHigh | 2, kRate}, {2, kHigh | kRate}};
    DelayEntry delay;
    Reports reports;
    for (const auto& [channels, rate] : rows) EXPECT_EQ(delay.Prepare(channels, rate), 1);
    EXPECT_EQ(reports.texts.size(), std::size(rows));
    Sound untouched = Constant(2, 10, 5);
    EXPECT_EQ(delay.Process(untouched), untouched) << "nothing has been prepared";
    EXPECT_EQ(delay.Prepare(2, kRate), 0);
    for (const auto& [channels, rate] : rows) delay.Prepare(channels, rate);
    EXPECT_EQ(delay.Process(Impulse({1, 0.5f}, 12'000)), Fresh());
}

TEST(MDelayRobustness, SurvivesEveryWildValueInEveryRecord) {
    DelayEntry delay;
    const Sound noise = Noise(2, 700);
    for (int index = 0; index < 30; ++index) {
        for (const double wild :
             {std::nan(""), 1e300, -1.0, -1e300, HUGE_VAL, -HUGE_VAL, 5e-324, 0.5000001, 3e9}) {
            for (const bool isModulated : {false, true}) {
                ParameterDefinition& record = delay.Record(index);
                record.SetRedirect(isModulated);
                isModulated ? record.SetSecondary(wild) : record.SetValue(wild);
                delay.Record(kTap2).SetValue(index == kTap2 ? wild : 1);
                for (const bool isPrepared : {false, true}) {
                    isPrepared ? delay.Prepare(2, kRate) : delay.Update(index);
                    EXPECT_TRUE(IsFinite(delay.Process(noise))) << record.key << " = " << wild;
                }
            }
        }
        ExpectUsable(delay, delay.Record(index).key);
    }
}

TEST(MDelayRobustness, StaysFiniteThroughMinutesOfFullFeedback) {
    // Sanitizers make the same minutes ten times as long; one of them is enough there.
    constexpr int kMinutes = kIsSanitized ? 1 : 10;
    constexpr int kBlock = 1024;
    const Sound noise = Noise(2, kBlock);
    std::mt19937 generator(11);
    EngineRun run(2, kRate);
    for (int block = 0; block < kMinutes * (60 * kRate / kBlock + 1); ++block) {
        if (block % 40 == 0) {  // new settings about once a second
            run.settings = RandomDelaySettings(generator, run.settings, 1);
            for (MDelayTapSettings& tap : run.settings.taps) {
                tap.feedback = Held(1);
                if (block % 80 == 0) tap.delay *= 10;
            }
            run.engine.Update(run.settings);
        }
        run.block = kBlock;
        // Now and then the largest and the smallest numbers.
        const float levels[] = {1e-45f, 1e-40f, -1e30f, std::numeric_limits<float>::max()};
        const Sound odd = Constant(2, kBlock, levels[block / 64 % 4]);
        ASSERT_TRUE(IsFinite(run.Run(block % 64 == 0 ? odd : noise))) << "block " << block;
    }
}

TEST(MDelayRobustness, AllocatesNothingWhileItRuns) {
    for (const int channels : {1, 2, 6}) {
        std::mt19937 generator(21);
        DelayEntry delay;
        delay.Record(kTap2).SetValue(1);
        delay.Prepare(channels, kRate);
        Sound sound = Noise(channels, 2048);
        const std::vector<float*> pointers = PointersTo(sound);
        const AllocationCounter counter;
        for (int round = 0; round < 400; ++round) {
            for (int i = 0; i < 30; ++i) {
                // Switching a tap on takes memory, and so do notes longer than half a second.
                if (i == 6 || i == kTap2 || i == 25 || i == 28) continue;
                delay.Record(i).SetValue(AnyValue(delay.Record(i), generator));
                delay.Update(i);
            }
            const int count = std::uniform_int_distribution<int>(0, 2048)(generator);
            delay.Process(nullptr, pointers.data(), pointers.data(), count);
            delay.Send(102);
        }
        EXPECT_EQ(counter.Count(), 0) << channels << " channels";
    }
}

TEST(MDelayRobustness, SurvivesAnyAllocationThatFails) {
    const Reports reports;
    for (int allowed = 0; allowed < 300; ++allowed) {
        DelayEntry delay;
        Sound sound = Noise(8, 5000);
        const std::vector<float*> pointers = PointersTo(sound);
        ParameterDefinition& secondTap = delay.Record(kTap2);
        delay.Prepare(2, kRate);
        bool isReached = false;
        {
            const AllocationLimit limit(allowed);
            secondTap.SetValue(1);
            delay.Update(kTap2);
            delay.Process(nullptr, pointers.data(), pointers.data(), 5000);
            delay.Prepare(8, 192'000);
            delay.Process(nullptr, pointers.data(), pointers.data(), 5000);
            isReached = limit.IsReached();
        }
        delay.Process(nullptr, pointers.data(), pointers.data(), 5000);
        delay.Send(102);
        EXPECT_TRUE(IsFinite(sound)) << allowed;
        ExpectUsable(delay, std::to_string(allowed) + " allocations");
        if (!isReached) return;  // all of it needs no more
    }
    ADD_FAILURE() << "allocations still fail";
}
