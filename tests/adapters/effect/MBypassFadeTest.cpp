// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MBypassFade.h"
#include "tests/support/Noise.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace {

constexpr int kRate = 48000;
constexpr int kFade = 480;
constexpr int kLength = 8192;

/// Runs `fade` over `input`; the effect behind it turns the delayed input upside down. Bypassed
/// from `on` to `off`.
std::vector<float> RunFade(MBypassFade& fade, Channels& input, int delay, int on, int off,
                           int block) {
    Channels output(input.Count(), kLength);
    for (int start = 0; start < kLength; start += block) {
        const int count = std::min(block, kLength - start);
        const bool isOn = start >= on && start < off;
        const bool isHeard = fade.Begin(isOn, delay, input.From(start), count);
        for (int c = 0; c < input.Count(); ++c) {
            for (int i = start; i < start + count; ++i) {
                output[c][i] = i >= delay ? -input[c][i - delay] : 0;
            }
        }
        if (isHeard) fade.Mix(output.From(start), count);
    }
    return output[input.Count() - 1];
}

void FillWithSine(Channels& channels) {
    for (int c = 0; c < channels.Count(); ++c) {
        for (int i = 0; i < channels.Length(); ++i) {
            channels[c][i] =
                static_cast<float>(std::sin(2 * std::numbers::pi * 1000 * i / kRate + c));
        }
    }
}

// Two full turns in 480 samples and the steepest of a sine at 1 kHz.
constexpr double kSteepest = 2 * std::numbers::pi * 1000 / kRate + 2.0 / kFade + 1e-6;

TEST(MBypassFade, FadesToTheDelayedInputAndBackWithoutAClick) {
    Channels input(2, kLength);
    FillWithSine(input);
    for (const int delay : {0, 1, 3072}) {
        for (const int block : {1, 64, 333, 1024}) {
            MBypassFade fade;
            fade.Prepare(2, kRate, 3072, 1024, false);
            const int on = 4096 / block * block, off = (6144 + block - 1) / block * block;
            const std::vector<float> output = RunFade(fade, input, delay, on, off, block);
            for (int i = delay + 1; i < kLength; ++i) {
                ASSERT_LE(std::fabs(output[i] - output[i - 1]), kSteepest)
                    << delay << " " << block << " " << i;
                const float dry = input[1][i - delay];
                const bool isBypassed = i >= on + kFade && i < off;
                if (i < on || i >= off + kFade || isBypassed) {
                    ASSERT_EQ(output[i], isBypassed ? dry : -dry) << i;
                }
            }
        }
    }
}

TEST(MBypassFade, StartsWhereTheSwitchStandsAndTurnsRoundInMidFade) {
    MBypassFade fade;
    Channels input(1, kLength);
    FillWithSine(input);
    fade.Prepare(1, kRate, 0, 64, true);
    EXPECT_EQ(RunFade(fade, input, 0, 0, kLength, 64), input[0]);
    fade.Prepare(1, kRate, 0, 64, false);
    const std::vector<float> turned = RunFade(fade, input, 0, 0, 192, 64);
    for (int i = 1; i < 64 + 2 * 192; ++i) {
        ASSERT_LE(std::fabs(turned[i] - turned[i - 1]), kSteepest);
    }
    EXPECT_EQ(turned[384], -input[0][384]);

    // What was kept before a time without delay is not heard when there is one again.
    fade.Prepare(1, kRate, 3072, kLength, false);
    Channels silence(1, kLength);
    RunFade(fade, input, 3072, kLength, kLength, 64);
    RunFade(fade, silence, 0, kLength, kLength, 64);
    fade.Settle(true);
    EXPECT_EQ(RunFade(fade, silence, 3072, 0, kLength, kLength), silence[0]);
    EXPECT_TRUE(fade.IsStarting());

    fade.Prepare(1, kRate, 0, 64, true);
    input[0][3] = std::numeric_limits<float>::quiet_NaN();
    input[0][4] = -std::numeric_limits<float>::infinity();
    const std::vector<float> silent = RunFade(fade, input, 0, 0, kLength, 64);
    EXPECT_EQ(silent[3], 0);
    EXPECT_EQ(silent[4], 0);
    EXPECT_EQ(silent[5], input[0][5]);
}

}  // namespace
