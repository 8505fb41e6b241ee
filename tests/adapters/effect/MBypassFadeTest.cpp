// SPDX-License-Identifier: GPL-3.0-or-later
#include "adapters/effect/MBypassFade.h"
#include "tests/support/AllocationCounter.h"
#include "tests/support/Noise.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

namespace {

constexpr int kRate = 48000;
constexpr int kFade = 480;
constexpr int kLength = 8192;

/// Runs `fade` over a sine of 1 kHz; the effect behind it turns the delayed sine upside down.
/// Bypassed from `on` to `off`.
void RunFade(MBypassFade& fade, Channels& input, Channels& output, int delay, int on, int off,
             int block) {
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
}

void FillWithSine(Channels& channels) {
    for (int c = 0; c < channels.Count(); ++c) {
        for (int i = 0; i < channels.Length(); ++i) {
            channels[c][i] =
                static_cast<float>(std::sin(2 * std::numbers::pi * 1000 * i / kRate + c));
        }
    }
}

TEST(MBypassFade, FadesToTheDelayedInputAndBackWithoutAClick) {
    for (const int delay : {0, 1, 3072}) {
        for (const int block : {1, 64, 333, 1024}) {
            MBypassFade fade;
            fade.Prepare(2, kRate, 3072, 1024, false);
            Channels input(2, kLength);
            FillWithSine(input);
            const int on = 4096 / block * block, off = (6144 + block - 1) / block * block;
            Channels output(2, kLength);
            RunFade(fade, input, output, delay, on, off, block);
            // Two full turns in 480 samples and the steepest of a sine at 1 kHz.
            const double steepest = 2 * std::numbers::pi * 1000 / kRate + 2.0 / kFade;
            for (int i = delay + 1; i < kLength; ++i) {
                ASSERT_LE(std::fabs(output[1][i] - output[1][i - 1]), steepest + 1e-6)
                    << delay << " " << block << " " << i;
                const float dry = input[1][i - delay];
                const bool isBypassed = i >= on + kFade && i < off;
                if (i < on || i >= off + kFade || isBypassed) {
                    ASSERT_EQ(output[1][i], isBypassed ? dry : -dry) << i;
                }
            }
        }
    }
}

TEST(MBypassFade, StartsWhereTheSwitchStandsAndTurnsRoundInMidFade) {
    MBypassFade fade;
    fade.Prepare(1, kRate, 0, 64, true);
    Channels input(1, kLength);
    FillWithSine(input);
    Channels bypassed(1, kLength), turned(1, kLength);
    RunFade(fade, input, bypassed, 0, 0, kLength, 64);
    EXPECT_EQ(bypassed[0], input[0]);

    fade.Prepare(1, kRate, 0, 64, false);
    RunFade(fade, input, turned, 0, 0, 192, 64);
    for (int i = 1; i < 64 + 2 * 192; ++i) {
        ASSERT_LE(std::fabs(turned[0][i] - turned[0][i - 1]), 0.1309 + 2.0 / kFade);
    }
    EXPECT_EQ(turned[0][384], -input[0][384]);
}

TEST(MBypassFade, PassesSilenceForWhatIsNoNumberAndAllocatesNothing) {
    MBypassFade fade;
    fade.Prepare(1, kRate, 100, 64, true);
    Channels input(1, 64), output(1, 64);
    input[0][3] = std::numeric_limits<float>::quiet_NaN();
    input[0][4] = -std::numeric_limits<float>::infinity();
    input[0][5] = 1;
    const AllocationCounter counter;
    fade.Begin(true, 0, input.Constants(), 64);
    fade.Mix(output.Pointers(), 64);
    EXPECT_EQ(counter.Count(), 0);
    EXPECT_EQ(output[0][3], 0);
    EXPECT_EQ(output[0][4], 0);
    EXPECT_EQ(output[0][5], 1);
}

}  // namespace
