// SPDX-License-Identifier: GPL-3.0-or-later
#include "effects/delay/MDelayEngine.h"
#include "tests/support/EngineRun.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
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

}  // namespace

TEST(MDelayEngine, EchoesInEveryModeWithTheFeedbackFromTheEchoWhereItBelongs) {
    // In mono the gain of 1/2 scales every echo; in stereo it is doubled, and one sample is added.
    // The balance passes a quarter of the right side to the left: 1 + 0.25 * 0.5 and 0.75 * 0.5.
    const double sides[] = {1.125, 0.375};
    for (const MDelayMode mode : {MDelayMode::Default, MDelayMode::Classic, MDelayMode::PingPong}) {
        const std::string what = "mode " + std::to_string(static_cast<int>(mode));
        Echoes mono, left, right;
        double amplitude = mode == MDelayMode::Default ? 0.16 : 1;
        for (int echo = 1; echo <= 4; ++echo, amplitude *= 0.16) {
            const bool isSwapped = mode == MDelayMode::PingPong && echo % 2 == 0;
            mono[echo * kDelay] = 0.5 * amplitude;
            left[echo * kDelay + 1] = amplitude * sides[isSwapped ? 1 : 0];
            right[echo * kDelay + 1] = amplitude * sides[isSwapped ? 0 : 1];
        }
        MDelaySettings settings = DefaultDelaySettings();
        settings.taps[0].mode = mode;
        settings.taps[0].panorama = Held(-0.25);
        EngineRun one(1, kRate, settings), two(2, kRate, settings);
        ExpectEchoes(one.Run(Impulse({1}, 20'000))[0], mono, what + " in mono");
        const Sound stereo = two.Run(Impulse({1, 0.5f}, 20'000));
        ExpectEchoes(stereo[0], left, what + ", left");
        ExpectEchoes(stereo[1], right, what + ", right");
    }
}

// A sound from before must not come back with what was switched off while it faded.
TEST(MDelayEngine, StartsFromSilenceWhereATapOrAFilterIsSwitchedOn) {
    const auto filtered = [](double lowest, double highest, bool isInLoop) {
        MDelaySettings settings = DefaultDelaySettings();
        settings.minFrequency = lowest;
        settings.maxFrequency = highest;
        settings.resonance = 1;
        settings.filtersFeedback = isInLoop;
        return settings;
    };
    MDelaySettings off = filtered(100, 2000, true);
    off.taps[0].isEnabled = false;
    const struct {
        const char* name;
        MDelaySettings on, away;
    } rows[] = {
        {"tap", filtered(100, 2000, true), off},
        {"low-pass", filtered(20, 100, false), filtered(20, 20000, false)},
        {"high-pass in the loop", filtered(500, 9000, true), filtered(20, 9000, true)},
        {"filter mode", filtered(100, 2000, false), filtered(100, 2000, true)},
        {"filter mode back", filtered(100, 2000, true), filtered(100, 2000, false)},
    };
    for (const auto& row : rows) {
        EngineRun run(2, kRate, row.on);
        run.Run(Constant(2, 10'000, 1));
        run.settings = row.away;
        run.UpdateAndRun(Constant(2, 20 * kRate, 0));
        run.settings = row.on;
        EXPECT_EQ(run.UpdateAndRun(Constant(2, 10'000, 0)), Constant(2, 10'000, 0)) << row.name;
    }
}

TEST(MDelayEngine, SaturatesWithoutEndingInDirectCurrentOrRunningAway) {
    MDelaySettings settings = DefaultDelaySettings();
    const auto peak = [](const Sound& sound) {
        return *std::max_element(sound[0].begin(), sound[0].end());
    };
    // Loops that would amplify what is put into them by rounding.
    for (const auto& [feedback, amount] : {std::pair{0.63, 1.0}, {1.0, 0.1}}) {
        settings.taps[0].feedback = Held(feedback);
        settings.saturation = amount;
        EngineRun run(2, kRate, settings);
        EXPECT_EQ(peak(run.Run(Constant(2, 15 * kRate, 0))), 0) << feedback;
    }
    settings.taps[0].feedback = Held(0.9);
    settings.saturation = 1;
    EngineRun run(2, kRate, settings);
    EXPECT_LE(peak(run.Run(Constant(2, 3 * kRate, 1))), 10);
    run.settings.taps[0].feedback = Held(0.4);
    run.Run(Constant(2, 5 * kRate, 0));
    EXPECT_LT(peak(run.Run(Constant(2, kRate, 0))), 1e-6f);
}

TEST(MDelayEngine, KeepsTheTrebleOfEchoesWhileTheDelayMovesOn) {
    MDelaySettings settings = DefaultDelaySettings();
    settings.taps[0].delay = 0.4;
    settings.taps[0].feedback = Held(0);
    EngineRun run(1, kRate, settings);
    Sound sine = Constant(1, kRate, 0);
    for (int i = 0; i < kRate; ++i)
        sine[0][i] = static_cast<float>(std::sin(2 * std::numbers::pi * 9000 * i / kRate));
    run.Run(sine);
    double power = 0;
    for (int block = 0; block < 30; ++block) {
        run.settings.taps[0].delay -= 0.00025;
        const int start = 512 * (block % 30);
        const Sound echo = run.UpdateAndRun(
            {std::vector<float>(sine[0].begin() + start, sine[0].begin() + start + 512)});
        if (block < 24) continue;
        for (const float sample : echo[0])
            power += static_cast<double>(sample * sample) / (6 * 512);
    }
    // Linear interpolation alone takes 1.6 dB on average at this frequency; of the sine's power of
    // 1/2 the gain leaves 1/8.
    EXPECT_GT(10 * std::log10(power / 0.125), -2.5);
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
