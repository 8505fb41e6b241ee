// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/delay/MDelayEngine.h"
#include "tests/support/EngineRun.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <string>
#include <vector>

namespace {

constexpr int kRate = 48000;
constexpr int kDelay = 4800;  // samples of the default 100 ms

/// The samples that are not silent, by their times.
using Echoes = std::map<int, double>;

void ExpectEchoes(const std::vector<float>& samples, const Echoes& expected,
                  const std::string& what) {
    for (int i = 0; i < static_cast<int>(samples.size()); ++i) {
        const auto echo = expected.find(i);
        const double amplitude = echo != expected.end() ? echo->second : 0;
        ASSERT_NEAR(static_cast<double>(samples[i]), amplitude, 1e-7) << what << ", sample " << i;
    }
}

MDelaySettings WithMode(MDelayMode mode, double panorama = 0) {
    MDelaySettings settings = DefaultDelaySettings();
    settings.taps[0].mode = mode;
    settings.taps[0].panorama = Held(panorama);
    return settings;
}

}  // namespace

TEST(MDelayEngine, EchoesInEveryModeWithTheFeedbackFromTheEchoWhereItBelongs) {
    // In mono the gain of 1/2 scales every echo; in stereo it is doubled, and one sample is added.
    const struct {
        MDelayMode mode;
        double first;
    } rows[] = {{MDelayMode::Default, 0.16}, {MDelayMode::Classic, 1}, {MDelayMode::PingPong, 1}};
    for (const auto& row : rows) {
        const std::string what = "mode " + std::to_string(static_cast<int>(row.mode));
        Echoes mono, stereo;
        double amplitude = row.first;
        for (int echo = 1; echo <= 4; ++echo, amplitude *= 0.16) {
            mono[echo * kDelay] = 0.5 * amplitude;
            stereo[echo * kDelay + 1] = amplitude;
        }
        EngineRun one(1, kRate, WithMode(row.mode)), two(2, kRate, WithMode(row.mode));
        ExpectEchoes(one.Run(Impulse({1}, 20'000))[0], mono, what + " in mono");
        const Sound sides = two.Run(Impulse({1, 1}, 20'000));
        for (const auto& side : sides) ExpectEchoes(side, stereo, what + " in stereo");
    }
}

TEST(MDelayEngine, BouncesPannedEchoesFromSideToSide) {
    // The pan comes first: left 1 + 0.25 * 0.5, right 0.75 * 0.5; then the sides swap each time.
    EngineRun run(2, kRate, WithMode(MDelayMode::PingPong, -0.25));
    const Sound sides = run.Run(Impulse({1, 0.5f}, 3 * kDelay + 100));
    const double f = 0.16, left = 1.125, right = 0.375;
    ExpectEchoes(sides[0],
                 {{kDelay + 1, left}, {2 * kDelay + 1, f * right}, {3 * kDelay + 1, f * f * left}},
                 "left");
    ExpectEchoes(sides[1],
                 {{kDelay + 1, right}, {2 * kDelay + 1, f * left}, {3 * kDelay + 1, f * f * right}},
                 "right");
}

TEST(MDelayEngine, PansByABalanceThatPassesTheRestToTheOtherSide) {
    const struct {
        double pan;
        float left, right;
        double leftOut, rightOut;
    } rows[] = {{0, 1, 0.5f, 1, 0.5}, {1, 1, 0, 0, 1},           {1, 0, 1, 0, 1},
                {-1, 0, 1, 1, 0},     {0.25, 1, 0, 0.75, 0.25},  {0.25, 0, 1, 0, 1},
                {-1, 1, 0, 1, 0},     {-0.25, 0, 1, 0.25, 0.75}, {-0.25, 1, 1, 1.25, 0.75}};
    for (const auto& row : rows) {
        for (const MDelayMode mode : {MDelayMode::Classic, MDelayMode::PingPong}) {
            EngineRun run(2, kRate, WithMode(mode, row.pan));
            const Sound sides = run.Run(Impulse({row.left, row.right}, kDelay + 10));
            ExpectEchoes(sides[0], {{kDelay + 1, row.leftOut}}, std::to_string(row.pan));
            ExpectEchoes(sides[1], {{kDelay + 1, row.rightOut}}, std::to_string(row.pan));
        }
    }
}

TEST(MDelayEngine, DelaysTheSideThatAnOffsetNamesAndTheOtherOneWhenNegative) {
    constexpr int kBinaryRate = 32768;  // so that halves of a sample are exact
    const struct {
        double left, right;
        int leftDelay, rightDelay;
    } rows[] = {{0, 0, 1, 1},         {480, 0, 480, 1},     {-480, 0, 1, 480},  // in samples
                {480, 960, 480, 960}, {-480, -960, 480, 1}, {-480, 960, 1, 1440},
                {2.5, 0, 3, 1},       {-2.5, 0, 1, 2},      {0, -3.5, 3, 1}};
    for (const auto& row : rows) {
        MDelaySettings settings = DefaultDelaySettings();
        settings.taps[0].delay = 64.0 / kBinaryRate;
        settings.taps[0].feedback = Held(0);
        settings.taps[0].leftOffset = row.left / kBinaryRate;
        settings.taps[0].rightOffset = row.right / kBinaryRate;
        EngineRun stereo(2, kBinaryRate, settings), mono(1, kBinaryRate, settings);
        const Sound sides = stereo.Run(Impulse({1, 1}, 2000));
        ExpectEchoes(sides[0], {{64 + row.leftDelay, 1}}, std::to_string(row.left));
        ExpectEchoes(sides[1], {{64 + row.rightDelay, 1}}, std::to_string(row.right));
        ExpectEchoes(mono.Run(Impulse({1}, 2000))[0], {{64, 0.5}}, "mono");
    }
}

TEST(MDelayEngine, ChainsTheTapsInSerialAndAddsThemInParallel) {
    MDelaySettings settings = DefaultDelaySettings();
    for (MDelayTapSettings& tap : settings.taps) {
        tap.isEnabled = true;
        tap.feedback = Held(0);
    }
    settings.taps[0].delay = 100.0 / kRate;
    settings.taps[1].delay = 30.0 / kRate;
    EngineRun parallel(2, kRate, settings);
    settings.isSerial = true;
    EngineRun serial(2, kRate, settings), mono(1, kRate, settings);
    EXPECT_TRUE(parallel.engine.IsTailSilent());
    // In stereo each tap has a predelay of its own: one more sample for each.
    ExpectEchoes(mono.Run(Impulse({1}, 500))[0], {{100, 0.5}, {130, 0.25}}, "mono");
    ExpectEchoes(serial.Run(Impulse({0, 1}, 500))[1], {{101, 1}, {132, 1}}, "serial");
    ExpectEchoes(parallel.Run(Impulse({0, 1}, 50))[1], {{31, 1}}, "parallel");
    EXPECT_FALSE(parallel.engine.IsTailSilent());
    ExpectEchoes(parallel.Run(Constant(2, 200, 0))[1], {{51, 1}}, "parallel");
    EXPECT_TRUE(parallel.engine.IsTailSilent());
}

TEST(MDelayEngine, RepeatsASynchronisedTapTwiceANote) {
    const struct {
        int length;
        MTempoSync::Type type;
        double tempo;
        int echo;
    } rows[] = {{8, MTempoSync::Type::Straight, 120, 12000},
                {9, MTempoSync::Type::Dotted, 120, 9000},
                {14, MTempoSync::Type::Straight, 128, 176},  // of 351.56: rounded, then halved
                {14, MTempoSync::Type::Straight, 120, 187},  // of 375
                {8, MTempoSync::Type::Straight, -5, kDelay},
                {14, MTempoSync::Type::Triplets, 1e7, kDelay}};  // a period of 0.05 samples
    for (const auto& row : rows) {
        MDelaySettings settings = DefaultDelaySettings();
        settings.taps[0].feedback = Held(0);
        settings.taps[0].isSynchronised = true;
        settings.taps[0].syncLength = row.length;
        settings.taps[0].syncType = row.type;
        EngineRun run(1, kRate, settings);
        run.tempo = row.tempo;
        ExpectEchoes(run.Run(Impulse({1}, 30'000))[0], {{row.echo, 0.5}},
                     "tempo " + std::to_string(row.tempo));
    }
}

TEST(MDelayEngine, RampsFeedbackAndGainInTheSquareAndPanoramaStraight) {
    constexpr int kLength = 1000;  // of the line, and of the block with the ramps
    MDelaySettings settings = DefaultDelaySettings();
    settings.taps[0].delay = static_cast<double>(kLength) / kRate;
    settings.taps[0].feedback = Held(0.2);
    settings.taps[0].panorama = Held(-0.5);
    const auto moved = [](double from, double to, int i) {
        return from + i * (to - from) / kLength;
    };
    for (const int channels : {1, 2}) {
        EngineRun run(channels, kRate, settings);
        run.block = kLength;
        run.Run(Constant(channels, kLength + channels - 1, 1));  // the predelay takes one more
        run.settings.taps[0].gain = {std::sqrt(0.5), 1};
        run.settings.taps[0].feedback = {0.2, 0.9};
        run.settings.taps[0].panorama = {-0.5, 0.75};
        const Sound ramped = run.Run(Constant(channels, kLength, 0));
        run.settings.taps[0].panorama = Held(0);
        const Sound after = run.Run(Constant(channels, kLength, 0));
        for (int i = channels - 1; i < kLength; ++i) {
            const double gain = moved(0.5, 1, i), pan = moved(-0.5, 0.75, i);
            const double left = channels == 1 ? gain : 2 * gain * (1 - pan);
            ASSERT_NEAR(static_cast<double>(ramped[0][i]), left, 1e-6) << i;
            if (channels == 2) {
                ASSERT_NEAR(static_cast<double>(ramped[1][i]), 2 * gain * (1 + pan), 1e-6) << i;
            }
            const double feedback = moved(0.04, 0.81, i) * (channels == 2 ? 2 : 1);
            ASSERT_NEAR(static_cast<double>(after[0][i]), feedback, 1e-6) << i << ", " << channels;
        }
    }
}
