// SPDX-License-Identifier: GPL-3.0-or-later
#include "dsp/modulation/MLevelFollower.h"
#include "tests/support/Noise.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

// 0 dB gives 1 and every decibel below 0.01 less: the envelope's level can be read off.
const MFollowerSettings kWide{
    .attack = 0.02, .release = 0.15, .threshold = -100, .knee = 0, .range = 100};

double Amplitude(double output) { return std::pow(10.0, (output - 1) * 100 / 20); }

TEST(MLevelFollower, KeepsItsTimesAtEveryRateAndCut) {
    for (const int rate : {22050, 48000, 192000}) {
        for (const int cut : {7, 32, 64}) {
            MLevelFollower follower;
            follower.Prepare(rate);
            Channels sound(2, cut);
            sound[1].assign(cut, -1.0f);
            const float* channels[] = {nullptr, sound.Constants()[1]};
            int rise = 0, fall = 0;
            while (Amplitude(follower.Advance(channels, 2, cut, kWide)) < 1 - std::exp(-1)) {
                rise += cut;
            }
            EXPECT_NEAR((rise + cut / 2.0) / rate, 0.02, 0.001 + 0.5 * cut / rate) << rate << cut;
            while (Amplitude(follower.Advance(channels, 2, cut, kWide)) < 0.9999) {
            }
            while (Amplitude(follower.Advance(nullptr, 0, cut, kWide)) > std::exp(-1)) fall += cut;
            EXPECT_NEAR((fall + cut / 2.0) / rate, 0.15, 0.0075) << rate << " " << cut;
        }
    }
}

TEST(MLevelFollower, BendsAtTheThresholdAndSurvivesWhatIsNoNumber) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::pair<double, double> rows[] = {
        {-60, 0}, {-46, 0}, {-40, 1.5 / 20}, {-37, 3.375 / 20}, {-30, 0.5}, {-20, 1}, {0, 1}};
    for (const auto& [level, output] : rows) {
        const float peak = static_cast<float>(std::pow(10.0, level / 20));
        const float samples[] = {nan, peak, HUGE_VALF, -nan};
        const float* channel = samples;
        const MFollowerSettings settings{
            .attack = 0, .release = 0, .threshold = -40, .knee = 12, .range = 20};
        MLevelFollower follower;
        const double bad = std::nan("");
        EXPECT_GE(follower.Advance(&channel, 1, 4, {bad, bad, bad, bad, bad}), 0);
        EXPECT_NEAR(follower.Advance(&channel, 1, 4, settings), output, 1e-5) << level;
    }
}

}  // namespace
